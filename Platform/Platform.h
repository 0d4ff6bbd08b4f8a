#pragma once
// What the runner stands on, handed to it at start. The runner owns none of it.
#include "Platform/AudioDevice.h"
#include "Platform/Clock.h"
#include "Platform/Dialogs.h"
#include "Platform/Messages.h"
#include "Platform/Pad.h"
#include "Platform/Window.h"

#include <memory>

namespace vesk {

struct Platform {
  IClock* clock = nullptr;
  IMessages* messages = nullptr;
  IWindow* window = nullptr;
  IDialogs* dialogs = nullptr;
  IPads* pads = nullptr;
  IAudioDevice* audio = nullptr;
};

// The platform in use. Never null members: until one is set, a quiet one without window, devices or passing
// time.
const Platform& Platform_Get();
// The caller keeps all members alive until another is set; null returns to the quiet one.
void Platform_Set(const Platform* platform);

// Whether the caller runs on the thread that main runs on.
bool Platform_IsMainThread();

// The desktop: window, GL, pads and sound of this machine. Made once a process, on the main thread.
class CDesktopPlatform {
public:
  CDesktopPlatform();
  ~CDesktopPlatform();
  CDesktopPlatform(const CDesktopPlatform&) = delete;
  CDesktopPlatform& operator=(const CDesktopPlatform&) = delete;
  const Platform& Interfaces() const;

private:
  struct Parts;
  std::unique_ptr<Parts> m_parts;
};

// A window that nobody sees but that has OpenGL, for pictures without a display; take its messages from
// elsewhere. Create may still fail where the machine has no OpenGL at all.
std::unique_ptr<IWindow> Window_MakeOffscreen();

} // namespace vesk
