#include "Platform/Sdl/Sdl.h"
#include "Platform/Text.h"

namespace vesk {

namespace {

constexpr int32_t kWheelNotch = 120;
constexpr int kLeftAlt = 164;

} // namespace

void CSdlMessages::Post(const Message& message) {
  m_waiting.push_back(message);
  m_statesNow.Apply(message);
}

void CSdlMessages::PostCharacter(char16_t unit) {
  Message message;
  message.kind = MessageKind::Character;
  message.character = unit;
  Post(message);
}

bool CSdlMessages::Next(Message& message) {
  if (m_waiting.empty()) Pump();
  if (m_waiting.empty()) return false;
  message = m_waiting.front();
  m_waiting.pop_front();
  m_states.Apply(message);
  return true;
}

bool CSdlMessages::KeyHeldNow(int key) {
  Pump();
  return m_statesNow.Held(key);
}

bool CSdlMessages::KeyToggled(int key) const {
  const SDL_Keymod modes = SDL_GetModState();
  if (key == 144) return (modes & KMOD_NUM) != 0;
  if (key == 20) return (modes & KMOD_CAPS) != 0;
  return m_states.Toggled(key);
}

void CSdlMessages::InjectKey(int key, bool down) {
  if (key < 1 || key > 255) return;
  Message message = KeyCode_Message(key, down);
  message.repeat = down && m_statesNow.Held(key);
  message.system = message.key == 18 || m_statesNow.Held(18);
  Post(message);
  if (!down || message.system) return;
  const char16_t unit = KeyCode_Character(key, m_statesNow.Held(16), m_statesNow.Held(17));
  if (unit != 0) PostCharacter(unit);
}

void CSdlMessages::Pump() {
  if (!SDL_WasInit(SDL_INIT_EVENTS)) return;
  SDL_Event event;
  while (SDL_PollEvent(&event)) Take(event);
}

void CSdlMessages::Take(const SDL_Event& event) {
  Message message;
  switch (event.type) {
  case SDL_KEYDOWN:
  case SDL_KEYUP: TakeKey(event.key); return;
  case SDL_TEXTINPUT:
    if (m_statesNow.Held(kLeftAlt)) return; // part of a system key; the right one types on many layouts
    for (const char16_t unit : Text_ToUtf16(event.text.text)) PostCharacter(unit);
    return;
  case SDL_MOUSEMOTION:
    message.kind = MessageKind::MouseMove;
    message.x = event.motion.x;
    message.y = event.motion.y;
    break;
  case SDL_MOUSEBUTTONDOWN:
  case SDL_MOUSEBUTTONUP:
    message.kind = event.type == SDL_MOUSEBUTTONDOWN ? MessageKind::ButtonDown : MessageKind::ButtonUp;
    message.button = event.button.button == SDL_BUTTON_LEFT     ? 1
                     : event.button.button == SDL_BUTTON_RIGHT  ? 2
                     : event.button.button == SDL_BUTTON_MIDDLE ? 3
                                                                : 0;
    if (message.button == 0) return;
    message.x = event.button.x;
    message.y = event.button.y;
    break;
  case SDL_MOUSEWHEEL:
    message.kind = MessageKind::Wheel;
    message.delta =
        (event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -event.wheel.y : event.wheel.y) * kWheelNotch;
    if (message.delta == 0) return;
    break;
  case SDL_WINDOWEVENT: TakeWindow(event.window); return;
  case SDL_JOYDEVICEADDED:
  case SDL_JOYDEVICEREMOVED: message.kind = MessageKind::PadsChanged; break;
  case SDL_QUIT: message.kind = MessageKind::Quit; break;
  default: return;
  }
  Post(message);
}

void CSdlMessages::TakeKey(const SDL_KeyboardEvent& event) {
  const int key = Sdl_KeyCode(event.keysym);
  if (key == 0) return;
  const bool down = event.type == SDL_KEYDOWN;
  Message message = KeyCode_Message(key, down);
  message.repeat = down && event.repeat != 0;
  message.system = message.key == 18 || (event.keysym.mod & KMOD_ALT) != 0;
  Post(message);
  if (!down || message.system) return;
  // Text comes on its own; keys without text and control characters don't.
  const bool control = (event.keysym.mod & KMOD_CTRL) != 0;
  const bool silent = key == 8 || key == 9 || key == 13 || key == 27;
  if (!control && !silent) return;
  if (const char16_t unit = KeyCode_Character(key, false, control)) PostCharacter(unit);
}

void CSdlMessages::TakeWindow(const SDL_WindowEvent& event) {
  Message message;
  switch (event.event) {
  case SDL_WINDOWEVENT_FOCUS_GAINED:
  case SDL_WINDOWEVENT_FOCUS_LOST:
    message.kind = MessageKind::Activate;
    message.active = event.event == SDL_WINDOWEVENT_FOCUS_GAINED;
    break;
  case SDL_WINDOWEVENT_SIZE_CHANGED:
    message.kind = MessageKind::Resize;
    message.x = event.data1;
    message.y = event.data2;
    break;
  case SDL_WINDOWEVENT_CLOSE: message.kind = MessageKind::Close; break;
  default: return;
  }
  Post(message);
}

} // namespace vesk
