#include "StorageCase.h"

#include <FED_OnfId.h>

#include <cstring>
#include <numeric>
#include <random>
#include <stdexcept>

#include "FileDatabaseStore.h"
#include "TemporaryFolder.h"
#include "peers/Hdf5File.h"
#include "peers/LmdbTable.h"
#include "peers/RawFile.h"
#include "peers/SqliteTable.h"

namespace qelta::bench {
namespace {

constexpr std::size_t kKinds = 5;
constexpr std::size_t kLoadcases = 10;

constexpr std::size_t kPoolBytes = std::size_t{256} << 20;
constexpr std::size_t kPoolStep = 1045853;  // between pieces
constexpr std::size_t kStride = 256;

std::vector<unsigned char> MakePool() {
  std::vector<unsigned char> pool(kPoolBytes);
  std::mt19937_64 random(1);
  for (std::size_t i = 0; i < kPoolBytes; i += sizeof(std::uint64_t)) {
    const std::uint64_t word = random();
    std::memcpy(pool.data() + i, &word, sizeof word);
  }
  return pool;
}

template <class Fill>
std::filesystem::path Stored(const StoreKind& kind, const std::string& content, Fill fill) {
  static std::string current;
  static std::map<std::string, TemporaryFolder> folders;
  if (content != current) folders.clear();
  current = content;
  const auto [place, isNew] = folders.try_emplace(kind.name);
  std::filesystem::path path = place->second.GetPath() / kStoreName;
  if (isNew) {
    const auto store = kind.open(path, BlockStore::Mode::Create);
    fill(*store);
    store->Commit();
  }
  return path;
}

}  // namespace

const StoreKind kOurs{"ours", OpenFileDatabase};
const StoreKind kRawFile{"raw file", OpenRawFile};
const StoreKind kHdf5{"HDF5", OpenHdf5File};
const StoreKind kSqlite{"SQLite", OpenSqliteTable};
const StoreKind kLmdb{"LMDB", OpenLmdbTable};

BlockKey KeyOf(std::size_t number) {
  const std::size_t iteration = number / (kKinds * kLoadcases);
  const std::size_t kind = number / kLoadcases % kKinds;
  return {static_cast<std::int32_t>(iteration), ONF_DISPLACEMENT + static_cast<std::int32_t>(kind),
          static_cast<std::int32_t>(1 + number % kLoadcases)};
}

const unsigned char* RandomBytes(std::size_t number, std::size_t size) {
  static const std::vector<unsigned char> pool = MakePool();
  return pool.data() + number * kPoolStep % (kPoolBytes - size);
}

std::uint64_t SparseSum(const unsigned char* bytes, std::size_t size) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i + sizeof sum <= size; i += kStride) {
    std::uint64_t word;
    std::memcpy(&word, bytes + i, sizeof word);
    sum += word;
  }
  return sum;
}

Contents FirstContents(const Shape& shape) {
  Contents contents(shape.blocks);
  std::iota(contents.begin(), contents.end(), std::size_t{0});
  return contents;
}

std::uint64_t SumOf(const Shape& shape, const Contents& contents) {
  return SumBlocks(shape, [&](std::size_t number, unsigned char* block) {
    std::memcpy(block, RandomBytes(contents[number], shape.GetBlockBytes()), shape.GetBlockBytes());
  });
}

void AddBlocks(BlockStore& store, const Shape& shape) {
  const std::size_t size = shape.GetBlockBytes();
  for (std::size_t i = 0; i < shape.blocks; ++i) store.Add(KeyOf(i), RandomBytes(i, size), size);
}

std::uint64_t ReadBlocks(BlockStore& store, const Shape& shape) {
  return SumBlocks(shape, [&](std::size_t number, unsigned char* block) {
    store.Read(KeyOf(number), block, shape.GetBlockBytes());
  });
}

void SetWork(benchmark::State& state, const Shape& shape) {
  state.SetBytesProcessed(static_cast<std::int64_t>(shape.GetBytes()) * state.iterations());
}

void Require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

std::filesystem::path StoredBlocks(const StoreKind& kind, const Shape& shape) {
  return Stored(kind, shape.name, [&](BlockStore& store) { AddBlocks(store, shape); });
}

std::filesystem::path StoredTable(const StoreKind& kind, std::size_t records) {
  return Stored(kind, "table", [&](BlockStore& store) {
    store.AddTable(RandomBytes(0, records * BlockStore::kRecordBytes), records);
  });
}

Body BodyOf(const StoreWork& work, const StoreKind& kind) {
  return [work, kind](benchmark::State& state) {
    try {
      work(state, kind);
    } catch (const std::exception& failure) {
      state.SkipWithError(failure.what());
    }
  };
}

void AddCase(Suite& suite, const std::string& name, const StoreWork& work,
             const std::map<std::string, Goals>& goals, const std::vector<Peer>& furtherPeers) {
  std::vector<Peer> peers = furtherPeers;
  for (const StoreKind& kind : {kRawFile, kHdf5, kSqlite, kLmdb}) {
    const auto found = goals.find(kind.name);
    const Goals wanted = found == goals.end() ? Goals{} : found->second;
    peers.push_back({kind.name, BodyOf(work, kind), wanted.time, wanted.size});
  }
  suite.Add("storage/" + name, BodyOf(work, kOurs), peers, Clock::Own);
}

}  // namespace qelta::bench
