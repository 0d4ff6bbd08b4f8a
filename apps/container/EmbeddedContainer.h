#pragma once
// The container inside the program: writable bytes, aligned to 16. Only programs linked with container_blob
// have it.
#include <cstdint>

extern "C" {
extern uint8_t container_start[];
extern uint8_t container_end[];
}

namespace vesk {

inline uint8_t* EmbeddedContainer() { return container_start; }
inline uint32_t EmbeddedContainerSize() { return static_cast<uint32_t>(container_end - container_start); }

} // namespace vesk
