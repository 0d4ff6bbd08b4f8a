#include "Files/Base/Error.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/GamepadMapping.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/HandDriven.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vesk;

namespace {

std::string announced;

class Pads : public testing::Test {
protected:
  Pads() {
    Platform_Set(&hand.Interfaces());
    Error_Reset();
    Error().showBox = false;
    Loop_Reset();
    Gamepad_Reset();
    Gamepad_Init();
    announced.clear();
    Gamepads().announce = [](bool discovered, int32_t pad) {
      announced += (discovered ? "+" : "-") + std::to_string(pad) + " ";
    };
  }
  ~Pads() override {
    Gamepads().announce = nullptr;
    Gamepad_Reset();
    Error_Reset();
    Platform_Set(nullptr);
  }
  int32_t Attach(bool standard, const std::string& guid = "0123456789abcdef0123456789abcdef") {
    PadInfo info;
    info.name = "Some Pad";
    info.guid = guid;
    info.standard = standard;
    return hand.pads.Attach(info);
  }
  CHandDrivenPlatform hand;
};

} // namespace

TEST_F(Pads, SlotsAreTakenInOrderKeptAndGivenBack) {
  const int32_t first = Attach(true);
  const int32_t raw = Attach(false);
  Gamepad_Open(true);
  EXPECT_EQ(gamepad_get_device_count(), 12);
  EXPECT_EQ(announced, "+0 +4 ");
  EXPECT_EQ(gamepad_get_description(0), "Xbox 360 Controller (XInput STANDARD GAMEPAD)");
  EXPECT_EQ(gamepad_get_description(4), "Some Pad");
  EXPECT_EQ(gamepad_get_description(5), "");
  const int32_t second = Attach(true);
  Gamepad_DevicesChanged();
  hand.pads.Detach(first);
  Gamepad_DevicesChanged();
  EXPECT_EQ(announced, "+0 +4 +1 -0 ");
  EXPECT_FALSE(gamepad_is_connected(0));
  EXPECT_TRUE(gamepad_is_connected(1)); // the other one stays in its slot
  announced.clear();
  Attach(true);
  Gamepad_DevicesChanged();
  Gamepad_DevicesChanged(); // nothing new, nothing said
  EXPECT_EQ(announced, "+0 ");
  announced.clear();
  Gamepad_AnnounceAll();
  EXPECT_EQ(announced, "+0 +1 +4 ");
  hand.pads.Detach(raw);
  hand.pads.Detach(second);
  Gamepad_DevicesChanged();
  EXPECT_FALSE(gamepad_is_connected(4));
  for (const int32_t pad : {-1, 12, 1000}) {
    EXPECT_FALSE(gamepad_is_connected(pad));
    EXPECT_EQ(gamepad_axis_value(pad, gp_axislh), 0);
    EXPECT_FALSE(gamepad_button_check(pad, gp_face1));
  }
}

TEST_F(Pads, TheRawSlotGivenBackLastIsTakenFirst) {
  const int32_t first = Attach(false), second = Attach(false);
  Attach(false);
  Gamepad_Open(true);
  hand.pads.Detach(first);
  Gamepad_DevicesChanged();
  hand.pads.Detach(second);
  Gamepad_DevicesChanged();
  announced.clear();
  for (int count = 0; count < 3; ++count) Attach(false);
  Gamepad_DevicesChanged();
  EXPECT_EQ(announced, "+5 +4 +7 ");
  for (int count = 0; count < 10; ++count) Attach(false);
  Gamepad_DevicesChanged();
  EXPECT_EQ(announced, "+5 +4 +7 +8 +9 +10 +11 ") << "no slot is left for the others";
}

TEST_F(Pads, WithoutRawSlotsOtherDevicesAreLeftOut) {
  Attach(false);
  Gamepad_Open(false);
  EXPECT_EQ(gamepad_get_device_count(), 4);
  EXPECT_EQ(announced, "");
}

TEST_F(Pads, AStandardPadReadsByItsConstants) {
  const int32_t device = Attach(true);
  Gamepad_Open(true);
  StandardPadState& state = hand.pads.Find(device)->standard;
  const struct {
    int32_t code;
    uint16_t bit;
    int32_t index;
  } buttons[] = {
      {gp_face1, 0x1000, 12},    {gp_face2, 0x2000, 13},    {gp_face3, 0x4000, 14}, {gp_face4, 0x8000, 15},
      {gp_shoulderl, 0x0100, 8}, {gp_shoulderr, 0x0200, 9}, {gp_select, 0x0020, 5}, {gp_start, 0x0010, 4},
      {gp_stickl, 0x0040, 6},    {gp_stickr, 0x0080, 7},    {gp_padu, 0x0001, 0},   {gp_padd, 0x0002, 1},
      {gp_padl, 0x0004, 2},      {gp_padr, 0x0008, 3},
  };
  for (const auto& row : buttons) {
    state.buttons = row.bit;
    Gamepad_Poll();
    EXPECT_TRUE(gamepad_button_check(0, row.code)) << row.code;
    EXPECT_TRUE(gamepad_button_check_pressed(0, row.code)) << row.code;
    EXPECT_TRUE(gamepad_button_check(0, row.index)) << row.index;
    Gamepad_Poll();
    EXPECT_FALSE(gamepad_button_check_pressed(0, row.code));
    state.buttons = 0;
    Gamepad_Poll();
    EXPECT_TRUE(gamepad_button_check_released(0, row.code));
    EXPECT_FALSE(gamepad_button_check(0, row.code));
  }
  state.leftTrigger = 255;
  state.rightTrigger = 64;
  Gamepad_Poll();
  EXPECT_FLOAT_EQ(static_cast<float>(gamepad_button_value(0, gp_shoulderlb)), 255.0f / 256.0f);
  EXPECT_EQ(gamepad_button_value(0, gp_shoulderrb), 0.25);
  EXPECT_FALSE(gamepad_button_check(0, gp_shoulderrb));
  gamepad_set_button_threshold(0, 0.25);
  EXPECT_TRUE(gamepad_button_check(0, gp_shoulderrb)); // at the threshold counts
  state.leftY = 32767;                                 // up
  state.rightX = -32768;
  Gamepad_Poll();
  EXPECT_LT(gamepad_axis_value(0, gp_axislv), -0.99); // up reads negative
  EXPECT_GT(gamepad_axis_value(0, 1), 0.99);          // the raw axis does not
  EXPECT_EQ(gamepad_axis_value(0, gp_axisrh), -1.0);
  EXPECT_EQ(gamepad_axis_value(0, 40000), gamepad_axis_value(0, 0)); // unknown codes are index 0
}

TEST_F(Pads, DeadZonesStretchTheRest) {
  const int32_t device = Attach(false);
  Gamepad_Open(true);
  RawPadState& state = hand.pads.Find(device)->raw;
  gamepad_set_axis_deadzone(4, 0.25);
  const struct {
    int32_t raw;
    double value;
  } rows[] = {{200, 0}, {250, 0}, {625, 0.5}, {-1000, -1}, {1000, 1}, {-625, -0.5}};
  for (const auto& row : rows) {
    state.axes = {row.raw};
    Gamepad_Poll();
    EXPECT_NEAR(gamepad_axis_value(4, gp_axislh), row.value, 1e-6) << row.raw;
  }
  gamepad_set_axis_deadzone(4, 1);
  EXPECT_EQ(gamepad_axis_value(4, 0), 0.0);
  state.axes = {-1000};
  Gamepad_Poll();
  EXPECT_EQ(gamepad_axis_value(4, 0), -1.0);
}

TEST_F(Pads, RangesAreRefusedInWords) {
  Gamepad_Open(true);
  gamepad_set_button_threshold(0, 1.5);
  EXPECT_THAT(Error().last, testing::HasSubstr("Button threshold is outside the accepted range"));
  EXPECT_EQ(gamepad_get_button_threshold(0), 0.5);
  gamepad_set_axis_deadzone(0, -0.1);
  EXPECT_THAT(Error().last, testing::HasSubstr("Axis dead zone is outside the accepted range"));
  EXPECT_EQ(gamepad_get_axis_deadzone(0), 0.0);
  EXPECT_EQ(Error().fatalCount, 0);
}

TEST_F(Pads, AnUnmappedDeviceShowsButtonsThenHats) {
  const int32_t device = Attach(false);
  Gamepad_Open(true);
  RawPadState& state = hand.pads.Find(device)->raw;
  state.axes = {500, -250};
  state.buttons = {0, 1};
  state.hats = {4500, kHatCentred}; // up and right
  Gamepad_Poll();
  EXPECT_EQ(gamepad_button_count(4), 10);
  std::string buttons;
  for (int32_t button = 0; button < 10; ++button) buttons += gamepad_button_check(4, button) ? '1' : '0';
  EXPECT_EQ(buttons, "0111000000");
  EXPECT_EQ(gamepad_axis_value(4, gp_axislv), -0.25); // not flipped here
  const int32_t masks[] = {1, 3, 2, 6, 4, 12, 8, 9};
  for (int32_t eighth = 0; eighth < 8; ++eighth) {
    state.hats = {eighth * 4500 + 2200, kHatCentred};
    Gamepad_Poll();
    int32_t mask = 0;
    for (int32_t bit = 0; bit < 4; ++bit) mask |= gamepad_button_check(4, 2 + bit) ? 1 << bit : 0;
    EXPECT_EQ(mask, masks[eighth]) << eighth;
  }
}

TEST_F(Pads, AMappedDeviceIsSortedByItsMapping) {
  gamepad_add_hardware_mapping_from_string(
      "00112233445566778899aabbccddeeff,Odd "
      "Pad,a:b3,b:h0.4,lefttrigger:a2,back:b0,leftx:a1,lefty:b1,guide:b9,"
      "platform:LINUX,\n");
  const int32_t device = Attach(false, "00112233445566778899AABBCCDDEEFF");
  Gamepad_Open(true);
  EXPECT_EQ(gamepad_get_description(4), "Odd Pad");
  RawPadState& state = hand.pads.Find(device)->raw;
  state.axes = {100, 200, -500};
  state.buttons = {1, 1, 1, 1};
  state.hats = {18000};
  Gamepad_Poll();
  EXPECT_TRUE(gamepad_button_check(4, gp_face1));
  EXPECT_EQ(gamepad_button_value(4, gp_face2), 1.0);
  EXPECT_EQ(gamepad_button_value(4, gp_shoulderlb), 0.25); // (-0.5 + 1) / 2
  EXPECT_EQ(gamepad_button_value(4, gp_select), 0.0);      // "guide" is a button that the device lacks
  EXPECT_EQ(gamepad_button_value(4, 16), 1.0);             // "back" has no constant
  EXPECT_NEAR(gamepad_axis_value(4, gp_axislh), 0.2, 1e-6);
  EXPECT_EQ(gamepad_axis_value(4, gp_axislv), 1.0);
  // Buttons 1 and 2 and axes 0 and 2 were not taken whole: they follow behind.
  EXPECT_EQ(gamepad_button_count(4), 17 + 2);
  EXPECT_EQ(gamepad_axis_count(4), 4 + 2);
  EXPECT_NEAR(gamepad_axis_value(4, 4), 0.1, 1e-6);
  EXPECT_NEAR(gamepad_axis_value(4, 5), -0.5, 1e-6);
  // One more mapping in front must not move the device to another.
  gamepad_add_hardware_mapping_from_string("ffffffffffffffffffffffffffffffff,Other,a:b0,");
  Gamepad_Poll();
  EXPECT_EQ(gamepad_button_value(4, gp_shoulderlb), 0.25);
}

TEST_F(Pads, PadsAreLeftAloneWithoutTheFocus) {
  const int32_t device = Attach(true);
  Gamepad_Open(true);
  Loop().focused = false;
  hand.pads.Find(device)->standard.buttons = 0x1000;
  Gamepad_Poll();
  EXPECT_FALSE(gamepad_button_check(0, gp_face1));
  Loop().focused = true;
  Gamepads().pollStandard = false; // the data does not allow it
  Gamepad_Poll();
  EXPECT_FALSE(gamepad_button_check(0, gp_face1));
  Gamepads().pollStandard = true;
  Gamepad_Poll();
  EXPECT_TRUE(gamepad_button_check(0, gp_face1));
  hand.pads.Detach(device); // gone between two looks at the device list
  Gamepad_Poll();
  EXPECT_FALSE(gamepad_is_connected(0));
  EXPECT_FALSE(gamepad_button_check(0, gp_face1));
}

// Or a key that a game presses for the button would be held for good.
TEST_F(Pads, WhatIsHeldOnAPadThatGoesIsLetGoOnce) {
  const int32_t device = Attach(true);
  Gamepad_Open(true);
  for (const bool told : {true, false}) { // by the list of devices, or by the poll that fails
    const int32_t here = told ? device : Attach(true);
    Gamepad_DevicesChanged();
    hand.pads.Find(here)->standard.buttons = 0x1000;
    hand.pads.Find(here)->standard.leftX = 30000;
    Gamepad_Poll();
    ASSERT_TRUE(gamepad_button_check_pressed(0, gp_face1));
    hand.pads.Detach(here);
    if (told) Gamepad_DevicesChanged();
    Gamepad_Poll();
    EXPECT_TRUE(gamepad_button_check_released(0, gp_face1)) << told;
    EXPECT_EQ(gamepad_axis_value(0, gp_axislh), 0);
    Gamepad_Poll();
    EXPECT_FALSE(gamepad_button_check_released(0, gp_face1)) << told;
  }
}

TEST_F(Pads, MotorsRunAtTheirSpeed) {
  const int32_t device = Attach(true);
  Gamepad_Open(true);
  gamepad_set_vibration(0, 0.5, 7);
  Gamepad_Poll();
  EXPECT_EQ(hand.pads.Find(device)->motorLeft, 32767);
  EXPECT_EQ(hand.pads.Find(device)->motorRight, 65535);
}

TEST_F(Pads, TheProgramsOwnRowsAllReadAndComeBackAsText) {
  ASSERT_EQ(GamepadMappings().size(), 46u);
  const HardwareMapping& acme = GamepadMappings().back();
  EXPECT_EQ(acme.name, "Acme");
  EXPECT_EQ(acme.guid, "8f0e1200000000000000504944564944");
  EXPECT_EQ(acme.entries[mt_dpright].kind, MappingEntry::Hat);
  EXPECT_EQ(acme.entries[mt_dpright].mask, 2);
  const std::string text = gamepad_get_hardware_mappings();
  const std::vector<HardwareMapping> before = GamepadMappings();
  GamepadMappings().clear();
  GamepadMapping_Parse(text);
  ASSERT_EQ(GamepadMappings().size(), 46u);
  for (size_t at = 0; at < before.size(); ++at)
    EXPECT_EQ(GamepadMapping_Text(before[at]),
              GamepadMapping_Text(GamepadMappings()[before.size() - 1 - at]));
}

// The table beside the game, and one named by a script: in the save area or beside the game, nowhere else.
TEST_F(Pads, MappingsComeFromFilesOfTheGame) {
  const std::string folder = testing::TempDir() + "/vesk_mappings/";
  for (const char* part : {"game", "save"}) ASSERT_TRUE(Directory_Make(folder + part));
  Files_Locations() = {folder + "game/", folder + "save/"};
  ASSERT_TRUE(File_WriteAll(folder + "game/gamecontrollerdb.txt", "00,Beside,a:b0,\n"));
  ASSERT_TRUE(File_WriteAll(folder + "save/more.txt", "01,Saved,a:b0,\n"));
  ASSERT_TRUE(File_WriteAll(folder + "outside.txt", "02,Outside,a:b0,\n"));
  Gamepad_Init();
  EXPECT_EQ(GamepadMappings().front().name, "Beside");
  gamepad_add_hardware_mapping_from_file("more.txt");
  EXPECT_EQ(GamepadMappings().front().name, "Saved");
  for (const char* missing : {"none.txt", "../outside.txt"}) gamepad_add_hardware_mapping_from_file(missing);
  EXPECT_EQ(GamepadMappings().size(), 48u);
  Files_ResetLocations();
  for (const char* file : {"game/gamecontrollerdb.txt", "save/more.txt", "outside.txt"})
    File_Remove(folder + file);
}

TEST_F(Pads, BadMappingLinesAreSkipped) {
  GamepadMappings().clear();
  GamepadMapping_Parse("# a,b,c\r\n\r\nno commas\none,comma\n"
                       "guid,Name,a:,b:x3,x:b,y:h1,z:b1,leftx:a99999999999,start:b7,rightx:h2.9,:,,");
  ASSERT_EQ(GamepadMappings().size(), 1u);
  const HardwareMapping& read = GamepadMappings()[0];
  for (const int32_t target : {mt_a, mt_b, mt_x, mt_y, mt_leftx})
    EXPECT_EQ(read.entries[static_cast<size_t>(target)].kind, MappingEntry::None) << target;
  EXPECT_EQ(read.entries[mt_start].index, 7);
  EXPECT_EQ(read.entries[mt_rightx].mask, 9);
}
