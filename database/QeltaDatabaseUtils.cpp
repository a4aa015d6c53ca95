#include "QeltaDatabaseUtils.h"

#include <algorithm>

#include "FED_ConstIdDataBlock.h"
#include "FED_Failure.h"
#include "FED_IdDataBlock.h"
#include "FED_OnfMetaData.h"
#include "RecordCursor.h"
#include "RunCopy.h"

namespace QeltaDatabaseUtils {
namespace {

void RequireInitialized(const FED_Database& database, const char* message) {
  if (database.IsInitialized()) return;
  FED_Failure::Throw("", "|%P|QeltaDbConnector|QeltaDatabaseUtils", "%s", message);
}

bool OffersRuns(const FED_DataBlock& indices, const FED_DataBlock& to) {
  // The target's own indices may change while they are walked.
  return &indices != &to && dynamic_cast<const FED_RecordRuns*>(&indices) != nullptr;
}

bool OffersRuns(const std::vector<std::size_t>&, const FED_DataBlock&) { return true; }

// Calls use(first, count) for the runs of a selection, in order, `longest` indices at a time.
template <class Use>
void ForEachRun(const FED_DataBlock& indices, std::size_t longest, Use use) {
  for (const auto& run : indices.GetRecordIndices()) {
    const std::size_t end = static_cast<std::size_t>(run.hi) + 1;
    for (std::size_t first = static_cast<std::size_t>(run.lo); first < end; first += longest) {
      use(first, std::min(longest, end - first));
    }
  }
}

template <class Use>
void ForEachRun(const std::vector<std::size_t>& indices, std::size_t longest, Use use) {
  for (std::size_t i = 0; i < indices.size();) {
    const std::size_t most = std::min(longest, indices.size() - i);
    const std::size_t count = qelta::CountConsecutive(&indices[i], most);
    use(indices[i], count);
    i += count;
  }
}

template <class Indices, class CopyOne>
void CopyAll(const Indices& indices, const FED_DataBlock& to, qelta::RunCopy runs,
             CopyOne copyOne) {
  if (runs.GetLongest() == 0 || !OffersRuns(indices, to)) {
    for (const std::size_t index : indices) copyOne(index);
    return;
  }
  ForEachRun(indices, runs.GetLongest(), [&](std::size_t first, std::size_t count) {
    if (runs.TryCopy(first, count)) return;
    for (std::size_t i = 0; i < count; ++i) copyOne(first + i);
  });
}

template <class Indices>
void CopyByIndex(const FED_DataBlock& from, FED_DataBlock& to, const Indices& indices) {
  const qelta::RecordReader reader(from);
  const qelta::RecordWriter writer(to);
  CopyAll(indices, to, qelta::RunCopy(from, to), [&](std::size_t index) {
    from.GetRecord(index, *reader);
    *writer = *reader;
    to.SetRecord(index, *writer);
  });
}

using IdReader = qelta::ScopedCursor<const FED_ConstIdDataBlock, FED_ConstIdDataRecord>;
using IdWriter = qelta::ScopedCursor<FED_IdDataBlock, FED_IdDataRecord>;

// keyOf gives the id or the name of the record at an index.
template <class Indices, class KeyOf>
void CopyByKey(const FED_ConstIdDataBlock& from, FED_IdDataBlock& to, const Indices& indices,
               const qelta::RunCopy& runs, KeyOf keyOf) {
  const IdReader reader(from);
  const IdWriter writer(to);
  CopyAll(indices, to.GetDataBlock(), runs, [&](std::size_t index) {
    const auto key = keyOf(index);
    from.GetRecord(key, *reader);
    *writer = *reader;
    to.SetRecord(key, *writer);
  });
}

template <class Indices>
void CopyThroughMaps(const FED_DataBlock& from, const FED_Database& source, FED_Database& target,
                     const FED_DataDescriptor& key, const Indices& indices) {
  const FED_ConstIdDataBlock readView(from, source.GetIdMapsPool());
  FED_DataBlock& to = target.FetchDataBlock(key, std::size_t{0});
  FED_IdDataBlock writeView(to, target.GetIdMapsPool(), false);
  if (FED_ID_TYPE_INFO[from.GetPrimaryIdType()].named == 1) {
    CopyByKey(readView, writeView, indices, qelta::RunCopy(),
              [&](std::size_t index) { return readView.GetName(index); });
  } else {
    CopyByKey(readView, writeView, indices,
              qelta::RunCopy(from, source.GetIdMapsPool(), to, target.GetIdMapsPool()),
              [&](std::size_t index) { return readView.GetId(index); });
  }
}

template <class Indices>
void CopyBlock(const FED_Database& source, FED_Database& target, const CopyJob& job,
               const Indices& indices) {
  const FED_DataBlock& from = source.GetDataBlock(job.first);
  if (from.GetDescriptor().Has(FED_DataDescriptor::ONF)) {
    CopyThroughMaps(from, source, target, job.second, indices);
    return;
  }
  FED_DataBlock& to =
      target.FetchDataBlock(job.second, from.GetProperties(),
                            static_cast<std::int64_t>(from.GetNumRecords()), from.GetFormat());
  CopyByIndex(from, to, indices);
}

}  // namespace

std::uint64_t copy_datablocks(const FED_Database& source, FED_Database& target,
                              const FED_DataDescriptorPattern& pattern, EmptyBlockAction action) {
  std::vector<CopyJob> jobs;
  for (const FED_DataDescriptor& descriptor : source.FindBlocks(pattern)) {
    jobs.emplace_back(descriptor, descriptor.Duplicate());
  }
  return copy_datablocks(source, target, jobs, action);
}

std::uint64_t copy_datablocks(const FED_Database& source, FED_Database& target,
                              const std::vector<CopyJob>& jobs, EmptyBlockAction action) {
  RequireInitialized(source, "Source database is not initialized.");
  RequireInitialized(target, "Target database is not initialized.");
  std::uint64_t copied = 0;
  for (const CopyJob& job : jobs) {
    const FED_DataBlock& block = source.GetDataBlock(job.first);
    if (block.GetNumRecords() == 0 && action == SKIP_EMPTY_BLOCKS) continue;
    copy_datablock(source, target, job, block);
    ++copied;
  }
  return copied;
}

void copy_datablock(const FED_Database& source, FED_Database& target, const CopyJob& job,
                    const FED_DataBlock& indices) {
  CopyBlock(source, target, job, indices);
}

void copy_datablock(const FED_Database& source, FED_Database& target, const CopyJob& job,
                    const std::vector<std::size_t>& indices) {
  CopyBlock(source, target, job, indices);
}

}  // namespace QeltaDatabaseUtils
