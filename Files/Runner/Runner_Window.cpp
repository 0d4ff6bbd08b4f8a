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
