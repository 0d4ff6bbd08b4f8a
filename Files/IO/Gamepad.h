#pragma once
// Game controllers: slots 0 to 3 hold pads of the common two-stick kind, slots 4 to 11 any other device with
// raw numbers or through a mapping. Polled once a frame. Game thread only.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

enum GamepadCode : int32_t { // numbers below 32768 are raw indices
  gp_face1 = 32769,
  gp_face2,
  gp_face3,
  gp_face4,
  gp_shoulderl,
  gp_shoulderr,
  gp_shoulderlb,
  gp_shoulderrb,
  gp_select,
  gp_start,
  gp_stickl,
  gp_stickr,
  gp_padu,
  gp_padd,
  gp_padl,
  gp_padr,
  gp_axislh,
  gp_axislv,
  gp_axisrh,
  gp_axisrv,
};

inline constexpr int32_t kStandardPads = 4;
inline constexpr int32_t kRawPads = 8;

struct Gamepad {
  bool connected = false;
  int32_t device = -1;                         // of the platform; -1 none
  std::vector<float> buttons, previousButtons; // 0 to 1
  std::vector<float> axes, previousAxes;       // -1 to 1
  float buttonThreshold = 0.5f;                // a button is down at this value or above
  float axisDeadzone = 0;
  float vibrationLeft = 0, vibrationRight = 0; // 0 to 1
  std::string description;                     // empty while free
  int32_t mapping = -1;                        // of GamepadMappings(); -1 none. Raw slots only
};

struct GamepadState {
  std::vector<Gamepad> pads;
  std::vector<size_t> freeRaw; // of slots 4 to 11: the last is taken first, what is given back goes on top
  bool pollStandard = true;    // the data allows slots 0 to 3
  bool started = false;
  bool missingLogged = false;
  // Told of every pad that comes or goes; null: nobody listens.
  void (*announce)(bool discovered, int32_t pad) = nullptr;
};
GamepadState& Gamepads();

// Reads the mappings; makes the slots and looks for devices. `rawSlots` false leaves out slots 4 to 11.
void Gamepad_Init();
void Gamepad_Open(bool rawSlots);
void Gamepad_DevicesChanged();
void Gamepad_Poll();
void Gamepad_AnnounceAll(); // once for each connected pad
void Gamepad_Reset();

bool gamepad_is_supported();
int32_t gamepad_get_device_count();
bool gamepad_is_connected(int32_t pad);
std::string gamepad_get_description(int32_t pad);
double gamepad_get_button_threshold(int32_t pad);
void gamepad_set_button_threshold(int32_t pad, double value); // 0 to 1, else an error report
double gamepad_get_axis_deadzone(int32_t pad);
void gamepad_set_axis_deadzone(int32_t pad, double value); // 0 to 1, else an error report
int32_t gamepad_button_count(int32_t pad);
int32_t gamepad_axis_count(int32_t pad);
bool gamepad_button_check(int32_t pad, int32_t button);
bool gamepad_button_check_pressed(int32_t pad, int32_t button);
bool gamepad_button_check_released(int32_t pad, int32_t button);
double gamepad_button_value(int32_t pad, int32_t button);
double gamepad_axis_value(int32_t pad, int32_t axis);
void gamepad_set_vibration(int32_t pad, double left, double right);
void gamepad_add_hardware_mapping_from_string(std::string_view text);
void gamepad_add_hardware_mapping_from_file(std::string_view fileName);
std::string gamepad_get_hardware_mappings();
void gamepad_set_colour(int32_t pad, int32_t colour);

void Function_AddGamepad();

} // namespace vesk
