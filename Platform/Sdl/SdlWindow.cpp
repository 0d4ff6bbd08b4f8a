#include "Platform/Sdl/Sdl.h"

#include <algorithm>
#include <cstring>

namespace vesk {

namespace {

// What most desktops draw round a window, for as long as the window itself can't be asked.
constexpr Extent kUsualFrame{8, 32};

SDL_SystemCursor SystemCursor(CursorShape shape) {
  switch (shape) {
  case CursorShape::Cross: return SDL_SYSTEM_CURSOR_CROSSHAIR;
  case CursorShape::Beam: return SDL_SYSTEM_CURSOR_IBEAM;
  case CursorShape::SizeNESW: return SDL_SYSTEM_CURSOR_SIZENESW;
  case CursorShape::SizeNS:
  case CursorShape::VerticalSplit: return SDL_SYSTEM_CURSOR_SIZENS;
  case CursorShape::SizeNWSE: return SDL_SYSTEM_CURSOR_SIZENWSE;
  case CursorShape::SizeWE:
  case CursorShape::HorizontalSplit: return SDL_SYSTEM_CURSOR_SIZEWE;
  case CursorShape::HourGlass:
  case CursorShape::SqlWait: return SDL_SYSTEM_CURSOR_WAIT;
  case CursorShape::AppStart: return SDL_SYSTEM_CURSOR_WAITARROW;
  case CursorShape::NoDrop:
  case CursorShape::No: return SDL_SYSTEM_CURSOR_NO;
  case CursorShape::HandPoint:
  case CursorShape::Drag:
  case CursorShape::MultiDrag: return SDL_SYSTEM_CURSOR_HAND;
  case CursorShape::SizeAll: return SDL_SYSTEM_CURSOR_SIZEALL;
  default: return SDL_SYSTEM_CURSOR_ARROW;
  }
}

} // namespace

CSdlWindow::~CSdlWindow() {
  CSdlWindow::Destroy();
  if (m_videoStarted) SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

bool CSdlWindow::StartVideo() const {
  if (m_videoStarted) return true;
  if (!m_driver.empty()) SDL_SetHint(SDL_HINT_VIDEODRIVER, m_driver.c_str());
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  // The compositor is left alone: switching it off flickers the whole desktop.
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  m_videoStarted = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
  return m_videoStarted;
}

bool CSdlWindow::Unseen() const {
  const char* driver = SDL_GetCurrentVideoDriver();
  return driver && (std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0);
}

namespace {

std::string OrientationNames(const ScreenOrientations& allowed) {
  std::string names;
  const auto add = [&names](bool on, const char* name) {
    if (on) names += (names.empty() ? "" : " ") + std::string(name);
  };
  add(allowed.landscape, "LandscapeLeft");
  add(allowed.landscapeFlipped, "LandscapeRight");
  add(allowed.portrait, "Portrait");
  add(allowed.portraitFlipped, "PortraitUpsideDown");
  return names;
}

} // namespace

bool CSdlWindow::Create(const WindowSettings& settings) {
  Destroy();
  if (!StartVideo()) {
    m_failure = SDL_GetError();
    return false;
  }
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_ES);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 0);
  SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
  SDL_SetHint(SDL_HINT_ORIENTATIONS, OrientationNames(settings.orientations).c_str());
  Uint32 flags = 0;
  if (settings.borderless) flags |= SDL_WINDOW_BORDERLESS;
  if (settings.resizable) flags |= SDL_WINDOW_RESIZABLE;
  if (settings.fullscreen) flags |= SDL_WINDOW_FULLSCREEN_DESKTOP;
  const int width = std::max(settings.size.width, 1), height = std::max(settings.size.height, 1);
  const auto make = [&](Uint32 more) {
    return SDL_CreateWindow(settings.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width,
                            height, flags | more);
  };
  m_window = make(SDL_WINDOW_OPENGL);
  if (!m_window) {
    m_failure = SDL_GetError();
    m_window = make(0); // a window without OpenGL can still show what is wrong
  }
  if (!m_window) return false;
  m_createdSize = {width, height};
  m_ownMode = false;
  TakeDisplayMode(settings.display);
  if (settings.fullscreen && m_ownMode) SetFullscreen(true);
  SDL_StartTextInput();
  ShowCursor(settings.cursorVisible);
  return true;
}

// The nearest mode that the display has; none is near enough: it stays as it is.
void CSdlWindow::TakeDisplayMode(const DisplayMode& wish) {
  if (wish == DisplayMode{}) return;
  const int display = std::max(SDL_GetWindowDisplayIndex(m_window), 0);
  SDL_DisplayMode mode{}, nearest{};
  if (SDL_GetDesktopDisplayMode(display, &mode) != 0) return;
  if (wish.width > 0) mode.w = wish.width;
  if (wish.height > 0) mode.h = wish.height;
  if (wish.bits > 0) mode.format = wish.bits == 16 ? SDL_PIXELFORMAT_RGB565 : SDL_PIXELFORMAT_RGB888;
  if (wish.hertz > 0) mode.refresh_rate = wish.hertz;
  m_ownMode = SDL_GetClosestDisplayMode(display, &mode, &nearest) != nullptr &&
              SDL_SetWindowDisplayMode(m_window, &nearest) == 0;
}

void CSdlWindow::Destroy() {
  if (m_context) SDL_GL_DeleteContext(m_context);
  if (m_cursor) SDL_FreeCursor(m_cursor);
  if (m_window) SDL_DestroyWindow(m_window);
  m_context = nullptr;
  m_cursor = nullptr;
  m_window = nullptr;
}

Extent CSdlWindow::DesktopSize() const {
  SDL_DisplayMode mode{};
  const int display = m_window ? SDL_GetWindowDisplayIndex(m_window) : 0;
  if (!StartVideo() || SDL_GetDesktopDisplayMode(std::max(display, 0), &mode) != 0) return {};
  return {mode.w, mode.h};
}

double CSdlWindow::RefreshRate() const {
  SDL_DisplayMode mode{};
  const int display = m_window ? SDL_GetWindowDisplayIndex(m_window) : 0;
  return StartVideo() && SDL_GetDesktopDisplayMode(std::max(display, 0), &mode) == 0 ? mode.refresh_rate : 0;
}

Extent CSdlWindow::FrameSize() const {
  int top = 0, left = 0, bottom = 0, right = 0;
  if (m_window && SDL_GetWindowBordersSize(m_window, &top, &left, &bottom, &right) == 0)
    return {left + right, top + bottom};
  return kUsualFrame;
}

void CSdlWindow::SetTitle(const std::string& title) {
  if (m_window) SDL_SetWindowTitle(m_window, title.c_str());
}
std::string CSdlWindow::Title() const { return m_window ? SDL_GetWindowTitle(m_window) : ""; }

void CSdlWindow::SetSize(Extent size) {
  if (m_window && size.width > 0 && size.height > 0) SDL_SetWindowSize(m_window, size.width, size.height);
}

Extent CSdlWindow::Size() const {
  Extent size;
  if (!m_window) return size;
  if (Unseen()) return m_createdSize; // its picture never changes size
  SDL_GetWindowSize(m_window, &size.width, &size.height);
  return size;
}

void CSdlWindow::SetPosition(int32_t x, int32_t y) {
  if (m_window) SDL_SetWindowPosition(m_window, x, y);
}

void CSdlWindow::Position(int32_t& x, int32_t& y) const {
  x = 0;
  y = 0;
  if (m_window) SDL_GetWindowPosition(m_window, &x, &y);
}

void CSdlWindow::Center() {
  if (!m_window) return;
  const Extent desktop = DesktopSize(), size = Size();
  int top = 0, left = 0, bottom = 0, right = 0;
  if (SDL_GetWindowBordersSize(m_window, &top, &left, &bottom, &right) != 0) top = left = bottom = right = 0;
  SDL_SetWindowPosition(m_window, (desktop.width - (size.width + left + right)) / 2 + left,
                        (desktop.height - (size.height + top + bottom)) / 2 + top);
}

void CSdlWindow::SetFullscreen(bool on) {
  if (m_window)
    SDL_SetWindowFullscreen(m_window, !on         ? 0
                                      : m_ownMode ? SDL_WINDOW_FULLSCREEN
                                                  : SDL_WINDOW_FULLSCREEN_DESKTOP);
}
bool CSdlWindow::Fullscreen() const {
  return m_window && (SDL_GetWindowFlags(m_window) & SDL_WINDOW_FULLSCREEN) != 0;
}
void CSdlWindow::SetBorder(bool on) {
  if (m_window) SDL_SetWindowBordered(m_window, on ? SDL_TRUE : SDL_FALSE);
}
void CSdlWindow::SetResizable(bool on) {
  if (m_window) SDL_SetWindowResizable(m_window, on ? SDL_TRUE : SDL_FALSE);
}
void CSdlWindow::SetVisible(bool on) {
  if (!m_window) return;
  if (on)
    SDL_ShowWindow(m_window);
  else
    SDL_HideWindow(m_window);
}
bool CSdlWindow::Visible() const {
  return m_window && (SDL_GetWindowFlags(m_window) & SDL_WINDOW_SHOWN) != 0;
}
void CSdlWindow::Focus() {
  if (m_window) SDL_RaiseWindow(m_window);
}

bool CSdlWindow::HasFocus() const {
  if (!m_window) return false;
  return Unseen() || (SDL_GetWindowFlags(m_window) & SDL_WINDOW_INPUT_FOCUS) != 0;
}

void CSdlWindow::ShowCursor(bool on) { SDL_ShowCursor(on ? SDL_ENABLE : SDL_DISABLE); }

void CSdlWindow::SetCursor(CursorShape shape) {
  ShowCursor(shape != CursorShape::None);
  if (shape == CursorShape::None) return;
  SDL_Cursor* made = SDL_CreateSystemCursor(SystemCursor(shape));
  if (!made) return;
  SDL_SetCursor(made);
  if (m_cursor) SDL_FreeCursor(m_cursor);
  m_cursor = made;
}

void CSdlWindow::CaptureMouse(bool on) {
  if (m_window) SDL_CaptureMouse(on ? SDL_TRUE : SDL_FALSE);
}

void CSdlWindow::CursorPosition(int32_t& x, int32_t& y) const {
  x = 0;
  y = 0;
  if (m_window) SDL_GetGlobalMouseState(&x, &y);
}

void CSdlWindow::SetCursorPosition(int32_t x, int32_t y) {
  if (m_window) SDL_WarpMouseInWindow(m_window, x, y);
}

bool CSdlWindow::CreateContext() {
  if (m_context) return true;
  if (!m_window) {
    m_failure = "there is no window";
    return false;
  }
  if ((SDL_GetWindowFlags(m_window) & SDL_WINDOW_OPENGL) == 0) return false; // Create told why
  m_context = SDL_GL_CreateContext(m_window);
  if (!m_context) {
    m_failure = SDL_GetError();
    return false;
  }
  MakeCurrent();
  return true;
}

void CSdlWindow::MakeCurrent() {
  if (m_context) SDL_GL_MakeCurrent(m_window, m_context);
}
void CSdlWindow::Swap() {
  if (m_context) SDL_GL_SwapWindow(m_window);
}

Extent CSdlWindow::DrawableSize() const {
  Extent size;
  if (!m_window) return size;
  if (Unseen()) return m_createdSize;
  SDL_GL_GetDrawableSize(m_window, &size.width, &size.height);
  return size;
}

bool CSdlWindow::SetSwapInterval(int interval) { return m_context && SDL_GL_SetSwapInterval(interval) == 0; }

std::unique_ptr<IWindow> Window_MakeOffscreen() { return std::make_unique<CSdlWindow>("offscreen"); }

} // namespace vesk
