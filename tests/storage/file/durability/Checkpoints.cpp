#include "Checkpoints.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "BlockContents.h"
#include "FED_RecordRuns.h"
#include "QeltaStringUtil.h"

namespace qelta::test {
namespace {

// The blocks are of these kinds in turn.
struct Kind {
  const char* format;
  std::uint64_t records;
  std::uint64_t stride;  // between their indices
  bool hasContents;      // strings and lists
};
constexpr Kind kKinds[] = {
    {"I|SLd", 30, 577, true}, {"I|dV", 20000, 1, false}, {"I|dI", 40, 70001, false}};
constexpr std::uint64_t kBlocks = 6;
constexpr std::size_t kRecordSize = 32;  // of the largest

const Kind& KindOf(std::uint64_t block) { return kKinds[block % 3]; }

std::uint64_t Mix(std::uint64_t a, std::uint64_t b, std::uint64_t c = 0) {
  std::uint64_t bits = a * 0x9e3779b97f4a7c15 + b * 0xbf58476d1ce4e5b9 + c * 0x94d049bb133111eb;
  for (int i = 0; i < 2; ++i) bits = (bits ^ (bits >> 31)) * 0xd6e8feb86659fd93;
  return bits ^ (bits >> 32);
}

bool Touches(std::uint64_t save, std::uint64_t block) {
  return save == 1 || Mix(save, block) % 3 == 0;
}
bool Deletes(std::uint64_t save, std::uint64_t block) {
  return save > 1 && Mix(save, block) % 6 == 0;
}

struct Run {
  std::uint64_t first;
  std::uint64_t count;
};

// The records that a save writes.
Run RunOf(std::uint64_t save, std::uint64_t block) {
  const std::uint64_t records = KindOf(block).records;
  const std::uint64_t first = Mix(save, block, 1) % records;
  return {first, 1 + Mix(save, block, 2) % (records - first)};
}

// The saves that made the block what it is after save `number`, the first one made it; none when it
// is not there.
std::vector<std::uint64_t> SavesOf(std::uint64_t number, std::uint64_t block) {
  std::vector<std::uint64_t> saves;
  for (std::uint64_t save = number; save > 0 && !Deletes(save, block); --save) {
    if (Touches(save, block)) saves.push_back(save);
  }
  std::reverse(saves.begin(), saves.end());
  return saves;
}

FED_DataDescriptor NumberKey() { return CustomKey(1000); }
FED_DataDescriptor KeyOf(std::uint64_t block) { return CustomKey(static_cast<int>(block)); }
FED_DataDescriptor NameOf(std::uint64_t block, std::uint64_t birth) {
  return LabelKey("block " + std::to_string(block) + " of " + std::to_string(birth));
}

std::string TextOf(std::uint64_t seed) {
  return std::string(seed % 50 == 0 ? 9000 : seed % 40, static_cast<char>(seed >> 40));
}
std::vector<int> ListOf(std::uint64_t seed) {
  return std::vector<int>(seed % 30, static_cast<int>(seed));
}

// A record of a block, as a save writes it.
struct Record {
  std::uint64_t save;
  std::uint64_t block;
  std::uint64_t number;

  std::uint64_t GetIndex() const { return number * KindOf(block).stride; }
  std::uint64_t GetSeed() const { return Mix(save, block, 100 + number); }

  void Fill(unsigned char* bytes, std::size_t size) const {
    for (std::size_t at = 0; at < size; at += 4) {
      const std::uint64_t word = Mix(GetSeed(), at);
      std::memcpy(bytes + at, &word, 4);
    }
  }

  void Fill(FED_DataRecord& cursor) const {
    cursor.SetString(1, TextOf(GetSeed()));
    cursor.SetIntList(2, ListOf(GetSeed()));
    cursor.SetDouble(3, static_cast<double>(GetSeed()));
  }

  bool IsIn(const FED_DataBlock& in) const {
    unsigned char expected[kRecordSize], found[kRecordSize];
    Fill(expected, in.GetRecordSize());
    dynamic_cast<const FED_RecordRuns&>(in).ReadRun(GetIndex(), 1, found);
    return std::memcmp(expected, found, in.GetRecordSize()) == 0;
  }

  bool IsIn(const FED_DataBlock& in, FED_ConstDataRecord& cursor) const {
    in.GetRecord(GetIndex(), cursor);
    FED_IntArray list;
    cursor.GetIntList(2, list);
    return cursor.GetString(1) == TextOf(GetSeed()) &&
           std::vector<int>(list.data, list.data + list.count) == ListOf(GetSeed()) &&
           cursor.GetDouble(3) == static_cast<double>(GetSeed());
  }
};

void WriteRecords(FED_DataBlock& block, std::uint64_t save, std::uint64_t number) {
  const auto [first, count] = RunOf(save, number);
  const std::size_t size = block.GetRecordSize();
  const std::size_t perWrite = KindOf(number).stride == 1 ? count : 1;
  const Cursor cursor(block);
  Bytes run(size * perWrite);
  for (std::uint64_t i = 0; i < count; ++i) {
    const Record record{save, number, first + i};
    if (KindOf(number).hasContents) {
      record.Fill(*cursor);
      block.SetRecord(record.GetIndex(), *cursor);
      continue;
    }
    record.Fill(&run[i % perWrite * size], size);
    if ((i + 1) % perWrite != 0) continue;
    const std::uint64_t begin = record.GetIndex() + 1 - perWrite;
    dynamic_cast<FED_RecordRuns&>(block).WriteRun(begin, perWrite, run.data());
  }
}

void ChangeBlock(FED_Database& database, std::uint64_t save, std::uint64_t number) {
  const FED_DataDescriptor key = KeyOf(number);
  if (Deletes(save, number)) return database.DeleteDataBlock(key);
  const std::uint64_t birth = SavesOf(save, number).front();
  FED_DataBlock& block =
      database.FetchDataBlock(key, static_cast<int>(birth), 0, KindOf(number).format);
  FED_DataDescriptor name = NameOf(number, birth);
  if (!database.HasBlock(name)) database.CreateDataBlockAlias(key, name);
  WriteRecords(block, save, number);
}

std::string FindDifferenceOfRecords(const FED_DataBlock& block, std::uint64_t number,
                                    const std::vector<std::uint64_t>& saves) {
  std::vector<std::uint64_t> last(KindOf(number).records);  // the save that wrote a record
  for (const std::uint64_t save : saves) {
    const auto [first, count] = RunOf(save, number);
    std::fill_n(last.begin() + static_cast<std::ptrdiff_t>(first), count, save);
  }
  std::vector<std::uint64_t> found;
  block.GetRecordIndices(found);
  std::size_t records = 0;
  const Cursor cursor(block);
  for (std::uint64_t i = 0; i < last.size(); ++i) {
    const Record record{last[i], number, i};
    if (block.HasRecord(record.GetIndex()) != (last[i] > 0)) return "has other records";
    if (last[i] == 0) continue;
    ++records;
    const bool isThere =
        KindOf(number).hasContents ? record.IsIn(block, *cursor) : record.IsIn(block);
    if (!isThere) return "holds something else in record " + std::to_string(i);
  }
  return records == found.size() ? "" : "has more records";
}

std::string FindDifferenceOfBlock(FED_Database& database, std::uint64_t number,
                                  const std::vector<std::uint64_t>& saves) {
  const FED_DataDescriptor key = KeyOf(number);
  if (database.HasBlock(key) == saves.empty()) return saves.empty() ? "is there" : "is missing";
  if (saves.empty()) return {};
  const FED_DataDescriptor name = NameOf(number, saves.front());
  const FED_DataBlock& block = database.GetDataBlock(key);
  if (!database.HasBlock(name) || &database.GetDataBlock(name) != &block) return "has no name";
  if (block.GetProperties() != static_cast<int>(saves.front())) return "is an old one";
  return FindDifferenceOfRecords(block, number, saves);
}

// Each save has a node and a material of its own.
std::int32_t NodeOf(std::uint64_t save) { return static_cast<std::int32_t>(save * 3); }
std::string MaterialOf(std::uint64_t save) { return "material " + std::to_string(save); }

bool HoldsIds(const FED_IdMapsPool& pool, std::uint64_t number) {
  const FED_IdMap& nodes = pool.GetMap(ID_TYPE_NODE);
  const FED_IdMap& materials = pool.GetMap(ID_TYPE_MATERIAL);
  const auto end = static_cast<std::int64_t>(number);
  bool holds = nodes.GetMaxIndex() + 1 == end && materials.GetMaxIndex() + 1 == end;
  std::string name;
  for (std::int64_t i = 0; holds && i < end; ++i) {
    const auto save = static_cast<std::uint64_t>(i + 1);
    materials.NameOfIndex(i, name);
    holds = nodes.IdOfIndex(i) == NodeOf(save) && name == MaterialOf(save);
  }
  return holds;
}

}  // namespace

void MakeCheckpoint(FED_Database& database, std::uint64_t number) {
  database.FetchDataBlock(NumberKey(), 0, 0, "I|I").SetInteger(0, static_cast<int>(number));
  for (std::uint64_t block = 0; block < kBlocks; ++block) {
    if (Touches(number, block)) ChangeBlock(database, number, block);
  }
  database.GetIdMapsPool().GetMap(ID_TYPE_NODE).IndexOfIdForWrite(NodeOf(number));
  database.GetIdMapsPool().GetMap(ID_TYPE_MATERIAL).IndexOfNameForWrite(MaterialOf(number));
}

std::uint64_t ReadNumber(const FED_Database& database) {
  const FED_DataDescriptor key = NumberKey();
  if (!database.HasBlock(key)) return 0;
  return static_cast<std::uint64_t>(database.GetDataBlock(key).GetInteger(0));
}

std::string FindDifference(FED_Database& database, std::uint64_t number) {
  std::ptrdiff_t names = number == 0 ? 0 : 1;
  for (std::uint64_t block = 0; block < kBlocks; ++block) {
    const auto saves = SavesOf(number, block);
    const std::string difference = FindDifferenceOfBlock(database, block, saves);
    if (!difference.empty()) return "block " + std::to_string(block) + ' ' + difference;
    names += saves.empty() ? 0 : 2;
  }
  if (!HoldsIds(database.GetIdMapsPool(), number)) return "there are other ids";
  const Keys keys = database.FindBlocks(FED_DataDescriptorPattern());
  const auto isThere = [&](const FED_DataDescriptor& key) { return database.HasBlock(key); };
  if (std::count_if(keys.begin(), keys.end(), isThere) != names) return "there are other blocks";
  return ReadNumber(database) == number ? "" : "it has another number";
}

std::unique_ptr<FED_FileDatabase> OpenDatabase(FileSystem& files, const std::string& path,
                                               FED_DatabaseDefs::AccessMode mode) {
  auto database = std::make_unique<FED_FileDatabase>(files);
  std::wstring name;
  QeltaStringUtil::ToWide(path, name);
  database->InitDb({}, mode, 1, name);
  return database;
}

std::uint64_t ExpectWhole(FED_FileDatabase& database) {
  const std::uint64_t number = ReadNumber(database);
  EXPECT_EQ(FindDifference(database, number), "") << "save " << number;
  EXPECT_THAT(database.Verify().problems, testing::IsEmpty());
  return number;
}

}  // namespace qelta::test
