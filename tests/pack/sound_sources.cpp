// The formats of effects and songs: small sources written to a folder of their own.
#include "pack/soundstudio/Figures.h"
#include "pack/soundstudio/Loudness.h"
#include "pack/soundstudio/SongRender.h"
#include "pack/soundstudio/SoundStudio.h"

#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vesk {
namespace {

namespace fs = std::filesystem;
using sound::Track;

class Workshop {
public:
  Workshop() {
    static std::atomic<int> count = 0;
    folder =
        fs::temp_directory_path() / ("sounds-" + std::to_string(::getpid()) + "-" + std::to_string(count++));
    fs::create_directories(folder / "sounds");
    fs::create_directories(folder / "songs");
  }
  ~Workshop() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
  void Effects(const std::string& text) { std::ofstream(folder / "sounds" / "a.fx") << text; }
  void Song(const std::string& text) { std::ofstream(folder / "songs" / "Tune.song") << text; }
  std::string Trouble() {
    try {
      const SoundStudio studio(folder);
      for (const std::string& name : studio.Names())
        if (const auto song = studio.SongNamed(name)) sound::PlayOut(*song);
    } catch (const std::runtime_error& e) { return e.what(); }
    return "";
  }
  sound::Score Score() { return sound::PlayOut(*SoundStudio(folder).SongNamed("Tune")); }
  fs::path folder;
};

constexpr const char* kBand =
    "song Tune\ntempo 120\nkey C major\ninst lead osc=pulse\ninst bass osc=tri range=c2:b2\n"
    "inst keys osc=saw range=c4:c5 voices=3\ndrum kick type=kick\n";

// Crossings of zero upwards a second, the pitch of a plain tone.
double Pitch(const Track& track, double from, double to) {
  int crossings = 0;
  for (auto i = static_cast<size_t>(from * sound::kRate) + 1; i < static_cast<size_t>(to * sound::kRate); ++i)
    crossings += track.left[i - 1] < 0 && track.left[i] >= 0;
  return crossings / (to - from);
}

TEST(SoundSource, EffectsKeepLengthPitchLevelAndRestOfLayers) {
  Workshop shop;
  shop.Effects("sound snd_a 0.5 level=-18  # a comment\n  layer osc=sin hz=400>800@.2 adsr=.01:1:1:.02\n"
               "sound snd_b 0.3 level=-20\n  layer osc=sin hz=440 adsr=.01:1:1:.02\n"
               "  layer osc=sin hz=3000 adsr=.01:1:1:.02 vol=-20\n");
  const SoundStudio studio(shop.folder);
  EXPECT_EQ(studio.Names(), (std::vector<std::string>{"snd_a", "snd_b"}));
  const Track a = studio.Samples("snd_a");
  EXPECT_EQ(a.Length(), 22050u);
  EXPECT_NEAR(Pitch(a, 0.25, 0.45), 800, 12);
  EXPECT_NEAR(sound::LoudestWindow(a, 0.1), -18, 0.1);
  // A layer with vol=-20 stands 20 dB below its neighbour, though ears hear 3000 Hz better.
  const sound::Figures b = sound::Measure(studio.Samples("snd_b"));
  EXPECT_NEAR(b.loudest, -20, 0.1);
  EXPECT_NEAR(b.bands[6] - b.bands[3], -23, 2);
}

TEST(SoundSource, LoopsOfToneAndNoiseHaveNoSeam) {
  Workshop shop;
  shop.Effects("sound snd_tone 0.31 loop\n  layer osc=sin hz=333 steady=.05 vib=7:30 trem=9:.4\n"
               "sound snd_hiss 0.4 loop\n  layer osc=noise cut=900 filter=bp res=.8 steady=.1\n"
               "sound snd_tail 0.4 loop reverb=.5:.9 echo=.4:.15:.5\n  layer type=tom at=.35\n");
  const SoundStudio studio(shop.folder);
  for (const std::string& name : studio.Names()) {
    const Track track = studio.Samples(name);
    EXPECT_LE(sound::Measure(track).seamStep, 1.0) << name;
    // Loudness right before and after the seam is that of the rest: neither a gap nor a bump.
    if (name == "snd_tail") continue;
    Track seam(4410);
    for (size_t i = 0; i < seam.Length(); ++i) {
      const size_t at = (track.Length() - 2205 + i) % track.Length();
      seam.left[i] = track.left[at], seam.right[i] = track.right[at];
    }
    EXPECT_GT(sound::LoudestWindow(seam, 0.1), sound::LoudestWindow(track, 0.1) - 4) << name;
  }
}

TEST(SoundSource, WrongSourcesSayWhereAndWhy) {
  const auto effect = [](const std::string& text) {
    Workshop shop;
    shop.Effects(text);
    return shop.Trouble();
  };
  EXPECT_NE(effect("sound snd_a 0.2\n  layer osc=sine hz=4\n").find("a.fx:2: \"sine\" is no wave"),
            std::string::npos);
  EXPECT_NE(
      effect("sound snd_a 0.2\n  layer osc=sin hz=4 volume=3\n").find("a.fx:2: \"volume\" is no setting"),
      std::string::npos);
  EXPECT_NE(effect("sound snd_a 0.2\n  layer osc=sin\n").find("has hz="), std::string::npos);
  EXPECT_NE(effect("sound snd_a 0.2\n  layer osc=sin hz=400>0@.1\n").find("below 1 hertz"),
            std::string::npos);
  EXPECT_NE(effect("sound snd_a 0.2\n  layer osc=sin hz=400>500@.2>600@.1\n").find("don't rise"),
            std::string::npos);
  EXPECT_NE(effect("sound snd_a -1\n").find("more than 0"), std::string::npos);
  EXPECT_NE(effect("layer osc=noise\n").find("below a sound"), std::string::npos);
  EXPECT_NE(effect("sound snd_a 1\n").find("has no layer"), std::string::npos);
  EXPECT_NE(
      effect("sound snd_a 1\n layer osc=noise\nsound snd_a 1\n layer osc=noise\n").find("second source"),
      std::string::npos);
  EXPECT_NE(effect("sound snd_a 1\n layer osc=noise adsr=-1\n").find("between 0 and 60"), std::string::npos);
  EXPECT_NE(effect("sound snd_a 1\n layer osc=sin hz=1e300\n").find("too large"), std::string::npos);
  const auto song = [](const std::string& text) {
    Workshop shop;
    shop.Song(kBand + text);
    return shop.Trouble();
  };
  EXPECT_NE(song("section A 2\nchords | C | H |\norder A\n").find("Tune.song:9: \"H\" is no chord"),
            std::string::npos);
  EXPECT_NE(song("section A 2\nchords | C |\nlead | c4 . . |\norder A\n").find("3 steps in a meter of 4"),
            std::string::npos);
  EXPECT_NE(song("section A 2\nchords | C |\nlead | c4 . . zz |\norder A\n").find("\"zz\" is no step"),
            std::string::npos);
  EXPECT_NE(song("section A 3\nchords | C |\nlead | c4 . . . | c4 . . . |\norder A\n")
                .find("2 bars, which don't divide 3"),
            std::string::npos);
  EXPECT_NE(song("section A 1\nchords | C |\nlead | c4 ( d4 . . |\norder A\n").find("a \"(\" without"),
            std::string::npos);
  EXPECT_NE(song("section A 1\nchords | C |\nkick | x.y. |\norder A\n").find("\"y\" is no stroke"),
            std::string::npos);
  EXPECT_NE(
      song("section A 1\nchords | C |\nflute | c4 . . . |\norder A\n").find("\"flute\" is no instrument"),
      std::string::npos);
  EXPECT_NE(song("section A 1\nchords | C |\norder A B\n").find("no section \"B\""), std::string::npos);
  EXPECT_NE(song("section A 1\norder A\n").find("no chords"), std::string::npos);
  EXPECT_NE(song("tempo 20\nsection A 64\nchords | C |\norder A A\n").find("not longer than"),
            std::string::npos);
  EXPECT_NE(song("section A 1\nchords | C |\n").find("has an order"), std::string::npos);
}

TEST(SoundSource, StepsBecomeNotesInTheirBeats) {
  Workshop shop;
  shop.Song(std::string(kBand) + "section A 2\nchords | C | Am7 |\nlead | c5 - ( e5 g5 ) . | 3 . . 8! |\n"
                                 "bass | r r5 r8 r3 |\nkick | x...o... |\n"
                                 "section B 2 like A up 2\nlead none\norder A B\n");
  const sound::Score score = shop.Score();
  EXPECT_DOUBLE_EQ(score.beats, 16);
  std::vector<sound::ScoreNote> lead, bass;
  for (const auto& note : score.notes) (note.instrument == 0 ? lead : bass).push_back(note);
  ASSERT_EQ(lead.size(), 5u);
  EXPECT_EQ(lead[0].note, 72);
  EXPECT_DOUBLE_EQ(lead[0].off, 2);
  EXPECT_DOUBLE_EQ(lead[2].on, 2.5);
  EXPECT_EQ(lead[3].note, 64); // the third degree of C major in octave 4
  EXPECT_EQ(lead[4].note, 72); // the eighth is an octave up
  EXPECT_DOUBLE_EQ(lead[4].velocity, 1);
  ASSERT_EQ(bass.size(), 16u);
  const int wanted[8] = {36, 43, 48, 40, 45, 52, 57, 48}; // C G C E, then A E A C
  for (size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(bass[i].note, wanted[i]) << i;
    if (i < 4) { EXPECT_EQ(bass[i + 8].note, wanted[i] + 2) << i; }
  }
  EXPECT_EQ(score.hits.size(), 8u);
  EXPECT_EQ(score.chords[2].second.root, 2);
}

TEST(SoundSource, SwingMovesOffbeatsOfEvenGridsOnly) {
  Workshop shop;
  shop.Song(std::string("swing .6\n") + kBand +
            "section A 1\nchords | C |\nlead | c5 d5 e5 f5 g5 a5 b5 c6 |\n"
            "bass | c2 d2 e2 c2 d2 e2 c2 d2 e2 c2 d2 e2 |\norder A\n");
  const sound::Score score = shop.Score();
  EXPECT_NEAR(score.notes[1].on, 0.6, 1e-9);
  EXPECT_NEAR(score.notes[2].on, 1, 1e-9);
  EXPECT_NEAR(score.notes[9].on, 1.0 / 3, 1e-9);
}

TEST(SoundSource, VoicesLieInRangeAndMoveLittle) {
  std::vector<int> before;
  for (const char* name : {"C", "Am7", "Dm9", "G7", "Cmaj7", "F#m7b5", "B7", "Em"}) {
    const sound::Chord chord = sound::ReadChord(name);
    const std::vector<int> voices = sound::VoicesOf(chord, 3, 52, 72, true, before);
    ASSERT_EQ(voices.size(), 3u) << name;
    for (size_t i = 0; i < voices.size(); ++i) {
      EXPECT_TRUE(chord.Has(voices[i])) << name;
      EXPECT_GE(voices[i], 52);
      EXPECT_LE(voices[i], 72);
      if (!before.empty()) { EXPECT_LE(std::abs(voices[i] - before[i]), 5) << name; }
    }
    before = voices;
  }
  EXPECT_TRUE(sound::VoicesOf(sound::ReadChord("C"), 3, 60, 62, true, {}).empty());
}

TEST(SoundSource, HarshPlacesAreFound) {
  const auto found = [](const std::string& bars) {
    Workshop shop;
    shop.Song(kBand + bars + "order A\n");
    return sound::HarshPlaces(*SoundStudio(shop.folder).SongNamed("Tune"), shop.Score());
  };
  EXPECT_TRUE(found("section A 1\nchords | C |\nlead | c5 d5 e5 . |\n").empty()); // passing
  const auto foreign = found("section A 1\nchords | C |\nlead | f#5 - - c5 |\n");
  ASSERT_EQ(foreign.size(), 1u);
  EXPECT_EQ(foreign[0], "lead F#5 is foreign to C at A:1.1.00");
  const auto rub = found("section A 1\nchords | Cmaj7 |\nlead | c5 - - - |\nkeys | b3 - - - |\n");
  ASSERT_EQ(rub.size(), 1u);
  EXPECT_NE(rub[0].find("rubs against"), std::string::npos);
}

TEST(SoundSource, SongsHaveTheirExactLengthTargetAndNoSeamAndRampsGrow) {
  Workshop shop;
  shop.Song(std::string(kBand) +
            "target -17\nreverb 1.5 .4\necho .75 .5 .3\n"
            "section A 4\nchords | C | F | G | C |\nkeys | v - v . |\nbass | r . r5 . |\nkick | x...x... |\n"
            "lead | c5+e5 - . . |\nvel lead .2 1\norder A\n");
  const SoundStudio studio(shop.folder);
  const Track track = studio.Samples("Tune");
  EXPECT_EQ(track.Length(), static_cast<size_t>(8 * sound::kRate));
  const sound::Figures figures = sound::Measure(track);
  EXPECT_NEAR(figures.loudness, -17, 0.2);
  EXPECT_LE(figures.seamStep, 1.0);
  EXPECT_LE(figures.peak, -1.49);
  const sound::Score score = shop.Score();
  double first = 0, last = 0;
  for (const auto& note : score.notes) {
    if (note.instrument != 0) continue;
    if (first == 0) first = note.velocity;
    last = note.velocity;
  }
  EXPECT_GT(last, first * 3);
}

TEST(SoundSource, EqualSourcesAreEqualBytesAndTheCacheFollowsTheSource) {
  Workshop shop;
  const std::string source = "sound snd_a 0.2\n  layer osc=noise scatter=5:.1:-3 len=.01 adsr=.001:.02:0\n";
  shop.Effects(source);
  const fs::path cache = shop.folder / "cache";
  const std::string plain = SoundStudio(shop.folder).Ogg("snd_a");
  ASSERT_EQ(plain.substr(0, 4), "OggS");
  EXPECT_EQ(SoundStudio(shop.folder).Ogg("snd_a"), plain);
  EXPECT_EQ(SoundStudio(shop.folder, cache).Ogg("snd_a"), plain);
  const auto kept = [&] {
    return std::distance(fs::directory_iterator(cache / "sounds"), fs::directory_iterator{});
  };
  EXPECT_EQ(kept(), 1);
  // The cache is really used: what stands there comes back.
  std::ofstream(fs::directory_iterator(cache / "sounds")->path(), std::ios::binary) << "kept";
  EXPECT_EQ(SoundStudio(shop.folder, cache).Ogg("snd_a"), "kept");
  shop.Effects("# another comment changes nothing\n" + source);
  EXPECT_EQ(SoundStudio(shop.folder, cache).Ogg("snd_a"), "kept");
  shop.Effects("sound snd_a 0.2\n  layer osc=noise scatter=6:.1:-3 len=.01 adsr=.001:.02:0\n");
  EXPECT_NE(SoundStudio(shop.folder, cache).Ogg("snd_a"), "kept");
  EXPECT_EQ(kept(), 1);
}

} // namespace
} // namespace vesk
