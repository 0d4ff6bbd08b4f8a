#include "Files/Sprite/RuntimeSprite.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/OutsideImage.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/PngImage.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Sprite/Sprite.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

namespace {

constexpr int32_t kMostFrames = 4096;

PngImage Cut(const PngImage& image, int32_t left, int32_t width, int32_t height) {
  PngImage piece{width, height, {}};
  piece.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
  const int32_t columns = std::min(width, image.width - left), rows = std::min(height, image.height);
  for (int32_t row = 0; row < rows && columns > 0; ++row)
    std::memcpy(&piece.pixels[static_cast<size_t>(row) * static_cast<size_t>(width) * 4],
                &image.pixels[(static_cast<size_t>(row) * static_cast<size_t>(image.width) +
                               static_cast<size_t>(left)) *
                              4],
                static_cast<size_t>(columns) * 4);
  return piece;
}

// The box grows to what the frame shows.
void Enclose(CSprite& sprite, const PngImage& frame) {
  for (int32_t y = 0; y < frame.height; ++y)
    for (int32_t x = 0; x < frame.width; ++x) {
      const size_t at = static_cast<size_t>(y) * static_cast<size_t>(frame.width) + static_cast<size_t>(x);
      if (frame.pixels[at * 4 + 3] == 0) continue;
      sprite.left = std::min(sprite.left, x);
      sprite.right = std::max(sprite.right, x);
      sprite.top = std::min(sprite.top, y);
      sprite.bottom = std::max(sprite.bottom, y);
    }
}

void AddFrame(CSprite& sprite, const PngImage& frame) {
  const int32_t texture = Texture_CreateFromPixels(frame.width, frame.height, frame.pixels.data(),
                                                   static_cast<uint32_t>(frame.pixels.size()));
  sprite.ownedFrames.push_back(
      std::make_unique<PageEntry>(Page_OfTexture(texture, frame.width, frame.height)));
  sprite.frames.push_back(sprite.ownedFrames.back().get());
}

std::unique_ptr<CSprite> MakeSprite(PngImage image, int32_t frames, bool removeback, bool smooth,
                                    int32_t originX, int32_t originY) {
  auto sprite = std::make_unique<CSprite>();
  if (removeback) RemoveBack(image);
  sprite->width = image.width / frames;
  sprite->height = image.height;
  sprite->originX = originX;
  sprite->originY = originY;
  sprite->transparent = removeback;
  sprite->smooth = smooth;
  sprite->left = sprite->width;
  sprite->top = sprite->height;
  sprite->right = sprite->bottom = -1;
  for (int32_t frame = 0; frame < frames; ++frame) {
    const PngImage piece = Cut(image, frame * sprite->width, sprite->width, sprite->height);
    Enclose(*sprite, piece);
    AddFrame(*sprite, piece);
  }
  if (sprite->right < 0) // nothing to see: the whole frame
    sprite->left = sprite->top = 0, sprite->right = sprite->width - 1, sprite->bottom = sprite->height - 1;
  sprite->boundingRadius = Sprite_BoundingRadius(*sprite);
  return sprite;
}

bool FramesFit(const char* builtin, const PngImage& image, int32_t frames) {
  if (frames >= 1 && frames <= kMostFrames && image.width / frames >= 1) return true;
  ReportError("%s: an image of %d by %d pixels can't hold %d frames", builtin, image.width, image.height,
              frames);
  return false;
}

int32_t Enter(std::unique_ptr<CSprite> sprite) {
  const auto index = static_cast<int32_t>(Sprites().table.size());
  sprite->index = index;
  sprite->name = "__newsprite" + std::to_string(index);
  Sprites().table.push_back(std::move(sprite));
  return index;
}

CSprite* Known(int32_t sprite, const char* what) {
  CSprite* it = Sprite_Find(sprite);
  if (!it) ReportError("Trying to %s non-existing sprite.", what);
  return it;
}

void FreeFrames(CSprite& sprite) {
  for (const auto& entry : sprite.ownedFrames) Texture_Free(entry->texture);
  sprite.ownedFrames.clear();
}

} // namespace

int32_t sprite_add(std::string_view file, int32_t frames, bool removeback, bool smooth, int32_t originX,
                   int32_t originY) {
  PngImage image;
  std::string why;
  if (!Png_ReadFile(std::string(file), image, why)) {
    ReportError("sprite_add: \"" + std::string(file) + "\" " + why, false);
    return -1;
  }
  if (!FramesFit("sprite_add", image, frames)) return -1;
  return Enter(MakeSprite(std::move(image), frames, removeback, smooth, originX, originY));
}

bool sprite_replace(int32_t sprite, std::string_view file, int32_t frames, bool removeback, bool smooth,
                    int32_t originX, int32_t originY) {
  CSprite* it = Known(sprite, "replace");
  PngImage image;
  std::string why;
  if (!it) return false;
  if (!Png_ReadFile(std::string(file), image, why)) {
    ReportError("sprite_replace: \"" + std::string(file) + "\" " + why, false);
    return false;
  }
  if (!FramesFit("sprite_replace", image, frames)) return false;
  std::unique_ptr<CSprite> made = MakeSprite(std::move(image), frames, removeback, smooth, originX, originY);
  made->index = it->index;
  made->name = it->name;
  FreeFrames(*it);
  *it = std::move(*made);
  return true;
}

int32_t sprite_create_from_surface(int32_t surface, int32_t x, int32_t y, int32_t width, int32_t height,
                                   bool removeback, bool smooth, int32_t originX, int32_t originY) {
  PngImage image{width, height, ReadSurfaceRect(surface, x, y, width, height)};
  if (image.pixels.empty()) {
    ReportError("Trying to use non-existing surface.");
    return -1;
  }
  return Enter(MakeSprite(std::move(image), 1, removeback, smooth, originX, originY));
}

void sprite_add_from_surface(int32_t sprite, int32_t surface, int32_t x, int32_t y, int32_t width,
                             int32_t height, bool removeback, bool) {
  CSprite* it = Known(sprite, "add to");
  if (!it) return;
  PngImage image{width, height, ReadSurfaceRect(surface, x, y, width, height)};
  if (image.pixels.empty()) return ReportError("Trying to use non-existing surface.");
  if (removeback) RemoveBack(image);
  const PngImage frame = Cut(image, 0, it->width, it->height);
  Enclose(*it, frame);
  AddFrame(*it, frame);
}

bool sprite_delete(int32_t sprite) {
  CSprite* it = Known(sprite, "delete");
  if (!it) return false;
  FreeFrames(*it);
  Sprites().table[static_cast<size_t>(sprite)].reset();
  return true;
}

void Function_AddRuntimeSprite() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&sprite_add>("sprite_add"),
      Builtin<&sprite_replace>("sprite_replace"),
      Builtin<&sprite_create_from_surface>("sprite_create_from_surface"),
      Builtin<&sprite_add_from_surface>("sprite_add_from_surface"),
      Builtin<&sprite_delete>("sprite_delete"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
