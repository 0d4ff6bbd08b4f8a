// A container with changed words, or any bytes as one: records are read and everything they point at is used.
#include "Files/Runner/ContainerRecords.h"
#include "tests/pack/ExampleGame.h"

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

struct Change { // of the example; the input is a row of them
  uint16_t place;
  uint8_t how, distance;
  uint32_t value;
};

std::vector<uint8_t> ChangedExample(const uint8_t* data, size_t size) {
  static const std::vector<uint8_t> example = vesk::pack::Write(vesk::test::ExampleGame());
  std::vector<uint8_t> bytes = example;
  for (Change change; size >= sizeof change && bytes.size() >= 8;
       data += sizeof change, size -= sizeof change) {
    std::memcpy(&change, data, sizeof change);
    const size_t at = change.place % (bytes.size() - 7);
    uint32_t word = 0;
    std::memcpy(&word, &bytes[at], 4);
    switch (change.how % 4) {
    case 0: word = change.value; break;
    case 1: word += static_cast<uint32_t>(change.distance) - 128; break;
    case 2: std::memcpy(&word, &bytes[change.value % (bytes.size() - 7)], 4); break; // some other word
    case 3: bytes.resize(change.distance < 16 ? at + 4 : bytes.size()); break;
    }
    std::memcpy(&bytes[at], &word, 4);
  }
  return bytes;
}

// The frame is given, so that the search is spent behind it.
void WriteFrame(std::vector<uint8_t>& bytes) {
  if (bytes.size() < 8) return;
  const auto rest = static_cast<uint32_t>(bytes.size() - 8);
  std::memcpy(bytes.data(), "FORM", 4);
  std::memcpy(bytes.data() + 4, &rest, 4);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 1 << 20) return 0;
  std::vector<uint8_t> bytes =
      data[0] % 4 == 0 ? std::vector<uint8_t>(data + 1, data + size) : ChangedExample(data + 1, size - 1);
  WriteFrame(bytes);
  const vesk::ContainerView view(bytes.data(), static_cast<uint32_t>(bytes.size()));
  vesk::ContainerRecords records;
  if (!vesk::Container_ReadRecords(view, 16, records)) return Use(view, records) == UINT64_MAX ? 1 : 0;
  return 0;
}
