#pragma once
// Values as one line of text that gives the same value back, kind and last bit included: for saved games and
// journals. Pointers and objects have no such text and come back as undefined.
#include "Files/Code/Value.h"

#include <string>
#include <string_view>

namespace vesk {

std::string ValueText_Write(const RValue& value);
// False, and `value` undefined, for a text that is none.
bool ValueText_Read(std::string_view text, RValue& value);

std::string NumberText_Write(double value); // the shortest that gives the same number back
std::string NumberText_Write(float value);
bool NumberText_Read(std::string_view text, double& value);
bool NumberText_Read(std::string_view text, float& value);

} // namespace vesk
