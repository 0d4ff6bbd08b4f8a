// Built-ins that read and write objects.
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Object/Object.h"
#include "Files/Run/Run_Events.h"

namespace vesk {

namespace {

bool HasFlag(int32_t index, uint32_t flag) {
  const CObjectFb* object = Object_Find(index);
  return object && object->flags & flag;
}
void SetFlag(int32_t index, uint32_t flag, bool on) {
  if (CObjectFb* object = Object_Find(index))
    object->flags = on ? object->flags | flag : object->flags & ~flag;
}

} // namespace

bool object_exists(int32_t index) { return Object_Find(index) != nullptr; }
std::string object_get_name(int32_t index) { return Object_Name(index); }
int32_t object_get_sprite(int32_t index) {
  const CObjectFb* object = Object_Find(index);
  return object ? object->spriteIndex : -1;
}
bool object_get_solid(int32_t index) { return HasFlag(index, CObjectFb::kSolid); }
bool object_get_visible(int32_t index) { return HasFlag(index, CObjectFb::kVisible); }
int32_t object_get_depth(int32_t index) {
  const CObjectFb* object = Object_Find(index);
  return object ? object->depth : 0;
}
bool object_get_persistent(int32_t index) { return HasFlag(index, CObjectFb::kPersistent); }
int32_t object_get_mask(int32_t index) {
  const CObjectFb* object = Object_Find(index);
  return object ? object->maskIndex : -1;
}
int32_t object_get_parent(int32_t index) {
  const CObjectFb* object = Object_Find(index);
  return object ? object->parentIndex : -1;
}
bool object_is_ancestor(int32_t index, int32_t ancestor) {
  const CObjectFb* object = Object_Find(index);
  return object && object->IsDescendantOf(ancestor);
}

void object_set_sprite(int32_t index, int32_t sprite) {
  if (CObjectFb* object = Object_Find(index)) object->spriteIndex = sprite;
}
void object_set_solid(int32_t index, bool solid) { SetFlag(index, CObjectFb::kSolid, solid); }
void object_set_visible(int32_t index, bool visible) { SetFlag(index, CObjectFb::kVisible, visible); }
void object_set_depth(int32_t index, int32_t depth) {
  if (CObjectFb* object = Object_Find(index)) object->depth = depth;
}
void object_set_persistent(int32_t index, bool persistent) {
  SetFlag(index, CObjectFb::kPersistent, persistent);
}
void object_set_mask(int32_t index, int32_t mask) {
  if (CObjectFb* object = Object_Find(index)) object->maskIndex = mask;
}

// The new parent counts for handlers at once. The lists of instances and the lists of dispatch, which passes
// walk right now, follow at the next clean-up.
void object_set_parent(int32_t index, int32_t parent) {
  CObjectFb* object = Object_Find(index);
  if (!object) return;
  CObjectFb* found = Object_Find(parent);
  if (parent >= 0 && !found) {
    ReportError("Setting the parent of %s to a non-existing object: %d", object->name.c_str(), parent);
    return;
  }
  if (found && (found == object || found->IsDescendantOf(index))) {
    ReportError("%s can't be the parent of %s, which it descends from", found->name.c_str(),
                object->name.c_str());
    return;
  }
  object->parentIndex = parent;
  object->parent = found;
  Run().movedObjects.push_back(index);
}

void Function_AddObject() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&object_exists>("object_exists"),
      Builtin<&object_get_name>("object_get_name"),
      Builtin<&object_get_sprite>("object_get_sprite"),
      Builtin<&object_get_solid>("object_get_solid"),
      Builtin<&object_get_visible>("object_get_visible"),
      Builtin<&object_get_depth>("object_get_depth"),
      Builtin<&object_get_persistent>("object_get_persistent"),
      Builtin<&object_get_mask>("object_get_mask"),
      Builtin<&object_get_parent>("object_get_parent"),
      Builtin<&object_is_ancestor>("object_is_ancestor"),
      Builtin<&object_set_sprite>("object_set_sprite"),
      Builtin<&object_set_solid>("object_set_solid"),
      Builtin<&object_set_visible>("object_set_visible"),
      Builtin<&object_set_depth>("object_set_depth"),
      Builtin<&object_set_persistent>("object_set_persistent"),
      Builtin<&object_set_mask>("object_set_mask"),
      Builtin<&object_set_parent>("object_set_parent"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
