#include "tests/runner/allocation_Count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> g_count{0};

void* TakeIfThere(size_t size) {
  ++g_count;
  return std::malloc(size > 0 ? size : 1);
}

void* Take(size_t size) {
  if (void* block = TakeIfThere(size)) return block;
  throw std::bad_alloc();
}

void* TakeAligned(size_t size, std::align_val_t alignment) {
  ++g_count;
  const auto align = static_cast<size_t>(alignment);
  if (void* block = std::aligned_alloc(align, (size + align - 1) / align * align)) return block;
  throw std::bad_alloc();
}

} // namespace

namespace vesk::test {

size_t Allocations() { return g_count; }

} // namespace vesk::test

void* operator new(size_t size) { return Take(size); }
void* operator new[](size_t size) { return Take(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return TakeIfThere(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return TakeIfThere(size); }
void* operator new(size_t size, std::align_val_t alignment) { return TakeAligned(size, alignment); }
void* operator new[](size_t size, std::align_val_t alignment) { return TakeAligned(size, alignment); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t, std::align_val_t) noexcept { std::free(block); }
