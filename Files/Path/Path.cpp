#include "Files/Path/Path.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr double kPi = 3.1415927410125732; // the float, as all angles here use it
constexpr float kFineEnough = 16.0f;       // squared pixels: shorter legs are not divided
constexpr int32_t kDeepest = 12;           // halvings; the legs of any room are fine by then

PathState& g_paths = *new PathState;

PathPoint Middle(const PathPoint& a, const PathPoint& b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.speed + b.speed) / 2};
}

bool IsLong(const PathPoint& a, const PathPoint& b) {
  const float dx = b.x - a.x, dy = b.y - a.y;
  return dx * dx + dy * dy > kFineEnough;
}

// An offset on the path as the instance's orientation and scale place it in the room.
PathPoint Placed(const CInstance& instance, const PathPoint& from, const PathPoint& to) {
  const double r = static_cast<double>(instance.pathOrientation) * kPi / 180;
  const double s = std::sin(r), c = std::cos(r);
  const double dx = static_cast<double>(to.x - from.x), dy = static_cast<double>(to.y - from.y);
  const double scale = static_cast<double>(instance.pathScale);
  return {static_cast<float>((s * dy + c * dx) * scale), static_cast<float>((c * dy - s * dx) * scale), 0};
}

// What happens at an end of the path: 0 or below, 1 or above.
void ActAtEnd(CInstance& i, const CPath& path) {
  const bool before = i.pathPosition < 0;
  switch (i.pathEndAction) {
  case path_action_stop:
    if (i.pathSpeed == 0) return;
    i.pathPosition = i.pathSpeed < 0 ? 0.0f : 1.0f;
    i.pathIndex = -1;
    return;
  case path_action_restart: i.pathPosition += before ? 1.0f : -1.0f; return;
  case path_action_continue: {
    const PathPoint d = Placed(i, path.PointAt(0), path.PointAt(1));
    i.pathXStart += before ? -d.x : d.x;
    i.pathYStart += before ? -d.y : d.y;
    i.pathPosition += before ? 1.0f : -1.0f;
    return;
  }
  case path_action_reverse:
    i.pathPosition = before ? -i.pathPosition : 2 - i.pathPosition;
    i.pathSpeed = before ? std::fabs(i.pathSpeed) : -std::fabs(i.pathSpeed);
    return;
  default: i.pathPosition = 1; i.pathIndex = -1;
  }
}

} // namespace

// ---- sampling ----

void CPath::BuildSamples() {
  m_samples.clear();
  if (kind == kSmooth)
    SampleSmooth();
  else
    SampleStraight();
  Measure();
}

void CPath::SampleStraight() {
  for (const PathPoint& point : points) AddSample(point);
  if (closed && !points.empty()) AddSample(points[0]);
}

void CPath::SampleSmooth() {
  const int32_t n = static_cast<int32_t>(points.size());
  if (n == 0) return;
  if (!closed) AddSample(points[0]);
  for (int32_t i = 1; i <= (closed ? n : n - 2); ++i) {
    const auto p = [this, n](int32_t at) -> const PathPoint& { return points[static_cast<size_t>(at % n)]; };
    Subdivide(std::min(precision, kDeepest), Middle(p(i - 1), p(i)), p(i), Middle(p(i), p(i + 1)));
  }
  if (!closed)
    AddSample(points.back());
  else if (!m_samples.empty())
    m_samples.push_back(Sample(m_samples.front()));
}

void CPath::Subdivide(int32_t depth, const PathPoint& a, const PathPoint& b, const PathPoint& c) {
  if (depth <= 0) return;
  const PathPoint m{(b.x + (a.x + b.x) + c.x) * 0.25f, (b.y + (a.y + b.y) + c.y) * 0.25f,
                    (b.speed + (a.speed + b.speed) + c.speed) * 0.25f};
  if (IsLong(a, b)) Subdivide(depth - 1, a, Middle(a, b), m);
  AddSample(m);
  if (IsLong(b, c)) Subdivide(depth - 1, m, Middle(b, c), c);
}

void CPath::Measure() {
  m_length = 0;
  m_time = 0;
  for (size_t i = 1; i < m_samples.size(); ++i) {
    const Sample& before = m_samples[i - 1];
    Sample& here = m_samples[i];
    const float dx = here.x - before.x, dy = here.y - before.y, d = std::sqrt(dx * dx + dy * dy);
    m_length += d;
    here.distance = m_length;
    m_time += d / (((before.speed + here.speed) * 0.5f) / 100);
  }
}

PathPoint CPath::PointAt(float t) const {
  if (m_samples.empty()) return {0, 0, 100};
  const auto point = [this](size_t i) {
    return PathPoint{m_samples[i].x, m_samples[i].y, m_samples[i].speed};
  };
  const size_t last = m_samples.size() - 1;
  if (last == 0 || m_length == 0 || t < 0) return point(0);
  if (t > 1) return point(last);
  const float d = t * m_length;
  // The first segment that ends behind d; distances never fall.
  const auto end = std::upper_bound(m_samples.begin() + 1, m_samples.end() - 1, d,
                                    [](float at, const Sample& sample) { return at < sample.distance; });
  const Sample &from = end[-1], &to = *end;
  const float span = to.distance - from.distance;
  if (!(span > 0)) return {from.x, from.y, from.speed};
  const float f = (d - from.distance) / span;
  return {from.x + (to.x - from.x) * f, from.y + (to.y - from.y) * f,
          from.speed + (to.speed - from.speed) * f};
}

// ---- the table ----

PathState& Paths() { return g_paths; }
void Path_Reset() { g_paths = {}; }

CPath* Path_Find(int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= g_paths.table.size()) return nullptr;
  return g_paths.table[static_cast<size_t>(index)].get();
}

int32_t Path_FindByName(std::string_view name) {
  for (size_t i = 0; i < g_paths.table.size(); ++i)
    if (g_paths.table[i] && g_paths.table[i]->name == name) return static_cast<int32_t>(i);
  return -1;
}

int32_t Path_Add(std::string name, int32_t kind, bool closed, int32_t precision,
                 std::vector<PathPoint> points) {
  auto path = std::make_unique<CPath>();
  path->name = std::move(name);
  path->kind = kind;
  path->closed = closed;
  path->precision = precision;
  path->points = std::move(points);
  path->BuildSamples();
  g_paths.table.push_back(std::move(path));
  return static_cast<int32_t>(g_paths.table.size()) - 1;
}

void Path_Load(const container::RecordList<container::PathRecord>& records) {
  for (const auto& record : records) {
    if (!record) {
      g_paths.table.push_back(nullptr);
      continue;
    }
    std::vector<PathPoint> points;
    for (const container::PathRecord::Point& point : record->points)
      points.push_back({point.x, point.y, point.speed});
    Path_Add(record->name, record->kind, record->closed, record->precision, std::move(points));
  }
}

// ---- following ----

void StartPath(CInstance& instance, int32_t path, float speed, float scale, float orientation, bool relative,
               int32_t endAction) {
  instance.pathIndex = path;
  if (path < 0) return;
  const CPath* found = Path_Find(path);
  if (!found || !(found->Length() > 0)) {
    instance.pathIndex = -1;
    return;
  }
  instance.pathSpeed = speed;
  instance.pathPosition = speed >= 0 ? 0.0f : 1.0f;
  instance.pathPositionPrevious = instance.pathPosition;
  instance.pathScale = scale;
  if (scale < 0) {
    instance.pathIndex = -1;
    return;
  }
  instance.pathOrientation = orientation;
  instance.pathEndAction = endAction;
  if (relative) {
    instance.pathXStart = instance.x;
    instance.pathYStart = instance.y;
    return;
  }
  const PathPoint here = found->PointAt(instance.pathPosition), start = found->PointAt(0);
  instance.SetPosition(here.x, here.y);
  instance.pathXStart = start.x;
  instance.pathYStart = start.y;
}

bool AdvancePath(CInstance& instance) {
  if (instance.pathIndex < 0) return false;
  const CPath* path = Path_Find(instance.pathIndex);
  if (!path || !(path->Length() > 0)) return false;
  const float percent = path->PointAt(instance.pathPosition).speed;
  // A scale of 0 folds the path into a point: there is no way to go.
  if (instance.pathScale != 0)
    instance.pathPosition += ((percent / (instance.pathScale * 100)) * instance.pathSpeed) / path->Length();
  bool ended = false;
  if (instance.pathPosition >= 1 || instance.pathPosition <= 0) {
    ended = instance.pathSpeed != 0;
    ActAtEnd(instance, *path);
  }
  const PathPoint offset = Placed(instance, path->PointAt(0), path->PointAt(instance.pathPosition));
  const float x = offset.x + instance.pathXStart, y = offset.y + instance.pathYStart;
  // Only for the direction, which stays behind as the tangent; the speeds themselves end at 0.
  instance.SetHspeed(x - instance.x);
  instance.SetVspeed(y - instance.y);
  instance.SetSpeed(0);
  instance.SetPosition(x, y);
  return ended;
}

} // namespace vesk
