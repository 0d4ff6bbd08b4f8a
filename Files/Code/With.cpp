// Which instances a number names: the snapshot of `with`, and the one that `target.variable` reads.
#include "Files/Code/Self.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"

#include <algorithm>
#include <unordered_set>

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
  std::unordered_set<const CInstance*> waiting;
  const RunState& run = Run();
  const auto collectWaiting = [&](const std::vector<CInstance*>& list) {
    for (const CInstance* it : list)
      if (it->Live() && IsOf(*it, object)) waiting.insert(it);
  };
  collectWaiting(run.changeList);
  collectWaiting(run.deactivationList);

  for (const InstanceList::Node* node = found->instancesRecursive.head; node; node = node->next) {
    if (!node->instance->Live()) continue;
    if (!waiting.empty()) waiting.erase(node->instance);
    if (!visit(node->instance)) return;
  }
  for (const auto* list : {&run.changeList, &run.deactivationList}) {
    for (CInstance* it : *list) {
      if (waiting.empty()) return;
      if (waiting.erase(it) > 0 && !visit(it)) return;
    }
  }
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

} // namespace

std::vector<CInstance*> WithTargets(CInstance* self, CInstance* other, int32_t target) {
  std::vector<CInstance*> targets;
  const auto collect = [&targets](CInstance* it) {
    targets.push_back(it);
    return true;
  };
  if (target == self_ || target == kSelfAgain) {
    if (self) targets.push_back(self);
  } else if (target == other_) {
    if (other) targets.push_back(other);
  } else if (target == all) {
    ForEachActive(collect);
  } else if (target >= kFirstInstanceId) {
    if (CInstance* found = LiveById(target)) targets.push_back(found);
  } else if (target >= 0) {
    ForEachOfObject(target, collect);
  }
  std::reverse(targets.begin(), targets.end());
  return targets;
}

std::vector<CInstance*> WriteTargets(int32_t target) {
  if (target != all && target < 0) return {};
  std::vector<CInstance*> targets = WithTargets(nullptr, nullptr, target);
  std::reverse(targets.begin(), targets.end());
  return targets;
}

CInstance* FirstTarget(int32_t target) {
  if (target >= kFirstInstanceId) return LiveById(target);
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
