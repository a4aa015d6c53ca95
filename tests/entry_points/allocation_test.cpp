// No memory at the boundary: a status or the end of the process, nothing lost, nothing escapes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "EntryPointTable.h"
#include "FED_DataBlock_F.h"
#include "FailingAllocation.h"
#include "LogLines.h"
#include "QeltaFortran_F.h"

namespace qelta::test {
namespace {

constexpr const char* kLongText = "a text that no small string holds in itself";

TEST(EntryPointAllocations, FailingOnesBecomeAStatus) {
  std::vector<std::string> allocating;
  for (const EntryPointRow& row : AllEntryPoints()) {
    if (!row.call.hasStatus || row.unit.rfind("FED_", 0) != 0) continue;
    SCOPED_TRACE(row.name);
    const LogLines muted;
    Arguments arguments;
    arguments.text = kLongText;
    const Outputs marks = arguments.outputs;
    const auto call = [&] {
      arguments.status = 77;
      row.Run(arguments);
    };
    const auto check = [&] {
      EXPECT_EQ(arguments.status, -1);
      EXPECT_TRUE(arguments.outputs == marks);
    };
    if (ForEachFailingAllocation(call, check) > 0) allocating.push_back(row.name);
    EXPECT_EQ(arguments.status, 0) << "the next call works";
  }
  EXPECT_THAT(allocating,
              testing::IsSupersetOf({"DataBlock_CreateRecord_F", "DataRecord_GetIntListLen_F",
                                     "DataRecord_GetIntListNative_F", "DataRecord_GetIntList_F",
                                     "DataRecord_SetIntList_F", "DataRecord_GetDoubleList_F",
                                     "DataRecord_SetDoubleList_F", "DataRecord_GetString_F",
                                     "DataRecord_SetString_F"}));
}

// The number of failed attempts in processes of their own, until one gets by.
std::size_t CountEndedProcesses(const EntryPointRow& row, Arguments& arguments) {
  bool ended = true;
  const auto attempt = [&](std::size_t n) {
    const FailingAllocation failing(n);
    row.Run(arguments);
    std::_Exit(failing.HasFailed() ? 2 : 0);
  };
  const auto endedOrWorked = [&ended](int status) {
    ended = testing::ExitedWithCode(1)(status);
    return ended || testing::ExitedWithCode(0)(status);
  };
  std::size_t n = 0;
  for (;; ++n) {
    EXPECT_EXIT(attempt(n), endedOrWorked, "") << row.name << ", allocation " << n;
    if (!ended) return n;
  }
}

TEST(EntryPointAllocations, FailingOnesEndTheProcessWithoutAStatus) {
  std::vector<std::string> allocating;
  for (const EntryPointRow& row : AllEntryPoints()) {
    if (row.call.hasStatus) continue;
    Arguments arguments;
    arguments.text = kLongText;
    if (CountEndedProcesses(row, arguments) > 0) allocating.push_back(row.name);
  }
  EXPECT_THAT(allocating, testing::UnorderedElementsAre(
                              "DataDescriptorList_Resize_F", "DataDescriptorPattern_ToString_F",
                              "DataDescriptorPattern_SetMatchExact_Str_F", "Descriptor_GetString_F",
                              "Descriptor_SetString_F", "Descriptor_ToString_F"));
}

class CompanionAllocations : public testing::Test {
 protected:
  CompanionAllocations() {
    Database_Open_F("memory", "name", &m_Mode, &m_Zero, &m_Database, &m_Status);
  }
  ~CompanionAllocations() override { Database_Close_F(&m_Database, &m_Status); }

  // Few messages, but many allocations, of which those of a log line may fail unnoticed.
  void Run(const std::string& name, const std::function<void()>& call) {
    SCOPED_TRACE(name);
    const LogLines muted;
    const auto check = [&] { EXPECT_TRUE(m_Status == -1 || m_Status == 0) << m_Status; };
    EXPECT_GT(ForEachFailingAllocation(call, check), 0u);
    EXPECT_EQ(m_Status, 0) << "the next call works";
  }

  std::int32_t HasBlock(const FED_DataDescriptor& key) {
    std::int32_t has = 77;
    Database_HasBlock_F(m_Database, &key, &has, &m_Status);
    return has;
  }

  FED_Database* m_Database = nullptr;
  std::int32_t m_Mode = 2, m_Status = 77;
  std::int64_t m_Zero = 0;
};

TEST_F(CompanionAllocations, FailingOnesBecomeAStatus) {
  FED_DataDescriptor key, custom, alias;
  key.SetInteger(FED_DataDescriptor::ONF, 2);
  custom.SetString(FED_DataDescriptor::LABEL, kLongText);
  FED_Database* second = nullptr;
  Run("open", [&] { Database_Open_F("memory", kLongText, &m_Mode, &m_Zero, &second, &m_Status); });
  FED_DataBlock *block = nullptr, *customBlock = nullptr;
  Run("fetch", [&] { Database_FetchBlock_F(m_Database, &key, &block, &m_Status); });
  Run("fetch custom",
      [&] { Database_FetchBlock_Custom_F(m_Database, &custom, "I|ddS", &customBlock, &m_Status); });
  ASSERT_TRUE(block != nullptr && customBlock != nullptr && second != nullptr);
  const std::int32_t field = 2, first = 70000, count = 300;
  const std::vector<double> values(300, 2.5);
  Run("column",
      [&] { Block_WriteColumn_F(customBlock, &field, &first, &count, values.data(), &m_Status); });
  double found = 0;
  DataBlock_GetScalar_F(customBlock, first + count - 1, &found, &m_Status);
  std::int32_t created = 0;
  Run("aliases", [&] {
    // As many as it takes until the database needs more memory.
    m_Status = 0;
    for (int state = 0; state < 100 && m_Status == 0; ++state) {
      alias.SetInteger(FED_DataDescriptor::STATE, state);
      Database_CreateAlias_F(m_Database, &key, &alias, &created, &m_Status);
    }
  });
  EXPECT_EQ(created, 1);
  FED_DataDescriptorList list;
  const FED_DataDescriptorPattern everything;
  Run("find", [&] { Database_FindBlocks_F(m_Database, &everything, &list, &m_Status); });
  EXPECT_EQ(list.GetCount(), 102u);
  Run("select", [&] {
    Database_SelectBlocks_F(m_Database, "LABEL=any,nothing; STATE=max/LOADCASE", &list, &m_Status);
  });
  FED_IntArray* array = nullptr;
  const std::int32_t one = 1;
  const std::int64_t size = 1;
  Run("array", [&] { IntArray_New_F(&one, &size, &array, &m_Status); });
  IntArray_Delete_F(&array, &m_Status);
  Run("delete", [&] { Database_DeleteBlocks_F(m_Database, &everything, &m_Status); });
  EXPECT_EQ(HasBlock(key) + HasBlock(custom) + HasBlock(alias), 0);
  Database_Close_F(&second, &m_Status);
}

}  // namespace
}  // namespace qelta::test
