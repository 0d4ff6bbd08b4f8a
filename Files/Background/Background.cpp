#include "Files/Background/Background.h"

#include "Files/Background/DrawBackground.h"
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/OutsideImage.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"

#include <array>

namespace vesk {

namespace {
BackgroundState g_state;
}

BackgroundState& Backgrounds() { return g_state; }

void Background_Reset() {
  for (const auto& background : Backgrounds().table)
    if (background && background->owned) Texture_Free(background->owned->texture);
  Backgrounds() = {};
}

CBackground* Background_Find(int32_t index) {
  const auto& table = Backgrounds().table;
  return index >= 0 && static_cast<size_t>(index) < table.size() ? table[static_cast<size_t>(index)].get()
                                                                 : nullptr;
}

int32_t Background_FindByName(std::string_view name) {
  const auto& table = Backgrounds().table;
  for (size_t i = 0; i < table.size(); ++i)
    if (table[i] && table[i]->name == name) return static_cast<int32_t>(i);
  return -1;
}

bool background_exists(int32_t background) { return Background_Find(background) != nullptr; }

int32_t background_get_width(int32_t background) {
  const CBackground* it = Background_Find(background);
  return it ? it->width : -1;
}

int32_t background_get_height(int32_t background) {
  const CBackground* it = Background_Find(background);
  return it ? it->height : -1;
}

std::string background_get_name(int32_t background) {
  const CBackground* it = Background_Find(background);
  return it ? it->name : "<undefined>";
}

bool background_delete(int32_t background) {
  CBackground* it = Background_Find(background);
  if (!it) {
    ReportError("Trying to delete non-existing background.");
    return false;
  }
  if (it->owned) Texture_Free(it->owned->texture);
  Backgrounds().table[static_cast<size_t>(background)].reset();
  return true;
}

namespace {

// The image is the background's from here on: a texture, and an entry that shows the whole of it.
void SetImage(CBackground& background, std::vector<uint8_t> pixels, int32_t width, int32_t height) {
  const int32_t limit = Graphics().device ? Graphics().device->MaxTextureSize() : 8192;
  if (width > limit || height > limit) {
    DebugConsole().Output(
        "Error creating background: image width or height exceeds maximum texture size of %d\n", limit);
    width = std::min(width, limit);
    height = std::min(height, limit);
    pixels.clear();
    for (int64_t i = 0; i < int64_t{width} * height; ++i) pixels.insert(pixels.end(), {0xFF, 0, 0, 0xFF});
  }
  if (background.owned) Texture_Free(background.owned->texture);
  const int32_t texture =
      Texture_CreateFromPixels(width, height, pixels.data(), static_cast<uint32_t>(pixels.size()));
  if (background.preload) Texture_Preload(texture);
  background.owned = std::make_unique<PageEntry>(Page_OfTexture(texture, width, height));
  background.page = background.owned.get();
  background.width = width;
  background.height = height;
}

CBackground& AddBackground() {
  auto& table = Backgrounds().table;
  const auto index = static_cast<int32_t>(table.size());
  CBackground& made = *table.emplace_back(std::make_unique<CBackground>());
  made.index = index;
  made.name = "__newbackground" + std::to_string(index);
  return made;
}

} // namespace

int32_t background_create_from_surface(int32_t surface, int32_t x, int32_t y, int32_t width, int32_t height,
                                       bool removeback, bool smooth, bool preload) {
  CBackground& made = AddBackground();
  std::vector<uint8_t> pixels = ReadSurfaceRect(surface, x, y, width, height);
  if (pixels.empty()) return made.index;
  made.transparent = removeback;
  made.smooth = smooth;
  made.preload = preload;
  SetImage(made, std::move(pixels), width, height);
  return made.index;
}

int32_t background_add(std::string_view file, bool removeback, bool smooth) {
  PngImage image;
  std::string why;
  if (!Png_ReadFile(std::string(file), image, why)) {
    DebugConsole().Output("Failed to decode background data in %s\n", std::string(file).c_str());
    ReportError("background_add: \"" + std::string(file) + "\" " + why, false);
    return -1;
  }
  if (removeback) RemoveBack(image);
  CBackground& made = AddBackground();
  made.transparent = removeback;
  made.smooth = smooth;
  SetImage(made, std::move(image.pixels), image.width, image.height);
  return made.index;
}

} // namespace vesk
