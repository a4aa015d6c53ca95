#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "FED_Failure.h"
#include "FED_IdMapsPool.h"
#include "FED_MemoryIdMap.h"
#include "FED_OnfMetaData.h"

namespace {

TEST(IdMapsPoolTest, AllMapsExistAndKnowTheirType) {
  FED_IdMapsPool pool;
  const FED_IdMapsPool& constPool = pool;
  for (int type = 0; type < 16; ++type) {
    FED_IdMap& map = pool.GetMap(static_cast<FED_IdType>(type));
    EXPECT_EQ(&map, &constPool.GetMap(static_cast<FED_IdType>(type)));
    EXPECT_NE(dynamic_cast<FED_MemoryIdMap*>(&map), nullptr);
    EXPECT_EQ(map.GetMaxIndex(), -1);
    try {
      map.IndexOfId(1);
      ADD_FAILURE() << "an empty map knows id 1";
    } catch (const FED_Failure& failure) {
      EXPECT_NE(failure.GetMessageText().find(FED_ID_TYPE_INFO[type].name), std::string::npos);
    }
  }
  pool.GetMap(ID_TYPE_NODE).IndexOfIdForWrite(5);
  EXPECT_FALSE(pool.GetMap(ID_TYPE_ELEMENT).ContainsId(5));
}

TEST(IdMapsPoolTest, CopiesShareTheTable) {
  auto outlives = std::make_unique<FED_IdMapsPool>();
  FED_IdMapsPool copy(*outlives);
  FED_IdMapsPool assigned;
  assigned = copy;
  FED_IdMapsPool moved(std::move(assigned));
  const auto map = std::make_shared<FED_MemoryIdMap>(ID_TYPE_NODE);
  copy.SetMap(ID_TYPE_NODE, map);
  for (FED_IdMapsPool* pool : {outlives.get(), &copy, &assigned, &moved}) {
    EXPECT_EQ(&pool->GetMap(ID_TYPE_NODE), map.get());
  }
  outlives.reset();
  moved.GetMap(ID_TYPE_ELEMENT).IndexOfIdForWrite(1);
  EXPECT_TRUE(copy.GetMap(ID_TYPE_ELEMENT).ContainsId(1));
}

TEST(IdMapsPoolTest, MissingMapsAndTypesAreFailures) {
  FED_IdMapsPool pool;
  const FED_IdMap* const before = &pool.GetMap(ID_TYPE_NODE);
  EXPECT_THROW(pool.SetMap(ID_TYPE_NODE, nullptr), FED_Failure);
  EXPECT_EQ(&pool.GetMap(ID_TYPE_NODE), before);
  for (const int number : {-1, 16, 2147483647, -2147483647 - 1}) {
    const auto type = static_cast<FED_IdType>(number);
    EXPECT_THROW(pool.GetMap(type), FED_Failure) << number;
    EXPECT_THROW(std::as_const(pool).GetMap(type), FED_Failure) << number;
    EXPECT_THROW(pool.SetMap(type, std::make_shared<FED_MemoryIdMap>(ID_TYPE_NODE)), FED_Failure)
        << number;
  }
}

}  // namespace
