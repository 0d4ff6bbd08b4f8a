// Which instances a number names: the snapshot of `with`, and the one that `target.variable` reads.
#include "Files/Code/Self.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"

#include <vector>

namespace vesk {

namespace {

constexpr int32_t kSelfAgain = -6; // behaves like self

bool IsOf(const CInstance& instance, int32_t object) {
  return instance.objectIndex == object || (instance.object && instance.object->IsDescendantOf(object));
}

// Calls visit on all live instances of the object and its descendants, in the order of collection, until it
// returns false. An instance may be on the object's list and on one of those that wait for the clean-up.
template <class Visit> void ForEachOfObject(int32_t object, Visit visit) {
  const CObjectFb* found = Object_Find(object);
  if (!found) return;
  for (const InstanceList::Node* node = found->instancesRecursive.head; node; node = node->next)
    if (node->instance->Live() && !visit(node->instance)) return;
  const auto waits = [=](const CInstance& it) {
    if (!it.Live() || !IsOf(it, object)) return false;
    const CObjectFb* listed = it.previousObject ? it.previousObject : it.object;
    return !it.nodes || (listed != found && !listed->IsDescendantOf(object));
  };
  const RunState& run = Run();
  for (CInstance* it : run.changeList)
    if (waits(*it) && !visit(it)) return;
  for (CInstance* it : run.deactivationList)
    if (!it->inChangeList && waits(*it) && !visit(it)) return;
}

template <class Visit> void ForEachActive(Visit visit) {
  const CRoom* room = CurrentRoom();
  for (CInstance* it = room ? room->active.head : nullptr; it; it = it->next)
    if (it->Live() && !visit(it)) return;
}

CInstance* LiveById(int32_t id) {
  CInstance* found = Instance_Find(id);
  return found && found->Live() ? found : nullptr;
}

// By its id a sleeping instance can be read and written.
CInstance* ReachableById(int32_t id) {
  CInstance* found = Instance_Find(id);
  return found && !found->marked ? found : nullptr;
}

// Never destroyed; it only grows.
std::vector<CInstance*>& g_targets = *new std::vector<CInstance*>;

} // namespace

WithSnapshot::WithSnapshot(CInstance* self, CInstance* other, int32_t target) : m_first(g_targets.size()) {
  const auto collect = [](CInstance* it) {
    if (it) g_targets.push_back(it);
    return true;
  };
  if (target == self_ || target == kSelfAgain)
    collect(self);
  else if (target == other_)
    collect(other);
  else if (target == all)
    ForEachActive(collect);
  else if (target >= kFirstInstanceId)
    collect(LiveById(target));
  else if (target >= 0)
    ForEachOfObject(target, collect);
  m_next = g_targets.size();
}

WithSnapshot::~WithSnapshot() { g_targets.resize(m_first); }

CInstance* WithSnapshot::Next() { return m_next == m_first ? nullptr : g_targets[--m_next]; }

std::vector<CInstance*> WriteTargets(int32_t target) {
  std::vector<CInstance*> targets;
  const auto collect = [&targets](CInstance* it) {
    if (it) targets.push_back(it);
    return true;
  };
  if (target == all)
    ForEachActive(collect);
  else if (target >= kFirstInstanceId)
    collect(ReachableById(target));
  else if (target >= 0)
    ForEachOfObject(target, collect);
  return targets;
}

CInstance* FirstTarget(int32_t target) {
  if (target >= kFirstInstanceId) return ReachableById(target);
  CInstance* found = nullptr;
  const auto take = [&found](CInstance* it) {
    found = it;
    return false;
  };
  if (target == all)
    ForEachActive(take);
  else if (target >= 0)
    ForEachOfObject(target, take);
  return found;
}

Self first(int32_t target) { return Self(FirstTarget(target)); }

} // namespace vesk
