#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "FED_DataBlock.h"
#include "FED_IdMapsPool.h"
#include "FED_RecordRuns.h"

namespace qelta {

/// Copies runs of records from one block to another, for pairs of blocks where that gives the same
/// as record by record: both offer runs, and their fields are alike and nothing but their bytes.
class RunCopy {
 public:
  /// No pair: nothing can be copied.
  RunCopy() = default;

  /// Records keep their index.
  RunCopy(const FED_DataBlock& from, FED_DataBlock& to);

  /// Records of catalogued kinds go where their id is in the target.
  RunCopy(const FED_DataBlock& from, const FED_IdMapsPool& fromMaps, FED_DataBlock& to,
          FED_IdMapsPool& toMaps);

  /// Records that can be copied at a time; 0 when this is no such pair.
  std::size_t GetLongest() const { return m_Longest; }

  /// False when something failed. Then the same records are to be copied one by one, up to the one
  /// that fails; some may have arrived, and ids may have been registered ahead of their records.
  bool TryCopy(std::size_t first, std::size_t count);

 private:
  bool FindMaps(const FED_DataBlock& from, const FED_IdMapsPool& fromMaps, const FED_DataBlock& to,
                FED_IdMapsPool& toMaps);
  std::size_t CopySome(std::size_t first, std::size_t count);
  void ReadIds(std::size_t first, std::size_t count);
  void WriteByIds(std::size_t count, const unsigned char* records);

  const FED_RecordRuns* m_From = nullptr;
  FED_RecordRuns* m_To = nullptr;
  const FED_IdMap* m_FromMap = nullptr;  // null: records keep their index
  FED_IdMap* m_ToMap = nullptr;
  bool m_RegistersIds = false;
  std::size_t m_RecordSize = 0;
  std::size_t m_Longest = 0;
  std::vector<unsigned char> m_Records;
  std::vector<std::int32_t> m_Ids;
  std::vector<std::size_t> m_Targets;
};

/// How many of indices[0 .. count - 1], of which there are some, count up from the first.
std::size_t CountConsecutive(const std::size_t* indices, std::size_t count);

}  // namespace qelta
