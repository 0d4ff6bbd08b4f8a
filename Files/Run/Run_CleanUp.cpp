// What happens between passes: moves between the room's lists, applied changes, new depths, removals.
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"

#include <algorithm>

namespace vesk {

namespace {

// The active list is sorted by depth and, among equal depths, by the time of the insert; the inactive list by
// the time of the move alone. So a few instances can be put in list order without walking the lists.
bool ActiveOrder(const CInstance* a, const CInstance* b) {
  return a->sortDepth != b->sortDepth ? a->sortDepth < b->sortDepth : a->listOrder < b->listOrder;
}
bool InactiveOrder(const CInstance* a, const CInstance* b) { return a->listOrder < b->listOrder; }

void ApplyDeactivations(RunState& run, CRoom& room) {
  run.waking.clear();
  run.sleeping.clear();
  for (CInstance* it : run.deactivationList) {
    it->inDeactivationList = false;
    if (it->inInactiveList && !it->deactivated) run.waking.push_back(it);
    if (!it->inInactiveList && it->deactivated) run.sleeping.push_back(it);
  }
  run.deactivationList.clear();

  std::sort(run.waking.begin(), run.waking.end(), InactiveOrder);
  std::sort(run.sleeping.begin(), run.sleeping.end(), ActiveOrder);
  for (CInstance* it : run.waking) {
    room.inactive.Remove(it);
    room.active.InsertSorted(it);
    it->object->AddInstance(it);
  }
  for (CInstance* it : run.sleeping) {
    it->object->RemoveInstance(it);
    room.active.Remove(it);
    room.inactive.Append(it);
  }
}

void ApplyChanges(RunState& run, CRoom& room) {
  for (CInstance* it : run.changeList) {
    it->inChangeList = false;
    if (it->previousObject) it->previousObject->RemoveInstance(it);
    it->previousObject = nullptr;
    if (it->inInactiveList) continue; // enters the lists of its new object when it wakes
    it->object->AddInstance(it);
    room.active.Remove(it);
    room.active.InsertSorted(it);
  }
  run.changeList.clear();
}

void ApplyDepths(RunState& run, CRoom& room) {
  for (CInstance* it : run.resortList) {
    it->inResortList = false;
    if (!it->inInactiveList) room.active.Remove(it);
  }
  for (CInstance* it : run.resortList)
    if (!it->inInactiveList) room.active.InsertSorted(it);
  run.resortList.clear();
}

// The instances of objects with another ancestry leave all lists and enter those of their new ancestors, at
// the tails and in their order.
void ApplyParents(RunState& run) {
  const auto isMoved = [&run](const CObjectFb& object) {
    return std::any_of(run.movedObjects.begin(), run.movedObjects.end(), [&object](int32_t moved) {
      return object.objectIndex == moved || object.IsDescendantOf(moved);
    });
  };
  std::vector<CInstance*> instances;
  for (const auto& object : Objects().table) {
    if (!object || !isMoved(*object)) continue;
    instances.clear();
    for (InstanceList::Node* node = object->instances.head; node; node = node->next)
      instances.push_back(node->instance);
    for (CInstance* it : instances) {
      object->RemoveInstance(it);
      object->AddInstance(it);
    }
  }
  run.movedObjects.clear();
  BuildEventLists();
}

void Note(std::vector<CInstance*>& list, bool InstancePlaces::*isListed, CInstance* instance) {
  if (instance->*isListed || !instance->object) return; // start-up code's self stands in no list
  instance->*isListed = true;
  list.push_back(instance);
}

void Forget(std::vector<CInstance*>& list, bool InstancePlaces::*isListed, CInstance* instance) {
  if (!(instance->*isListed)) return;
  instance->*isListed = false;
  list.erase(std::find(list.begin(), list.end(), instance));
}

} // namespace

void NoteResort(CInstance* instance) { Note(Run().resortList, &InstancePlaces::inResortList, instance); }
void NoteDeactivation(CInstance* instance) {
  Note(Run().deactivationList, &InstancePlaces::inDeactivationList, instance);
}
void NoteChange(CInstance* instance) { Note(Run().changeList, &InstancePlaces::inChangeList, instance); }

void MarkInstance(CInstance* instance) {
  instance->marked = true;
  Note(Run().markedList, &InstancePlaces::inMarkedList, instance);
}

void ForgetPending(CInstance* instance) {
  RunState& run = Run();
  Forget(run.resortList, &InstancePlaces::inResortList, instance);
  Forget(run.changeList, &InstancePlaces::inChangeList, instance);
  Forget(run.deactivationList, &InstancePlaces::inDeactivationList, instance);
  Forget(run.markedList, &InstancePlaces::inMarkedList, instance);
}

void CleanUpInstances() {
  RunState& run = Run();
  if (!run.movedObjects.empty()) ApplyParents(run);
  CRoom* room = CurrentRoom();
  if (!room) return;
  if (!run.deactivationList.empty()) ApplyDeactivations(run, *room);
  if (!run.changeList.empty()) ApplyChanges(run, *room);
  if (!run.resortList.empty()) ApplyDepths(run, *room);
}

void RemoveMarked() {
  RunState& run = Run();
  if (run.markedList.empty()) return;
  run.waking.clear(); // the last clean-up leaves its own in it
  run.waking.swap(run.markedList);
  for (CInstance* it : run.waking) {
    it->inMarkedList = false;
    Instance_Remove(it);
  }
  run.waking.clear();
}

void DestroyInstance(CInstance* instance, bool runDestroyEvent) {
  if (instance->destroyEventDone || !instance->object) return;
  instance->destroyEventDone = true;
  if (runDestroyEvent) PerformOwnEvent(instance, instance, ev_destroy, 0);
  PerformOwnEvent(instance, instance, ev_cleanup, 0);
  MarkInstance(instance);
}

} // namespace vesk
