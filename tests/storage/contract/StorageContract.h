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

#include "BlockContents.h"
#include "FED_Database.h"
#include "FED_RecordRuns.h"
#include "FailureMatcher.h"
#include "StorageModule.h"

namespace qelta::test {

/// The bulk interface, which is optional; the modules in the table all have it.
inline FED_RecordRuns& RunsOf(FED_DataBlock& block) { return dynamic_cast<FED_RecordRuns&>(block); }

/// Checks that `action` fails with a message that holds all of `parts`.
void ExpectFailure(const std::function<void()>& action, std::initializer_list<std::string> parts);

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

  Keys MakeWorld() { return test::MakeWorld(Db()); }
  std::vector<std::string> DescribeAll(const Keys& keys) { return test::DescribeAll(Db(), keys); }

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
