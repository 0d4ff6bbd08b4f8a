#pragma once
// Paths: way points that an instance follows in place of its own motion.
// Coordinates are room pixels. The speed of a way point is a percentage: 100 is the speed that the instance
// asked for. Positions on a path run from 0 at its start to 1 at its end.
#include "Files/Object/Instance.h"
#include "Files/Runner/ContainerRecords.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

enum PathAction : int32_t {
  path_action_stop = 0,
  path_action_restart = 1,
  path_action_continue = 2,
  path_action_reverse = 3,
};

struct PathPoint {
  float x = 0, y = 0, speed = 100;
};

class CPath {
public:
  static constexpr int32_t kSmooth = 1; // any other kind is straight
  struct Sample {
    float x, y, speed;
    float distance; // from the start, pixels along the path
  };

  std::string name;
  std::vector<PathPoint> points;
  int32_t kind = 0;
  bool closed = true;
  int32_t precision = 4; // depth of the subdivision of a smooth path

  const std::vector<Sample>& Samples() const { return m_samples; }
  float Length() const { return m_length; } // pixels
  float Time() const { return m_time; }     // steps at speed 1
  // Must follow every change of the fields above.
  void BuildSamples();
  // The point at position t; (0, 0) at 100 for a path without samples. Positions outside give the ends.
  PathPoint PointAt(float t) const;

private:
  void AddSample(const PathPoint& point) { m_samples.push_back({point.x, point.y, point.speed, 0}); }
  void SampleStraight();
  void SampleSmooth();
  void Subdivide(int32_t depth, const PathPoint& a, const PathPoint& b, const PathPoint& c);
  void Measure();

  std::vector<Sample> m_samples;
  float m_length = 0, m_time = 0;
};

struct PathState {
  std::vector<std::unique_ptr<CPath>> table; // by index; null for a hole
};
PathState& Paths();
void Path_Reset();

CPath* Path_Find(int32_t index);                // null for an index that names none
int32_t Path_FindByName(std::string_view name); // -1 none
// Appends a path and builds its samples; the index.
int32_t Path_Add(std::string name, int32_t kind, bool closed, int32_t precision,
                 std::vector<PathPoint> points);

// Appends the paths of a container; holes stay holes.
void Path_Load(const container::RecordList<container::PathRecord>& records);

// Sets an instance on a path from its start, from its end with a negative speed. Relative: the path begins
// where the instance stands; else the instance jumps to it. A path that is missing or has no length leaves
// the instance on none, as does a negative index.
void StartPath(CInstance& instance, int32_t path, float speed, float scale, float orientation, bool relative,
               int32_t endAction);
// One step along the path. True when an end was reached and the end-of-path event is due.
bool AdvancePath(CInstance& instance);

} // namespace vesk
