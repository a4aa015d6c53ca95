#pragma once

#include <FED_DataBlock.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace qelta {

/// The records of a block counted without gaps: position 0 is the one with the lowest index.
/// Memory for the runs of consecutive indices. Does not follow later changes of the block.
class QeltaPositions {
 public:
  /// No records.
  QeltaPositions() = default;

  explicit QeltaPositions(const FED_DataBlock& block);

  std::size_t GetCount() const { return m_Count; }

  /// Where the record of an index stands; nothing when there is none. Logarithmic in the runs.
  std::optional<std::size_t> Find(std::size_t index) const;

  /// The index of the record at a position below GetCount.
  std::size_t IndexAt(std::size_t position) const;

 private:
  struct Run {
    std::size_t index;
    std::size_t position;
    std::size_t count;
  };
  std::vector<Run> m_Runs;
  std::size_t m_Count = 0;
};

}  // namespace qelta
