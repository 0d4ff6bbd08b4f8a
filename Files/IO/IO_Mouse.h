#pragma once
// From window pixels to display pixels and to the room.
#include "Files/IO/IO.h"

#include <cstdint>

namespace vesk {

class CRoom;

struct DisplayPoint {
  double x = 0;
  double y = 0;
};

// How the game's picture lies in the window. All in pixels.
struct DisplayGeometry {
  int32_t windowWidth = 1;
  int32_t windowHeight = 1;
  int32_t left = 0; // margins of the game's rectangle
  int32_t top = 0;
  double displayWidth = 1; // what the rectangle shows
  double displayHeight = 1;
  double scaleX = 1; // from ports to what is shown
  double scaleY = 1;
};
DisplayGeometry IO_CurrentGeometry();

DisplayPoint IO_WindowToDisplay(int32_t x, int32_t y);
// The point of the room under a window pixel. Without a room: the pixel itself.
RoomPoint IO_WindowToRoom(int32_t x, int32_t y, const DisplayGeometry& geometry, const CRoom* room);

} // namespace vesk
