// Lifetime of slots, and the global object.
#include "Files/Code/Slots.h"

#include <memory>

namespace vesk {

namespace {

std::unique_ptr<ZqObjectBase> g_globalObject;

} // namespace

ZqObjectBase::ZqObjectBase(int32_t count) : slotCount(count) {}

ZqObjectBase::~ZqObjectBase() = default;

void ZqObjectBase::CopySlotsFrom(const ZqObjectBase& other) {
  other.ForEachSlot([this](int32_t slot, const RValue& value) { GetSlot(slot) = value; });
}

ZqObjectBase* GlobalObject() { return g_globalObject.get(); }

void GlobalObject_Create(int32_t slotCount) { g_globalObject = std::make_unique<ZqObjectBase>(slotCount); }

void GlobalObject_Reset() { g_globalObject.reset(); }

} // namespace vesk
