#pragma once
// Object indices. The order is that of Objects.inc; room records, collision events and code names hold the
// numbers.

namespace vesk {

namespace detail {
enum ObjectOrder : int {
#define OBJECT(symbol, ...) symbol,
#include "game/Objects.inc"
#undef OBJECT
  objectCount
};
} // namespace detail

#define OBJECT(symbol, ...) inline constexpr int symbol = detail::symbol;
#include "game/Objects.inc"
#undef OBJECT
inline constexpr int kObjectCount = detail::objectCount;

} // namespace vesk
