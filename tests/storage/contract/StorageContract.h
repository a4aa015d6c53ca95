#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "FED_Database.h"
#include "FED_RecordRuns.h"
#include "FailureMatcher.h"
#include "StorageModule.h"

namespace qelta::test {

using Bytes = std::vector<unsigned char>;
using Keys = std::vector<FED_DataDescriptor>;

/// A cursor of a block, of the kind that the constness of the block asks for.
template <class Block>
class Cursor {
 public:
  explicit Cursor(Block& block) : m_Block(block), m_Record(block.CreateDataRecord()) {}
  ~Cursor() { m_Block.DeleteDataRecord(m_Record); }
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;

  auto& operator*() const { return m_Record; }
  auto* operator->() const { return &m_Record; }

 private:
  Block& m_Block;
  decltype(std::declval<Block&>().CreateDataRecord()) m_Record;
};

// Records one by one, as their bytes.
Bytes ReadRecord(const FED_DataBlock& block, std::size_t index);
void WriteRecord(FED_DataBlock& block, std::size_t index, const Bytes& bytes);

/// Bytes that depend on `seed` and are not all alike.
Bytes SomeBytes(std::size_t count, unsigned seed);

/// Writes records with content in every field, which depends on `seed`.
void Fill(FED_DataBlock& block, std::initializer_list<std::size_t> indices, unsigned seed);

/// Everything that a block holds: blocks with the same content give the same text.
std::string Describe(const FED_DataBlock& block);

/// The bulk interface, which is optional; the modules in the table all have it.
inline FED_RecordRuns& RunsOf(FED_DataBlock& block) { return dynamic_cast<FED_RecordRuns&>(block); }

/// Checks that `action` fails with a message that holds all of `parts`.
void ExpectFailure(const std::function<void()>& action, std::initializer_list<std::string> parts);

FED_DataDescriptor CustomKey(int iteration);
FED_DataDescriptor LabelKey(const std::string& label);

/// A fresh database of the module for each test. No test may leave a cursor behind.
class StorageContract : public testing::TestWithParam<StorageModule> {
 protected:
  StorageContract();
  ~StorageContract() override;

  FED_Database& Db() { return *m_Database; }

  std::unique_ptr<FED_Database> Open(FED_DatabaseDefs::AccessMode mode,
                                     const FED_IdMapsPool& pool = {});
  void Reopen(FED_DatabaseDefs::AccessMode mode = FED_DatabaseDefs::READ_WRITE,
              const FED_IdMapsPool& pool = {});
  void Save() { GetParam().save(Db()); }
  void CloseBlocks() { GetParam().closeBlocks(Db()); }

  FED_DataBlock& Make(const FED_DataDescriptor& key, const std::string& format,
                      int properties = 0) {
    return Db().CreateDataBlock(key, properties, 0, format);
  }

  // Lookups without any remembered position.
  FED_DataBlock& Get(const FED_DataDescriptor& key) { return Db().GetDataBlock(key.Duplicate()); }
  bool Has(const FED_DataDescriptor& key) { return Db().HasBlock(key.Duplicate()); }
  Keys All() { return Db().FindBlocks(FED_DataDescriptorPattern()); }

  /// Six blocks of many kinds with all kinds of content, and three further names: the last three
  /// keys, two of them for the first block, one for the third.
  Keys MakeWorld();

  /// What the keys lead to; "none" for a key that leads to no block.
  std::vector<std::string> DescribeAll(const Keys& keys);

  struct WayToSave {
    std::string name;
    bool keepsPositions;  // what descriptors remember stays valid
    std::function<void()> run;
  };
  std::vector<WayToSave> WaysToSave();

  std::vector<std::string> m_Log;

 private:
  std::uint64_t m_Cursors;
  std::wstring m_Name;
  std::unique_ptr<FED_Database> m_Database;
};

}  // namespace qelta::test
