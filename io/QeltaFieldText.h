#pragma once

#include <FED_DataDescriptor.h>
#include <FED_OnfCategoryId.h>
#include <FED_OnfId.h>

#include <cstddef>
#include <string>
#include <vector>

namespace qelta {

// Names and values of descriptor fields as people write them. Upper and lower case of names do not
// matter. A text that is none is a failure that says what was perhaps meant.

FED_DataDescriptor::ResultIndex ParseFieldName(const std::string& name);

/// A kind of the catalogue, by number or name.
FED_OnfId ParseKind(const std::string& text);

/// The numbers of a category of kinds, by its name.
struct QeltaKindRange {
  FED_OnfCategoryId category;
  int first;
  int last;
};
QeltaKindRange ParseCategory(const std::string& name);

/// A valid value of an integer field; for ONF also the name of a kind.
int ParseFieldValue(FED_DataDescriptor::ResultIndex field, const std::string& text);

/// The same as the bound of a range: for ONF any number.
int ParseFieldBound(FED_DataDescriptor::ResultIndex field, const std::string& text);

/// Takes a text in single quotes, in which a quote is doubled. `begin` stands behind the first one,
/// and behind the last one afterwards.
std::string TakeQuoted(const std::string& text, std::size_t& begin);

/// Changes of keys, each given as "FIELD=VALUE", or "FIELD=!" to leave the field out. A value in
/// quotes is never anything but a text.
class QeltaKeyChanges {
 public:
  QeltaKeyChanges() = default;
  explicit QeltaKeyChanges(const std::vector<std::string>& texts);

  bool IsEmpty() const { return m_Values.EqualTo({}) && m_Removed.empty(); }
  void ApplyTo(FED_DataDescriptor& key) const;

  /// The message id of the failure of ApplyToAll.
  static constexpr const char* kCollisionId = "310000000603";

  /// The keys as they become, in their order; fails when two of them become one.
  std::vector<FED_DataDescriptor> ApplyToAll(const std::vector<FED_DataDescriptor>& keys) const;

 private:
  FED_DataDescriptor m_Values;
  std::vector<FED_DataDescriptor::ResultIndex> m_Removed;
};

}  // namespace qelta
