#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "FED_DataBlock.h"

namespace qelta::test {

/// A block in plain containers that writes down what is asked of it: "name.Operation argument".
/// Without a list to write to it allocates nothing for that. Block-level values are the first
/// bytes of the record.
class FakeBlock : public FED_DataBlock {
 public:
  using Calls = std::vector<std::string>;

  inline static int s_Alive = 0;

  explicit FakeBlock(const FED_DataDescriptor& descriptor, Calls* calls = nullptr,
                     const char* name = "")
      : FED_DataBlock(descriptor), m_Calls(calls), m_Name(name) {
    ++s_Alive;
  }
  FakeBlock(const FED_DataDescriptor& descriptor, const std::string& format, Calls* calls = nullptr,
            const char* name = "")
      : FED_DataBlock(descriptor, format), m_Calls(calls), m_Name(name) {
    ++s_Alive;
  }
  ~FakeBlock() override {
    Note("~");
    --s_Alive;
  }

  using FED_DataBlock::GetRecordSize;
  using FED_DataBlock::GetVector;
  using FED_DataBlock::RecordBuffer;
  using FED_DataBlock::RetrieveIntSet;
  using FED_DataBlock::SetDoubleList;
  using FED_DataBlock::SetIntList;
  using FED_DataBlock::SetProperties;
  using FED_DataBlock::StoreIntSet;

  /// Makes an empty record at each index, without a note.
  void AddRecords(const std::vector<std::size_t>& indices) {
    for (const std::size_t index : indices) Bytes(index);
  }
  void DropRecord(std::size_t index) { m_Records.erase(index); }

  bool HasRecord(std::size_t index) const override {
    Note("HasRecord", index);
    return m_Records.count(index) != 0;
  }
  void SetRecord(std::size_t index, const FED_DataRecord& record) override {
    Note("SetRecord", index);
    std::copy_n(RecordBuffer(record), GetRecordSize(), Bytes(index));
  }
  void GetRecord(std::size_t index, FED_ConstDataRecord& record) const override {
    Note("GetRecord", index);
    std::copy_n(m_Records.at(index).data(), GetRecordSize(), RecordBuffer(record));
  }
  std::int64_t GetMaxIndex() const override {
    Note("GetMaxIndex");
    return m_Records.empty() ? -1 : static_cast<std::int64_t>(m_Records.rbegin()->first);
  }
  void Reserve(std::size_t count) override { Note("Reserve", count); }

  void SetInteger(std::size_t index, int value) override { Write("SetInteger", index, &value, 1); }
  int GetInteger(std::size_t index) const override { return ReadOne<int>("GetInteger", index); }
  void SetScalar(std::size_t index, double value) override { Write("SetScalar", index, &value, 1); }
  double GetScalar(std::size_t index) const override { return ReadOne<double>("GetScalar", index); }
  void SetVector(std::size_t index, const double* v) override { Write("SetVector", index, v, 3); }
  void GetVector(std::size_t index, double* v) const override { Read("GetVector", index, v, 3); }
  void SetTensor(std::size_t index, const double* v) override { Write("SetTensor", index, v, 6); }
  void GetTensor(std::size_t index, double* v) const override { Read("GetTensor", index, v, 6); }

  void FlushDestroy() override { Note("FlushDestroy"); }

  std::uint64_t GetIntListLen(std::uint64_t handle) const override {
    return m_IntLists.at(handle).size();
  }
  void GetIntList(std::uint64_t handle, FED_IntArray& out) const override {
    out.Resize(m_IntLists.at(handle).size());
    GetIntList(handle, out.data);
  }
  std::uint64_t GetIntList(std::uint64_t handle, int* out) const override {
    Note("GetIntList", handle);
    return CopyOut(m_IntLists.at(handle), out);
  }
  std::uint64_t SetIntList(const int* values, std::size_t count) override {
    Note("SetIntList", count);
    return Append(m_IntLists, {values, values + count});
  }
  std::uint64_t GetDoubleListLen(std::uint64_t handle) const override {
    return m_DoubleLists.at(handle).size();
  }
  void GetDoubleList(std::uint64_t handle, FED_DoubleArray& out) const override {
    out.Resize(m_DoubleLists.at(handle).size());
    GetDoubleList(handle, out.data);
  }
  std::uint64_t GetDoubleList(std::uint64_t handle, double* out) const override {
    return CopyOut(m_DoubleLists.at(handle), out);
  }
  std::uint64_t SetDoubleList(const double* values, std::size_t count) override {
    return Append(m_DoubleLists, {values, values + count});
  }
  void GetString(std::uint64_t handle, std::string& out) const override {
    Note("GetString", handle);
    out = m_Strings.at(handle);
  }
  std::uint64_t SetString(const std::string& text) override { return Append(m_Strings, text); }

  void DeleteData() override { Note("DeleteData"); }
  void FlushToDisk() override { Note("FlushToDisk"); }

 private:
  void Note(const char* operation) const {
    if (m_Calls != nullptr) m_Calls->push_back(std::string(m_Name) + '.' + operation);
  }
  void Note(const char* operation, std::uint64_t argument) const {
    if (m_Calls == nullptr) return;
    Note(operation);
    m_Calls->back() += ' ' + std::to_string(argument);
  }

  unsigned char* Bytes(std::size_t index) {
    return m_Records.try_emplace(index, GetRecordSize()).first->second.data();
  }
  template <class T>
  void Write(const char* operation, std::size_t index, const T* values, std::size_t count) {
    Note(operation, index);
    std::memcpy(Bytes(index), values, count * sizeof(T));
  }
  template <class T>
  void Read(const char* operation, std::size_t index, T* values, std::size_t count) const {
    Note(operation, index);
    std::memcpy(values, m_Records.at(index).data(), count * sizeof(T));
  }
  template <class T>
  T ReadOne(const char* operation, std::size_t index) const {
    T value;
    Read(operation, index, &value, 1);
    return value;
  }

  template <class T>
  static std::uint64_t CopyOut(const std::vector<T>& list, T* out) {
    std::copy(list.begin(), list.end(), out);
    return list.size();
  }
  template <class T>
  static std::uint64_t Append(std::vector<T>& lists, T list) {
    lists.push_back(std::move(list));
    return lists.size() - 1;
  }

  Calls* m_Calls;
  const char* m_Name;
  std::map<std::size_t, std::vector<unsigned char>> m_Records;
  // Handle 0 is the empty content.
  std::vector<std::vector<int>> m_IntLists{{}};
  std::vector<std::vector<double>> m_DoubleLists{{}};
  std::vector<std::string> m_Strings{{}};
};

}  // namespace qelta::test
