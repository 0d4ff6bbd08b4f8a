// What modifiers do to the things on their cells when a section starts.
#include "sim/Look.h"
#include "tests/scenarios/Stage.h"

#include "game/AssetNames.h"
#include "game/ObjectNames.h"

#include <gtest/gtest.h>

namespace vesk {

namespace {

const Rows kGround = {"....................................", "....................................",
                      ".S..................................", "....................................",
                      "####################################"};
// The drawing is filled up with air above, so row 4 of it is the last of the section.
std::string At(int cx, int above) {
  return std::to_string(cx) + "," + std::to_string(static_cast<int>(Framed(kGround).size()) - 2 - above);
}

// A variable may not have been set at all.
bool Is(CInstance* instance, const char* variable, double value) {
  const RValue read = ReadVariable(instance, {variable, kNoIndex});
  return read.IsNumber() && ValueAsReal(read) == value;
}

} // namespace

TEST(Carriers, ContentsGoIntoWhatHoldsThem) {
  LevelSettings level;
  level.objects = {
      {At(6, 2), "Question Block"}, {At(9, 2), "Triple Block"},         {At(14, 2), "Brick"},
      {At(17, 2), "Flip Block"},    {At(20, 2), "Vesk Project Output"}, {At(24, 2), "Note Block"}};
  level.modifiers = {{At(6, 2), "Star"},         {At(9, 2), "Vesk"},    {At(10, 2), "Key"},
                     {At(11, 2), "Beanstalk"},   {At(14, 2), "Spring"}, {At(17, 2), "P-Switch"},
                     {At(24, 2), "Lamboz Shoe"}, {At(27, 1), "Star"}};
  Stage stage(kGround, level);
  stage.Step(5);
  for (CInstance* block : stage.All("obj_block")) {
    const double x = RealOf(block, "x");
    if (x == 6 * 16)
      EXPECT_EQ(RealOf(block, "sprout"), -21);
    else if (x == 14 * 16) {
      EXPECT_EQ(RealOf(block, "sprout"), -23);
      EXPECT_EQ(TextOf(block, "sprite_index"), "spr_brick"); // a block that looks like a brick
    } else {
      EXPECT_EQ(x, 17 * 16);
      EXPECT_EQ(RealOf(block, "sprout"), -25);
      EXPECT_EQ(TextOf(block, "sprite_index"), "spr_flipblock");
    }
  }
  EXPECT_EQ(stage.Count("obj_block"), 3u);
  EXPECT_EQ(stage.Count("obj_brick") + stage.Count("obj_flipblock"), 0u);
  EXPECT_EQ(stage.Real("obj_block_triple", "sprout[0]"), 3);
  EXPECT_EQ(stage.Real("obj_block_triple", "sprout[1]"), -22);
  EXPECT_EQ(stage.Real("obj_block_triple", "sprout[2]"), -28);
  EXPECT_EQ(stage.Real("obj_noteblock", "sprout"), -17);
  EXPECT_EQ(stage.Count("obj_cc_modifier"), 1u); // the one that nothing took stays
}

TEST(Carriers, TextsAndGunsThatNothingTakesEnd) {
  LevelSettings level;
  level.modifiers = {{At(6, 2), "TEXT:nobody"}, {At(9, 2), "Gun"}, {At(12, 2), "DESTINATION:Here"}};
  Stage stage(kGround, level);
  stage.Step(10);
  EXPECT_EQ(stage.Count("obj_cc_text") + stage.Count("obj_cc_gun"), 0u);
  EXPECT_EQ(stage.Text("obj_cc_dest", "cc_text"), "Here");
}

TEST(Carriers, NumbersAndWordsOfTexts) {
  LevelSettings level;
  level.objects = {{At(6, 2), "Message Block"},   {At(9, 2), "Code Input Block"},
                   {At(12, 2), "Timed Platform"}, {At(18, 2), "Security Sensor"},
                   {At(23, 2), "Moving Rope"},    {At(27, 2), "Code Input Block"}};
  level.markers = {{At(30, 2), "Speed"}};
  level.modifiers = {{At(6, 2), "TEXT:Well, hello: 3"},
                     {At(9, 2), "TEXT:7"},
                     {At(12, 2), "TEXT:12 s"},
                     {At(18, 2), "TEXT:90,45"},
                     {At(23, 2), "TEXT:5"},
                     {At(27, 2), "TEXT:none"},
                     {At(30, 2), "TEXT:4"}};
  Stage stage(kGround, level);
  stage.Step(5);
  EXPECT_EQ(stage.Text("obj_messageblock", "varmsg"), "Well, hello: 3"); // whole, commas included
  for (CInstance* block : stage.All("obj_block_code"))
    if (RealOf(block, "x") == 9 * 16)
      EXPECT_EQ(RealOf(block, "digit"), 7);
    else
      EXPECT_FALSE(Is(block, "digit", 7));
  EXPECT_EQ(stage.Real("obj_platformtimed", "time"), 12);
  EXPECT_EQ(stage.Real("obj_movingrope", "ropelength"), 5);
  EXPECT_EQ(stage.Real("obj_speedmarker", "setspeed"), 4);
  EXPECT_EQ(stage.Real("obj_security_node", "minang"), 45); // the smaller, whichever came first
  EXPECT_EQ(stage.Real("obj_security_node", "maxang"), 90);
  EXPECT_EQ(stage.Count("obj_cc_text"), 0u);
}

TEST(Carriers, DoorsLeadToASectionOrToAMarker) {
  LevelSettings level;
  level.markers = {{At(6, 2), "Door"}, {At(12, 2), "Locked Door"}, {At(18, 2), "Door"}};
  level.modifiers = {{At(6, 2), "TEXT:Main,Entry"},
                     {At(12, 1), "TEXT:Entry"},
                     {At(18, 2), "TEXT:Nowhere"},
                     {At(24, 1), "DESTINATION:Entry"}};
  Stage stage(kGround, level);
  stage.Step(5);
  EXPECT_EQ(stage.Text("obj_warproom", "my_section"), "Main");
  EXPECT_EQ(stage.Text("obj_warproom", "my_dest"), "Entry");
  ASSERT_EQ(stage.Count("obj_postchange"), 2u);
  for (CInstance* point : stage.All("obj_postchange"))
    if (RealOf(point, "x") == 12 * 16)
      EXPECT_EQ(RealOf(point, "postx"), 24 * 16);
    else
      EXPECT_FALSE(Is(point, "postx", 24 * 16)); // an unknown name changes nothing
}

TEST(Carriers, GunsGoToSoldiers) {
  LevelSettings level;
  level.objects = {{At(6, 2), "Clone"}, {At(14, 3), "Security Spawner"}};
  level.modifiers = {{At(6, 2), "Laser"}, {At(14, 3), "Flamethrower"}};
  Stage stage(kGround, level);
  stage.Step(5);
  EXPECT_EQ(stage.Real("obj_wartoss", "gun"), spr_laser);
  EXPECT_EQ(stage.Real("obj_security_spawner", "gun"), spr_flamethrower);
}

} // namespace vesk
