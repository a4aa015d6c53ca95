#pragma once

#include <FED_Database.h>
#include <QeltaDatabaseUtils.h>

#include <cstddef>
#include <string>
#include <vector>

#include "QeltaFieldText.h"

namespace qelta {

/// What becomes of a block whose key the target has already.
enum class QeltaConflict { Fail, Skip, Replace };

/// What a copy of blocks between two databases is going to do, and then does.
///
/// Records travel by id, or by name where their id type has names, and so do those of custom blocks
/// whose key tells an id type; other custom blocks travel index for index. The target learns the
/// ids and names of the source first where it knows none of a type.
class QeltaBlockCopy {
 public:
  /// The message id of the failure of a plan when the target has a block.
  static constexpr const char* kConflictId = "310000000604";

  /// Plans the copy of the blocks of the given keys. Fails, and nothing is copied, when the target
  /// has one and `conflict` is Fail, or when the changes give two blocks one key. Both databases
  /// must outlive this object.
  QeltaBlockCopy(const FED_Database& source, FED_Database& target,
                 const std::vector<FED_DataDescriptor>& keys, const QeltaKeyChanges& changes,
                 QeltaConflict conflict);

  /// The blocks to copy, in order.
  const std::vector<QeltaDatabaseUtils::CopyJob>& GetJobs() const { return m_Jobs; }
  std::size_t GetSkippedCount() const { return m_Skipped; }
  std::size_t GetReplacedCount() const { return m_Replaced; }

  /// To be called before the first block is copied.
  void CopyIds();
  /// Copies the block of a job; one that stands in its place is deleted.
  void CopyBlock(std::size_t job);

 private:
  void CopyById(const QeltaDatabaseUtils::CopyJob& job, const FED_DataBlock& from, FED_IdType type);

  const FED_Database& m_Source;
  FED_Database& m_Target;
  std::vector<QeltaDatabaseUtils::CopyJob> m_Jobs;
  std::size_t m_Skipped = 0;
  std::size_t m_Replaced = 0;
};

}  // namespace qelta
