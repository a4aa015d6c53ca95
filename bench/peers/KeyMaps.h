#pragma once

#include <FED_DataDescriptor.h>

#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

#include "KeyBytes.h"

namespace qelta::bench {

struct OwnHash {
  std::size_t operator()(const FED_DataDescriptor& key) const {
    return static_cast<std::size_t>(static_cast<unsigned>(key.Hash()));
  }
};

/// Spreads keys that differ little, which `FED_DataDescriptor::Hash` does not.
struct MixedHash {
  std::size_t operator()(const FED_DataDescriptor& key) const {
    const KeyBytes bytes(key);
    std::uint64_t hash = bytes.Mask();
    for (std::uint32_t rest = bytes.Mask(); rest != 0; rest &= rest - 1) {
      hash ^= bytes.Slot(static_cast<std::size_t>(__builtin_ctz(rest)));
      hash *= 0x9e3779b97f4a7c15U;
      hash ^= hash >> 32;
    }
    return static_cast<std::size_t>(hash);
  }
};

struct KeyEqual {
  bool operator()(const FED_DataDescriptor& a, const FED_DataDescriptor& b) const {
    return a.EqualTo(b);
  }
};

using OrderedKeyMap = std::map<FED_DataDescriptor, int>;
template <class Hash>
using HashedKeyMap = std::unordered_map<FED_DataDescriptor, int, Hash, KeyEqual>;

/// A map of the keys, entered in the given order, made once for each number of keys.
template <class Map>
const Map& MapOf(const std::vector<FED_DataDescriptor>& keys) {
  static std::map<std::size_t, Map> maps;
  Map& map = maps[keys.size()];
  if (map.empty()) {
    for (const FED_DataDescriptor& key : keys) map.emplace(key, static_cast<int>(map.size()));
  }
  return map;
}

}  // namespace qelta::bench
