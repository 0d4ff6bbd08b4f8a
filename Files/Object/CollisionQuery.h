#pragma once
// Queries over instances: which of these does the figure touch, in the order in which the lists have them.
//
// A target is an object index (the object and its descendants, in order of entry into its list), an instance
// id, or `all` (the room's active list from the head: lowest depth first). Any other number selects nothing.
// Destroyed and deactivated instances are no hits.
#include "Files/Object/Collision.h"
#include "Files/Object/Object.h"

#include <functional>
#include <vector>

namespace vesk {

struct Figure {
  enum Kind { kPoint, kRectangle, kEllipse, kLine };
  Kind kind;
  float x1, y1, x2, y2; // room pixels; a point has both corners equal
  bool precise;

  static Figure Point(float x, float y, bool precise) { return {kPoint, x, y, x, y, precise}; }
  static Figure Circle(float x, float y, float radius, bool precise) {
    return {kEllipse, x - radius, y - radius, x + radius, y + radius, precise};
  }
  bool Hits(CInstance& instance) const;
};

// The first hit other than `except`, or null.
CInstance* FirstHit(int32_t target, const Figure& figure, const CInstance* except = nullptr);
// All hits in order, appended.
void AllHits(int32_t target, const Figure& figure, const CInstance* except, std::vector<CInstance*>& hits);

// The first instance that `self` would collide with at (x, y), with pixel tests; `self` itself never counts.
// With `hits` all of them are appended. `self` is back at its place afterwards.
CInstance* InstanceAt(CInstance& self, float x, float y, int32_t target,
                      std::vector<CInstance*>* hits = nullptr);
// No instance, or no solid one, collides with `self` at (x, y).
bool PlaceIsFree(CInstance& self, float x, float y, bool solidOnly);

// The instance's own place counts: smallest or largest squared distance from (x, y) to x, y; ties go to the
// first. Target `all` or an object; null when there is none.
CInstance* NearestInstance(float x, float y, int32_t target);
CInstance* FurthestInstance(float x, float y, int32_t target);

// The collision pass of one pair of objects: calls collide(a, b) for each instance a of the first object and
// b of the second that collide when their turn comes, a outer, b inner, in list order, as the plain nested
// walk does. Skips what is destroyed, deactivated or younger than `limit`. The callback may move, destroy,
// create, deactivate or change anything, but instances leave the lists only after the pass.
void ForEachCollidingPair(const CollisionPair& pair, uint64_t limit,
                          const std::function<void(CInstance& a, CInstance& b)>& collide);

} // namespace vesk
