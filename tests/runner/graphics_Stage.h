#pragma once
// A stage for drawing tests: a device, one texture page painted pixel by pixel, and sprites cut from it.
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/Sprite/Sprite.h"
#include "Platform/HandDriven.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace vesk::test {

using Rgba = std::array<uint8_t, 4>;

// The page is 64 by 64; the pixel at (x, y) is red x * 4, green y * 4, blue 200, opaque, except the right
// half, whose alpha is 128.
inline constexpr int kPage = 64;
Rgba PagePixel(int x, int y);

class Stage {
public:
  Stage(std::unique_ptr<IRenderDevice> device, int width, int height);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  int page = -1; // texture id
  // A sprite of one frame a given entry.
  int Sprite(int width, int height, std::vector<PageEntry> frames, int originX = 0, int originY = 0);
  // One whose only frame is an uncropped piece of the page.
  int Piece(int x, int y, int width, int height, int originX = 0, int originY = 0);
  int Background(PageEntry entry);
  PageEntry Entry(int x, int y, int width, int height) const;

  CHandDrivenPlatform platform;

private:
  std::vector<std::unique_ptr<PageEntry>> m_entries;
};

// On a recording device.
class RecordingStage : public Stage {
public:
  RecordingStage(int width = 384, int height = 216)
      : RecordingStage(new CRecordingDevice(true), width, height) {}
  CRecordingDevice& device;
  // Draws since the last call, after a flush.
  std::vector<CRecordingDevice::Call> Draws();

private:
  RecordingStage(CRecordingDevice* made, int width, int height)
      : Stage(std::unique_ptr<IRenderDevice>(made), width, height), device(*made) {
    device.Forget();
  }
};

struct Box {
  float left, top, right, bottom;
  bool operator==(const Box&) const = default;
};
std::vector<TexturedVertex> Vertices(const CRecordingDevice::Call& draw);
// Of quad `index` in a draw of textured quads.
Box QuadBox(const CRecordingDevice::Call& draw, size_t index = 0);
Box QuadTexture(const CRecordingDevice::Call& draw, size_t index = 0); // in page pixels

} // namespace vesk::test
