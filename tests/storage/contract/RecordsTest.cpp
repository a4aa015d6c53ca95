// Single records: where they are, what is not there, and the values at block level.

#include <array>
#include <cstring>

#include "StorageContract.h"

namespace qelta::test {
namespace {

constexpr std::size_t kMaxIndex = 0x7fffffff;
const std::size_t kBeyond[] = {kMaxIndex + 1,
                               std::size_t{1} << 32,
                               (std::size_t{1} << 32) + 3,  // 3 when cut to 32 bits
                               std::size_t{1} << 63,
                               SIZE_MAX - 1,
                               SIZE_MAX};

// An operation on one record of this format.
const char* const kFormat = "I|IdVT";
double s_Room[16] = {1, 2, 3, 4, 5, 6};

struct Operation {
  const char* name;
  bool writes;
  std::function<void(FED_DataBlock&, std::size_t)> run;
};

const Operation kOperations[] = {
    {"GetRecord", false, [](auto& block, auto i) { ReadRecord(block, i); }},
    {"GetInteger", false, [](auto& block, auto i) { block.GetInteger(i); }},
    {"GetScalar", false, [](auto& block, auto i) { block.GetScalar(i); }},
    {"GetVector", false, [](auto& block, auto i) { block.GetVector(i); }},
    {"GetTensor", false, [](auto& block, auto i) { block.GetTensor(i, s_Room); }},
    {"ReadRun", false, [](auto& block, auto i) { RunsOf(block).ReadRun(i, 1, s_Room); }},
    {"ReadColumn", false, [](auto& block, auto i) { RunsOf(block).ReadColumn(3, i, 1, s_Room); }},
    {"SetRecord", true, [](auto& block, auto i) { WriteRecord(block, i, Bytes(84)); }},
    {"SetInteger", true, [](auto& block, auto i) { block.SetInteger(i, 1); }},
    {"SetScalar", true, [](auto& block, auto i) { block.SetScalar(i, 1); }},
    {"SetVector", true, [](auto& block, auto i) { block.SetVector(i, s_Room); }},
    {"SetTensor", true, [](auto& block, auto i) { block.SetTensor(i, s_Room); }},
    {"WriteRun", true, [](auto& block, auto i) { RunsOf(block).WriteRun(i, 1, s_Room); }},
    {"WriteColumn", true, [](auto& block, auto i) { RunsOf(block).WriteColumn(4, i, 1, s_Room); }}};

TEST_P(StorageContract, ARecordMayStandAtAnyIndex) {
  const std::size_t places[] = {0, 1, 63, 64, 65, 1023, 1024, 1025, 65535, 65536, kMaxIndex};
  int iteration = 0;
  for (const std::size_t place : places) {
    SCOPED_TRACE(place);
    // Wide records: room for every index below the highest would be half a terabyte.
    FED_DataBlock& block = Make(CustomKey(++iteration), "I|dTTTTT");
    for (unsigned seed = 0; seed < 2; ++seed) {
      const Bytes bytes = SomeBytes(block.GetRecordSize(), seed);
      WriteRecord(block, place, bytes);
      EXPECT_EQ(ReadRecord(block, place), bytes);
    }
    EXPECT_EQ(block.GetMaxIndex(), static_cast<std::int64_t>(place));
    EXPECT_EQ(block.GetNumRecords(), place + 1);
    for (const std::size_t other : places) EXPECT_EQ(block.HasRecord(other), other == place);
    for (const std::size_t other : kBeyond) EXPECT_FALSE(block.HasRecord(other));
    EXPECT_FALSE(block.HasRecord(place + 1) || block.HasRecord(place - 1));
    FED_IntSetIntvl<int> expected;
    expected.Insert(static_cast<int>(place));
    EXPECT_EQ(block.GetRecordIndices(), expected);
  }
}

TEST_P(StorageContract, WhatIsNotThereIsReportedWithBlockIndexAndRange) {
  int iteration = 500;
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    FED_DataBlock& block = Make(CustomKey(++iteration), kFormat);
    const auto expectFailure = [&](std::size_t index, const char* range) {
      ExpectFailure([&] { operation.run(block, index); },
                    {CustomKey(iteration).ToString(), std::to_string(index), range});
    };
    if (!operation.writes) expectFailure(777, "-1");
    for (const std::size_t index : {3u, 1234u}) WriteRecord(block, index, Bytes(84));
    const std::string before = Describe(block);
    for (const std::size_t index : kBeyond) expectFailure(index, "2147483647");
    EXPECT_NO_THROW(operation.run(block, operation.writes ? kMaxIndex : 1234));
    EXPECT_EQ(Describe(block) == before, !operation.writes);
    if (operation.writes) continue;
    for (const std::size_t index : {0u, 4u, 1233u, 1235u, 70000u, 2147483647u}) {
      expectFailure(index, "1234");
    }
  }
}

template <class T>
Bytes AsBytes(const T& value) {
  Bytes bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

// A value at block level: the characters of the fields that it fits, its bytes, access to it.
struct Value {
  const char* name;
  const char* fields;
  Bytes bytes;
  std::function<void(FED_DataBlock&, std::size_t)> set;
  std::function<Bytes(const FED_DataBlock&, std::size_t)> get;
};

using Vector = std::array<double, 3>;
using Tensor = std::array<double, 6>;
const Vector kVector = {1.5, -0.0, 1e-310};
const Tensor kTensor = {-1, 2, -3, 4, -5, 6e300};

const Value kValues[] = {
    {"integer", "Ii", AsBytes(-7), [](auto& block, auto index) { block.SetInteger(index, -7); },
     [](auto& block, auto index) { return AsBytes(block.GetInteger(index)); }},
    {"scalar", "dt", AsBytes(0.1), [](auto& block, auto index) { block.SetScalar(index, 0.1); },
     [](auto& block, auto index) { return AsBytes(block.GetScalar(index)); }},
    {"vector", "V", AsBytes(kVector),
     [](auto& block, auto index) { block.SetVector(index, kVector.data()); },
     [](auto& block, auto index) {
       Vector vector;
       block.GetVector(index, vector.data());
       return AsBytes(vector);
     }},
    {"tensor", "T", AsBytes(kTensor),
     [](auto& block, auto index) { block.SetTensor(index, kTensor.data()); },
     [](auto& block, auto index) {
       Tensor tensor;
       block.GetTensor(index, tensor.data());
       return AsBytes(tensor);
     }}};

// Bytes before the first field that the value fits; -1 when there is none.
int PlaceOf(const Value& value, const std::string& format) {
  int offset = 0;
  for (const char field : format.substr(2)) {
    if (std::strchr(value.fields, field) != nullptr) return offset;
    offset += field == 'V' ? 24 : field == 'T' ? 48 : std::strchr("dt", field) != nullptr ? 8 : 4;
  }
  return -1;
}

// The record at 70 is absent before, the one at 71 is there.
void CheckValue(FED_DataBlock& block, const Value& value, int place) {
  Bytes records[] = {Bytes(block.GetRecordSize()), SomeBytes(block.GetRecordSize(), 9)};
  WriteRecord(block, 71, records[1]);
  for (const std::size_t i : {0u, 1u}) {
    if (place < 0) {
      const auto parts = {block.GetDescriptor().ToString(), block.GetFormat()};
      ExpectFailure([&] { value.set(block, 70 + i); }, parts);
      ExpectFailure([&] { value.get(block, 70 + i); }, parts);
    } else {
      value.set(block, 70 + i);
      std::copy(value.bytes.begin(), value.bytes.end(), records[i].begin() + place);
      EXPECT_EQ(value.get(block, 70 + i), value.bytes);
      EXPECT_EQ(ReadRecord(block, 70), records[0]);
    }
  }
  EXPECT_EQ(ReadRecord(block, 71), records[1]);
  EXPECT_EQ(block.GetRecordIndices().Size(), place < 0 ? 1u : 2u);
}

TEST_P(StorageContract, ValuesAtBlockLevelLiveInTheFirstFittingField) {
  const char* const formats[] = {"I|I",  "I|i",          "I|d",     "I|t",   "I|V",       "I|T",
                                 "I|f",  "I|S",          "I|O",     "I|L",   "I|D",       "I|",
                                 "S|td", "I|fSiIdtVVTT", "I|TVLDO", "I|fVd", "S|OLSDfTdI"};
  int iteration = 0;
  for (const std::string format : formats) {
    for (const Value& value : kValues) {
      SCOPED_TRACE(format + " " + value.name);
      CheckValue(Make(CustomKey(++iteration), format), value, PlaceOf(value, format));
    }
  }
}

}  // namespace
}  // namespace qelta::test
