#pragma once

#include <FED_DataBlock.h>
#include <FED_IdMapsPool.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Hdf5Column.h"
#include "Hdf5Handle.h"

namespace qelta {

/// Writes which records the blocks of a file have: the datasets `index`, `id` and `name`. Blocks
/// with the same records share them by hard links.
class Hdf5RecordIds {
 public:
  /// File and maps must outlive this object.
  Hdf5RecordIds(hid_t file, const FED_IdMapsPool& maps) : m_File(file), m_Maps(maps) {}

  /// Returns the number of records.
  std::size_t Write(hid_t group, const FED_DataBlock& block, const Hdf5Layout& layout);

 private:
  using Runs = std::vector<std::pair<int, int>>;
  using Sharers = std::pair<FED_IdType, Runs>;

  void Link(const std::string& from, hid_t group) const;
  void WriteIndices(hid_t group, const Runs& runs, const Hdf5Layout& layout) const;
  void WriteIds(hid_t group, const FED_IdMap& map, const Runs& runs,
                const Hdf5Layout& layout) const;
  void WriteNames(hid_t group, const FED_IdMap& map, const Runs& runs,
                  const Hdf5Layout& layout) const;

  hid_t m_File;
  const FED_IdMapsPool& m_Maps;
  std::map<Sharers, std::string> m_Written;  // the path of a group that has the datasets
  std::size_t m_RunCount = 0;                // in m_Written
};

}  // namespace qelta
