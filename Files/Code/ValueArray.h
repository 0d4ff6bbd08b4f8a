#pragma once
// The insides of arrays that values and their text conversion share.
#include "Files/Code/Value.h"

namespace vesk {

// Frees an array to which no reference is left.
void ArrayDelete(RefArray* array);
// The number of the last text conversion; each marks the arrays it has visited with its own.
int32_t& ArrayTextPass();

} // namespace vesk
