#pragma once
// All families of built-ins, in the groups and the order in which they are registered.
#include "Files/Runner/Load.h"

#include <span>

namespace vesk {

std::span<const BuiltinGroup> Runner_BuiltinGroups();

} // namespace vesk
