#pragma once
// What the process uses, and what it does when there is no more.
#include <cstddef>
#include <cstdint>

namespace vesk {

int64_t Memory_ResidentBytes();
int64_t Memory_PeakBytes(); // most that was ever resident
// Hands what was freed back to the system; some hundred microseconds. Worth it behind a large piece of
// loading.
void Memory_GiveBack();
// Ends the program with a box that says how much was asked for. Uses no heap of its own.
[[noreturn]] void Memory_Fail(size_t bytes);

} // namespace vesk
