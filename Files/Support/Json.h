#pragma once
// JSON text of map trees: one line, members in the iteration order of their map. The caller holds Ds_Mutex.
#include "Files/Code/Value.h"

#include <cstdint>
#include <string>

namespace vesk {

inline constexpr int kJsonDepth = 512; // nested structures in a text that can be read

// The text of the tree, or "" when the id names no live map. A nested id that is stale, or that leads back to
// a structure around it, is written as null.
std::string Json_EncodeMap(int32_t map);
// A new map, or -1. Text that isn't an object ends up under the key "default".
int32_t Json_DecodeMap(const RValue& text);

} // namespace vesk
