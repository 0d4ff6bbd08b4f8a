// Looks at the pictures: contact sheets and a check against the tables. Looks at sounds too.
#include "pack/soundstudio/Figures.h"
#include "pack/soundstudio/SongRender.h"
#include "pack/soundstudio/SoundStudio.h"
#include "pack/studio/Studio.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fstream>

namespace {

using namespace vesk;

void WriteWav(const std::filesystem::path& file, const sound::Track& track) {
  int channels = 1;
  const std::vector<int16_t> pcm = sound::ToPcm(track, channels);
  const auto bytes = static_cast<uint32_t>(pcm.size() * 2), rate = static_cast<uint32_t>(sound::kRate);
  const auto width = static_cast<uint32_t>(channels) * 2;
  const uint32_t words[] = {0x46464952, bytes + 36,   0x45564157,
                            0x20746d66, 16,           1u | static_cast<uint32_t>(channels) << 16,
                            rate,       rate * width, width | 16u << 16,
                            0x61746164, bytes};
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(words), sizeof words);
  out.write(reinterpret_cast<const char*>(pcm.data()), static_cast<std::streamsize>(bytes));
  if (!out) throw std::runtime_error(file.string() + ": can't be written");
}

struct Listening {
  std::string prefix, wav, picture;
  bool scoreOnly = false;
};

constexpr int kWide = 1700, kSmall = 180, kColumns = 8; // pixels, pictures a row

void Print(const std::string& name, bool loops, const sound::Figures& f) {
  std::printf(
      "%-16s %6.3f s%s loudest %5.1f whole %5.1f peak %5.1f dB silence %.2f s ends %.4f %.4f seam %.2f bands",
      name.c_str(), f.seconds, loops ? " loop" : "", f.loudest, f.loudness, f.peak, f.silence, f.firstSample,
      f.lastSample, f.seamStep);
  for (const double band : f.bands) std::printf(" %.0f", band);
  std::printf("\n");
}

// Figures, and on demand samples and pictures, of all sounds whose names begin so.
int Listen(const SoundStudio& studio, const Listening& wish) {
  std::vector<std::string> names = studio.Names();
  std::erase_if(names, [&](const std::string& name) { return !name.starts_with(wish.prefix); });
  const bool one = names.size() == 1; // drawn large, a song with its notes
  std::vector<Picture> pictures;
  for (const std::string& name : names) {
    if (const std::optional<sound::Song> song = studio.SongNamed(name)) {
      const sound::Score score = sound::PlayOut(*song);
      std::printf("%s: %.2f s, %zu notes, %zu strokes\n", name.c_str(), score.beats * 60 / song->tempo,
                  score.notes.size(), score.hits.size());
      for (const std::string& place : sound::HarshPlaces(*song, score)) std::printf("  %s\n", place.c_str());
      if (one) pictures.push_back(sound::PianoRoll(*song, score, kWide));
      if (wish.scoreOnly) continue;
    }
    const sound::Track track = studio.Samples(name);
    Print(name, studio.Loops(name), sound::Measure(track));
    if (!wish.wav.empty()) WriteWav(std::filesystem::path(wish.wav) / (name + ".wav"), track);
    if (!wish.picture.empty())
      pictures.push_back(one ? sound::Spectrogram(track, kWide, 300)
                             : sound::Spectrogram(track, kSmall, 130));
  }
  if (names.empty()) throw std::runtime_error("no source makes a sound \"" + wish.prefix + "\"");
  if (!wish.picture.empty() && !pictures.empty())
    WritePng(sound::Stack(pictures, one ? 1 : kColumns), wish.picture);
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  CLI::App app{"Compiles the sources of pictures and sounds and shows them"};
  std::string assets = "assets", cache, prefix, output = "sheet.png";
  int scale = 4;
  bool placeholders = false;
  app.add_option("--assets", assets, "Folder of the sources")->capture_default_str();
  app.add_option("--cache", cache, "Folder that keeps compiled pictures");
  app.require_subcommand(1);
  auto* sheet = app.add_subcommand("sheet", "Draw a contact sheet");
  sheet->add_option("prefix", prefix, "Start of the names")->required();
  sheet->add_option("-o,--output", output, "PNG to write")->capture_default_str();
  sheet->add_option("--scale", scale, "Size of a pixel")->capture_default_str();
  sheet->add_flag("--placeholders", placeholders, "Show pictures without a source too");
  auto* check = app.add_subcommand("check", "Say what differs from the tables");
  check->add_option("prefix", prefix, "Start of the names");
  std::vector<int> area;
  int frame = 0;
  auto* view = app.add_subcommand("view", "Draw one frame or a part of it, enlarged");
  view->add_option("name", prefix, "Name of the picture")->required();
  view->add_option("-o,--output", output, "PNG to write")->capture_default_str();
  view->add_option("--scale", scale, "Size of a pixel")->capture_default_str();
  view->add_option("--frame", frame, "Which frame")->capture_default_str();
  view->add_option("--area", area, "Left, top, width and height in pixels")->expected(4);
  Listening listening;
  auto* listen =
      app.add_subcommand("listen", "Compile sounds and say how loud, how long and how bright they are");
  listen->add_option("prefix", listening.prefix, "Start of the names; nothing for all");
  listen->add_option("--wav", listening.wav, "Folder for the samples as WAV files");
  listen->add_option("--picture", listening.picture, "PNG of spectrograms, of songs with their notes");
  listen->add_flag("--score", listening.scoreOnly, "Of songs only the notes, with their harsh places");
  CLI11_PARSE(app, argc, argv);
  try {
    if (*listen) return Listen(SoundStudio(assets), listening);
    vesk::Studio studio(assets, cache);
    if (*sheet) {
      vesk::WritePng(vesk::MakeSheet(studio, prefix, scale, placeholders), output);
      return 0;
    }
    if (*view) {
      const auto& frames = studio.Frames(prefix);
      if (frame < 0 || static_cast<size_t>(frame) >= frames.size())
        throw std::runtime_error(prefix + " has no frame " + std::to_string(frame));
      vesk::WritePng(vesk::Enlarge(frames[static_cast<size_t>(frame)], area, scale), output);
      return 0;
    }
    int missing = 0, wrong = 0;
    for (const auto& spec : studio.Specs()) {
      if (spec.name.compare(0, prefix.size(), prefix) != 0) continue;
      if (!studio.Has(spec.name)) {
        ++missing;
        continue;
      }
      for (const auto& difference : studio.Differences(spec.name))
        std::printf("%s\n", difference.c_str()), ++wrong;
    }
    std::printf("%d differences, %d pictures without a source\n", wrong, missing);
    return wrong ? 1 : 0;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
}
