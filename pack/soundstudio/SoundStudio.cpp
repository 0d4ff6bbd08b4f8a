#include "pack/soundstudio/SoundStudio.h"

#include "pack/PlaceholderSound.h"
#include "pack/TextSource.h"
#include "pack/soundstudio/SongRender.h"

#include <algorithm>
#include <stdexcept>

namespace vesk {

using namespace sound;

namespace {

namespace fs = std::filesystem;

// To be raised whenever the same source would give another sound.
constexpr const char* kSynthesiserVersion = "2";
constexpr float kEffectQuality = 0.3f, kSongQuality = 0.15f;

std::vector<fs::path> Files(const fs::path& folder, const std::string& extension) {
  std::vector<fs::path> files;
  if (fs::exists(folder))
    for (const auto& entry : fs::recursive_directory_iterator(folder))
      if (entry.path().extension() == extension) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

} // namespace

SoundStudio::SoundStudio(const fs::path& assets, const fs::path& cache)
    : m_cache(cache.empty() ? cache : cache / "sounds", ".ogg") {
  const auto add = [&](const fs::path& file, const std::string& name) {
    if (Has(name)) throw std::runtime_error(file.string() + ": a second source of " + name);
  };
  for (const fs::path& file : Files(assets / "sounds", ".fx"))
    for (Effect& effect : ReadEffects(file)) {
      add(file, effect.name);
      m_effects[effect.name] = std::move(effect);
    }
  for (const char* folder : {"sounds", "songs"})
    for (const fs::path& file : Files(assets / folder, ".song")) {
      add(file, file.stem().string());
      m_songs[file.stem().string()] = file;
    }
}

bool SoundStudio::Has(const std::string& name) const { return m_effects.count(name) || m_songs.count(name); }

std::vector<std::string> SoundStudio::Names() const {
  std::vector<std::string> names;
  for (const auto& [name, effect] : m_effects) names.push_back(name);
  for (const auto& [name, file] : m_songs) names.push_back(name);
  std::sort(names.begin(), names.end());
  return names;
}

const Effect* SoundStudio::EffectNamed(const std::string& name) const {
  const auto found = m_effects.find(name);
  return found == m_effects.end() ? nullptr : &found->second;
}

std::optional<Song> SoundStudio::SongNamed(const std::string& name) const {
  const auto found = m_songs.find(name);
  if (found == m_songs.end()) return {};
  return ReadSong(found->second);
}

bool SoundStudio::Loops(const std::string& name) const {
  const Effect* effect = EffectNamed(name);
  return effect ? effect->loop : SongNamed(name).value().loop;
}

Track SoundStudio::Samples(const std::string& name) const {
  if (const Effect* effect = EffectNamed(name)) return Render(*effect);
  const Song song = SongNamed(name).value();
  return Render(song, PlayOut(song));
}

std::string SoundStudio::SourceOf(const std::string& name) const {
  const Effect* effect = EffectNamed(name);
  return kSynthesiserVersion + (effect ? effect->text : pack::ReadTextFile(m_songs.at(name)));
}

std::string SoundStudio::Ogg(const std::string& name) const {
  const std::string source = m_cache.Keeps() ? SourceOf(name) : "";
  if (std::string kept = m_cache.Read(name, source); !kept.empty()) return kept;
  int channels = 1;
  const std::vector<int16_t> pcm = ToPcm(Samples(name), channels);
  std::vector<float> samples(pcm.size());
  std::transform(pcm.begin(), pcm.end(), samples.begin(),
                 [](int16_t x) { return static_cast<float>(x) / 32768.0f; });
  const bool effect = EffectNamed(name) != nullptr;
  std::string bytes = pack::EncodeOgg(samples, effect ? kEffectQuality : kSongQuality, channels);
  m_cache.Write(name, source, bytes);
  return bytes;
}

std::vector<int16_t> sound::ToPcm(const Track& track, int& channels) {
  channels = track.left == track.right ? 1 : 2;
  std::vector<int16_t> pcm;
  pcm.reserve(track.Length() * static_cast<size_t>(channels));
  RandomNumbers random(77);
  for (size_t i = 0; i < track.Length(); ++i)
    for (int c = 0; c < channels; ++c) {
      const double one = random.Signed(), other = random.Signed();
      const double value = (c ? track.right[i] : track.left[i]) * 32767.0 + (one + other) * 0.5;
      pcm.push_back(static_cast<int16_t>(std::clamp(std::lrint(value), -32768L, 32767L)));
    }
  return pcm;
}

} // namespace vesk
