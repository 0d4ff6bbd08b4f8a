#pragma once
// Counts what the whole test program takes from the heap through new.
#include <cstddef>

namespace vesk::test {

size_t Allocations(); // so far

} // namespace vesk::test
