#pragma once
// The one main window with its OpenGL ES 2.0 context. Game thread only. Sizes and positions are pixels.
#include <cstdint>
#include <string>

namespace vesk {

struct Extent {
  int32_t width = 0;
  int32_t height = 0;
};

// What full screen switches the display to; -1 leaves a property as it is.
struct DisplayMode {
  int32_t width = -1, height = -1; // pixels
  int32_t bits = -1;               // of a pixel
  int32_t hertz = -1;
  bool operator==(const DisplayMode&) const = default;
};

// How a screen that can be turned may be held; none: as the system likes. A desktop's doesn't turn.
struct ScreenOrientations {
  bool landscape = false, landscapeFlipped = false, portrait = false, portraitFlipped = false;
};

struct WindowSettings {
  std::string title; // UTF-8
  Extent size;       // client area
  bool borderless = false;
  bool resizable = false;
  bool fullscreen = false;
  bool cursorVisible = true;
  DisplayMode display = {};
  ScreenOrientations orientations = {};
};

// Shapes of the pointer.
enum class CursorShape : uint8_t {
  None,
  Default,
  Arrow,
  Cross,
  Beam,
  SizeNESW,
  SizeNS,
  SizeNWSE,
  SizeWE,
  UpArrow,
  HourGlass,
  Drag,
  NoDrop,
  HorizontalSplit,
  VerticalSplit,
  MultiDrag,
  SqlWait,
  No,
  AppStart,
  Help,
  HandPoint,
  SizeAll,
};

class IWindow {
public:
  virtual ~IWindow() = default;

  // Makes the window, centred on the desktop, at its final size. False with the reason in Failure().
  virtual bool Create(const WindowSettings& settings) = 0;
  virtual void Destroy() = 0; // the context too; harmless without a window
  virtual bool Exists() const = 0;
  virtual const std::string& Failure() const = 0; // why the last Create or CreateContext failed

  virtual Extent DesktopSize() const = 0;
  virtual double RefreshRate() const = 0; // of the desktop, times a second; 0 when it is not known
  // What a caption and a frame add to a client area.
  virtual Extent FrameSize() const = 0;

  virtual void SetTitle(const std::string& title) = 0;
  virtual std::string Title() const = 0;
  virtual void SetSize(Extent size) = 0;
  virtual Extent Size() const = 0;
  virtual void SetPosition(int32_t x, int32_t y) = 0;
  virtual void Position(int32_t& x, int32_t& y) const = 0;
  virtual void Center() = 0;
  virtual void SetFullscreen(bool on) = 0;
  virtual bool Fullscreen() const = 0;
  virtual void SetBorder(bool on) = 0;
  virtual void SetResizable(bool on) = 0;
  virtual void SetVisible(bool on) = 0;
  virtual bool Visible() const = 0;
  virtual void Focus() = 0;
  virtual bool HasFocus() const = 0;

  virtual void ShowCursor(bool on) = 0;
  virtual void SetCursor(CursorShape shape) = 0;
  virtual void CaptureMouse(bool on) = 0;
  // Pointer position on the desktop.
  virtual void CursorPosition(int32_t& x, int32_t& y) const = 0;
  virtual void SetCursorPosition(int32_t x, int32_t y) = 0; // client pixels

  // OpenGL ES 2.0, double-buffered, no depth; current on this thread afterwards. False without GL.
  virtual bool CreateContext() = 0;
  virtual bool HasContext() const = 0;
  virtual void MakeCurrent() = 0;
  virtual void Swap() = 0;
  virtual Extent DrawableSize() const = 0;
  // 1: swaps wait for the display. False when the driver can't.
  virtual bool SetSwapInterval(int interval) = 0;
};

} // namespace vesk
