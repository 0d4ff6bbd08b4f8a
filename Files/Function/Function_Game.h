#pragma once
// Built-ins on scripts and on variables by name.
#include "Files/Code/Self.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

bool script_exists(int32_t script);
std::string script_get_name(int32_t script); // "<undefined>" for an unknown one

// Script variables by name; one that was never written does not exist.
bool variable_global_exists(std::string_view name);
RValue variable_global_get(std::string_view name);
void variable_global_set(std::string_view name, const RValue& value);
bool variable_instance_exists(int32_t target, std::string_view name);
RValue variable_instance_get(int32_t target, std::string_view name);
void variable_instance_set(int32_t target, std::string_view name, const RValue& value);

double get_timer(); // microseconds since the process started

void Function_AddGame();

} // namespace vesk
