#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "FED_Failure.h"
#include "FED_IdMapsPool.h"
#include "FED_OnfInfoPool.h"
#include "FakeDatabase.h"

namespace qelta::test {

using Calls = FakeBlock::Calls;

/// The calls in one line, without the walks over records.
inline std::string Journal(const Calls& calls) {
  std::string line;
  for (const std::string& call : calls) {
    if (call.find(".GetMaxIndex") != call.npos || call.find(".HasRecord") != call.npos) continue;
    line += (line.empty() ? "" : ", ") + call;
  }
  return line;
}

/// An id map of 20 entities that writes down what it is asked: "name.Operation argument". Entity i
/// has the id `firstId` + i and the name "n<i>". The operations for writing answer with an index of
/// their own, 50 higher, so that it shows who was asked.
class RecordingIdMap : public FED_IdMap {
 public:
  static constexpr std::int64_t kCount = 20;
  static constexpr std::int64_t kWritten = 50;

  RecordingIdMap(std::string name, std::int32_t firstId, Calls& calls)
      : m_Name(std::move(name)), m_FirstId(firstId), m_Calls(calls) {}

  bool ContainsName(const std::string& name) const override {
    Note("ContainsName", name);
    return IsEntity(Find(name));
  }
  bool ContainsId(std::int32_t id) const override {
    Note("ContainsId", std::to_string(id));
    return IsEntity(std::int64_t{id} - m_FirstId);
  }
  void NameOfIndex(std::int64_t index, std::string& name) const override {
    Note("NameOfIndex", std::to_string(index));
    name += "n" + std::to_string(Require(index));
  }
  std::int32_t IdOfIndex(std::int64_t index) const override {
    Note("IdOfIndex", std::to_string(index));
    return m_FirstId + static_cast<std::int32_t>(Require(index));
  }
  bool ContainsIndex(std::int64_t index) const override {
    Note("ContainsIndex", std::to_string(index));
    return IsEntity(index);
  }
  std::int64_t IndexOfName(const std::string& name) const override {
    Note("IndexOfName", name);
    return Require(Find(name));
  }
  std::int64_t IndexOfId(std::int32_t id) const override {
    Note("IndexOfId", std::to_string(id));
    return Require(std::int64_t{id} - m_FirstId);
  }
  std::int64_t IndexOfNameForWrite(const std::string& name) override {
    Note("IndexOfNameForWrite", name);
    return Require(Find(name)) + kWritten;
  }
  std::int64_t IndexOfIdForWrite(std::int32_t id) override {
    Note("IndexOfIdForWrite", std::to_string(id));
    return Require(std::int64_t{id} - m_FirstId) + kWritten;
  }

 private:
  static bool IsEntity(std::int64_t index) { return 0 <= index && index < kCount; }
  static std::int64_t Find(const std::string& name) {
    return name[0] == 'n' ? std::stoi(name.substr(1)) : -1;
  }
  std::int64_t Require(std::int64_t index) const {
    if (!IsEntity(index)) FED_Failure::Throw("900000000001", m_Name.c_str(), "unknown");
    return index;
  }
  void Note(const char* operation, const std::string& argument) const {
    m_Calls.push_back(m_Name + '.' + operation + ' ' + argument);
  }

  std::string m_Name;
  std::int32_t m_FirstId;
  Calls& m_Calls;
};

/// Sets recording maps for all id types: the map of type t has the name `prefix` + t, and entity i
/// of that type has the id `firstId` + 1000 t + i.
inline void SetRecordingMaps(FED_IdMapsPool& pool, const std::string& prefix, std::int32_t firstId,
                             Calls& calls) {
  for (std::int32_t type = 0; type < 16; ++type) {
    pool.SetMap(static_cast<FED_IdType>(type),
                std::make_shared<RecordingIdMap>(prefix + std::to_string(type),
                                                 firstId + 1000 * type, calls));
  }
}

/// Changes what is known of a block kind or of a record format for as long as it exists; the
/// catalogue does not hold every combination of id types and write-lookup flags.
class ChangedKind {
 public:
  explicit ChangedKind(FED_OnfId onf) : ChangedKind(FED_OnfInfoPool::GetOnfInfo(onf)) {}
  explicit ChangedKind(const std::string& format)
      : ChangedKind(FED_OnfInfoPool::FetchOnfInfo(format)) {}
  ~ChangedKind() { m_Kind = m_Former; }
  ChangedKind(const ChangedKind&) = delete;
  ChangedKind& operator=(const ChangedKind&) = delete;

  const FED_OnfMetaData* operator->() const { return &m_Kind; }

  /// `type` 15: no map.
  ChangedKind& Set(std::size_t position, int type, bool registers) {
    m_Kind.idTypes[position] = static_cast<FED_IdType>(type);
    m_Kind.writeLookup[position] = registers;
    return *this;
  }

 private:
  explicit ChangedKind(const FED_OnfMetaData& kind)
      : m_Kind(const_cast<FED_OnfMetaData&>(kind)), m_Former(kind) {}

  FED_OnfMetaData& m_Kind;
  FED_OnfMetaData m_Former;
};

}  // namespace qelta::test
