#include "Files/Graphics/Graphics.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Shapes.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Timing.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"

#include <algorithm>

namespace vesk {

namespace {

constexpr int32_t kSettleFrames = 10;
constexpr int64_t kSplashRoundMicroseconds = 500'000;
constexpr int kSplashRounds = 5;
constexpr double kSecond = 1e6;               // microseconds
constexpr double kUnknownRefresh = 16666.666; // microseconds

GraphicsState g_graphics;

IWindow& Window() { return *Platform_Get().window; }

void ReadClientSize() {
  if (!Window().Exists()) return;
  const Extent size = Window().Size();
  g_graphics.windowWidth = size.width;
  g_graphics.windowHeight = size.height;
}

// The window takes the wished size and mode before the device follows it.
void ApplyWindowWishes() {
  GraphicsState& g = g_graphics;
  if (!Window().Exists()) return;
  if (g.fullscreen) {
    if (!Window().Fullscreen()) Window().SetFullscreen(true);
    return;
  }
  const bool leaving = Window().Fullscreen();
  if (leaving) Window().SetFullscreen(false);
  Extent size{g.pendingWidth, g.pendingHeight};
  if (size.width <= 0 && leaving) size = {g.keptWidth, g.keptHeight};
  if (size.width <= 0 && leaving) size = {Screen().appSurfaceCreatedWidth, Screen().appSurfaceCreatedHeight};
  if (size.width > 0 && size.height > 0) Window().SetSize(size);
  g.pendingWidth = g.pendingHeight = 0;
  g.keptWidth = g.keptHeight = 0;
}

void LogDevice() {
  tagIConsole& log = DebugConsole();
  log.Output("Create D3D9 interface\n");
  log.Output("Enumerate Adapters\n");
  log.Output("Selected Resolution: %dx%d\n", g_graphics.windowWidth, g_graphics.windowHeight);
  log.Output("Prepare to create device\n");
  log.Output("Creating D3D device - ARGB=32bit, D24S8, SwapEffect=Copy, %s\n",
             g_graphics.settings.softwareVertices ? "Software vertex processing"
                                                  : "Hardware vertex processing");
  if (g_graphics.settings.compressTextures)
    ReleaseConsole().Output("-compresstextures: this device stores textures as they are\n");
  if (g_graphics.settings.oneBatchABuffer)
    ReleaseConsole().Output(
        "-intel: clears need no help on this device; vertex buffers take one batch each\n");
}

void WaitForDisplay(bool on) {
  if (Window().HasContext()) Window().SetSwapInterval(on ? 1 : 0);
}

// Sleeps to shortly before the blank that ends this frame, then waits for it. What a frame was too long or
// too short goes into the next.
void AlternateSync() {
  GraphicsState& g = g_graphics;
  const double rate = Window().RefreshRate();
  const double period = kSecond / Run_RoomSpeed(), refresh = rate > 0 ? kSecond / rate : kUnknownRefresh;
  const auto elapsed = [] { return static_cast<double>(Timing_Time() - g_graphics.lastSync); };
  if (elapsed() - g.syncError < period) {
    const double sleep = std::clamp(period - 0.9 * refresh - elapsed() + g.syncError, 0.0, kSecond);
    if (sleep > 0) Platform_Get().clock->Sleep(static_cast<int64_t>(sleep));
    if (!g.device->WaitForBlank()) Timing_Wait(static_cast<int64_t>(period - elapsed() + g.syncError));
  }
  g.syncError = std::clamp(g.syncError + period - elapsed(), -refresh, refresh);
  g.lastSync = Timing_Time();
}

// The image as large as the window allows without changing its shape.
void DrawSplash(int32_t texture) {
  const TextureSlot& image = *Texture_Find(texture);
  const auto width = static_cast<float>(g_graphics.windowWidth),
             height = static_cast<float>(g_graphics.windowHeight);
  const float scale =
      std::min(width / static_cast<float>(image.width), height / static_cast<float>(image.height));
  Page_DrawExt(Page_OfTexture(texture, image.width, image.height),
               {.x = (width - static_cast<float>(image.width) * scale) / 2,
                .y = (height - static_cast<float>(image.height) * scale) / 2,
                .xscale = scale,
                .yscale = scale});
}

} // namespace

GraphicsState& Graphics() { return g_graphics; }

void Graphics_ViewOfWindow() {
  SetViewport(0, 0, g_graphics.windowWidth, g_graphics.windowHeight);
  SetView(0, 0, static_cast<float>(g_graphics.windowWidth), static_cast<float>(g_graphics.windowHeight), 0);
}

bool GR_D3D_Init(std::unique_ptr<IRenderDevice> device) {
  GraphicsState& g = g_graphics;
  Graphics_Shutdown();
  g.windowWidth = g.settings.applicationWidth;
  g.windowHeight = g.settings.applicationHeight;
  ReadClientSize();
  LogDevice();
  std::string why;
  g.device = device ? std::move(device) : RenderDevice_MakeOpenGL(Window(), why);
  if (!g.device) {
    ErrorConsole().Output("Failed to create Direct3D 9 device\n%s\n", why.c_str());
    return false;
  }
  g.deviceWidth = g.windowWidth;
  g.deviceHeight = g.windowHeight;
  g.windowColour = g.settings.windowColour;
  g.fullscreen = Window().Exists() && Window().Fullscreen();
  g.verticalSync = g.settings.synchronised;
  WaitForDisplay(g.verticalSync);
  Screen().appSurfaceWidth = g.settings.applicationWidth;
  Screen().appSurfaceHeight = g.settings.applicationHeight;
  SetMatrix(kMatrixWorld, Matrix{});
  RenderStates().Reset();
  texture_set_interpolation(g.settings.linearFilter);
  texture_set_repeat(false);
  RenderStates().ResendAll(*g.device);
  Clear(0, 1, 0, kClearAll);
  Graphics_ViewOfWindow();
  const uint8_t white[4] = {255, 255, 255, 255};
  g.blankTexture = Texture_CreateFromPixels(1, 1, white, sizeof(white));
  Texture_DeviceArrived();
  Shader_DeviceArrived();
  return true;
}

void Graphics_Shutdown() {
  if (!g_graphics.device) return;
  if (g_graphics.sceneOpen) EndFrame(false);
  Surface_FreeAll();
  Texture_Free(g_graphics.blankTexture);
  g_graphics.blankTexture = -1;
  Shader_DeviceLeaves();
  Texture_DeviceLeaves();
  Batch_FreeBuffers();
  g_graphics.device.reset();
}

void Graphics_Reset() {
  Graphics_Shutdown();
  Surface_Reset();
  Shader_Reset();
  Texture_Reset();
  Batch_FreeBuffers();
  RenderStates().Reset();
  View_Reset();
  Shapes_Reset();
  Drawing() = {};
  Screen() = {};
  g_graphics = {};
}

void Graphics_RestartGame() {
  FlushBatch();
  Drawing() = {};
  Font_ResetText();
  RenderStates().Reset();
  texture_set_interpolation(g_graphics.settings.linearFilter);
  texture_set_repeat(false);
}

void BeginFrame() {
  GraphicsState& g = g_graphics;
  if (!g.device || g.sceneOpen) return;
  if (g.needsReset) Device_Reset();
  ReadClientSize();
  g.device->BeginScene(g.windowWidth, g.windowHeight);
  Surface_EmptyTargets();
  g.sceneOpen = true;
}

void EndFrame(bool present) {
  GraphicsState& g = g_graphics;
  if (!g.device || !g.sceneOpen) return;
  FlushBatch();
  Surface_EmptyTargets();
  FlushBatch();
  Batch_EndFrame();
  g.device->EndScene();
  g.sceneOpen = false;
  if (Graphics_PacesFrames() && !g.needsReset && g.settleCounter != 1) AlternateSync();
  if (!present) return;
  if (!g.shown && Window().Exists() && !Window().Visible()) Window().SetVisible(true);
  g.shown = true;
  if (!g.device->Present()) g.needsReset = true;
}

void Device_Reset() {
  GraphicsState& g = g_graphics;
  g.needsReset = false;
  if (!g.device) return;
  Surface_FreeAll();
  ReadClientSize();
  g.deviceWidth = g.windowWidth;
  g.deviceHeight = g.windowHeight;
  g.device->Reset(g.windowWidth, g.windowHeight);
  WaitForDisplay(g.verticalSync);
  Clear(0, 1, 0, kClearAll);
  RenderStates().ResendAll(*g.device);
  const ViewState& view = View();
  for (const int32_t slot : {kMatrixView, kMatrixProjection, kMatrixWorld})
    SetMatrix(slot, view.matrices[slot]);
}

bool Graphics_PacesFrames() {
  return g_graphics.alternateSync && g_graphics.settings.synchronised && g_graphics.device;
}

void Graphics_WindowResized() {
  if (g_graphics.settleCounter < kSettleFrames + 1 && g_graphics.settleCounter != 1)
    g_graphics.settleCounter = kSettleFrames;
}

void Graphics_Settle() {
  GraphicsState& g = g_graphics;
  if (g.settleCounter > 1) {
    const Extent size = Window().Exists() ? Window().Size() : Extent{g.deviceWidth, g.deviceHeight};
    const bool differs = g.pendingWidth > 0 || size.width != g.deviceWidth || size.height != g.deviceHeight;
    g.settleCounter = differs ? g.settleCounter - 1 : 0;
  }
  if (g.settleCounter != 1) return;
  g.settleCounter = 0;
  ApplyWindowWishes();
  Device_Reset();
}

WindowPicture Graphics_ReadBackBuffer() {
  GraphicsState& g = g_graphics;
  WindowPicture picture;
  if (!g.device || g.windowWidth <= 0 || g.windowHeight <= 0) return picture;
  FlushBatch();
  picture.width = g.windowWidth;
  picture.height = g.windowHeight;
  picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4);
  if (!g.device->ReadPixels(0, 0, 0, picture.width, picture.height, picture.pixels.data())) return {};
  return picture;
}

void Graphics_Splash(const char* file, void (*pump)()) {
  std::string bytes;
  if (!g_graphics.device || !File_Exists(file) || !File_ReadAll(file, bytes)) return;
  const int32_t texture = Texture_CreateFromData(reinterpret_cast<const uint8_t*>(bytes.data()),
                                                 static_cast<uint32_t>(bytes.size()));
  Texture_Preload(texture);
  if (Texture_Get(texture)) {
    for (int round = 0; round < kSplashRounds; ++round) {
      if (round > 0) Platform_Get().clock->Sleep(kSplashRoundMicroseconds);
      BeginFrame();
      Graphics_ViewOfWindow();
      draw_clear(c_black);
      DrawSplash(texture);
      EndFrame(true);
      if (pump) pump();
    }
  }
  Texture_Free(texture);
}

// ---- built-ins ----

int32_t display_get_width() { return Window().DesktopSize().width; }
int32_t display_get_height() { return Window().DesktopSize().height; }

void display_reset(int32_t aa, bool vsync) {
  g_graphics.sampling = aa & 0xFF;
  g_graphics.verticalSync = vsync;
  g_graphics.settleCounter = 1;
}

void display_set_gui_size(int32_t width, int32_t height) {
  ScreenState& screen = Screen();
  const ScreenState fresh;
  screen.guiWidth = width;
  screen.guiHeight = height;
  screen.guiMaximised = false;
  screen.guiOffsetX = fresh.guiOffsetX;
  screen.guiOffsetY = fresh.guiOffsetY;
  screen.guiScaleX = screen.guiScaleY = 1;
  if (screen.inGuiPass) ApplyGuiView();
}

int32_t display_get_gui_width() { return GuiSize().width; }
int32_t display_get_gui_height() { return GuiSize().height; }

void display_set_windows_vertex_buffer_method(int32_t method) {
  if (method >= 0 && method <= 2) Batch_SetMethod(method);
}
int32_t display_get_windows_vertex_buffer_method() { return g_graphics.bufferMethod; }

void display_set_windows_alternate_sync(bool on) {
  FlushBatch();
  g_graphics.alternateSync = on;
  if (on && g_graphics.settings.synchronised) WaitForDisplay(true);
}
bool display_get_windows_alternate_sync() { return g_graphics.alternateSync; }

void window_set_size(int32_t width, int32_t height) {
  GraphicsState& g = g_graphics;
  if (width <= 0 || height <= 0) return;
  g.pendingWidth = width;
  g.pendingHeight = height;
  const Extent size = Window().Size();
  if (width == size.width && height == size.height) return;
  if (!g.fullscreen) Graphics_WindowResized();
}

void window_set_fullscreen(bool on) {
  GraphicsState& g = g_graphics;
  if (on == g.fullscreen) return;
  if (on) {
    const Extent size = Window().Size();
    g.keptWidth = size.width;
    g.keptHeight = size.height;
  }
  g.fullscreen = on;
  g.settleCounter = 1;
}

bool window_get_fullscreen() { return g_graphics.fullscreen; }

void window_center() {
  if (!Window().Exists()) return;
  const Extent frame = Window().FrameSize(), size = Window().Size();
  Window().SetPosition((display_get_width() - size.width - frame.width) / 2,
                       (display_get_height() - size.height - frame.height) / 2);
}

} // namespace vesk
