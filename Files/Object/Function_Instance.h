#pragma once
// Built-ins that make, end, count, change and put to sleep instances, and those that read and write objects.
// `target` is an object with its descendants, an instance id, or `all`; the forms with self and other take
// self_ and other_ too. An unknown, destroyed or sleeping target is silently nothing.
#include "Files/Object/Instance.h"
#include "Files/Room/Room.h" // instance_create

#include <cstdint>
#include <string>

namespace vesk {

void Function_AddInstance();
void Function_AddObject();

// ---- making and ending ----

int32_t instance_create_depth(float x, float y, float depth, int32_t object); // id, -1 with an error report
// Destroy and clean-up events run once; the instance is marked and stays readable until the end of the
// update. Without `runDestroyEvent` only the clean-up event runs.
void instance_destroy(CInstance* self, bool runDestroyEvent = true);
void instance_destroy(int32_t target, bool runDestroyEvent = true);
void instance_destroy(CInstance* self, CInstance* other, int32_t target, bool runDestroyEvent);
// Everything whose shape contains the point, with pixel tests.
void position_destroy(float x, float y);

// ---- asking ----

bool instance_exists(int32_t target);
bool instance_exists(CInstance* self, CInstance* other, int32_t target);
int32_t instance_number(int32_t target);
int32_t instance_number(CInstance* self, CInstance* other, int32_t target);
// The n-th from 0 in list order, oldest first; noone when there is none.
int32_t instance_find(int32_t target, int32_t n);

// ---- changing ----

// With `perform` destroy and clean-up run in the old object, pre-create and create in the new one.
void instance_change(CInstance* self, int32_t object, bool perform);
void position_change(float x, float y, int32_t object, bool perform);
int32_t instance_copy(CInstance* self, bool perform); // id of the copy
// A report and no change for a sprite that doesn't exist.
void instance_sprite(CInstance* self, int32_t sprite, float image, float speed);

// ---- sleeping: the flag acts at once, the lists follow at the next clean-up ----

void instance_deactivate_all(CInstance* self, bool notMe);
void instance_deactivate_object(int32_t target);
void instance_deactivate_object(CInstance* self, CInstance* other, int32_t target);
// `inside`: those that overlap the region, else those that don't. Room pixels.
void instance_deactivate_region(CInstance* self, float left, float top, float width, float height,
                                bool inside, bool notMe);
void instance_activate_all();
void instance_activate_object(int32_t target);
void instance_activate_region(float left, float top, float width, float height, bool inside);

// ---- objects; an unknown one reads as nothing and is not written ----

bool object_exists(int32_t object);
std::string object_get_name(int32_t object); // "<undefined>" for an unknown one
int32_t object_get_sprite(int32_t object);   // -1 none
bool object_get_solid(int32_t object);
bool object_get_visible(int32_t object);
int32_t object_get_depth(int32_t object);
bool object_get_persistent(int32_t object);
int32_t object_get_mask(int32_t object);
int32_t object_get_parent(int32_t object); // -100 none, -1 for an unknown object
bool object_is_ancestor(int32_t object, int32_t ancestor);
void object_set_sprite(int32_t object, int32_t sprite);
void object_set_solid(int32_t object, bool solid);
void object_set_visible(int32_t object, bool visible);
void object_set_depth(int32_t object, int32_t depth);
void object_set_persistent(int32_t object, bool persistent);
void object_set_mask(int32_t object, int32_t mask);
// Negative: none. Handlers are found through it at once; searches and passes follow at the next clean-up. An
// object that is missing or descends from this one is an error report, and nothing changes.
void object_set_parent(int32_t object, int32_t parent);

} // namespace vesk
