// The sounds of the game: every source compiles and keeps what the table and good manners ask.
#include "pack/PlaceholderSound.h"
#include "pack/TextSource.h"
#include "pack/soundstudio/Figures.h"
#include "pack/soundstudio/SoundStudio.h"

#include <gtest/gtest.h>
#include <set>

namespace vesk {
namespace {

struct Row {
  double seconds = 0;
  bool music = false, loops = false;
};

// Played anew the moment it ends, so it joins to itself like a loop.
constexpr const char* kJoinsItself = "snd_engine";

std::map<std::string, Row> Rows() {
  const pack::Table table("assets/sounds.tsv");
  std::map<std::string, Row> rows;
  for (size_t i = 0; i < table.Rows(); ++i)
    rows[table.Text(i, "name")] = {table.Real(i, "length_s"), table.Text(i, "kind") == "music",
                                   table.Text(i, "loops") == "yes"};
  return rows;
}

TEST(SoundAssets, EverySourceBelongsToARowAndEveryRowHasASource) {
  const SoundStudio studio("assets");
  const auto rows = Rows();
  for (const std::string& name : studio.Names()) EXPECT_TRUE(rows.count(name)) << name;
  for (const auto& [name, row] : rows) {
    ASSERT_TRUE(studio.Has(name)) << name;
    EXPECT_EQ(studio.Loops(name), row.loops || name == kJoinsItself) << name;
  }
}

TEST(SoundAssets, EffectsKeepLengthLevelAndCleanEnds) {
  const SoundStudio studio("assets");
  for (const auto& [name, row] : Rows()) {
    if (row.music) continue;
    const sound::Track track = studio.Samples(name);
    const sound::Figures figures = sound::Measure(track);
    EXPECT_NEAR(figures.seconds, row.seconds, 0.001) << name;
    EXPECT_EQ(figures.clipped, 0u) << name;
    EXPECT_LE(figures.peak, -1.4) << name;
    if (row.loops || name == kJoinsItself) {
      EXPECT_LE(figures.seamStep, 1.0) << name;
    } else {
      EXPECT_LE(figures.firstSample, 0.002) << name;
      EXPECT_LE(figures.lastSample, 0.002) << name;
    }
    const double quietest = name == "snd_horror" ? -32 : -22.5;
    EXPECT_GE(figures.loudest, quietest) << name;
    EXPECT_LE(figures.loudest, -11) << name;
    if (const sound::Effect* effect = studio.EffectNamed(name)) {
      EXPECT_NEAR(figures.loudest, effect->level, 0.6) << name;
    }
    // Something must be left of it on a small loudspeaker.
    double above = 0;
    for (size_t band = 2; band < figures.bands.size(); ++band)
      above += std::pow(10, figures.bands[band] / 10);
    EXPECT_GT(10 * std::log10(above), -8) << name;
    // Nothing starts late: within 60 ms it is there, but for what swells or knocks.
    size_t start = 0;
    while (start < track.Length() && std::fabs(track.left[start]) < 0.003f) ++start;
    EXPECT_LT(static_cast<double>(start) / sound::kRate, 0.06) << name;
  }
}

TEST(SoundAssets, SongsHaveTheirLengthAndNoHarshPlaces) {
  const SoundStudio studio("assets");
  std::set<std::tuple<double, int, int>> shapes;
  for (const auto& [name, row] : Rows()) {
    const auto song = studio.SongNamed(name);
    if (!song) continue;
    const sound::Score score = sound::PlayOut(*song);
    EXPECT_NEAR(score.beats * 60 / song->tempo, row.seconds, row.music ? row.seconds * 0.03 : 0.001) << name;
    for (const std::string& place : sound::HarshPlaces(*song, score)) ADD_FAILURE() << name << ": " << place;
    for (const sound::Instrument& instrument : song->instruments) {
      int lowest = 200, highest = 0;
      for (const auto& note : score.notes) {
        if (&song->instruments[static_cast<size_t>(note.instrument)] != &instrument) continue;
        lowest = std::min(lowest, note.note), highest = std::max(highest, note.note);
      }
      if (instrument.role == "lead" && highest > 0) {
        EXPECT_LE(highest - lowest, 30) << name << " " << instrument.name;
      }
    }
    if (row.music) {
      EXPECT_TRUE(shapes.insert({song->tempo, song->key, song->meter}).second) << name << " is like another";
    }
  }
}

// One song through the whole chain stands for all: the others differ in their notes only.
TEST(SoundAssets, ASongIsLevelledSeamlessAndNeverSilent) {
  const SoundStudio studio("assets");
  for (const char* name : {"Beat", "Cave"}) {
    const sound::Figures figures = sound::Measure(studio.Samples(name));
    EXPECT_NEAR(figures.loudness, studio.SongNamed(name)->target, 0.3) << name;
    EXPECT_LE(figures.seamStep, 1.0) << name;
    EXPECT_LE(figures.peak, -1.4) << name;
    EXPECT_EQ(figures.clipped, 0u) << name;
    EXPECT_LT(figures.silence, 0.3) << name;
    for (const double band : figures.bands) EXPECT_LT(band, -3.5) << name << ": one octave drowns the others";
  }
}

} // namespace
} // namespace vesk
