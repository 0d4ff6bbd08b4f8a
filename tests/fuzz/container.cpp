// Any bytes as a container: records are read and everything they point at is used.
#include "Files/Runner/ContainerRecords.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

uint64_t Use(const vesk::ContainerView& view, const vesk::ContainerRecords& records) {
  uint64_t sum = std::strlen(records.header.name);
  for (const auto& sprite : records.sprites) {
    if (!sprite) continue;
    sum += std::strlen(sprite->name);
    const uint64_t mask =
        static_cast<uint64_t>(sprite->width + 7) / 8 * static_cast<uint64_t>(sprite->height);
    if (sprite->maskCount > 0)
      sum += view.Bytes()[sprite->masks + mask * static_cast<uint64_t>(sprite->maskCount) - 1];
  }
  for (const auto& sound : records.sounds)
    if (sound && !sound->data.empty()) sum += sound->data.back();
  for (const auto& texture : records.textures)
    if (texture) sum += texture->data.back();
  for (const auto& shader : records.shaders)
    if (shader) sum += std::strlen(shader->glesVertex);
  return sum;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 20) return 0;
  std::vector<uint8_t> bytes(data, data + size);
  // The frame is given, so that the search is spent behind it.
  if (size >= 8) {
    const auto rest = static_cast<uint32_t>(size - 8);
    std::memcpy(bytes.data(), "FORM", 4);
    std::memcpy(bytes.data() + 4, &rest, 4);
  }
  const vesk::ContainerView view(bytes.data(), static_cast<uint32_t>(size));
  vesk::ContainerRecords records;
  if (!vesk::Container_ReadRecords(view, 16, records)) return Use(view, records) == UINT64_MAX ? 1 : 0;
  return 0;
}
