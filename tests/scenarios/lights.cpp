// Darkness and what lifts it, by the pixels of the picture; lava.
#include "Files/Object/Function_Instance.h"
#include "game/AssetNames.h"
#include "game/ObjectNames.h"
#include "game/level/catalogue.h"
#include "sim/Look.h"
#include "tests/scenarios/Stage.h"

#include <gtest/gtest.h>

namespace vesk {

namespace {

const Rows kField = {"................................................", "", "..S", "", std::string(48, '#')};

LevelSettings InTheDark() {
  LevelSettings level;
  level.darkness = 1;
  return level;
}

// What is there without darkness. Leaves the frame drawn that follows with it.
Pixel DaylightOf(Stage& stage, int x, int y) {
  stage.Set("obj_lightmanager", "visible", 0);
  stage.Draw();
  const Pixel day = stage.At(x, y);
  stage.Set("obj_lightmanager", "visible", 1);
  stage.Draw();
  return day;
}

// A dark section in pictures.
struct DarkStage : Stage {
  explicit DarkStage(const LevelSettings& level = InTheDark()) : Stage(kField, level, 1, true) {
    Settle();
    Step(30); // the fade
  }

  Pixel Daylight(int x, int y) { return vesk::DaylightOf(*this, x, y); }
  int ViewTop() const { return static_cast<int>(Global("view_yview[0]")); }
};

// The lights' pictures are not quite white in the middle.
void ExpectLit(const Pixel& seen, const Pixel& day, const Pixel& light, const std::string& what) {
  const auto near = [&](int seenChannel, int dayChannel, int lightChannel) {
    const double lit = dayChannel * lightChannel / 255.0;
    EXPECT_NEAR(seenChannel, lit, 1 + 0.02 * lit) << what;
  };
  near(seen.red, day.red, light.red);
  near(seen.green, day.green, light.green);
  near(seen.blue, day.blue, light.blue);
}

int Brightness(const Pixel& pixel) { return pixel.red + pixel.green + pixel.blue; }

} // namespace

TEST(Lights, EachThingShinesInItsColour) {
  DarkStage stage;
  constexpr int kX = 200, kY = 72; // of the cell 12,4
  const Pixel day = stage.Daylight(kX + 8, kY - 16);
  ASSERT_GT(Brightness(day), 100);
  ExpectLit(stage.At(kX + 8, kY - 16), day, {0, 0, 0}, "nothing");
  struct Row {
    const char* code;
    Pixel light;
  };
  for (const Row& row :
       {Row{"Torch Fire", {192, 120, 48}}, Row{"Torch Fire 2", {192, 120, 48}},
        Row{"Candle Fire", {192, 120, 48}}, Row{"Ghost Fire", {96, 48, 184}}, Row{"Lamp", {128, 116, 78}},
        Row{"Hanging Lamp", {128, 116, 78}}, Row{"Wall Lamp", {128, 116, 78}}, Row{"Red Lamp", {128, 32, 32}},
        Row{"Green Hanging Lamp", {32, 128, 32}}, Row{"Blue Wall Lamp", {32, 32, 128}},
        Row{"Lava", {64, 40, 16}}, Row{"Lava Left Steep Slope", {64, 40, 16}}}) {
    scr_gen_object_level("12,4", row.code);
    stage.Step(2);
    CInstance* thing = nullptr;
    for (const int object : {obj_torchfire, obj_ghostfire, obj_lamplight, obj_lava})
      for (CInstance* found : InstancesOf(object)) thing = found;
    ASSERT_NE(thing, nullptr) << row.code;
    EXPECT_EQ(RealOf(thing, "x"), 12 * 16) << row.code;
    // Unseen, it shines on: only what is behind it shows.
    WriteVariable(thing, {"visible", kNoIndex}, RValue(0.0));
    stage.Step();
    const int middleX = static_cast<int>((RealOf(thing, "bbox_left") + RealOf(thing, "bbox_right")) / 2);
    const int middleY =
        static_cast<int>((RealOf(thing, "bbox_top") + RealOf(thing, "bbox_bottom")) / 2) - stage.ViewTop();
    const Pixel behind = stage.Daylight(middleX, middleY);
    ExpectLit(stage.At(middleX, middleY), behind, row.light, row.code);
    EXPECT_EQ(Brightness(stage.At(middleX - 70, middleY)), 0) << row.code;
    EXPECT_EQ(Brightness(stage.At(middleX, middleY + 70)), 0) << row.code;
    instance_destroy(thing);
    stage.Step();
  }
}

TEST(Lights, StandInTheRoomWhenTheViewMoves) {
  LevelSettings level = InTheDark();
  level.objects = {{"30,8", "Torch Fire"}};
  DarkStage stage(level);
  const int middleX = 30 * 16 + 7, middleY = 8 * 16 + 7;
  stage.Set("obj_levelmanager", "barrier", 1);
  for (const double heroX : {420.0, 560.0}) {
    stage.Set("obj_tovin", "x", heroX);
    stage.Step(3);
    const int viewX = static_cast<int>(stage.Global("view_xview[0]"));
    ASSERT_GT(viewX, 0);
    const int x = middleX - viewX, y = middleY - stage.ViewTop();
    for (const int aside : {-20, 20}) {
      const Pixel day = stage.Daylight(x + aside, y);
      const Pixel seen = stage.At(x + aside, y);
      EXPECT_GT(seen.red, 0) << heroX;
      EXPECT_NEAR(seen.green * 192.0 * day.red, seen.red * 120.0 * day.green, 3 * 192 * 255) << heroX;
    }
    EXPECT_EQ(Brightness(stage.At(x - 66, y)), 0) << heroX;
    EXPECT_EQ(Brightness(stage.At(x + 66, y)), 0) << heroX;
  }
}

TEST(Lights, TwoAddUpAndOutsideThemTheSectionsLightIsLeft) {
  LevelSettings level;
  level.background = "Red Wall";
  level.objects = {{"12,5", "Blue Lamp"}, {"13,5", "Green Lamp"}};
  DarkStage stage(level);
  for (CInstance* lamp : stage.All("obj_lamplight")) WriteVariable(lamp, {"visible", kNoIndex}, RValue(0.0));
  stage.Step();
  const Pixel far = stage.Daylight(350, 40);
  ExpectLit(stage.At(350, 40), far, {111, 0, 15}, "the section's");
  const Pixel day = stage.Daylight(208, 87), both = stage.At(208, 87);
  EXPECT_GT(both.blue, day.blue * 100 / 255); // of either alone less would be left
  EXPECT_GT(both.green, day.green * 100 / 255);
}

TEST(Lights, AFlameLightsATorchThatIsInView) {
  LevelSettings level = InTheDark();
  level.objects = {{"12,5", "Lightable Torch Fire"}, {"44,5", "Lightable Torch Fire"}};
  DarkStage stage(level);
  stage.Draw(60);
  ASSERT_EQ(stage.Count("obj_torch_lightable"), 2u);
  EXPECT_EQ(stage.Real("obj_torch_lightable", "image_alpha"), 0);
  EXPECT_EQ(Brightness(stage.At(200, 88)), 0);

  instance_create(44 * 16, 5 * 16, obj_flamethrower_fire);
  const int flame = instance_create(12 * 16, 5 * 16, obj_flamethrower_fire);
  stage.Step();
  instance_destroy(flame);
  CInstance* torch = stage.All("obj_torch_lightable").front();
  ASSERT_EQ(RealOf(torch, "x"), 12 * 16);
  EXPECT_EQ(RealOf(torch, "ready"), 1);
  // Its light grows with it: at a fifth of the size it doesn't reach 30 pixels, at four fifths it does.
  stage.Draw(9);
  EXPECT_NEAR(RealOf(torch, "image_alpha"), 0.2, 0.001);
  EXPECT_EQ(Brightness(stage.At(230, 88)), 0);
  EXPECT_GT(stage.At(206, 88).red, 0);
  stage.Draw(30);
  EXPECT_NEAR(RealOf(torch, "image_alpha"), 0.8, 0.001);
  EXPECT_GT(Brightness(stage.At(230, 88)), 0);
  EXPECT_EQ(stage.Count("obj_torchfire"), 0u);
  stage.Step(10);
  ASSERT_EQ(stage.Count("obj_torchfire"), 1u);
  EXPECT_EQ(stage.Real("obj_torchfire", "x"), 12 * 16);
  ASSERT_EQ(stage.Count("obj_torch_lightable"), 1u);
  EXPECT_EQ(stage.Real("obj_torch_lightable", "ready"), 0) << "out of view";
}

TEST(Lights, LightningLiftsTheDarkInFourStepsAndLetsItFallInFour) {
  DarkStage stage;
  const Pixel day = stage.Daylight(300, 60), corner = stage.Daylight(383, 100);
  instance_create(0, 0, obj_lightningsheet);
  for (const int grey : {64, 128, 192, 255, 192, 128, 64, 0, 0}) {
    stage.Draw();
    ExpectLit(stage.At(300, 60), day, {grey, grey, grey}, std::to_string(grey));
    ExpectLit(stage.At(383, 100), corner, {grey, grey, grey}, std::to_string(grey));
  }
  EXPECT_EQ(stage.Count("obj_lightningsheet"), 0u);
}

// ---- the title ----

TEST(Lights, TheTitleHasFourScenesWithAnOvalOfLight) {
  struct Scene {
    double view, background, backgroundY;
    Pixel ambient;
  };
  const Scene scenes[] = {{0, bg_classic, -272, {32, 32, 64}},
                          {768, bg_snow, -192, {40, 48, 128}},
                          {1536, bg_desert, -400, {32, 32, 64}},
                          {2304, bg_castlewall, -272, {111, 0, 15}}};
  std::map<double, int> seen;
  for (int32_t seed = 1; seed <= 24 && seen.size() < 4; ++seed) {
    Stage stage(seed, true);
    ASSERT_EQ(stage.Game().Room("rm_title"), "");
    const double view = stage.Global("view_xview[0]");
    if (seen[view]++) continue;
    for (const Scene& scene : scenes) {
      if (scene.view != view) continue;
      EXPECT_EQ(stage.Global("background_index[0]"), scene.background);
      EXPECT_EQ(stage.Global("background_y[0]"), scene.backgroundY);
      const Pixel aside = DaylightOf(stage, 4, 60);
      ExpectLit(stage.At(4, 60), aside, scene.ambient, "beside the oval");
      const Pixel middle = DaylightOf(stage, 192, 112), lit = stage.At(192, 112);
      const auto atLeast = [](int ambient, int light) {
        return 255 - (255 - ambient) * (255 - 0.9 * light) / 255;
      };
      EXPECT_GE(lit.red + 2, middle.red * atLeast(scene.ambient.red, 128) / 255) << view;
      EXPECT_GE(lit.green + 2, middle.green * atLeast(scene.ambient.green, 116) / 255) << view;
      EXPECT_GE(lit.blue + 2, middle.blue * atLeast(scene.ambient.blue, 78) / 255) << view;
    }
    EXPECT_EQ(stage.Text("obj_torchfire", "sprite_index"), "spr_torchfire2");
    EXPECT_EQ(TextOf(stage.All("obj_torchfire").back(), "sprite_index"), "spr_candlefire");
    // The prompt comes and goes every seven steps.
    int changes = 0;
    double blink = stage.Real("obj_titlescreen", "blink");
    for (int step = 0; step < 70; ++step) {
      stage.Step();
      const double now = stage.Real("obj_titlescreen", "blink");
      changes += now != blink;
      blink = now;
    }
    EXPECT_EQ(changes, 10);
  }
  EXPECT_EQ(seen.size(), 4u);
}

// ---- lava ----

TEST(Lava, KillsAtOnceWhateverProtects) {
  LevelSettings level;
  level.objects = {{"6,12", "Lava"}, {"7,12", "Lava"}, {"8,12", "Lava"}};
  Stage stage({"..S", "", "", "######...###", "############"}, level);
  stage.Settle();
  stage.Set("obj_tovin", "invincible", -1); // as a star has it
  stage.Hold("R");
  for (int frame = 0; frame < 120 && stage.Count("obj_deadtovin") == 0; ++frame) stage.Step();
  EXPECT_EQ(stage.Count("obj_deadtovin"), 1u);
  EXPECT_EQ(stage.Count("obj_tovin"), 0u);
  EXPECT_EQ(stage.Global("health"), 0);
}

TEST(Lava, ASlopeKillsOnlyWhereItIsFilled) {
  for (const auto& [y, dies] : {std::pair(168, false), std::pair(176, true)}) {
    Stage stage({"..S", "", std::string(30, '#')});
    stage.Settle();
    // It rises to the right over 32 pixels; the hero is at its low end, above it or with the feet in it.
    instance_create(96, 12 * 16, obj_lava_r);
    stage.Set("obj_tovin", "x", 98);
    stage.Set("obj_tovin", "y", y);
    stage.Step();
    EXPECT_EQ(stage.Count("obj_deadtovin"), dies ? 1u : 0u) << y;
  }
}

TEST(Lava, ARunIsAsWideAsItsScaleInShapePictureAndLight) {
  DarkStage stage;
  const int run = instance_create(160, 60, obj_lava_stretch);
  WriteVariable(stage.All("obj_lava_stretch").front(), {"image_xscale", kNoIndex}, RValue(5.0));
  stage.Draw(2);
  EXPECT_EQ(stage.Real("obj_lava_stretch", "bbox_right"), 160 + 5 * 16 - 1);
  const int top = 60 - stage.ViewTop();
  const int middle = Brightness(stage.At(200, top + 30)), left = Brightness(stage.At(170, top + 30));
  EXPECT_GT(left, 0);
  EXPECT_GT(middle, left);
  EXPECT_GT(Brightness(stage.At(160 + 5 * 16 + 34, top + 8)), 0); // lit from the last cell alone
  EXPECT_EQ(Brightness(stage.At(160 + 4 * 16 + 8 + 66, top + 8)), 0);
  EXPECT_EQ(Brightness(stage.At(160 + 8 - 66, top + 8)), 0);
  stage.Set("obj_lightmanager", "visible", 0);
  stage.Draw();
  for (int cell = 0; cell < 4; ++cell)
    for (const int x : {1, 7, 12})
      for (const int y : {top + 1, top + 8, top + 14}) {
        const Pixel here = stage.At(160 + 16 * cell + x, y), next = stage.At(160 + 16 * cell + 16 + x, y);
        EXPECT_EQ(Brightness(here), Brightness(next)) << cell;
      }
  EXPECT_TRUE(instance_exists(run));
}

} // namespace vesk
