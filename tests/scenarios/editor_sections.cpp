// Sections of a level: made, entered, deleted, and how many there may be.
#include "tests/scenarios/EditorDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vesk {

namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

const std::string kCreate = "?CREATE SECTION", kDelete = "?DELETE SECTION";

void Make(EditorDesk& desk, const std::string& name) {
  desk.Type(name);
  desk.ClickNotify(kCreate);
}

} // namespace

TEST(EditorSections, AreMadeEnteredAndDeleted) {
  EditorDesk desk;
  desk.OpenNew("Parts");
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(6, 6);
  desk.ClickButton("Sections");
  Make(desk, "Boss? Room"); // "?" can't be typed
  EXPECT_THAT(desk.Sections(), UnorderedElementsAre("Main", "Boss Room"));
  EXPECT_EQ(desk.GlobalText("section"), "Main"); // not entered yet
  EXPECT_EQ(desk.Text(obj_keyreader, "words"), "");
  desk.ClickNotify("Boss Room");
  desk.Step(40);
  EXPECT_EQ(desk.GlobalText("section"), "Boss Room");
  EXPECT_EQ(desk.RoomNow(), rm_editor);
  EXPECT_EQ(desk.Count(obj_editor_window), 0u);
  EXPECT_THAT(desk.Layer("OBJECTS"), IsEmpty());
  EXPECT_EQ(desk.Count(obj_editor_object), 0u);
  desk.Choose("Item", "", "Key");
  desk.ClickCell(7, 7);
  EXPECT_EQ(desk.Layer("OBJECTS"), (Cells{{"7,7", "Key"}}));
  desk.ClickButton("Sections");
  desk.ClickNotify("Main");
  desk.Step(40);
  EXPECT_EQ(desk.Layer("OBJECTS"), (Cells{{"6,6", "Coin"}}));
  EXPECT_EQ(desk.Count(obj_editor_object), 1u);
  desk.ClickButton("Sections");
  desk.ClickNotify("Boss Room");
  desk.Step(40);
  desk.ClickButton("Sections");
  desk.Type("Boss Room");
  desk.ClickNotify(kDelete); // the one on screen
  desk.Step(40);
  EXPECT_EQ(desk.GlobalText("section"), "Main");
  EXPECT_EQ(desk.Layer("OBJECTS"), (Cells{{"6,6", "Coin"}}));
  EXPECT_THAT(desk.Sections(), UnorderedElementsAre("Main"));
  desk.ClickButton("Save");
  EXPECT_THAT(desk.Read("Parts"), Not(testing::HasSubstr("Boss")));
}

TEST(EditorSections, RefusalsAreTold) {
  EditorDesk desk;
  desk.OpenNew("Parts");
  desk.ClickButton("Sections");
  const auto error = [&] { return desk.Text(obj_ewindow_section, "error"); };
  desk.ClickNotify(kCreate);
  EXPECT_EQ(error(), "Type something first!");
  Make(desk, "Main");
  EXPECT_EQ(error(), "Section already exists!");
  EXPECT_EQ(desk.Text(obj_keyreader, "words"), "");
  desk.Type("Main");
  desk.SoundsStarted();
  desk.ClickNotify(kDelete);
  EXPECT_EQ(error(), "Cannot delete Main!");
  EXPECT_THAT(desk.SoundsStarted(), Contains("snd_wrong"));
  desk.Type("Nowhere");
  desk.ClickNotify(kDelete);
  EXPECT_EQ(error(), "Section does not exist!");
  for (int i = 0; i < 60; ++i) desk.Game().Type('m');
  const std::string longest = desk.Text(obj_keyreader, "words");
  EXPECT_LT(longest.size(), 40u);
  desk.ClickNotify(kCreate);
  EXPECT_THAT(desk.Sections(), UnorderedElementsAre("Main", longest));
}

TEST(EditorSections, SeventyFiveAreTheMost) {
  EditorDesk desk;
  desk.OpenNew("Many");
  desk.ClickButton("Sections");
  for (int i = 1; i < 75; ++i) Make(desk, "s" + std::to_string(i));
  EXPECT_EQ(desk.Sections().size(), 75u);
  EXPECT_EQ(desk.Text(obj_ewindow_section, "error"), "");
  Make(desk, "one too many");
  EXPECT_EQ(desk.Text(obj_ewindow_section, "error"), "Too many sections!");
  EXPECT_EQ(desk.Sections().size(), 75u);
  desk.Type("s40");
  desk.ClickNotify(kDelete);
  Make(desk, "again");
  EXPECT_EQ(desk.Sections().size(), 75u);
  desk.ClickNotify("s74");
  desk.Step(40);
  EXPECT_EQ(desk.GlobalText("section"), "s74");
}

} // namespace vesk
