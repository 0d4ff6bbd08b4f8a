#include "Files/IO/IO_Mouse.h"

#include "Files/Graphics/DrawScreen.h"
#include "Files/Room/Room.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr double kPi = 3.1415927410125732;
constexpr double kNoAngle = 0.0001; // degrees

struct PortPoint {
  double x, y; // pixels from the port's left top
};

PortPoint ToPort(int32_t x, int32_t y, const DisplayGeometry& g, const ViewSlot& view) {
  const double scaleX = g.displayWidth / (g.windowWidth - 2 * g.left) / g.scaleX;
  const double scaleY = g.displayHeight / (g.windowHeight - 2 * g.top) / g.scaleY;
  return {scaleX * (x - g.left) - view.xport, scaleY * (y - g.top) - view.yport};
}

bool InPort(PortPoint point, const ViewSlot& view) {
  return point.x >= 0 && point.y >= 0 && point.x < view.wport && point.y < view.hport;
}

RoomPoint ThroughView(PortPoint point, const ViewSlot& view) {
  const double u = point.x * static_cast<double>(view.wview) / view.wport;
  const double v = point.y * static_cast<double>(view.hview) / view.hport;
  if (std::fabs(view.angle) < kNoAngle) return {std::rint(view.xview + u), std::rint(view.yview + v)};
  const double a = -static_cast<double>(view.angle) * kPi / 180;
  const double halfWidth = static_cast<double>(view.wview) / 2,
               halfHeight = static_cast<double>(view.hview) / 2;
  const double du = u - halfWidth, dv = v - halfHeight;
  return {std::cos(a) * du + std::sin(a) * dv + view.xview + halfWidth,
          -std::sin(a) * du + std::cos(a) * dv + view.yview + halfHeight};
}

} // namespace

DisplayGeometry IO_CurrentGeometry() {
  const Extent window = Platform_Get().window->Size();
  const ScreenState& screen = Screen();
  const DrawRect box = GetDisplayRect();
  DisplayGeometry g;
  g.windowWidth = std::max(window.width, 1);
  g.windowHeight = std::max(window.height, 1);
  // A box that fills the window leaves no room on a degenerate window.
  if (2 * box.left < g.windowWidth) g.left = box.left;
  if (2 * box.top < g.windowHeight) g.top = box.top;
  g.displayWidth = screen.appSurfaceInUse ? screen.appSurfaceWidth : g.windowWidth;
  g.displayHeight = screen.appSurfaceInUse ? screen.appSurfaceHeight : g.windowHeight;
  if (const CRoom* room = CurrentRoom()) {
    const PortScale scale =
        ViewPortScale(*room, static_cast<int32_t>(g.displayWidth), static_cast<int32_t>(g.displayHeight));
    g.scaleX = scale.x;
    g.scaleY = scale.y;
  }
  return g;
}

DisplayPoint IO_WindowToDisplay(int32_t x, int32_t y) {
  const DisplayGeometry g = IO_CurrentGeometry();
  return {g.displayWidth / (g.windowWidth - 2 * g.left) * (x - g.left),
          g.displayHeight / (g.windowHeight - 2 * g.top) * (y - g.top)};
}

RoomPoint IO_WindowToRoom(int32_t x, int32_t y, const DisplayGeometry& g, const CRoom* room) {
  if (!room) return {static_cast<double>(x), static_cast<double>(y)};
  RoomPoint found;
  bool any = false;
  if (room->viewsEnabled) {
    for (size_t at = room->views.size(); at-- > 0;) {
      const ViewSlot& view = room->views[at];
      if (!view.visible || view.wport == 0 || view.hport == 0) continue;
      const PortPoint point = ToPort(x, y, g, view);
      found = ThroughView(point, view);
      any = true;
      if (InPort(point, view)) return found;
    }
  }
  if (any) return found;
  return {std::trunc(static_cast<double>(x - g.left) * room->width / (g.windowWidth - 2 * g.left)),
          std::trunc(static_cast<double>(y - g.top) * room->height / (g.windowHeight - 2 * g.top))};
}

RoomPoint IO_MouseInRoom(int32_t device) {
  if (device < 0 || device >= kMouseDevices) return {};
  const MouseTables& mouse = Input().mice[static_cast<size_t>(device)];
  return IO_WindowToRoom(mouse.x, mouse.y, IO_CurrentGeometry(), CurrentRoom());
}

} // namespace vesk
