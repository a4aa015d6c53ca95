#include "KindRows.h"

#include <FED_OnfMetaData.h>

#include <algorithm>

namespace qelta {
namespace {

KindRow MakeRow(const QeltaBlockInfo& block) {
  const bool hasLabel = block.key.Has(FED_DataDescriptor::LABEL);
  return {block.kind->onfId,
          block.KindName(),
          hasLabel ? block.key.GetString(FED_DataDescriptor::LABEL) : "",
          block.kind->format,
          1,
          block.records};
}

}  // namespace

std::vector<KindRow> GroupByKind(const std::vector<QeltaBlockInfo>& blocks) {
  std::vector<KindRow> rows;
  for (const QeltaBlockInfo& block : blocks) {
    const KindRow row = MakeRow(block);
    const auto known = std::find_if(rows.begin(), rows.end(), [&row](const KindRow& other) {
      return other.kind == row.kind && other.label == row.label && other.format == row.format;
    });
    if (known == rows.end()) {
      rows.push_back(row);
    } else {
      known->blocks += row.blocks;
      known->records += row.records;
    }
  }
  std::stable_sort(rows.begin(), rows.end(),
                   [](const KindRow& a, const KindRow& b) { return a.onf < b.onf; });
  return rows;
}

}  // namespace qelta
