#pragma once

#include <FED_DataDescriptor.h>

#include <cstddef>
#include <vector>

#include "BenchDatabase.h"

namespace qelta::bench {

/// A database with many keys, as a solver's run leaves it: for each increment, for each iteration,
/// for each load case ten kinds of results. A thousand keys share a block, since blocks are not
/// what is measured.
class KeyRegistry {
 public:
  /// Made when it is asked for first, kept until the program ends.
  static KeyRegistry& OfSize(std::size_t count);

  explicit KeyRegistry(std::size_t count);

  /// In the order in which they were stored, which is not their ascending order.
  const std::vector<FED_DataDescriptor>& GetKeys() const { return m_Keys; }

  /// The next keys of a long random order that goes round and round: `count` keys from the pointer
  /// on. `count` divides the number of keys. None remembers a position.
  const FED_DataDescriptor* NextOfShuffled(std::size_t count);

  const BenchDatabase& GetDatabase() const { return m_Database; }

 private:
  std::vector<FED_DataDescriptor> m_Keys;
  std::vector<FED_DataDescriptor> m_Shuffled;
  std::size_t m_Next = 0;
  BenchDatabase m_Database;
};

}  // namespace qelta::bench
