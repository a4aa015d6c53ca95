#include <gtest/gtest.h>

#include <type_traits>

#include "QeltaMatrix.h"
#include "QeltaStrongType.h"

namespace {

using Apples = QeltaStrongType<int, struct AppleTag>;
using Pears = QeltaStrongType<int, struct PearTag>;

static_assert(sizeof(Apples) == sizeof(int) && alignof(Apples) == alignof(int));
static_assert(std::is_trivially_copyable_v<Apples> && std::is_standard_layout_v<Apples>);
static_assert(!std::is_convertible_v<int, Apples> && !std::is_convertible_v<Apples, int>);
static_assert(!std::is_convertible_v<Apples, Pears> && !std::is_constructible_v<Pears, Apples>);

TEST(StrongTypeTest, ComparesByValue) {
  const Apples one(1), two(2);
  EXPECT_EQ(Apples().value(), 0);
  EXPECT_TRUE(one == Apples(1) && one != two && one < two && two > one);
  EXPECT_TRUE(one <= two && one <= Apples(1) && two >= one);
  EXPECT_FALSE(one == two || one != Apples(1) || two < one || one > two || two <= one);
}

TEST(MatrixTest, StandsRowByRow) {
  QeltaMatrix<2, 3, int> matrix;
  static_assert(sizeof matrix == 6 * sizeof(int));
  for (std::size_t i = 0; i < matrix.size(); ++i) EXPECT_EQ(matrix[i], 0);
  int next = 0;
  for (std::size_t row = 0; row < 2; ++row) {
    for (std::size_t column = 0; column < 3; ++column) matrix(row, column) = next++;
  }
  const QeltaMatrix<2, 3, int> copy = matrix;
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(copy[i], static_cast<int>(i));
    EXPECT_EQ(copy.data()[i], copy(i / 3, i % 3));
  }
}

}  // namespace
