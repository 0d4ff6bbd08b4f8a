#include "Platform/Sdl/Sdl.h"

namespace vesk {

struct CDesktopPlatform::Parts {
  CSystemClock clock;
  CSdlMessages messages;
  CSdlWindow window;
  CSdlDialogs dialogs{window};
  CSdlPads pads;
  CSdlAudio audio;
  Platform interfaces{&clock, &messages, &window, &dialogs, &pads, &audio};
};

CDesktopPlatform::CDesktopPlatform() {
  SDL_SetMainReady();
  m_parts = std::make_unique<Parts>();
}

CDesktopPlatform::~CDesktopPlatform() {
  m_parts.reset();
  SDL_Quit();
}

const Platform& CDesktopPlatform::Interfaces() const { return m_parts->interfaces; }

} // namespace vesk
