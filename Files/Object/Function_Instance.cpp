#include "Files/Object/Function_Instance.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Object/Collision.h"
#include "Files/Object/Object.h"
#include "Files/Run/Run_Events.h"
#include "Files/Sprite/Sprite.h"

#include <string>

namespace vesk {

namespace {

bool IsOf(const CInstance& it, int32_t object) {
  return it.objectIndex == object || it.object->IsDescendantOf(object);
}

// Calls visit on each selected instance that is neither destroyed nor asleep, until it returns false.
// Instances that change into the object and still stand in the lists of their former one come last. What a
// visit makes is not visited.
template <class Visit> void ForEachSelected(CInstance* self, CInstance* other, int32_t target, Visit visit) {
  const int32_t newest = Rooms().nextInstanceId;
  const auto goesOn = [&](CInstance* it) { return !it->Live() || it->id > newest || visit(it); };
  if (target < kFirstInstanceId && target >= 0) {
    const CObjectFb* object = Object_Find(target);
    if (!object) return;
    for (InstanceList::Node* node = object->instancesRecursive.head; node; node = node->next)
      if (!goesOn(node->instance)) return;
    // By index: a visit may run events that change more instances.
    for (size_t i = 0; i < Run().changeList.size(); ++i) {
      CInstance* it = Run().changeList[i];
      const CObjectFb* former = it->previousObject;
      const bool visited = former && (former == object || former->IsDescendantOf(target));
      if (IsOf(*it, target) && !visited && !goesOn(it)) return;
    }
  } else if (target == all) {
    const CRoom* room = CurrentRoom();
    for (CInstance* it = room ? room->active.head : nullptr; it; it = it->next)
      if (!goesOn(it)) return;
  } else {
    CInstance* it = target == self_ ? self : target == other_ ? other : Instance_Find(target);
    if (it) goesOn(it);
  }
}

void Sleep(CInstance* it) {
  it->deactivated = true;
  NoteDeactivation(it);
}

void Wake(CInstance* it) {
  it->deactivated = false;
  NoteDeactivation(it);
}

// Sleeping instances stand in either list: the move to the inactive one waits for the clean-up.
template <class Wanted> void WakeWhere(Wanted wanted) {
  const CRoom* room = CurrentRoom();
  if (!room) return;
  for (const RoomList* list :
       {static_cast<const RoomList*>(&room->inactive), static_cast<const RoomList*>(&room->active)})
    for (CInstance* it = list->head; it; it = it->next)
      if (it->deactivated && !it->marked && wanted(it)) Wake(it);
}

struct Region {
  float left, top, right, bottom;

  bool Misses(const BoundingBox& box) const {
    return static_cast<float>(box.right) < left || static_cast<float>(box.left) > right ||
           static_cast<float>(box.bottom) < top || static_cast<float>(box.top) > bottom;
  }
  bool Misses(float x, float y) const { return x < left || x > right || y < top || y > bottom; }
};

void Change(CInstance* it, CObjectFb* object, bool perform) {
  if (it->objectIndex == object->objectIndex) return;
  if (perform && !it->destroyEventDone) {
    PerformOwnEvent(it, it, ev_destroy, 0);
    PerformOwnEvent(it, it, ev_cleanup, 0);
  }
  NoteChange(it);
  if (!it->previousObject) it->previousObject = it->object;
  it->object = object;
  it->objectIndex = object->objectIndex;
  it->maskIndex = object->maskIndex;
  it->depth = static_cast<float>(object->depth);
  it->solid = object->flags & CObjectFb::kSolid;
  it->visible = object->flags & CObjectFb::kVisible;
  it->persistent = object->flags & CObjectFb::kPersistent;
  it->SetSpriteIndex(object->spriteIndex);
  NoteResort(it);
  it->DirtyBounds();
  if (perform) RunCreationEvents(it);
}

CObjectFb* ObjectToChangeInto(int32_t index) {
  CObjectFb* object = Object_Find(index);
  if (!object) ReportError("Asking to change into non-existing object: " + std::to_string(index), false);
  return object;
}

} // namespace

// ---- making and ending ----

int32_t instance_create_depth(float x, float y, float depth, int32_t objectIndex) {
  CObjectFb* object = Object_Find(objectIndex);
  if (!object || !CurrentRoom()) return instance_create(x, y, objectIndex); // which reports it
  CInstance* it = Instance_Add(object, x, y);
  it->SetDepth(depth);
  RunCreationEvents(it);
  it->created = true;
  return it->id;
}

void instance_destroy(CInstance* self, CInstance* other, int32_t target, bool runDestroyEvent) {
  ForEachSelected(self, other, target, [=](CInstance* it) {
    DestroyInstance(it, runDestroyEvent);
    return true;
  });
}
void instance_destroy(CInstance* self, bool runDestroyEvent) {
  instance_destroy(self, self, self_, runDestroyEvent);
}
void instance_destroy(int32_t target, bool runDestroyEvent) {
  instance_destroy(nullptr, nullptr, target, runDestroyEvent);
}

void position_destroy(float x, float y) {
  ForEachSelected(nullptr, nullptr, all, [=](CInstance* it) {
    if (!it->destroyEventDone && PointHit(*it, x, y, true)) DestroyInstance(it);
    return true;
  });
}

// ---- asking ----

bool instance_exists(CInstance* self, CInstance* other, int32_t target) {
  bool found = false;
  ForEachSelected(self, other, target, [&found](CInstance*) {
    found = true;
    return false;
  });
  return found;
}
bool instance_exists(int32_t target) { return instance_exists(nullptr, nullptr, target); }

int32_t instance_number(CInstance* self, CInstance* other, int32_t target) {
  int32_t count = 0;
  ForEachSelected(self, other, target, [&count](CInstance*) {
    ++count;
    return true;
  });
  return count;
}
int32_t instance_number(int32_t target) { return instance_number(nullptr, nullptr, target); }

int32_t instance_find(int32_t target, int32_t n) {
  int32_t found = noone;
  if (n < 0) return found;
  ForEachSelected(nullptr, nullptr, target, [&](CInstance* it) {
    if (n-- > 0) return true;
    found = it->id;
    return false;
  });
  return found;
}

// ---- changing ----

void instance_change(CInstance* self, int32_t index, bool perform) {
  CObjectFb* object = ObjectToChangeInto(index);
  if (self && self->object && object) Change(self, object, perform);
}

void position_change(float x, float y, int32_t index, bool perform) {
  CObjectFb* object = ObjectToChangeInto(index);
  const CRoom* room = CurrentRoom();
  if (!object || !room) return;
  for (CInstance *it = room->active.head, *next; it; it = next) {
    next = it->next;
    if (it->Live() && PointHit(*it, x, y, true)) Change(it, object, perform);
  }
}

int32_t instance_copy(CInstance* self, bool perform) {
  if (!self || !self->object || !CurrentRoom()) return noone;
  CInstance* copy = Instance_Add(self->object, self->x, self->y);
  copy->CopyStateFrom(*self);
  copy->marked = copy->destroyEventDone = copy->deactivated = false; // it lives, though made on the way out
  NoteResort(copy);
  if (perform) RunCreationEvents(copy);
  return copy->id;
}

void instance_sprite(CInstance* self, int32_t sprite, float image, float speed) {
  if (!Sprite_Find(sprite))
    return ReportError("Setting instance to non-existing sprite: " + std::to_string(sprite), false);
  if (!self) return;
  self->SetSpriteIndex(sprite);
  self->imageIndex = image;
  self->imageSpeed = speed;
}

// ---- sleeping ----

void instance_deactivate_all(CInstance* self, bool notMe) {
  ForEachSelected(nullptr, nullptr, all, [=](CInstance* it) {
    if (!notMe || it != self) Sleep(it);
    return true;
  });
}

void instance_deactivate_object(CInstance* self, CInstance* other, int32_t target) {
  ForEachSelected(self, other, target, [](CInstance* it) {
    Sleep(it);
    return true;
  });
}
void instance_deactivate_object(int32_t target) { instance_deactivate_object(nullptr, nullptr, target); }

void instance_deactivate_region(CInstance* self, float left, float top, float width, float height,
                                bool inside, bool notMe) {
  const Region region = {left, top, left + width, top + height};
  ForEachSelected(nullptr, nullptr, all, [&](CInstance* it) {
    if (region.Misses(it->Bounds()) != inside) Sleep(it);
    return true;
  });
  if (notMe && self && self->deactivated && !self->marked) Wake(self);
}

void instance_activate_all() {
  WakeWhere([](CInstance*) { return true; });
}

void instance_activate_object(int32_t target) {
  if (target >= kFirstInstanceId) {
    CInstance* it = Instance_Find(target);
    if (it && it->deactivated && !it->marked) Wake(it);
  } else if (target == all) {
    instance_activate_all();
  } else if (Object_Find(target)) {
    WakeWhere([target](CInstance* it) { return IsOf(*it, target); });
  }
}

void instance_activate_region(float left, float top, float width, float height, bool inside) {
  const Region region = {left, top, left + width, top + height};
  WakeWhere([&](CInstance* it) {
    const bool shapeless = it->spriteIndex < 0 && it->maskIndex < 0;
    return (shapeless ? region.Misses(it->x, it->y) : region.Misses(it->Bounds())) != inside;
  });
}

// ---- registry ----

namespace {

void DestroyByScript(CInstance* self, CInstance* other, std::optional<int32_t> target,
                     std::optional<bool> execute) {
  instance_destroy(self, other, target.value_or(self_), execute.value_or(true));
}
void ActivateByScript(CInstance* self, CInstance* other, int32_t target) {
  const CInstance* it = target == self_ ? self : target == other_ ? other : nullptr;
  instance_activate_object(it ? it->id : target);
}

} // namespace

void Function_AddInstance() {
  constexpr auto exists = static_cast<bool (*)(CInstance*, CInstance*, int32_t)>(&instance_exists);
  constexpr auto number = static_cast<int32_t (*)(CInstance*, CInstance*, int32_t)>(&instance_number);
  constexpr auto sleep = static_cast<void (*)(CInstance*, CInstance*, int32_t)>(&instance_deactivate_object);
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&instance_create>("instance_create"),
      Builtin<&instance_create_depth>("instance_create_depth"),
      Builtin<&DestroyByScript>("instance_destroy"),
      Builtin<&position_destroy>("position_destroy"),
      Builtin<exists>("instance_exists"),
      Builtin<number>("instance_number"),
      Builtin<&instance_find>("instance_find"),
      Builtin<&instance_change>("instance_change"),
      Builtin<&position_change>("position_change"),
      Builtin<&instance_copy>("instance_copy"),
      Builtin<&instance_sprite>("instance_sprite"),
      Builtin<&instance_deactivate_all>("instance_deactivate_all"),
      Builtin<sleep>("instance_deactivate_object"),
      Builtin<&instance_deactivate_region>("instance_deactivate_region"),
      Builtin<&instance_activate_all>("instance_activate_all"),
      Builtin<&ActivateByScript>("instance_activate_object"),
      Builtin<&instance_activate_region>("instance_activate_region"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
