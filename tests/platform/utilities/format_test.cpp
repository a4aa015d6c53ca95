#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>

#include "FED_Message.h"
#include "QeltaFormat.h"

namespace {

constexpr std::uint64_t kLarge = (std::uint64_t{1} << 32) + 7;

std::string FormatInto(std::size_t size, const char* format, ...) {
  std::string buffer(size + 1, '#');
  std::va_list arguments;
  va_start(arguments, format);
  QeltaFormat::FormatTo(buffer.data(), size, format, arguments);
  va_end(arguments);
  return buffer;
}

TEST(FormatTest, UnsignedSizesOnEveryPlatform) {
  const std::pair<std::string, const char*> rows[] = {
      {FED_MESSAGE("%Iu", kLarge), "4294967303"},
      {FED_MESSAGE("%Iu", ~std::uint64_t{0}), "18446744073709551615"},
      {FED_MESSAGE("%Iu", std::uint64_t{0}), "0"},
      {FED_MESSAGE("[%12Iu]", kLarge), "[  4294967303]"},
      {FED_MESSAGE("[%-12Iu]", kLarge), "[4294967303  ]"},
      {FED_MESSAGE("[%012Iu]", kLarge), "[004294967303]"},
      {FED_MESSAGE("[%.12Iu]", kLarge), "[004294967303]"},
      {FED_MESSAGE("[%*Iu]", 12, kLarge), "[  4294967303]"},
      {FED_MESSAGE("%d %Iu %s %Iu", -3, kLarge, "x", std::uint64_t{5}), "-3 4294967303 x 5"},
      {FED_MESSAGE("%Iu%%Iu%Iu", kLarge, kLarge), "4294967303%Iu4294967303"},
      {FED_MESSAGE("%%%Iu", kLarge), "%4294967303"},
      {FED_MESSAGE("%%Iu"), "%Iu"},
      {FED_MESSAGE("Iu %d Iu", 4), "Iu 4 Iu"},
  };
  for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected);
}

TEST(FormatTest, EverythingElseFollowsTheCLibrary) {
  char expected[200];
  const auto args = [](auto print) {
    return print("%5d|%-5u|%x|%c|%.3s|%8.3f|%g|%lld|%p|%%", -4, 7u, 255u, 'c', "text", 1.5, 1e300,
                 -5000000000LL, nullptr);
  };
  args([&](auto... a) { return std::snprintf(expected, sizeof expected, a...); });
  EXPECT_EQ(args([](auto... a) { return FED_MESSAGE(a...); }), expected);
}

TEST(FormatTest, ArgumentsAreNeverAFormat) {
  EXPECT_EQ(FED_MESSAGE("%s", "100 %s %n %Iu"), "100 %s %n %Iu");
  EXPECT_EQ(FED_MESSAGE("%s %Iu", "%Iu", kLarge), "%Iu 4294967303");
}

TEST(FormatTest, NullAndEmptyFormats) {
  EXPECT_EQ(FED_MESSAGE(nullptr), "");
  EXPECT_EQ(FED_MESSAGE(""), "");
  EXPECT_EQ(FormatInto(4, nullptr), std::string("\0####", 5));
}

TEST(FormatTest, TextsOfAnyLengthAreWhole) {
  for (const std::size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 1023u, 1024u, 100000u}) {
    const std::string text(length, 'x');
    EXPECT_EQ(FED_MESSAGE("%s", text.c_str()), text);
    EXPECT_EQ(FED_MESSAGE("%s%Iu", text.c_str(), kLarge), text + "4294967303");
  }
}

TEST(FormatTest, BuffersAreCutAndEnded) {
  EXPECT_EQ(FormatInto(0, "%s", "abc"), "#");
  EXPECT_EQ(FormatInto(1, "%s", "abc"), std::string("\0#", 2));
  EXPECT_EQ(FormatInto(3, "%s", "abc"), std::string("ab\0#", 4));
  EXPECT_EQ(FormatInto(4, "%s", "abc"), std::string("abc\0#", 5));
  EXPECT_EQ(FormatInto(4, "%Iu", kLarge), std::string("429\0#", 5));
}

TEST(FormatTest, RejectedArgumentsLeaveTheFormat) {
  const wchar_t notACharacter[] = {static_cast<wchar_t>(0xD800), 0};
  EXPECT_EQ(FED_MESSAGE("wide %ls", notACharacter), "wide %ls");
  EXPECT_EQ(FormatInto(5, "wide %ls", notACharacter), std::string("wide\0#", 6));
}

}  // namespace
