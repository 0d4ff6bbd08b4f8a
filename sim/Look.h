#pragma once
// Looking into a running game by the names that rules use. Numbers print with up to six decimals; an unset
// variable prints null; object_index, sprite_index and mask_index print as names.
#include "Files/Code/Value.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

class CInstance;

struct VariablePath {
  std::string name;
  int32_t index = kNoIndex; // of alarm[0]
};
// False for a text that is no variable's name with or without an index.
bool ParseVariable(std::string_view text, VariablePath& path);

// Undefined when the holder has no such variable; unset when it was never written. A null instance stands for
// the global object and the variables of the run.
RValue ReadVariable(CInstance* instance, const VariablePath& path);
// False when the variable can't be written.
bool WriteVariable(CInstance* instance, const VariablePath& path, const RValue& value);
// Whether any variable has that name.
bool VariableExists(std::string_view name);

std::string JsonNumber(double value);
std::string JsonText(std::string_view text);
// As it stands in an output line; `name` chooses the form.
std::string JsonValue(const std::string& name, const RValue& value);

// Live active instances of the object and its descendants, oldest first.
std::vector<CInstance*> InstancesOf(int32_t object);
int32_t CountTiles(double depth);

} // namespace vesk
