#include "EntryPointTable.h"

#include <type_traits>
#include <utility>

// The header of each unit of the list.
#include "EntryPointHeaders.inc"

class FED_IdDataBlock;
class FED_IdDataRecord;

namespace qelta::test {
namespace {

FED_DataRecord* NewRecord(FED_DataBlock& block) { return &block.FED_DataBlock::CreateDataRecord(); }

void Destroy(FED_DataBlock& block, FED_DataRecord* record) {
  block.FED_DataBlock::DeleteDataRecord(*record);
}
template <class T>
void Destroy(FED_DataBlock&, T* object) {
  delete object;
}

// What a handle variable held, which a delete entry point has destroyed, and what it holds now.
template <class T>
void Destroy(FED_DataBlock& block, T* before, T* now) {
  if (now == nullptr) return;
  Destroy(block, before);
  if (now != before) Destroy(block, now);
}

// The argument of each type.
class Filler {
 public:
  explicit Filler(Arguments& arguments) : m_A(arguments) {}

  void Fill(FED_DataBlock*& a) { a = &m_A.block; }
  void Fill(FED_DataBlock**& a) { a = &m_A.outputs.block; }
  void Fill(FED_DataRecord*& a) { a = m_A.record; }
  void Fill(FED_DataRecord**& a) { a = &m_A.outputs.record; }
  void Fill(FED_Database*& a) { a = &m_A.database; }
  void Fill(FED_Database**& a) { a = &m_A.outputs.database; }
  void Fill(FED_IntArray*& a) { a = &m_A.intArray; }
  void Fill(FED_IntArray**& a) { a = &m_A.outputs.intArray; }
  void Fill(FED_DoubleArray*& a) { a = &m_A.doubleArray; }
  void Fill(FED_DoubleArray**& a) { a = &m_A.outputs.doubleArray; }
  void Fill(FED_DataDescriptorList*& a) { a = &m_A.list; }
  void Fill(FED_DataDescriptor*& a) { a = &m_A.descriptor; }
  void Fill(const FED_DataDescriptor*& a) { a = &m_A.descriptor; }
  void Fill(FED_DataDescriptorPattern*& a) { a = &m_A.pattern; }
  void Fill(const FED_DataDescriptorPattern*& a) { a = &m_A.pattern; }
  void Fill(const char*& a) { a = m_A.text; }
  void Fill(char*& a) { a = m_A.outputs.characters.data(); }
  void Fill(const std::int32_t*& a) { a = &m_A.number; }
  void Fill(std::int32_t*& a) { a = m_A.outputs.integers[m_IntegerOutputs++].data(); }
  void Fill(const std::int64_t*& a) { a = &m_A.count; }
  void Fill(std::int64_t*& a) { a = &m_A.outputs.count; }
  void Fill(const std::uint64_t*& a) { a = &m_A.size; }
  void Fill(const double*& a) { a = m_A.doubles.data(); }
  void Fill(double*& a) { a = m_A.outputs.doubles.data(); }
  void Fill(float*& a) { a = &m_A.outputs.number; }
  void Fill(const void*& a) { a = m_A.doubles.data(); }
  void Fill(void*& a) { a = m_A.outputs.doubles.data(); }
  void Fill(std::int32_t& a) { a = m_A.number; }
  // No operation runs on views and their cursors here; an address is all it takes.
  void Fill(FED_IdDataBlock*& a) { a = reinterpret_cast<FED_IdDataBlock*>(&m_A); }
  void Fill(FED_IdDataBlock**& a) { a = reinterpret_cast<FED_IdDataBlock**>(&m_A); }
  void Fill(FED_IdDataRecord*& a) { a = reinterpret_cast<FED_IdDataRecord*>(&m_A); }
  void Fill(FED_IdDataRecord**& a) { a = reinterpret_cast<FED_IdDataRecord**>(&m_A); }
  void Fill(double& a) { a = m_A.number; }
  void Fill(float& a) { a = 1; }

 private:
  Arguments& m_A;
  std::size_t m_IntegerOutputs = 0;
};

template <class T>
void Drop(T*& argument) {
  argument = nullptr;
}
template <class T>
void Drop(T&) {}

template <class... A>
using Last = std::tuple_element_t<sizeof...(A) - 1, std::tuple<A...>>;

// An int32 output at the end is the status.
template <class... A>
constexpr bool kHasStatus = std::is_same_v<Last<A...>, std::int32_t*>;

// A table of calls of one signature: a plain function pointer for each entry point.
template <auto Entry, class... A>
void Run(Arguments& arguments, std::size_t missing) {
  std::tuple<A...> all;
  Filler filler(arguments);
  const auto fill = [&](auto& first, auto&... rest) {
    std::size_t i = 0;
    const auto one = [&](auto& argument) {
      filler.Fill(argument);
      if (i++ == missing) Drop(argument);
    };
    one(first);
    (one(rest), ...);
  };
  std::apply(fill, all);
  if constexpr (kHasStatus<A...>) {
    if (missing != sizeof...(A) - 1) std::get<sizeof...(A) - 1>(all) = &arguments.status;
  }
  std::apply(Entry, all);
}

template <auto Entry, class... A>
EntryPointRow::Call WrapSignature(void (*)(A...) noexcept) {
  return {&Run<Entry, A...>, {std::is_pointer_v<A>...}, kHasStatus<A...>};
}

template <auto Entry>
EntryPointRow::Call Wrap() {
  return WrapSignature<Entry>(Entry);
}

}  // namespace

Arguments::Arguments() : record(NewRecord(block)), outputs() {
  outputs.record = NewRecord(block);
  outputs.block = &block;
  outputs.database = new ProbeDatabase(block);
  outputs.intArray = new FED_IntArray(intArray);
  outputs.doubleArray = new FED_DoubleArray(doubleArray);
  for (auto& integers : outputs.integers) integers.fill(-123456);
  outputs.doubles.fill(-0.25);
  outputs.number = -0.25F;
  outputs.count = -654321;
  outputs.characters.fill('#');
  block.spared = outputs.record;
  m_Marks = outputs;
  // Every field holds a text, so that none is asked for in vain.
  for (std::size_t i = 0; i < FED_DataDescriptor::FIELD_COUNT; ++i) {
    descriptor.SetString(FED_DataDescriptor::CastIndex(i), "a text of the descriptor");
  }
}

Arguments::~Arguments() {
  Destroy(block, record);
  Destroy(block, m_Marks.record, outputs.record);
  Destroy(block, m_Marks.database, outputs.database);
  Destroy(block, m_Marks.intArray, outputs.intArray);
  Destroy(block, m_Marks.doubleArray, outputs.doubleArray);
}

const std::vector<EntryPointRow>& AllEntryPoints() {
  static const std::vector<EntryPointRow> rows = {
#include "EntryPointRows.inc"
  };
  return rows;
}

}  // namespace qelta::test
