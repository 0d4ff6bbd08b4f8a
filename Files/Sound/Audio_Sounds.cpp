// The sounds of the container and what they are turned into.
#include "Files/Code/Value.h"
#include "Files/Sound/Audio_Log.h"
#include "Files/Sound/Audio_Sound.h"
#include "Files/Sound/SoundRecords.h"
#include "Files/Support/Support_Files.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>

namespace vesk {

namespace {

constexpr int32_t kModeStreamed = 100;
constexpr int32_t kModeCompressed = 102;
constexpr int32_t kModeDecoded = 103;
constexpr int32_t kMostSounds = 100000;   // ids from here on are not sounds of the container
constexpr size_t kMostBytesAhead = 40000; // of an encoded sound that is decoded before anyone asks; some 3 s

struct PreparingState {
  CThread thread;
  std::atomic<bool> quit{false};
  bool started = false;
};
PreparingState g_preparing;

uint32_t Word(std::span<const uint8_t> bytes, size_t at, size_t width) {
  uint32_t word = 0;
  for (size_t i = 0; i < width && at + i < bytes.size(); ++i)
    word |= static_cast<uint32_t>(bytes[at + i]) << (8 * i);
  return word;
}

// A RIFF WAVE image with plain samples of 8 or 16 bits.
bool ReadWave(std::span<const uint8_t> bytes, DecodedSound& sound) {
  const auto tagAt = [&](size_t at, const char* tag) {
    return at + 4 <= bytes.size() && std::memcmp(bytes.data() + at, tag, 4) == 0;
  };
  if (!tagAt(0, "RIFF") || !tagAt(8, "WAVE")) return false;
  uint32_t channels = 0, bits = 0;
  for (size_t at = 12; at + 8 <= bytes.size();) {
    const size_t size = std::min<size_t>(Word(bytes, at + 4, 4), bytes.size() - at - 8);
    const size_t body = at + 8;
    if (tagAt(at, "fmt ") && size >= 16 && Word(bytes, body, 2) == 1) {
      channels = Word(bytes, body + 2, 2);
      sound.rate = static_cast<int>(Word(bytes, body + 4, 4));
      bits = Word(bytes, body + 14, 2);
    } else if (tagAt(at, "data") && (channels == 1 || channels == 2) && (bits == 8 || bits == 16)) {
      const size_t frameBytes = channels * bits / 8;
      sound.format = channels == 1 ? (bits == 8 ? AL_FORMAT_MONO8 : AL_FORMAT_MONO16)
                                   : (bits == 8 ? AL_FORMAT_STEREO8 : AL_FORMAT_STEREO16);
      const auto* first = bytes.data() + body;
      sound.bytes.assign(first, first + size / frameBytes * frameBytes);
      return sound.rate > 0;
    }
    at = body + size + (size & 1);
  }
  return false;
}

bool MakeBuffer(AudioSound& sound) {
  DecodedSound decoded;
  const bool heard = Audio().context->listening;
  int rate = 0, channels = 0;
  int64_t frames = 0;
  if (!sound.decodedAtLoad) {
    if (!ReadWave(sound.data, decoded)) return false;
  } else if (!heard && Ogg_Measure(sound.data, rate, channels, frames) &&
             frames * channels * 2 <= std::numeric_limits<ALsizei>::max()) {
    // A buffer that only takes its time.
    alGenBuffers(1, &sound.buffer);
    alBufferData(sound.buffer, channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16, nullptr,
                 static_cast<ALsizei>(frames * channels * 2), rate);
    return true;
  } else if (!Ogg_DecodeWhole(sound.data, sound.name, decoded)) {
    return false;
  }
  alGenBuffers(1, &sound.buffer);
  alBufferData(sound.buffer, decoded.format, decoded.bytes.data(), static_cast<ALsizei>(decoded.bytes.size()),
               decoded.rate);
  return true;
}

} // namespace

void Audio_AddSound(int32_t index, const SoundRecord& record) {
  if (index < 0 || index >= kMostSounds) return;
  auto& sounds = Audio().sounds;
  if (static_cast<size_t>(index) >= sounds.size()) sounds.resize(static_cast<size_t>(index) + 1);
  auto sound = std::make_unique<AudioSound>();
  sound->name = record.file;
  sound->assetName = record.name;
  sound->gain = record.gain;
  sound->audioIndex = record.audioIndex;
  sound->streamed = record.flags == kModeStreamed || (record.flags > 0 && record.flags < kModeStreamed);
  sound->compressed = sound->streamed || record.flags == kModeCompressed;
  sound->decodedAtLoad = record.flags == kModeDecoded;
  sound->audioGroup = record.audioGroup;
  sounds[static_cast<size_t>(index)] = std::move(sound);
}

void Audio_AddGroup(int32_t group, const std::string& name) {
  if (group < 0 || group >= kMostSounds) return;
  auto& groups = Audio().groups;
  if (static_cast<size_t>(group) >= groups.size()) groups.resize(static_cast<size_t>(group) + 1);
  groups[static_cast<size_t>(group)].name = name;
  // Group 0 is the container itself.
  if (group == 0) groups[0].state = AudioGroupState::Loaded;
}

void Audio_BindData(int32_t audioIndex, std::span<const uint8_t> bytes, int32_t group) {
  for (auto& sound : Audio().sounds) {
    if (!sound || sound->audioIndex != audioIndex || Audio_GroupOf(*sound) != group) continue;
    Audio_ReleaseBuffer(*sound);
    sound->data = bytes;
    sound->length = -1;
  }
}

int32_t Audio_GroupOf(const AudioSound& sound) {
  const bool known = sound.audioGroup > 0 && static_cast<size_t>(sound.audioGroup) < Audio().groups.size();
  return known ? sound.audioGroup : 0;
}

void Audio_PrepareSounds(int32_t) { Audio_StartPreparing(); }

bool Audio_PrepareSound(AudioSound& sound) {
  if (sound.streamed) {
    if (sound.filePath.empty()) sound.filePath = Files_FindForReading(sound.name);
    return !sound.filePath.empty();
  }
  if (sound.compressed) return !sound.data.empty();
  const CLock lock(sound.prepareLock);
  if (!sound.prepared) {
    sound.prepared = true;
    if (!MakeBuffer(sound)) sound.buffer = 0;
  }
  return sound.buffer != 0;
}

void Audio_ReleaseBuffer(AudioSound& sound) {
  const CLock lock(sound.prepareLock);
  if (sound.buffer != 0) alDeleteBuffers(1, &sound.buffer);
  sound.buffer = 0;
  sound.prepared = false;
}

void Audio_MeasureSound(AudioSound& sound) {
  if (sound.length >= 0) return;
  int rate = 0, channels = 0;
  int64_t frames = 0;
  bool measured = false;
  if (sound.streamed) {
    COggDecoder decoder;
    measured = Audio_PrepareSound(sound) && decoder.OpenFile(sound.filePath) == 0 && decoder.Rate() > 0;
    if (measured) rate = decoder.Rate(), channels = decoder.Channels(), frames = decoder.PcmTotal();
  } else if (sound.compressed || sound.decodedAtLoad) {
    measured = Ogg_Measure(sound.data, rate, channels, frames);
  } else if (DecodedSound wave; ReadWave(sound.data, wave)) {
    rate = wave.rate;
    channels = wave.format == AL_FORMAT_STEREO8 || wave.format == AL_FORMAT_STEREO16 ? 2 : 1;
    const bool small = wave.format == AL_FORMAT_MONO8 || wave.format == AL_FORMAT_STEREO8;
    frames = static_cast<int64_t>(wave.bytes.size()) / (int64_t{channels} * (small ? 1 : 2));
    measured = true;
  }
  sound.sampleRate = rate;
  sound.channels = channels;
  sound.pcmLength = measured ? std::max<int64_t>(frames, 0) : 0;
  sound.length = measured ? static_cast<float>(static_cast<double>(sound.pcmLength) / rate) : 0;
}

void Audio_StartPreparing() {
  AudioState& audio = Audio();
  // Where nobody listens a sound is ready in no time when it is played. A long one, of which there are few,
  // is decoded at its first play: decoded it takes megabytes.
  if (g_preparing.started || !audio.enabled || !audio.context->listening ||
      !audio.context->device->HasThread())
    return;
  g_preparing.started = true;
  g_preparing.quit = false;
  std::vector<AudioSound*> waiting;
  for (auto& sound : audio.sounds)
    if (sound && !sound->OnStream() && !sound->data.empty() && sound->data.size() <= kMostBytesAhead)
      waiting.push_back(sound.get());
  g_preparing.thread.Start([waiting] {
    for (AudioSound* sound : waiting) {
      if (g_preparing.quit) return;
      Audio_PrepareSound(*sound);
    }
  });
}

void Audio_StopPreparing() {
  g_preparing.quit = true;
  g_preparing.thread.Join();
  g_preparing.started = false;
}

} // namespace vesk
