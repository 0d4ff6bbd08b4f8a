#include "Files/Runner/Runner_Window.h"

#include "Files/Base/Console.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/IO/Gamepad.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_Game.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Load.h"
#include "Platform/Platform.h"

#include <iterator>

namespace vesk {

namespace {

int32_t Scaled(int32_t length, int32_t to, int32_t from) {
  return static_cast<int32_t>(static_cast<int64_t>(length) * to / from);
}

} // namespace

Extent Runner_FitWindow(const MainWindowWish& wish, Extent desktop, Extent frame) {
  Extent size = wish.size;
  if (desktop.width > 0 && size.width > desktop.width) {
    if (wish.keepAspect) size.height = Scaled(size.height, desktop.width, size.width);
    size.width = desktop.width;
  }
  const int32_t room = wish.borderless ? desktop.height : desktop.height - frame.height;
  if (room > 0 && size.height > room) {
    if (wish.keepAspect) size.width = Scaled(size.width, room, size.height);
    size.height = room;
  }
  return size;
}

DisplayMode Runner_WantedDisplay(const container::OptionsRecord& options) {
  constexpr Extent kResolutions[] = {{320, 240},  {640, 480},   {800, 600},
                                     {1024, 768}, {1280, 1024}, {1600, 1200}};
  constexpr int32_t kDepths[] = {16, 32};
  constexpr int32_t kFrequencies[] = {60, 70, 85, 100, 120};
  DisplayMode mode;
  if ((options.flags & container::kOptionChangeResolution) == 0) return mode;
  // Codes count from 1.
  const uint32_t depth = options.colourDepth - 1, resolution = options.resolution - 1,
                 frequency = options.frequency - 1;
  if (depth < std::size(kDepths)) mode.bits = kDepths[depth];
  if (frequency < std::size(kFrequencies)) mode.hertz = kFrequencies[frequency];
  if (resolution < std::size(kResolutions)) {
    mode.width = kResolutions[resolution].width;
    mode.height = kResolutions[resolution].height;
  }
  return mode;
}

bool Runner_CreateWindow() {
  const container::HeaderRecord& header = Load().records.header;
  const uint32_t optionFlags = Load().records.options.flags;
  IWindow& window = *Platform_Get().window;
  WindowSettings settings;
  settings.title = header.displayName;
  settings.borderless = (header.flags & container::kHeaderBorderless) != 0;
  settings.resizable = (header.flags & container::kHeaderResizable) != 0;
  const bool wantsFullscreen =
      (header.flags & container::kHeaderFullScreen) != 0 || (optionFlags & container::kOptionFullScreen) != 0;
  settings.fullscreen = wantsFullscreen && !Options().inAWindow;
  settings.cursorVisible = Run_Settings().showCursor;
  settings.display = Runner_WantedDisplay(Load().records.options);
  settings.orientations = Options().orientations;
  const MainWindowWish wish{{header.windowWidth, header.windowHeight},
                            settings.borderless,
                            (header.flags & container::kHeaderKeepAspect) != 0};
  settings.size = Runner_FitWindow(wish, window.DesktopSize(), window.FrameSize());
  if (!window.Create(settings)) {
    ErrorConsole().Output("Failed to create mainwindow\n");
    ErrorConsole().Output("%s\n", window.Failure().c_str());
    return false;
  }
  if (!settings.cursorVisible) Screen().cursorSprite = -1;
  Graphics().fullscreen = settings.fullscreen;
  Gamepad_Open(!Options().noDirectInput);
  return true;
}

} // namespace vesk
