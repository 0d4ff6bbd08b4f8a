// A game that is saved, changed and loaded is what it was; a bad file changes nothing.
#include "Files/Run/SavedGame.h"

#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Self.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Function/Function_Math.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Room/Function_Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_Game.h"
#include "Files/Run/WorldState.h"
#include "Files/Support/Support_Data_Structures.h"
#include "Files/Support/Support_Files.h"
#include "Files/Support/ValueText.h"
#include "Platform/Files.h"
#include "tests/runner/SmallGame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace vesk;

namespace {

constexpr Slot kState{0}, kThings{1};

class SavedGame : public testing::Test {
protected:
  SavedGame() {
    static VariableEntry table[] = {{"state", 0}, {"things", 1}};
    Variables_Intern(table, 2);
    GlobalObject_Create(2);
    char pattern[] = "/tmp/vesk_save_XXXXXX";
    Files_Locations().saveArea = std::string(mkdtemp(pattern)) + "/";
    Error().showBox = false;
    parent = game.Object("parent");
    child = game.Object("child", {.parent = parent, .depth = 3});
    game.On(child, ev_step, ev_step_normal, [](Self self, Self) {
      self[x] = self[x] + 1;
      self[kState] = self[kState] + vesk::random(10);
    });
    game.AddRoom("other");
    placed = game.Place(0, child, 5, 6);
    game.Start();
  }
  ~SavedGame() override {
    std::filesystem::remove_all(Files_Locations().saveArea);
    Files_ResetLocations();
    SavedGame_Reset();
    Error_Reset();
  }
  void Load() {
    game_load("slot");
    Run_RoomRequest();
  }
  std::string Text() {
    std::string text;
    EXPECT_TRUE(File_ReadAll(Files_Locations().saveArea + "slot", text));
    return text;
  }
  test::SmallGame game;
  int32_t parent = -1, child = -1, placed = -1;
};

} // namespace

TEST_F(SavedGame, ComesBackAsItWasAndGoesOnTheSameWay) {
  const int32_t late = instance_create(50, 60, child);
  const int32_t first = instance_create(1, 2, parent);
  const int32_t asleep = instance_create(3, 4, parent);
  instance_deactivate_object(asleep);
  CleanUpInstances();
  Instance_Find(first)->GetSlot(0) = RValue("a \"text\"\nin \\n two lines");
  for (const int32_t id : {late, asleep}) Instance_Find(id)->GetSlot(0) = RValue(0.1);
  Instance_Find(placed)->GetSlot(0) = RValue(0);
  Instance_Find(late)->alarm[3] = 12;
  const int32_t map = ds_map_create(), inner = ds_map_create(), gap = ds_list_create(),
                list = ds_list_create();
  ds_list_destroy(gap);
  ds_map_add(inner, RValue("deep"), RValue(7));
  ds_map_add_map(map, RValue("inner"), inner);
  ds_map_add(map, RValue(1.5), RValue("number"));
  GlobalObject()->GetSlot(0) = RValue(map);
  ArrayWrite(GlobalObject()->GetSlot(1), kRowStride + 2, RValue("cell"));
  game_save("slot");
  ASSERT_FALSE(Error().occurred) << Error().lastReport;

  const uint64_t saved = World_Checksum();
  std::vector<uint64_t> onwards;
  for (int step = 0; step < 5; ++step) game.Step(), onwards.push_back(World_Checksum());
  instance_destroy(late);
  instance_activate_all();
  GlobalObject()->GetSlot(0) = RValue(-4);
  ds_map_destroy(map);
  room_goto(1);
  game.Step();
  ASSERT_EQ(Rooms().currentIndex, 1);

  Load();
  ASSERT_FALSE(Error().occurred) << Error().lastReport;
  EXPECT_EQ(Rooms().currentIndex, 0);
  EXPECT_EQ(World_Checksum(), saved);
  for (const uint64_t checksum : onwards) {
    game.Step();
    EXPECT_EQ(World_Checksum(), checksum);
  }
  EXPECT_FALSE(instance_exists(asleep));
  EXPECT_EQ(instance_find(parent, 0), placed) << "the oldest comes first again, whatever its depth";
  EXPECT_EQ(instance_find(parent, 2), first);
  EXPECT_EQ(ValueAsReal(ds_map_find_value(inner, RValue("deep"))), 7);
  EXPECT_EQ(ds_list_create(), gap) << "free ids are free again";
  ds_map_destroy(map);
  EXPECT_FALSE(ds_exists(inner, kDsMap)) << "what a map owns goes with it";
  EXPECT_TRUE(ds_exists(list, kDsList));
  EXPECT_GT(instance_create(0, 0, parent), asleep);
}

TEST_F(SavedGame, FilesThatCannotBeTakenChangeNothing) {
  game_save("slot");
  const std::string good = Text();
  const uint64_t before = World_Checksum();
  const auto refused = [&](const std::string& text) {
    Error().occurred = false;
    EXPECT_TRUE(File_WriteAll(Files_Locations().saveArea + "slot", text));
    Load();
    EXPECT_TRUE(Error().occurred) << text;
    EXPECT_EQ(Error().fatalCount, 0);
    EXPECT_EQ(World_Checksum(), before);
    return Error().last;
  };
  const auto with = [&good](const std::string& what, const std::string& by) {
    std::string text = good;
    const size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), by);
  };
  using testing::HasSubstr;
  EXPECT_THAT(refused(""), HasSubstr("it is no saved game"));
  EXPECT_THAT(refused("vesk-save 1 77\n"), HasSubstr("another game saved it"));
  EXPECT_THAT(refused(with("room=0", "room=9")), HasSubstr("there is no room 9"));
  EXPECT_THAT(refused(with("object_index=1", "object_index=88")), HasSubstr("there is no object 88"));
  EXPECT_THAT(refused(with("room_width=640", "room_width=wide")), HasSubstr("bad value of \"room_width\""));
  EXPECT_THAT(refused(with("[random]\n", "[random]\nnonsense\n")), HasSubstr("says nothing known"));
  EXPECT_THAT(refused(with("\nindex=", "\nindex=9")), HasSubstr("bad value of \"index\""));
  EXPECT_THAT(refused(good + "[map 0]\nk=1\n"), HasSubstr("it is torn"));
  EXPECT_THAT(refused(good + "[grid 0]\nwidth=1000000\nheight=1000000\n"), HasSubstr("it is torn"));
  EXPECT_THAT(refused(good + "[weather]\n"), HasSubstr("[weather] is not known"));
  EXPECT_THAT(refused(good + "[instance " + std::to_string(placed) + "]\nobject_index=1\n"),
              HasSubstr("a bad id"));
  std::filesystem::remove(Files_Locations().saveArea + "slot");
  Error().occurred = false;
  Load();
  EXPECT_THAT(Error().last, HasSubstr("can't be read"));
  EXPECT_EQ(World_Checksum(), before);
}

TEST(ValueTexts, GiveTheSameValueBack) {
  RValue nested = ArrayCreate(2, RValue(0.1));
  ArrayWrite(nested, kRowStride * 2 + 1, RValue("a,b;c]\"\\n\n"));
  ArrayWrite(nested, 1, ArrayCreate(1, RValue(-1e300)));
  RValue whole;
  whole.SetNumber(kInt64, INT64_MIN);
  RValue flag(true);
  flag.kind = kBool;
  RValue unset;
  unset.kind = kUnset;
  for (const RValue& value : {RValue(1.0 / 3), RValue(-0.0), RValue(""), nested, whole, flag, unset, RValue(),
                              RValue(static_cast<const char*>(nullptr))}) {
    RValue back;
    const std::string text = ValueText_Write(value);
    EXPECT_TRUE(ValueText_Read(text, back)) << text;
    EXPECT_EQ(back.Kind(), value.Kind()) << text;
    EXPECT_EQ(ValueText_Write(back), text);
  }
  for (const char* text :
       {"", "[", "[1", "[1,2]]", "\"open", "\"x\\", "int32:", "1.5x", "bool:yes", "word"}) {
    RValue back(5);
    EXPECT_FALSE(ValueText_Read(text, back)) << text;
    EXPECT_TRUE(back.IsUndefined()) << text;
  }
}
