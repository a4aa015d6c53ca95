#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "FakeDatabase.h"

namespace qelta::test {

/// What the probes below share: the number of operations that were asked of them, and what they do
/// instead of answering.
struct Probes {
  inline static int s_Operations = 0;
  inline static std::function<void()> s_Fail;

  static void Run() {
    ++s_Operations;
    if (s_Fail) s_Fail();
  }
};

/// While one exists, every operation of a probe ends in `fail`.
class FailingProbes {
 public:
  explicit FailingProbes(std::function<void()> fail) { Probes::s_Fail = std::move(fail); }
  ~FailingProbes() { Probes::s_Fail = nullptr; }
  FailingProbes(const FailingProbes&) = delete;
  FailingProbes& operator=(const FailingProbes&) = delete;
};

/// A block that holds nothing: it remembers the last index or handle and gives fixed answers. Its
/// first field takes every plain accessor, and what is stored or fetched allocates.
class ProbeBlock : public FED_DataBlock {
 public:
  explicit ProbeBlock(const FED_DataDescriptor& descriptor = {})
      : FED_DataBlock(descriptor, "I|TLDOS") {}
  ~ProbeBlock() override = default;

  using FED_DataBlock::CreateDataRecord;
  using FED_DataBlock::SetDoubleList;
  using FED_DataBlock::SetIntList;

  mutable std::uint64_t last = 0;
  std::int64_t maxIndex = 7;
  std::uint64_t length = 3;
  const FED_ConstDataRecord* spared = nullptr;  ///< deleting it is an operation that keeps it

  bool HasRecord(std::size_t index) const override { return Ask(index, true); }
  void SetRecord(std::size_t index, const FED_DataRecord&) override { Ask(index, 0); }
  void GetRecord(std::size_t index, FED_ConstDataRecord&) const override { Ask(index, 0); }
  std::int64_t GetMaxIndex() const override { return Ask(0, maxIndex); }
  void Reserve(std::size_t count) override { Ask(count, 0); }
  void SetInteger(std::size_t index, int) override { Ask(index, 0); }
  int GetInteger(std::size_t index) const override { return Ask(index, 11); }
  void SetScalar(std::size_t index, double) override { Ask(index, 0); }
  double GetScalar(std::size_t index) const override { return Ask(index, 1.5); }
  void SetVector(std::size_t index, const double*) override { Ask(index, 0); }
  void GetVector(std::size_t index, double* v) const override { v[Ask(index, 2)] = 2.5; }
  void SetTensor(std::size_t index, const double*) override { Ask(index, 0); }
  void GetTensor(std::size_t index, double* v) const override { v[Ask(index, 5)] = 3.5; }
  FED_DataRecord& CreateDataRecord() override {
    Ask(0, 0);
    return FED_DataBlock::CreateDataRecord();
  }
  void DeleteDataRecord(FED_ConstDataRecord& record) const override {
    if (&record == spared) {
      Ask(0, 0);
    } else {
      FED_DataBlock::DeleteDataRecord(record);
    }
  }
  void FlushDestroy() override {}
  std::uint64_t GetIntListLen(std::uint64_t handle) const override { return Ask(handle, length); }
  void GetIntList(std::uint64_t handle, FED_IntArray& out) const override {
    out.Resize(Ask(handle, length));
  }
  std::uint64_t GetIntList(std::uint64_t handle, int* out) const override {
    *out = Ask(handle, 4);
    return length;
  }
  std::uint64_t SetIntList(const int* values, std::size_t count) override {
    return Ask(std::vector<int>(values, values + count).size(), 1U);
  }
  std::uint64_t GetDoubleListLen(std::uint64_t handle) const override {
    return Ask(handle, length);
  }
  void GetDoubleList(std::uint64_t handle, FED_DoubleArray& out) const override {
    out.Resize(Ask(handle, length));
  }
  std::uint64_t GetDoubleList(std::uint64_t handle, double* out) const override {
    *out = Ask(handle, 4.5);
    return length;
  }
  std::uint64_t SetDoubleList(const double* values, std::size_t count) override {
    return Ask(std::vector<double>(values, values + count).size(), 1U);
  }
  void GetString(std::uint64_t handle, std::string& out) const override {
    out.assign(Ask(handle, 40U), 's');
  }
  std::uint64_t SetString(const std::string& text) override {
    return Ask(std::string(text).size(), 1U);
  }
  void DeleteData() override {}
  void FlushToDisk() override {}

 private:
  template <class T>
  T Ask(std::uint64_t number, T answer) const {
    last = number;
    Probes::Run();
    return answer;
  }
};

/// A database whose only block is a probe.
class ProbeDatabase : public FakeDatabase {
 public:
  explicit ProbeDatabase(FED_DataBlock& block) : m_Block(&block) {}

  void CloseDb() override { Probes::Run(); }
  FED_DataBlock& FetchDataBlock(const FED_DataDescriptor&, int, std::int64_t,
                                const std::string&) override {
    return Probes::Run(), *m_Block;
  }
  FED_DataBlock& FetchDataBlock(const FED_DataDescriptor&, std::size_t) override {
    return Probes::Run(), *m_Block;
  }
  bool HasBlock(const FED_DataDescriptor&) const override { return Probes::Run(), true; }
  void DeleteDataBlock(const FED_DataDescriptor&) override { Probes::Run(); }
  void DeleteDataBlocks(const FED_DataDescriptorPattern&) override { Probes::Run(); }
  std::vector<FED_DataDescriptor> FindBlocks(const FED_DataDescriptorPattern&) const override {
    return Probes::Run(), std::vector<FED_DataDescriptor>(2);
  }

 private:
  FED_DataBlock* m_Block;
};

}  // namespace qelta::test
