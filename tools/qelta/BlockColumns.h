#pragma once

#include <QeltaBlockListing.h>

#include <string>
#include <vector>

#include "RowOutput.h"

namespace qelta {

/// A column of a list of blocks: a field of the key, or what else is known about a block.
class BlockColumn {
 public:
  /// By name in any case; fails as a wrong command line does.
  static BlockColumn Parse(const std::string& option, const std::string& name);

  /// All fields of a key.
  static std::vector<BlockColumn> Fields();

  /// Kind, the fields that some block specifies, and records.
  static std::vector<BlockColumn> DefaultsFor(const std::vector<QeltaBlockInfo>& blocks,
                                              bool isLong);

  OutputColumn GetTitle() const;
  OutputCell CellOf(const QeltaBlockInfo& block) const;
  /// The same for people: bytes in units, long formats counted.
  OutputCell ShortCellOf(const QeltaBlockInfo& block) const;

 private:
  struct Property;
  static const Property kProperties[];

  explicit BlockColumn(FED_DataDescriptor::ResultIndex field) : m_Field(field) {}
  explicit BlockColumn(const Property* property) : m_Property(property) {}

  const Property* m_Property = nullptr;
  FED_DataDescriptor::ResultIndex m_Field = FED_DataDescriptor::ITERATION;
  bool m_IsDispensable = false;
};

/// Four equal characters of a record format and more are counted: "I|60d".
std::string ShortFormat(const std::string& format);

}  // namespace qelta
