#include "Files/Graphics/Texture.h"

#include "Files/Base/Console.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/PngImage.h"
#include "Platform/Memory.h"
#include "Platform/Threads.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace vesk {

// Pixels that the device hasn't got yet. They are written by the thread; readers wait for it first.
class DecodingImage {
public:
  explicit DecodingImage(std::vector<uint8_t> pixels) { m_image.pixels = std::move(pixels); }
  // Decoded at the first question for the pixels, or ahead of it.
  DecodingImage(const uint8_t* data, uint32_t size)
      : m_decode([this, data, size] { m_good = Png_Decode(data, size, m_image, m_why); }) {}
  void DecodeAhead() {
    if (m_thread.Start(m_decode)) m_decode = nullptr;
  }
  const uint8_t* Pixels() { // null: could not be decoded
    m_thread.Join();
    if (m_decode) m_decode();
    m_decode = nullptr;
    return m_good ? m_image.pixels.data() : nullptr;
  }
  const std::string& Why() const { return m_why; }

private:
  PngImage m_image;
  bool m_good = true;
  std::string m_why;
  std::function<void()> m_decode; // null once it was run, or is the thread's
  CThread m_thread;               // last: it must end before the rest goes
};

namespace {

TextureState g_textures;

constexpr uint32_t kPngSignature = 0x474E5089;
constexpr uint32_t kRawSignature = 0x20574152; // "RAW "

int32_t TakeSlot() {
  auto& slots = g_textures.slots;
  const auto free = std::find_if(slots.begin(), slots.end(), [](const auto& slot) { return !slot->valid; });
  const auto id = static_cast<int32_t>(free - slots.begin());
  if (free == slots.end())
    slots.push_back(std::make_unique<TextureSlot>());
  else
    **free = {};
  slots[static_cast<size_t>(id)]->valid = true;
  return id;
}

TextureSlot* Slot(int32_t id) {
  auto& slots = g_textures.slots;
  if (id < 0 || static_cast<size_t>(id) >= slots.size()) return nullptr;
  TextureSlot* slot = slots[static_cast<size_t>(id)].get();
  return slot->valid ? slot : nullptr;
}

void SetSize(TextureSlot& slot, int32_t width, int32_t height, int32_t realWidth, int32_t realHeight) {
  slot.width = width;
  slot.height = height;
  slot.realWidth = realWidth;
  slot.realHeight = realHeight;
  slot.invWidth = 1.0f / static_cast<float>(realWidth);
  slot.invHeight = 1.0f / static_cast<float>(realHeight);
}

void MakeDeviceObject(int32_t id) {
  TextureSlot& slot = *Slot(id);
  IRenderDevice* device = Graphics().device.get();
  if (!device || slot.handle || slot.width <= 0) return;
  slot.handle = device->CreateTexture(slot.realWidth, slot.realHeight, nullptr);
  if (!slot.handle)
    ErrorConsole().Output("Texture %d of %d by %d pixels could not be created\n", id, slot.width,
                          slot.height);
  else if (slot.image)
    g_textures.waiting.push_back(id);
}

int32_t Enter(std::shared_ptr<DecodingImage> image, int32_t width, int32_t height) {
  const int32_t id = TakeSlot();
  TextureSlot& slot = *Slot(id);
  slot.image = std::move(image);
  SetSize(slot, width, height, width, height);
  MakeDeviceObject(id);
  return id;
}

bool Upload(int32_t id) {
  TextureSlot& slot = *Slot(id);
  IRenderDevice& device = *Graphics().device;
  const uint8_t* pixels = slot.image->Pixels();
  if (!pixels) ErrorConsole().Output("Texture %d could not be decoded: %s\n", id, slot.image->Why().c_str());
  const bool good = pixels && device.UpdateTexture(slot.handle, pixels);
  if (!good) {
    device.ReleaseTexture(slot.handle);
    slot.handle = 0;
  }
  slot.image.reset();
  Memory_GiveBack();
  return good;
}

std::shared_ptr<DecodingImage> ImageOf(const uint8_t* data, uint32_t size) {
  auto& prefetched = g_textures.prefetched;
  const auto found = std::find_if(prefetched.begin(), prefetched.end(),
                                  [data](const auto& image) { return image.first == data; });
  if (found == prefetched.end()) return std::make_shared<DecodingImage>(data, size);
  std::shared_ptr<DecodingImage> image = std::move(found->second);
  prefetched.erase(found);
  return image;
}

uint32_t Word(const uint8_t* data, uint32_t at) {
  uint32_t word;
  std::memcpy(&word, data + at, sizeof(word));
  return word;
}

// The program's own form: width, height and pixel format behind the head word, pixels from byte 16.
int32_t CreateFromRaw(const uint8_t* data, uint32_t size) {
  const int32_t broken = -1;
  if (size < 16) return broken;
  const uint32_t width = Word(data, 4), height = Word(data, 8), format = Word(data, 12);
  const uint32_t bytesAPixel = format == 0 ? 4 : 2;
  if (width == 0 || height == 0 || width > 16384 || height > 16384 || format > 1 ||
      uint64_t{width} * height * bytesAPixel > size - 16)
    return broken;
  std::vector<uint8_t> pixels(size_t{width} * height * 4);
  const uint8_t* source = data + 16;
  for (size_t i = 0; i < size_t{width} * height; ++i) {
    uint8_t* pixel = &pixels[i * 4];
    if (format == 0) {
      std::memcpy(pixel, source + i * 4, 4);
    } else { // four bits each: red, green, blue, alpha from the high nibble
      const auto packed = static_cast<uint32_t>(source[i * 2] | source[i * 2 + 1] << 8);
      for (uint32_t channel = 0; channel < 4; ++channel)
        pixel[channel] = static_cast<uint8_t>((packed >> (12 - channel * 4) & 15) * 17);
    }
  }
  return Enter(std::make_shared<DecodingImage>(std::move(pixels)), static_cast<int32_t>(width),
               static_cast<int32_t>(height));
}

} // namespace

TextureState& Textures() { return g_textures; }

void Texture_Reset() {
  Texture_DeviceLeaves();
  g_textures = {};
}

int32_t Texture_CreateFromData(const uint8_t* data, uint32_t size, uint32_t) {
  int32_t width = 0, height = 0;
  int32_t id = -1;
  if (size >= 4 && Word(data, 0) == kRawSignature)
    id = CreateFromRaw(data, size);
  else if (size >= 4 && Word(data, 0) == kPngSignature && Png_Measure(data, size, width, height))
    id = Enter(ImageOf(data, size), width, height);
  if (id >= 0) return id;
  id = TakeSlot();
  ErrorConsole().Output("Texture %d is no image that can be read\n", id);
  return id;
}

void Texture_Prefetch(const uint8_t* data, uint32_t size) {
  int32_t width = 0, height = 0;
  if (Graphics().settings.texturesOnDemand || !Png_Measure(data, size, width, height)) return;
  auto image = std::make_shared<DecodingImage>(data, size);
  image->DecodeAhead();
  g_textures.prefetched.emplace_back(data, std::move(image));
}

int32_t Texture_CreateFromPixels(int32_t width, int32_t height, const uint8_t* pixels, uint32_t size) {
  const int64_t bytes = int64_t{width} * height * 4;
  if (width <= 0 || height <= 0 || bytes > size) return -1;
  return Enter(std::make_shared<DecodingImage>(std::vector<uint8_t>(pixels, pixels + bytes)), width, height);
}

int32_t Texture_CreateRenderTarget(int32_t width, int32_t height) {
  IRenderDevice* device = Graphics().device.get();
  if (!device || width <= 0 || height <= 0) return -1;
  const int32_t limit = device->MaxTextureSize();
  const auto rounded = [limit](int32_t size) {
    int32_t power = 1;
    while (power < size && power < limit) power *= 2;
    return power;
  };
  const int32_t realWidth = rounded(width), realHeight = rounded(height);
  if (realWidth < width || realHeight < height) return -1;
  const TextureHandle handle = device->CreateRenderTarget(realWidth, realHeight);
  if (!handle) return -1;
  const int32_t id = TakeSlot();
  TextureSlot& slot = *Slot(id);
  slot.handle = handle;
  slot.renderTarget = true;
  SetSize(slot, width, height, realWidth, realHeight);
  return id;
}

void Texture_Free(int32_t id) {
  TextureSlot* slot = Slot(id);
  if (!slot) return;
  // What was drawn with it before is still to come.
  if (slot->handle && Batch().batchTexture == slot->handle) FlushBatch();
  if (slot->handle && Graphics().device) Graphics().device->ReleaseTexture(slot->handle);
  std::erase(g_textures.waiting, id);
  *slot = {};
}

const TextureSlot* Texture_Find(int32_t id) { return Slot(id); }

TextureHandle Texture_Get(int32_t id) {
  const TextureSlot* slot = Slot(id);
  return slot ? slot->handle : 0;
}

void Texture_Preload(int32_t id) { Texture_Ready(Texture_Get(id)); }

void Texture_DeviceArrived() {
  for (size_t id = 0; id < g_textures.slots.size(); ++id)
    if (g_textures.slots[id]->valid) MakeDeviceObject(static_cast<int32_t>(id));
}

void Texture_DeviceLeaves() {
  for (const auto& slot : g_textures.slots) {
    if (slot->handle && Graphics().device) Graphics().device->ReleaseTexture(slot->handle);
    slot->handle = 0;
  }
  g_textures.waiting.clear();
}

bool Texture_Ready(TextureHandle handle) {
  if (!handle) return false;
  auto& waiting = g_textures.waiting;
  for (size_t i = 0; i < waiting.size(); ++i) {
    const int32_t id = waiting[i];
    if (Slot(id)->handle != handle) continue;
    waiting.erase(waiting.begin() + static_cast<ptrdiff_t>(i));
    return Upload(id);
  }
  return true;
}

} // namespace vesk
