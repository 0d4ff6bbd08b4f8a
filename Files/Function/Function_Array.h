#pragma once
// Built-ins on kinds of values and on arrays.
#include "Files/Code/Self.h"

#include <cstdint>
#include <string>

namespace vesk {

bool is_real(const RValue& value); // by kind alone: a bool or an int32 is no real
bool is_string(const RValue& value);
bool is_array(const RValue& value);
bool is_undefined(const RValue& value);
bool is_bool(const RValue& value);
bool is_ptr(const RValue& value);
bool is_int32(const RValue& value);
bool is_int64(const RValue& value);
bool is_vec3(const RValue& value);
bool is_vec4(const RValue& value);
bool is_matrix(const RValue& value);
std::string typeof_(const RValue& value); // "number", "string", …; the built-in is named typeof

int32_t array_length_1d(const RValue& array); // 0 for no array or no rows
int32_t array_length_2d(const RValue& array, int32_t row);
int32_t array_height_2d(const RValue& array);
RValue array_create(int32_t length, const RValue& fill = RValue(0.0));
// Same shape and equal elements.
bool array_equals(const RValue& a, const RValue& b);

void Function_AddArray();

} // namespace vesk
