#pragma once
// Messages of the main window, drained on the game thread only.
#include <cstdint>

namespace vesk {

enum class MessageKind : uint8_t {
  KeyDown,     // key, extended, repeat, system
  KeyUp,       // key, extended, system
  Character,   // character: one UTF-16 unit, control characters included
  MouseMove,   // x, y
  ButtonDown,  // button, x, y
  ButtonUp,    // button, x, y
  Wheel,       // delta: above 0 away from the user
  Activate,    // active: the program gained or lost the focus
  Resize,      // x, y: new client size in pixels
  PadsChanged, // a pad came or went
  Close,       // the user asked to close the window
  Quit,        // end the frame loop
};

struct Message {
  MessageKind kind = MessageKind::Quit;
  bool extended = false; // right-hand control, alt, shift
  bool repeat = false;   // key down while the key was held
  bool system = false;   // key with alt held
  bool active = false;
  uint8_t key = 0;    // virtual key code: letters and digits as upper-case ASCII, 37 to 40 arrows, 112 F1 …
  uint8_t button = 0; // 1 left, 2 right, 3 middle
  char16_t character = 0; // UTF-16 unit
  int32_t x = 0;          // client pixels from the window's left top
  int32_t y = 0;
  int32_t delta = 0;
};

class IMessages {
public:
  virtual ~IMessages() = default;
  // Takes the oldest waiting message; false when none waits.
  virtual bool Next(Message& message) = 0;
  // Puts a message at the end of the queue.
  virtual void Post(const Message& message) = 0;
  // Whether the key was down when the last message was taken. 160 and 161 are left and right shift; other
  // codes above the sided ones answer too. Out of range: false.
  virtual bool KeyHeld(int key) const = 0;
  // The state right now, whether or not its message was taken.
  virtual bool KeyHeldNow(int key) = 0;
  // Whether a lock key (144 num lock, 20 caps lock, 145 scroll lock) is switched on.
  virtual bool KeyToggled(int key) const = 0;
  // Presses or releases a key as if the user did: it comes back through the queue. Codes outside 1 to 255 are
  // ignored.
  virtual void InjectKey(int key, bool down) = 0;
};

} // namespace vesk
