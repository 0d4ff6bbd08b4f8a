// From the editor into a test and back, the pause menu, the pad, and a level made with the mouse alone.
#include "tests/scenarios/EditorDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vesk {

namespace {

using ::testing::Contains;

constexpr int kJump = 16; // what X and Shift give

// A floor, a start and nothing else, at the upper left of the section.
void DrawFloor(EditorDesk& desk) {
  desk.ChooseTiles(0, 4);
  desk.Drag(16, 11 * 16 + 8, 22 * 16 + 8, 11 * 16 + 8);
  desk.Choose("Control", "", "Durian");
  desk.ClickCell(4, 9);
}

void WaitForHero(EditorDesk& desk) {
  for (int i = 0; i < 400 && (desk.Count(obj_tovin) == 0 || desk.Count(obj_tovinstart) > 0); ++i) desk.Step();
  ASSERT_EQ(desk.Count(obj_tovin), 1u);
  desk.Step(20);
}

void StartTest(EditorDesk& desk) {
  desk.ClickButton("Play");
  WaitForHero(desk);
}

void Pause(EditorDesk& desk) {
  desk.Tap(kKeyEnter);
  desk.Step(2);
  ASSERT_EQ(desk.Count(obj_pausemenu), 1u);
}

} // namespace

// The editor shows what the player saw when he left.
TEST(EditorPlay, ATestComesBackWithItsViewAndTheUnsavedTree) {
  EditorDesk desk;
  desk.OpenNew("Try");
  DrawFloor(desk);
  desk.Hold(kKeyRight);
  desk.Step(7);
  desk.Release(kKeyRight);
  desk.Step();
  EXPECT_EQ(desk.ViewX(), 35);
  const Cells tiles = desk.Layer("TILES"), objects = desk.Layer("OBJECTS");
  desk.SoundsStarted();
  StartTest(desk);
  EXPECT_EQ(desk.RoomNow(), rm_template);
  EXPECT_EQ(desk.Global("gamemode"), 0);
  desk.Hold(kKeyRight);
  desk.Step(70);
  desk.Release(kKeyRight);
  desk.Step(40);
  const double x = desk.ViewX(), y = desk.ViewY();
  EXPECT_GT(x, 0);
  Pause(desk);
  desk.Tap(kKeyDown);
  desk.Tap(kKeyDown);
  desk.Tap(kKeyDown); // no wrap
  EXPECT_EQ(desk.Real(obj_pausemenu, "menu_choice"), 2);
  EXPECT_EQ(desk.Text(obj_pausemenu, "menu[2]"), "Return to Editor");
  desk.Tap(kJump);
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_editor);
  EXPECT_EQ(desk.ViewX(), x);
  EXPECT_EQ(desk.ViewY(), y);
  EXPECT_EQ(desk.Layer("TILES"), tiles);
  EXPECT_EQ(desk.Layer("OBJECTS"), objects);
  EXPECT_EQ(desk.Read("Try"), ""); // still not saved
  desk.Choose("Item", "", "Coin"); // and goes on
  const int cx = static_cast<int>(x) / 16 + 8, cy = static_cast<int>(y) / 16 + 6;
  desk.ClickCell(cx, cy);
  EXPECT_EQ(desk.Layer("OBJECTS").size(), 2u);
}

TEST(EditorPlay, ATestStartsInMainWhateverSectionIsShown) {
  EditorDesk desk;
  desk.OpenNew("Two");
  DrawFloor(desk);
  desk.ClickButton("Sections");
  desk.Type("Attic");
  desk.ClickNotify("?CREATE SECTION");
  desk.ClickNotify("Attic");
  desk.Step(40);
  desk.Choose("Item", "", "Key");
  desk.ClickCell(6, 6);
  ASSERT_EQ(desk.GlobalText("section"), "Attic");
  StartTest(desk);
  EXPECT_EQ(desk.GlobalText("section"), "Main");
  EXPECT_EQ(desk.Count(obj_key), 0u);
  Pause(desk);
  desk.Tap(kKeyDown);
  desk.Tap(kKeyDown);
  desk.Tap(kJump);
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_editor); // in the section that was played
  EXPECT_EQ(desk.GlobalText("section"), "Main");
  EXPECT_EQ(desk.Layer("OBJECTS"), (Cells{{"4,9", "Durian"}}));
  desk.ClickButton("Sections");
  desk.ClickNotify("Attic");
  desk.Step(40);
  EXPECT_EQ(desk.Layer("OBJECTS"), (Cells{{"6,6", "Key"}}));
}

TEST(EditorPlay, ThePauseMenuContinuesRestartsAndLeaves) {
  EditorDesk desk;
  desk.OpenNew("Pause");
  DrawFloor(desk);
  StartTest(desk);
  desk.Hold(kKeyRight);
  desk.Step(30);
  desk.Release(kKeyRight);
  desk.Step(60);
  const double place = desk.Real(obj_tovin, "x");
  EXPECT_GT(place, 4 * 16 + 20);
  desk.SoundsStarted();
  Pause(desk);
  EXPECT_THAT(desk.SoundsStarted(), Contains("snd_pause"));
  EXPECT_EQ(desk.Count(obj_tovin), 0u); // sleeps
  desk.Tap(kJump);                      // "Continue"
  desk.Step(3);
  EXPECT_EQ(desk.Count(obj_pausemenu), 0u);
  EXPECT_EQ(desk.Real(obj_tovin, "x"), place);
  EXPECT_EQ(desk.Real(obj_tovin, "vspeed"), 0) << "the key that confirmed must not jump";
  Pause(desk);
  desk.Tap(kKeyEnter); // the other way out
  desk.Step(3);
  EXPECT_EQ(desk.Count(obj_pausemenu), 0u);
  EXPECT_EQ(desk.Real(obj_tovin, "x"), place);
  Pause(desk);
  desk.Tap(kKeyDown);
  EXPECT_EQ(desk.Text(obj_pausemenu, "menu[1]"), "Restart Level");
  desk.Tap(kJump);
  WaitForHero(desk);
  EXPECT_NEAR(desk.Real(obj_tovin, "x"), 4 * 16 + 8, 1);
  EXPECT_EQ(desk.GlobalText("section"), "Main");
  Pause(desk);
  desk.Tap(kKeyDown);
  desk.Tap(kKeyUp);
  desk.Tap(kKeyUp);
  EXPECT_EQ(desk.Real(obj_pausemenu, "menu_choice"), 0);
  desk.Tap(kKeyEnter);
}

TEST(EditorPlay, FromTheMenuThePauseMenuLeadsBackThere) {
  EditorDesk desk;
  desk.OpenNew("Saved");
  DrawFloor(desk);
  desk.ClickButton("Save");
  desk.ClickButton("Quit");
  desk.ClickNotify("QUIT");
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_mainmenu);
  desk.ClickNotify("PLAY");
  WaitForHero(desk);
  EXPECT_EQ(desk.Global("gamemode"), 1);
  Pause(desk);
  desk.Tap(kKeyDown);
  desk.Tap(kKeyDown);
  EXPECT_EQ(desk.Text(obj_pausemenu, "menu[2]"), "Return to Main Menu");
  desk.Tap(kJump);
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_mainmenu);
}

TEST(EditorPlay, APadLeadsThroughLogosTitleMenuAndPlay) {
  EditorDesk desk;
  auto& devices = desk.Game().Devices();
  PadInfo info;
  info.name = "Pad";
  info.standard = true;
  StandardPadState& pad = devices.pads.Find(devices.pads.Attach(info))->standard;
  devices.messages.PadsChanged();
  desk.Step(5);
  constexpr uint16_t kStart = 0x10, kDown = 0x2, kA = 0x1000;
  const auto press = [&](uint16_t button) {
    pad.buttons = button;
    desk.Step(2);
    pad.buttons = 0;
    desk.Step(2);
  };
  desk.Hold(kKeyAlt); // it came after the start: Alt+G switches it on
  desk.Step();
  desk.Tap('G');
  desk.Release(kKeyAlt);
  desk.Step();
  EXPECT_EQ(desk.Text(obj_persistent, "message"), "Gamepad On");
  press(kStart);
  desk.Step(20);
  press(kStart);
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_title);
  press(kA); // face buttons are for play alone
  EXPECT_EQ(desk.RoomNow(), rm_title);
  press(kStart);
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_mainmenu);
  desk.OpenNew("Pad");
  DrawFloor(desk);
  StartTest(desk);
  const double place = desk.Real(obj_tovin, "x");
  pad.leftX = 20000;
  desk.Step(20);
  EXPECT_GT(desk.Real(obj_tovin, "x"), place + 5);
  pad.leftX = 0;
  desk.Step(60);
  pad.buttons = kA;
  desk.Step(3);
  EXPECT_LT(desk.Real(obj_tovin, "vspeed"), 0);
  pad.buttons = 0;
  desk.Step(90);
  press(kStart);
  ASSERT_EQ(desk.Count(obj_pausemenu), 1u);
  press(kDown);
  pad.leftY = -30000; // down
  desk.Step(2);
  pad.leftY = 0;
  desk.Step(2);
  EXPECT_EQ(desk.Real(obj_pausemenu, "menu_choice"), 2);
  press(kA);
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_editor);
}

TEST(EditorPlay, ALevelMadeWithTheMouseAloneIsPlayedToItsEnd) {
  EditorDesk desk;
  desk.OpenNew("Mouse alone"); // named; from here on only the mouse
  DrawFloor(desk);
  desk.Choose("Control", "", "Goal");
  desk.ClickCell(18, 9);
  desk.Choose("Item", "", "Coin");
  desk.Drag(8 * 16 + 8, 7 * 16 + 8, 12 * 16 + 8, 7 * 16 + 8);
  EXPECT_EQ(desk.Layer("OBJECTS").size(), 7u);
  desk.ClickButton("Background");
  desk.ClickNotify("Snow");
  desk.ClickButton("Save");
  StartTest(desk);
  desk.Hold(kKeyRight);
  for (int i = 0; i < 600 && desk.Count(obj_levelender) == 0; ++i) desk.Step();
  desk.Release(kKeyRight);
  ASSERT_EQ(desk.Count(obj_levelender), 1u) << "the goal was not reached";
  for (int i = 0; i < 1200 && desk.Real(obj_levelender, "ready") == 0; ++i) desk.Step();
  desk.Tap(kJump); // any button
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_editor);
  EXPECT_EQ(desk.Layer("OBJECTS").size(), 7u);
}

} // namespace vesk
