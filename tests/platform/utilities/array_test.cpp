#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <utility>

#include "FED_DoubleArray.h"
#include "FED_IntArray.h"
#include "FailingAllocation.h"

namespace {

template <class Array>
class ArrayTest : public testing::Test {
 public:
  using Value = std::remove_pointer_t<decltype(Array::data)>;
  using Values = std::vector<Value>;

  static Values Elements(const Array& array) { return {array.data, array.data + array.count}; }
};

using Arrays = testing::Types<FED_IntArray, FED_DoubleArray>;
TYPED_TEST_SUITE(ArrayTest, Arrays, );

TYPED_TEST(ArrayTest, LayoutIsThreeWords) {
  EXPECT_EQ(offsetof(TypeParam, count), 0u);
  EXPECT_EQ(offsetof(TypeParam, reserved), 8u);
  EXPECT_EQ(offsetof(TypeParam, data), 16u);
  EXPECT_EQ(sizeof(TypeParam), 24u);
}

TYPED_TEST(ArrayTest, ResizesAndCopiesLikeAVector) {
  std::mt19937 random(7);
  TypeParam array;
  typename TestFixture::Values model;
  for (int step = 0; step < 3000; ++step) {
    const std::size_t count = random() % 40;
    array.Resize(count);
    model.resize(count);
    for (std::size_t i = 0; i < count; i += 1 + random() % 5) {
      array.data[i] = model[i] = static_cast<typename TestFixture::Value>(random() % 1000);
    }
    const TypeParam copy(array);
    TypeParam assigned(typename TestFixture::Values{1, 2, 3});
    assigned = copy;
    ASSERT_EQ(this->Elements(array), model);
    ASSERT_EQ(this->Elements(copy), model);
    if (step % 3 == 0) array = std::move(assigned);
    if (step % 5 == 0) array = TypeParam(model);
  }
}

TYPED_TEST(ArrayTest, CopiesAreDeepAndMovesLeaveNothing) {
  TypeParam first(typename TestFixture::Values{1, 2, 3});
  first.reserved = 42;
  TypeParam second = first;
  second.data[0] = 9;
  EXPECT_EQ(first.data[0], 1);
  EXPECT_EQ(second.reserved, 42u);

  TypeParam third = std::move(first);
  EXPECT_EQ(first.count, 0u);
  EXPECT_EQ(first.data, nullptr);
  EXPECT_EQ(this->Elements(third), (typename TestFixture::Values{1, 2, 3}));

  TypeParam& same = third;
  third = same;
  third = std::move(same);
  EXPECT_EQ(third.count, 3u);
}

TYPED_TEST(ArrayTest, ResizeNeverLooksAtTheReservedWord) {
  TypeParam array;
  for (const std::uint64_t count : {4u, 2u, 100u, 0u, 7u}) {
    array.reserved = ~std::uint64_t{0};
    array.Resize(count);
    EXPECT_EQ(array.reserved, ~std::uint64_t{0});
  }
}

TYPED_TEST(ArrayTest, AbsurdCountsAreRefusedAndChangeNothing) {
  TypeParam array(typename TestFixture::Values{1, 2, 3});
  for (const std::uint64_t count : {~std::uint64_t{0}, std::uint64_t{1} << 63,
                                    std::uint64_t{1} << 62, (std::uint64_t{1} << 61) + 1}) {
    EXPECT_THROW(array.Resize(count), std::bad_alloc) << count;
    EXPECT_EQ(this->Elements(array), (typename TestFixture::Values{1, 2, 3}));
  }
}

TYPED_TEST(ArrayTest, FailingAllocationChangesNothing) {
  const typename TestFixture::Values before = {1, 2, 3};
  const TypeParam source(typename TestFixture::Values{4, 5, 6, 7});
  TypeParam array(before);
  const auto unchanged = [&] { EXPECT_EQ(this->Elements(array), before); };
  EXPECT_GT(qelta::test::ForEachFailingAllocation([&] { array.Resize(50); }, unchanged), 0u);
  array = TypeParam(before);
  EXPECT_GT(qelta::test::ForEachFailingAllocation([&] { array = source; }, unchanged), 0u);
  EXPECT_EQ(qelta::test::ForEachFailingAllocation([&] { array.Resize(1); }, unchanged), 0u);
}

}  // namespace
