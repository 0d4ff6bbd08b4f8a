// Objects: event tables, the search for a handler, instance lists.
#include "Files/Object/Object.h"

#include "Files/Base/Error.h"
#include "Files/Object/CollisionIndex.h"
#include "Files/Object/Instance.h"

#include <utility>

namespace vesk {

namespace {

// Never destroyed, so that instances that outlive everything else may still leave their lists.
ObjectState& g_objects = *new ObjectState;

CEvent* FindUpwards(const CObjectFb* object, int32_t type, int32_t subtype, int32_t& owner) {
  for (; object; object = object->parent) {
    if (CEvent* event = object->FindEvent(type, subtype)) {
      owner = object->objectIndex;
      return event;
    }
  }
  return nullptr;
}

} // namespace

ObjectState& Objects() { return g_objects; }

void Object_Reset() {
  g_objects.table.clear();
  for (auto& lists : g_objects.eventObjects)
    for (auto& list : lists) list.clear();
  g_objects.collisionPairs.clear();
}

// ---- nodes ----

InstanceList::Node* NodePool::Take() {
  if (!m_free) {
    constexpr size_t kBlock = 512;
    m_blocks.push_back(std::make_unique<InstanceList::Node[]>(kBlock));
    for (size_t i = 0; i < kBlock; ++i) Return(&m_blocks.back()[i]);
  }
  return std::exchange(m_free, m_free->next);
}

void NodePool::Return(InstanceList::Node* node) {
  node->next = m_free;
  m_free = node;
}

InstanceList::~InstanceList() {
  while (head) {
    Node* node = head;
    Node** link = &node->instance->nodes;
    while (*link != node) link = &(*link)->sibling;
    *link = node->sibling;
    Unlink(node);
  }
}

void InstanceList::Append(CInstance* instance) {
  Node* node = g_objects.nodePool.Take();
  *node = {nullptr, tail, instance, this, instance->nodes};
  instance->nodes = node;
  (tail ? tail->next : head) = node;
  tail = node;
  ++count;
}

void InstanceList::Unlink(Node* node) {
  (node->previous ? node->previous->next : head) = node->next;
  (node->next ? node->next->previous : tail) = node->previous;
  --count;
  g_objects.nodePool.Return(node);
}

void InstanceList::RemoveFromAll(CInstance* instance) {
  while (Node* node = instance->nodes) {
    instance->nodes = node->sibling;
    node->list->Unlink(node);
  }
}

// ---- objects ----

CEvent* CObjectFb::FindEvent(int32_t type, int32_t subtype) const {
  if (subtype < 0 || type < 0 || type >= kEventTypeCount) {
    ReportError("Invalid event argument");
    return nullptr;
  }
  const auto& events = eventTable[static_cast<size_t>(type)];
  return static_cast<size_t>(subtype) < events.size() ? events[static_cast<size_t>(subtype)].get() : nullptr;
}

void CObjectFb::SetEvent(int32_t type, int32_t subtype, int32_t codeIndex) {
  auto& events = eventTable[static_cast<size_t>(type)];
  if (events.size() <= static_cast<size_t>(subtype)) events.resize(static_cast<size_t>(subtype) + 1);
  events[static_cast<size_t>(subtype)] = std::make_unique<CEvent>(codeIndex);
}

bool CObjectFb::IsDescendantOf(int32_t ancestor) const {
  for (const CObjectFb* object = parent; object; object = object->parent)
    if (object->objectIndex == ancestor) return true;
  return false;
}

bool CObjectFb::HasHandler(int32_t type, int32_t subtype) const {
  int32_t owner;
  return FindUpwards(this, type, subtype, owner) != nullptr;
}

void CObjectFb::AddInstance(CInstance* instance) {
  if (instance->nodes) return;
  instances.Append(instance);
  for (CObjectFb* object = this; object; object = object->parent) object->instancesRecursive.Append(instance);
  CollisionIndex_Enter(*instance, *this);
}

void CObjectFb::RemoveInstance(CInstance* instance) {
  if (!instance->nodes) return;
  CollisionIndex_Leave(*instance);
  InstanceList::RemoveFromAll(instance);
}

Handler FindHandler(int32_t objectIndex, int32_t type, int32_t subtype) {
  Handler handler;
  const CObjectFb* object = Object_Find(objectIndex);
  handler.event = FindUpwards(object, type, subtype, handler.owner);
  if (handler.event || type != ev_collision) return handler;
  const CObjectFb* met = Object_Find(subtype);
  for (met = met ? met->parent : nullptr; met; met = met->parent) {
    handler.event = FindUpwards(object, type, met->objectIndex, handler.owner);
    if (handler.event) break;
  }
  return handler;
}

CObjectFb& Object_Add(std::string name) {
  auto object = std::make_unique<CObjectFb>();
  object->name = std::move(name);
  object->flags = CObjectFb::kVisible;
  object->objectIndex = static_cast<int32_t>(g_objects.table.size());
  g_objects.table.push_back(std::move(object));
  return *g_objects.table.back();
}

CObjectFb* Object_Find(int32_t index) {
  return static_cast<size_t>(index) < g_objects.table.size()
             ? g_objects.table[static_cast<size_t>(index)].get()
             : nullptr;
}

int32_t Object_FindByName(std::string_view name) {
  for (const auto& object : g_objects.table)
    if (object && object->name == name) return object->objectIndex;
  return -1;
}

const char* Object_Name(int32_t index) {
  const CObjectFb* object = Object_Find(index);
  return object ? object->name.c_str() : "<undefined>";
}

} // namespace vesk
