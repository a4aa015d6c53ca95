#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace qelta {

/// Objects of type T that never move: the address of one stays valid until it is given back,
/// whatever is taken or given back beside it and also when the whole is moved. What was given back
/// is used again; the memory goes with the whole, by destruction or assignment. Memory is fetched
/// for `kPerSlab` objects at a time.
template <class T, std::size_t kPerSlab>
class Slabs {
 public:
  /// Makes sure that the next Take succeeds. Nothing changes when memory is short.
  void ReserveOne() {
    if (m_Free.empty()) AddSlab();
  }

  /// An object that is free, in whatever state it is. One must be reserved.
  T* Take() noexcept {
    T* const object = m_Free.back();
    m_Free.pop_back();
    return object;
  }

  void GiveBack(T* object) noexcept { m_Free.push_back(object); }

  /// The number of objects taken and not given back.
  std::size_t Size() const { return m_Slabs.size() * kPerSlab - m_Free.size(); }

 private:
  void AddSlab() {
    const std::size_t objects = (m_Slabs.size() + 1) * kPerSlab;
    if (objects > m_Free.capacity()) m_Free.reserve(std::max(objects, 2 * m_Free.capacity()));
    auto slab = std::make_unique<T[]>(kPerSlab);
    T* const first = slab.get();
    m_Slabs.push_back(std::move(slab));
    // The first one on top, so that objects taken one after another lie one after another.
    for (std::size_t i = kPerSlab; i > 0; --i) m_Free.push_back(first + i - 1);
  }

  std::vector<std::unique_ptr<T[]>> m_Slabs;
  std::vector<T*> m_Free;  // has room for all objects, so that GiveBack cannot fail
};

}  // namespace qelta
