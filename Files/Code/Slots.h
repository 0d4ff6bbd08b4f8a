#pragma once
// Variables of instances and of the global object: values behind small slot numbers, made on first use.
#include "Files/Code/SlotMap.h"
#include "Files/Code/Value.h"

#include <cstdint>
#include <memory>

namespace vesk {

class CInstance;

class CInstanceBase {
public:
  virtual ~CInstanceBase() = default;
  // The value in the slot; made unset on first use. The address stays valid while the object lives.
  virtual RValue& GetSlot(int32_t slot) = 0;
};

class ZqObjectBase : public CInstanceBase {
public:
  explicit ZqObjectBase(int32_t slotCount);
  ~ZqObjectBase() override;
  ZqObjectBase(const ZqObjectBase&) = delete;
  ZqObjectBase& operator=(const ZqObjectBase&) = delete;

  RValue& GetSlot(int32_t slot) final {
    if (!m_map) m_map = std::make_unique<SlotMap>();
    return m_map->Get(slot, defaultKind);
  }
  // As GetSlot without creating it; null for a slot that was never named.
  RValue* FindSlot(int32_t slot) const { return m_map ? m_map->Find(slot) : nullptr; }
  bool HasSlots() const { return slotCount > 0; }
  void CopySlotsFrom(const ZqObjectBase& other);
  // Calls visit(slot, value) for every slot that exists, in no particular order.
  template <class Visit> void ForEachSlot(Visit visit) const {
    if (m_map) m_map->ForEach(visit);
  }

  int32_t slotCount; // 0 or less: none at all
  uint32_t defaultKind = kUnset;

private:
  std::unique_ptr<SlotMap> m_map; // made on first use
};

// The object behind `global`; made at load, lives to the end of the game. Null before.
ZqObjectBase* GlobalObject();
// The same as start-up code has it for self and other: an instance of no object, in no list.
CInstance* GlobalInstance();
// A new one without any value; the old one dies.
void GlobalObject_Create(int32_t slotCount);
void GlobalObject_Reset();

} // namespace vesk
