#pragma once
// The table of textures. A texture id is an index in it and is used again after Texture_Free. Game thread
// only.
#include "Files/Graphics_API/RenderDevice.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vesk {

class DecodingImage; // a PNG image on its way through the decoder

struct TextureSlot {
  TextureHandle handle = 0;              // 0: no device object; nothing is drawn with it
  int32_t width = 0, height = 0;         // pixels, as asked for
  int32_t realWidth = 0, realHeight = 0; // as the device has it
  float invWidth = 0, invHeight = 0;     // pixels to texture coordinates
  bool valid = false;
  bool renderTarget = false;
  std::shared_ptr<DecodingImage> image; // not uploaded yet
};

// New texture of an image file in memory (PNG, or the raw form headed "RAW "). A PNG image is measured here
// and decoded when it is first bound; its bytes must stay until then. The id is valid even when the image is
// not: then nothing is drawn with it. Works before there is a device.
int32_t Texture_CreateFromData(const uint8_t* data, uint32_t size, uint32_t flags = 0);
inline int32_t Texture_CreateFromPng(const uint8_t* data, uint32_t size) {
  return Texture_CreateFromData(data, size);
}
// Begins to decode a PNG image that Texture_CreateFromData will be given on a thread of its own: the window
// can be made meanwhile.
void Texture_Prefetch(const uint8_t* data, uint32_t size);
// Pixels are red, green, blue, alpha, rows from the top; copied. -1 when `size` is too small.
int32_t Texture_CreateFromPixels(int32_t width, int32_t height, const uint8_t* pixels, uint32_t size);
int32_t Texture_CreateRenderTarget(int32_t width,
                                   int32_t height); // -1 on failure; real size in powers of two
void Texture_Free(int32_t id);                      // an unknown id is ignored
const TextureSlot* Texture_Find(int32_t id);        // null: out of range or not in use
TextureHandle Texture_Get(int32_t id);              // 0 when there is no device object
void Texture_Preload(int32_t id);                   // decodes and uploads now

struct TextureState {
  std::vector<std::unique_ptr<TextureSlot>> slots;
  std::vector<int32_t> waiting; // ids whose image has still to be uploaded
  std::vector<std::pair<const uint8_t*, std::shared_ptr<DecodingImage>>> prefetched; // by their bytes
};
TextureState& Textures(); // GR_Textures
void Texture_Reset();

// The device came or is about to go: makes or drops the device objects of all slots.
void Texture_DeviceArrived();
void Texture_DeviceLeaves();
// Called before a bind: uploads the image of that handle if it still waits. False when it has none to show.
bool Texture_Ready(TextureHandle handle);

} // namespace vesk
