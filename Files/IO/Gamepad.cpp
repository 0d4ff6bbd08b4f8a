#include "Files/IO/Gamepad.h"

#include "Files/Base/Console.h"
#include "Files/IO/GamepadMapping.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

GamepadState state;

constexpr size_t kStandardButtons = 16;
constexpr size_t kStandardAxes = 4;
constexpr size_t kRawButtonRoom = 128;
constexpr size_t kRawAxisRoom = 40;
constexpr size_t kMappedButtons = 17; // the 16 of the constants, and "back"
constexpr size_t kMappedAxes = 4;
constexpr size_t kLeftTrigger = 10; // triggers take the place of two unused bits
constexpr size_t kRightTrigger = 11;
constexpr float kTriggerUnit = 0.00390625f;     // 1/256
constexpr float kStickUnit = 3.0517578125e-05f; // 1/32768
constexpr float kRawAxisUnit = 1000.0f;
constexpr int kHatBits = 4;

void Announce(size_t pad, bool discovered) {
  if (state.announce) state.announce(discovered, static_cast<int32_t>(pad));
}

void SetConnected(size_t at, bool connected) {
  Gamepad& pad = state.pads[at];
  if (pad.connected == connected) return;
  pad.connected = connected;
  Announce(at, connected);
}

// Values become history, the new ones take their place. Counts may change with the device.
void Shift(std::vector<float>& previous, std::vector<float>& current, const std::vector<float>& values) {
  current.resize(values.size(), 0.0f);
  previous = current;
  current = values;
}

// Of a pad that is gone. What was held on it is let go in the next frame, as on a pad that is still there.
void LetGo(Gamepad& pad) {
  pad.previousButtons = pad.buttons;
  pad.previousAxes = pad.axes;
  std::fill(pad.buttons.begin(), pad.buttons.end(), 0.0f);
  std::fill(pad.axes.begin(), pad.axes.end(), 0.0f);
}

Gamepad MakePad(size_t buttons, size_t axes) {
  Gamepad pad;
  pad.buttons.assign(buttons, 0.0f);
  pad.previousButtons = pad.buttons;
  pad.axes.assign(axes, 0.0f);
  pad.previousAxes = pad.axes;
  return pad;
}

const char* StandardDescription(int subType) {
  switch (subType) {
  case 2: return "Xbox 360 Controller (XInput WHEEL)";
  case 3: return "Xbox 360 Controller (XInput ARCADE STICK)";
  case 4: return "Xbox 360 Controller (XInput FLIGHT STICK)";
  case 5: return "Xbox 360 Controller (XInput DANCE PAD)";
  case 6: return "Xbox 360 Controller (XInput GUITAR)";
  case 8: return "Xbox 360 Controller (XInput DRUM KIT)";
  default: return "Xbox 360 Controller (XInput STANDARD GAMEPAD)";
  }
}

// Devices and slots

Gamepad* FindPad(int32_t device) {
  for (Gamepad& pad : state.pads)
    if (pad.device == device) return &pad;
  return nullptr;
}

void Release(size_t at) {
  Gamepad& pad = state.pads[at];
  pad.device = -1;
  pad.description.clear();
  pad.mapping = -1;
  if (at >= kStandardPads) state.freeRaw.push_back(at);
  SetConnected(at, false);
}

void ReleaseGone(const std::vector<PadInfo>& present) {
  for (size_t at = 0; at < state.pads.size(); ++at) {
    const int32_t device = state.pads[at].device;
    const bool there = std::any_of(present.begin(), present.end(),
                                   [&](const PadInfo& info) { return info.device == device; });
    if (device >= 0 && !there) Release(at);
  }
}

void Take(size_t at, const PadInfo& info, bool standard) {
  Gamepad& pad = state.pads[at];
  pad.device = info.device;
  pad.mapping = standard ? -1 : GamepadMapping_Find(info.guid);
  if (standard)
    pad.description = StandardDescription(info.subType);
  else if (pad.mapping >= 0)
    pad.description = GamepadMappings()[static_cast<size_t>(pad.mapping)].name;
  else
    pad.description = info.name;
  SetConnected(at, true);
}

void Place(const PadInfo& info) {
  for (size_t at = 0; info.standard && at < kStandardPads; ++at)
    if (state.pads[at].device < 0) return Take(at, info, true);
  // A fifth pad of the common kind is better served raw than not at all.
  if (state.freeRaw.empty()) return;
  const size_t at = state.freeRaw.back();
  state.freeRaw.pop_back();
  Take(at, info, false);
}

// Polling

void PollStandard(size_t at) {
  Gamepad& pad = state.pads[at];
  StandardPadState read;
  if (!Platform_Get().pads->ReadStandard(pad.device, read)) {
    Release(at);
    LetGo(pad);
    return;
  }
  std::vector<float> buttons(kStandardButtons);
  for (size_t bit = 0; bit < kStandardButtons; ++bit) buttons[bit] = read.buttons >> bit & 1 ? 1.0f : 0.0f;
  buttons[kLeftTrigger] = static_cast<float>(read.leftTrigger) * kTriggerUnit;
  buttons[kRightTrigger] = static_cast<float>(read.rightTrigger) * kTriggerUnit;
  std::vector<float> axes;
  for (const int16_t stick : {read.leftX, read.leftY, read.rightX, read.rightY})
    axes.push_back(static_cast<float>(stick) * kStickUnit);
  Shift(pad.previousButtons, pad.buttons, buttons);
  Shift(pad.previousAxes, pad.axes, axes);
  Platform_Get().pads->Vibrate(pad.device, static_cast<uint16_t>(pad.vibrationLeft * 65535.0f),
                               static_cast<uint16_t>(pad.vibrationRight * 65535.0f));
}

struct RawValues {
  std::vector<float> axes, buttons;
  std::vector<int32_t> hats; // up 1, right 2, down 4, left 8
};

int32_t HatMask(int32_t angle) {
  constexpr int32_t kMasks[] = {1, 3, 2, 6, 4, 12, 8, 9}; // clockwise from up
  constexpr int32_t kEighth = 4500, kHalfEighth = 2250, kFull = 36000;
  if ((angle & 0xFFFF) == kHatCentred) return 0;
  return kMasks[static_cast<size_t>((angle + kHalfEighth) % kFull / kEighth) & 7];
}

RawValues Values(const RawPadState& read) {
  RawValues values;
  for (const int32_t axis : read.axes) values.axes.push_back(static_cast<float>(axis) / kRawAxisUnit);
  for (const uint8_t button : read.buttons) values.buttons.push_back(button ? 1.0f : 0.0f);
  for (const int32_t hat : read.hats) values.hats.push_back(HatMask(hat));
  return values;
}

float Element(const std::vector<float>& values, int32_t index) {
  return index >= 0 && static_cast<size_t>(index) < values.size() ? values[static_cast<size_t>(index)] : 0.0f;
}

float HatValue(const RawValues& raw, const MappingEntry& entry) {
  const bool known = entry.index >= 0 && static_cast<size_t>(entry.index) < raw.hats.size();
  return known && (raw.hats[static_cast<size_t>(entry.index)] & entry.mask) ? 1.0f : 0.0f;
}

// Raw controls that a mapping took; the others follow behind the mapped ones.
struct UsedControls {
  std::vector<bool> buttons, axes;
  static void Mark(std::vector<bool>& used, int32_t index) {
    if (index >= 0 && static_cast<size_t>(index) < used.size()) used[static_cast<size_t>(index)] = true;
  }
};

float MappedButton(const RawValues& raw, const MappingEntry& entry, UsedControls& used) {
  switch (entry.kind) {
  case MappingEntry::Button:
    UsedControls::Mark(used.buttons, entry.index);
    return Element(raw.buttons, entry.index);
  case MappingEntry::Axis: return (Element(raw.axes, entry.index) + 1.0f) * 0.5f;
  case MappingEntry::Hat: return HatValue(raw, entry);
  case MappingEntry::None: break;
  }
  return 0.0f;
}

float MappedAxis(const RawValues& raw, const MappingEntry& entry, UsedControls& used) {
  switch (entry.kind) {
  case MappingEntry::Axis: UsedControls::Mark(used.axes, entry.index); return Element(raw.axes, entry.index);
  case MappingEntry::Button: return Element(raw.buttons, entry.index);
  case MappingEntry::Hat: return HatValue(raw, entry);
  case MappingEntry::None: break;
  }
  return 0.0f;
}

void PutMapped(Gamepad& pad, const RawValues& raw) {
  const auto& entries = GamepadMappings()[static_cast<size_t>(pad.mapping)].entries;
  UsedControls used{std::vector<bool>(raw.buttons.size()), std::vector<bool>(raw.axes.size())};
  std::vector<float> buttons, axes;
  for (size_t target = mt_a; target < kStandardButtons; ++target)
    buttons.push_back(MappedButton(raw, entries[target], used));
  buttons.push_back(MappedButton(raw, entries[mt_back], used));
  for (size_t target = mt_leftx; target < mt_leftx + kMappedAxes; ++target)
    axes.push_back(MappedAxis(raw, entries[target], used));
  for (size_t at = 0; at < raw.buttons.size(); ++at)
    if (!used.buttons[at]) buttons.push_back(raw.buttons[at]);
  for (size_t at = 0; at < raw.axes.size(); ++at)
    if (!used.axes[at]) axes.push_back(raw.axes[at]);
  static_assert(kMappedButtons == kStandardButtons + 1);
  Shift(pad.previousButtons, pad.buttons, buttons);
  Shift(pad.previousAxes, pad.axes, axes);
}

void PutUnmapped(Gamepad& pad, const RawValues& raw) {
  std::vector<float> buttons = raw.buttons;
  for (const int32_t hat : raw.hats)
    for (int bit = 0; bit < kHatBits; ++bit) buttons.push_back(hat >> bit & 1 ? 1.0f : 0.0f);
  Shift(pad.previousButtons, pad.buttons, buttons);
  Shift(pad.previousAxes, pad.axes, raw.axes);
}

void PollRaw(size_t at) {
  Gamepad& pad = state.pads[at];
  RawPadState read;
  if (!Platform_Get().pads->ReadRaw(pad.device, read)) return; // the device list tells when it is gone
  const RawValues values = Values(read);
  if (pad.mapping >= 0)
    PutMapped(pad, values);
  else
    PutUnmapped(pad, values);
}

} // namespace

GamepadState& Gamepads() { return state; }

void Gamepad_Init() {
  GamepadMappings().clear();
  GamepadMapping_Parse(GamepadMapping_OwnRows());
  std::string text;
  if (File_ReadAll(Files_FindForReading("gamecontrollerdb.txt"), text)) GamepadMapping_Parse(text);
  if (Environment_Get("SDL_GAMECONTROLLERCONFIG", text)) GamepadMapping_Parse(text);
  state.missingLogged = false;
}

void Gamepad_Open(bool rawSlots) {
  state.pads.assign(kStandardPads, MakePad(kStandardButtons, kStandardAxes));
  if (rawSlots) state.pads.resize(kStandardPads + kRawPads, MakePad(kRawButtonRoom, kRawAxisRoom));
  state.freeRaw.clear();
  for (size_t at = state.pads.size(); at > kStandardPads; --at) state.freeRaw.push_back(at - 1);
  state.started = true;
  Gamepad_DevicesChanged();
}

void Gamepad_DevicesChanged() {
  if (!state.started) return;
  const std::vector<PadInfo> present = Platform_Get().pads->Devices();
  ReleaseGone(present);
  for (const PadInfo& info : present)
    if (!FindPad(info.device)) Place(info);
}

void Gamepad_Poll() {
  if (!Loop().focused) return; // another program has the pads
  for (Gamepad& pad : state.pads)
    if (!pad.connected) LetGo(pad);
  const size_t standard = std::min<size_t>(kStandardPads, state.pads.size());
  for (size_t at = standard; at < state.pads.size(); ++at)
    if (state.pads[at].connected) PollRaw(at);
  if (!Platform_Get().pads->Available() || !state.pollStandard) return;
  for (size_t at = 0; at < standard; ++at)
    if (state.pads[at].connected) PollStandard(at);
}

void Gamepad_AnnounceAll() {
  for (size_t at = 0; at < state.pads.size(); ++at)
    if (state.pads[at].connected) Announce(at, true);
}

void Gamepad_Reset() {
  const auto announce = state.announce;
  state = GamepadState{};
  state.announce = announce;
  GamepadMappings().clear();
}

} // namespace vesk
