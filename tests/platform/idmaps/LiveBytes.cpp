#include "LiveBytes.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// In front of each piece stands its size, in as many bytes as keep it aligned.
constexpr std::size_t kHead = alignof(std::max_align_t);
static_assert(kHead >= sizeof(std::size_t));

std::size_t s_Live = 0;
std::size_t s_Peak = 0;

void* AllocateOrNull(std::size_t size) noexcept {
  auto* const head = static_cast<unsigned char*>(std::malloc(kHead + size));
  if (head == nullptr) return nullptr;
  new (head) std::size_t(size);
  s_Live += size;
  s_Peak = std::max(s_Peak, s_Live);
  return head + kHead;
}

void* Allocate(std::size_t size) {
  if (void* const memory = AllocateOrNull(size)) return memory;
  throw std::bad_alloc();
}

void Free(void* memory) noexcept {
  if (memory == nullptr) return;
  void* const head = static_cast<unsigned char*>(memory) - kHead;
  s_Live -= *static_cast<std::size_t*>(head);
  std::free(head);
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return AllocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return AllocateOrNull(size);
}
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t) noexcept { Free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Free(memory); }

namespace qelta::test {

std::size_t LiveBytes() { return s_Live; }
std::size_t PeakBytes() { return s_Peak; }
void ResetPeakBytes() { s_Peak = s_Live; }

}  // namespace qelta::test
