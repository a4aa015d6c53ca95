// Runs, columns, walks, index sets and field data against records kept one by one in a map.

#include <algorithm>
#include <cstring>
#include <random>

#include "StorageContract.h"

namespace qelta::test {
namespace {

constexpr std::size_t kMaxIndex = 0x7fffffff;

class ModelBlock {
 public:
  ModelBlock(FED_DataBlock& block, std::size_t base, unsigned seed)
      : m_Block(block), m_Runs(RunsOf(block)), m_Base(base), m_Random(seed) {
    const Cursor cursor(block);
    m_Fields.push_back({0, block.GetRecordSize()});
    for (std::size_t i = 1, offset = 0; i <= cursor->Size(); ++i) {
      m_Fields.push_back({offset, cursor->GetDataTypeSize(i)});
      offset += cursor->GetDataTypeSize(i);
    }
  }

  void WriteSomething() {
    const std::size_t field = Below(m_Fields.size()), first = m_Base + Below(2400);
    const std::size_t count = Below(9) == 0 ? Below(2200) : Below(70);
    const auto [offset, size] = m_Fields[field];
    const Bytes bytes = SomeBytes(count * size, static_cast<unsigned>(m_Random()));
    for (std::size_t i = 0; i < count; ++i) {
      Bytes& record = m_Records.try_emplace(first + i, m_Block.GetRecordSize()).first->second;
      std::copy_n(bytes.data() + i * size, size, record.data() + offset);
    }
    if (field > 0) {
      m_Runs.WriteColumn(field, first, count, bytes.data());
    } else if (count == 1) {
      WriteRecord(m_Block, first, bytes);
    } else {
      m_Runs.WriteRun(first, count, bytes.data());
    }
  }

  void ReadSomething() {
    const std::size_t field = Below(m_Fields.size()), first = m_Base + Below(2400);
    const std::size_t count = Below(2) == 0 ? Below(40) : Below(1500);
    Bytes expected, given(count * m_Fields[field].second);
    const auto read = [&] {
      field > 0 ? m_Runs.ReadColumn(field, first, count, given.data())
                : m_Runs.ReadRun(first, count, given.data());
    };
    const std::size_t absent = Expect(field, first, count, expected);
    if (absent < first + count) {
      ExpectFailure(read, {m_Block.GetDescriptor().ToString(), std::to_string(absent)});
      std::size_t wanted = 3;
      EXPECT_EQ(m_Runs.FindRun(absent, wanted), nullptr);
      EXPECT_EQ(wanted, 3u);
    } else {
      read();
      EXPECT_TRUE(given == expected) << first << " + " << count;
      if (field == 0 && count > 0) CheckPlace(first, count, expected);
    }
  }

  // Not every module has its records at one place.
  void CheckPlace(std::size_t first, std::size_t count, const Bytes& expected) {
    std::size_t found = count;
    const auto* const place = static_cast<const unsigned char*>(m_Runs.FindRun(first, found));
    ASSERT_TRUE(0 < found && found <= count);
    if (place == nullptr) return;
    EXPECT_TRUE(std::equal(place, place + found * m_Block.GetRecordSize(), expected.begin()));
  }

  void CheckAll() {
    std::vector<std::uint64_t> expected, indices, walked;
    for (const std::size_t index : m_Block) walked.push_back(index);
    FED_IntSetIntvl<int> set, given, runs;
    Bytes data;
    for (const auto& [index, bytes] : m_Records) {
      expected.push_back(index);
      set.Insert(static_cast<int>(index));
      if (m_Block.GetFieldDim() != 0) data.insert(data.end(), bytes.begin(), bytes.end());
      ASSERT_EQ(ReadRecord(m_Block, index), bytes) << index;
    }
    given.Insert(-7);
    runs.Insert(-7);
    m_Block.GetRecordIndices(indices);
    m_Block.GetRecordIndices(given);
    m_Runs.PresentRuns(runs);
    EXPECT_EQ(walked, expected);
    EXPECT_EQ(indices, expected);
    EXPECT_TRUE(m_Block.GetRecordIndices() == set && given == set && runs == set);
    EXPECT_EQ(m_Block.GetMaxIndex(), static_cast<std::int64_t>(expected.back()));
    const std::vector<double> values = m_Block.GetFieldData();
    ASSERT_EQ(values.size() * sizeof(double), data.size());
    EXPECT_TRUE(data.empty() || std::memcmp(values.data(), data.data(), data.size()) == 0);
  }

 private:
  std::size_t Below(std::size_t end) { return m_Random() % end; }

  // What a read is to give; returns the first absent index, or the end of the run.
  std::size_t Expect(std::size_t field, std::size_t first, std::size_t count, Bytes& out) const {
    const auto [offset, size] = m_Fields[field];
    for (std::size_t index = first; index < first + count; ++index) {
      const auto record = m_Records.find(index);
      if (record == m_Records.end()) return index;
      const unsigned char* const bytes = record->second.data() + offset;
      out.insert(out.end(), bytes, bytes + size);
    }
    return first + count;
  }

  FED_DataBlock& m_Block;
  FED_RecordRuns& m_Runs;
  std::size_t m_Base;
  std::mt19937 m_Random;
  std::vector<std::pair<std::size_t, std::size_t>> m_Fields;  // offset, size; 0: all of a record
  std::map<std::size_t, Bytes> m_Records;
};

TEST_P(StorageContract, RunsAndColumnsAreRecordsOneByOne) {
  const char* const formats[] = {"I|d", "I|V", "I|T", "I|t", "I|f", "I|IdfV", "S|TdI", "I|"};
  int iteration = 0;
  for (const std::string format : formats) {
    for (const std::size_t base : {0u, 1000u, 32000u}) {
      SCOPED_TRACE(format + " from " + std::to_string(base));
      FED_DataBlock& block = Make(CustomKey(++iteration), format);
      ModelBlock model(block, base, static_cast<unsigned>(iteration));
      for (int step = 0; step < 30; ++step) {
        model.WriteSomething();
        for (int i = 0; i < 8; ++i) model.ReadSomething();
      }
      model.CheckAll();
      Db().DeleteDataBlock(CustomKey(iteration));
    }
  }
}

TEST_P(StorageContract, RunsThatCannotBeChangeNothing) {
  FED_DataBlock& block = Make(CustomKey(56), "I|dI");
  FED_RecordRuns& runs = RunsOf(block);
  Fill(block, {10, 11, 12}, 1);
  const std::string before = Describe(block);
  const std::pair<std::size_t, std::size_t> ranges[] = {
      {kMaxIndex, 2},
      {kMaxIndex + 1, 1},
      {0, kMaxIndex + 2},
      {10, kMaxIndex - 8},
      {10, SIZE_MAX},
      {10, SIZE_MAX - 9},
      {SIZE_MAX, 1},
      {SIZE_MAX - 1, SIZE_MAX},
      {SIZE_MAX, 2},
      {std::size_t{1} << 32, 1},
      {10, SIZE_MAX / 12 + 2},  // times 12 bytes it is small again
      {10, (std::size_t{1} << 32) + 1}};
  char room[12] = {};
  for (const auto& range : ranges) {
    const auto [first, count] = range;
    SCOPED_TRACE(testing::PrintToString(range));
    const auto parts = {std::string("ITERATION=56"), std::to_string(first),
                        std::string("2147483647")};
    ExpectFailure([&, f = first, n = count] { runs.ReadRun(f, n, room); }, parts);
    ExpectFailure([&, f = first, n = count] { runs.WriteRun(f, n, room); }, parts);
    ExpectFailure([&, f = first, n = count] { runs.ReadColumn(2, f, n, room); }, parts);
    ExpectFailure([&, f = first, n = count] { runs.WriteColumn(1, f, n, room); }, parts);
  }
  for (const std::size_t field : {std::size_t{0}, std::size_t{3}, SIZE_MAX}) {
    ExpectFailure([&] { runs.ReadColumn(field, 10, 1, room); }, {"ITERATION=56"});
    ExpectFailure([&] { runs.WriteColumn(field, 10, 1, room); }, {"ITERATION=56"});
  }
  for (const std::size_t first : {std::size_t{0}, std::size_t{5000}, kMaxIndex}) {
    EXPECT_NO_THROW(runs.ReadRun(first, 0, nullptr));
    EXPECT_NO_THROW(runs.WriteRun(first, 0, nullptr));
    EXPECT_NO_THROW(runs.ReadColumn(1, first, 0, nullptr));
    EXPECT_NO_THROW(runs.WriteColumn(1, first, 0, nullptr));
  }
  EXPECT_EQ(Describe(block), before);
}

}  // namespace
}  // namespace qelta::test
