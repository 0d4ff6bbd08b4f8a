// The game's own container: everything is in it, and no damage to it leads outside its bytes.
#include "Files/Runner/ContainerRecords.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/AssetNames.h"
#include "game/GameTables.h"
#include "pack/Inspect.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace vesk {
namespace {

std::vector<uint8_t> Whole() { return {container_start, container_end}; }

int32_t CodeCount() { return static_cast<int32_t>(GameCodeTable().size()); }

TEST(GameContainer, HoldsEveryAssetAtItsIndex) {
  std::vector<uint8_t> bytes = Whole();
  const ContainerView view(bytes.data(), static_cast<uint32_t>(bytes.size()));
  EXPECT_TRUE(pack::Inspect(view, CodeCount()).empty());
  ContainerRecords records;
  ASSERT_EQ(Container_ReadRecords(view, CodeCount(), records).text, "");
  EXPECT_EQ(records.sprites.size(), 540u);
  EXPECT_EQ(records.backgrounds.size(), 40u);
  EXPECT_EQ(records.sounds.size(), 84u);
  EXPECT_EQ(records.soundData.size(), 84u);
  EXPECT_EQ(records.paths.size(), 1u);
  EXPECT_EQ(records.scripts.size(), 59u);
  EXPECT_EQ(records.shaders.size(), 4u);
  EXPECT_EQ(records.objects.size(), 434u);
  EXPECT_EQ(records.rooms.size(), 5u);
  EXPECT_EQ(records.pageEntries.size(), 1898u);
  EXPECT_EQ(records.textures.size(), 2u);

  EXPECT_STREQ(records.sprites[spr_speedmarker]->name, "spr_speedmarker");
  EXPECT_STREQ(records.backgrounds[bg_tiles]->name, "bg_tiles");
  EXPECT_STREQ(records.sounds[snd_shatter]->name, "snd_shatter");
  EXPECT_EQ(records.sounds[0]->audioIndex, 1);
  EXPECT_STREQ(records.shaders[sha_water]->name, "sha_water");
  const container::SpriteRecord& walk = *records.sprites[spr_player_durian_walk];
  EXPECT_EQ(walk.originX, 16);
  EXPECT_EQ(walk.frames.size(), 4u);
  EXPECT_EQ(walk.maskCount, 1);
  EXPECT_EQ(records.header.lastInstanceId, 100039);
  EXPECT_EQ(records.header.lastTileId, 10000560);
  EXPECT_EQ(records.options.flags, 0xCC7A24u);
}

TEST(GameContainer, RoomsAsTheyArePlanned) {
  std::vector<uint8_t> bytes = Whole();
  ContainerRecords records;
  ASSERT_EQ(
      Container_ReadRecords({bytes.data(), static_cast<uint32_t>(bytes.size())}, CodeCount(), records).text,
      "");
  const container::RoomRecord& title = *records.rooms[rm_title];
  EXPECT_EQ(title.width, 2688);
  EXPECT_EQ(title.colour, 12632256u);
  ASSERT_EQ(title.instances.size(), 32u);
  ASSERT_EQ(title.tiles.size(), 560u);
  EXPECT_EQ(title.instances[0].id, 100001);
  EXPECT_EQ(title.instances[0].x, 384);
  EXPECT_EQ(title.instances[0].object, 13);
  EXPECT_EQ(title.tiles[0].x, 16);
  EXPECT_EQ(title.tiles[0].y, 96);
  EXPECT_EQ(title.tiles[0].sourceY, 496);
  EXPECT_EQ(title.tiles[0].depth, 11);
  EXPECT_EQ(title.tiles[559].id, 10000559);
  EXPECT_EQ(title.views[0]->borderX, 184);
  EXPECT_EQ(title.views[1]->width, 640);
  EXPECT_TRUE(title.viewsEnabled && !title.clearDisplay && !title.clearViews);
  EXPECT_EQ(records.rooms[rm_template]->instances[1].id, 100038);
  EXPECT_EQ(records.rooms[rm_logo]->instances.size(), 1u);
}

TEST(GameContainer, ObjectsAreThoseOfTheGame) {
  std::vector<uint8_t> bytes = Whole();
  ContainerRecords records;
  ASSERT_EQ(
      Container_ReadRecords({bytes.data(), static_cast<uint32_t>(bytes.size())}, CodeCount(), records).text,
      "");
  const std::span<const ObjectRow> objects = GameObjects();
  ASSERT_EQ(objects.size(), records.objects.size());
  for (size_t i = 0; i < objects.size(); ++i) {
    const container::ObjectRecord& record = *records.objects[i];
    ASSERT_STREQ(record.name, objects[i].name);
    ASSERT_EQ(record.parent, objects[i].parent) << record.name;
    ASSERT_EQ(record.events.size(), objects[i].events.size()) << record.name;
    for (const auto& event : record.events) {
      ASSERT_GE(event.code, objects[i].firstCode) << record.name;
      const size_t row = static_cast<size_t>(event.code - objects[i].firstCode);
      ASSERT_LT(row, objects[i].events.size()) << record.name;
      ASSERT_EQ(objects[i].events[row].type, event.type) << record.name;
      ASSERT_EQ(objects[i].events[row].subtype, event.subtype) << record.name;
    }
  }
}

// Damage is tried where the records are; pictures and sounds behind them are only bytes here.
TEST(GameContainer, CutsAndChangesAreSurvived) {
  const std::vector<uint8_t> whole = Whole();
  std::vector<uint8_t> bytes = whole;
  std::vector<Chunk> chunks;
  ASSERT_FALSE(Container_ListChunks({bytes.data(), static_cast<uint32_t>(bytes.size())}, chunks));
  uint32_t records = 0;
  for (const Chunk& chunk : chunks)
    if (chunk.tag == ChunkTag("STRG")) records = chunk.offset + chunk.size;
  ASSERT_GT(records, 100000u);

  std::mt19937 random(7);
  const auto survives = [&](std::vector<uint8_t>& victim) {
    ContainerRecords read;
    const LoadError error =
        Container_ReadRecords({victim.data(), static_cast<uint32_t>(victim.size())}, CodeCount(), read);
    return !error || (error.text.size() > 6 && (error.text[4] == ':' || error.text[4] == ' '));
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<uint8_t> cut(whole.begin(),
                             whole.begin() + static_cast<std::ptrdiff_t>(8 + random() % records));
    cut.shrink_to_fit();
    const auto size = static_cast<uint32_t>(cut.size() - 8);
    std::memcpy(cut.data() + 4, &size, 4);
    ContainerRecords read;
    ASSERT_TRUE(Container_ReadRecords({cut.data(), size + 8}, CodeCount(), read)) << cut.size();
    ASSERT_TRUE(survives(cut));
  }
  for (int round = 0; round < 400; ++round) {
    const size_t at = random() % records / 4 * 4;
    const uint32_t values[] = {static_cast<uint32_t>(random()),
                               static_cast<uint32_t>(random() % whole.size()), 0xFFFFFFFF, 0};
    std::memcpy(bytes.data() + at, &values[round % 4], 4);
    ASSERT_TRUE(survives(bytes)) << at;
    std::memcpy(bytes.data() + at, whole.data() + at, 4);
  }
}

} // namespace
} // namespace vesk
