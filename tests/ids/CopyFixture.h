#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "FED_ConstIdDataBlock.h"
#include "FED_MemoryDatabase.h"
#include "FED_MemoryIdMap.h"
#include "FakeDatabase.h"
#include "QeltaDatabaseUtils.h"
#include "RecordContent.h"
#include "RecordCursor.h"

namespace qelta::test {

/// Fakes know single records only; blocks in memory offer whole runs of them.
struct StoragePair {
  const char* name;
  bool sourceInMemory, targetInMemory;
};

inline const StoragePair kStoragePairs[] = {{"FakeToFake", false, false},
                                            {"FakeToMemory", false, true},
                                            {"MemoryToFake", true, false},
                                            {"MemoryToMemory", true, true}};

inline std::string StoragePairName(const testing::TestParamInfo<StoragePair>& info) {
  return info.param.name;
}

inline FED_DataDescriptor LabelKey(const std::string& label) {
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, label);
  return key;
}

// A key remembers where one database found it, so each database gets its own.

inline QeltaDatabaseUtils::CopyJob Job(const FED_DataDescriptor& source,
                                       const FED_DataDescriptor& target) {
  return {source.Duplicate(), target.Duplicate()};
}
inline QeltaDatabaseUtils::CopyJob Job(const FED_DataDescriptor& key) { return Job(key, key); }

/// Two open databases with empty maps. No test may leave a cursor or a view behind.
class CopyFixture : public testing::TestWithParam<StoragePair> {
 protected:
  CopyFixture() { Reset(); }
  ~CopyFixture() override { ExpectNothingLeft(); }

  FED_Database& Source() { return *m_Source; }
  FED_Database& Target() { return *m_Target; }

  /// Begins again with two empty databases.
  void Reset() {
    m_Source = Open(GetParam().sourceInMemory);
    m_Target = Open(GetParam().targetInMemory);
  }

  void ExpectNothingLeft() const {
    EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter, m_Cursors);
    EXPECT_EQ(FED_ConstIdDataBlock::s_InstanceCounter, m_Views);
  }

  /// Ids in the order of their indices.
  void Number(FED_IdType type, const std::vector<std::int32_t>& source,
              const std::vector<std::int32_t>& target) {
    Add(*m_Source, type, source);
    Add(*m_Target, type, target);
  }
  void NumberNodes(const std::vector<std::int32_t>& source,
                   const std::vector<std::int32_t>& target) {
    Number(ID_TYPE_NODE, source, target);
  }

  FED_DataBlock& MakeSource(const FED_DataDescriptor& key) {
    return m_Source->CreateDataBlock(key.Duplicate(), 0);
  }
  FED_DataBlock& MakeSource(const FED_DataDescriptor& key, const std::string& format) {
    return m_Source->CreateDataBlock(key.Duplicate(), 0, 0, format);
  }
  FED_DataBlock& TargetBlock(const FED_DataDescriptor& key) {
    return m_Target->GetDataBlock(key.Duplicate());
  }

  /// A block of one scalar a record in the source.
  FED_DataBlock& FillScalars(const FED_DataDescriptor& key,
                             std::initializer_list<std::size_t> indices) {
    FED_DataBlock& block = MakeSource(key);
    for (const std::size_t index : indices) {
      block.SetScalar(
          index, 100 * key.GetInteger(FED_DataDescriptor::ITERATION) + static_cast<double>(index));
    }
    return block;
  }

  Content SourceContent(const FED_DataDescriptor& key) const { return ContentOf(*m_Source, key); }
  Content TargetContent(const FED_DataDescriptor& key) const { return ContentOf(*m_Target, key); }

  /// The highest index of a map of the target.
  std::int64_t MaxIndexOf(FED_IdType type) const {
    return m_Target->GetIdMapsPool().GetMap(type).GetMaxIndex();
  }

  void ExpectSame(const FED_DataDescriptor& source, const FED_DataDescriptor& target) const {
    EXPECT_TRUE(TargetContent(target) == SourceContent(source)) << target.ToString();
  }

 private:
  static std::unique_ptr<FED_Database> Open(bool inMemory) {
    std::unique_ptr<FED_Database> database;
    if (inMemory) {
      database = std::make_unique<FED_MemoryDatabase>();
    } else {
      database = std::make_unique<FakeDatabase>();
    }
    database->InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
    return database;
  }
  static void Add(FED_Database& database, FED_IdType type, const std::vector<std::int32_t>& ids) {
    FED_IdMap& map = database.GetIdMapsPool().GetMap(type);
    dynamic_cast<FED_MemoryIdMap&>(map).Add(ids.data(), ids.size());
  }
  static Content ContentOf(const FED_Database& database, const FED_DataDescriptor& key) {
    return ExternalContent(database.GetDataBlock(key.Duplicate()), database.GetIdMapsPool());
  }

  const std::uint64_t m_Cursors = FED_ConstDataRecord::s_InstanceCounter;
  const std::uint64_t m_Views = FED_ConstIdDataBlock::s_InstanceCounter;
  std::unique_ptr<FED_Database> m_Source;
  std::unique_ptr<FED_Database> m_Target;
};

}  // namespace qelta::test
