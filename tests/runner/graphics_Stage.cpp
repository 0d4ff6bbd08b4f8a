#include "tests/runner/graphics_Stage.h"

#include "Files/Background/Background.h"
#include "Files/Base/Error.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Texture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vesk::test {

Rgba PagePixel(int x, int y) {
  return {static_cast<uint8_t>(x * 4), static_cast<uint8_t>(y * 4), 200,
          static_cast<uint8_t>(x < kPage / 2 ? 255 : 128)};
}

Stage::Stage(std::unique_ptr<IRenderDevice> device, int width, int height) {
  Platform_Set(&platform.Interfaces());
  platform.window.Create({.title = "", .size = {width, height}});
  Graphics_Reset();
  Error_Reset();
  Error().showBox = false;
  Graphics().settings.applicationWidth = width;
  Graphics().settings.applicationHeight = height;
  GR_D3D_Init(std::move(device));
  std::vector<uint8_t> pixels;
  for (int y = 0; y < kPage; ++y)
    for (int x = 0; x < kPage; ++x) {
      const Rgba pixel = PagePixel(x, y);
      pixels.insert(pixels.end(), pixel.begin(), pixel.end());
    }
  page = Texture_CreateFromPixels(kPage, kPage, pixels.data(), static_cast<uint32_t>(pixels.size()));
  BeginFrame();
}

Stage::~Stage() {
  Sprite_Reset();
  Background_Reset();
  Font_Reset();
  Graphics_Reset();
  Error_Reset();
  Platform_Set(nullptr);
}

PageEntry Stage::Entry(int x, int y, int width, int height) const {
  const auto w = static_cast<uint16_t>(width), h = static_cast<uint16_t>(height);
  return {static_cast<uint16_t>(x),  static_cast<uint16_t>(y), w, h, 0, 0, w, h, w, h,
          static_cast<int16_t>(page)};
}

int Stage::Sprite(int width, int height, std::vector<PageEntry> frames, int originX, int originY) {
  auto sprite = std::make_unique<CSprite>();
  sprite->width = width;
  sprite->height = height;
  sprite->originX = originX;
  sprite->originY = originY;
  sprite->index = static_cast<int32_t>(Sprites().table.size());
  for (const int x : {0, width})
    for (const int y : {0, height})
      sprite->boundingRadius = std::max(
          sprite->boundingRadius, static_cast<int32_t>(std::ceil(std::hypot(x - originX, y - originY))));
  for (const PageEntry& frame : frames) {
    m_entries.push_back(std::make_unique<PageEntry>(frame));
    sprite->frames.push_back(m_entries.back().get());
  }
  Sprites().table.push_back(std::move(sprite));
  return static_cast<int>(Sprites().table.size()) - 1;
}

int Stage::Piece(int x, int y, int width, int height, int originX, int originY) {
  return Sprite(width, height, {Entry(x, y, width, height)}, originX, originY);
}

int Stage::Background(PageEntry entry) {
  m_entries.push_back(std::make_unique<PageEntry>(entry));
  auto background = std::make_unique<CBackground>();
  background->page = m_entries.back().get();
  background->width = entry.boundingWidth;
  background->height = entry.boundingHeight;
  Backgrounds().table.push_back(std::move(background));
  return static_cast<int>(Backgrounds().table.size()) - 1;
}

std::vector<CRecordingDevice::Call> RecordingStage::Draws() {
  FlushBatch();
  std::vector<CRecordingDevice::Call> draws = device.Draws();
  device.Forget();
  return draws;
}

std::vector<TexturedVertex> Vertices(const CRecordingDevice::Call& draw) {
  std::vector<TexturedVertex> vertices(draw.data.size() / sizeof(TexturedVertex));
  std::memcpy(vertices.data(), draw.data.data(), vertices.size() * sizeof(TexturedVertex));
  return vertices;
}

Box QuadBox(const CRecordingDevice::Call& draw, size_t index) {
  const std::vector<TexturedVertex> v = Vertices(draw);
  return {v[index * 6].x, v[index * 6].y, v[index * 6 + 2].x, v[index * 6 + 2].y};
}

Box QuadTexture(const CRecordingDevice::Call& draw, size_t index) {
  const std::vector<TexturedVertex> v = Vertices(draw);
  const TexturedVertex &first = v[index * 6], &third = v[index * 6 + 2];
  return {first.u * kPage, first.v * kPage, third.u * kPage, third.v * kPage};
}

} // namespace vesk::test
