#pragma once
// The render device in use, the frame that it draws, and the window it draws into.
#include "Files/Graphics_API/RenderDevice.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace vesk {

struct GraphicsSettings {        // from the container's header and options, before GR_D3D_Init
  bool synchronised = false;     // presentation waits for the display
  bool softwareVertices = false; // only named in the log
  bool linearFilter = false;
  bool keepAspect = true;         // bars instead of stretching
  bool oneBatchABuffer = false;   // -intel: a buffer of the list takes one batch
  bool compressTextures = false;  // only answered in the log
  bool texturesOnDemand = false;  // nothing is decoded ahead of its first use
  int32_t applicationWidth = 384; // application surface, pixels
  int32_t applicationHeight = 216;
  uint32_t windowColour = 0; // 24 bits, red low
};

struct GraphicsState {
  std::unique_ptr<IRenderDevice> device; // null: all drawing is without effect
  GraphicsSettings settings;
  bool sceneOpen = false;
  bool needsReset = false;
  bool shown = false;                        // the window was made visible by a first present
  int32_t windowWidth = 0, windowHeight = 0; // client size of this frame, pixels
  int32_t deviceWidth = 0, deviceHeight = 0; // back buffer at the last reset
  int32_t blankTexture = -1;                 // 1 by 1 white
  uint32_t windowColour = 0;
  int32_t settleCounter = 0;                   // frames until the device follows the window
  int32_t pendingWidth = 0, pendingHeight = 0; // window_set_size; 0 none
  int32_t keptWidth = 0, keptHeight = 0;       // client size before full screen
  bool fullscreen = false;
  int32_t sampling = 0;
  bool verticalSync = false;
  bool alternateSync = false;
  int64_t lastSync = 0;     // microseconds, of the alternate method
  double syncError = 0;     // carried from frame to frame, microseconds
  int32_t bufferMethod = 0; // 0 ring, 1 list, 2 client memory
  uint32_t overlay = 0;     // a sum of OverlayPart
};
GraphicsState& Graphics();

// Takes the device, or makes the OpenGL one on the platform's window, and sets everything to its start. False
// with the reason on the error channel when there is no device.
bool GR_D3D_Init(std::unique_ptr<IRenderDevice> device = nullptr);
void Graphics_Shutdown(); // frees textures' device objects, surfaces, buffers, device
void Graphics_Reset();    // shutdown, and all state as before the start
// Draw colour, text state and render states back to their start, as game_restart wants it.
void Graphics_RestartGame();

void Graphics_ViewOfWindow(); // viewport and view are the whole window, in its pixels
void BeginFrame();
void EndFrame(bool present);
// Counts the settle counter down and resets the device when it comes to 1. Once a frame, before BeginFrame.
void Graphics_Settle();
// The window's client size changed by itself; the device follows once it has settled.
void Graphics_WindowResized();
// Frames are paced in EndFrame instead of ahead of them. Only where presentation is synchronised at all.
bool Graphics_PacesFrames();
void Device_Reset(); // all surfaces are lost; textures stay

// splash.png letter-boxed for two seconds; nothing when the file doesn't exist. `pump` is called between
// rounds.
void Graphics_Splash(const char* file, void (*pump)());

// What the window shows, once its frame was drawn; empty without a device.
struct WindowPicture {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels; // red, green, blue, alpha
};
WindowPicture Graphics_ReadBackBuffer();

// ---- built-ins of display and window ----
int32_t display_get_width();
int32_t display_get_height();
void display_reset(int32_t aa, bool vsync);
void display_set_gui_size(int32_t width, int32_t height);
int32_t display_get_gui_width();
int32_t display_get_gui_height();
void display_set_windows_vertex_buffer_method(int32_t method);
int32_t display_get_windows_vertex_buffer_method();
void display_set_windows_alternate_sync(bool on);
bool display_get_windows_alternate_sync();
void window_set_size(int32_t width, int32_t height);
void window_set_fullscreen(bool on);
bool window_get_fullscreen();
enum WindowCursor : int32_t { // the fifteen standard cursors
  cr_default = 0,
  cr_none = -1, // hidden
  cr_arrow = -2,
  cr_cross = -3,
  cr_beam = -4,
  cr_size_nesw = -5,
  cr_size_ns = -6,
  cr_size_nwse = -7,
  cr_size_we = -8,
  cr_uparrow = -9,
  cr_hourglass = -10,
  cr_drag = -11,
  cr_appstart = -12,
  cr_handpoint = -13,
  cr_size_all = -14,
};
void window_set_cursor(int32_t cursor); // any other number changes nothing
void window_center();

} // namespace vesk
