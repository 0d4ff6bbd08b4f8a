// Rooms as assets, the lists of a running room, instances by id, and views that follow.
#include "Files/Room/Room.h"

#include "Files/Base/Error.h"
#include "Files/Object/Instance.h"
#include "Files/Object/Object.h"
#include "Files/Run/Run_Events.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace vesk {

namespace {

RoomState& g_rooms = *new RoomState; // never destroyed: instances refer to it when they go

void LinkBehind(RoomList& list, CInstance* instance, CInstance* before) {
  instance->previous = before;
  instance->next = before ? before->next : list.head;
  (instance->next ? instance->next->previous : list.tail) = instance;
  (before ? before->next : list.head) = instance;
  ++list.count;
}

void Unlink(RoomList& list, CInstance* instance) {
  (instance->previous ? instance->previous->next : list.head) = instance->next;
  (instance->next ? instance->next->previous : list.tail) = instance->previous;
  instance->next = instance->previous = nullptr;
  --list.count;
}

} // namespace

RoomState& Rooms() { return g_rooms; }

void Room_Reset() {
  g_rooms.carried.clear();
  g_rooms.running.clear();
  g_rooms.templates.clear();
  g_rooms = RoomState();
}

CRoom* Room_Find(int32_t index) {
  return static_cast<size_t>(index) < g_rooms.templates.size()
             ? g_rooms.templates[static_cast<size_t>(index)].get()
             : nullptr;
}

// ---- lists ----

CRoom::~CRoom() {
  for (RoomList* list : {static_cast<RoomList*>(&active), static_cast<RoomList*>(&inactive)}) {
    for (CInstance *it = list->head, *next; it; it = next) {
      next = it->next;
      delete it;
    }
  }
}

void InactiveList::Append(CInstance* instance) {
  instance->inInactiveList = true;
  instance->listOrder = ++g_rooms.listCounter;
  LinkBehind(*this, instance, tail);
}

void InactiveList::Remove(CInstance* instance) {
  instance->inInactiveList = false;
  Unlink(*this, instance);
}

void ActiveList::InsertSorted(CInstance* instance) {
  // What isn't a number has nothing less or equal before it.
  instance->sortDepth =
      std::isnan(instance->depth) ? -std::numeric_limits<float>::infinity() : instance->depth;
  instance->listOrder = ++g_rooms.listCounter;
  const float depth = instance->sortDepth;
  const auto above = std::partition_point(m_bands.begin(), m_bands.end(),
                                          [depth](const Band& band) { return band.depth <= depth; });
  CInstance* before = above == m_bands.begin() ? nullptr : std::prev(above)->tail;
  LinkBehind(*this, instance, before);
  if (before && before->sortDepth == depth) {
    std::prev(above)->tail = instance;
    ++std::prev(above)->count;
  } else {
    m_bands.insert(above, {depth, instance, 1});
  }
}

void ActiveList::Remove(CInstance* instance) {
  const float depth = instance->sortDepth;
  const auto band = std::partition_point(m_bands.begin(), m_bands.end(),
                                         [depth](const Band& b) { return b.depth < depth; });
  if (--band->count == 0)
    m_bands.erase(band);
  else if (band->tail == instance)
    band->tail = instance->previous;
  Unlink(*this, instance);
}

// ---- instances ----

CInstance* Instance_Find(int32_t id) {
  CInstance** found = id < 0 ? nullptr : g_rooms.instances.Find(id);
  return found ? *found : nullptr;
}

CInstance* Instance_Add(CObjectFb* object, float x, float y) {
  const int32_t id = ++g_rooms.nextInstanceId;
  auto* instance = new CInstance(object, x, y, id, Code().instanceSlotCount);
  object->AddInstance(instance);
  g_rooms.current->active.InsertSorted(instance);
  g_rooms.instances.Set(id) = instance;
  return instance;
}

void Instance_Remove(CInstance* instance) {
  g_rooms.instances.Remove(instance->id);
  if (instance->inInactiveList)
    g_rooms.current->inactive.Remove(instance);
  else
    g_rooms.current->active.Remove(instance);
  delete instance;
}

void RunCreationEvents(CInstance* instance) {
  PerformOwnEvent(instance, instance, ev_pre_create, 0);
  PerformOwnEvent(instance, instance, ev_create, 0);
}

int32_t instance_create(float x, float y, int32_t objectIndex) {
  CObjectFb* object = Object_Find(objectIndex);
  if (!object || !g_rooms.current) {
    ReportError("Creating instance for non-existing object: " + std::to_string(objectIndex), false);
    return -1;
  }
  CInstance* instance = Instance_Add(object, x, y);
  RunCreationEvents(instance);
  instance->created = true;
  return instance->id;
}

// ---- views ----

namespace {

CInstance* ViewTarget(int32_t target) {
  if (target >= kFirstInstanceId) {
    CInstance* it = Instance_Find(target);
    return it && it->Live() ? it : nullptr;
  }
  const CObjectFb* object = Object_Find(target);
  for (const InstanceList::Node* node = object ? object->instancesRecursive.head : nullptr; node;
       node = node->next)
    if (node->instance->Live()) return node->instance;
  return nullptr;
}

// The new position of a view on one axis.
float Follow(float view, float size, float target, float border, float roomSize, int32_t speed) {
  const float point = std::floor(target);
  float moved = view;
  if (2 * border >= size)
    moved = point - size / 2;
  else if (point - border < view)
    moved = point - border;
  else if (point + border > view + size)
    moved = point + border - size;
  if (moved < 0) moved = 0;
  if (moved + size > roomSize) moved = roomSize - size;
  if (speed >= 0)
    moved = std::clamp(moved, view - static_cast<float>(speed), view + static_cast<float>(speed));
  return moved;
}

} // namespace

void UpdateViews() {
  CRoom* room = g_rooms.current;
  if (!room || !room->viewsEnabled) return;
  for (ViewSlot& view : room->views) {
    if (!view.visible || view.object < 0) continue;
    const CInstance* target = ViewTarget(view.object);
    if (!target) continue;
    view.xview = Follow(view.xview, view.wview, target->x, static_cast<float>(view.hborder),
                        static_cast<float>(room->width), view.hspeed);
    view.yview = Follow(view.yview, view.hview, target->y, static_cast<float>(view.vborder),
                        static_cast<float>(room->height), view.vspeed);
  }
}

PortScale ViewPortScale(const CRoom& room, int32_t surfaceWidth, int32_t surfaceHeight) {
  int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;
  for (const ViewSlot& view : room.views) {
    if (!room.viewsEnabled || !view.visible) continue;
    left = std::min(left, view.xport);
    top = std::min(top, view.yport);
    right = std::max(right, view.xport + view.wport);
    bottom = std::max(bottom, view.yport + view.hport);
  }
  PortScale scale;
  if (right > left) scale.x = static_cast<double>(surfaceWidth) / (static_cast<double>(right) - left);
  if (bottom > top) scale.y = static_cast<double>(surfaceHeight) / (static_cast<double>(bottom) - top);
  return scale;
}

} // namespace vesk
