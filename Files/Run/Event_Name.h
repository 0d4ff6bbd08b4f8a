#pragma once
// How error reports name an event.
#include <cstdint>
#include <string>

namespace vesk {

std::string Event_Name(int32_t type, int32_t number); // "Step Event"; "<undefined>" for an unknown type

} // namespace vesk
