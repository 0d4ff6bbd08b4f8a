#pragma once
// Built-ins of paths. A path that doesn't exist reads as -1, 0 or an empty text, and writes to it do nothing.
#include "Files/Object/Instance.h"

#include <cstdint>
#include <string>

namespace vesk {

void Function_AddPath();

// Speed in pixels a step, negative from the end; `endAction` is a PathAction. Absolute: the caller jumps to
// the path; else the path begins at the caller.
void path_start(CInstance* self, int32_t path, float speed, int32_t endAction, bool absolute);
void path_end(CInstance* self);

bool path_exists(int32_t path);
std::string path_get_name(int32_t path);
int32_t path_get_kind(int32_t path);
bool path_get_closed(int32_t path);
int32_t path_get_precision(int32_t path);
int32_t path_get_number(int32_t path); // of way points
float path_get_length(int32_t path);
float path_get_time(int32_t path, float speed); // steps
float path_get_x(int32_t path, float position); // position 0 to 1
float path_get_y(int32_t path, float position);
float path_get_speed(int32_t path, float position);
float path_get_point_x(int32_t path, int32_t point);
float path_get_point_y(int32_t path, int32_t point);
float path_get_point_speed(int32_t path, int32_t point);

int32_t path_add(); // an empty path
void path_delete(int32_t path);
void path_add_point(int32_t path, float x, float y, float speed);
void path_clear_points(int32_t path);
void path_set_kind(int32_t path, int32_t kind);
void path_set_closed(int32_t path, bool closed);
void path_set_precision(int32_t path, int32_t precision); // 1 to 8

} // namespace vesk
