// What is written can be read again, field by field, and stands where the format has it.
#include "Files/Runner/ContainerRecords.h"
#include "Files/Sprite/Sprite.h"
#include "pack/TexturePages.h"
#include "tests/pack/ExampleGame.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>

namespace vesk {
namespace {

using test::ExampleGame;
using test::kExampleCodeCount;

struct Written {
  explicit Written(const pack::Game& game = ExampleGame())
      : bytes(pack::Write(game)), view(bytes.data(), static_cast<uint32_t>(bytes.size())),
        error(Container_ReadRecords(view, kExampleCodeCount, records).text) {}
  Chunk Find(const char (&tag)[5]) const {
    for (const Chunk& chunk : records.chunks)
      if (chunk.tag == ChunkTag(tag)) return chunk;
    return {};
  }
  // The offset of an element of a chunk's pointer list.
  uint32_t Record(const char (&tag)[5], uint32_t index) const {
    return view.U32(Find(tag).offset + 4 + 4 * index);
  }

  std::vector<uint8_t> bytes;
  ContainerView view;
  ContainerRecords records;
  std::string error;
};

TEST(ContainerLayout, ChunksFollowInTheirOrderOnPlacesOf16) {
  const Written game;
  ASSERT_EQ(game.error, "");
  std::string tags;
  for (const Chunk& chunk : game.records.chunks) {
    tags += ChunkName(chunk.tag) + " ";
    EXPECT_EQ((chunk.offset + chunk.size) % 16, 0u) << ChunkName(chunk.tag);
  }
  EXPECT_EQ(tags,
            "GEN8 OPTN LANG EXTN SOND AGRP SPRT BGND PATH SCPT GLOB SHDR FONT TMLN OBJT ROOM DAFL TPAG STRG "
            "TXTR AUDO ");
  EXPECT_EQ(game.view.U32(4), game.bytes.size() - 8);
}

TEST(ContainerLayout, FieldsStandAtTheirOffsets) {
  const Written game;
  const ContainerView& view = game.view;
  const uint32_t header = game.Find("GEN8").offset;
  EXPECT_EQ(header, 0x10u);
  EXPECT_EQ(view.U8(header + 1), 16);
  EXPECT_STREQ(view.Text(view.U32(header + 40)), "Example");
  EXPECT_EQ(view.U32(header + 20), 902404778u);
  EXPECT_EQ(view.U32(header + 56), 9999u);
  EXPECT_EQ(view.U32(header + 68), 0x8D0u);
  EXPECT_STREQ(view.Text(view.U32(header + 100)), "Vesk Editor");
  EXPECT_EQ(view.U32(header + 112), 0xCDFE22B4u);
  EXPECT_EQ(view.U32(header + 116), 0x4000B23Du);
  EXPECT_EQ(view.U32(header + 124), 6502u);
  EXPECT_EQ(view.U32(header + 128), 2u);
  EXPECT_EQ(view.U32(header + 132), 1u);

  const uint32_t options = game.Find("OPTN").offset;
  EXPECT_EQ(view.U32(options), 0x80000000u);
  EXPECT_EQ(view.U32(options + 4), 2u);
  EXPECT_EQ(view.U32(options + 8), 0xCC7A24u);
  EXPECT_EQ(view.I32(options + 16), -1);
  EXPECT_EQ(view.U32(options + 56), 255u);
  EXPECT_EQ(view.U32(options + 60), 2u);

  const uint32_t sprite = game.Record("SPRT", 0);
  EXPECT_EQ(view.U32(sprite + 16), 13u); // right before bottom before top
  EXPECT_EQ(view.U32(sprite + 20), 11u);
  EXPECT_EQ(view.U32(sprite + 24), 1u);
  EXPECT_EQ(view.U32(sprite + 40), 2u);
  EXPECT_EQ(view.I32(sprite + 52), -2);
  EXPECT_EQ(view.U32(sprite + 56), 3u);
  EXPECT_EQ(view.U32(sprite + 72), 1u); // masks

  const uint32_t object = game.Record("OBJT", 1);
  EXPECT_EQ(view.U32(object + 28), 0u);
  EXPECT_EQ(view.F32(object + 44), 0.5f);
  EXPECT_EQ(view.U32(object + 64), 2u);
  EXPECT_EQ(view.F32(object + 92), 16.0f);
  EXPECT_EQ(view.U32(object + 96), 13u); // event lists
  const uint32_t collisions = view.U32(object + 100 + 4 * ev_collision);
  EXPECT_EQ(view.U32(collisions), 1u);
  const uint32_t event = view.U32(collisions + 4);
  EXPECT_EQ(view.U32(event), 0u);
  EXPECT_EQ(view.U32(event + 4), 1u);
  const uint32_t action = view.U32(event + 8);
  EXPECT_EQ(view.U32(action + 4), 603u);
  EXPECT_EQ(view.U32(action + 32), 3u);

  const uint32_t shader = game.Record("SHDR", 0);
  EXPECT_EQ(view.U32(shader + 4), 0x80000001u);
  EXPECT_EQ(view.U32(shader + 40), 3u);
  EXPECT_STREQ(view.Text(view.U32(shader + 52)), "in_TextureCoord");
  const uint32_t sounds = game.Find("AUDO").offset;
  EXPECT_EQ(view.U32(sounds), 2u);
  EXPECT_EQ(std::memcmp(view.Bytes() + view.U32(sounds + 4) + 4, "OggS", 4), 0);
  EXPECT_EQ(game.Find("FONT").size, 0x208u);
}

TEST(ContainerRecords, HeaderOptionsAndTexts) {
  const Written game;
  EXPECT_STREQ(game.records.header.configuration, "Default");
  EXPECT_EQ(game.records.header.windowWidth, 384);
  EXPECT_EQ(game.records.header.lastInstanceId, 100002);
  EXPECT_EQ(game.records.header.lastTileId, 10000001);
  EXPECT_EQ(game.records.header.roomOrder, (std::vector<int32_t>{1, 0}));
  EXPECT_TRUE(game.records.options.flags & container::kOptionNewAudio);
  ASSERT_EQ(game.records.options.constants.size(), 2u);
  EXPECT_STREQ(game.records.options.constants[1].name, "Answer");
  EXPECT_STREQ(game.records.options.constants[1].value, "42");
  EXPECT_EQ(game.records.startScripts, (std::vector<int32_t>{0}));
  EXPECT_TRUE(game.records.remarks.empty());
}

TEST(ContainerRecords, SpritesKeepBoxFramesAndMasks) {
  const Written game;
  const auto& sprites = game.records.sprites;
  ASSERT_EQ(sprites.size(), 3u);
  EXPECT_EQ(sprites[0]->left, 2);
  EXPECT_EQ(sprites[0]->bottom, 11);
  EXPECT_EQ(sprites[0]->originY, -2);
  EXPECT_EQ(sprites[0]->frames.size(), 3u);
  EXPECT_EQ(sprites[0]->maskCount, 1);
  EXPECT_EQ(sprites[1]->separateMasks, 1);
  ASSERT_EQ(sprites[1]->maskCount, 2);
  // Two bytes a row of ten pixels: x 2 to 8 in rows 3 to 6.
  const uint8_t* mask = game.view.Bytes() + sprites[1]->masks;
  EXPECT_EQ(mask[2 * 2], 0);
  EXPECT_EQ(mask[3 * 2], 0x3F);
  EXPECT_EQ(mask[3 * 2 + 1], 0x80);
  EXPECT_EQ(mask[18 + 6 * 2], 0x40); // the second frame's
  EXPECT_TRUE(sprites[2]->frames.empty());
  EXPECT_EQ(sprites[2]->width, 4);
}

TEST(ContainerRecords, PicturesComeBackFromTheirPage) {
  const Written game;
  const pack::Game example = ExampleGame();
  ASSERT_EQ(game.records.textures.size(), 1u);
  const Picture page = pack::DecodePng(game.records.textures[0]->data);
  EXPECT_EQ(page.width, game.records.textures[0]->width);
  size_t frames = 0;
  const auto compare = [&](uint32_t offset, const Picture& picture) {
    PageEntry entry;
    std::memcpy(&entry, game.view.Bytes() + offset, sizeof entry);
    ASSERT_EQ(entry.boundingWidth, picture.width);
    ASSERT_EQ(entry.boundingHeight, picture.height);
    Picture back = pack::SolidPicture(picture.width, picture.height, 0);
    for (int y = 0; y < entry.sourceHeight; ++y)
      for (int x = 0; x < entry.sourceWidth; ++x)
        back.rgba[static_cast<size_t>((entry.targetY + y) * back.width + entry.targetX + x)] =
            page.rgba[static_cast<size_t>((entry.sourceY + y) * page.width + entry.sourceX + x)];
    EXPECT_EQ(back.rgba, picture.rgba);
    ++frames;
  };
  for (size_t i = 0; i < example.sprites.size(); ++i)
    for (size_t frame = 0; frame < example.sprites[i].frames.size(); ++frame)
      compare(game.records.sprites[i]->frames[frame], example.sprites[i].frames[frame]);
  for (size_t i = 0; i < example.backgrounds.size(); ++i)
    compare(game.records.backgrounds[i]->page, example.backgrounds[i].picture);
  EXPECT_EQ(frames, 7u);
  // The crop of the gem leaves its clear border out.
  EXPECT_EQ(game.view.U16(game.records.sprites[1]->frames[0] + 4), 7);
  EXPECT_EQ(game.view.U16(game.records.sprites[1]->frames[0] + 10), 3);
}

TEST(ContainerRecords, SoundsPathsScriptsShaders) {
  const Written game;
  const pack::Game example = ExampleGame();
  const auto& sounds = game.records.sounds;
  ASSERT_EQ(sounds.size(), 3u);
  EXPECT_STREQ(sounds[0]->file, "Beat.ogg");
  EXPECT_EQ(sounds[0]->mode, container::SoundMode::kCompressed);
  EXPECT_EQ(sounds[0]->gain, 0.7f);
  EXPECT_EQ(sounds[0]->audioIndex, 1);
  EXPECT_EQ(std::string(sounds[0]->data.begin(), sounds[0]->data.end()), example.sounds[0].data);
  EXPECT_EQ(sounds[2]->audioIndex, -1);
  EXPECT_TRUE(sounds[2]->data.empty());

  ASSERT_EQ(game.records.paths.size(), 1u);
  EXPECT_EQ(game.records.paths[0]->kind, 1);
  EXPECT_TRUE(game.records.paths[0]->closed);
  EXPECT_EQ(game.records.paths[0]->precision, 3);
  EXPECT_EQ(game.records.paths[0]->points[1].x, 30.5f);
  EXPECT_STREQ(game.records.scripts[1]->name, "scr_none");
  EXPECT_EQ(game.records.scripts[1]->code, -1);
  EXPECT_STREQ(game.records.shaders[0]->glesFragment, "#version 100\n// plain\n");
  EXPECT_EQ(game.records.shaders[0]->attributes.size(), 3u);
}

TEST(ContainerRecords, ObjectsAndRooms) {
  const Written game;
  const container::ObjectRecord& child = *game.records.objects[1];
  EXPECT_EQ(child.parent, 0);
  EXPECT_EQ(child.mask, 0);
  EXPECT_TRUE(child.solid && child.persistent && !child.visible);
  ASSERT_EQ(child.events.size(), 2u); // by type
  EXPECT_EQ(child.events[0].type, ev_step);
  EXPECT_EQ(child.events[1].code, 3);
  EXPECT_EQ(game.records.objects[0]->depth, -5);

  const container::RoomRecord& room = *game.records.rooms[0];
  EXPECT_STREQ(room.caption, "Caption");
  EXPECT_EQ(room.colour, 0x804020u);
  EXPECT_TRUE(room.viewsEnabled && !room.clearDisplay && !room.clearViews && !room.showColour &&
              room.persistent);
  EXPECT_EQ(room.code, 4);
  ASSERT_EQ(room.backgrounds.size(), 8u);
  EXPECT_TRUE(room.backgrounds[1]->tiledSideways && !room.backgrounds[1]->tiledUpright &&
              room.backgrounds[1]->stretch);
  EXPECT_EQ(room.backgrounds[1]->vspeed, -2);
  EXPECT_EQ(room.backgrounds[0]->background, -1);
  EXPECT_EQ(room.views[0]->borderX, 184);
  EXPECT_EQ(room.views[0]->object, 1);
  ASSERT_EQ(room.instances.size(), 2u);
  EXPECT_EQ(room.instances[0].id, 100000);
  EXPECT_EQ(room.instances[0].scaleX, 24.0f);
  EXPECT_EQ(room.instances[0].rotation, 90.0f);
  EXPECT_EQ(room.instances[0].preCreateCode, 0);
  EXPECT_EQ(game.records.rooms[1]->instances[0].id, 100002);
  ASSERT_EQ(room.tiles.size(), 2u);
  EXPECT_EQ(room.tiles[1].depth, -3);
  EXPECT_EQ(room.tiles[1].colour, 0x7F112233u);
  EXPECT_EQ(room.tiles[1].scaleY, 3.0f);
}

TEST(ContainerRecords, ANullReferenceLeavesAHole) {
  Written game;
  const uint32_t list = game.Find("SCPT").offset;
  std::memset(game.bytes.data() + list + 4, 0, 4);
  ContainerRecords records;
  EXPECT_EQ(Container_ReadRecords(game.view, kExampleCodeCount, records).text, "");
  ASSERT_EQ(records.scripts.size(), 2u);
  EXPECT_FALSE(records.scripts[0]);
  EXPECT_STREQ(records.scripts[1]->name, "scr_none");
}

TEST(ContainerRecords, TheOldFormOfTheOptions) {
  Written game;
  const Chunk chunk = game.Find("OPTN");
  // An old form is longer: it takes the place of LANG too, whose chunk then begins inside. A container of its
  // own.
  std::vector<uint32_t> words(36);
  words[0] = 1;
  words[2] = 1;
  words[5] = 3;
  words[9] = 1;
  words[22] = 1;
  std::vector<uint8_t> bytes(game.bytes.begin(), game.bytes.begin() + chunk.offset);
  const auto put = [&](uint32_t at, uint32_t value) { std::memcpy(bytes.data() + at, &value, 4); };
  bytes.resize(bytes.size() + 4 * words.size());
  std::memcpy(bytes.data() + chunk.offset, words.data(), 4 * words.size());
  put(4, static_cast<uint32_t>(bytes.size() - 8));
  put(chunk.offset - 4, static_cast<uint32_t>(4 * words.size()));
  // Nothing else: the header's texts and rooms would be missing, so they are taken out.
  for (const uint32_t field : {4u, 8u, 40u, 100u, 128u}) put(0x10 + field, 0);
  ContainerRecords records;
  EXPECT_EQ(Container_ReadRecords({bytes.data(), static_cast<uint32_t>(bytes.size())}, 0, records).text, "");
  EXPECT_EQ(records.options.flags, container::kOptionFullScreen | container::kOptionNewAudio |
                                       container::kOptionChangeResolution |
                                       container::kOptionFreezeUnfocused);
  EXPECT_EQ(records.options.scale, 3);
}

TEST(ContainerWriter, TheSameDescriptionGivesTheSameBytes) {
  EXPECT_EQ(pack::Write(ExampleGame()), pack::Write(ExampleGame()));
}

TEST(ContainerWriter, ManyPicturesFillSeveralPages) {
  pack::Game game;
  for (int i = 0; i < 7; ++i)
    game.backgrounds.push_back(
        {"bg_" + std::to_string(i), pack::SolidPicture(1100, 900, 0xFF000000u + static_cast<uint32_t>(i))});
  const Written written(game);
  ASSERT_EQ(written.error, "");
  EXPECT_EQ(written.records.textures.size(), 4u); // two a page
  for (const auto& page : written.records.textures)
    EXPECT_LE(std::max(page->width, page->height), pack::kPageSize);
}

TEST(ContainerWriter, RefusesInWordsWhatItCannotWrite) {
  const auto reason = [](auto change) -> std::string {
    pack::Game game = ExampleGame();
    change(game);
    try {
      pack::Write(game);
    } catch (const std::runtime_error& error) { return error.what(); }
    return "written";
  };
  EXPECT_EQ(reason([](pack::Game& game) { game.sprites[0].frames[1] = pack::SolidPicture(3, 3, 0); }),
            "sprite spr_walker: its frames differ in size");
  EXPECT_EQ(reason([](pack::Game& game) { game.backgrounds[0].picture.rgba.pop_back(); }),
            "background bg_sky: a picture of 40 by 30 with 1199 pixels");
  EXPECT_EQ(reason([](pack::Game& game) {
              game.sprites[1].masks = {{1, 0}};
            }),
            "sprite spr_gem: a mask has 2 pixels, not 90");
  EXPECT_EQ(
      reason([](pack::Game& game) { game.backgrounds[0].picture = pack::SolidPicture(3000, 8, 0xFF000000); }),
      "a picture of 3000 by 8 pixels does not fit on a texture page");
  EXPECT_EQ(reason([](pack::Game& game) { game.sounds[0].audioIndex = 0; }),
            "sound snd_ping: data place 0 is taken");
}

} // namespace
} // namespace vesk
