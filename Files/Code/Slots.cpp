// Lifetime of slots, and the global object.
#include "Files/Code/Slots.h"

#include "Files/Object/Instance.h"

#include <memory>

namespace vesk {

namespace {

constexpr int32_t kGlobal = -5; // as scripts name it

std::unique_ptr<CInstance> g_globalObject;

} // namespace

ZqObjectBase::ZqObjectBase(int32_t count) : slotCount(count) {}

ZqObjectBase::~ZqObjectBase() = default;

void ZqObjectBase::CopySlotsFrom(const ZqObjectBase& other) {
  other.ForEachSlot([this](int32_t slot, const RValue& value) { GetSlot(slot) = value; });
}

ZqObjectBase* GlobalObject() { return g_globalObject.get(); }
CInstance* GlobalInstance() { return g_globalObject.get(); }

void GlobalObject_Create(int32_t slotCount) {
  g_globalObject = std::make_unique<CInstance>(nullptr, 0.0f, 0.0f, kGlobal, slotCount);
}

void GlobalObject_Reset() { g_globalObject.reset(); }

} // namespace vesk
