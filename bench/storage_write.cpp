#include <algorithm>
#include <random>

#include "Families.h"
#include "StorageCase.h"
#include "TemporaryFolder.h"

namespace qelta::bench {
namespace {

// From nothing to durable.
StoreWork WriteAll(const Shape& shape) {
  return [shape](benchmark::State& state, const StoreKind& kind) {
    RandomBytes(0, shape.GetBlockBytes());  // made before the clock runs
    for (auto _ : state) {
      const TemporaryFolder folder;
      std::unique_ptr<BlockStore> store;
      state.SetIterationTime(Clocked([&] {
        store = kind.open(folder.GetPath() / kStoreName, BlockStore::Mode::Create);
        AddBlocks(*store, shape);
        store->Commit();
      }));
    }
    SetWork(state, shape);
  };
}

constexpr std::size_t kRounds = 10;

// One tenth of the blocks gets new content, at random.
void OverwriteSome(BlockStore& store, const Shape& shape, std::mt19937& random,
                   Contents& contents) {
  const std::size_t size = shape.GetBlockBytes();
  Contents order = FirstContents(shape);
  std::shuffle(order.begin(), order.end(), random);
  order.resize(shape.blocks / kRounds);
  for (const std::size_t i : order) {
    contents[i] += shape.blocks;
    store.Replace(KeyOf(i), RandomBytes(contents[i], size), size);
  }
  store.Commit();
}

std::uint64_t BytesOfFiles(const std::filesystem::path& folder) {
  std::uint64_t bytes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) bytes += entry.file_size();
  }
  return bytes;
}

// Every round is durable. What the files grow to is seen after closing.
StoreWork Overwrite(const Shape& shape) {
  return [shape](benchmark::State& state, const StoreKind& kind) {
    for (auto _ : state) {
      const TemporaryFolder folder;
      auto store = kind.open(folder.GetPath() / kStoreName, BlockStore::Mode::Create);
      AddBlocks(*store, shape);
      store->Commit();
      std::mt19937 random(1);
      Contents contents = FirstContents(shape);
      state.SetIterationTime(Clocked([&] {
        for (std::size_t i = 0; i < kRounds; ++i) OverwriteSome(*store, shape, random, contents);
      }));
      store.reset();
      state.counters[kSizeCounter] = static_cast<double>(BytesOfFiles(folder.GetPath()));
      store = kind.open(folder.GetPath() / kStoreName, BlockStore::Mode::Read);
      Require(ReadBlocks(*store, shape) == SumOf(shape, contents), "what was overwritten is wrong");
    }
    SetWork(state, shape);
  };
}

}  // namespace

void AddStorageWrites(Suite& suite) {
  const Goals ofRaw{1 / 0.85};
  AddCase(suite, "write 1 KB x 100 000", WriteAll(kSmall), {{"LMDB", {1.0}}});
  AddCase(suite, "write 1 MB x 1000", WriteAll(kMedium), {{"raw file", ofRaw}, {"HDF5", {1.0}}});
  AddCase(suite, "write 100 MB x 20", WriteAll(kLarge), {{"raw file", ofRaw}, {"HDF5", {1.0}}});
  AddCase(suite, "overwrite 1 KB", Overwrite({"1 KB", 20000, kSmall.recordsOfBlock}));
  AddCase(suite, "overwrite 1 MB", Overwrite({"1 MB", 200, kMedium.recordsOfBlock}),
          {{"raw file", {Peer::kNoGoal, 1.15}}});
}

}  // namespace qelta::bench
