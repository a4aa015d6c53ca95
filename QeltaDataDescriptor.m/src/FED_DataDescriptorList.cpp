#include "FED_DataDescriptorList.h"

#include <algorithm>
#include <limits>
#include <new>

struct FED_DataDescriptorListLayout {
  static_assert(offsetof(FED_DataDescriptorList, m_Count) == 0);
  static_assert(offsetof(FED_DataDescriptorList, m_Capacity) == 8);
  static_assert(offsetof(FED_DataDescriptorList, m_Data) == 16);
};

FED_DataDescriptorList::FED_DataDescriptorList(std::size_t n) { Reserve(n); }

FED_DataDescriptorList::~FED_DataDescriptorList() { Deallocate(); }

void FED_DataDescriptorList::Deallocate() {
  delete[] m_Data;
  m_Data = nullptr;
  m_Count = m_Capacity = 0;
}

void FED_DataDescriptorList::Reserve(std::size_t n) {
  if (n <= m_Capacity) return;
  if (n > std::numeric_limits<std::size_t>::max() / sizeof(FED_DataDescriptor)) {
    throw std::bad_alloc();
  }
  auto* const data = new FED_DataDescriptor[n];
  std::copy_n(m_Data, m_Count, data);
  delete[] m_Data;
  m_Data = data;
  m_Capacity = n;
}

void FED_DataDescriptorList::Resize(std::size_t n) {
  if (n > m_Count) Reserve(n);
  m_Count = n;
}
