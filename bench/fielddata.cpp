#include <FED_DataBlock.h>
#include <FED_RecordRuns.h>

#include <cstring>
#include <vector>

#include "BenchDatabase.h"
#include "Families.h"
#include "peers/StridedCopy.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kVectors = 1000000;
constexpr std::size_t kVectorBytes = 3 * sizeof(double);

// Records of an integer and two tensors.
constexpr std::size_t kRecords = 200000;
constexpr std::size_t kRecordBytes = 100;
constexpr std::size_t kTensorField = 2;
constexpr std::size_t kTensorOffset = 4;
constexpr std::size_t kTensorBytes = 48;

using Bytes = std::vector<unsigned char>;

// A block that is full of records, and as many bytes as these have.
class FullBlock {
 public:
  FullBlock(const char* format, std::size_t count) {
    FED_DataDescriptor key;
    key.SetString(FED_DataDescriptor::LABEL, "bulk");
    m_Block = &m_Database.CreateDataBlock(key, 0, 0, format);
    m_Bytes.resize(count * m_Block->GetRecordSize(), 1);
    GetRuns().WriteRun(0, count, m_Bytes.data());
  }
  const FED_DataBlock& GetBlock() const { return *m_Block; }
  FED_RecordRuns& GetRuns() { return dynamic_cast<FED_RecordRuns&>(*m_Block); }
  Bytes& GetBytes() { return m_Bytes; }

 private:
  BenchDatabase m_Database;
  FED_DataBlock* m_Block;
  Bytes m_Bytes;
};

FullBlock VectorBlock() { return FullBlock("IV", kVectors); }
FullBlock RecordBlock() { return FullBlock("IITT", kRecords); }

void GetFieldData(benchmark::State& state) {
  const FullBlock full = VectorBlock();
  MeasureBytes(state, kVectors * kVectorBytes,
               [&] { benchmark::DoNotOptimize(full.GetBlock().GetFieldData().data()); });
}

void CopyVector(benchmark::State& state) {
  const std::vector<double> source(kVectors * 3, 1.0);
  MeasureBytes(state, kVectors * kVectorBytes,
               [&] { benchmark::DoNotOptimize(std::vector<double>(source).data()); });
}

template <std::size_t Size>
void CopyBytes(benchmark::State& state) {
  const Bytes source(Size, 1);
  Bytes target(Size, 2);
  MeasureBytes(state, Size, [&] {
    std::memcpy(target.data(), source.data(), Size);
    benchmark::ClobberMemory();
  });
}

void ReadRun(benchmark::State& state) {
  FullBlock full = RecordBlock();
  MeasureBytes(state, kRecords * kRecordBytes,
               [&] { full.GetRuns().ReadRun(0, kRecords, full.GetBytes().data()); });
}

void WriteRun(benchmark::State& state) {
  FullBlock full = RecordBlock();
  MeasureBytes(state, kRecords * kRecordBytes,
               [&] { full.GetRuns().WriteRun(0, kRecords, full.GetBytes().data()); });
}

void ReadWholeColumn(benchmark::State& state) {
  FullBlock full = VectorBlock();
  MeasureBytes(state, kVectors * kVectorBytes,
               [&] { full.GetRuns().ReadColumn(1, 0, kVectors, full.GetBytes().data()); });
}

void WriteWholeColumn(benchmark::State& state) {
  FullBlock full = VectorBlock();
  MeasureBytes(state, kVectors * kVectorBytes,
               [&] { full.GetRuns().WriteColumn(1, 0, kVectors, full.GetBytes().data()); });
}

void ReadTensorColumn(benchmark::State& state) {
  FullBlock full = RecordBlock();
  MeasureBytes(state, kRecords * kTensorBytes, [&] {
    full.GetRuns().ReadColumn(kTensorField, 0, kRecords, full.GetBytes().data());
  });
}

void WriteTensorColumn(benchmark::State& state) {
  FullBlock full = RecordBlock();
  MeasureBytes(state, kRecords * kTensorBytes, [&] {
    full.GetRuns().WriteColumn(kTensorField, 0, kRecords, full.GetBytes().data());
  });
}

void GatherTensors(benchmark::State& state) {
  const Bytes records(kRecords * kRecordBytes, 1);
  Bytes column(kRecords * kTensorBytes, 2);
  MeasureBytes(state, column.size(), [&] {
    StridedCopy<kTensorBytes>(column.data(), kTensorBytes, records.data() + kTensorOffset,
                              kRecordBytes, kRecords);
    benchmark::ClobberMemory();
  });
}

void ScatterTensors(benchmark::State& state) {
  Bytes records(kRecords * kRecordBytes, 1);
  const Bytes column(kRecords * kTensorBytes, 2);
  MeasureBytes(state, column.size(), [&] {
    StridedCopy<kTensorBytes>(records.data() + kTensorOffset, kRecordBytes, column.data(),
                              kTensorBytes, kRecords);
    benchmark::ClobberMemory();
  });
}

}  // namespace

void AddFieldData(Suite& suite) {
  constexpr double kGoal = 1.05;
  const Peer copyRecords{"memcpy", CopyBytes<kRecords * kRecordBytes>, kGoal};
  const Peer copyVectors{"memcpy", CopyBytes<kVectors * kVectorBytes>, kGoal};
  suite.Add("fielddata/get 1e6 vectors", GetFieldData,
            {{"copy of a std::vector", CopyVector, kGoal},
             {"memcpy", CopyBytes<kVectors * kVectorBytes>}});
  suite.Add("runs/read", ReadRun, {copyRecords});
  suite.Add("runs/write", WriteRun, {copyRecords});
  suite.Add("columns/read all bytes", ReadWholeColumn, {copyVectors});
  suite.Add("columns/write all bytes", WriteWholeColumn, {copyVectors});
  suite.Add("columns/read 48 of 100 B", ReadTensorColumn, {{"strided copy", GatherTensors, kGoal}});
  suite.Add("columns/write 48 of 100 B", WriteTensorColumn,
            {{"strided copy", ScatterTensors, kGoal}});
}

}  // namespace qelta::bench
