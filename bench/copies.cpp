#include <FED_DataBlock.h>
#include <FED_RecordRuns.h>
#include <QeltaDatabaseUtils.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

#include "BenchDatabase.h"
#include "Families.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kVectors = 1000000;

// Records of an integer and two tensors.
constexpr const char* kFormat = "IITT";
constexpr std::size_t kRecords = 200000;
constexpr std::size_t kRecordBytes = 100;

using Ids = std::vector<std::int32_t>;

// Two databases, a full block in the first, and one of the same key in the second.
class CopyPair {
 public:
  FED_Database& GetSource() { return m_Source; }
  FED_Database& GetTarget() { return m_Target; }

  void NumberNodes(const Ids& source, const Ids& target) {
    Number(m_Source, source);
    Number(m_Target, target);
  }

  // Makes the target's records, too: what a copy costs is not what memory costs at first use.
  void Fill(const FED_DataDescriptor& key, const char* format, std::size_t count) {
    FED_DataBlock& from = Create(m_Source, key, format);
    FED_DataBlock& to = Create(m_Target, key, format);
    const std::vector<unsigned char> bytes(count * from.GetRecordSize(), 1);
    dynamic_cast<FED_RecordRuns&>(from).WriteRun(0, count, bytes.data());
    dynamic_cast<FED_RecordRuns&>(to).WriteRun(0, count, bytes.data());
  }

 private:
  static void Number(FED_Database& database, const Ids& ids) {
    FED_IdMap& nodes = database.GetIdMapsPool().GetMap(ID_TYPE_NODE);
    for (const std::int32_t id : ids) nodes.IndexOfIdForWrite(id);
  }
  static FED_DataBlock& Create(FED_Database& database, const FED_DataDescriptor& key,
                               const char* format) {
    return format == nullptr ? database.CreateDataBlock(key, 0)
                             : database.CreateDataBlock(key, 0, 0, format);
  }

  BenchDatabase m_Source;
  BenchDatabase m_Target;
};

Ids Ascending() {
  Ids ids(kVectors);
  std::iota(ids.begin(), ids.end(), 1);
  return ids;
}

Ids Reversed() {
  Ids ids = Ascending();
  std::reverse(ids.begin(), ids.end());
  return ids;
}

// Every tenth id is missing.
Ids WithGaps() {
  Ids ids = Ascending();
  for (std::int32_t& id : ids) id += id / 9;
  return ids;
}

// The same ids, but the parts of the mesh come in another order.
Ids WithGapsInParts() {
  Ids ids = WithGaps();
  std::rotate(ids.begin(), ids.begin() + kVectors / 3, ids.end());
  return ids;
}

Ids Shuffled() {
  Ids ids = Ascending();
  std::shuffle(ids.begin(), ids.end(), std::mt19937(1));
  return ids;
}

Body CopyById(Ids (*source)(), Ids (*target)()) {
  return [=](benchmark::State& state) {
    CopyPair pair;
    pair.NumberNodes(source(), target());
    pair.Fill(FED_DataDescriptor(0, ONF_DISPLACEMENT), nullptr, kVectors);
    MeasureItems(state, kVectors, [&] {
      QeltaDatabaseUtils::copy_datablocks(pair.GetSource(), pair.GetTarget(),
                                          FED_DataDescriptorPattern(),
                                          QeltaDatabaseUtils::SKIP_EMPTY_BLOCKS);
    });
  };
}

template <class Place>
void CopyVectors(benchmark::State& state, Place place) {
  CopyPair pair;
  const FED_DataDescriptor key(0, ONF_DISPLACEMENT);
  pair.Fill(key, nullptr, kVectors);
  const FED_DataBlock& from = pair.GetSource().GetDataBlock(key);
  FED_DataBlock& to = pair.GetTarget().GetDataBlock(key);
  FED_ConstDataRecord& reader = from.CreateDataRecord();
  FED_DataRecord& writer = to.CreateDataRecord();
  MeasureItems(state, kVectors, [&] {
    for (const std::size_t index : from) {
      from.GetRecord(index, reader);
      writer = reader;
      to.SetRecord(place(index), writer);
    }
  });
  from.DeleteDataRecord(reader);
  to.DeleteDataRecord(writer);
}

void CopyVectorsByIndex(benchmark::State& state) {
  CopyVectors(state, [](std::size_t index) { return index; });
}

void ScatterVectorsByIndex(benchmark::State& state) {
  const Ids places = Shuffled();
  CopyVectors(state,
              [&](std::size_t index) { return static_cast<std::size_t>(places[index] - 1); });
}

void CopyCustomBlock(benchmark::State& state) {
  CopyPair pair;
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, "custom");
  pair.Fill(key, kFormat, kRecords);
  MeasureBytes(state, kRecords * kRecordBytes, [&] {
    QeltaDatabaseUtils::copy_datablocks(pair.GetSource(), pair.GetTarget(),
                                        FED_DataDescriptorPattern(),
                                        QeltaDatabaseUtils::SKIP_EMPTY_BLOCKS);
  });
}

void CopyBytes(benchmark::State& state) {
  const std::vector<unsigned char> source(kRecords * kRecordBytes, 1);
  std::vector<unsigned char> target(source.size(), 2);
  MeasureBytes(state, source.size(), [&] {
    std::memcpy(target.data(), source.data(), source.size());
    benchmark::ClobberMemory();
  });
}

}  // namespace

void AddCopies(Suite& suite) {
  const Peer byIndex{"by index, one by one", CopyVectorsByIndex, 4};
  suite.Add("copies/by id, same numbering", CopyById(Ascending, Ascending), {byIndex});
  suite.Add("copies/by id, reversed", CopyById(Ascending, Reversed), {byIndex});
  suite.Add("copies/by id, parts with gaps", CopyById(WithGaps, WithGapsInParts), {byIndex});
  suite.Add("copies/by id, shuffled", CopyById(Shuffled, Ascending),
            {{"by index, shuffled", ScatterVectorsByIndex, 4}});
  suite.Add("copies/custom 100 B", CopyCustomBlock, {{"memcpy", CopyBytes, 1.5}});
}

}  // namespace qelta::bench
