#pragma once
// What happens when the program itself fails.
#include <cstdint>

namespace vesk {

// From now on a fault calls the filter with the signal's number and the address, and the process ends with
// code 1.
void Crash_Install(void (*filter)(uint32_t code, void* address));

} // namespace vesk
