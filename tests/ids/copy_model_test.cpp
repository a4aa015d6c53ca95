// Copies at random between two databases that number everything differently, forth and back,
// against what is to be expected in terms of ids and names: the records of the source over those of
// the target, and nothing else changes.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "CopyFixture.h"
#include "FED_OnfInfoPool.h"

namespace {

using namespace qelta::test;
using namespace QeltaDatabaseUtils;
using Contents = std::map<std::string, Content>;

constexpr const char* kFormats[] = {"I|dV", "S|IiSLOD", "IITT", "I"};

// Of every kind, and of some formats.
std::vector<FED_DataDescriptor> AllKeys() {
  std::vector<FED_DataDescriptor> keys;
  for (const FED_OnfId onf : FED_OnfInfoPool::GetAllOnfIds()) keys.emplace_back(1, onf);
  for (const char* format : kFormats) keys.push_back(LabelKey(format));
  return keys;
}

// A database that knows some of 40 entities of each type, at places of its own.
class Site {
 public:
  Site(FED_Database& database, std::mt19937& random) : m_Database(database), m_Random(random) {
    for (int type = 0; type < 15; ++type) KnowSome(static_cast<FED_IdType>(type));
    for (int index = 0; index < 40; ++index) m_Indices[ID_TYPE_RECORD_INDEX].push_back(index);
  }

  FED_Database& Database() { return m_Database; }

  void WriteSomething(const FED_DataDescriptor& key) {
    FED_DataBlock& block = Fetch(key.Duplicate());
    const auto refer = [this](FED_IdType type) {
      return m_Indices[type][m_Random() % m_Indices[type].size()];
    };
    FillRecord(block, static_cast<std::size_t>(refer(block.GetPrimaryIdType())), refer);
  }

  Contents Describe() const {
    Contents contents;
    for (const FED_DataDescriptor& key : m_Database.FindBlocks({})) {
      contents[key.ToString()] =
          ExternalContent(m_Database.GetDataBlock(key), m_Database.GetIdMapsPool());
    }
    return contents;
  }

 private:
  void KnowSome(FED_IdType type) {
    auto& map = dynamic_cast<FED_MemoryIdMap&>(m_Database.GetIdMapsPool().GetMap(type));
    std::vector<int> places(100);
    for (int i = 0; i < 100; ++i) places[static_cast<std::size_t>(i)] = i;
    std::shuffle(places.begin(), places.end(), m_Random);
    for (int entity = 0; entity < 40; ++entity) {
      if (m_Random() % 3 == 0) continue;
      map.Add(places.back(), 1000 + 7 * entity, "E" + std::to_string(entity));
      m_Indices[type].push_back(places.back());
      places.pop_back();
    }
  }
  FED_DataBlock& Fetch(const FED_DataDescriptor& key) {
    if (key.Has(FED_DataDescriptor::ONF)) return m_Database.FetchDataBlock(key, 0);
    return m_Database.FetchDataBlock(key, 0, 0, key.GetString(FED_DataDescriptor::LABEL));
  }

  FED_Database& m_Database;
  std::mt19937& m_Random;
  std::map<FED_IdType, std::vector<int>> m_Indices;
};

class CopyModel : public CopyFixture {};
INSTANTIATE_TEST_SUITE_P(Storages, CopyModel, testing::ValuesIn(kStoragePairs), StoragePairName);

TEST_P(CopyModel, RandomHistory) {
  std::mt19937 random(20261122);
  Site sites[] = {{Source(), random}, {Target(), random}};
  const std::vector<FED_DataDescriptor> keys = AllKeys();
  for (int round = 0; round < 60; ++round) {
    for (int i = 0; i < 60; ++i) sites[random() % 2].WriteSomething(keys[random() % keys.size()]);
    Site& from = sites[round % 2];
    Site& to = sites[1 - round % 2];
    FED_DataDescriptorPattern pattern;  // every third time everything, else one kind
    const FED_DataDescriptor& key = keys[random() % keys.size()];
    if (round % 3 > 0 && key.Has(FED_DataDescriptor::ONF)) {
      pattern.SetMatchExact(FED_DataDescriptor::ONF, key.GetInteger(FED_DataDescriptor::ONF));
    }
    const Contents source = from.Describe();
    Contents expected = to.Describe();
    std::uint64_t count = 0;
    for (const FED_DataDescriptor& found : from.Database().FindBlocks(pattern)) {
      const std::string name = found.ToString();
      for (const auto& [id, record] : source.at(name)) expected[name][id] = record;
      ++count;
    }
    EXPECT_EQ(copy_datablocks(from.Database(), to.Database(), pattern, SKIP_EMPTY_BLOCKS), count);
    ASSERT_TRUE(to.Describe() == expected) << "round " << round;
    ASSERT_TRUE(from.Describe() == source) << "round " << round;
  }
}

}  // namespace
