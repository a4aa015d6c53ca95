#pragma once

#include <FED_DataDescriptor.h>
#include <FED_OnfCategoryId.h>
#include <FED_OnfId.h>

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

/// Changes of keys, each given as "FIELD=VALUE", or "FIELD=!" to leave the field out.
class QeltaKeyChanges {
 public:
  QeltaKeyChanges() = default;
  explicit QeltaKeyChanges(const std::vector<std::string>& texts);

  bool IsEmpty() const { return m_Values.EqualTo({}) && m_Removed.empty(); }
  void ApplyTo(FED_DataDescriptor& key) const;

  /// The keys as they become, in their order; fails when two of them become one.
  std::vector<FED_DataDescriptor> ApplyToAll(const std::vector<FED_DataDescriptor>& keys) const;

 private:
  FED_DataDescriptor m_Values;
  std::vector<FED_DataDescriptor::ResultIndex> m_Removed;
};

}  // namespace qelta
