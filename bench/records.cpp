#include <FED_DataBlock.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "BenchDatabase.h"
#include "Families.h"
#include "peers/FlatTable.h"
#include "peers/VirtualTable.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kRecords = 1000000;

using Indices = std::vector<std::uint32_t>;

Indices MakeIndices(bool shuffled) {
  Indices indices(kRecords);
  std::iota(indices.begin(), indices.end(), 0U);
  if (shuffled) std::shuffle(indices.begin(), indices.end(), std::mt19937(1));
  return indices;
}

// Our records behind the operations of FlatTable.
class BlockTable {
 public:
  BlockTable(FED_DataBlock& block, FED_DataRecord& record) : m_Block(&block), m_Record(&record) {}

  void Get(std::size_t index) const { m_Block->GetRecord(index, *m_Record); }
  void Set(std::size_t index) const { m_Block->SetRecord(index, *m_Record); }

 private:
  FED_DataBlock* m_Block;
  FED_DataRecord* m_Record;
};

// The same for a peer.
class CalledTable {
 public:
  CalledTable(VirtualTable& table, unsigned char* record) : m_Table(&table), m_Record(record) {}

  void Get(std::size_t index) const { m_Table->Get(index, m_Record); }
  void Set(std::size_t index) const { m_Table->Set(index, m_Record); }

 private:
  VirtualTable* m_Table;
  unsigned char* m_Record;
};

struct GetAll {
  template <class Table>
  void operator()(const Table& table, const Indices& indices) const {
    for (const std::size_t index : indices) {
      table.Get(index);
      benchmark::ClobberMemory();
    }
  }
};

struct SetAll {
  template <class Table>
  void operator()(const Table& table, const Indices& indices) const {
    for (const std::size_t index : indices) {
      table.Set(index);
      benchmark::ClobberMemory();
    }
  }
};

template <class Work, class Table>
void Measure(benchmark::State& state, Table table, bool shuffled) {
  const Indices indices = MakeIndices(shuffled);
  SetAll()(table, MakeIndices(false));
  MeasureItems(state, kRecords, [&] { Work()(table, indices); });
}

template <class Work>
Body InBlock(const char* format, bool shuffled) {
  return [=](benchmark::State& state) {
    BenchDatabase database;
    FED_DataDescriptor key;
    key.SetString(FED_DataDescriptor::LABEL, "records");
    FED_DataBlock& block = database.CreateDataBlock(key, 0, 0, format);
    FED_DataRecord& record = block.CreateDataRecord();
    Measure<Work>(state, BlockTable(block, record), shuffled);
    block.DeleteDataRecord(record);
  };
}

template <class Work, std::size_t Size>
Body InArray(bool shuffled) {
  return [=](benchmark::State& state) {
    std::vector<unsigned char> bytes(kRecords * Size);
    std::vector<unsigned char> record(Size);
    Measure<Work>(state, FlatTable<Size>(bytes.data(), record.data()), shuffled);
  };
}

template <class Work, std::size_t Size>
Body InVirtualTable(bool shuffled) {
  return [=](benchmark::State& state) {
    const std::unique_ptr<VirtualTable> table = MakeVirtualTable<Size>(kRecords);
    std::vector<unsigned char> record(Size);
    Measure<Work>(state, CalledTable(*table, record.data()), shuffled);
  };
}

template <class Work, std::size_t Size>
void AddBothOrders(Suite& suite, const std::string& name, const char* format, double goal) {
  for (const bool shuffled : {false, true}) {
    suite.Add(name + (shuffled ? "/random" : "/sequential"), InBlock<Work>(format, shuffled),
              {{"inline memcpy", InArray<Work, Size>(shuffled), goal},
               {"virtual memcpy", InVirtualTable<Work, Size>(shuffled)}});
  }
}

}  // namespace

// "IV" is a vector, 24 bytes; "IITT" an integer and two tensors, 100 bytes.
void AddRecords(Suite& suite) {
  AddBothOrders<GetAll, 24>(suite, "records/get 24 B", "IV", 1.60);
  AddBothOrders<SetAll, 24>(suite, "records/set 24 B", "IV", 1.60);
  AddBothOrders<GetAll, 100>(suite, "records/get 100 B", "IITT", 1.08);
  AddBothOrders<SetAll, 100>(suite, "records/set 100 B", "IITT", 1.08);
}

}  // namespace qelta::bench
