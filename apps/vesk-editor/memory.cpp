// Memory of the whole program: a request that can't be met ends it with a box that says so.
#include "Platform/Memory.h"

#include <cstdlib>
#include <new>

namespace {

void* Allocate(std::size_t bytes) {
  if (void* memory = std::malloc(bytes ? bytes : 1)) return memory;
  vesk::Memory_Fail(bytes);
}

} // namespace

void* operator new(std::size_t bytes) { return Allocate(bytes); }
void* operator new[](std::size_t bytes) { return Allocate(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
