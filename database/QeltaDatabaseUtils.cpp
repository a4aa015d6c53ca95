#include "QeltaDatabaseUtils.h"

#include "FED_ConstIdDataBlock.h"
#include "FED_Failure.h"
#include "FED_IdDataBlock.h"
#include "FED_OnfMetaData.h"
#include "RecordCursor.h"

namespace QeltaDatabaseUtils {
namespace {

void RequireInitialized(const FED_Database& database, const char* message) {
  if (database.IsInitialized()) return;
  FED_Failure::Throw("", "|%P|QeltaDbConnector|QeltaDatabaseUtils", "%s", message);
}

template <class Indices>
void CopyByIndex(const FED_DataBlock& from, FED_DataBlock& to, const Indices& indices) {
  const qelta::RecordReader reader(from);
  const qelta::RecordWriter writer(to);
  for (const std::size_t index : indices) {
    from.GetRecord(index, *reader);
    *writer = *reader;
    to.SetRecord(index, *writer);
  }
}

using IdReader = qelta::ScopedCursor<const FED_ConstIdDataBlock, FED_ConstIdDataRecord>;
using IdWriter = qelta::ScopedCursor<FED_IdDataBlock, FED_IdDataRecord>;

// keyOf gives the id or the name of the record at an index.
template <class Indices, class KeyOf>
void CopyByKey(const FED_ConstIdDataBlock& from, FED_IdDataBlock& to, const Indices& indices,
               KeyOf keyOf) {
  const IdReader reader(from);
  const IdWriter writer(to);
  for (const std::size_t index : indices) {
    const auto key = keyOf(index);
    from.GetRecord(key, *reader);
    *writer = *reader;
    to.SetRecord(key, *writer);
  }
}

template <class Indices>
void CopyThroughMaps(const FED_DataBlock& from, const FED_IdMapsPool& fromMaps, FED_DataBlock& to,
                     FED_IdMapsPool& toMaps, const Indices& indices) {
  const FED_ConstIdDataBlock readView(from, fromMaps);
  FED_IdDataBlock writeView(to, toMaps, false);
  if (FED_ID_TYPE_INFO[from.GetPrimaryIdType()].named == 1) {
    CopyByKey(readView, writeView, indices,
              [&](std::size_t index) { return readView.GetName(index); });
  } else {
    CopyByKey(readView, writeView, indices,
              [&](std::size_t index) { return readView.GetId(index); });
  }
}

template <class Indices>
void CopyBlock(const FED_Database& source, FED_Database& target, const CopyJob& job,
               const Indices& indices) {
  const FED_DataBlock& from = source.GetDataBlock(job.first);
  if (from.GetDescriptor().Has(FED_DataDescriptor::ONF)) {
    FED_DataBlock& to = target.FetchDataBlock(job.second, std::size_t{0});
    CopyThroughMaps(from, source.GetIdMapsPool(), to, target.GetIdMapsPool(), indices);
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
