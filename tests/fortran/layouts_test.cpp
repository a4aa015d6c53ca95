// Records that Fortran and C++ share, each side reading what the other wrote.

#include <gtest/gtest.h>

#include "FED_DataDescriptorList.h"
#include "FED_DataDescriptorPattern.h"
#include "RawBytes.h"

extern "C" {
void fortran_measure(std::int64_t* numbers);
void fortran_fill_descriptor(FED_DataDescriptor* descriptor);
void fortran_fresh_descriptor(FED_DataDescriptor* descriptor);
void fortran_fill_pattern(FED_DataDescriptorPattern* pattern);
int fortran_grow_list(FED_DataDescriptorList* list, int more);
}

namespace qelta::test {
namespace {

using Descriptor = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;

TEST(FortranLayouts, HaveTheSizesAndPlacesOfTheClasses) {
  std::int64_t numbers[9] = {};
  fortran_measure(numbers);
  const std::int64_t expected[9] = {sizeof(Descriptor),
                                    sizeof(Pattern),
                                    sizeof(FED_DataDescriptorList),
                                    80,
                                    kMaskAt,
                                    kMissStampAt,
                                    8,
                                    16,
                                    108};
  for (int i = 0; i < 9; ++i) EXPECT_EQ(numbers[i], expected[i]) << i;
  EXPECT_EQ(sizeof(Descriptor), 80u);
  EXPECT_EQ(sizeof(Pattern), 112u);
}

TEST(FortranLayouts, CppReadsADescriptorFromFortran) {
  Descriptor descriptor;
  fortran_fill_descriptor(&descriptor);
  for (std::size_t i = 0; i < Descriptor::FIELD_COUNT; ++i) {
    const auto field = Descriptor::CastIndex(i);
    if (field == Descriptor::OBJECTIVE_ID) {
      EXPECT_FALSE(descriptor.Has(field));
    } else if (field == Descriptor::LABEL) {
      EXPECT_EQ(descriptor.GetString(field), "from Fortran");
    } else {
      EXPECT_EQ(descriptor.GetInteger(field), 100 + static_cast<int>(i));
    }
  }
  EXPECT_EQ(CacheOf(descriptor), (Cache{7, 8, 9}));
}

TEST(FortranLayouts, AFreshDescriptorIsTheSameOnBothSides) {
  Descriptor fromFortran(5, static_cast<FED_OnfId>(5));
  fortran_fresh_descriptor(&fromFortran);
  const Descriptor fresh;
  EXPECT_EQ(std::memcmp(&fromFortran, &fresh, kBlockIdAt + 4), 0);
  EXPECT_EQ(CacheOf(fromFortran), CacheOf(fresh));
}

TEST(FortranLayouts, CppReadsAPatternFromFortran) {
  Pattern fromFortran;
  fortran_fill_pattern(&fromFortran);
  Pattern expected;
  for (std::size_t i = 0; i < Descriptor::FIELD_COUNT; ++i) {
    WriteAt(expected, 8 * i, static_cast<std::int32_t>(i % 9));
    WriteAt(expected, 8 * i + 4, static_cast<std::int32_t>(1000 + i));
  }
  expected.SetMatchExact(Descriptor::LABEL, std::string("text  "));
  EXPECT_TRUE(fromFortran == expected) << fromFortran.ToString();
}

TEST(FortranLayouts, AListGrowsFromBothSides) {
  FED_DataDescriptorList list;
  list.Resize(3);
  for (std::size_t i = 0; i < 3; ++i) {
    list[i].SetInteger(Descriptor::ITERATION, 10 * static_cast<int>(i + 1));
  }
  EXPECT_EQ(fortran_grow_list(&list, 2), 60);
  ASSERT_EQ(list.GetCount(), 5u);
  EXPECT_EQ(list.GetCapacity(), 5u);
  const int expected[] = {10, 20, 30, 1, 2};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(list[i].GetInteger(Descriptor::ITERATION), expected[i]);
  }
}

}  // namespace
}  // namespace qelta::test
