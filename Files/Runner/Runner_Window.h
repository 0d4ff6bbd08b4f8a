#pragma once
// The main window, made from the header of the container.
#include "Files/Runner/ContainerRecords.h"
#include "Platform/Window.h"

namespace vesk {

struct MainWindowWish {
  Extent size; // of the header
  bool borderless = false;
  bool keepAspect = false; // when it has to be cut
};
// What fits on the desktop below a caption.
Extent Runner_FitWindow(const MainWindowWish& wish, Extent desktop, Extent frame);

// What the options ask of the display in full screen: their codes in pixels, bits and hertz. A code that
// stands for nothing changes nothing.
DisplayMode Runner_WantedDisplay(const container::OptionsRecord& options);

// False when there is no window; the reason stands on the error channel.
bool Runner_CreateWindow();

} // namespace vesk
