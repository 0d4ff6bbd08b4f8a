#include "Files/IO/IO_Mouse.h"
#include "Files/IO/IO.h"
#include "Files/IO/IO_Functions.h"
#include "Files/IO/VirtualKeys.h"
#include "Files/Room/Room.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/CommandLine.h"
#include "Platform/HandDriven.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace vesk;

namespace {

class Mouse : public testing::Test {
protected:
  Mouse() {
    Platform_Set(&hand.Interfaces());
    hand.window.Create({.title = "", .size = {384, 216}});
    CommandLine_Reset();
    IO_Reset();
    IO_Init();
    Frame();
  }
  ~Mouse() override {
    IO_Reset();
    CommandLine_Reset();
    Platform_Set(nullptr);
  }
  void Frame() {
    ProcessMessages();
    IO_StartFrame();
    IO_Update();
  }
  static std::string State(int32_t button) {
    std::string state;
    if (mouse_check_button(button)) state += "held ";
    if (mouse_check_button_pressed(button)) state += "pressed ";
    if (mouse_check_button_released(button)) state += "released ";
    return state;
  }
  CHandDrivenPlatform hand;
};

} // namespace

TEST_F(Mouse, ButtonsArePressedHeldAndReleased) {
  hand.messages.Mouse(-5, 7);
  hand.messages.Button(mb_right, true);
  Frame();
  EXPECT_EQ(State(mb_right), "held pressed ");
  EXPECT_EQ(State(mb_any), "held pressed ");
  EXPECT_EQ(State(mb_none), "released ");
  EXPECT_EQ(State(4), "");
  EXPECT_EQ(IO_GetMouseButton(), mb_right);
  EXPECT_TRUE(hand.window.captured);
  EXPECT_EQ(device_mouse_raw_x(0), -5);
  EXPECT_EQ(device_mouse_raw_y(0), 7);
  hand.messages.Button(mb_left, true);
  hand.messages.Button(mb_right, false);
  Frame();
  EXPECT_EQ(State(mb_right), "released ");
  EXPECT_EQ(State(mb_left), "held pressed ");
  EXPECT_TRUE(hand.window.captured);
  hand.messages.Button(mb_left, false);
  Frame();
  EXPECT_FALSE(hand.window.captured);
  EXPECT_EQ(IO_GetMouseLastButton(), mb_left);
}

TEST_F(Mouse, APressAndReleaseWithinAFrameIsAReleaseAlone) {
  hand.messages.Button(mb_left, true);
  hand.messages.Button(mb_left, false);
  Frame();
  EXPECT_EQ(State(mb_left), "released ");
}

TEST_F(Mouse, TheWheelTurnsForOneFrame) {
  hand.messages.Wheel(120);
  hand.messages.Wheel(-120);
  hand.messages.Wheel(0);
  Frame();
  EXPECT_TRUE(mouse_wheel_up());
  EXPECT_TRUE(mouse_wheel_down());
  Frame();
  EXPECT_FALSE(mouse_wheel_up());
  EXPECT_FALSE(mouse_wheel_down());
}

TEST_F(Mouse, OtherDevicesStayAtRest) {
  hand.messages.Button(mb_left, true);
  Frame();
  EXPECT_TRUE(device_mouse_check_button(0, mb_left));
  EXPECT_FALSE(device_mouse_check_button(1, mb_left));
  EXPECT_TRUE(device_mouse_check_button(9, mb_none));
  EXPECT_FALSE(device_mouse_check_button(10, mb_none));
  EXPECT_EQ(device_mouse_raw_x(11), 0);
  EXPECT_EQ(device_mouse_x(-1), 0);
}

TEST_F(Mouse, ClearingForgetsOneButtonOrAll) {
  hand.messages.Button(mb_left, true);
  hand.messages.Button(mb_middle, true);
  Frame();
  mouse_clear(mb_left);
  EXPECT_EQ(State(mb_left), "");
  EXPECT_EQ(State(mb_middle), "held pressed ");
  mouse_clear(mb_any);
  EXPECT_EQ(State(mb_any), "");
  IO_SetMouseButton(mb_middle);
  IO_SetMouseButton(7);
  EXPECT_EQ(IO_GetMouseButton(), mb_middle);
}

TEST_F(Mouse, APointerTouchesWhileTheLeftButtonIsDown) {
  hand.messages.Mouse(3, 4);
  hand.messages.Button(mb_left, true);
  Frame();
  EXPECT_EQ(Input().pointers[0].state, 0x80000003u);
  EXPECT_EQ(Input().pointers[0].x, 3);
  hand.messages.Button(mb_left, false);
  Frame();
  EXPECT_EQ(Input().pointers[0].state, 0u);
}

TEST_F(Mouse, VirtualKeysActWhileTheyAreTouched) {
  const int32_t slot = virtual_key_add(10, 10, 20, 20, vk_space);
  ASSERT_EQ(slot, 0);
  hand.messages.Mouse(15, 15);
  hand.messages.Button(mb_left, true);
  Frame();
  EXPECT_TRUE(keyboard_check_pressed(vk_space));
  EXPECT_TRUE(keyboard_check(vk_space));
  Frame();
  EXPECT_FALSE(keyboard_check_pressed(vk_space));
  EXPECT_TRUE(keyboard_check(vk_space));
  hand.messages.Button(mb_left, false);
  Frame();
  EXPECT_TRUE(keyboard_check_released(vk_space));
  EXPECT_FALSE(keyboard_check(vk_space));
  virtual_key_delete(slot);
  hand.messages.Button(mb_left, true);
  Frame();
  EXPECT_FALSE(keyboard_check(vk_space));
  for (int more = 0; more < 128; ++more) EXPECT_EQ(virtual_key_add(0, 0, 1, 1, vk_up), more);
  EXPECT_EQ(virtual_key_add(0, 0, 1, 1, vk_up), -1);
}

// A room ends while a finger rests on a key: the next room sees it go down.
TEST_F(Mouse, AKeyThatIsTouchedOverARoomChangeIsPressedAnew) {
  virtual_key_add(10, 10, 20, 20, vk_space);
  hand.messages.Mouse(15, 15);
  hand.messages.Button(mb_left, true);
  Frame();
  Frame();
  EXPECT_FALSE(keyboard_check_pressed(vk_space));
  VirtualKeys_ForgetTouches();
  Frame();
  EXPECT_TRUE(keyboard_check_pressed(vk_space));
}

TEST(MouseInRoom, FollowsBarsViewsAndAngles) {
  CRoom room;
  room.width = 1000;
  room.height = 500;
  DisplayGeometry g;
  g.windowWidth = 800;
  g.windowHeight = 500;
  g.top = 25; // bars above and below: 800 by 450
  g.displayWidth = 400;
  g.displayHeight = 225;
  // No view: the room fills the game's rectangle.
  EXPECT_EQ(IO_WindowToRoom(400, 250, g, &room).x, 500);
  EXPECT_EQ(IO_WindowToRoom(400, 250, g, &room).y, 250);
  EXPECT_EQ(IO_WindowToRoom(401, 0, g, &room).y, -27); // truncated, and outside is outside
  EXPECT_EQ(IO_WindowToRoom(7, 8, g, nullptr).x, 7);

  room.viewsEnabled = true;
  ViewSlot& low = room.views[0];
  low.visible = true;
  low.xview = 100, low.yview = 50, low.wview = 400, low.hview = 225;
  low.wport = 400, low.hport = 225;
  EXPECT_EQ(IO_WindowToRoom(400, 250, g, &room).x, 300);
  EXPECT_EQ(IO_WindowToRoom(400, 250, g, &room).y, 162); // 162.5 goes to the even one
  // A higher view in a corner comes first where its port holds the point.
  ViewSlot& high = room.views[3];
  high.visible = true;
  high.xview = 900, high.yview = 0, high.wview = 50, high.hview = 50;
  high.xport = 300, high.yport = 0, high.wport = 100, high.hport = 100;
  EXPECT_EQ(IO_WindowToRoom(700, 125, g, &room).x, 925);
  EXPECT_EQ(IO_WindowToRoom(700, 125, g, &room).y, 25);
  EXPECT_EQ(IO_WindowToRoom(400, 250, g, &room).x, 300);
  // Turned a quarter: the view's right is the room's up.
  high.angle = 90;
  const RoomPoint turned = IO_WindowToRoom(780, 125, g, &room);
  EXPECT_NEAR(turned.x, 925, 0.01);
  EXPECT_NEAR(turned.y, 45, 0.01);
  room.views[3].visible = false;
  room.views[0].visible = false;
  EXPECT_EQ(IO_WindowToRoom(400, 250, g, &room).x, 500); // views are on, none is visible
}

namespace {
class Records : public Mouse {
protected:
  std::string file = testing::TempDir() + "/vesk_input.rec";
  ~Records() override { std::filesystem::remove(file); }
  void Open(std::string CommandLine::*which) {
    IO_Reset();
    CommandLine_Reset();
    Options().*which = file;
    ASSERT_TRUE(IO_Init());
  }
};
} // namespace

TEST_F(Records, WhatWasRecordedPlaysBackFrameByFrame) {
  Open(&CommandLine::record);
  Frame();
  hand.messages.Key('A', true);
  hand.messages.Text("é");
  hand.messages.Mouse(100, -2);
  hand.messages.Button(mb_middle, true);
  hand.messages.Wheel(-120);
  Frame();
  hand.messages.Key('A', false);
  Frame();
  IO_Quit();
  EXPECT_EQ(std::filesystem::file_size(file), 3u * 3034u);

  Open(&CommandLine::playback);
  hand.messages.Key('B', true); // what the player does meanwhile counts for nothing
  Frame();
  EXPECT_FALSE(keyboard_check(vk_anykey));
  Frame();
  EXPECT_TRUE(keyboard_check_pressed('A'));
  EXPECT_EQ(IO_GetKeyboardString(), "aé");
  EXPECT_EQ(device_mouse_raw_x(0), 100);
  EXPECT_EQ(device_mouse_raw_y(0), -2);
  EXPECT_TRUE(mouse_check_button_pressed(mb_middle));
  EXPECT_TRUE(mouse_wheel_down());
  Frame();
  EXPECT_TRUE(keyboard_check_released('A'));
  EXPECT_TRUE(mouse_check_button(mb_middle));
  Frame(); // behind the end everything stays
  EXPECT_FALSE(keyboard_check_released('A'));
  EXPECT_TRUE(mouse_check_button(mb_middle));
  EXPECT_EQ(device_mouse_raw_x(0), 100);
}

TEST_F(Records, ADamagedRecordEndsOrPlaysButNeverHarms) {
  std::string bytes(3034 + 100, '\xFF'); // one whole frame without an end mark in its text, then a cut one
  ASSERT_TRUE(File_WriteAll(file, bytes));
  Open(&CommandLine::playback);
  Frame();
  EXPECT_TRUE(keyboard_check('A'));
  EXPECT_FALSE(IO_GetKeyboardString().empty());
  Frame();
  EXPECT_TRUE(keyboard_check('A'));
}

TEST_F(Records, AFileThatCannotBeOpenedIsRefused) {
  IO_Reset();
  Options().playback = "/nowhere/at/all.rec";
  EXPECT_FALSE(IO_Init());
}
