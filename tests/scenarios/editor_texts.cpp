// Every text that the editor and its windows show fits the picture that it is written on.
#include "tests/scenarios/DrawnFrame.h"
#include "tests/scenarios/EditorDesk.h"

#include "Files/Code/Value.h"
#include "Files/Object/Instance.h"
#include "sim/Look.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vesk {

namespace {

using ::testing::IsEmpty;

struct Window {
  const char* tool;
  std::vector<std::pair<const char*, const char*>> tabs; // what its button tells, and the title
};
const std::vector<Window> kWindows = {
    {"Control", {{"MAIN", "Control"}, {"NPC", "Control - NPC"}}},
    {"Tiles", {{"TILES", "Tiles"}, {"BG TILES", "Background Tiles"}}},
    {"Item",
     {{"MAIN", "Item"},
      {"PLATFORM", "Item - Platform"},
      {"GUN", "Item - Gun"},
      {"LIGHT", "Item - Light"},
      {"DECOR", "Item - Decor"}}},
    {"Block", {{"", "Block"}}},
    {"Enemy", {{"MAIN", "Enemy"}, {"CAVE", "Enemy - Cave"}, {"CASTLE", "Enemy - Castle"}}},
    {"Warp", {{"", "Warp"}}},
    {"Modifier",
     {{"ITEM", "Modifier - Item"},
      {"GUN", "Modifier - Gun"},
      {"ARROW", "Modifier - Arrow"},
      {"TEXT", "Modifier - Text"}}},
    {"Music", {{"", "Music"}}},
    {"Background", {{"", "Background"}}},
    {"Sections", {{"", "Type a section name!"}}},
    {"Settings", {{"", "Settings"}}},
    {"Quit", {{"", "Are you sure? All unsaved changes will be lost!"}}},
};

// Below every window and on no button, so that no tooltip shows.
DrawnFrame AtRest(EditorDesk& desk) {
  desk.MoveTo(200, 212);
  return LookAtFrame(desk);
}

void ExpectFit(EditorDesk& desk, const std::string& shown) {
  const DrawnFrame frame = AtRest(desk);
  EXPECT_TRUE(frame.Reads(shown)) << "\"" << shown << "\" isn't among:\n" << frame.Words();
  EXPECT_THAT(Misfits(frame), IsEmpty()) << shown;
}

// What was drawn last, on a backing of its own.
DrawnFrame Topmost(DrawnFrame frame) {
  size_t backing = frame.pictures.size();
  while (backing > 0 && !frame.pictures[backing - 1].name.empty()) --backing;
  std::erase_if(frame.lines, [&](const DrawnLine& line) { return line.over < backing; });
  return frame;
}

// The lower right corners, where a tooltip has the least room.
std::vector<std::array<double, 2>> ButtonPlaces() {
  std::vector<std::array<double, 2>> places;
  for (CInstance* button : InstancesOf(obj_button))
    places.push_back({ValueAsReal(ReadVariable(button, {"x", kNoIndex})) + 20,
                      ValueAsReal(ReadVariable(button, {"y", kNoIndex})) + 20});
  return places;
}

void ExpectTooltipsFit(EditorDesk& desk) {
  for (const auto& [x, y] : ButtonPlaces()) {
    desk.MoveTo(x, y);
    const std::string tooltip = desk.Text(obj_editor, "text");
    const DrawnFrame frame = Topmost(LookAtFrame(desk));
    EXPECT_TRUE(frame.Reads(tooltip)) << tooltip << " isn't among:\n" << frame.Words();
    EXPECT_THAT(Misfits(frame), IsEmpty()) << tooltip;
  }
}

} // namespace

TEST(EditorTexts, TitlesPromptsAndTooltipsOfAllWindowsAndTabs) {
  EditorDesk desk;
  desk.OpenNew("Texts");
  for (const Window& window : kWindows)
    for (const auto& [notify, title] : window.tabs) {
      SCOPED_TRACE(title);
      desk.ClickButton(window.tool);
      if (*notify) desk.ClickNotify(notify);
      ExpectFit(desk, title);
      ExpectTooltipsFit(desk);
      desk.Tap(kKeyEscape);
    }
}

// The look at the frame can fail: it finds what a longer title and a shifted button do.
TEST(EditorTexts, WhatDoesNotFitIsFound) {
  EditorDesk desk;
  desk.OpenNew("Texts");
  desk.ClickButton("Modifier");
  WriteVariable(InstancesOf(obj_ewindow_modifier).front(), {"text", kNoIndex},
                RValue("A title that is as long as the whole window and runs on and on and on"));
  WriteVariable(InstancesOf(obj_button).back(), {"x", kNoIndex}, RValue(20));
  const auto misfits = Misfits(AtRest(desk));
  EXPECT_THAT(misfits, testing::Contains(testing::HasSubstr("leaves the view")));
  EXPECT_THAT(misfits, testing::Contains(testing::HasSubstr("leaves spr_editor_window_top 4")));
  EXPECT_THAT(misfits, testing::Contains(testing::HasSubstr("meets spr_button 0")));
  EXPECT_THAT(misfits, testing::Contains(testing::HasSubstr("lies under spr_button 0")));
}

TEST(EditorTexts, SectionNamesAndRefusals) {
  EditorDesk desk;
  desk.OpenNew("Texts");
  desk.ClickButton("Sections");
  const auto refused = [&](const std::string& typed, const std::string& control, const std::string& words) {
    desk.Type(typed);
    desk.ClickNotify(control);
    ExpectFit(desk, words);
    desk.Step(200); // until the sound of the refusal is over
  };
  refused("", "?CREATE SECTION", "Type something first!");
  ExpectFit(desk, "Type a section name!");
  refused("Main", "?CREATE SECTION", "Section already exists!");
  refused("Main", "?DELETE SECTION", "Cannot delete Main!");
  refused("Nowhere", "?DELETE SECTION", "Section does not exist!");
  for (const char letter : {'m', 'i', 'W', 'x'}) {
    for (int i = 0; i < 80; ++i) desk.Game().Type(letter);
    ExpectFit(desk, desk.Text(obj_keyreader, "words"));
    desk.ClickNotify("?CREATE SECTION");
  }
  for (int i = 5; i < 75; ++i) {
    desk.Type("The long way " + std::to_string(i));
    desk.ClickNotify("?CREATE SECTION");
  }
  ASSERT_EQ(desk.Sections().size(), 75u);
  refused("One more", "?CREATE SECTION", "Too many sections!");
  ExpectTooltipsFit(desk); // down to the lowest row
}

TEST(EditorTexts, SettingsInAllTheirValues) {
  EditorDesk desk;
  desk.OpenNew("Texts");
  desk.ClickButton("Settings");
  for (const char* colour : {"Red", "Blue", "Green"}) {
    ExpectFit(desk, colour);
    desk.ClickNotify("COLOR_INC");
  }
  ExpectFit(desk, "0");
  for (int i = 0; i < 32; ++i) desk.ClickNotify("WATER_INC");
  ExpectFit(desk, "32");
  ExpectFit(desk, "Off");
  desk.ClickNotify("DARK");
  desk.ClickNotify("RAIN");
  ExpectFit(desk, "On");
}

// What was pressed with no box to write in is no text.
TEST(EditorTexts, AKeyOfTheMapIsNotWritten) {
  EditorDesk desk;
  desk.OpenNew("Texts");
  desk.Type("c"); // as for a diagonal fill
  desk.ClickButton("Sections");
  EXPECT_EQ(desk.Text(obj_keyreader, "words"), "");
  desk.Tap(kKeyEscape);
  desk.Type("c");
  desk.ClickButton("Modifier");
  desk.ClickNotify("TEXT");
  desk.Step(3);
  EXPECT_EQ(desk.Text(obj_keyreader, "words"), "");
}

TEST(EditorTexts, WordsOfTheTextPageAndUnderTheMouse) {
  EditorDesk desk;
  desk.OpenNew("Texts");
  const auto open = [&] {
    desk.ClickButton("Modifier");
    desk.ClickNotify("TEXT");
  };
  open();
  ExpectFit(desk, "Type some text!");
  desk.ClickNotify("TEXT:");
  ExpectFit(desk, "Type something first!");
  for (int i = 0; i < 400; ++i) desk.Game().Type(i % 9 == 8 ? ' ' : 'W');
  const DrawnFrame page = AtRest(desk);
  EXPECT_GE(page.lines.size(), 4u) << page.Words(); // the title and what was typed
  EXPECT_THAT(Misfits(page), IsEmpty());
  desk.ClickNotify("TEXT:");
  desk.Step(6);
  // At the four corners of what the mouse reaches, with the view between two cells.
  const std::pair<double, double> kCorners[] = {{9, 36}, {374, 36}, {9, 206}, {374, 206}};
  desk.Hold(kKeyRight);
  desk.Hold(kKeyDown);
  desk.Step(4);
  desk.Release(kKeyRight);
  desk.Release(kKeyDown);
  desk.Step();
  for (const auto& [x, y] : kCorners) desk.Click(x, y);
  desk.Tap(kKeyEscape);
  ASSERT_EQ(desk.Layer("MODIFIERS").size(), 4u);
  for (const auto& [x, y] : kCorners) {
    desk.MoveTo(x, y);
    const DrawnFrame frame = Topmost(LookAtFrame(desk));
    EXPECT_GE(frame.lines.size(), 3u) << frame.Words();
    EXPECT_THAT(Misfits(frame), IsEmpty()) << x << "," << y;
  }
}

} // namespace vesk
