#include <FED_DataBlock_F.h>
#include <FED_DataRecord_F.h>

#include <cstdint>

#include "BenchDatabase.h"
#include "Families.h"

namespace qelta::bench {
namespace {

constexpr std::int32_t kRecords = 1000;
constexpr std::size_t kItems = kRecords;

// One block of doubles and a cursor, with all records present.
class Fixture {
 public:
  Fixture() {
    FED_DataDescriptor key;
    key.SetString(FED_DataDescriptor::LABEL, "entry points");
    block = &m_Database.CreateDataBlock(key, 0, 0, "I|d");
    for (std::size_t i = 0; i < kItems; ++i) block->SetScalar(i, 0.5);
    record = &block->CreateDataRecord();
    // The compiler must not know which class the block has.
    benchmark::DoNotOptimize(block);
    benchmark::DoNotOptimize(record);
  }
  ~Fixture() { block->DeleteDataRecord(*record); }
  Fixture(const Fixture&) = delete;
  Fixture& operator=(const Fixture&) = delete;

  FED_DataBlock* block = nullptr;
  FED_DataRecord* record = nullptr;

 private:
  BenchDatabase m_Database;
};

// Calls once(block, record, index) for every record.
template <class Once>
Body Each(Once once) {
  return [once](benchmark::State& state) {
    const Fixture fixture;
    MeasureItems(state, kItems, [&] {
      for (std::int32_t i = 0; i < kRecords; ++i) {
        once(fixture.block, fixture.record, i);
        benchmark::ClobberMemory();
      }
    });
  };
}

}  // namespace

void AddEntryPoints(Suite& suite) {
  suite.Add("entry points/GetScalar",
            Each([](FED_DataBlock* block, FED_DataRecord*, std::int32_t index) {
              double value = 0;
              std::int32_t status = 0;
              DataBlock_GetScalar_F(block, index, &value, &status);
              benchmark::DoNotOptimize(value);
            }),
            {{"the operation", Each([](FED_DataBlock* block, FED_DataRecord*, std::int32_t index) {
                benchmark::DoNotOptimize(block->GetScalar(static_cast<std::size_t>(index)));
              })}});
  suite.Add("entry points/HasRecord",
            Each([](FED_DataBlock* block, FED_DataRecord*, std::int32_t index) {
              std::int32_t has = 0, status = 0;
              DataBlock_HasRecord_F(block, &index, &has, &status);
              benchmark::DoNotOptimize(has);
            }),
            {{"the operation", Each([](FED_DataBlock* block, FED_DataRecord*, std::int32_t index) {
                benchmark::DoNotOptimize(block->HasRecord(static_cast<std::size_t>(index)));
              })}});
  suite.Add("entry points/SetDouble",
            Each([](FED_DataBlock*, FED_DataRecord* record, std::int32_t index) {
              std::int32_t status = 0;
              DataRecord_SetDouble_F(record, 1, index, &status);
            }),
            {{"the operation", Each([](FED_DataBlock*, FED_DataRecord* record, std::int32_t index) {
                record->SetDouble(1, index);
              })}});
}

}  // namespace qelta::bench
