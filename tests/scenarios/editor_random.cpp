// A hand that clicks, drags and types at random: nothing is reported, and the level can be saved and loaded
// after it.
#include "tests/scenarios/EditorDesk.h"

#include <gtest/gtest.h>

#include <cctype>
#include <random>

namespace vesk {

namespace {

class RandomHand {
public:
  RandomHand(EditorDesk& desk, uint32_t seed) : m_desk(desk), m_chance(seed) {}

  void Act() {
    switch (Below(10)) {
    case 0:
    case 1: m_desk.Click(13 + 24 * Below(15) + 11, 18); break; // a tool
    case 2: m_desk.Click(229 + 24 * Below(6) + 11, 50); break; // a tab or the close button
    case 3: m_desk.Click(13 + 24 * Below(15) + 11, 63 + 24 * Below(4) + 11); break;
    case 4: m_desk.Drag(Below(384), Below(216), Below(384), Below(216), AnyButton()); break;
    case 5: m_desk.Click(Below(384), Below(216), AnyButton()); break;
    case 6: HoldSome(); break;
    case 7: m_desk.Type(std::string(1, static_cast<char>(' ' + Below(95)))); break;
    case 8: m_desk.Game().Wheel(Below(2) == 0); break;
    default: m_desk.Step(Below(20));
    }
  }

private:
  int Below(int limit) { return static_cast<int>(m_chance() % static_cast<uint32_t>(limit)); }
  Mouse AnyButton() { return static_cast<Mouse>(1 + Below(3)); }
  void HoldSome() {
    constexpr int kKeys[] = {kKeyShift, kKeyCtrl,  'C',        kKeyLeft,  kKeyUp,        kKeyRight,
                             kKeyDown,  kKeySpace, kKeyEscape, kKeyEnter, kKeyBackspace, 'X'};
    const int one = kKeys[Below(std::size(kKeys))], two = kKeys[Below(std::size(kKeys))];
    m_desk.Hold(one);
    m_desk.Hold(two);
    m_desk.Click(Below(384), 40 + Below(170), Below(2) == 0 ? Mouse::kLeft : Mouse::kRight);
    m_desk.Step(Below(40));
    m_desk.Release(one);
    m_desk.Release(two);
  }

  EditorDesk& m_desk;
  std::mt19937 m_chance;
};

} // namespace

TEST(EditorRandom, NothingThatAHandDoesIsReported) {
  size_t placed = 0;
  for (uint32_t seed = 1; seed <= 3; ++seed) {
    SCOPED_TRACE(seed);
    EditorDesk desk;
    desk.OpenNew("chaos");
    RandomHand hand(desk, seed);
    for (int action = 0; action < 1200 && desk.Game().FatalReport().empty(); ++action) {
      hand.Act();
      if (desk.RoomNow() == rm_mainmenu) desk.OpenNew("chaos again " + std::to_string(action));
      if (desk.RoomNow() == rm_template && action % 40 == 0) desk.Game().Room("rm_editor");
      ASSERT_TRUE(desk.Game().Running());
    }
    ASSERT_EQ(desk.Game().FatalReport(), "");
    if (desk.RoomNow() != rm_editor) desk.Game().Room("rm_editor");
    desk.Step(60);
    desk.Tap(kKeyEscape);
    desk.ClickButton("Save");
    const std::string name = desk.GlobalText("levelname");
    const std::string saved = desk.Read(name);
    ASSERT_NE(saved, "");
    const std::string section = desk.GlobalText("section");
    const Cells tiles = desk.Layer("TILES"), objects = desk.Layer("OBJECTS"),
                modifiers = desk.Layer("MODIFIERS");
    placed += tiles.size() + objects.size() + modifiers.size();
    ASSERT_EQ(desk.Game().Edit(desk.Directory() + "/Level/" + name + ".json", section), "");
    EXPECT_EQ(desk.Layer("TILES"), tiles);
    EXPECT_EQ(desk.Layer("OBJECTS"), objects);
    EXPECT_EQ(desk.Layer("MODIFIERS"), modifiers);
    EXPECT_EQ(desk.Count(obj_editor_object), objects.size());
    desk.Write(name, "");
    desk.ClickButton("Save");
    EXPECT_EQ(desk.Read(name), saved);
  }
  EXPECT_GT(placed, 0u); // the hand did something
}

// A level file with damage anywhere is refused or opens; it never takes the program down.
TEST(EditorRandom, DamagedFilesAreRefusedOrOpen) {
  const std::string whole =
      R"({"Main":{"HEIGHT":14,"WIDTH":24,"MUSIC":"Cool","BACKGROUND":"Ice","RAIN":1,"DARKNESS":1,"WATER_LEVEL":4,)"
      R"("WATER_COLOR":"Blue","TILES":{"0,12":"0,4","1,12":"0,4","5,5":"1,1"},"TILES_BG":{"2,2":"3,3"},)"
      R"("OBJECTS":{"1,10":"Durian","4,4":"Brick","9,3":"Lamp"},"MODIFIERS":{"4,4":"Star","6,6":"TEXT:Boss,In","7,7":)"
      R"("DESTINATION:In"},"MARKERS":{"6,6":"Door"}},"Boss":{"HEIGHT":14,"WIDTH":24,"MUSIC":"Cool","BACKGROUND":"Wall",)"
      R"("RAIN":0,"DARKNESS":0,"WATER_LEVEL":0,"WATER_COLOR":"Red","TILES":{},"TILES_BG":{},"OBJECTS":{},"MODIFIERS":{},)"
      R"("MARKERS":{}}})";
  EditorDesk desk;
  std::mt19937 chance(7);
  const auto below = [&](size_t limit) { return static_cast<size_t>(chance() % limit); };
  int opened = 0, refused = 0;
  for (int round = 0; round < 600; ++round) {
    std::string text = whole;
    for (size_t damage = 1 + below(2); damage > 0; --damage) {
      const size_t at = below(text.size());
      switch (below(9)) {
      case 0: text[at] = static_cast<char>(below(256)); break;
      case 1: text.erase(at, 1 + below(6)); break;
      case 2: text.insert(at, text.substr(below(text.size()), 1 + below(8))); break;
      case 3: text[at] = "0123456789-.,\"{}[]"[below(18)]; break;
      case 4:
      case 5:
      case 6:
      case 7: // within a number or a word
        if (std::isalnum(static_cast<unsigned char>(text[at]))) text[at] = "0123456789-,.xA"[below(15)];
        break;
      default: text.insert(at, std::string(1 + below(3), "9-e,\""[below(5)]));
      }
      if (text.empty()) text = " ";
    }
    desk.Write("damaged", text);
    const std::string file = desk.Directory() + "/Level/damaged.json";
    const std::string why = round % 2 == 0 ? desk.Game().Edit(file, "Main") : desk.Game().Play(file, "Main");
    ++(why.empty() ? opened : refused);
    desk.Step(round % 2 == 0 ? 3 : 20);
    ASSERT_EQ(desk.Game().FatalReport(), "") << text;
    ASSERT_TRUE(desk.Game().Running());
  }
  EXPECT_GT(opened, 50);
  EXPECT_GT(refused, 50);
}

} // namespace vesk
