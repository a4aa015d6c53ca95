#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "FED_DataDescriptorList.h"
#include "Probes.h"

namespace qelta::test {

/// What entry points write to, apart from the status and the caller's keys and lists: handle
/// variables, numbers and characters.
struct Outputs {
  FED_DataRecord* record;
  FED_DataBlock* block;
  FED_Database* database;
  FED_IntArray* intArray;
  FED_DoubleArray* doubleArray;
  std::array<std::array<std::int32_t, 8>, 2> integers;
  std::array<double, 8> doubles;
  float number;
  std::int64_t count;
  std::array<char, 64> characters;

  friend bool operator==(const Outputs& a, const Outputs& b) {
    const auto all = [](const Outputs& o) {
      return std::tie(o.record, o.block, o.database, o.intArray, o.doubleArray, o.integers,
                      o.doubles, o.number, o.count, o.characters);
    };
    return all(a) == all(b);
  }
};

/// Good arguments for every entry point: probes and what goes with them. Outputs hold marks, handle
/// variables live objects. Integers by value and by address are all `number`.
class Arguments {
 public:
  Arguments();
  ~Arguments();
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  ProbeBlock block;
  ProbeDatabase database{block};
  FED_DataRecord* record;
  FED_IntArray intArray{std::vector<int>{3, 1, 2}};
  FED_DoubleArray doubleArray{std::vector<double>{0.5}};
  FED_DataDescriptor descriptor;
  FED_DataDescriptorPattern pattern;
  FED_DataDescriptorList list;
  const char* text = "memory";
  std::int32_t number = 1;
  std::int64_t count = 1;
  std::uint64_t size = 1;
  std::array<double, 8> doubles{};
  Outputs outputs;
  std::int32_t status = 77;

 private:
  Outputs m_Marks;
};

/// One entry point of the list; those of the core stand in units FED_*.
struct EntryPointRow {
  struct Call {
    void (*run)(Arguments& arguments, std::size_t missing);
    std::vector<bool> isAddress;  ///< for each argument
    bool hasStatus;
  };
  static constexpr std::size_t kNone = 99;

  std::string unit;
  std::string name;
  std::string kinds;
  Call call;

  /// Calls it; argument number `missing`, counted from 0, is null.
  void Run(Arguments& arguments, std::size_t missing = kNone) const {
    if (name == "Database_SelectBlocks_F") arguments.text = "LABEL=memory";
    call.run(arguments, missing);
  }
};

const std::vector<EntryPointRow>& AllEntryPoints();

}  // namespace qelta::test
