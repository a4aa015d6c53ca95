// Strings, lists and sets that a block keeps beside its records.

#include <limits>
#include <numeric>

#include "StorageContract.h"

namespace qelta::test {
namespace {

constexpr std::uint64_t kHandleEnd = std::uint64_t{1} << 31;

using Integers = std::vector<int>;
using Doubles = std::vector<double>;

std::uint64_t Store(FED_DataBlock& block, const std::string& text) { return block.SetString(text); }
std::uint64_t Store(FED_DataBlock& block, const Integers& list) {
  return block.SetIntList(list.data(), list.size());
}
std::uint64_t Store(FED_DataBlock& block, const Doubles& list) {
  return block.SetDoubleList(list.data(), list.size());
}

void Load(const FED_DataBlock& block, std::uint64_t handle, std::string& out) {
  block.GetString(handle, out);
}

// Both forms of reading have to agree, and the pointer form writes nothing beyond the list.
template <class Value, class Array>
void TakeList(std::vector<Value>& out, const Array& array, std::uint64_t length,
              const std::function<std::uint64_t(Value*)>& read) {
  out.assign(length + 1, Value{42});
  EXPECT_EQ(read(out.data()), length);
  EXPECT_EQ(out.back(), Value{42});
  out.pop_back();
  EXPECT_TRUE(std::equal(out.begin(), out.end(), array.data, array.data + array.count));
}

void Load(const FED_DataBlock& block, std::uint64_t handle, Integers& out) {
  FED_IntArray array(Integers{1, 2, 3});
  block.GetIntList(handle, array);
  TakeList<int>(out, array, block.GetIntListLen(handle),
                [&](int* list) { return block.GetIntList(handle, list); });
}

void Load(const FED_DataBlock& block, std::uint64_t handle, Doubles& out) {
  FED_DoubleArray array(Doubles{1, 2, 3});
  block.GetDoubleList(handle, array);
  TakeList<double>(out, array, block.GetDoubleListLen(handle),
                   [&](double* list) { return block.GetDoubleList(handle, list); });
}

template <class Content>
void CheckContents(FED_DataBlock& block, std::vector<Content> contents) {
  for (std::size_t i = 0; i < 2000; ++i) contents.emplace_back(i % 37, static_cast<char>(i));
  Content large(3000000, 1);
  std::iota(large.begin(), large.end(), typename Content::value_type{});
  contents.push_back(large);
  std::vector<std::uint64_t> handles;
  for (const Content& content : contents) handles.push_back(Store(block, content));
  handles.push_back(0);
  contents.emplace_back();
  for (std::size_t i = 0; i < handles.size(); ++i) {
    Content content(3, 7);
    Load(block, handles[i], content);
    EXPECT_TRUE(content == contents[i]) << i;
    EXPECT_LT(handles[i], kHandleEnd);
  }
}

TEST_P(StorageContract, ContentReadsBackUnderItsHandle) {
  FED_DataBlock& block = Make(CustomKey(1), "I|d");
  using Limits = std::numeric_limits<double>;
  CheckContents<std::string>(block, {"", "%s%n%Iu", std::string(3, '\0'), " \xc3\xa9\xff"});
  CheckContents<Integers>(block, {{}, {5, 3, 3, -1}, {INT32_MIN, INT32_MAX}});
  CheckContents<Doubles>(block, {{}, {-0.0}, {Limits::infinity(), Limits::denorm_min()}});
  const int integer = 1;
  const double number = 1;
  // So many that their bytes, counted in 64 bits, seem few.
  EXPECT_THROW(block.SetIntList(&integer, SIZE_MAX / 4 + 2), std::exception);
  EXPECT_THROW(block.SetDoubleList(&number, SIZE_MAX / 8 + 2), std::exception);
  EXPECT_EQ(block.GetMaxIndex(), -1);
}

struct Read {
  const char* name;
  std::size_t kind;  // position in the handles below
  std::function<void(const FED_DataBlock&, std::uint64_t)> run;
};

std::string s_Text;
FED_IntArray s_Integers;
FED_DoubleArray s_Doubles;
double s_Room[8];

const Read kReads[] = {
    {"string", 0, [](auto& block, auto handle) { block.GetString(handle, s_Text); }},
    {"int length", 1, [](auto& block, auto handle) { block.GetIntListLen(handle); }},
    {"int array", 1, [](auto& block, auto handle) { block.GetIntList(handle, s_Integers); }},
    {"int list", 1,
     [](auto& block, auto handle) { block.GetIntList(handle, reinterpret_cast<int*>(s_Room)); }},
    {"double length", 2, [](auto& block, auto handle) { block.GetDoubleListLen(handle); }},
    {"double array", 2, [](auto& block, auto handle) { block.GetDoubleList(handle, s_Doubles); }},
    {"double list", 2, [](auto& block, auto handle) { block.GetDoubleList(handle, s_Room); }}};

TEST_P(StorageContract, AHandleServesOnlyTheContentItWasGivenFor) {
  FED_DataBlock& block = Make(CustomKey(56), "I|d");
  const std::uint64_t handles[] = {Store(block, "text"), Store(block, Integers{1, 2}),
                                   Store(block, Doubles{1, 2})};
  std::vector<std::uint64_t> unknown = {1000, kHandleEnd, 0xffffffff80000001u, ~std::uint64_t{0}};
  for (const std::uint64_t handle : handles) unknown.push_back((std::uint64_t{1} << 32) + handle);
  for (const Read& read : kReads) {
    SCOPED_TRACE(read.name);
    std::vector<std::uint64_t> wrong = unknown;
    for (std::size_t kind = 0; kind < 3; ++kind) {
      if (kind != read.kind) wrong.push_back(handles[kind]);
    }
    for (const std::uint64_t handle : wrong) {
      ExpectFailure([&] { read.run(block, handle); }, {"ITERATION=56", std::to_string(handle)});
    }
    EXPECT_NO_THROW(read.run(block, handles[read.kind]));
    EXPECT_NO_THROW(read.run(block, 0));
  }
}

TEST_P(StorageContract, SetsComeBackAsSets) {
  FED_DataBlock& block = Make(CustomKey(1), "I|OLSD");
  FED_IntSetIntvl<int> set;
  set.Insert(std::numeric_limits<int>::min());
  set.Insert(-3, 100000);
  set.Insert(std::numeric_limits<int>::max() - 1, std::numeric_limits<int>::max());
  const Cursor cursor(block);
  block.SetRecord(7, *cursor);
  cursor->SetIntSet(1, set);
  cursor->SetIntList(2, {5, 3, 3, 4, 9});
  block.SetRecord(0, *cursor);
  const Cursor reader(std::as_const(block));
  block.GetRecord(0, *reader);
  EXPECT_EQ(reader->GetIntSet(1), set);
  EXPECT_EQ(reader->GetIntListLen(2), 5u);
  EXPECT_EQ(reader->GetIntSet(2).NumIntervals(), 2u);
  block.GetRecord(7, *reader);  // nothing was ever stored in its fields
  EXPECT_TRUE(reader->GetIntSet(1).Empty());
  EXPECT_EQ(reader->GetIntListLen(2) + reader->GetDoubleListLen(4), 0u);
  EXPECT_EQ(reader->GetString(3), "");
}

}  // namespace
}  // namespace qelta::test
