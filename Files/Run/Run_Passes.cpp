// Alarms, motion, leaving the room or a view, collisions.
#include "Files/Run/Run_Passes.h"

#include "Files/Object/Collision.h"
#include "Files/Object/CollisionQuery.h"
#include "Files/Path/Path.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"

#include <algorithm>
#include <cmath>

namespace vesk {

void AlarmPass() {
  const uint64_t limit = BeginPass();
  for (int32_t n = 0; n < kAlarmCount; ++n) {
    ForEachHandling(ev_alarm, n, limit, [n](CInstance* it) {
      int32_t& alarm = it->alarm[n];
      if (alarm >= 0) --alarm;
      if (alarm == 0) PerformOwnEvent(it, it, ev_alarm, n);
    });
  }
}

// ---- motion ----

namespace {

bool Rests(const CInstance& it) {
  return it.hspeed == 0 && it.vspeed == 0 && it.friction == 0 && it.gravity == 0 && it.pathIndex < 0;
}

void MoveBySpeed(CInstance& it) { it.SetPosition(it.x + it.hspeed, it.y + it.vspeed); }

} // namespace

void MotionPass() {
  const uint64_t limit = BeginPass();
  for (CInstance *it = CurrentRoom()->active.head, *next; it; it = next) {
    next = it->next;
    Prefetch(next);
    if (!it->Live() || Rests(*it)) continue;
    it->ApplyFrictionAndGravity();
    if (AdvancePath(*it) && it->creationStamp <= limit) PerformOwnEvent(it, it, ev_other, ev_end_of_path);
    MoveBySpeed(*it);
  }
}

// ---- outside and boundary ----

namespace {

// A view as a rectangle, turned or not.
struct ViewArea {
  float left, top, right, bottom; // around the turned view
  float centreX, centreY, halfWidth, halfHeight;
  double cosine = 1, sine = 0;
  bool turned = false;
};

ViewArea AreaOf(const ViewSlot& view) {
  ViewArea area = {};
  area.halfWidth = view.wview / 2;
  area.halfHeight = view.hview / 2;
  area.centreX = view.xview + area.halfWidth;
  area.centreY = view.yview + area.halfHeight;
  float reachX = area.halfWidth, reachY = area.halfHeight;
  area.cosine = 1;
  if (view.angle != 0) {
    area.turned = true;
    const double angle = static_cast<double>(view.angle) * 3.1415927410125732 / 180;
    area.cosine = std::cos(angle);
    area.sine = std::sin(angle);
    const double c = std::abs(area.cosine), s = std::abs(area.sine);
    reachX = static_cast<float>(c * area.halfWidth + s * area.halfHeight);
    reachY = static_cast<float>(s * area.halfWidth + c * area.halfHeight);
  }
  area.left = area.centreX - reachX;
  area.right = area.centreX + reachX;
  area.top = area.centreY - reachY;
  area.bottom = area.centreY + reachY;
  return area;
}

bool HasShape(const CInstance& it) { return it.spriteIndex >= 0 || it.maskIndex >= 0; }

struct Extent {
  float left, top, right, bottom;
};
Extent ExtentOf(CInstance& it) {
  if (!HasShape(it)) return {it.x, it.y, it.x, it.y};
  const BoundingBox& box = it.Bounds();
  return {static_cast<float>(box.left), static_cast<float>(box.top), static_cast<float>(box.right),
          static_cast<float>(box.bottom)};
}

bool Outside(const Extent& e, float left, float top, float right, float bottom) {
  return e.right < left || e.left > right || e.bottom < top || e.top > bottom;
}
bool Sticks(const Extent& e, float left, float top, float right, float bottom) {
  return e.left < left || e.right > right || e.top < top || e.bottom > bottom;
}

// The extent of the corners along the axes of the turned view, relative to its centre.
Extent AlongView(const ViewArea& area, const Extent& e) {
  Extent turned = {INFINITY, INFINITY, -INFINITY, -INFINITY};
  for (const float px : {e.left, e.right}) {
    for (const float py : {e.top, e.bottom}) {
      const double dx = px - area.centreX, dy = py - area.centreY;
      const auto u = static_cast<float>(dx * area.cosine - dy * area.sine);
      const auto v = static_cast<float>(dx * area.sine + dy * area.cosine);
      turned = {std::min(turned.left, u), std::min(turned.top, v), std::max(turned.right, u),
                std::max(turned.bottom, v)};
    }
  }
  return turned;
}

bool OutsideView(const ViewArea& area, const Extent& e) {
  if (Outside(e, area.left, area.top, area.right, area.bottom)) return true;
  return area.turned &&
         Outside(AlongView(area, e), -area.halfWidth, -area.halfHeight, area.halfWidth, area.halfHeight);
}

bool CrossesViewEdge(const ViewArea& area, const Extent& e) {
  if (OutsideView(area, e)) return false;
  if (!area.turned) return Sticks(e, area.left, area.top, area.right, area.bottom);
  return Sticks(AlongView(area, e), -area.halfWidth, -area.halfHeight, area.halfWidth, area.halfHeight);
}

void OutsideRoomPass(const CRoom& room) {
  const auto width = static_cast<float>(room.width), height = static_cast<float>(room.height);
  ForEachHandling(ev_other, ev_outside, BeginPass(), [=](CInstance* it) {
    const bool outside = Outside(ExtentOf(*it), 0, 0, width, height);
    if (outside && !it->outsideRoom) PerformOwnEvent(it, it, ev_other, ev_outside);
    it->outsideRoom = outside;
  });
  ForEachHandling(ev_other, ev_boundary, BeginPass(), [=](CInstance* it) {
    if (Sticks(ExtentOf(*it), 0, 0, width, height)) PerformOwnEvent(it, it, ev_other, ev_boundary);
  });
}

void OutsideViewPass(const ViewSlot& view, int32_t v) {
  const auto& lists = Objects().eventObjects[ev_other];
  if (lists[ev_outside_view0 + v].empty() && lists[ev_boundary_view0 + v].empty()) return;
  const ViewArea area = AreaOf(view);
  ForEachHandling(ev_other, ev_outside_view0 + v, BeginPass(), [&](CInstance* it) {
    if (OutsideView(area, ExtentOf(*it))) PerformOwnEvent(it, it, ev_other, ev_outside_view0 + v);
  });
  ForEachHandling(ev_other, ev_boundary_view0 + v, BeginPass(), [&](CInstance* it) {
    if (CrossesViewEdge(area, ExtentOf(*it))) PerformOwnEvent(it, it, ev_other, ev_boundary_view0 + v);
  });
}

} // namespace

void OutsidePass() {
  const CRoom& room = *CurrentRoom();
  OutsideRoomPass(room);
  if (!room.viewsEnabled) return;
  for (int32_t v = 0; v < kRoomSlots; ++v) {
    const ViewSlot& view = room.views[static_cast<size_t>(v)];
    if (view.visible) OutsideViewPass(view, v);
  }
}

// ---- collisions ----

namespace {

void StepBack(CInstance& it) {
  it.SetPosition(it.xPrevious, it.yPrevious);
  it.pathPosition = it.pathPositionPrevious;
}

void StepOn(CInstance& it) {
  AdvancePath(it);
  MoveBySpeed(it);
}

void Meet(CInstance& a, CInstance& b) {
  if (a.solid || b.solid) {
    StepBack(a);
    StepBack(b);
  }
  PerformOwnEvent(&a, &b, ev_collision, b.objectIndex);
  PerformOwnEvent(&b, &a, ev_collision, a.objectIndex);
  if (!a.solid && !b.solid) return;
  StepOn(a);
  StepOn(b);
  if (!Collide(a, b, true)) return;
  StepBack(a);
  StepBack(b);
}

} // namespace

void CollisionPass() {
  for (const CollisionPair& pair : Objects().collisionPairs)
    if (pair.enabled && pair.objectA->instances.count > 0) ForEachCollidingPair(pair, BeginPass(), Meet);
}

} // namespace vesk
