#include "Platform/Sdl/Sdl.h"

#include <algorithm>

namespace vesk {

namespace {

constexpr Uint32 kRumbleLength = 2000; // milliseconds; sent again before it ends
constexpr Uint32 kRumbleAgain = 1000;

struct ButtonRow {
  SDL_GameControllerButton button;
  uint16_t bit;
};
constexpr ButtonRow kButtons[] = {
    {SDL_CONTROLLER_BUTTON_DPAD_UP, 0x1},        {SDL_CONTROLLER_BUTTON_DPAD_DOWN, 0x2},
    {SDL_CONTROLLER_BUTTON_DPAD_LEFT, 0x4},      {SDL_CONTROLLER_BUTTON_DPAD_RIGHT, 0x8},
    {SDL_CONTROLLER_BUTTON_START, 0x10},         {SDL_CONTROLLER_BUTTON_BACK, 0x20},
    {SDL_CONTROLLER_BUTTON_LEFTSTICK, 0x40},     {SDL_CONTROLLER_BUTTON_RIGHTSTICK, 0x80},
    {SDL_CONTROLLER_BUTTON_LEFTSHOULDER, 0x100}, {SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, 0x200},
    {SDL_CONTROLLER_BUTTON_GUIDE, 0x400},        {SDL_CONTROLLER_BUTTON_A, 0x1000},
    {SDL_CONTROLLER_BUTTON_B, 0x2000},           {SDL_CONTROLLER_BUTTON_X, 0x4000},
    {SDL_CONTROLLER_BUTTON_Y, 0x8000},
};

int SubType(SDL_JoystickType type) {
  switch (type) {
  case SDL_JOYSTICK_TYPE_WHEEL: return 2;
  case SDL_JOYSTICK_TYPE_ARCADE_STICK: return 3;
  case SDL_JOYSTICK_TYPE_FLIGHT_STICK: return 4;
  case SDL_JOYSTICK_TYPE_DANCE_PAD: return 5;
  case SDL_JOYSTICK_TYPE_GUITAR: return 6;
  case SDL_JOYSTICK_TYPE_DRUM_KIT: return 8;
  default: return 1;
  }
}

int16_t Upward(Sint16 down) {
  return static_cast<int16_t>(std::clamp(-static_cast<int>(down), -32768, 32767));
}

int32_t HatAngle(Uint8 hat) {
  switch (hat) {
  case SDL_HAT_UP: return 0;
  case SDL_HAT_RIGHTUP: return 4500;
  case SDL_HAT_RIGHT: return 9000;
  case SDL_HAT_RIGHTDOWN: return 13500;
  case SDL_HAT_DOWN: return 18000;
  case SDL_HAT_LEFTDOWN: return 22500;
  case SDL_HAT_LEFT: return 27000;
  case SDL_HAT_LEFTUP: return 31500;
  default: return kHatCentred;
  }
}

} // namespace

CSdlPads::~CSdlPads() {
  for (Device& device : m_devices) Close(device);
  if (m_started) SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER | SDL_INIT_JOYSTICK);
}

bool CSdlPads::Start() const {
  if (m_started || m_failed) return m_started;
  // The runner decides by its own focus; some windows never have the system's.
  SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
  m_started = SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER | SDL_INIT_JOYSTICK) == 0;
  m_failed = !m_started;
  return m_started;
}

bool CSdlPads::Available() const { return Start(); }

void CSdlPads::Close(Device& device) {
  if (device.controller)
    SDL_GameControllerClose(device.controller);
  else
    SDL_JoystickClose(device.joystick);
}

void CSdlPads::CloseGone() {
  std::erase_if(m_devices, [](Device& device) {
    if (SDL_JoystickGetAttached(device.joystick)) return false;
    Close(device);
    return true;
  });
}

void CSdlPads::OpenNew() {
  for (int at = 0; at < SDL_NumJoysticks(); ++at) {
    if (Find(SDL_JoystickGetDeviceInstanceID(at))) continue;
    Device device;
    if (SDL_IsGameController(at)) device.controller = SDL_GameControllerOpen(at);
    device.joystick =
        device.controller ? SDL_GameControllerGetJoystick(device.controller) : SDL_JoystickOpen(at);
    if (!device.joystick) continue;
    device.info.device = SDL_JoystickInstanceID(device.joystick);
    const char* name =
        device.controller ? SDL_GameControllerName(device.controller) : SDL_JoystickName(device.joystick);
    device.info.name = name ? name : "";
    char guid[33] = "";
    SDL_JoystickGetGUIDString(SDL_JoystickGetGUID(device.joystick), guid, sizeof guid);
    device.info.guid = guid;
    device.info.standard = device.controller != nullptr;
    device.info.subType = SubType(SDL_JoystickGetType(device.joystick));
    m_devices.push_back(device);
  }
}

std::vector<PadInfo> CSdlPads::Devices() {
  std::vector<PadInfo> infos;
  if (!Start()) return infos;
  SDL_JoystickUpdate();
  CloseGone();
  OpenNew();
  for (const Device& device : m_devices) infos.push_back(device.info);
  return infos;
}

CSdlPads::Device* CSdlPads::Find(int32_t device) {
  for (Device& known : m_devices)
    if (known.info.device == device) return &known;
  return nullptr;
}

bool CSdlPads::ReadStandard(int32_t device, StandardPadState& state) {
  state = StandardPadState{};
  const Device* found = Find(device);
  if (!found || !found->controller || !SDL_JoystickGetAttached(found->joystick)) return false;
  SDL_GameController* pad = found->controller;
  for (const ButtonRow& row : kButtons)
    if (SDL_GameControllerGetButton(pad, row.button))
      state.buttons = static_cast<uint16_t>(state.buttons | row.bit);
  const auto trigger = [&](SDL_GameControllerAxis axis) {
    return static_cast<uint8_t>(std::max<int>(SDL_GameControllerGetAxis(pad, axis), 0) >> 7);
  };
  state.leftTrigger = trigger(SDL_CONTROLLER_AXIS_TRIGGERLEFT);
  state.rightTrigger = trigger(SDL_CONTROLLER_AXIS_TRIGGERRIGHT);
  state.leftX = SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_LEFTX);
  state.leftY = Upward(SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_LEFTY));
  state.rightX = SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_RIGHTX);
  state.rightY = Upward(SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_RIGHTY));
  return true;
}

bool CSdlPads::ReadRaw(int32_t device, RawPadState& state) {
  state = RawPadState{};
  const Device* found = Find(device);
  if (!found || !SDL_JoystickGetAttached(found->joystick)) return false;
  SDL_Joystick* joystick = found->joystick;
  for (int axis = 0; axis < SDL_JoystickNumAxes(joystick); ++axis)
    state.axes.push_back(std::max(SDL_JoystickGetAxis(joystick, axis) * 1000 / 32767, -1000));
  for (int button = 0; button < SDL_JoystickNumButtons(joystick); ++button)
    state.buttons.push_back(SDL_JoystickGetButton(joystick, button));
  for (int hat = 0; hat < SDL_JoystickNumHats(joystick); ++hat)
    state.hats.push_back(HatAngle(SDL_JoystickGetHat(joystick, hat)));
  return true;
}

void CSdlPads::Vibrate(int32_t device, uint16_t left, uint16_t right) {
  Device* found = Find(device);
  if (!found) return;
  const Uint32 now = SDL_GetTicks();
  const bool same = found->left == left && found->right == right;
  const bool still = left == 0 && right == 0;
  if (same && (still || now - found->sent < kRumbleAgain)) return;
  SDL_JoystickRumble(found->joystick, left, right, still ? 0 : kRumbleLength);
  found->left = left;
  found->right = right;
  found->sent = now;
}

} // namespace vesk
