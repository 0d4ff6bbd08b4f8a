#pragma once
// The main window, made from the header of the container.
#include "Platform/Window.h"

namespace vesk {

struct MainWindowWish {
  Extent size; // of the header
  bool borderless = false;
  bool keepAspect = false; // when it has to be cut
};
// What fits on the desktop below a caption.
Extent Runner_FitWindow(const MainWindowWish& wish, Extent desktop, Extent frame);

// False when there is no window; the reason stands on the error channel.
bool Runner_CreateWindow();

} // namespace vesk
