#include "Hdf5RecordIds.h"

#include <FED_OnfMetaData.h>
#include <QeltaBulkAccess.h>
#include <QeltaComponents.h>

#include <algorithm>
#include <cstdint>

#include "Hdf5Names.h"

namespace qelta {
namespace {

constexpr std::size_t kMostRuns = std::size_t{1} << 19;  // remembered: 4 MiB
constexpr const char* kNames[] = {hdf5::kIndex, hdf5::kId, hdf5::kName};

// Calls visit(index) for every record.
template <class Runs, class Visit>
void ForEachIndex(const Runs& runs, Visit visit) {
  for (const auto& [first, last] : runs) {
    for (std::int64_t index = first; index <= last; ++index) visit(index);
  }
}

template <class Runs, class Test>
bool AllOf(const Runs& runs, Test test) {
  return std::all_of(runs.begin(), runs.end(), [&test](const auto& run) {
    std::int64_t index = run.first;
    while (index <= run.second && test(index)) ++index;
    return index > run.second;
  });
}

std::string PathOf(hid_t group) {
  std::string path(static_cast<std::size_t>(CheckHdf5(H5Iget_name(group, nullptr, 0))), '\0');
  CheckHdf5(H5Iget_name(group, path.data(), path.size() + 1));
  return path;
}

}  // namespace

std::size_t Hdf5RecordIds::Write(hid_t group, const FED_DataBlock& block,
                                 const Hdf5Layout& layout) {
  FED_IntSetIntvl<int> present;
  QeltaBulkAccess::PresentRuns(block, present);
  Sharers sharers{RecordIdTypeOf(block), {}};
  for (const auto& run : present) sharers.second.emplace_back(run.lo, run.hi);
  const auto found = m_Written.find(sharers);
  if (found != m_Written.end()) {
    Link(found->second, group);
  } else {
    WriteIndices(group, sharers.second, layout);
    if (sharers.first != ID_TYPE_RECORD_INDEX) {
      const FED_IdMap& map = m_Maps.GetMap(sharers.first);
      WriteIds(group, map, sharers.second, layout);
      if (FED_ID_TYPE_INFO[sharers.first].named != 0) {
        WriteNames(group, map, sharers.second, layout);
      }
    }
    m_RunCount += sharers.second.size() + 1;
    m_Written.emplace(std::move(sharers), PathOf(group));
    if (m_RunCount > kMostRuns) {
      m_Written.clear();
      m_RunCount = 0;
    }
  }
  return static_cast<std::size_t>(present.Size());
}

void Hdf5RecordIds::Link(const std::string& from, hid_t group) const {
  const Hdf5Handle source(H5Gopen2(m_File, from.c_str(), H5P_DEFAULT));
  for (const char* const name : kNames) {
    if (!HasLink(source, name)) continue;
    CheckHdf5(H5Lcreate_hard(source, name, group, name, H5P_DEFAULT, H5P_DEFAULT));
  }
}

void Hdf5RecordIds::WriteIndices(hid_t group, const Runs& runs, const Hdf5Layout& layout) const {
  Hdf5Column column(group, hdf5::kIndex, H5T_NATIVE_INT32, layout);
  ForEachIndex(runs, [&column](std::int64_t index) {
    const auto value = static_cast<std::int32_t>(index);
    column.Append(&value, 1);
  });
  column.Close();
}

// Only where all records have one: there is no number that means none.
void Hdf5RecordIds::WriteIds(hid_t group, const FED_IdMap& map, const Runs& runs,
                             const Hdf5Layout& layout) const {
  if (!AllOf(runs, [&map](std::int64_t index) { return map.ContainsIndex(index); })) return;
  Hdf5Column column(group, hdf5::kId, H5T_NATIVE_INT32, layout);
  ForEachIndex(runs, [&](std::int64_t index) {
    const std::int32_t id = map.IdOfIndex(index);
    column.Append(&id, 1);
  });
  column.Close();
}

void Hdf5RecordIds::WriteNames(hid_t group, const FED_IdMap& map, const Runs& runs,
                               const Hdf5Layout& layout) const {
  bool hasNul = false;
  std::string name;
  const auto look = [&](std::int64_t index) {
    if (!map.HasNameAt(index)) return false;
    map.NameOfIndex(index, name);
    hasNul = hasNul || name.find('\0') != std::string::npos;
    return true;
  };
  if (!AllOf(runs, look)) return;
  Hdf5TextColumn column(group, hdf5::kName, hasNul, layout);
  ForEachIndex(runs, [&](std::int64_t index) {
    map.NameOfIndex(index, name);
    column.Append(name);
  });
  column.Close();
}

}  // namespace qelta
