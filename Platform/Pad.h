#pragma once
// Game controllers, polled. Game thread only.
#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

// How a known controller is read: bits and ranges of the common two-stick pad.
struct StandardPadState {
  uint16_t buttons = 0;    // up 1, down 2, left 4, right 8, start 0x10, back 0x20, stick presses 0x40 0x80,
                           // shoulders 0x100 0x200, guide 0x400, a 0x1000, b 0x2000, x 0x4000, y 0x8000
  uint8_t leftTrigger = 0; // 0 to 255
  uint8_t rightTrigger = 0;
  int16_t leftX = 0; // -32768 to 32767, up and right are positive
  int16_t leftY = 0;
  int16_t rightX = 0;
  int16_t rightY = 0;
};

inline constexpr int32_t kHatCentred = 65535;

// How any device is read.
struct RawPadState {
  std::vector<int32_t> axes;    // -1000 to 1000, down and right are positive
  std::vector<uint8_t> buttons; // 0 or 1
  std::vector<int32_t> hats;    // hundredths of degrees clockwise from up, or kHatCentred
};

struct PadInfo {
  int32_t device = -1; // stays the same while the device is present, never used again
  std::string name;
  std::string guid;      // 32 lower-case hexadecimal digits
  bool standard = false; // can be read as StandardPadState
  int subType = 1;       // 1 pad, 2 wheel, 3 arcade stick, 4 flight stick, 5 dance pad, 6 guitar, 8 drum kit
};

class IPads {
public:
  virtual ~IPads() = default;
  // False when the system has no controllers at all.
  virtual bool Available() const = 0;
  // Devices present now, in the order in which they came.
  virtual std::vector<PadInfo> Devices() = 0;
  // False when the device is gone; the state is then all zero.
  virtual bool ReadStandard(int32_t device, StandardPadState& state) = 0;
  virtual bool ReadRaw(int32_t device, RawPadState& state) = 0;
  // Motor speeds 0 to 65535; they stay until changed.
  virtual void Vibrate(int32_t device, uint16_t left, uint16_t right) = 0;
};

} // namespace vesk
