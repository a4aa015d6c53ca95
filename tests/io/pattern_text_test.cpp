#include <gtest/gtest.h>

#include "FailureMatcher.h"
#include "QeltaPatternText.h"

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;

struct Case {
  const char* text;
  void (*set)(Pattern&);
};

class PatternText : public testing::TestWithParam<Case> {};

TEST_P(PatternText, IsRead) {
  Pattern expected;
  GetParam().set(expected);
  EXPECT_EQ(ParsePatternTexts({GetParam().text}).ToString(), expected.ToString());
}

INSTANTIATE_TEST_SUITE_P(
    Forms, PatternText,
    testing::Values(
        Case{"LAYER=2", [](Pattern& p) { p.SetMatchExact(Key::LAYER, 2); }},
        Case{"iteration=-1", [](Pattern& p) { p.SetMatchExact(Key::ITERATION, -1); }},
        Case{"STATE=5..", [](Pattern& p) { p.SetMatchGreaterEqual(Key::STATE, 5); }},
        Case{"STATE=..9", [](Pattern& p) { p.SetMatchLessEqual(Key::STATE, 9); }},
        Case{"ANALYSIS=-3..", [](Pattern& p) { p.SetMatchGreaterEqual(Key::ANALYSIS, -3); }},
        Case{"Increment=MAX", [](Pattern& p) { p.SetMatchHighest(Key::INCREMENT); }},
        Case{"INCREMENT=min", [](Pattern& p) { p.SetMatchLowest(Key::INCREMENT); }},
        Case{"LAYER=?", [](Pattern& p) { p.SetMatchIfPresent(Key::LAYER, true); }},
        Case{"LABEL=!", [](Pattern& p) { p.SetMatchIfPresent(Key::LABEL, false); }},
        Case{"LABEL=a=b max", [](Pattern& p) { p.SetMatchExact(Key::LABEL, "a=b max"); }},
        Case{"OBJECTIVE_ID=max", [](Pattern& p) { p.SetMatchExact(Key::OBJECTIVE_ID, "max"); }},
        Case{"ONF=displacement", [](Pattern& p) { p.SetMatchExact(Key::ONF, ONF_DISPLACEMENT); }},
        Case{"onf=107..", [](Pattern& p) { p.SetMatchGreaterEqual(Key::ONF, 107); }},
        Case{"ONF=..200", [](Pattern& p) { p.SetMatchLessEqual(Key::ONF, 200); }},
        Case{"ONF=-1..", [](Pattern& p) { p.SetMatchGreaterEqual(Key::ONF, -1); }},
        Case{"ONF=..displacement",
             [](Pattern& p) { p.SetMatchLessEqual(Key::ONF, ONF_DISPLACEMENT); }},
        Case{"ONF=@Nodal", [](Pattern& p) { p.SetMatchCategory(ONF_CATEGORY_NODAL); }}));

TEST(PatternTexts, MustAllHold) {
  Pattern expected;
  expected.SetMatchExact(Key::LABEL, "DISP");
  expected.SetMatchHighest(Key::INCREMENT);
  EXPECT_EQ(ParsePatternTexts({"LABEL=DISP", "INCREMENT=max"}), expected);
  EXPECT_EQ(ParsePatternTexts({}), Pattern());
}

TEST(PatternTexts, SayWhatIsWrongWithThem) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"LABEL"}, "the form is FIELD=VALUE"},
      {{"LABL=x"}, "no field 'LABL'. Did you mean LABEL?"},
      {{"ZZZZZZ=x"}, "Known are ITERATION, ONF"},
      {{"=x"}, "no field ''"},
      {{"ONF=displacment"}, "no block kind 'displacment'. Did you mean DISPLACEMENT?"},
      {{"ONF=strss"}, "Did you mean NODAL_STRESS?"},
      {{"ONF=9999"}, "no block kind '9999'"},
      {{"ONF=200"}, "no block kind '200'"},
      {{"ONF=.."}, "no block kind ''"},
      {{"ONF=@nodel"}, "no category 'nodel'. Did you mean nodal?"},
      {{"LAYER=4"}, "LAYER takes values from 1 to 3, not 4"},
      {{"LAYER=..0"}, "LAYER takes values from 1 to 3, not 0"},
      {{"LAYER="}, "LAYER takes an integer, not ''"},
      {{"STATE=1x"}, "STATE takes an integer, not '1x'"},
      {{"STATE=.."}, "STATE takes an integer, not ''"},
      {{"STATE=99999999999"}, "STATE takes an integer"},
      {{"STATE=1..2"}, "two bounds"},
      {{"STATE=1", "state=2"}, "STATE is selected twice"}};
  for (const auto& [texts, message] : rows) {
    const FED_Failure failure = CatchFailure([&texts = texts] { ParsePatternTexts(texts); });
    EXPECT_NE(failure.GetMessageText().find(message), std::string::npos) << failure.what();
  }
}

}  // namespace
}  // namespace qelta::test
