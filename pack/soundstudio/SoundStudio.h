#pragma once
// The sound studio: compiles the text sources in assets/sounds/ and assets/songs/ to samples and to Ogg
// Vorbis. assets/sounds/README.md describes the sources. One thread at a time per SoundStudio.
#include "pack/SourceCache.h"
#include "pack/soundstudio/Effect.h"
#include "pack/soundstudio/Score.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

class SoundStudio {
public:
  // Reads all effects and the names of all songs. `cache` keeps compiled sounds between runs; empty for none.
  // Throws std::runtime_error, in words, with file and line; two sources of one name are an error.
  explicit SoundStudio(const std::filesystem::path& assets, const std::filesystem::path& cache = {});

  bool Has(const std::string& name) const;
  std::vector<std::string> Names() const; // of all sources, sorted

  // Whether it loops, by its source. Only for names it has, like everything below.
  bool Loops(const std::string& name) const;
  const sound::Effect* EffectNamed(const std::string& name) const;     // null for a song
  std::optional<sound::Song> SongNamed(const std::string& name) const; // none for an effect

  // The finished samples.
  sound::Track Samples(const std::string& name) const;

  // The finished sound as an Ogg Vorbis stream, from the cache when its source hasn't changed.
  std::string Ogg(const std::string& name) const;

private:
  std::string SourceOf(const std::string& name) const; // all that the finished sound depends on

  pack::SourceCache m_cache;
  std::map<std::string, sound::Effect> m_effects;
  std::map<std::string, std::filesystem::path> m_songs;
};

namespace sound {

// 16-bit values in turn from both channels, or from one when both are equal; rounded with a little noise, so
// that quiet tails don't crackle.
std::vector<int16_t> ToPcm(const Track& track, int& channels);

} // namespace sound
} // namespace vesk
