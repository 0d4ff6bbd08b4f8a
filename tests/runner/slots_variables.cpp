#include "Files/Code/BuiltinVariables.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace vesk::test {
namespace {

class BuiltinVariableTable : public ::testing::Test {
protected:
  BuiltinVariableTable() {
    Game_Reset();
    BuiltinVariables_Reset();
    BuiltinVariables_Init();
    sprite = game.Sprite(16, 8, 4, 2, 3);
    object = game.Object("thing", {.sprite = sprite, .depth = 5});
    game.On(object, ev_other, ev_no_more_health, [](Self, Self) { Log("health"); });
    game.On(object, ev_other, ev_no_more_lives, [](Self, Self) { Log("lives"); });
    game.Start();
    it = Instance_Find(instance_create(10, 20, object));
  }
  ~BuiltinVariableTable() override {
    Game_Reset();
    BuiltinVariables_Reset();
  }
  RValue Get(const char* name, int32_t index = kNoIndex) {
    RValue out;
    EXPECT_TRUE(Variable_GetValue(it, BuiltinVariables_Find(name), index, out)) << name;
    return out;
  }
  double Number(const char* name, int32_t index = kNoIndex) { return ValueAsReal(Get(name, index)); }
  bool Set(const char* name, const RValue& value, int32_t index = kNoIndex) {
    return Variable_SetValue(it, BuiltinVariables_Find(name), index, value);
  }

  SmallGame game;
  int sprite = -1, object = -1;
  CInstance* it = nullptr;
};

TEST_F(BuiltinVariableTable, HasTheThreeGroupsInTheirOrder) {
  EXPECT_EQ(InstanceVariables().size(), 86u);
  EXPECT_EQ(GameRoomVariables().size(), 118u);
  EXPECT_EQ(SystemVariables().size(), 6u);
  EXPECT_EQ(BuiltinVariables_Count(), 210);
  EXPECT_EQ(BuiltinVariables_Find("x"), 0);
  EXPECT_EQ(BuiltinVariables_Find("layer"), 85);
  EXPECT_EQ(BuiltinVariables_Find("argument_relative"), 86);
  EXPECT_EQ(BuiltinVariables_Find("font_texture_page_size"), 203);
  EXPECT_EQ(BuiltinVariables_Find("browser_height"), 209);
  EXPECT_EQ(BuiltinVariables_Find("no_such_name"), -1);
  std::set<std::string> names;
  for (int32_t i = 0; i < 210; ++i) names.insert(BuiltinVariables_Name(i));
  EXPECT_EQ(names.size(), 210u);
  for (const char* name :
       {"id", "object_index", "bbox_left", "image_number", "path_index", "delta_time", "fps", "mouse_x",
        "room_first", "instance_count", "application_surface", "os_type", "phy_mass", "background_width",
        "view_current", "working_directory", "undefined", "argument_count"})
    EXPECT_FALSE(BuiltinVariables_CanWrite(BuiltinVariables_Find(name))) << name;
  for (const char* name : {"x", "alarm", "path_position", "phy_rotation", "room", "score", "view_camera",
                           "keyboard_lastchar", "error_last", "argument15", "cursor_sprite", "image_single"})
    EXPECT_TRUE(BuiltinVariables_CanWrite(BuiltinVariables_Find(name))) << name;
}

TEST_F(BuiltinVariableTable, BadIndicesMeanTheFirst) {
  EXPECT_TRUE(Set("alarm", RValue(30.5), 12));
  EXPECT_EQ(it->alarm[0], 30) << "ties to even";
  EXPECT_TRUE(Set("alarm", RValue(31.5), -1));
  EXPECT_EQ(Number("alarm", 0), 32);
  EXPECT_EQ(Number("alarm", 99), 32);
  EXPECT_TRUE(Set("alarm", RValue(7.0), 11));
  EXPECT_EQ(it->alarm[11], 7);
  EXPECT_TRUE(Set("view_xview", RValue(12.5), 8));
  EXPECT_EQ(view_xview[0], 12.5);
  EXPECT_TRUE(Set("background_y", RValue(4.0), -3));
  EXPECT_EQ(background_y[0], 4);
  Self self(it);
  self[alarm][12] = 5;
  EXPECT_EQ(self[alarm][-1], 5);
}

TEST_F(BuiltinVariableTable, SettersHaveTheirEffects) {
  const int32_t left = it->Bounds().left;
  EXPECT_TRUE(Set("x", RValue(110.0)));
  EXPECT_EQ(Number("bbox_left"), left + 100);
  EXPECT_TRUE(Set("hspeed", RValue(3.0)));
  EXPECT_TRUE(Set("vspeed", RValue(-4.0)));
  EXPECT_EQ(Number("speed"), 5);
  EXPECT_TRUE(Set("direction", RValue(180.0)));
  EXPECT_EQ(Number("hspeed"), -5);
  EXPECT_TRUE(Set("image_blend", RValue(0x112233)));
  EXPECT_EQ(it->imageBlend, 0x332211u);
  EXPECT_EQ(Number("image_blend"), 0x112233);
  EXPECT_TRUE(Set("visible", RValue(0.5)));
  EXPECT_FALSE(it->visible);
  EXPECT_TRUE(Set("solid", RValue(-2.0)));
  EXPECT_TRUE(it->solid);
  EXPECT_TRUE(Set("path_position", RValue(1.7)));
  EXPECT_EQ(Number("path_position"), 1);
  EXPECT_TRUE(Set("image_xscale", RValue(-2.0)));
  EXPECT_EQ(Number("sprite_width"), -32);
  EXPECT_EQ(Number("sprite_xoffset"), -4);
  EXPECT_EQ(Number("image_number"), 4);
  EXPECT_TRUE(Set("image_single", RValue(2.0)));
  EXPECT_EQ(Number("image_speed"), 0);
  EXPECT_EQ(Number("image_single"), 2);
  EXPECT_FALSE(Set("id", RValue(1.0)));
  EXPECT_EQ(Number("id"), it->id);
}

TEST_F(BuiltinVariableTable, HealthAndLivesRunTheirEventsOnTheWayDown) {
  health = 1;
  EXPECT_EQ(Events(), "");
  health = 0;
  EXPECT_EQ(Events(), "health");
  health = -5;
  EXPECT_EQ(Events(), "") << "it was not above 0";
  lives = 3;
  lives = 1;
  EXPECT_EQ(Events(), "");
  EXPECT_TRUE(Set("lives", RValue(0.5)));
  EXPECT_EQ(Events(), "lives");
  lives -= 1;
  EXPECT_EQ(Events(), "");
  score += 10;
  EXPECT_EQ(Number("score"), 10);
  RValue caption;
  Variable_GetValue(nullptr, BuiltinVariables_Find("caption_score"), kNoIndex, caption);
  EXPECT_EQ(caption.Text(), "Score: '");
  Variable_GetValue(nullptr, BuiltinVariables_Find("caption_health"), kNoIndex, caption);
  EXPECT_EQ(caption.Text(), "Health: ");
}

TEST_F(BuiltinVariableTable, TheRoomAnswersForItsVariables) {
  EXPECT_EQ(Number("room_width"), 640);
  EXPECT_EQ(room_speed, 60);
  const Report refused = ReportOf([] { room_speed = 0.4; });
  EXPECT_TRUE(refused.Says("Trying to set the room speed to a value <= 0."));
  EXPECT_FALSE(refused.fatal);
  EXPECT_EQ(room_speed, 60);
  room_speed = 29.6;
  EXPECT_EQ(CurrentRoom()->speed, 29) << "tested rounded, stored truncated";
  EXPECT_EQ(Number("instance_count"), 1);
  EXPECT_EQ(Number("instance_id", 0), it->id);
  EXPECT_EQ(Number("instance_id", 1), noone);
  EXPECT_EQ(Number("room"), 0);
  const Report unknown = ReportOf([] { room = 44; });
  EXPECT_TRUE(unknown.Says("Unexisting room number: 44"));
  EXPECT_TRUE(unknown.fatal);
  room = 0;
  EXPECT_EQ(Rooms().request, 0);
  Rooms().request = kNoRoomRequest;
  EXPECT_TRUE(Get("undefined").IsUndefined());
  EXPECT_EQ(Get("pointer_null").Kind(), kPtr);
  EXPECT_EQ(Number("event_type"), -1);
}

TEST_F(BuiltinVariableTable, WithoutAnInstanceOnlyTheGameAnswers) {
  RValue out("kept");
  EXPECT_FALSE(Variable_GetValue(nullptr, BuiltinVariables_Find("x"), kNoIndex, out));
  EXPECT_FALSE(Variable_SetValue(nullptr, BuiltinVariables_Find("x"), kNoIndex, RValue(1.0)));
  EXPECT_FALSE(Variable_GetValue(nullptr, 9999, kNoIndex, out));
  EXPECT_FALSE(Variable_GetValue(nullptr, -1, kNoIndex, out));
  EXPECT_EQ(out.Text(), "kept");
  EXPECT_TRUE(Variable_GetValue(nullptr, BuiltinVariables_Find("room_height"), kNoIndex, out));
  EXPECT_EQ(out.real, 480);
}

TEST_F(BuiltinVariableTable, SlotsThroughTheirIds) {
  RValue out("kept");
  EXPECT_TRUE(Variable_GetValue(it, 100005, kNoIndex, out));
  EXPECT_TRUE(out.IsUnset()) << "made by the read";
  EXPECT_NE(it->FindSlot(5), nullptr);
  EXPECT_TRUE(Variable_SetValue(it, 100005, 2, RValue(8.0)));
  EXPECT_TRUE(Variable_GetValue(it, 100005, 2, out));
  EXPECT_EQ(out.real, 8);
  EXPECT_TRUE(Variable_GetValue(it, 100005, 9, out));
  EXPECT_EQ(out.real, 0) << "out of range";

  ZqObjectBase none(0);
  const SlotPoolUse before = SlotPool();
  out = RValue("kept");
  EXPECT_FALSE(Variable_GetValue(&none, 100001, kNoIndex, out));
  EXPECT_FALSE(Variable_SetValue(&none, 100001, kNoIndex, RValue(1.0)));
  EXPECT_EQ(out.Text(), "kept");
  EXPECT_EQ(SlotPool().values, before.values);
}

TEST_F(BuiltinVariableTable, TheDescriptorsNamesGetTheirIdsInTwoRounds) {
  VariableEntry table[] = {{"ammo", 0}, {"coins", 1}, {"hp", 2}, {"x", -1}, {"view_xview", -1}};
  Variables_Intern(table, 3);
  EXPECT_EQ(table[3].id, 0);
  EXPECT_EQ(table[1].id, 1);
  EXPECT_EQ(Variable_SlotOf("hp"), 2);
  EXPECT_EQ(Variable_SlotOf("x"), -1);
  EXPECT_STREQ(Variable_NameOfSlot(1), "coins");
  Variables_Number(table);
  EXPECT_EQ(table[0].id, 100000);
  EXPECT_EQ(table[2].id, 100002);
  EXPECT_EQ(table[3].id, 0);
  EXPECT_EQ(table[4].id, BuiltinVariables_Find("view_xview"));
  VariableEntry both[] = {{"speed", 0}, {"hp", 1}};
  Variables_Number(both);
  EXPECT_EQ(both[0].id, BuiltinVariables_Find("speed")) << "a built-in wins";
  EXPECT_EQ(both[1].id, 100000);
}

TEST_F(BuiltinVariableTable, TheTableEndsAtFiveHundred) {
  const std::vector<VariableRow> many(300, VariableRow{"more", nullptr});
  BuiltinVariables_Add(many);
  EXPECT_EQ(BuiltinVariables_Count(), 500);
}

} // namespace
} // namespace vesk::test
