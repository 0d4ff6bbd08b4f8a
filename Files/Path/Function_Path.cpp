#include "Files/Path/Function_Path.h"

#include "Files/Function/Function.h"
#include "Files/Path/Path.h"

#include <algorithm>

namespace vesk {

namespace {

PathPoint PointOn(int32_t path, float position) {
  const CPath* found = Path_Find(path);
  return found ? found->PointAt(position) : PathPoint{0, 0, 0};
}

PathPoint WayPoint(int32_t path, int32_t point) {
  const CPath* found = Path_Find(path);
  if (!found || point < 0 || static_cast<size_t>(point) >= found->points.size()) return {0, 0, 0};
  return found->points[static_cast<size_t>(point)];
}

template <class Change> void Changed(int32_t path, Change change) {
  if (CPath* found = Path_Find(path)) {
    change(*found);
    found->BuildSamples();
  }
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&path_start>("path_start"),
    Builtin<&path_end>("path_end"),
    Builtin<&path_exists>("path_exists"),
    Builtin<&path_get_name>("path_get_name"),
    Builtin<&path_get_kind>("path_get_kind"),
    Builtin<&path_get_closed>("path_get_closed"),
    Builtin<&path_get_precision>("path_get_precision"),
    Builtin<&path_get_number>("path_get_number"),
    Builtin<&path_get_length>("path_get_length"),
    Builtin<&path_get_time>("path_get_time"),
    Builtin<&path_get_x>("path_get_x"),
    Builtin<&path_get_y>("path_get_y"),
    Builtin<&path_get_speed>("path_get_speed"),
    Builtin<&path_get_point_x>("path_get_point_x"),
    Builtin<&path_get_point_y>("path_get_point_y"),
    Builtin<&path_get_point_speed>("path_get_point_speed"),
    Builtin<&path_add>("path_add"),
    Builtin<&path_delete>("path_delete"),
    Builtin<&path_add_point>("path_add_point"),
    Builtin<&path_clear_points>("path_clear_points"),
    Builtin<&path_set_kind>("path_set_kind"),
    Builtin<&path_set_closed>("path_set_closed"),
    Builtin<&path_set_precision>("path_set_precision"),
};

} // namespace

void Function_AddPath() { Function_Add(kBuiltins); }

void path_start(CInstance* self, int32_t path, float speed, int32_t endAction, bool absolute) {
  if (self) StartPath(*self, path, speed, 1, 0, !absolute, endAction);
}

void path_end(CInstance* self) {
  if (self) StartPath(*self, -1, 0, 1, 0, false, 0);
}

bool path_exists(int32_t path) { return Path_Find(path); }

std::string path_get_name(int32_t path) {
  const CPath* found = Path_Find(path);
  return found ? found->name : std::string();
}

int32_t path_get_kind(int32_t path) {
  const CPath* found = Path_Find(path);
  return found ? found->kind : -1;
}

bool path_get_closed(int32_t path) {
  const CPath* found = Path_Find(path);
  return found && found->closed;
}

int32_t path_get_precision(int32_t path) {
  const CPath* found = Path_Find(path);
  return found ? found->precision : -1;
}

int32_t path_get_number(int32_t path) {
  const CPath* found = Path_Find(path);
  return found ? static_cast<int32_t>(found->points.size()) : -1;
}

float path_get_length(int32_t path) {
  const CPath* found = Path_Find(path);
  return found ? found->Length() : -1;
}

float path_get_time(int32_t path, float speed) {
  const CPath* found = Path_Find(path);
  return found && speed != 0 ? found->Time() / speed : -1;
}

float path_get_x(int32_t path, float position) { return PointOn(path, position).x; }
float path_get_y(int32_t path, float position) { return PointOn(path, position).y; }
float path_get_speed(int32_t path, float position) { return PointOn(path, position).speed; }
float path_get_point_x(int32_t path, int32_t point) { return WayPoint(path, point).x; }
float path_get_point_y(int32_t path, int32_t point) { return WayPoint(path, point).y; }
float path_get_point_speed(int32_t path, int32_t point) { return WayPoint(path, point).speed; }

int32_t path_add() {
  const std::string number = std::to_string(Paths().table.size());
  return Path_Add("__newpath" + number, 0, true, 4, {});
}

void path_delete(int32_t path) {
  if (Path_Find(path)) Paths().table[static_cast<size_t>(path)].reset();
}

void path_add_point(int32_t path, float x, float y, float speed) {
  Changed(path, [&](CPath& p) { p.points.push_back({x, y, speed}); });
}
void path_clear_points(int32_t path) {
  Changed(path, [](CPath& p) { p.points.clear(); });
}
void path_set_kind(int32_t path, int32_t kind) {
  Changed(path, [kind](CPath& p) { p.kind = kind; });
}
void path_set_closed(int32_t path, bool closed) {
  Changed(path, [closed](CPath& p) { p.closed = closed; });
}
void path_set_precision(int32_t path, int32_t precision) {
  Changed(path, [precision](CPath& p) { p.precision = std::clamp(precision, 1, 8); });
}

} // namespace vesk
