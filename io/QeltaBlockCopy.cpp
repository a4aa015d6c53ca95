#include "QeltaBlockCopy.h"

#include <FED_Failure.h>
#include <FED_MemoryIdMap.h>
#include <RecordCursor.h>

#include "QeltaComponents.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

constexpr const char* kLocation = "|%P|QeltaIo|QeltaBlockCopy";

std::string NameAt(const FED_IdMap& map, std::int64_t index) {
  std::string name;
  if (map.HasNameAt(index)) map.NameOfIndex(index, name);
  return name;
}

// Gives an empty map what another one has, at the same indices if it can.
void CopyMap(const FED_IdMap& from, FED_IdMap& to) {
  auto* const exact = dynamic_cast<FED_MemoryIdMap*>(&to);
  for (std::int64_t index = 0; index <= from.GetMaxIndex(); ++index) {
    if (!from.ContainsIndex(index)) continue;
    const std::string name = NameAt(from, index);
    if (exact != nullptr) {
      exact->Add(index, from.IdOfIndex(index), name);
    } else if (name.empty()) {
      to.IndexOfIdForWrite(from.IdOfIndex(index));
    } else {
      to.IndexOfNameForWrite(name);
    }
  }
}

// The index that the entity at an index of one map has in the other.
std::size_t Translate(const FED_IdMap& from, FED_IdMap& to, std::size_t index) {
  const auto place = static_cast<std::int64_t>(index);
  if (!from.ContainsIndex(place)) return index;
  const std::string name = NameAt(from, place);
  return static_cast<std::size_t>(name.empty() ? to.IndexOfIdForWrite(from.IdOfIndex(place))
                                               : to.IndexOfNameForWrite(name));
}

bool IsCustom(const Key& key) { return !key.Has(Key::ONF); }

}  // namespace

QeltaBlockCopy::QeltaBlockCopy(const FED_Database& source, FED_Database& target,
                               const std::vector<Key>& keys, const QeltaKeyChanges& changes,
                               QeltaConflict conflict)
    : m_Source(source), m_Target(target) {
  const std::vector<Key> changedKeys = changes.ApplyToAll(keys);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const Key& changed = changedKeys[i];
    const bool isThere = target.HasBlock(changed);
    if (isThere && conflict == QeltaConflict::Fail) {
      FED_Failure::Throw(kConflictId, kLocation,
                         "The target has a block %s already; skip or replace such blocks.",
                         changed.ToString().c_str());
    }
    if (isThere && conflict == QeltaConflict::Skip) {
      ++m_Skipped;
    } else {
      m_Replaced += isThere ? 1 : 0;
      m_Jobs.emplace_back(keys[i], changed.Duplicate());
    }
  }
}

void QeltaBlockCopy::CopyIds() {
  for (int i = ID_TYPE_NODE; i < ID_TYPE_RECORD_INDEX; ++i) {
    const auto type = static_cast<FED_IdType>(i);
    FED_IdMap& target = m_Target.GetIdMapsPool().GetMap(type);
    if (target.GetMaxIndex() < 0) CopyMap(m_Source.GetIdMapsPool().GetMap(type), target);
  }
}

void QeltaBlockCopy::CopyBlock(std::size_t job) {
  const QeltaDatabaseUtils::CopyJob& one = m_Jobs[job];
  const FED_DataBlock& from = m_Source.GetDataBlock(one.first);
  if (m_Target.HasBlock(one.second)) m_Target.DeleteDataBlock(one.second);
  const FED_IdType type = RecordIdTypeOf(from);
  if (IsCustom(one.first) && IsCustom(one.second) && type != ID_TYPE_RECORD_INDEX) {
    CopyById(one, from, type);
  } else {
    QeltaDatabaseUtils::copy_datablocks(m_Source, m_Target, {one},
                                        QeltaDatabaseUtils::COPY_EMPTY_BLOCKS);
  }
}

void QeltaBlockCopy::CopyById(const QeltaDatabaseUtils::CopyJob& job, const FED_DataBlock& from,
                              FED_IdType type) {
  const FED_IdMap& fromMap = m_Source.GetIdMapsPool().GetMap(type);
  FED_IdMap& toMap = m_Target.GetIdMapsPool().GetMap(type);
  FED_DataBlock& to =
      m_Target.FetchDataBlock(job.second, from.GetProperties(),
                              static_cast<std::int64_t>(from.GetNumRecords()), from.GetFormat());
  const RecordReader record(from);
  const RecordWriter copy(to);
  for (const std::size_t index : from) {
    from.GetRecord(index, *record);
    *copy = *record;
    to.SetRecord(Translate(fromMap, toMap, index), *copy);
  }
}

}  // namespace qelta
