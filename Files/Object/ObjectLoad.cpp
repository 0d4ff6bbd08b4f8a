// Objects from their records.
#include "Files/Object/Object.h"

#include "Files/Runner/ContainerRecords.h"

namespace vesk {

using namespace container;

namespace {

// An index whose top bit is set and whose next three are clear is the index without that bit.
int32_t SpriteIndexOf(int32_t word) {
  const auto bits = static_cast<uint32_t>(word);
  return bits >> 28 == 8 ? static_cast<int32_t>(bits & 0x7FFFFFFF) : word;
}

std::unique_ptr<CObjectFb> MakeObject(const ObjectRecord& record, int32_t index) {
  auto object = std::make_unique<CObjectFb>();
  object->objectIndex = index;
  object->name = record.name;
  object->spriteIndex = SpriteIndexOf(record.sprite);
  object->maskIndex = record.mask;
  object->depth = record.depth;
  object->parentIndex = record.parent;
  if (record.solid) object->flags |= CObjectFb::kSolid;
  if (record.visible) object->flags |= CObjectFb::kVisible;
  if (record.persistent) object->flags |= CObjectFb::kPersistent;
  for (const ObjectRecord::Event& event : record.events)
    object->SetEvent(event.type, event.subtype, event.code);
  return object;
}

} // namespace

void Object_Load(const std::vector<std::optional<container::ObjectRecord>>& records) {
  auto& table = Objects().table;
  table.clear();
  for (size_t i = 0; i < records.size(); ++i)
    table.push_back(records[i] ? MakeObject(*records[i], static_cast<int32_t>(i)) : nullptr);
}

} // namespace vesk
