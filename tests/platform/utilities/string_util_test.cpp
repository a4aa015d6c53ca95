#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "QeltaStringUtil.h"
#include "QeltaSysUtil.h"
#include "ScopedEnvironment.h"

namespace {

TEST(StringUtilTest, FillsFortranTexts) {
  struct Row {
    std::string text;
    std::int64_t length;
    const char* buffer;  // '#' marks what must stay untouched
    bool whole;
  };
  const Row rows[] = {
      {"abc", 5, "abc  ###", true},
      {"abc", 3, "abc#####", true},
      {"abc", 2, "ab######", false},
      {"abc", 0, "########", false},
      {"abc", -1, "########", false},
      {"", 4, "    ####", true},
      {"", 0, "########", true},
      {"", -5, "########", true},
      {"abc", std::numeric_limits<std::int64_t>::min(), "########", false},
      {std::string("a\0b", 3), 4, nullptr, true},
  };
  for (const Row& row : rows) {
    std::string buffer(8, '#');
    const bool whole = QeltaStringUtil::copy_to_fstr_trunc(row.text.data(), row.text.size(),
                                                           buffer.data(), row.length);
    EXPECT_EQ(whole, row.whole) << row.text << " in " << row.length;
    EXPECT_EQ(buffer, row.buffer != nullptr ? row.buffer : std::string("a\0b ####", 8));
  }
}

TEST(StringUtilTest, MissingBuffersAndTextsAreHarmless) {
  char buffer[] = "####";
  EXPECT_TRUE(QeltaStringUtil::copy_to_fstr_trunc(nullptr, 0, buffer, 4));
  EXPECT_STREQ(buffer, "    ");
  EXPECT_FALSE(QeltaStringUtil::copy_to_fstr_trunc("abc", 3, nullptr, 4));
}

TEST(StringUtilTest, ReadsIntegers) {
  const std::pair<const char*, int> good[] = {
      {"0", 0},
      {"42", 42},
      {"-42", -42},
      {"+42", 42},
      {" 42 ", 42},
      {"\t\n\v\f\r7\r", 7},
      {"0007", 7},
      {"-0", 0},
      {"2147483647", std::numeric_limits<int>::max()},
      {"-2147483648", std::numeric_limits<int>::min()},
  };
  for (const auto& [text, expected] : good) {
    int number = 99;
    EXPECT_EQ(QeltaStringUtil::ToInt(text, number), STATUS_OK) << text;
    EXPECT_EQ(number, expected) << text;
  }
}

TEST(StringUtilTest, RefusesEverythingElse) {
  const std::pair<FedStatusCode, std::vector<std::string>> rows[] = {
      {STATUS_NO_NUMBER,
       {"", "  ", "+", "-", "+-5", "--5", "++5", "5x", "x5", "4 2", "- 5", "0x10", "1.0", "1e3",
        "1'000", "\xa0\x35", "2147483648x", std::string("5\0", 2)}},
      {STATUS_OUT_OF_RANGE, {"2147483648", "-2147483649", "99999999999999999999999"}},
  };
  for (const auto& [status, texts] : rows) {
    for (const std::string& text : texts) {
      int number = 99;
      EXPECT_EQ(QeltaStringUtil::ToInt(text, number), status) << text;
      EXPECT_EQ(number, 99) << text;
    }
  }
}

TEST(StringUtilTest, TrimsBlanksOnly) {
  EXPECT_EQ(QeltaStringUtil::Trim(" \t\n\v\f\r a b \r"), "a b");
  EXPECT_EQ(QeltaStringUtil::Trim("\xa0x\x85"), "\xa0x\x85");
  EXPECT_EQ(QeltaStringUtil::Trim(std::string(" \0 ", 3)), std::string("\0", 1));
  EXPECT_EQ(QeltaStringUtil::Trim(" \n"), "");
}

TEST(StringUtilTest, WidensUtf8InAnyLocale) {
  const std::pair<const char*, std::wstring> good[] = {
      {"", L""},
      {"plain\x7F", L"plain\x7F"},
      {"\xC2\x80\xDF\xBF", L"\u0080\u07FF"},
      {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\u0800\uD7FF\uE000\uFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},
  };
  for (const auto& [text, expected] : good) {
    std::wstring wide = L"former";
    EXPECT_TRUE(QeltaStringUtil::ToWide(text, wide)) << text;
    EXPECT_EQ(wide, expected) << text;
    std::string back = "former";
    EXPECT_TRUE(QeltaStringUtil::ToUtf8(wide, back));
    EXPECT_EQ(back, text);
  }
  for (const std::wstring& wide :
       {std::wstring(1, wchar_t(0xD800)), L"a" + std::wstring(1, wchar_t(0xDC00))}) {
    std::string back = "former";
    EXPECT_FALSE(QeltaStringUtil::ToUtf8(wide, back));
    EXPECT_EQ(back, "former");
  }
  const char* const bad[] = {
      "\x80",         "a\xFF",        "\xC0\x80",         "\xC1\xBF",         "\xC3",
      "\xC3\xC3",     "\xE0\x9F\xBF", "\xED\xA0\x80",     "\xE2\x82",         "\xE2\x82z",
      "\xF0\x8F\xBF", "\xF0\x9F\x9A", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF0\x8F\xBF\xBF",
  };
  for (const char* const text : bad) {
    std::wstring wide = L"former";
    EXPECT_FALSE(QeltaStringUtil::ToWide(text, wide)) << text;
    EXPECT_EQ(wide, L"former");
  }
}

TEST(SysUtilTest, ReadsTheEnvironment) {
  {
    const qelta::test::ScopedEnvironment set("qelta_test_variable", "  64 MB\t");
    EXPECT_EQ(QeltaSysUtil::get_env_var("qelta_test_variable", "d", true), "64 MB");
    EXPECT_EQ(QeltaSysUtil::get_env_var("qelta_test_variable", "d", false), "  64 MB\t");
  }
  EXPECT_EQ(QeltaSysUtil::get_env_var("qelta_test_variable", " d ", true), " d ");
}

}  // namespace
