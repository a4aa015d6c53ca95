#pragma once

#include <FED_DataDescriptorPattern.h>
#include <FED_Database.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace qelta {

/// Selects blocks by conditions in text form. All conditions must hold; a field may have several.
///
///     LAYER=2          exactly this value       LABEL=DISP         exactly this text
///     STATE=10..20     a range                  LABEL='a, b'       quoted: never anything else
///     STATE=10..       at least (..20 at most)  LABEL=DISP,FORC    one of a list
///     STATE=1,3,8..9   one of a list            LABEL~'STR*'       * any letters, ? any letter
///     LAYER=?          present                  ONF=displacement   a kind by name or number
///     LAYER=!          missing                  ONF=@nodal         any kind of a category
///     INCREMENT=max    the highest (min: the lowest) of all that are left
///     INCREMENT=max/LOADCASE       the same for each value of another field
///
/// First all conditions are tested that look at one key alone, then the extremes one after another
/// in the order in which they were given, each over what the ones before it have left. Blocks
/// without the other field of an extreme are a group of their own.
///
/// Upper and lower case of field names, kinds, categories, `max` and `min` do not matter. Blanks
/// around names and values count only in quotes; a quote in quotes is doubled. Texts have no ranges
/// and no extremes: what looks like one must be quoted, and so must an empty text.
class QeltaPatternText {
 public:
  /// Selects everything.
  QeltaPatternText() : m_Plain(1) {}

  /// Adds all of the texts.
  explicit QeltaPatternText(const std::vector<std::string>& texts);

  /// Adds the conditions of a text, separated by semicolons. A text that is none is a failure that
  /// says what is wrong and what was perhaps meant; the object is then of no further use.
  void Add(const std::string& text);

  /// What is asked of one key alone holds.
  bool Accepts(const FED_DataDescriptor& key) const;

  /// The selection depends on which other keys there are.
  bool HasExtremes() const { return !m_Extremes.empty(); }

  /// The selected keys, in their order.
  std::vector<FED_DataDescriptor> Select(std::vector<FED_DataDescriptor> keys) const;

  /// The keys of the selected blocks, aliases included, in ascending order.
  std::vector<FED_DataDescriptor> Select(const FED_Database& database) const;

 private:
  using Field = FED_DataDescriptor::ResultIndex;
  struct Condition;
  struct Extreme {
    Field field;
    bool isHighest;
    std::optional<Field> group;
  };

  void Add(const Condition& condition);
  void AddNumbers(const Condition& condition);
  static void RequireTexts(const Condition& condition);
  void AddTexts(const Condition& condition);
  bool AddExtreme(const Condition& condition);
  FED_DataDescriptorPattern& PlainFor(Field field);
  std::vector<FED_DataDescriptor> SelectPlain(std::vector<FED_DataDescriptor> keys) const;

  std::vector<FED_DataDescriptorPattern> m_Plain;  // one unless a field has several plain tests
  std::set<Field> m_PlainFields;                   // of the last of them
  std::vector<std::function<bool(const FED_DataDescriptor&)>> m_Tests;
  std::vector<Extreme> m_Extremes;
};

}  // namespace qelta
