#pragma once
// Objects: the classes of the game world, their event tables, and the lists that make dispatch cheap.
#include "Files/Code/Code.h"
#include "Files/Object/EventTypes.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class CInstance;

// A doubly linked list of instances in order of insertion. Nodes come from a pool that all lists share; the
// instance keeps those it stands under, so that it leaves every list in constant time.
class InstanceList {
public:
  struct Node {
    Node* next;
    Node* previous;
    CInstance* instance;
    InstanceList* list;
    Node* sibling; // the same instance in the next of its lists
  };
  InstanceList() = default;
  ~InstanceList(); // takes the nodes out; the instances stay
  InstanceList(const InstanceList&) = delete;
  InstanceList& operator=(const InstanceList&) = delete;

  Node* head = nullptr;
  Node* tail = nullptr;
  int32_t count = 0;

  void Append(CInstance* instance);
  static void RemoveFromAll(CInstance* instance);

private:
  void Unlink(Node* node);
};

// Where nodes come from and go back to; grows in blocks that stay.
class NodePool {
public:
  InstanceList::Node* Take();
  void Return(InstanceList::Node* node);

private:
  std::vector<std::unique_ptr<InstanceList::Node[]>> m_blocks;
  InstanceList::Node* m_free = nullptr;
};

// One event of one object. Owns its code.
class CEvent {
public:
  explicit CEvent(int32_t codeIndex) : code(std::make_unique<CCode>(codeIndex)) {}
  virtual ~CEvent() = default;
  std::unique_ptr<CCode> code;
};

class CObjectFb {
public:
  enum Flags : uint32_t { kSolid = 1, kVisible = 2, kPersistent = 4, kHasCollisions = 8 };

  uint32_t flags = 0;
  int32_t spriteIndex = -1;
  int32_t depth = 0;
  int32_t parentIndex = -100;
  int32_t maskIndex = -1;
  std::string name;
  int32_t objectIndex = -1;
  CObjectFb* parent = nullptr;
  std::array<std::vector<std::unique_ptr<CEvent>>, kEventTypeCount> eventTable; // by type, then subtype
  InstanceList instances;                                                       // of exactly this object
  InstanceList instancesRecursive; // of this object or any descendant
  // Itself or an ancestor; set by BuildEventLists.
  bool handlesAnimationEnd = false, handlesDraw = false;

  // This object only; null when it has no such event. A bad type or subtype is an error report.
  CEvent* FindEvent(int32_t type, int32_t subtype) const;
  // Makes the slot or replaces its code.
  void SetEvent(int32_t type, int32_t subtype, int32_t codeIndex);
  // An object is not its own descendant.
  bool IsDescendantOf(int32_t ancestor) const;
  // Walks up the parents, without the collision rule.
  bool HasHandler(int32_t type, int32_t subtype) const;
  // At the tails of this object's list and the recursive lists up the parents. An instance stands in the
  // lists of one object at a time: for one that stands in lists already nothing happens.
  void AddInstance(CInstance* instance);
  void RemoveInstance(CInstance* instance);
};

struct Handler {
  CEvent* event = nullptr; // null: none
  int32_t owner = -1;      // the object that has it
};
// The nearest handler up the parents; for collisions also those against the other object's ancestors.
Handler FindHandler(int32_t object, int32_t type, int32_t subtype);

struct CollisionPair {
  int32_t a, b;
  CObjectFb* objectA;
  CObjectFb* objectB;
  bool enabled;
};

struct ObjectState {
  NodePool nodePool;                             // outlives the lists
  std::vector<std::unique_ptr<CObjectFb>> table; // by index; null for a hole
  std::vector<int32_t> eventObjects[kEventTypeCount][256];
  std::vector<CollisionPair> collisionPairs;
};
ObjectState& Objects();
void Object_Reset();

// Null for an index that names no object.
CObjectFb* Object_Find(int32_t index);
int32_t Object_FindByName(std::string_view name); // first of that name, -1 none
const char* Object_Name(int32_t index);           // "<undefined>" for an unknown one
// After all objects are loaded, and again only when the table changes.
void BuildEventLists();
// A new object at the end of the table, for objects that no container describes.
CObjectFb& Object_Add(std::string name);

} // namespace vesk
