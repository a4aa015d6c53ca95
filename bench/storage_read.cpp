#include <cstring>
#include <random>

#include "Families.h"
#include "StorageCase.h"
#include "peers/CatalogueScan.h"

namespace qelta::bench {
namespace {

// All reads find the files in the system's memory; what a store itself keeps is gone when it is
// opened.

// `read` gives a sum of what it reads. A store that it opens is closed when the clock has stopped.
template <class Read>
void MeasureReading(benchmark::State& state, std::uint64_t expected, Read read) {
  for (auto _ : state) {
    std::unique_ptr<BlockStore> store;
    std::uint64_t sum = 0;
    state.SetIterationTime(Clocked([&] { sum = read(store); }));
    Require(sum == expected, "what was read is wrong");
  }
  state.SetItemsProcessed(state.iterations());
}

std::uint64_t SumOfIterations() {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < kSmall.blocks; ++i) {
    sum += static_cast<std::uint64_t>(KeyOf(i).iteration);
  }
  return sum;
}

void ListAll(benchmark::State& state, const StoreKind& kind) {
  const std::filesystem::path path = StoredBlocks(kind, kSmall);
  MeasureReading(state, SumOfIterations(), [&](std::unique_ptr<BlockStore>& store) {
    store = kind.open(path, BlockStore::Mode::Read);
    return store->List();
  });
}

void SelectAll(benchmark::State& state, const StoreKind& ours) {
  const std::filesystem::path path = StoredBlocks(ours, kSmall);
  MeasureReading(state, SumOfIterations(),
                 [&](std::unique_ptr<BlockStore>&) { return ScanCatalogue(path); });
}

// Another block each time.
void ReadOneBlock(benchmark::State& state, const StoreKind& kind) {
  const std::filesystem::path path = StoredBlocks(kind, kMedium);
  const std::size_t size = kMedium.GetBlockBytes();
  std::vector<std::uint64_t> sums;
  for (std::size_t i = 0; i < kMedium.blocks; ++i) {
    sums.push_back(SparseSum(RandomBytes(i, size), size));
  }
  std::vector<unsigned char> block(size);
  std::size_t number = 0;
  MeasureReading(state, 0, [&](std::unique_ptr<BlockStore>& store) {
    number = (number + 617) % kMedium.blocks;
    store = kind.open(path, BlockStore::Mode::Read);
    store->Read(KeyOf(number), block.data(), size);
    return SparseSum(block.data(), size) - sums[number];
  });
}

StoreWork ReadAll(const Shape& shape) {
  return [shape](benchmark::State& state, const StoreKind& kind) {
    const std::filesystem::path path = StoredBlocks(kind, shape);
    const std::uint64_t expected = SumOf(shape, FirstContents(shape));
    MeasureReading(state, expected, [&](std::unique_ptr<BlockStore>& store) {
      store = kind.open(path, BlockStore::Mode::Read);
      return ReadBlocks(*store, shape);
    });
    SetWork(state, shape);
  };
}

// The first of the blocks; they fit into the caches of the stores, not into those of the processor.
const Shape kWarm{kMedium.name, 200, kMedium.recordsOfBlock};

template <class Read>
void MeasureWarm(benchmark::State& state, Read read) {
  read();
  MeasureReading(state, SumOf(kWarm, FirstContents(kWarm)),
                 [&](std::unique_ptr<BlockStore>&) { return read(); });
  SetWork(state, kWarm);
}

void ReadWarm(benchmark::State& state, const StoreKind& kind) {
  const auto store = kind.open(StoredBlocks(kind, kMedium), BlockStore::Mode::Read);
  MeasureWarm(state, [&] { return ReadBlocks(*store, kWarm); });
}

void CopyWarm(benchmark::State& state) {
  const std::size_t size = kWarm.GetBlockBytes();
  std::vector<unsigned char> source(kWarm.GetBytes());
  for (std::size_t i = 0; i < kWarm.blocks; ++i) {
    std::memcpy(source.data() + i * size, RandomBytes(i, size), size);
  }
  MeasureWarm(state, [&] {
    return SumBlocks(kWarm, [&](std::size_t number, unsigned char* block) {
      std::memcpy(block, source.data() + number * size, size);
    });
  });
}

constexpr std::size_t kRecords = 2000000;
constexpr std::size_t kReads = 1000000;

// Fewer where each takes long.
std::size_t ReadsOf(const StoreKind& kind) {
  return kind.name == kHdf5.name || kind.name == kSqlite.name ? kReads / 20 : kReads;
}

std::vector<std::uint32_t> RandomIndices(std::size_t count) {
  std::mt19937 random(1);
  std::uniform_int_distribution<std::uint32_t> indices(0, kRecords - 1);
  std::vector<std::uint32_t> order(count);
  for (std::uint32_t& index : order) index = indices(random);
  return order;
}

// The first word of each record.
template <class Read>
std::uint64_t SumRecords(const std::vector<std::uint32_t>& order, Read read) {
  std::uint64_t sum = 0;
  for (const std::uint32_t index : order) {
    std::uint64_t word;
    std::memcpy(&word, read(index), sizeof word);
    sum += word;
  }
  return sum;
}

void ReadRecords(benchmark::State& state, const StoreKind& kind) {
  constexpr std::size_t size = BlockStore::kRecordBytes;
  const auto store = kind.open(StoredTable(kind, kRecords), BlockStore::Mode::Read);
  const std::vector<std::uint32_t> order = RandomIndices(ReadsOf(kind));
  const unsigned char* const all = RandomBytes(0, kRecords * size);
  const auto expected = SumRecords(order, [&](std::size_t index) { return all + index * size; });
  unsigned char record[size];
  const auto read = [&](std::size_t index) {
    store->ReadRecord(index, record);
    return record;
  };
  SumRecords(order, read);
  MeasureReading(state, expected,
                 [&](std::unique_ptr<BlockStore>&) { return SumRecords(order, read); });
  state.SetItemsProcessed(static_cast<std::int64_t>(order.size()) * state.iterations());
}

}  // namespace

void AddStorageReads(Suite& suite) {
  AddCase(suite, "open and list", ListAll, {},
          {{"SELECT of catalogue", BodyOf(SelectAll, kOurs), 2.5}});
  AddCase(suite, "open and read all 1 KB", ReadAll(kSmall));
  AddCase(suite, "open and read one 1 MB", ReadOneBlock);
  AddCase(suite, "open and read all 1 MB", ReadAll(kMedium));
  AddCase(suite, "read again 1 MB", ReadWarm, {}, {{"memcpy", CopyWarm, 2.0}});
  AddCase(suite, "records of 100 B", ReadRecords);
}

}  // namespace qelta::bench
