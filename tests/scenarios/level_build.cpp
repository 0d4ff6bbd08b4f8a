// What a section's data becomes in the room: collision, merging, scene, water, and where the hero arrives.
#include "game/level/level_build.h"
#include "Files/Code/Self.h"
#include "Files/Object/Object.h"
#include "game/Game.h"
#include "sim/Look.h"
#include "tests/scenarios/Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace vesk {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct Place {
  double x, y, xscale, yscale;
  bool operator==(const Place&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Place& p) {
    return out << "(" << p.x << "," << p.y << " scale " << p.xscale << "," << p.yscale << ")";
  }
};

// Instances of exactly that object.
std::vector<Place> Exactly(const Stage& stage, const std::string& object) {
  std::vector<Place> places;
  for (CInstance* it : stage.All(object))
    if (TextOf(it, "object_index") == object)
      places.push_back(
          {RealOf(it, "x"), RealOf(it, "y"), RealOf(it, "image_xscale"), RealOf(it, "image_yscale")});
  std::sort(places.begin(), places.end(),
            [](const Place& a, const Place& b) { return std::pair(a.x, a.y) < std::pair(b.x, b.y); });
  return places;
}

TEST(LevelBuild, EveryLetterMakesItsInstances) {
  // Far from another and not in the top row; the wide slopes take two cells.
  Rows rows(14, "");
  rows[13] = "..S";
  rows[4] = "#.=.|.%.G.H./..\\..K.L.M..N..O.P";
  Stage stage(rows);
  const double top = 4 * 16;
  const auto at = [&](char letter) { return 16.0 * static_cast<double>(rows[4].find(letter)); };
  const auto cell = [&](char letter) { return ElementsAre(Place{at(letter), top, 1, 1}); };
  EXPECT_THAT(
      Exactly(stage, "obj_solid"),
      UnorderedElementsAre(Place{at('#'), top, 1, 1}, Place{at('G'), top, 1, 1}, Place{at('H'), top, 1, 1}));
  EXPECT_THAT(Exactly(stage, "obj_hurtsolid"),
              ElementsAre(Place{at('G'), top - 16, 1, 1}, Place{at('H'), top, 1, 1}));
  EXPECT_THAT(Exactly(stage, "obj_solidtop"), cell('='));
  EXPECT_THAT(Exactly(stage, "obj_climb"), cell('|'));
  EXPECT_THAT(Exactly(stage, "obj_climb_net"), cell('%'));
  EXPECT_THAT(Exactly(stage, "obj_slope_r"), cell('/'));
  EXPECT_THAT(Exactly(stage, "obj_slope_l"), cell('\\'));
  EXPECT_THAT(Exactly(stage, "obj_slope_sr"), cell('K'));
  EXPECT_THAT(Exactly(stage, "obj_slope_sl"), cell('L'));
  EXPECT_THAT(Exactly(stage, "obj_islope_r"), cell('M'));
  EXPECT_THAT(Exactly(stage, "obj_islope_l"), cell('N'));
  EXPECT_THAT(Exactly(stage, "obj_islope_sr"), cell('O'));
  EXPECT_THAT(Exactly(stage, "obj_islope_sl"), cell('P'));
  EXPECT_EQ(CountTiles(9), 14);
  EXPECT_EQ(CountTiles(12), 0);
}

TEST(LevelBuild, TheWholeAtlasMakesWhatItsTableSays) {
  Stage stage(Rows{"..S"});
  std::map<std::string, int> made;
  const auto count = [&](std::initializer_list<const char*> families) {
    for (const char* family : families)
      for (CInstance* it : stage.All(family)) {
        ++made[TextOf(it, "object_index")];
        instance_destroy(Self(it));
      }
  };
  for (int ty = 0; ty < 40; ++ty)
    for (int tx = 0; tx < 40; ++tx) {
      scr_gen_collision(tx * 16, 64, tx, ty);
      count({"obj_solidtop", "obj_slopeparent", "obj_climb", "obj_swim", "obj_hurtsolid"});
    }
  // The letters of the table, counted.
  const std::map<std::string, int> wanted = {
      {"obj_solid", 563 + 2 + 2}, {"obj_solidtop", 80}, {"obj_climb", 5},    {"obj_climb_net", 37},
      {"obj_hurtsolid", 2 + 2},   {"obj_slope_r", 14},  {"obj_slope_l", 13}, {"obj_slope_sr", 16},
      {"obj_slope_sl", 16},       {"obj_islope_r", 8},  {"obj_islope_l", 8}, {"obj_islope_sr", 8},
      {"obj_islope_sl", 10},
  };
  EXPECT_EQ(made, wanted);

  // Where one letter more or less would shift all behind it: the first and last of their kinds, and outside.
  made.clear();
  struct Row {
    int tx, ty;
    const char* object;
  };
  for (const Row& row :
       {Row{38, 0, "obj_solid"}, Row{33, 39, "obj_solid"}, Row{8, 0, "obj_solidtop"},
        Row{35, 35, "obj_solidtop"}, Row{33, 7, "obj_climb"}, Row{21, 26, "obj_climb"},
        Row{36, 27, "obj_climb_net"}, Row{39, 34, "obj_climb_net"}, Row{5, 3, "obj_islope_sl"},
        Row{18, 31, "obj_islope_sl"}, Row{19, 29, "obj_slope_sl"}, Row{36, 26, "obj_islope_r"}}) {
    scr_gen_collision(160, 64, row.tx, row.ty);
    count({"obj_solid", "obj_solidtop", "obj_slopeparent", "obj_climb"});
    EXPECT_EQ(made, (std::map<std::string, int>{{row.object, 1}})) << row.tx << "," << row.ty;
    made.clear();
  }
  for (const auto& [tx, ty] : {std::pair(-1, -1), std::pair(0, 40), std::pair(5, 1000)})
    scr_gen_collision(160, 64, tx, ty);
  count({"obj_solid", "obj_solidtop", "obj_slopeparent", "obj_climb"});
  EXPECT_TRUE(made.empty());
}

TEST(LevelBuild, RunsMergeDownwardsAndSideways) {
  Rows rows(34, "");
  for (size_t row = 1; row <= 30; ++row) rows[row] = "#.";
  for (size_t row = 0; row <= 5; ++row) rows[row] += "#..";
  for (size_t row = 10; row <= 12; ++row) rows[row] += "##.";
  rows[10] += "======....==";
  rows[11] += "==========";
  rows[12][2] = '.';
  rows[20] += "......#";
  rows[21] += "......#";
  rows[22] += "......=";
  rows[23] += "......#";
  rows[33] = "..S";
  for (std::string& row : rows)
    if (row.size() < 2 && row != "..S") row = "..";
  Stage stage(rows);
  const auto solids = Exactly(stage, "obj_solid");
  EXPECT_TRUE(std::count(solids.begin(), solids.end(), Place{0, 16, 1, 30})) << "a column of 30 is one";
  EXPECT_THAT(Exactly(stage, "obj_stopblock"), testing::SizeIs(1)) << "of the top row, and alone";
  EXPECT_EQ(Exactly(stage, "obj_stopblock")[0].y, 0);
  size_t cells = 0, drawn = 0;
  for (const Place& place : solids) {
    EXPECT_EQ(place.xscale, 1);
    cells += static_cast<size_t>(place.yscale);
  }
  const Rows framed = Framed(rows);
  for (size_t row = 1; row < framed.size(); ++row)
    drawn += static_cast<size_t>(std::count(framed[row].begin(), framed[row].end(), '#'));
  EXPECT_EQ(cells, drawn) << "every cell stands in one run";
  size_t columns = 0;
  for (size_t row = 1; row < framed.size(); ++row)
    for (size_t column = 0; column < framed[row].size(); ++column)
      columns += framed[row][column] == '#' && (row == 1 || framed[row - 1][column] != '#') ? 1 : 0;
  EXPECT_EQ(solids.size(), columns) << "side by side they stay two";
  double tops = 0;
  for (const Place& place : Exactly(stage, "obj_solidtop")) {
    EXPECT_EQ(place.yscale, 1);
    tops += place.xscale;
  }
  EXPECT_EQ(tops, 6 + 2 + 10 + 1);
  EXPECT_THAT(Exactly(stage, "obj_solidtop"), testing::SizeIs(4));
}

TEST(LevelBuild, LabelsChooseBackgroundLightAndMusic) {
  struct Row {
    const char* label;
    int background;
    int light;
    bool animated;
  };
  const auto rgb = [](int r, int g, int b) { return r + g * 256 + b * 65536; };
  const Row table[] = {
      {"Wall", bg_classic, rgb(32, 32, 64), false},
      {"Red Wall", bg_castlewall, rgb(111, 0, 15), false},
      {"Clouds", bg_clouds_dark, rgb(32, 32, 64), false},
      {"Red Clouds", bg_clouds, rgb(111, 0, 15), false},
      {"Cave", bg_cave, rgb(64, 32, 32), false},
      {"Blue Cave", bg_cave_blue, rgb(32, 32, 64), false},
      {"Dungeon", bg_underground, rgb(32, 32, 64), false},
      {"Red Dungeon", bg_castle, rgb(111, 0, 15), false},
      {"Desert", bg_desert, rgb(32, 32, 64), false},
      {"Desert Bricks", bg_desertbrick, rgb(64, 32, 32), false},
      {"Crypt Bricks", bg_crypt, rgb(32, 64, 48), false},
      {"Snow", bg_snow, rgb(40, 48, 128), false},
      {"Cold Storage", bg_coldstorage, rgb(40, 48, 128), false},
      {"Mountain", bg_mountain, rgb(32, 32, 64), false},
      {"Factory", bg_factory, rgb(32, 32, 64), false},
      {"Metal", bg_metal, rgb(32, 32, 64), false},
      {"Ghost House", bg_ghosthouse, rgb(0, 35, 27), false},
      {"Ice", bg_ice_0, rgb(40, 48, 128), true},
      {"Forest", bg_leaves_0, rgb(32, 32, 64), true},
      {"Red Forest", bg_leaves_red_0, rgb(111, 0, 15), true},
      {"Pipes", bg_pipes, rgb(32, 32, 64), false},
      {"Storm", bg_stormy, rgb(32, 32, 64), false},
      {"Cabin", bg_cabin, rgb(32, 32, 64), false},
      {"Volcano", bg_volcano, rgb(32, 32, 64), false},
      {"Fort", bg_fort, rgb(32, 32, 64), false},
  };
  Stage stage(Rows{"..S"});
  for (const Row& row : table) {
    stage.Set("obj_lightmanager", "ambientlight", -7);
    EXPECT_EQ(scr_gen_background(row.label), row.background) << row.label;
    EXPECT_EQ(stage.Real("obj_lightmanager", "ambientlight"), row.light) << row.label;
    EXPECT_EQ(stage.Count("obj_bganimator"), row.animated ? 1u : 0u) << row.label;
    with(obj_bganimator, [](Self it) { instance_destroy(it); });
    stage.Step();
  }
  stage.Set("obj_lightmanager", "ambientlight", -7);
  EXPECT_EQ(scr_gen_background("Nowhere"), 0);
  EXPECT_EQ(stage.Real("obj_lightmanager", "ambientlight"), -7);

  const char* songs[] = {"Sick",  "Dubstep", "Cool",     "Techno", "Dark",     "Drop",
                         "Cave",  "Edge",    "Corrupt",  "Dirty",  "Hardcore", "WubWub",
                         "Frost", "Airship", "Dramatic", "Fort",   "Smithy"};
  for (size_t at = 0; at < std::size(songs); ++at)
    EXPECT_EQ(scr_gen_music(songs[at]), static_cast<double>(at + 1)) << songs[at];
  EXPECT_EQ(scr_gen_music("Horror"), 79);
  EXPECT_EQ(scr_gen_music("Silence"), 1);
}

TEST(LevelBuild, SettingsMakeTheScene) {
  const Rows rows = {"..S", "", std::string(40, '#')};
  {
    LevelSettings settings;
    settings.darkness = 1;
    settings.background = "Snow";
    settings.music = "Horror";
    Stage stage(rows, settings);
    EXPECT_EQ(stage.Real("obj_lightmanager", "ambientlight"), 0) << "darkness overrides the table";
    EXPECT_EQ(stage.Count("obj_suspense"), 1u);
    EXPECT_EQ(stage.Count("obj_stormmaker"), 0u);
    EXPECT_EQ(stage.Count("obj_watershader"), 0u);
  }
  for (const auto& [colour, sprite] :
       {std::pair("Red", "spr_watertop_r"), std::pair("Green", "spr_watertop_g"),
        std::pair("Blue", "spr_watertop"), std::pair("Mauve", "spr_watertop")}) {
    LevelSettings settings;
    settings.rain = 1;
    settings.water = 3;
    settings.waterColor = colour;
    Stage stage(rows, settings);
    EXPECT_EQ(stage.Count("obj_stormmaker"), 1u);
    EXPECT_EQ(stage.Text("obj_watershader", "sprite_index"), sprite) << colour;
    EXPECT_EQ(stage.Real("obj_watershader", "y"), (14 - 3) * 16 + 1);
    EXPECT_EQ(stage.Real("obj_watershader", "bbox_right"), 40 * 16 * 16 - 1);
  }
}

TEST(LevelBuild, SomeBackgroundsMoveOnEverySevenSteps) {
  for (const auto& [label, first, frames] :
       {std::tuple("Ice", 17, 6), std::tuple("Forest", 23, 3), std::tuple("Red Forest", 26, 3)}) {
    LevelSettings settings;
    settings.background = label;
    Stage stage({"..S", "", std::string(40, '#')}, settings);
    const auto shown = [&stage] { return static_cast<int>(stage.Global("background_index[0]")); };
    for (const int start = shown(); shown() == start;) stage.Step(); // to the first step of a frame
    for (int change = 0; change <= frames; ++change) {
      const int now = shown();
      ASSERT_GE(now, first) << label;
      ASSERT_LT(now, first + frames) << label;
      stage.Step(6);
      EXPECT_EQ(shown(), now) << label;
      stage.Step();
      EXPECT_EQ(shown(), (now - first + 1) % frames + first) << label;
    }
  }
}

// ---- where the hero comes to ----

TEST(Arrival, WithoutAStartTheHeroFallsInAtTheCorner) {
  Stage stage({"", std::string(30, '#')});
  EXPECT_EQ(stage.Real("obj_tovin", "xstart"), 8);
  EXPECT_EQ(stage.Real("obj_tovin", "ystart"), 0);
}

TEST(Arrival, TheRoomTakesTheSizeOfTheSectionAndIsBuiltOnce) {
  const Rows rows = {"..S", "", std::string(100, '#')};
  Stage stage(rows);
  EXPECT_EQ(stage.Global("room_width"), 1600);
  EXPECT_EQ(stage.Global("room_height"), 14 * 16);
  EXPECT_EQ(Exactly(stage, "obj_solid").size(), 100u);
  EXPECT_EQ(CountTiles(9), 100);
  EXPECT_EQ(stage.Count("obj_levelmanager"), 1u);
  EXPECT_EQ(stage.GlobalText("levelname"), "drawn");
  EXPECT_EQ(stage.Global("tovinstart"), 1);
}

void Restart(Stage& stage) {
  room_restart();
  stage.Step(30); // the fade
  for (int frame = 0; frame < 200 && stage.Count("obj_tovin") == 0; ++frame)
    stage.Step(); // the opening screen
}

TEST(Arrival, ACheckpointTakesTheHeroUpAgain) {
  LevelSettings settings;
  settings.objects = {{"20,11", "Checkpoint"}};
  Stage stage({"..S", "", std::string(60, '#')}, settings);
  stage.Settle();
  stage.Set("obj_levelmanager", "barrier", 1);
  ASSERT_EQ(stage.Count("obj_checkpoint"), 1u);
  const double post = stage.Real("obj_checkpoint", "x"), foot = stage.Real("obj_checkpoint", "y");
  EXPECT_EQ(stage.Global("checkpoint_x"), -4);
  stage.SetGlobal("health", 3);
  stage.Set("obj_tovin", "x", post + 8);
  stage.Step(3);
  EXPECT_EQ(stage.Global("checkpoint_x"), post + 8);
  EXPECT_EQ(stage.Global("checkpoint_y"), foot + 16);
  EXPECT_EQ(stage.GlobalText("checkpoint_section"), "Main");
  EXPECT_EQ(stage.Global("health"), 25);
  EXPECT_EQ(stage.Count("obj_spinthump"), 1u);

  stage.SetGlobal("tovinstart", 0); // as a death does
  Restart(stage);
  ASSERT_EQ(stage.Count("obj_tovin"), 1u);
  EXPECT_EQ(stage.Real("obj_tovin", "xstart"), post + 8);
  EXPECT_EQ(stage.Real("obj_tovin", "ystart"), foot + 16);
}

TEST(Arrival, AWarpLeadsToItsMarker) {
  for (const auto& [way, object, right] :
       {std::tuple(0, "obj_tovin", 8), std::tuple(1, "obj_warptovin", 16), std::tuple(2, "obj_jumpspawn", 8),
        std::tuple(3, "obj_vinespawn", 8)}) {
    LevelSettings settings;
    settings.modifiers = {{"25,10", "DESTINATION:There"}};
    Stage stage({"..S", "", std::string(60, '#')}, settings);
    stage.Settle();
    stage.SetGlobal("post_section", std::string("There"));
    stage.SetGlobal("postchange", way);
    room_restart();
    stage.Step();
    EXPECT_EQ(stage.Count(object), 1u) << way;
    EXPECT_EQ(stage.Real(object, "xstart"), 25 * 16 + right) << way;
    EXPECT_EQ(stage.Real(object, "ystart"), 10 * 16) << way;
    EXPECT_EQ(stage.Count("obj_tovin"), way == 0 ? 1u : 0u) << way;
    EXPECT_EQ(stage.GlobalText("post_section"), "");
  }
  Stage stage({"..S", "", std::string(60, '#')});
  stage.Settle();
  stage.SetGlobal("post_section", std::string("Nowhere"));
  stage.SetGlobal("postchange", 0);
  room_restart();
  stage.Step(20);
  EXPECT_EQ(stage.Count("obj_tovin"), 0u) << "a destination that no marker carries has no hero";
  EXPECT_EQ(stage.Game().FatalReport(), "");
}

TEST(Arrival, SectionsOfAnotherSizeAndBack) {
  Stage stage;
  const Rows wide = {"..S", "", std::string(80, '#')};
  Rows tall(40, "");
  tall[37] = "....S";
  tall[39] = std::string(30, '#');
  stage.WriteLevel("two", "{\"Main\":" + SectionText(wide) + ",\"Tower\":" + SectionText(tall) + "}");
  ASSERT_EQ(stage.Game().Play(stage.LevelFile("two"), "Main"), "");
  for (int round = 0; round < 2; ++round) {
    stage.SetGlobal("section", std::string("Tower"));
    Restart(stage);
    stage.Step(3);
    EXPECT_EQ(stage.Global("room_width"), 30 * 16);
    EXPECT_EQ(stage.Global("room_height"), 40 * 16);
    EXPECT_EQ(Exactly(stage, "obj_solid").size(), 30u);
    EXPECT_EQ(stage.Real("obj_tovin", "xstart"), 4 * 16 + 8);
    stage.SetGlobal("section", std::string("Main"));
    Restart(stage);
    stage.Step(3);
    EXPECT_EQ(stage.Global("room_width"), 80 * 16);
    EXPECT_EQ(Exactly(stage, "obj_solid").size(), 80u);
    EXPECT_EQ(CountTiles(9), 80);
  }
}

TEST(Arrival, TheViewFollowsWithADeadZoneAndParallax) {
  Stage stage({"..S", "", std::string(100, '#')});
  stage.Settle();
  EXPECT_EQ(stage.Global("view_xview[0]"), 0);
  stage.Hold("R");
  stage.Step(200);
  const double x = std::nearbyint(stage.Real("obj_tovin", "x")), view = stage.Global("view_xview[0]");
  EXPECT_NEAR(x - view, 384 - 184, 4); // at the right border of the dead zone, a step behind
  EXPECT_NEAR(stage.Global("background_x[0]"), view / 2, 2);
  stage.Step(400);
  EXPECT_EQ(stage.Global("view_xview[0]"), 1600 - 384);
}

} // namespace
} // namespace vesk
