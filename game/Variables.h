#pragma once
// The script variables: self[hp], global[coins]. A name has one slot in both holders.
#include "Files/Code/Self.h"

namespace vesk {

namespace detail {
enum VariableOrder : int {
#define VARIABLE(name) name,
#include "game/Variables.inc"
#undef VARIABLE
  variableCount
};
} // namespace detail

// In a namespace of their own, so that a plain word such as `text` is a variable only where rules are
// written.
namespace var {
#define VARIABLE(name) inline constexpr Slot name{detail::name};
#include "game/Variables.inc"
#undef VARIABLE
} // namespace var

inline constexpr int kVariableCount = detail::variableCount;

} // namespace vesk
