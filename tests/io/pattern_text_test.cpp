#include <FED_MemoryDatabase.h>
#include <QeltaFieldText.h>
#include <gtest/gtest.h>

#include "FailureMatcher.h"
#include "QeltaPatternText.h"

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;
using Keys = std::vector<Key>;

// A grid of keys with holes, so that every condition selects some and leaves some.
Keys MakeKeys() {
  Keys keys;
  for (int i = 0; i < 240; ++i) {
    Key key(i % 5 == 0 ? ONF_NODAL_STRESS : i % 5 == 1 ? ONF_ELEMENT_STRESS : ONF_DISPLACEMENT);
    if (i % 7 != 0) key.SetInteger(Key::ITERATION, i / 12);
    if (i % 3 != 0) key.SetInteger(Key::LOADCASE, 1 + i % 4);
    if (i % 11 != 0) key.SetInteger(Key::STATE, i % 13);
    if (i % 6 != 0)
      key.SetString(Key::LABEL, i % 2 == 0 ? "STRESS" : i % 9 == 0 ? "a, 'b'" : "DISP");
    keys.push_back(key);
  }
  return keys;
}

template <class Test>
Keys Where(const Keys& keys, Test test) {
  Keys found;
  std::copy_if(keys.begin(), keys.end(), std::back_inserter(found), test);
  return found;
}

bool Is(const Key& key, Key::ResultIndex field, int low, int high) {
  return key.Has(field) && low <= key.GetInteger(field) && key.GetInteger(field) <= high;
}

bool IsText(const Key& key, const std::string& text) {
  return key.Has(Key::LABEL) && key.GetString(Key::LABEL) == text;
}

// No other key that is left, of the same LOADCASE if `grouped`, has a higher one.
Keys Highest(const Keys& keys, Key::ResultIndex field, bool grouped) {
  return Where(keys, [&](const Key& key) {
    return key.Has(field) && std::none_of(keys.begin(), keys.end(), [&](const Key& other) {
             const bool isAlike = other.Has(Key::LOADCASE) == key.Has(Key::LOADCASE) &&
                                  (!key.Has(Key::LOADCASE) || other.GetInteger(Key::LOADCASE) ==
                                                                  key.GetInteger(Key::LOADCASE));
             return other.Has(field) && (!grouped || isAlike) &&
                    other.GetInteger(field) > key.GetInteger(field);
           });
  });
}

struct Case {
  const char* text;
  bool (*test)(const Key&);
};

TEST(PatternText, TestsOneKeyAlone) {
  const Case cases[] = {
      {"STATE=2", [](const Key& k) { return Is(k, Key::STATE, 2, 2); }},
      {" state = 2 ", [](const Key& k) { return Is(k, Key::STATE, 2, 2); }},
      {"ITERATION=10..12", [](const Key& k) { return Is(k, Key::ITERATION, 10, 12); }},
      {"ITERATION=10..", [](const Key& k) { return Is(k, Key::ITERATION, 10, 99); }},
      {"ITERATION=..10", [](const Key& k) { return Is(k, Key::ITERATION, -1, 10); }},
      {"STATE=1,3,8..9",
       [](const Key& k) {
         return Is(k, Key::STATE, 1, 1) || Is(k, Key::STATE, 3, 3) || Is(k, Key::STATE, 8, 9);
       }},
      {"STATE=?", [](const Key& k) { return k.Has(Key::STATE); }},
      {"STATE=!", [](const Key& k) { return !k.Has(Key::STATE); }},
      {"LABEL=!", [](const Key& k) { return !k.Has(Key::LABEL); }},
      {"LABEL=DISP", [](const Key& k) { return IsText(k, "DISP"); }},
      {"LABEL=STRESS,FORC", [](const Key& k) { return IsText(k, "STRESS"); }},
      {"LABEL='a, ''b'''", [](const Key& k) { return IsText(k, "a, 'b'"); }},
      {"LABEL='?'", [](const Key&) { return false; }},
      {"LABEL~'STR*'", [](const Key& k) { return IsText(k, "STRESS"); }},
      {"LABEL~*S?", [](const Key& k) { return IsText(k, "DISP") || IsText(k, "STRESS"); }},
      {"LABEL~D*P,a*", [](const Key& k) { return IsText(k, "DISP") || IsText(k, "a, 'b'"); }},
      {"LABEL~*", [](const Key& k) { return k.Has(Key::LABEL); }},
      {"onf=Displacement", [](const Key& k) { return Is(k, Key::ONF, 101, 101); }},
      {"ONF=101,element_stress", [](const Key& k) { return !Is(k, Key::ONF, 107, 107); }},
      {"ONF=@nodal", [](const Key& k) { return Is(k, Key::ONF, 100, 199); }},
      {"ONF=@nodal,@element", [](const Key&) { return true; }},
      {"ONF=..displacement", [](const Key& k) { return Is(k, Key::ONF, 0, 101); }},
      {"ONF=-1..150", [](const Key& k) { return Is(k, Key::ONF, 0, 150); }},
      {"STATE=2..9; STATE=5..; LABEL=DISP",
       [](const Key& k) { return Is(k, Key::STATE, 5, 9) && IsText(k, "DISP"); }},
      {"STATE=5; STATE=6", [](const Key&) { return false; }}};
  const Keys keys = MakeKeys();
  for (const Case& one : cases) {
    const QeltaPatternText pattern({one.text});
    EXPECT_EQ(pattern.Select(keys), Where(keys, one.test)) << one.text;
    EXPECT_EQ(Where(keys, [&](const Key& key) { return pattern.Accepts(key); }),
              Where(keys, one.test))
        << one.text;
    EXPECT_FALSE(pattern.HasExtremes());
  }
}

TEST(PatternText, ExtremesLookAtWhatIsLeft) {
  const Keys keys = MakeKeys();
  const Keys stresses = Where(keys, [](const Key& key) { return IsText(key, "STRESS"); });
  const auto select = [&keys](std::vector<std::string> texts) {
    return QeltaPatternText(texts).Select(keys);
  };
  EXPECT_EQ(select({"ITERATION=MAX", "LABEL=STRESS"}), Highest(stresses, Key::ITERATION, false));
  EXPECT_EQ(select({"LABEL=STRESS", "STATE=max/loadcase"}), Highest(stresses, Key::STATE, true));
  EXPECT_EQ(select({"STATE=max", "ITERATION=max"}),
            Highest(Highest(keys, Key::STATE, false), Key::ITERATION, false));
  EXPECT_EQ(select({"ITERATION=max; STATE=max/LOADCASE"}),
            Highest(Highest(keys, Key::ITERATION, false), Key::STATE, true));
  EXPECT_EQ(select({"STATE=min"}), select({"STATE=0"}));
  EXPECT_EQ(select({"STATE=3..5", "STATE=max"}), select({"STATE=5"}));
  EXPECT_TRUE(select({"LAYER=max"}).empty());
  EXPECT_TRUE(QeltaPatternText({"STATE=max/LOADCASE"}).HasExtremes());
}

TEST(PatternText, CountsCharactersNotBytes) {
  const std::pair<const char*, bool> rows[] = {
      {"Verdr?ngung", true}, {"Verdr??ngung", false}, {"*?*ngung", true},      {"?erdr*", true},
      {"Verdr\xC3*", true},  {"V*??????????", true},  {"V*???????????", false}};
  Key key;
  key.SetString(Key::LABEL, "Verdr\xC3\xA4ngung");
  for (const auto& [glob, isLike] : rows) {
    EXPECT_EQ(QeltaPatternText({std::string("LABEL~") + glob}).Accepts(key), isLike) << glob;
  }
}

TEST(PatternText, SelectsFromADatabase) {
  FED_MemoryDatabase database;
  database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
  for (const Key& key : MakeKeys()) database.FetchDataBlock(key, std::size_t{0});
  const Keys all = database.FindBlocks({});
  for (const char* text : {"LABEL=DISP; ITERATION=max/LOADCASE", "STATE=1..3", "ONF=@nodal"}) {
    EXPECT_EQ(QeltaPatternText({text}).Select(database), QeltaPatternText({text}).Select(all));
  }
  EXPECT_EQ(QeltaPatternText().Select(database), all);
}

TEST(PatternText, SaysWhatIsWrong) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "the form is FIELD=VALUE"},
      {"LABEL", "the form is FIELD=VALUE"},
      {"LABEL=x; STATE", "the form is FIELD=VALUE"},
      {"LABL=x", "no field 'LABL'. Did you mean LABEL?"},
      {"ZZZZZZ=x", "Known are ITERATION, ONF"},
      {"=x", "no field ''"},
      {"LABEL='x", "A quote is not closed"},
      {"LABEL='x'y", "behind a closing quote"},
      {"STATE~1*", "holds a number, which ~ cannot test"},
      {"STATE=max/LABL", "Did you mean LABEL?"},
      {"ONF=displacment", "no block kind 'displacment'. Did you mean DISPLACEMENT?"},
      {"ONF=strss", "Did you mean NODAL_STRESS?"},
      {"ONF=9999", "no block kind '9999'"},
      {"ONF=@nodel", "no category 'nodel'. Did you mean nodal?"},
      {"LAYER=4", "LAYER takes values from 1 to 3, not 4"},
      {"LAYER=..0", "LAYER takes values from 1 to 3, not 0"},
      {"LAYER=1,,2", "LAYER takes an integer, not ''"},
      {"STATE=1x", "STATE takes an integer, not '1x'"},
      {"STATE=..", "STATE=? asks for any value"},
      {"STATE=99999999999", "STATE takes an integer"},
      {"STATE=3..2", "The range STATE=3..2 is empty"},
      {"LABEL=", "write LABEL=''"},
      {"LABEL~", "write LABEL~''"},
      {"LABEL=max", "write LABEL='max'"},
      {"LABEL=min/STATE", "write LABEL='min/STATE'"},
      {"LABEL=D..E", "write LABEL='D..E'"},
      {"LABEL=?,DISP", "write LABEL='?'"}};
  for (const auto& [text, message] : rows) {
    const FED_Failure failure = CatchFailure([&text = text] { QeltaPatternText({text}); });
    EXPECT_NE(failure.GetMessageText().find(message), std::string::npos) << failure.what();
  }
}

TEST(KeyChanges, SetAndRemoveFields) {
  Key key(ONF_DISPLACEMENT);
  key.SetInteger(Key::STATE, 3);
  QeltaKeyChanges({"iteration=12", "LABEL=a=b", "STATE=!", "ONF=velocity"}).ApplyTo(key);
  EXPECT_EQ(key.ToString(), "ITERATION=12/ONF=102/LABEL=a=b");
  EXPECT_TRUE(QeltaKeyChanges().IsEmpty());
  QeltaKeyChanges({"LABEL= 'it''s !' ", "STATE='4'"}).ApplyTo(key);
  EXPECT_EQ(key.GetString(Key::LABEL), "it's !");
  EXPECT_EQ(key.GetInteger(Key::STATE), 4);
  QeltaKeyChanges({"LABEL='!'"}).ApplyTo(key);
  EXPECT_EQ(key.GetString(Key::LABEL), "!");
  for (const char* text :
       {"STATE", "LAYER=4", "LABL=x", "LABEL=", "LABEL='x", "LABEL='x'y", "STATE='!'"}) {
    CatchFailure([text] { QeltaKeyChanges({text}); });
  }
}

}  // namespace
}  // namespace qelta::test
