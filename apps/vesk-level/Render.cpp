#include "apps/vesk-level/Render.h"

#include "Files/Code/Self.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Object/Function_Instance.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/Game.h"
#include "sim/Simulation.h"

#include <png.h>

#include <algorithm>
#include <cstring>

namespace vesk {

namespace {

constexpr int kViewWidth = 384, kViewHeight = 216, kCell = 16; // pixels
constexpr int kRim = 32;        // pixels around a piece that its lights and glow reach into
constexpr int kLargest = 32768; // pixels of a side of the picture

struct Canvas {
  int width, height;
  std::vector<uint8_t> pixels; // RGB
  Canvas(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h) * 3) {}

  // The piece without its rim.
  void Take(const WindowPicture& piece, int left, int top) {
    for (int y = 0; y < std::min(piece.height - 2 * kRim, height - top); ++y)
      for (int x = 0; x < std::min(piece.width - 2 * kRim, width - left); ++x) {
        const size_t from = (static_cast<size_t>(y + kRim) * static_cast<size_t>(piece.width) +
                             static_cast<size_t>(x + kRim)) *
                            4;
        const size_t to =
            (static_cast<size_t>(top + y) * static_cast<size_t>(width) + static_cast<size_t>(left + x)) * 3;
        std::memcpy(&pixels[to], &piece.pixels[from], 3);
      }
  }
  // The glow of the final picture, which makes up for the darkness: every channel doubled.
  void Glow() {
    for (uint8_t& channel : pixels) channel = static_cast<uint8_t>(std::min(255, channel * 2));
  }
  std::string Write(const std::string& file) const {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, file.c_str(), 0, pixels.data(), 0, nullptr)) return "";
    return "\"" + file + "\" can't be written: " + image.message;
  }
};

// Leaves the map and its lights alone on the screen.
void ClearTheDesk(const RenderChoice& choice) {
  with(obj_button, [](Self button) { instance_destroy(button); });
  with(obj_editor, [](Self editor) {
    editor[visible] = 0;
    editor[flashlight] = 0;
  });
  if (!choice.lights) with(obj_lightmanager, [](Self light) { light[visible] = 0; });
  with(obj_persistent, [](Self controller) { controller[activeshader] = -1; }); // Canvas::Glow stands for it
  if (!choice.water) with(obj_watershader_editor, [](Self water) { instance_destroy(water); });
}

void DrawGrid(Canvas& canvas) {
  for (int y = 0; y < canvas.height; ++y)
    for (int x = 0; x < canvas.width; ++x) {
      if (x % kCell != 0 && y % kCell != 0) continue;
      uint8_t* pixel =
          &canvas
               .pixels[(static_cast<size_t>(y) * static_cast<size_t>(canvas.width) + static_cast<size_t>(x)) *
                       3];
      for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<uint8_t>((pixel[channel] * 3 + 255) / 4);
    }
}

} // namespace

std::string RenderSection(const RenderChoice& choice) {
  SimulationSettings settings;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  settings.pictures = true;
  Simulation simulation(settings);
  if (const std::string problem = simulation.Start(); !problem.empty()) return problem;
  if (const std::string problem = simulation.Edit(choice.file, choice.section); !problem.empty())
    return problem;
  const Self editor = first(obj_editor);
  if (!editor) return "the editor doesn't open";
  const int width_pixels = static_cast<int>(editor[width]) * kCell,
            height_pixels = static_cast<int>(editor[height]) * kCell;
  if (width_pixels > kLargest || height_pixels > kLargest)
    return "the section is too large for one picture: " + std::to_string(width_pixels) + " by " +
           std::to_string(height_pixels) + " pixels";
  ClearTheDesk(choice);
  Canvas canvas(width_pixels, height_pixels);
  for (int top = 0; top < height_pixels; top += kViewHeight - 2 * kRim)
    for (int left = 0; left < width_pixels; left += kViewWidth - 2 * kRim) {
      // Drawn without a step, as the editor would move its background with the view.
      view_xview[0] = left - kRim;
      view_yview[0] = top - kRim;
      background_x[0] = 0;
      background_y[0] = 0;
      Graphics_Settle();
      BeginFrame();
      DrawScreen();
      EndFrame(true);
      const WindowPicture piece = Graphics_ReadBackBuffer();
      if (piece.pixels.empty()) return "nothing was drawn";
      canvas.Take(piece, left, top);
    }
  if (choice.lights) canvas.Glow();
  if (choice.grid) DrawGrid(canvas);
  return canvas.Write(choice.output);
}

} // namespace vesk
