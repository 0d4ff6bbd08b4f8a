// A damaged container is refused in words that name the chunk and the record; no damage leads outside its
// bytes.
#include "Files/Runner/ContainerRecords.h"
#include "pack/Inspect.h"
#include "tests/pack/ExampleGame.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace vesk {
namespace {

using test::kExampleCodeCount;

// A container whose bytes end exactly at the end of an allocation, so that a sanitizer sees every read
// beyond.
class Victim {
public:
  Victim() : Victim(Whole()) {}
  explicit Victim(std::vector<uint8_t> bytes) : m_bytes(std::move(bytes)) { m_bytes.shrink_to_fit(); }

  static const std::vector<uint8_t>& Whole() {
    static const std::vector<uint8_t> bytes = pack::Write(test::ExampleGame());
    return bytes;
  }

  ContainerView View() { return {m_bytes.data(), static_cast<uint32_t>(m_bytes.size())}; }
  uint32_t Word(uint32_t at) { return View().U32(at); }
  void Put(uint32_t at, uint32_t value) { std::memcpy(m_bytes.data() + at, &value, 4); }
  Chunk Find(const char* tag) {
    std::vector<Chunk> chunks;
    Container_ListChunks(View(), chunks);
    for (const Chunk& chunk : chunks)
      if (ChunkName(chunk.tag) == tag) return chunk;
    return {};
  }
  uint32_t Record(const char* tag, uint32_t index) { return Word(Find(tag).offset + 4 + 4 * index); }
  std::string Verify() { return Container_Verify(View(), kExampleCodeCount).text; }

private:
  std::vector<uint8_t> m_bytes;
};

struct Damage {
  const char* chunk;
  uint32_t record;
  uint32_t field;
  uint32_t value;
  const char* message; // part of what is said
};

constexpr uint32_t kFar = 0x7FFFFF00;

TEST(ContainerRefusal, EveryKindOfReferenceAndIndex) {
  constexpr Damage kDamages[] = {
      {"SOND", 0, 0, kFar, "SOND record 0 at 0x"},
      {"SOND", 0, 0, kFar, "the text reference 0x7fffff00 lies outside STRG"},
      {"SOND", 1, 4, 104, "storage mode 104"},
      {"SOND", 1, 20, 0x7FC00000, "not finite"},
      {"SOND", 2, 32, 2, "data index 2 is not one of 2"},
      {"SPRT", 0, 4, 40000, "the size 40000 by 12"},
      {"SPRT", 0, 12, 0xFFFFFFFF, "the box (-1, 1)"},
      {"SPRT", 0, 56, 0xFFFFFFFF, "extended form"},
      {"SPRT", 0, 56, 0x10000000, "the number of frames, 268435456"},
      {"SPRT", 0, 64, 0x20, "frame 1 refers to 0x20, where no page entry stands"},
      {"SPRT", 0, 72, 0x00FFFFFF, "16777215 masks of 24 bytes end outside"},
      {"BGND", 1, 16, kFar, "BGND record 1"},
      {"PATH", 0, 12, 30, "the precision 30"},
      {"PATH", 0, 16, 1000000, "the number of points, 1000000"},
      {"SCPT", 0, 4, 5, "script code index 5 is not in the code table of 5"},
      {"SCPT", 0, 4, 0xFFFFFFFE, "script code index -2"},
      {"SHDR", 0, 12, 3, "the text reference 0x3"},
      {"SHDR", 0, 40, 0xFFFFFFFF, "the number of attributes"},
      {"OBJT", 0, 4, 3, "OBJT record 0"},
      {"OBJT", 0, 4, 3, "sprite index 3 is not one of 3"},
      {"OBJT", 0, 28, 99, "mask sprite index 99"},
      {"OBJT", 1, 24, 2, "parent index 2 is not one of 2"},
      {"OBJT", 0, 24, 1, "the parents run in a circle"},
      {"OBJT", 1, 24, 1, "the parents run in a circle"},
      {"OBJT", 1, 64, 0x10000000, "the number of shape points"},
      {"OBJT", 1, 96, 0x10000000, "the number of event lists"},
      {"OBJT", 1, 100, kFar, "reference 0 of the event lists, 0x7fffff00, lies outside"},
      {"ROOM", 0, 32, 5, "creation code index 5"},
      {"ROOM", 0, 36, 0x20005, "layers (record version 2)"},
      {"ROOM", 0, 40, kFar, "the reference to the backgrounds, 0x7fffff00, lies outside"},
      {"ROOM", 0, 48, 0x10, "ROOM record 0"},
      {"TXTR", 0, 4, kFar, "TXTR record 0"},
      {"TXTR", 0, 4, 0x10, "neither a PNG file nor a raw picture"},
      {"AUDO", 1, 0, 0x00FFFFFF, "AUDO record 1"},
  };
  for (const Damage& damage : kDamages) {
    Victim victim;
    ASSERT_EQ(victim.Verify(), "");
    victim.Put(victim.Record(damage.chunk, damage.record) + damage.field, damage.value);
    const std::string said = victim.Verify();
    EXPECT_NE(said.find(damage.message), std::string::npos)
        << damage.chunk << " " << damage.record << " +" << damage.field << ": " << said;
    EXPECT_EQ(said.compare(0, 4, damage.chunk), 0) << said;
  }
}

TEST(ContainerRefusal, PartsOfRoomsAndEventsAreNamed) {
  const auto part = [](Victim& victim, uint32_t list, uint32_t index) {
    return victim.Word(victim.Word(victim.Record("ROOM", 0) + list) + 4 + 4 * index);
  };
  const struct {
    uint32_t list, index, field, value;
    const char* message;
  } rows[] = {
      {40, 1, 8, 2, "ROOM record 0, background 1 at 0x"},
      {40, 1, 8, 2, "background index 2 is not one of 2"},
      {44, 0, 52, 9, "view 0 at 0x"},
      {48, 0, 8, 2, "instance 0 at 0x"},
      {48, 0, 8, 2, "object index 2 is not one of 2"},
      {48, 1, 12, 100000, "instance 1 at 0x"},
      {48, 1, 12, 100000, "id 100000 is used twice"},
      {48, 1, 12, 100003, "id 100003 is above the last id of the header, 100002"},
      {48, 1, 16, 17, "creation code index 17"},
      {52, 1, 8, 0xFFFFFFFF, "tile 1 at 0x"},
      {52, 0, 12, 60, "the part at (60, 16) of 16 by 16 leaves background 1 of 64 by 32"},
  };
  for (const auto& row : rows) {
    Victim victim;
    victim.Put(part(victim, row.list, row.index) + row.field, row.value);
    const std::string said = victim.Verify();
    EXPECT_NE(said.find(row.message), std::string::npos) << row.message << ": " << said;
  }
  Victim victim;
  const uint32_t lists = victim.Record("OBJT", 1) + 100;
  victim.Put(victim.Word(victim.Word(lists + 4 * ev_collision) + 4), 2);
  EXPECT_NE(victim.Verify().find("OBJT record 1, events of type 4 at 0x"), std::string::npos)
      << victim.Verify();
  EXPECT_NE(victim.Verify().find("event 0 has subtype 2, which is not below 2"), std::string::npos);
}

TEST(ContainerRefusal, GeneralChunks) {
  const struct {
    const char* chunk;
    uint32_t field, value;
    const char* message;
  } rows[] = {
      {"GEN8", 44, 2, "GEN8: major version 2 is not supported"},
      {"GEN8", 128, 0xFFFF, "GEN8: the number of rooms in the order, 65535"},
      {"GEN8", 132, 2, "GEN8: room index 2 of the room order is not one of 2"},
      {"GEN8", 40, 2, "GEN8: the text reference 0x2"},
      {"OPTN", 4, 3, "OPTN: form version 3 is unknown"},
      {"OPTN", 60, 0xFFFF, "OPTN: the number of named constants"},
      {"OPTN", 8, 0, "SOND: the options ask for the old form"},
      {"EXTN", 0, 1, "EXTN: extension packages"},
      {"GLOB", 4, 7, "GLOB: script code index 7"},
      {"TMLN", 0, 1, "TMLN: time lines"},
      {"STRG", 8, 0x20, "STRG record 1 at 0x20: there stands no text"},
      {"TPAG", 8, 0x20, "TPAG record 1 at 0x20: the entry does not lie in the chunk"},
  };
  for (const auto& row : rows) {
    Victim victim;
    victim.Put(victim.Find(row.chunk).offset + row.field, row.value);
    const std::string said = victim.Verify();
    EXPECT_EQ(said.compare(0, std::strlen(row.message), row.message), 0) << row.message << ": " << said;
  }

  Victim overlap;
  overlap.Put(overlap.Find("TPAG").offset + 8, overlap.Record("TPAG", 0));
  EXPECT_NE(overlap.Verify().find("the entry lies on record "), std::string::npos) << overlap.Verify();
  Victim offPage;
  offPage.Put(offPage.Record("TPAG", 0), 0xFFF0);
  EXPECT_NE(offPage.Verify().find("leaves its page of"), std::string::npos) << offPage.Verify();
  Victim noPage;
  noPage.Put(noPage.Record("TPAG", 2) + 18, 0x0007'0000 | noPage.View().U16(noPage.Record("TPAG", 2) + 18));
  EXPECT_NE(noPage.Verify().find("texture page 7 is not one of 1"), std::string::npos) << noPage.Verify();
}

TEST(ContainerRefusal, FrameAndChunkOrder) {
  Victim tag;
  tag.Put(0, 0);
  EXPECT_EQ(tag.Verify(), "FORM: the container does not begin with \"FORM\"");
  Victim size;
  size.Put(4, size.Word(4) + 1);
  EXPECT_EQ(size.Verify().compare(0, 25, "FORM: the size field says"), 0) << size.Verify();
  EXPECT_NE(Victim(std::vector<uint8_t>{}).Verify(), "");

  const auto rename = [](const char* from, const char* to) {
    Victim victim;
    const uint32_t at = victim.Find(from).offset - 8;
    uint32_t word;
    std::memcpy(&word, to, 4);
    victim.Put(at, word);
    return victim.Verify();
  };
  EXPECT_NE(rename("GEN8", "HELP"), "");
  EXPECT_EQ(rename("LANG", "SPRT"), "SPRT: the chunk stands twice");
  EXPECT_EQ(rename("DAFL", "WHAT").compare(0, 23, "WHAT: an unknown chunk "), 0) << rename("DAFL", "WHAT");
  EXPECT_EQ(rename("EXTN", "TXTR"), "TXTR: the chunk stands twice");
  Victim swapped;
  swapped.Put(swapped.Find("TPAG").offset - 8, ChunkTag("HELP"));
  swapped.Put(swapped.Find("AUDO").offset - 8, ChunkTag("TPAG"));
  EXPECT_EQ(swapped.Verify(), "TXTR: the chunk stands before TPAG");
}

TEST(ContainerRefusal, EveryElementOfEveryList) {
  Victim whole;
  int lists = 0;
  for (const char* tag :
       {"SOND", "SPRT", "BGND", "PATH", "SCPT", "SHDR", "OBJT", "ROOM", "TPAG", "STRG", "TXTR", "AUDO"}) {
    const uint32_t list = whole.Find(tag).offset;
    for (uint32_t i = 0; i < whole.Word(list); ++i) {
      for (const uint32_t value :
           {static_cast<uint32_t>(Victim::Whole().size()), kFar, 0xFFFFFFFFu, 0xFFFFFFFCu}) {
        Victim victim;
        victim.Put(list + 4 + 4 * i, value);
        const std::string said = victim.Verify();
        EXPECT_EQ(said.compare(0, 4, tag), 0) << tag << " " << i << ": " << said;
      }
      ++lists;
    }
    for (const uint32_t count : {0xFFFFFFFFu, 0x40000000u, static_cast<uint32_t>(Victim::Whole().size())}) {
      Victim victim;
      victim.Put(list, count);
      EXPECT_EQ(victim.Verify().compare(0, 4, tag), 0) << tag << ": " << victim.Verify();
    }
  }
  EXPECT_GT(lists, 40);
}

// Many lists that share their elements must not multiply what is read.
TEST(ContainerRefusal, SharedListsDontMultiply) {
  Victim victim;
  const uint32_t first = victim.Record("OBJT", 0), second = victim.Record("OBJT", 1);
  for (uint32_t type = 0; type < 13; ++type) {
    // Every event list of both objects is the list of all texts: words enough, none of them an event.
    victim.Put(first + 100 + 4 * type, victim.Find("STRG").offset);
    victim.Put(second + 100 + 4 * type, victim.Find("STRG").offset);
  }
  EXPECT_EQ(victim.Verify().compare(0, 13, "OBJT record 0"), 0) << victim.Verify();
}

// Touches what the runner would: a sanitizer then sees what the checks let through.
uint64_t UseAll(const ContainerView& view, const ContainerRecords& records) {
  uint64_t sum = 0;
  const auto text = [&](const char* characters) { sum += std::strlen(characters); };
  text(records.header.name);
  text(records.header.displayName);
  for (const auto& constant : records.options.constants) text(constant.value);
  for (const auto& sprite : records.sprites)
    if (sprite) {
      text(sprite->name);
      for (const uint32_t frame : sprite->frames)
        if (frame != 0) sum += view.Bytes()[frame + 21];
      const uint64_t mask =
          static_cast<uint64_t>(sprite->width + 7) / 8 * static_cast<uint64_t>(sprite->height);
      for (uint64_t i = 0; i < mask * static_cast<uint64_t>(sprite->maskCount); ++i)
        sum += view.Bytes()[sprite->masks + i];
    }
  for (const auto& sound : records.sounds)
    if (sound) {
      text(sound->file);
      for (const uint8_t byte : sound->data) sum += byte;
    }
  for (const auto& shader : records.shaders)
    if (shader) {
      text(shader->glesFragment);
      for (const char* attribute : shader->attributes) text(attribute);
    }
  for (const auto& texture : records.textures)
    if (texture)
      for (const uint8_t byte : texture->data) sum += byte;
  for (const auto& object : records.objects)
    if (object)
      for (const auto& event : object->events)
        sum += records.objects[static_cast<size_t>(event.type == ev_collision ? event.subtype : 0)] ? 1 : 0;
  for (const auto& room : records.rooms)
    if (room)
      for (const auto& tile : room->tiles)
        text(records.backgrounds[static_cast<size_t>(tile.background)]->name);
  return sum;
}

// Reads it; an error must name a chunk. Counts the refusals.
bool Survives(Victim& victim, int* refused = nullptr) {
  ContainerRecords records;
  const LoadError error = Container_ReadRecords(victim.View(), kExampleCodeCount, records);
  if (!error) return UseAll(victim.View(), records) > 0;
  if (refused) ++*refused;
  return error.text.size() > 6 && (error.text[4] == ':' || error.text[4] == ' ');
}

void Patch(std::vector<uint8_t>& bytes, size_t at, size_t value) {
  const auto word = static_cast<uint32_t>(value);
  std::memcpy(bytes.data() + at, &word, 4);
}

TEST(ContainerDamage, CutAtEveryByte) {
  const std::vector<uint8_t>& whole = Victim::Whole();
  std::vector<Chunk> chunks;
  Victim intact;
  ASSERT_FALSE(Container_ListChunks(intact.View(), chunks));
  for (size_t size = 0; size < whole.size(); ++size) {
    std::vector<uint8_t> bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    Victim cut(bytes);
    ASSERT_NE(cut.Verify(), "") << size; // as a broken-off copy is
    if (size < 16) continue;
    Patch(bytes, 4, size - 8);
    Victim patched(bytes); // with a size that agrees
    ASSERT_NE(patched.Verify(), "") << size;
    ASSERT_TRUE(Survives(patched)) << size;
    // And with the last chunk's size agreeing too, so that its records are what is cut.
    for (const Chunk& chunk : chunks)
      if (chunk.offset <= size && size < chunk.offset + chunk.size)
        Patch(bytes, chunk.offset - 4, size - chunk.offset);
    Victim agreeing(bytes);
    ASSERT_TRUE(Survives(agreeing)) << size << ": " << agreeing.Verify();
  }
}

TEST(ContainerDamage, EveryByteChanged) {
  const std::vector<uint8_t>& whole = Victim::Whole();
  int refused = 0;
  for (size_t at = 0; at < whole.size(); ++at)
    for (const int change : {0x01, 0x80, 0xFF}) {
      std::vector<uint8_t> bytes = whole;
      bytes[at] = static_cast<uint8_t>(bytes[at] ^ change);
      Victim victim(std::move(bytes));
      ASSERT_TRUE(Survives(victim, &refused)) << at;
    }
  // What is neither text, pixel nor sound is seen.
  EXPECT_GT(refused, static_cast<int>(whole.size()) / 3);
}

TEST(ContainerDamage, ManyWordsAtOnce) {
  std::mt19937 random(20);
  const std::vector<uint8_t>& whole = Victim::Whole();
  const auto word = [&](uint32_t below) { return static_cast<uint32_t>(random() % below); };
  for (int round = 0; round < 4000; ++round) {
    std::vector<uint8_t> bytes = whole;
    for (uint32_t i = 0; i <= round % 6u; ++i) {
      const size_t at = word(static_cast<uint32_t>(bytes.size() / 4)) * 4;
      const uint32_t kinds[] = {word(64), word(static_cast<uint32_t>(bytes.size())), 0xFFFFFFFFu - word(16),
                                static_cast<uint32_t>(random())};
      Patch(bytes, at, kinds[word(4)]);
    }
    Victim victim(std::move(bytes));
    ASSERT_TRUE(Survives(victim)) << round;
  }
}

TEST(ContainerInspect, LooksIntoPicturesAndSoundsToo) {
  Victim victim;
  EXPECT_TRUE(pack::Inspect(victim.View(), kExampleCodeCount).empty());
  const uint32_t picture = victim.Word(victim.Record("TXTR", 0) + 4);
  victim.Put(picture + 60, victim.Word(picture + 60) ^ 0xFF00FF);
  victim.Put(victim.Record("AUDO", 1) + 4, 0);
  const std::vector<std::string> findings = pack::Inspect(victim.View(), kExampleCodeCount);
  ASSERT_EQ(findings.size(), 2u);
  EXPECT_EQ(findings[0].compare(0, 39, "TXTR record 0: a damaged PNG picture: I"), 0) << findings[0];
  EXPECT_EQ(findings[1], "AUDO record 1: it is no Ogg Vorbis stream");
}

} // namespace
} // namespace vesk
