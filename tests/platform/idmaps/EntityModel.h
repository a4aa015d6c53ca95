#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "FED_Failure.h"
#include "FED_MemoryIdMap.h"

namespace qelta::test {

/// What an id map must answer, kept in plain maps.
class EntityModel {
 public:
  std::int64_t GetMaxIndex() const { return m_Entities.empty() ? -1 : m_Entities.rbegin()->first; }
  /// -1 for what is not known.
  std::int64_t IndexOf(std::int32_t id) const { return Find(m_Ids, id); }
  std::int64_t IndexOf(const std::string& name) const { return Find(m_Names, name); }
  bool Contains(std::int64_t index) const { return m_Entities.count(index) != 0; }

  /// False, and nothing has changed, where a map has to refuse that.
  bool Add(std::int64_t index, std::int32_t id, const std::string& name = "") {
    const std::int64_t place = IndexOf(id), named = IndexOf(name);
    if (index < 0 || place != (Contains(index) ? index : -1)) return false;
    if (named >= 0 && named != index) return false;
    Entity& entity = m_Entities.try_emplace(index, Entity{id, ""}).first->second;
    if (!name.empty() && !entity.name.empty()) return entity.name == name;
    m_Ids[id] = index;
    if (name.empty()) return true;
    entity.name = name;
    m_Names[name] = index;
    return true;
  }

  /// Adds it to the map as well, or expects it to be refused there.
  void AddBoth(FED_MemoryIdMap& map, std::int64_t index, std::int32_t id, const std::string& name) {
    const auto add = [&] { name.empty() ? map.Add(index, id) : map.Add(index, id, name); };
    if (Add(index, id, name)) {
      ASSERT_NO_THROW(add());
    } else {
      ASSERT_THROW(add(), FED_Failure);
    }
  }

  void ExpectSame(const FED_MemoryIdMap& map) const {
    ASSERT_EQ(map.GetCount(), m_Entities.size());
    ASSERT_EQ(map.GetNameCount(), m_Names.size());
    ASSERT_EQ(map.GetMaxIndex(), GetMaxIndex());
    for (const auto& [index, entity] : m_Entities) {
      ASSERT_EQ(map.IdOfIndex(index), entity.id);
      ASSERT_EQ(map.IndexOfId(entity.id), index);
      ExpectSameName(map, index, entity.name);
      for (const std::int64_t step : {-1, 1}) {
        const auto near = static_cast<std::int32_t>(entity.id + step);
        ASSERT_EQ(map.ContainsId(near), IndexOf(near) >= 0) << near;
        ASSERT_EQ(map.ContainsIndex(index + step), Contains(index + step)) << index + step;
      }
    }
    for (int i = -3; i < 45; ++i) {
      ASSERT_EQ(map.ContainsIndex(i), Contains(i));
      ASSERT_EQ(map.ContainsId(i), IndexOf(i) >= 0);
      ASSERT_EQ(map.ContainsName(std::to_string(i)), IndexOf(std::to_string(i)) >= 0);
    }
    ExpectSameRuns(map);
  }

 private:
  struct Entity {
    std::int32_t id;
    std::string name;
  };

  template <class Indices, class Key>
  static std::int64_t Find(const Indices& indices, const Key& key) {
    const auto found = indices.find(key);
    return found == indices.end() ? -1 : found->second;
  }

  static void ExpectSameName(const FED_MemoryIdMap& map, std::int64_t index,
                             const std::string& expected) {
    ASSERT_EQ(map.HasNameAt(index), !expected.empty());
    if (expected.empty()) return;
    std::string name = "what stood before";
    map.NameOfIndex(index, name);
    ASSERT_EQ(name, expected);
    ASSERT_EQ(map.IndexOfName(name), index);
  }

  void ExpectSameRuns(const FED_MemoryIdMap& map) const {
    auto entity = m_Entities.begin();
    std::pair<std::int64_t, std::int64_t> next(0, 0);  // would continue the run before
    for (const IdRun& run : map.ListRuns()) {
      ASSERT_TRUE(entity == m_Entities.begin() ||
                  std::pair(run.index, std::int64_t{run.id}) != next);
      for (std::uint32_t i = 0; i < run.length; ++i, ++entity) {
        ASSERT_TRUE(entity != m_Entities.end() && entity->first == run.index + i &&
                    entity->second.id == run.id + std::int64_t{i});
      }
      next = {run.index + run.length, run.id + std::int64_t{run.length}};
    }
    ASSERT_TRUE(entity == m_Entities.end());
  }

  std::map<std::int64_t, Entity> m_Entities;
  std::map<std::int32_t, std::int64_t> m_Ids;
  std::map<std::string, std::int64_t> m_Names;
};

}  // namespace qelta::test
