#pragma once

#include <QeltaBlockListing.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qelta {

/// All blocks of a source that have one kind, label and format.
struct KindRow {
  int onf;  ///< 0: custom
  std::string kind;
  std::string label;  ///< empty: none
  std::string format;
  std::uint64_t blocks;
  std::uint64_t records;
};

/// In the order of the kinds' numbers, and of their first blocks.
std::vector<KindRow> GroupByKind(const std::vector<QeltaBlockInfo>& blocks);

}  // namespace qelta
