#include "FED_Failure.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "FailingAllocation.h"
#include "FailureMatcher.h"

namespace {

using namespace qelta::test;

const std::string kId = "123456789012";
const std::string kLocation = "|%P|Module|Class";

// Counts its objects, so that a cause destroyed twice or never shows.
class CountedCause : public FED_Exception {
 public:
  inline static int s_Alive = 0;

  CountedCause() : FED_Exception("2", "the inner text", "|%P|Inner|Cause") { ++s_Alive; }
  CountedCause(const CountedCause& other) : FED_Exception(other) { ++s_Alive; }
  CountedCause& operator=(const CountedCause&) = default;
  ~CountedCause() override { --s_Alive; }

  FED_Exception* Clone() const override { return new CountedCause(*this); }
  std::string GetTypeName() const override { return "CountedCause"; }
  std::int32_t GetStatusCode() const override { return -7; }
};

struct CauseAccess : FED_Exception {
  static const FED_Exception* Of(const FED_Exception& exception) {
    return (exception.*&CauseAccess::GetCause)();
  }
};

FED_Failure MakeWithCause(const std::string& message = "outer") {
  return FED_Failure(CountedCause(), kId, message, kLocation);
}

void ExpectTexts(const FED_Exception& exception, const std::string& id, const std::string& text) {
  EXPECT_EQ(exception.GetMessageId(), id);
  EXPECT_EQ(exception.GetLocation(), kLocation);
  EXPECT_EQ(exception.GetMessageText(), text);
  EXPECT_EQ(exception.what(), text);
  EXPECT_EQ(exception.GetTypeName(), "FED_Failure");
  EXPECT_EQ(exception.GetStatusCode(), id.empty() ? -14 : -1);
}

TEST(Failure, StatusDependsOnTheMessageIdAlone) {
  ExpectTexts(FED_Failure(kId, "text", kLocation), kId, "text");
  ExpectTexts(FED_Failure("text", kLocation), "", "text");
  ExpectTexts(MakeWithCause("text"), kId, "text");
  ExpectTexts(FED_Failure(CountedCause(), "", "text", kLocation), "", "text");
  const auto raise = [] { FED_Failure::Throw("", kLocation.c_str(), "%s", "why"); };
  ExpectTexts(CatchFailure(raise), "", "why");
  EXPECT_THROW(raise(), FED_Exception);
  EXPECT_THROW(raise(), std::exception);
}

TEST(Failure, MessageIsFormattedAndCutAfter1023Characters) {
  const auto expectThrown = [](const std::string& text, const char* format, auto... arguments) {
    ExpectTexts(CatchFailure([&] {
                  FED_Failure::Throw(kId.c_str(), kLocation.c_str(), format, arguments...);
                }),
                kId, text);
  };
  expectThrown("100%s %d%n", "%s", "100%s %d%n");
  expectThrown("a -3%\n b", "a %d%%\n %s", -3, "b");
  expectThrown("8589934592 of 18446744073709551615", "%Iu of %Iu", std::uint64_t{1} << 33,
               ~std::uint64_t{0});
  for (const std::size_t length : {0u, 1022u, 1023u, 1024u, 5000u}) {
    const std::string text(length, 'x');
    expectThrown(text.substr(0, 1023), "%s", text.c_str());
  }
}

TEST(Failure, CloneAndOriginalOutliveEachOther) {
  auto original = std::make_unique<FED_Failure>(MakeWithCause());
  std::unique_ptr<FED_Exception> clone(original->Clone());
  std::unique_ptr<FED_Exception> second(clone->Clone());
  EXPECT_EQ(CountedCause::s_Alive, 3);
  original.reset();
  ExpectTexts(*clone, kId, "outer");
  clone.reset();
  ExpectTexts(*second, kId, "outer");
  ASSERT_NE(CauseAccess::Of(*second), nullptr);
  EXPECT_EQ(CauseAccess::Of(*second)->GetMessageText(), "the inner text");
  EXPECT_EQ(CauseAccess::Of(*second)->GetStatusCode(), -7);
  second.reset();
  EXPECT_EQ(CountedCause::s_Alive, 0);
}

// Each row makes of a failure with a cause another one with so many causes.
TEST(Failure, CopiesOwnTheirCausesOnce) {
  FED_Failure bare("bare", kLocation);
  const std::pair<std::function<FED_Failure(FED_Failure)>, int> rows[] = {
      {[](const FED_Failure& f) { return FED_Failure(f); }, 1},
      {[](FED_Failure f) { return f = static_cast<const FED_Failure&>(f); }, 1},
      {[](const FED_Failure& f) { return MakeWithCause("other") = f; }, 1},
      {[&](const FED_Failure& f) { return FED_Failure(bare) = f; }, 1},
      {[&](FED_Failure f) { return f = bare; }, 0},
      {[](const FED_Failure& f) { return CatchFailure([&] { throw f; }); }, 1},
  };
  for (const auto& [act, causes] : rows) {
    {
      const FED_Failure result = act(MakeWithCause());
      EXPECT_EQ(CountedCause::s_Alive, causes);
      EXPECT_EQ(CauseAccess::Of(result) != nullptr, causes == 1);
      EXPECT_EQ(result.GetMessageText(), causes == 1 ? "outer" : "bare");
    }
    EXPECT_EQ(CountedCause::s_Alive, 0);
  }
}

TEST(Failure, NoCauseIsLostWhenMemoryIsShort) {
  {
    const std::string text(100, 'm');
    const FED_Failure original = MakeWithCause(text);
    FED_Failure target = MakeWithCause();
    const std::function<void()> actions[] = {
        [&] { FED_Failure copy(original); },
        [&] { std::unique_ptr<FED_Exception> clone(original.Clone()); },
        [&] { target = original; }};
    for (const auto& action : actions) {
      const auto check = [] { EXPECT_EQ(CountedCause::s_Alive, 2); };
      EXPECT_GT(ForEachFailingAllocation(action, check), 0u);
    }
    ExpectTexts(target, kId, text);
  }
  EXPECT_EQ(CountedCause::s_Alive, 0);
}

}  // namespace
