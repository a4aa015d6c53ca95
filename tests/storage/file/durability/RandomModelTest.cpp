// Random operations on two databases, and on maps from names to records.

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "BlockContents.h"
#include "Checkpoints.h"
#include "FED_LogMacros.h"
#include "FED_RecordRuns.h"
#include "LongTests.h"
#include "QeltaDatabaseUtils.h"
#include "TemporaryDirectory.h"
#include "UnsyncedFiles.h"

namespace qelta::test {
namespace {

constexpr int kNames = 10;

struct Record {
  double value = 0;
  std::string text;
  std::vector<int> list;
};
using Block = std::map<std::size_t, Record>;
using Model = std::map<int, std::shared_ptr<Block>>;  // by name

/// A database, a reader of it, and what each should hold.
struct Side {
  std::string path;
  std::unique_ptr<FED_FileDatabase> database, reader;
  Model model, saved, seen;  // now, after the last save, by the reader
};

FED_DataDescriptor KeyOf(int name) {
  return name % 2 == 0 ? CustomKey(name) : LabelKey("name " + std::to_string(name));
}

// Names that share a block go on sharing.
Model Copy(const Model& model) {
  std::map<std::shared_ptr<Block>, std::shared_ptr<Block>> copies;
  Model copy;
  for (const auto& [name, block] : model) {
    auto& other = copies[block];
    if (other == nullptr) other = std::make_shared<Block>(*block);
    copy[name] = other;
  }
  return copy;
}

void ExpectBlock(const FED_DataBlock& block, const Block& expected) {
  std::vector<std::uint64_t> found, wanted;
  for (const auto& entry : expected) wanted.push_back(entry.first);
  block.GetRecordIndices(found);
  ASSERT_EQ(found, wanted);
  const Cursor cursor(block);
  FED_IntArray list;
  for (const auto& [index, record] : expected) {
    block.GetRecord(index, *cursor);
    cursor->GetIntList(3, list);
    ASSERT_EQ(cursor->GetDouble(1), record.value) << index;
    ASSERT_EQ(cursor->GetString(2), record.text) << index;
    ASSERT_EQ(std::vector<int>(list.data, list.data + list.count), record.list) << index;
  }
}

void ExpectModel(FED_FileDatabase& database, const Model& model) {
  std::map<std::shared_ptr<Block>, const FED_DataBlock*> blocks;
  for (int name = 0; name < kNames; ++name) {
    SCOPED_TRACE("name " + std::to_string(name));
    const auto entry = model.find(name);
    ASSERT_EQ(database.HasBlock(KeyOf(name)), entry != model.end());
    if (entry == model.end()) continue;
    const FED_DataBlock& block = database.GetDataBlock(KeyOf(name));
    const auto [known, isNew] = blocks.try_emplace(entry->second, &block);
    ASSERT_EQ(known->second, &block);
    if (isNew) ExpectBlock(block, *entry->second);
  }
}

class RandomModel : public testing::Test {
 protected:
  RandomModel() {
    FED_LogMacros::SetSink([](auto...) {}, nullptr);
  }
  ~RandomModel() override { FED_LogMacros::SetSink(nullptr, nullptr); }

  std::size_t Below(std::size_t end) { return m_Random() % end; }
  int AnyName() { return static_cast<int>(Below(kNames)); }
  double AnyValue() { return static_cast<double>(m_Random()); }

  static void Create(Side& side, int name) {
    if (side.model.count(name) > 0) return;
    side.database->CreateDataBlock(KeyOf(name), 0, 0, "I|dSL");
    side.model[name] = std::make_shared<Block>();
  }

  static void CreateAlias(Side& side, int existing, int name) {
    const bool possible = side.model.count(existing) > 0 && side.model.count(name) == 0;
    FED_DataDescriptor alias = KeyOf(name);
    EXPECT_EQ(side.database->CreateDataBlockAlias(KeyOf(existing), alias), possible);
    if (possible) side.model[name] = side.model[existing];
  }

  static void Delete(Side& side, int name) {
    side.database->DeleteDataBlock(KeyOf(name));
    if (side.model.count(name) == 0) return;
    const auto block = side.model[name];
    for (int other = 0; other < kNames; ++other) {
      if (side.model.count(other) > 0 && side.model[other] == block) side.model.erase(other);
    }
  }

  void Write(Side& side, int name) {
    if (side.model.count(name) == 0) return;
    FED_DataBlock& block = side.database->GetDataBlock(KeyOf(name));
    if (Below(4) == 0) return WriteColumn(block, *side.model[name]);
    const std::size_t first = Below(3) == 0 ? Below(2000000) : Below(100);
    const std::size_t stride = Below(2) == 0 ? 1 : 1 + Below(5000);
    for (std::size_t i = 0; i < 20; ++i) WriteRecord(block, first + i * stride, *side.model[name]);
  }

  void WriteRecord(FED_DataBlock& block, std::size_t index, Block& model) {
    const std::size_t size = Below(200) == 0 ? 300000 : Below(60);
    const Record record = {AnyValue(), std::string(size, static_cast<char>(m_Random())),
                           std::vector<int>(size / 2, static_cast<int>(Below(1000)))};
    const Cursor cursor(block);
    cursor->SetDouble(1, record.value);
    cursor->SetString(2, record.text);
    cursor->SetIntList(3, record.list);
    block.SetRecord(index, *cursor);
    model[index] = record;
  }

  void WriteColumn(FED_DataBlock& block, Block& model) {
    const std::size_t first = Below(4000);
    std::vector<double> values(1 + Below(30000));
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = model[first + i].value = AnyValue();
    }
    dynamic_cast<FED_RecordRuns&>(block).WriteColumn(1, first, values.size(), values.data());
  }

  // What the target holds elsewhere stays.
  static void CopyBlock(Side& from, int source, Side& to, int target) {
    if (from.model.count(source) == 0) return;
    QeltaDatabaseUtils::copy_datablocks(*from.database, *to.database,
                                        {{KeyOf(source), KeyOf(target)}},
                                        QeltaDatabaseUtils::COPY_EMPTY_BLOCKS);
    if (to.model.count(target) == 0) to.model[target] = std::make_shared<Block>();
    const Block records = *from.model[source];
    for (const auto& [index, record] : records) (*to.model[target])[index] = record;
  }

  void Save(Side& side) {
    side.database->Save();
    side.saved = Copy(side.model);
    if (Below(4) == 0) side.database->Compact();
  }

  // A reader stays where it is.
  void Look(Side& side) {
    if (side.reader != nullptr) ExpectModel(*side.reader, side.seen);
    if (Below(3) == 0) return;
    if (side.reader == nullptr || Below(4) == 0) {
      side.reader = OpenDatabase(m_Files, side.path, FED_DatabaseDefs::READ_ONLY);
    } else {
      side.reader->Refresh();
    }
    side.seen = Copy(side.saved);
    ExpectModel(*side.reader, side.seen);
  }

  // What was not saved is gone.
  void Reopen(Side& side) {
    side.database.reset();
    side.database = OpenDatabase(m_Files, side.path, FED_DatabaseDefs::READ_WRITE);
    side.model = Copy(side.saved);
  }

  void Step(Side& side) {
    const std::size_t kind = Below(100);
    if (kind < 20) return Create(side, AnyName());
    if (kind < 28) return CreateAlias(side, AnyName(), AnyName());
    if (kind < 33) return Delete(side, AnyName());
    if (kind < 41) return CopyBlock(side, AnyName(), m_Sides[Below(2)], AnyName());
    if (kind < 49) return Save(side);
    if (kind < 53) return Look(side);
    if (kind < 56) return Reopen(side);
    if (kind < 60) return ExpectModel(*side.database, side.model);
    Write(side, AnyName());
  }

  void Run(std::uint32_t seed) {
    const TemporaryDirectory directory;
    m_Random.seed(seed);
    for (Side& side : m_Sides) {
      side.path = directory / (&side == m_Sides ? "one" : "two");
      side.database = OpenDatabase(m_Files, side.path, FED_DatabaseDefs::CREATE);
    }
    for (int step = 0; step < 120 && !HasFailure(); ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      Step(m_Sides[Below(2)]);
    }
    for (Side& side : m_Sides) {
      ExpectModel(*side.database, side.model);
      side = Side();
    }
  }

  UnsyncedFiles m_Files;
  std::mt19937 m_Random;
  Side m_Sides[2];
};

TEST_F(RandomModel, IsWhatMapsMakeOfIt) {
  const std::size_t seeds = ChooseCount(40, 1000);
  for (std::uint32_t seed = 0; seed < seeds && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Run(seed);
  }
}

}  // namespace
}  // namespace qelta::test
