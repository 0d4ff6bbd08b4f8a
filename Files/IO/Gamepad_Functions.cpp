// Built-ins of the gamepad family.
#include "Files/Base/Console.h"
#include "Files/Function/Function.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/GamepadMapping.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr int32_t kFirstCode = 32768;
constexpr int32_t kButtonCodes = 16;

// Places of gp_face1 to gp_padr on a pad of the common kind; on other devices they are 0 to 15 in order.
constexpr int32_t kStandardPlaces[kButtonCodes] = {12, 13, 14, 15, 8, 9, 10, 11, 5, 4, 6, 7, 0, 1, 2, 3};

Gamepad* Find(int32_t pad) {
  GamepadState& pads = Gamepads();
  if (!Platform_Get().pads->Available() && !pads.missingLogged) {
    pads.missingLogged = true;
    ReleaseConsole().Output("!!!!! %s not found. Gamepad support disabled", "xinput1_3.dll");
  }
  const bool known = pad >= 0 && static_cast<size_t>(pad) < pads.pads.size();
  return known ? &pads.pads[static_cast<size_t>(pad)] : nullptr;
}

int32_t ButtonPlace(int32_t pad, int32_t button) {
  if (button < kFirstCode) return button;
  const int32_t code = button - gp_face1;
  if (code < 0 || code >= kButtonCodes) return 0;
  return pad < kStandardPads ? kStandardPlaces[code] : code;
}

float Element(const std::vector<float>& values, int32_t at) {
  return at >= 0 && static_cast<size_t>(at) < values.size() ? values[static_cast<size_t>(at)] : 0.0f;
}

struct AxisPlace {
  int32_t at;
  double factor; // -1 where up is the device's positive end
};

AxisPlace FindAxis(int32_t pad, int32_t axis) {
  if (axis < kFirstCode) return {axis, 1.0};
  const int32_t code = axis - gp_axislh;
  if (code < 0 || code > 3) return {0, 1.0};
  const bool vertical = code == 1 || code == 3;
  return {code, vertical && pad < kStandardPads ? -1.0 : 1.0};
}

bool InUnitRange(double value, const char* message) {
  if (value >= 0.0 && value <= 1.0) return true;
  ReportError(std::string_view(message), false);
  return false;
}

} // namespace

bool gamepad_is_supported() { return Platform_Get().pads->Available(); }
int32_t gamepad_get_device_count() { return static_cast<int32_t>(Gamepads().pads.size()); }

bool gamepad_is_connected(int32_t pad) {
  const Gamepad* found = Find(pad);
  return found && found->connected;
}
std::string gamepad_get_description(int32_t pad) {
  const Gamepad* found = Find(pad);
  return found ? found->description : std::string();
}

double gamepad_get_button_threshold(int32_t pad) {
  const Gamepad* found = Find(pad);
  return found ? static_cast<double>(found->buttonThreshold) : 0.0;
}
void gamepad_set_button_threshold(int32_t pad, double value) {
  if (!InUnitRange(value, "Button threshold is outside the accepted range")) return;
  if (Gamepad* found = Find(pad)) found->buttonThreshold = static_cast<float>(value);
}
double gamepad_get_axis_deadzone(int32_t pad) {
  const Gamepad* found = Find(pad);
  return found ? static_cast<double>(found->axisDeadzone) : 0.0;
}
void gamepad_set_axis_deadzone(int32_t pad, double value) {
  if (!InUnitRange(value, "Axis dead zone is outside the accepted range")) return;
  if (Gamepad* found = Find(pad)) found->axisDeadzone = static_cast<float>(value);
}

int32_t gamepad_button_count(int32_t pad) {
  const Gamepad* found = Find(pad);
  return found ? static_cast<int32_t>(found->buttons.size()) : 0;
}
int32_t gamepad_axis_count(int32_t pad) {
  const Gamepad* found = Find(pad);
  return found ? static_cast<int32_t>(found->axes.size()) : 0;
}

bool gamepad_button_check(int32_t pad, int32_t button) {
  const Gamepad* found = Find(pad);
  return found && Element(found->buttons, ButtonPlace(pad, button)) >= found->buttonThreshold;
}
bool gamepad_button_check_pressed(int32_t pad, int32_t button) {
  const Gamepad* found = Find(pad);
  if (!found) return false;
  const int32_t at = ButtonPlace(pad, button);
  return Element(found->buttons, at) >= found->buttonThreshold &&
         Element(found->previousButtons, at) < found->buttonThreshold;
}
bool gamepad_button_check_released(int32_t pad, int32_t button) {
  const Gamepad* found = Find(pad);
  if (!found) return false;
  const int32_t at = ButtonPlace(pad, button);
  return Element(found->buttons, at) < found->buttonThreshold &&
         Element(found->previousButtons, at) >= found->buttonThreshold;
}
double gamepad_button_value(int32_t pad, int32_t button) {
  const Gamepad* found = Find(pad);
  return found ? static_cast<double>(Element(found->buttons, ButtonPlace(pad, button))) : 0.0;
}

double gamepad_axis_value(int32_t pad, int32_t axis) {
  const Gamepad* found = Find(pad);
  if (!found) return 0.0;
  const AxisPlace place = FindAxis(pad, axis);
  const auto value = static_cast<double>(Element(found->axes, place.at));
  const auto dead = static_cast<double>(found->axisDeadzone);
  const double side = value >= 0.0 ? 1.0 : -1.0;
  const double size = std::fabs(value);
  if (!(dead > 0.0)) return value * place.factor;
  if (size < dead) return 0.0;
  if (dead >= 1.0) return side * place.factor;
  // The range beyond the dead zone is stretched to reach 1.
  return (size - dead) / (1.0 - dead) * side * place.factor;
}

void gamepad_set_vibration(int32_t pad, double left, double right) {
  Gamepad* found = Find(pad);
  if (!found) return;
  found->vibrationLeft = static_cast<float>(std::clamp(left, 0.0, 1.0));
  found->vibrationRight = static_cast<float>(std::clamp(right, 0.0, 1.0));
}

void gamepad_add_hardware_mapping_from_string(std::string_view text) {
  const auto before = static_cast<int32_t>(GamepadMappings().size());
  GamepadMapping_Parse(text);
  const int32_t added = static_cast<int32_t>(GamepadMappings().size()) - before;
  for (Gamepad& pad : Gamepads().pads)
    if (pad.mapping >= 0) pad.mapping += added; // new ones stand in front
}

void gamepad_add_hardware_mapping_from_file(std::string_view fileName) {
  std::string text, why = "there is no such file";
  const std::string found = Files_FindForReading(std::string(fileName));
  if (!found.empty() && File_ReadAll(found, text, &why))
    gamepad_add_hardware_mapping_from_string(text);
  else
    ReleaseConsole().Output("Gamepad mappings of \"%s\": %s\n", std::string(fileName).c_str(), why.c_str());
}

std::string gamepad_get_hardware_mappings() {
  std::string text;
  for (const HardwareMapping& mapping : GamepadMappings()) text += GamepadMapping_Text(mapping) + "\n";
  return text;
}

void gamepad_set_colour(int32_t, int32_t colour) {
  ReleaseConsole().Output("setting pad color to 0x%x\n", static_cast<unsigned>(colour));
}

namespace {

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&gamepad_is_supported>("gamepad_is_supported"),
    Builtin<&gamepad_get_device_count>("gamepad_get_device_count"),
    Builtin<&gamepad_is_connected>("gamepad_is_connected"),
    Builtin<&gamepad_get_description>("gamepad_get_description"),
    Builtin<&gamepad_get_button_threshold>("gamepad_get_button_threshold"),
    Builtin<&gamepad_set_button_threshold>("gamepad_set_button_threshold"),
    Builtin<&gamepad_get_axis_deadzone>("gamepad_get_axis_deadzone"),
    Builtin<&gamepad_set_axis_deadzone>("gamepad_set_axis_deadzone"),
    Builtin<&gamepad_button_count>("gamepad_button_count"),
    Builtin<&gamepad_axis_count>("gamepad_axis_count"),
    Builtin<&gamepad_button_check>("gamepad_button_check"),
    Builtin<&gamepad_button_check_pressed>("gamepad_button_check_pressed"),
    Builtin<&gamepad_button_check_released>("gamepad_button_check_released"),
    Builtin<&gamepad_button_value>("gamepad_button_value"),
    Builtin<&gamepad_axis_value>("gamepad_axis_value"),
    Builtin<&gamepad_set_vibration>("gamepad_set_vibration"),
    Builtin<&gamepad_add_hardware_mapping_from_string>("gamepad_add_hardware_mapping_from_string"),
    Builtin<&gamepad_add_hardware_mapping_from_file>("gamepad_add_hardware_mapping_from_file"),
    Builtin<&gamepad_get_hardware_mappings>("gamepad_get_hardware_mappings"),
    Builtin<&gamepad_set_colour>("gamepad_set_color"),
    Builtin<&gamepad_set_colour>("gamepad_set_colour"),
};

} // namespace

void Function_AddGamepad() { Function_Add(kBuiltins); }

} // namespace vesk
