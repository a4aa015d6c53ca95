#include "FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kNever = static_cast<std::size_t>(-1);
thread_local std::size_t s_Remaining = kNever;
thread_local bool s_HasFailed = false;

void* Allocate(std::size_t size) {
  if (s_Remaining == 0) {
    s_HasFailed = true;
    throw std::bad_alloc();
  }
  if (s_Remaining != kNever) --s_Remaining;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void* AllocateOrNull(std::size_t size) noexcept {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
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
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace qelta::test {

FailingAllocation::FailingAllocation(std::size_t n) {
  s_HasFailed = false;
  s_Remaining = n;
}

FailingAllocation::~FailingAllocation() { s_Remaining = kNever; }

bool FailingAllocation::HasFailed() const { return s_HasFailed; }

}  // namespace qelta::test
