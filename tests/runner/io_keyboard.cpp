#include "Files/IO/IO.h"
#include "Files/IO/IO_Functions.h"
#include "Files/IO/IO_Window.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/CommandLine.h"
#include "Platform/HandDriven.h"

#include <gtest/gtest.h>

using namespace vesk;

namespace {

class Keyboard : public testing::Test {
protected:
  Keyboard() {
    Platform_Set(&hand.Interfaces());
    CommandLine_Reset();
    IO_Reset();
    Loop_Reset();
    IO_Init();
    Frame(); // the first transfer starts from the visible set
  }
  ~Keyboard() override {
    IO_Reset();
    Loop_Reset();
    Platform_Set(nullptr);
  }
  void Frame() {
    ProcessMessages();
    IO_StartFrame();
    IO_Update();
  }
  CHandDrivenPlatform hand;
};

std::string State(int32_t key) {
  std::string state;
  if (keyboard_check(key)) state += "held ";
  if (keyboard_check_pressed(key)) state += "pressed ";
  if (keyboard_check_released(key)) state += "released ";
  return state;
}

} // namespace

TEST_F(Keyboard, AKeyIsPressedForOneFrameHeldAndReleased) {
  hand.messages.Key(vk_left, true);
  EXPECT_EQ(State(vk_left), ""); // nothing shows before the transfer
  Frame();
  EXPECT_EQ(State(vk_left), "held pressed ");
  EXPECT_EQ(State(vk_anykey), "held pressed ");
  EXPECT_EQ(State(vk_nokey), "released "); // none was released
  Frame();
  EXPECT_EQ(State(vk_left), "held ");
  hand.messages.Key(vk_left, false);
  Frame();
  EXPECT_EQ(State(vk_left), "released ");
  EXPECT_EQ(State(vk_nokey), "held pressed ");
  Frame();
  EXPECT_EQ(State(vk_left), "");
  EXPECT_FALSE(keyboard_check(256));
  EXPECT_FALSE(keyboard_check(-1));
}

TEST_F(Keyboard, APressAndReleaseWithinAFrameReadsAsBoth) {
  hand.messages.Key('X', true);
  hand.messages.Key('X', false);
  Frame();
  EXPECT_EQ(State('X'), "pressed released ");
}

TEST_F(Keyboard, RepeatsKeepAKeyHeldButDoNotPressIt) {
  hand.messages.Key('X', true);
  Frame();
  hand.messages.Key('X', true);
  Frame();
  EXPECT_EQ(State('X'), "held ");
  EXPECT_EQ(IO_GetKeyboardString(), "xx"); // the text repeats
}

TEST_F(Keyboard, TheCurrentKeyFallsBackToThePreviousOne) {
  hand.messages.Key('A', true);
  hand.messages.Key('B', true);
  hand.messages.Key('B', false);
  Frame();
  EXPECT_EQ(IO_GetKeyboardKey(), 'A');
  EXPECT_EQ(IO_GetKeyboardLastKey(), 'B');
  hand.messages.Key('B', true);
  hand.messages.Key('A', false);
  Frame();
  EXPECT_EQ(IO_GetKeyboardKey(), 'B');
  hand.messages.Key('B', false);
  Frame();
  EXPECT_EQ(IO_GetKeyboardKey(), 0);
}

TEST_F(Keyboard, TheMapSendsKeysElsewhereOrNowhere) {
  keyboard_set_map('X', vk_shift);
  keyboard_set_map('Q', 300);
  keyboard_set_map(256, 1); // no such key
  EXPECT_EQ(keyboard_get_map('X'), 16);
  EXPECT_EQ(keyboard_get_map(500), 500);
  hand.messages.Key('X', true);
  hand.messages.Key('Q', true);
  Frame();
  EXPECT_EQ(State('X'), "");
  EXPECT_EQ(State(vk_shift), "held pressed ");
  EXPECT_EQ(State('Q'), "");
  io_clear(); // the map stays
  EXPECT_EQ(keyboard_get_map('X'), 16);
  keyboard_unset_map();
  EXPECT_EQ(keyboard_get_map('X'), 'X');
}

TEST_F(Keyboard, SidedKeysReportThemselvesToo) {
  hand.messages.Key(vk_rcontrol, true);
  hand.messages.Key(vk_lalt, true);
  hand.messages.Key(vk_rshift, true);
  Frame();
  for (const int32_t key : {vk_control, vk_rcontrol, vk_alt, vk_lalt, vk_shift, vk_rshift})
    EXPECT_EQ(State(key), "held pressed ") << key;
  for (const int32_t key : {vk_lcontrol, vk_ralt, vk_lshift}) EXPECT_EQ(State(key), "") << key;
  Frame();
  EXPECT_EQ(State(vk_rshift), "held ");
  hand.messages.Key(vk_rshift, false);
  Frame();
  EXPECT_EQ(State(vk_rshift), "released ");
  Frame();
  EXPECT_EQ(State(vk_rshift), "");
}

TEST_F(Keyboard, InjectedKeysComeThroughThePumpAndTheMap) {
  keyboard_set_map('X', vk_shift);
  keyboard_key_press('X');
  IO_Update();
  EXPECT_EQ(State(vk_shift), "");
  EXPECT_TRUE(keyboard_check_direct('X')); // the key itself, without the map
  Frame();
  EXPECT_EQ(State(vk_shift), "held pressed ");
  keyboard_key_release('X');
  Frame();
  EXPECT_EQ(State(vk_shift), "released ");
}

TEST_F(Keyboard, ClearingTakesAKeyOutOfBothSets) {
  hand.messages.Key('A', true);
  hand.messages.Key('B', true);
  Frame();
  hand.messages.Key('A', false); // waits in the queue: clearing pumps it first
  keyboard_clear('A');
  EXPECT_EQ(State('A'), "");
  EXPECT_EQ(State('B'), "held pressed ");
  keyboard_clear(700);
  Frame();
  EXPECT_EQ(State('A'), "");
  EXPECT_EQ(State('B'), "held ");
}

TEST_F(Keyboard, LosingOrGainingTheFocusClearsEverything) {
  for (const bool active : {false, true}) {
    hand.messages.Key('A', true);
    hand.messages.Button(mb_left, true);
    Frame();
    hand.messages.Activate(active);
    Frame();
    EXPECT_EQ(Loop().focused, active);
    EXPECT_EQ(State('A'), "");
    EXPECT_FALSE(mouse_check_button(mb_any));
    EXPECT_EQ(IO_GetKeyboardString(), "");
    EXPECT_EQ(IO_GetKeyboardLastChar(), "");
    EXPECT_EQ(hand.window.captured, active) << "nobody may tell of the button's release";
    hand.messages.Key('A', false);
    hand.messages.Button(mb_left, false);
    Frame();
    IO_Clear();
  }
}

TEST_F(Keyboard, TypedTextCollects) {
  hand.messages.Text("aé\x08\x08\x08");
  Frame();
  EXPECT_EQ(IO_GetKeyboardString(), "");
  EXPECT_EQ(IO_GetKeyboardLastChar(), "\x08"); // also in an empty text
  hand.messages.Text("x\r\U0001F600");
  Frame();
  EXPECT_EQ(IO_GetKeyboardString(), "x\U0001F600");
  IO_SetKeyboardString(RValue("äb"));
  EXPECT_EQ(IO_GetKeyboardString(), "äb");
  hand.messages.Text("c\x08\x08");
  Frame();
  EXPECT_EQ(IO_GetKeyboardString(), "ä");
  IO_SetKeyboardString(RValue(3.0));
  EXPECT_EQ(IO_GetKeyboardString(), "");
  IO_SetKeyboardString(RValue(std::string(3000, 'y')));
  EXPECT_EQ(IO_GetKeyboardString().size(), 1024u);
}

TEST_F(Keyboard, AFullTextStartsAnewBehindItsLastUnit) {
  hand.messages.Text(std::string(1022, 'a') + "b");
  Frame();
  EXPECT_EQ(IO_GetKeyboardString().size(), 1023u);
  hand.messages.Text("cd");
  Frame();
  EXPECT_EQ(IO_GetKeyboardString(), "bcd");
}

TEST_F(Keyboard, VariablesTakeOnlyWhatFits) {
  hand.messages.Key('A', true);
  Frame();
  IO_SetKeyboardKey(vk_space);
  IO_SetKeyboardKey(300);
  EXPECT_EQ(IO_GetKeyboardKey(), vk_space);
  Frame();
  EXPECT_EQ(IO_GetKeyboardKey(), 'A'); // the next transfer overwrites it
  IO_SetKeyboardLastKey(vk_up);
  Frame();
  EXPECT_EQ(IO_GetKeyboardLastKey(), vk_up);
  EXPECT_EQ(IO_GetKeyboardKey(), 0);
  IO_SetKeyboardLastChar(RValue("Q"));
  IO_SetKeyboardLastChar(RValue(""));
  IO_SetKeyboardLastChar(RValue(65.0));
  Frame();
  EXPECT_EQ(IO_GetKeyboardLastChar(), "Q");
}

TEST_F(Keyboard, NumLockIsSwitchedOnlyWhenItDiffers) {
  EXPECT_FALSE(keyboard_get_numlock());
  keyboard_set_numlock(false);
  Message none;
  EXPECT_FALSE(hand.messages.Next(none));
  keyboard_set_numlock(true);
  Frame();
  EXPECT_TRUE(keyboard_get_numlock());
}

TEST_F(Keyboard, AltF4ClosesTheWindow) {
  Loop().running = true;
  hand.messages.Key(vk_lalt, true);
  hand.messages.Key(vk_f4, true);
  Frame();
  EXPECT_FALSE(Loop().running);
  EXPECT_EQ(State(vk_f4), ""); // the window keeps it to itself
}

TEST(KeyNames, AreThoseOfTheMessages) {
  EXPECT_EQ(IO_KeyName(0), "<no key>");
  EXPECT_EQ(IO_KeyName(34), "<Page Down>");
  EXPECT_EQ(IO_KeyName('7'), "7-key");
  EXPECT_EQ(IO_KeyName('Z'), "Z-key");
  EXPECT_EQ(IO_KeyName(105), "Keypad-9");
  EXPECT_EQ(IO_KeyName(110), "Keypad .");
  EXPECT_EQ(IO_KeyName(112), "<unknown>");
}
