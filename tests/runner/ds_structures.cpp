// Maps, lists and their kin: order, ownership, ids, errors.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/Code.h"
#include "Files/Function/Function.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/Support_Data_Structures.h"
#include "Platform/Hash.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace vesk;

namespace {

class Structures : public testing::Test {
protected:
  void SetUp() override {
    Ds_Reset();
    Error_Reset();
    Error().showBox = false;
    Consoles().error = std::make_unique<DummyConsole>();
  }
  void TearDown() override {
    Ds_Reset();
    Console_Reset();
  }

  bool Reported(const char* text) {
    const bool found = Error().lastReport.find(text) != std::string::npos;
    Error().lastReport.clear();
    return found;
  }
  static RValue Call(const char* name, std::vector<RValue> args) {
    static const bool added = (Function_AddDs(), true);
    EXPECT_TRUE(added);
    int32_t id = -1;
    EXPECT_TRUE(Function_Find(name, id)) << name;
    RValue result;
    CallBuiltin(nullptr, nullptr, result, static_cast<int>(args.size()), id, args.data());
    return result;
  }
  static std::vector<std::string> Keys(int32_t map) {
    std::vector<std::string> keys;
    for (RValue key = ds_map_find_first(map); !key.IsUndefined(); key = ds_map_find_next(map, key))
      keys.push_back(ValueAsText(key));
    return keys;
  }
};

// Each kind written and read back into another one of its kind; broken texts change nothing.
TEST_F(Structures, TextFormsComeBackWhole) {
  RValue array;
  *ArrayElementForWrite(array, 1) = RValue("b");
  *ArrayElementForWrite(array, 32000) = RValue(7);
  const int32_t list = ds_list_create(), map = ds_map_create();
  for (const RValue& value : {RValue(1.5), RValue("two\n"), RValue(), array, RValue("")}) {
    ds_list_add(list, value);
    Call("ds_map_add", {map, "key " + std::to_string(ds_map_size(map)), value});
  }
  Call("ds_map_add", {map, 5, -3});
  const auto reread = [&](const char* kind, const RValue& id) {
    const std::string name = std::string("ds_") + kind;
    const RValue text = Call((name + "_write").c_str(), {id});
    EXPECT_FALSE(text.Text().empty());
    const RValue other =
        std::string(kind) == "grid" ? Call("ds_grid_create", {1, 1}) : Call((name + "_create").c_str(), {});
    Call((name + "_read").c_str(), {other, text});
    EXPECT_EQ(Call((name + "_write").c_str(), {other}).Text(), text.Text()) << kind;
    const std::string whole(text.Text());
    for (size_t cut = 0; cut < whole.size(); cut += 3) {
      Error().lastReport.clear();
      Call((name + "_read").c_str(), {other, whole.substr(0, cut)});
      EXPECT_FALSE(Error().lastReport.empty()) << kind << " cut at " << cut;
    }
    EXPECT_EQ(Call((name + "_write").c_str(), {other}).Text(), text.Text()) << kind << " after broken texts";
    return other;
  };
  const RValue copy = reread("list", list);
  EXPECT_EQ(Call("ds_list_find_value", {copy, 1}).Text(), "two\n");
  EXPECT_TRUE(Call("ds_list_find_value", {copy, 2}).IsUndefined());
  const RValue read = Call("ds_list_find_value", {copy, 3});
  EXPECT_EQ(ArrayElementForRead(read, 1)->Text(), "b");
  EXPECT_EQ(ArrayElementForRead(read, 32000)->real, 7);
  const RValue otherMap = reread("map", map);
  EXPECT_EQ(Call("ds_map_find_value", {otherMap, 5}).real, -3);
  EXPECT_EQ(Call("ds_map_find_first", {otherMap}).Text(), Call("ds_map_find_first", {map}).Text());
  const RValue stack = Call("ds_stack_create", {}), queue = Call("ds_queue_create", {}),
               priority = Call("ds_priority_create", {}), grid = Call("ds_grid_create", {3, 2});
  Call("ds_stack_push", {stack, 1, "x"});
  Call("ds_queue_enqueue", {queue, 1, "x"});
  Call("ds_priority_add", {priority, "x", 4});
  Call("ds_grid_set", {grid, 2, 1, "x"});
  EXPECT_EQ(Call("ds_stack_top", {reread("stack", stack)}).Text(), "x");
  EXPECT_EQ(Call("ds_queue_head", {reread("queue", queue)}).real, 1);
  EXPECT_EQ(Call("ds_priority_find_max", {reread("priority", priority)}).Text(), "x");
  EXPECT_EQ(Call("ds_grid_get", {reread("grid", grid), 2, 1}).Text(), "x");
  Error().lastReport.clear();
  Call("ds_stack_read", {stack, Call("ds_queue_write", {queue})});
  EXPECT_FALSE(Error().lastReport.empty()) << "a text of another kind";
}

TEST_F(Structures, GridsAmongThemselvesAndElementsInPlace) {
  const RValue grid = Call("ds_grid_create", {2, 3}), other = Call("ds_grid_create", {4, 4});
  const int rows[3][2] = {{3, 30}, {1, 10}, {2, 20}};
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 2; ++x) Call("ds_grid_set", {grid, x, y, rows[y][x]});
  Call("ds_grid_sort", {grid, 0, true});
  for (int y = 0; y < 3; ++y) EXPECT_EQ(Call("ds_grid_get", {grid, 1, y}).real, 10 * (y + 1));
  Call("ds_grid_set_grid_region", {other, grid, 0, 0, 1, 2, 3, 2}); // only its first column and two rows fit
  EXPECT_EQ(Call("ds_grid_get", {other, 3, 3}).real, 2);
  EXPECT_EQ(Call("ds_grid_get_sum", {other, 0, 0, 3, 3}).real, 3);
  Call("ds_grid_add_grid_region", {other, grid, 0, 0, 0, 0, 3, 3});
  EXPECT_EQ(Call("ds_grid_get", {other, 3, 3}).real, 3);
  Call("ds_grid_multiply_grid_region", {other, other, 3, 3, 3, 3, 3, 2});
  EXPECT_EQ(Call("ds_grid_get", {other, 3, 2}).real, 3);
  Call("ds_grid_shuffle", {grid});
  EXPECT_EQ(Call("ds_grid_get_sum", {grid, 0, 0, 1, 2}).real, 66);

  const int32_t list = ds_list_create(), map = ds_map_create();
  ds_list_add(list, 5);
  EXPECT_EQ(Call("ds_list_set_post", {list, 0, 6}).real, 5);
  EXPECT_EQ(Call("ds_list_set_pre", {list, 0, 7}).real, 7);
  EXPECT_EQ(ds_list_find_value(list, 0).real, 7);
  EXPECT_TRUE(Call("ds_map_set_post", {map, "a", 1}).IsUndefined());
  EXPECT_EQ(Call("ds_map_set_pre", {map, "a", 2}).real, 2);
  EXPECT_EQ(Call("ds_map_set_post", {map, "a", 3}).real, 2);
  Error().lastReport.clear();
  Call("ds_list_set", {list, 2000000000, 1});
  EXPECT_FALSE(Error().lastReport.empty());
  for (const char* name : {"ds_stack_pop", "ds_stack_top", "ds_queue_head", "ds_queue_dequeue",
                           "ds_priority_find_min", "ds_priority_delete_max"})
    EXPECT_EQ(Call(name, {99}).kind, static_cast<uint32_t>(kReal)) << name << " of a bad id is 0";
}

} // namespace

TEST_F(Structures, IdsAreReusedLowestFirstAndEachKindCountsAlone) {
  EXPECT_EQ(ds_map_create(), 0);
  EXPECT_EQ(ds_map_create(), 1);
  EXPECT_EQ(ds_map_create(), 2);
  EXPECT_EQ(ds_list_create(), 0);
  ds_map_destroy(2);
  ds_map_destroy(0);
  EXPECT_EQ(ds_map_create(), 0);
  EXPECT_EQ(ds_map_create(), 2);
  EXPECT_TRUE(ds_exists(0, ds_type_list));
  EXPECT_FALSE(ds_exists(0, ds_type_queue));
  EXPECT_FALSE(ds_exists(-1, ds_type_map));
  EXPECT_FALSE(ds_exists(0, 77));
  EXPECT_EQ(Error().lastReport, "");
}

TEST_F(Structures, BadIdsAreReportedAndGiveZero) {
  EXPECT_EQ(ds_map_size(5), 0);
  EXPECT_TRUE(Reported("Data structure with index does not exist."));
  EXPECT_FALSE(ds_map_add(5, "a", 1));
  EXPECT_TRUE(Reported("Data structure with index 5, does not exist"));
  const int32_t map = ds_map_create();
  EXPECT_FALSE(ds_map_add_map(map, "a", 9));
  EXPECT_TRUE(Reported("Invalid map index for value"));
  EXPECT_FALSE(ds_map_add_list(map, "a", 9));
  EXPECT_TRUE(Reported("Invalid list index for value"));
  EXPECT_EQ(ds_list_find_value(3, 0).real, 0);
  EXPECT_TRUE(Reported("Data structure with index does not exist."));
  EXPECT_TRUE(ds_map_find_value(map, "missing").IsUndefined());
  EXPECT_TRUE(ds_map_find_first(map).IsUndefined());
  EXPECT_TRUE(ds_map_find_next(map, "missing").IsUndefined());
  EXPECT_FALSE(Reported("Data structure"));
}

TEST_F(Structures, AddKeepsReplaceSetsAndKindsOfKeysDiffer) {
  const int32_t map = ds_map_create();
  EXPECT_TRUE(ds_map_add(map, "1", "text"));
  EXPECT_TRUE(ds_map_add(map, 1, "number"));
  EXPECT_FALSE(ds_map_add(map, "1", "other"));
  EXPECT_EQ(ds_map_find_value(map, "1").Text(), "text");
  EXPECT_EQ(ds_map_find_value(map, 1).Text(), "number");
  ds_map_replace(map, "1", "new");
  ds_map_replace(map, "2", "added");
  EXPECT_EQ(ds_map_find_value(map, "1").Text(), "new");
  EXPECT_EQ(ds_map_size(map), 3);
  ds_map_delete(map, 1);
  EXPECT_FALSE(ds_map_exists(map, 1));
  EXPECT_TRUE(ds_map_exists(map, "1"));
}

TEST_F(Structures, TheHashOfAKeyIsTheUnfinishedCrc) {
  EXPECT_EQ(CDS_Map::HashOf(RValue("")), 0xFFFFFFFFu);
  EXPECT_EQ(CDS_Map::HashOf(RValue("123456789")), ~0xCBF43926u); // the check value of this CRC, not inverted
  EXPECT_EQ(CDS_Map::HashOf(RValue()), 0u);
  RValue whole;
  whole.kind = kInt32;
  whole.int32 = 7;
  EXPECT_EQ(CDS_Map::HashOf(whole), CDS_Map::HashOf(RValue(7.0)));
}

// The order that 256 chains would give, walked by hand, against the map under random adding and deleting.
TEST_F(Structures, OrderIsThatOfTheChainsThroughGrowthAndDeletion) {
  std::mt19937 random(4);
  const int32_t map = ds_map_create();
  std::vector<std::vector<std::string>> chains(256);
  const auto chainOf = [&](const std::string& key) -> std::vector<std::string>& {
    return chains[Hash_Text(key) & 255];
  };
  for (int round = 0; round < 6000; ++round) {
    const std::string key = std::to_string(random() % 90) + "," + std::to_string(random() % 40);
    std::vector<std::string>& chain = chainOf(key);
    const auto found = std::find(chain.begin(), chain.end(), key);
    if (random() % 4 == 0) {
      ds_map_delete(map, key);
      if (found != chain.end()) chain.erase(found);
    } else {
      EXPECT_EQ(ds_map_add(map, key, round), found == chain.end());
      if (found == chain.end()) chain.push_back(key);
    }
  }
  std::vector<std::string> expected;
  for (const auto& chain : chains) expected.insert(expected.end(), chain.begin(), chain.end());
  ASSERT_GT(expected.size(), 1500u);
  EXPECT_EQ(Keys(map), expected);
  EXPECT_EQ(ds_map_size(map), static_cast<int32_t>(expected.size()));
  std::vector<std::string> backwards;
  for (RValue key = ds_map_find_last(map); !key.IsUndefined(); key = ds_map_find_previous(map, key))
    backwards.push_back(ValueAsText(key));
  std::reverse(backwards.begin(), backwards.end());
  EXPECT_EQ(backwards, expected);
}

TEST_F(Structures, AWalkOfALargeMapDoesNotTakeTheSquareOfItsSize) {
  const auto walk = [](int size) {
    const int32_t map = ds_map_create();
    for (int i = 0; i < size; ++i) ds_map_add(map, i, i);
    const auto start = std::chrono::steady_clock::now();
    int count = 0;
    for (RValue key = ds_map_find_first(map); !key.IsUndefined(); key = ds_map_find_next(map, key)) ++count;
    EXPECT_EQ(count, size);
    ds_map_destroy(map);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  // Their square would be a minute.
  EXPECT_LT(walk(320000), 10.0);
}

TEST_F(Structures, DestructionFollowsTheMarksAndNothingElse) {
  const int32_t root = ds_map_create();
  const int32_t owned = ds_map_create();
  const int32_t list = ds_list_create();
  const int32_t inList = ds_map_create();
  const int32_t plain = ds_map_create();
  ds_map_add_map(root, "owned", owned);
  ds_map_add_list(owned, "list", list);
  ds_list_add(list, inList);
  Call("ds_list_mark_as_map", {list, 0});
  ds_map_add(root, "plain", plain);
  EXPECT_EQ(ds_map_find_value(root, "owned").kind, kReal) << "ids come out without their mark";
  ds_map_replace(owned, "copy", ds_map_find_value(root, "owned"));
  ds_map_destroy(root);
  EXPECT_FALSE(ds_exists(owned, ds_type_map));
  EXPECT_FALSE(ds_exists(list, ds_type_list));
  EXPECT_FALSE(ds_exists(inList, ds_type_map));
  EXPECT_TRUE(ds_exists(plain, ds_type_map));

  const int32_t keeper = ds_map_create();
  ds_map_add_map(keeper, "plain", plain);
  ds_map_delete(keeper, "plain");
  EXPECT_TRUE(ds_exists(plain, ds_type_map)) << "deleting a key leaves the nested map alive";
  ds_map_add_map(keeper, "plain", plain);
  ds_map_replace(keeper, "plain", plain); // clears the mark
  ds_map_destroy(keeper);
  EXPECT_TRUE(ds_exists(plain, ds_type_map));
}

TEST_F(Structures, ListsAppendShuffleAndSort) {
  const int32_t list = ds_list_create();
  Random_Seed(11);
  const RandomState before = Random();
  ds_list_shuffle(list);
  ds_list_add(list, 0);
  ds_list_shuffle(list);
  EXPECT_EQ(Random().index, before.index) << "nothing to shuffle takes no chance";
  for (int i = 1; i < 40; ++i) ds_list_add(list, i);
  ds_list_shuffle(list);
  std::vector<int> values;
  for (int i = 0; i < ds_list_size(list); ++i)
    values.push_back(static_cast<int>(ds_list_find_value(list, i).real));
  std::vector<int> sorted = values;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_NE(values, sorted);
  for (int i = 0; i < 40; ++i) EXPECT_EQ(sorted[static_cast<size_t>(i)], i);
  Call("ds_list_sort", {list, true});
  EXPECT_EQ(ds_list_find_value(list, 39).real, 39);
  EXPECT_TRUE(ds_list_find_value(list, 40).IsUndefined());
  EXPECT_TRUE(ds_list_find_value(list, -1).IsUndefined());
  EXPECT_EQ(Call("ds_list_find_index", {list, 7.000000001}).real, 7) << "within the precision";
}

TEST_F(Structures, TheOtherKindsHaveTheirUsualMeanings) {
  const RValue stack = Call("ds_stack_create", {});
  Call("ds_stack_push", {stack, 1, 2, 3});
  EXPECT_EQ(Call("ds_stack_pop", {stack}).real, 3);
  EXPECT_EQ(Call("ds_stack_size", {stack}).real, 2);
  const RValue queue = Call("ds_queue_create", {});
  Call("ds_queue_enqueue", {queue, 1, 2});
  EXPECT_EQ(Call("ds_queue_dequeue", {queue}).real, 1);
  EXPECT_EQ(Call("ds_queue_tail", {queue}).real, 2);
  const RValue priority = Call("ds_priority_create", {});
  Call("ds_priority_add", {priority, "late", 9});
  Call("ds_priority_add", {priority, "soon", 2});
  Call("ds_priority_change_priority", {priority, "late", 1});
  EXPECT_EQ(Call("ds_priority_delete_min", {priority}).Text(), "late");
  EXPECT_EQ(Call("ds_priority_find_max", {priority}).Text(), "soon");
  const RValue grid = Call("ds_grid_create", {4, 3});
  Call("ds_grid_set_region", {grid, 1, 1, 9, 9, 2});
  Call("ds_grid_add", {grid, 3, 2, 5});
  EXPECT_EQ(Call("ds_grid_get_sum", {grid, 0, 0, 3, 2}).real, 6 * 2 + 5);
  EXPECT_EQ(Call("ds_grid_value_x", {grid, 0, 0, 3, 2, 7}).real, 3);
  Call("ds_grid_resize", {grid, 2, 2});
  EXPECT_EQ(Call("ds_grid_get", {grid, 1, 1}).real, 2);
  EXPECT_TRUE(Call("ds_grid_get", {grid, 2, 0}).IsUndefined());
  EXPECT_TRUE(Reported("out of bounds"));
  EXPECT_TRUE(Call("ds_stack_pop", {Call("ds_stack_create", {})}).IsUndefined());
}
