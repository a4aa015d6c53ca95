#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "FED_DataDescriptor.h"
#include "QeltaExport.h"

/// A list of descriptors that Fortran programs hold in their own memory: count, capacity and the
/// address of the descriptors, 24 bytes. It owns the descriptors, grows to exactly the size asked
/// for, and moves them only when it grows.
///
/// When there is no memory, the list is left unchanged and std::bad_alloc passes to the caller.
class QELTA_EXPORT FED_DataDescriptorList {
 public:
  /// Empty, with room for `n` descriptors, all of them initialised.
  explicit FED_DataDescriptorList(std::size_t n = 0);
  ~FED_DataDescriptorList();
  FED_DataDescriptorList(const FED_DataDescriptorList&) = delete;
  FED_DataDescriptorList& operator=(const FED_DataDescriptorList&) = delete;

  /// Back to an empty list without room; it can be grown again.
  void Deallocate();

  /// Makes room for exactly `n` descriptors when there is less. The first `GetCount()` of them are
  /// kept, the others freshly initialised.
  void Reserve(std::size_t n);

  /// Makes `n` the count. Shrinking leaves the descriptors beyond it as they are; growing within
  /// the capacity brings them back.
  void Resize(std::size_t n);

  std::size_t GetCount() const { return static_cast<std::size_t>(m_Count); }
  std::size_t GetCapacity() const { return static_cast<std::size_t>(m_Capacity); }

  /// The descriptors, null without capacity; valid until the list grows or goes. Indices must be
  /// below the count.
  FED_DataDescriptor* GetData() { return m_Data; }
  const FED_DataDescriptor* GetData() const { return m_Data; }
  FED_DataDescriptor& operator[](std::size_t i) { return m_Data[i]; }
  const FED_DataDescriptor& operator[](std::size_t i) const { return m_Data[i]; }

 private:
  friend struct FED_DataDescriptorListLayout;

  std::uint64_t m_Count = 0;
  std::uint64_t m_Capacity = 0;
  FED_DataDescriptor* m_Data = nullptr;
};

static_assert(sizeof(FED_DataDescriptorList) == 24);
static_assert(std::is_standard_layout_v<FED_DataDescriptorList>);
