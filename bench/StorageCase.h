#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "BlockStore.h"
#include "Suite.h"

namespace qelta::bench {

/// A number of blocks of one size, made of records of 24 bytes.
struct Shape {
  static constexpr std::size_t kVectorBytes = 24;

  std::string name;
  std::size_t blocks;
  std::size_t recordsOfBlock;

  std::size_t GetBlockBytes() const { return recordsOfBlock * kVectorBytes; }
  std::size_t GetBytes() const { return blocks * GetBlockBytes(); }
};

inline const Shape kSmall{"1 KB", 100000, 42};
inline const Shape kMedium{"1 MB", 1000, 43690};
inline const Shape kLarge{"100 MB", 20, 4369000};

/// The key of the block with this number, in the order of a solver's run, which is ascending: for
/// each iteration five kinds of vectors of ten load cases.
BlockKey KeyOf(std::size_t number);

/// Random bytes of which every number gives another piece. Stays as long as the program.
const unsigned char* RandomBytes(std::size_t number, std::size_t size);

/// A sum over some of the bytes, wide apart: who wants it right has to read them all.
std::uint64_t SparseSum(const unsigned char* bytes, std::size_t size);

/// What the blocks of a shape hold: entry i is the number of the random bytes of block i.
using Contents = std::vector<std::size_t>;
Contents FirstContents(const Shape& shape);
std::uint64_t SumOf(const Shape& shape, const Contents& contents);

void AddBlocks(BlockStore& store, const Shape& shape);
/// Reads all blocks into the same memory; the same sum, if all is right.
std::uint64_t ReadBlocks(BlockStore& store, const Shape& shape);

/// Calls `read(number, bytes)` for each block of the shape. A block counts by its place, so that
/// none stands for another.
template <class Read>
std::uint64_t SumBlocks(const Shape& shape, Read read) {
  std::vector<unsigned char> block(shape.GetBlockBytes());
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < shape.blocks; ++i) {
    read(i, block.data());
    sum += (i + 1) * SparseSum(block.data(), block.size());
  }
  return sum;
}

/// Tells what one iteration works on.
void SetWork(benchmark::State& state, const Shape& shape);

void Require(bool holds, const char* what);

/// Where in its folder a store keeps its files.
inline constexpr const char* kStoreName = "store";

/// Files with the blocks of a shape, or with a table: written when they are asked for first, they
/// stay until other content is asked for, of whatever store.
std::filesystem::path StoredBlocks(const StoreKind& kind, const Shape& shape);
std::filesystem::path StoredTable(const StoreKind& kind, std::size_t records);

/// Seconds that `work` takes on the wall clock.
template <class Work>
double Clocked(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

extern const StoreKind kOurs;
extern const StoreKind kRawFile;
extern const StoreKind kHdf5;
extern const StoreKind kSqlite;
extern const StoreKind kLmdb;

/// `work` for every kind of store, ours beside the others; a failure ends the case, nothing else.
using StoreWork = std::function<void(benchmark::State&, const StoreKind&)>;
Body BodyOf(const StoreWork& work, const StoreKind& kind);

/// What we want to reach beside a peer.
struct Goals {
  double time = Peer::kNoGoal;
  double size = Peer::kNoGoal;
};

/// The case "storage/<name>". Goals by the name of the peer.
void AddCase(Suite& suite, const std::string& name, const StoreWork& work,
             const std::map<std::string, Goals>& goals = {},
             const std::vector<Peer>& furtherPeers = {});

}  // namespace qelta::bench
