#pragma once
// The draw pass of a frame: application surface, views, room, GUI.
#include <cstdint>

namespace vesk {

struct DrawRect {
  int32_t left = 0, top = 0, right = 0, bottom = 0; // right and bottom inclusive where tiles are culled
};

inline constexpr int32_t kNoSurface = static_cast<int32_t>(0xFEEEDEAD);

struct ScreenState {
  int32_t appSurface = kNoSurface;
  bool appSurfaceEnabled = true;
  bool appSurfaceAutoDraw = true;
  bool appSurfaceInUse = false;
  int32_t appSurfaceWidth = 384, appSurfaceHeight = 216; // pixels
  int32_t appSurfaceKeptWidth = 0, appSurfaceKeptHeight = 0;
  bool appSurfaceResizePending = false;
  int32_t appSurfaceNewWidth = 0, appSurfaceNewHeight = 0;
  int32_t appSurfaceCreatedWidth = 0, appSurfaceCreatedHeight = 0;
  int32_t guiWidth = -1, guiHeight = -1; // -1: automatic
  bool guiMaximised = false;
  float guiOffsetX = 2147483648.0f, guiOffsetY = 2147483648.0f; // that value: none
  float guiScaleX = 1, guiScaleY = 1;
  bool inGuiPass = false;
  int32_t cursorSprite = -1;
  int32_t viewCurrent = 0;
};
ScreenState& Screen();

void DrawScreen();
void DrawRoom(const DrawRect& rect); // the room into the current viewport
// Where the application surface lies in the window, in window pixels: the whole window, or letter-boxed.
DrawRect GetDisplayRect();
void ApplyGuiView();
struct GuiExtent {
  int32_t width, height;
};
GuiExtent GuiSize(); // as set, or that of the application surface, or the window's

int32_t application_surface(); // the id, or kNoSurface
void application_surface_draw_enable(bool on);
void application_surface_enable(bool on);

} // namespace vesk
