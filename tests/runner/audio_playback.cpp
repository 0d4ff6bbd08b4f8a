// Voices, priorities, stops, fades and streams on the clock.
#include "Files/Base/Console.h"
#include "Files/Function/Function_Audio.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Threads.h"
#include "tests/runner/audio_support.h"

#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <memory>

#include <gtest/gtest.h>

using namespace vesk;
using namespace vesk::test;

namespace {

std::vector<uint8_t> Effect(double seconds) {
  return EncodeVorbis(static_cast<int>(seconds * 44100), 1, 44100);
}

// The text of the debug channel.
class LogTrap {
public:
  LogTrap() {
    auto console = std::make_unique<TErrStreamConsole>();
    m_console = console.get();
    Consoles().debug = std::move(console);
  }
  ~LogTrap() { Console_Reset(); }
  bool Has(const char* text) const { return m_console->Text().find(text) != std::string::npos; }

private:
  TErrStreamConsole* m_console;
};

} // namespace

TEST(Audio, AnEffectEndsOnTheClockHeardOrNot) {
  for (const bool listening : {false, true}) {
    AudioRig rig(listening);
    const int sound = rig.Add("beep", kEffect, Effect(0.5));
    rig.Tick();
    const int voice = audio_play_sound(sound, 1, false);
    EXPECT_EQ(voice, 400001);
    int ticks = 0;
    while (audio_is_playing(voice) && ticks < 100) rig.Tick(), ++ticks;
    EXPECT_NEAR(ticks, 30, 3) << (listening ? "heard" : "unheard");
    EXPECT_FALSE(audio_is_playing(sound));
    EXPECT_NEAR(audio_sound_length(sound), 0.5, 1e-4);
  }
}

TEST(Audio, AStreamEndsOnTheClockAndALoopedOneDoesNot) {
  for (const bool listening : {false, true}) {
    AudioRig rig(listening);
    const int music = rig.Add("song", kMusic, EncodeVorbis(44100, 2, 44100), 0.7f);
    const int once = audio_play_sound(music, 99, false);
    EXPECT_TRUE(audio_is_playing(once)) << "from the request on";
    int ticks = 0;
    while (audio_is_playing(once) && ticks < 200) rig.Tick(), ++ticks;
    EXPECT_NEAR(ticks, 60, 6) << (listening ? "heard" : "unheard");
    const int looped = audio_play_sound(music, 99, true);
    rig.Tick(150);
    EXPECT_TRUE(audio_is_playing(looped));
    EXPECT_NEAR(audio_sound_get_track_position(looped), 0.5, 0.1);
    audio_sound_set_track_position(looped, 0.2);
    rig.Tick(6);
    EXPECT_NEAR(audio_sound_get_track_position(looped), 0.3, 0.06);
  }
}

TEST(Audio, AtTheLimitOnlyAHigherPriorityTakesTheFirstOfTheLowest) {
  AudioRig rig(false);
  const int sound = rig.Add("long", kEffect, Effect(5));
  audio_channel_num(16);
  std::vector<int> voices;
  for (int i = 0; i < 16; ++i) voices.push_back(audio_play_sound(sound, 1, false));
  EXPECT_EQ(audio_play_sound(sound, 1, false), -1);
  const int strong = audio_play_sound(sound, 2, false);
  EXPECT_GT(strong, voices.back());
  EXPECT_FALSE(audio_is_playing(voices[0]));
  EXPECT_TRUE(audio_is_playing(voices[1]));
  audio_stop_sound(voices[5]);
  EXPECT_GT(audio_play_sound(sound, 0, false), strong) << "a stopping voice is the first to go";
  audio_channel_num(16);
  EXPECT_TRUE(audio_is_playing(strong)) << "the same limit stops nothing";
  audio_channel_num(1);
  EXPECT_FALSE(audio_is_playing(sound));
  EXPECT_EQ(::vesk::Audio().sources.size(), 2u);
  audio_channel_num(7);
  EXPECT_EQ(::vesk::Audio().sources.size(), 10u);
}

TEST(Audio, AStopSilencesAtOnceAndEndsTwoTicksLater) {
  AudioRig rig(true);
  const int sound = rig.Add("long", kEffect, Effect(5));
  const int voice = audio_play_sound(sound, 1, true);
  rig.Tick(3);
  audio_stop_sound(sound);
  EXPECT_FALSE(audio_is_playing(sound));
  ALint state = 0;
  const ALuint source = ::vesk::Audio().sources[0];
  rig.Tick();
  audio_stop_sound(sound); // changes nothing
  alGetSourcei(source, AL_SOURCE_STATE, &state);
  EXPECT_EQ(state, AL_PLAYING);
  rig.Tick();
  alGetSourcei(source, AL_SOURCE_STATE, &state);
  EXPECT_NE(state, AL_PLAYING);
  EXPECT_FALSE(audio_exists(voice));
  const int again = audio_play_sound(sound, 1, true);
  EXPECT_TRUE(audio_is_playing(again));
  EXPECT_EQ(Audio_Playing(), std::vector<std::string>{"long"});
  audio_stop_all();
  EXPECT_TRUE(Audio_Playing().empty());
  EXPECT_EQ(Audio_TakeStarted(), (std::vector<std::string>{"long", "long"}));
  EXPECT_TRUE(Audio_TakeStarted().empty());
}

TEST(Audio, GainsFadeTickByTick) {
  AudioRig rig(false);
  const int sound = rig.Add("long", kEffect, Effect(5), 0.5f);
  const int voice = audio_play_sound(sound, 1, true);
  audio_sound_gain(voice, 0, 330); // ten ticks of 33 ms, there being no room
  rig.Tick(5);
  EXPECT_NEAR(audio_sound_get_gain(voice), 0.5, 1e-5);
  ALfloat gain = 0;
  alGetSourcef(::vesk::Audio().sources[0], AL_GAIN, &gain);
  EXPECT_NEAR(gain, 0.25, 1e-5) << "voice and sound multiply";
  rig.Tick(7);
  EXPECT_NEAR(audio_sound_get_gain(voice), 0, 1e-5);
  audio_sound_gain(sound, 0.8, 0);
  EXPECT_NEAR(audio_sound_get_gain(sound), 0.8, 1e-5);
  audio_sound_pitch(sound, 1000);
  EXPECT_EQ(audio_sound_get_pitch(sound), 256);
  audio_set_master_gain(0, -2);
  EXPECT_EQ(audio_get_master_gain(0), 0);
}

TEST(Audio, PausedSoundsStandStill) {
  AudioRig rig(false);
  const int effect = rig.Add("effect", kEffect, Effect(0.2));
  const int music = rig.Add("music", kMusic, EncodeVorbis(22050, 2, 44100));
  const int a = audio_play_sound(effect, 1, false);
  const int b = audio_play_sound(music, 1, false);
  audio_pause_sound(b); // before the stream has begun
  audio_pause_sound(a);
  rig.Tick(60);
  EXPECT_TRUE(audio_is_paused(a));
  EXPECT_TRUE(audio_is_paused(b));
  EXPECT_FALSE(audio_is_playing(b));
  EXPECT_LT(audio_sound_get_track_position(b), 0.1);
  audio_resume_all();
  EXPECT_TRUE(audio_is_playing(a));
  EXPECT_TRUE(audio_is_playing(b));
  rig.Tick(45);
  EXPECT_FALSE(audio_is_playing(a));
  EXPECT_FALSE(audio_is_playing(b));
}

TEST(Audio, EmittersCarryTheirVoices) {
  AudioRig rig(true);
  const int sound = rig.Add("long", kEffect, Effect(5));
  const int emitter = audio_emitter_create();
  audio_emitter_falloff(emitter, 100, 1000, 1);
  audio_emitter_position(emitter, 400, 0, 0);
  audio_listener_orientation(0, 0, -1, 0, 1, 0);
  const int voice = audio_play_sound_on(emitter, sound, true, 1);
  ASSERT_GT(voice, 400000);
  const auto loudness = [&](size_t side) {
    rig.platform.audio.samples.clear();
    rig.Tick(12);
    double sum = 0;
    const auto& samples = rig.platform.audio.samples;
    for (size_t i = samples.size() / 2 + side; i < samples.size(); i += 2) sum += std::abs(samples[i]);
    return sum / static_cast<double>(samples.size() / 4);
  };
  const double far = loudness(1);
  EXPECT_LT(loudness(0), far * 0.1) << "right of the listener";
  audio_emitter_position(emitter, 200, 0, 0);
  EXPECT_NEAR(loudness(1) / far, 2, 0.1);
  audio_emitter_free(emitter);
  EXPECT_FALSE(audio_is_playing(voice));
  EXPECT_EQ(audio_play_sound_on(emitter, sound, false, 1), -1);
  EXPECT_EQ(audio_emitter_create(), emitter);
}

TEST(Audio, BadRequestsAreLoggedAndHarmless) {
  LogTrap log;
  AudioRig rig(true);
  const int broken = rig.Add("broken", kEffect, {1, 2, 3});
  const int brokenMusic = rig.Add("broken music", kMusic, std::vector<uint8_t>(5000, 7));
  const int missing = rig.Add("missing", 100, {});
  EXPECT_EQ(audio_play_sound(-1, 1, false), 0);
  EXPECT_EQ(audio_play_sound(99, 1, false), 0);
  audio_play_sound(broken, 1, false);
  audio_play_sound(brokenMusic, 1, false);
  audio_play_sound(missing, 1, false);
  audio_falloff_set_model(9);
  rig.Tick(3);
  for (const int sound : {broken, brokenMusic, missing}) EXPECT_FALSE(audio_is_playing(sound));
  EXPECT_TRUE(log.Has("Error: no sound exists for soundid 99\n"));
  EXPECT_TRUE(log.Has("opening ogg stream for broken.ogg"));
  EXPECT_TRUE(log.Has("ov_open_callbacks error"));
  EXPECT_TRUE(log.Has("could not find audio file for sound missing.ogg"));
  EXPECT_TRUE(log.Has("Attempting to set audio falloff to unknown model\n"));
  EXPECT_EQ(audio_sound_length(broken), 0);
}

TEST(Audio, WithoutADeviceTheClockStillEndsSounds) {
  LogTrap log;
  CHandDrivenPlatform platform;
  platform.audio.available = false;
  Platform_Set(&platform.Interfaces());
  Audio_Init(true);
  const std::vector<uint8_t> bytes = Effect(0.3);
  SoundRecord record;
  record.flags = kEffect;
  record.audioIndex = 0;
  Audio_AddSound(0, record);
  Audio_BindData(0, bytes);
  const int voice = audio_play_sound(0, 1, false);
  int ticks = 0;
  for (; audio_is_playing(voice) && ticks < 100; ++ticks) {
    platform.clock.Advance(16667);
    Audio_Update();
  }
  EXPECT_NEAR(ticks, 18, 4);
  EXPECT_TRUE(log.Has("Falling back to use dummy output.\n"));
  Audio_Quit();
  Audio_Init(false);
  EXPECT_EQ(audio_play_sound(0, 1, false), -1);
  EXPECT_FALSE(audio_is_playing(0));
  Audio_Update();
  Audio_Quit();
  Platform_Set(nullptr);
}

namespace {

// A device with a thread of its own, somewhat faster than a card's.
class ThreadedAudio final : public IAudioDevice {
public:
  ~ThreadedAudio() override { Close(); }
  bool Open(AudioFormat& format, AudioFill fill, void* user) override {
    m_open = true;
    m_thread.Start([this, frames = format.blockFrames, fill, user] {
      std::vector<int16_t> block(static_cast<size_t>(frames) * 2);
      CSystemClock clock;
      while (m_open) {
        fill(user, block.data(), frames);
        for (const int16_t sample : block) m_loudest = std::max<int>(m_loudest, std::abs(sample));
        clock.Sleep(2000);
      }
    });
    return true;
  }
  void Close() override {
    m_open = false;
    m_thread.Join();
  }
  bool IsOpen() const override { return m_open; }
  void Update(int64_t) override {}
  int Loudest() const { return m_loudest; }

private:
  std::atomic<bool> m_open{false};
  std::atomic<int> m_loudest{0};
  CThread m_thread;
};

} // namespace

TEST(Audio, DecodingIsThatOfTheReferenceDecoder) {
  const std::string folder = Directory_Temporary();
  for (const int channels : {1, 2}) {
    const std::vector<uint8_t> ogg = EncodeVorbis(50000, channels, 44100);
    ASSERT_TRUE(File_WriteAll(folder + "vesk_decode.ogg",
                              std::string_view(reinterpret_cast<const char*>(ogg.data()), ogg.size())));
    const std::string command =
        "oggdec -Q -R -b 16 -e 0 -s 1 -o " + folder + "vesk_decode.raw " + folder + "vesk_decode.ogg";
    ASSERT_EQ(std::system(command.c_str()), 0) << "oggdec comes with vorbis-tools, see tools/packages.txt";
    std::string expected;
    ASSERT_TRUE(File_ReadAll(folder + "vesk_decode.raw", expected));
    DecodedSound sound;
    ASSERT_TRUE(Ogg_DecodeWhole(ogg, "test", sound));
    ASSERT_EQ(sound.bytes.size(), static_cast<size_t>(50000 * channels * 2));
    EXPECT_EQ(std::string(sound.bytes.begin(), sound.bytes.end()), expected);
  }
  File_Remove(folder + "vesk_decode.ogg");
  File_Remove(folder + "vesk_decode.raw");
}

// Music heard through the whole way is the decoded sound over and over, sample for sample.
TEST(Audio, ALoopedStreamPassesItsEndWithoutAGap) {
  AudioRig rig(true);
  const std::vector<uint8_t> ogg = EncodeVorbis(30011, 2, 48000);
  DecodedSound whole;
  ASSERT_TRUE(Ogg_DecodeWhole(ogg, "song", whole));
  const auto* samples = reinterpret_cast<const int16_t*>(whole.bytes.data());
  const size_t count = whole.bytes.size() / 2;
  const int music = rig.Add("song", kMusic, ogg);
  rig.Tick();
  audio_play_sound(music, 1, true);
  rig.platform.audio.samples.clear();
  rig.Tick(120);
  const std::vector<int16_t>& heard = rig.platform.audio.samples;
  size_t first = 0;
  while (first < heard.size() && heard[first] == 0) ++first;
  first -= first % 2;
  ASSERT_LT(first + 3 * count, heard.size()) << "three times round";
  size_t begin = 0; // the first frames of the song may be zero themselves
  while (begin < count && static_cast<int>(static_cast<float>(samples[begin]) * 0.70710678f) == 0) ++begin;
  begin -= begin % 2;
  for (size_t i = 0; first + i < heard.size(); ++i) {
    const float expected = static_cast<float>(samples[(begin + i) % count]) * 0.70710678f;
    ASSERT_NEAR(heard[first + i], expected, 1.01f) << "sample " << i << " of rounds of " << count;
  }
}

// Audio on the system's clock and on a device with a thread of its own; ends before the sounds declared
// ahead.
struct LiveAudio {
  LiveAudio() {
    platform.audio = &device;
    platform.clock = &clock;
    Platform_Set(&platform);
    Audio_Init(true);
  }
  ~LiveAudio() {
    Audio_Quit();
    Platform_Set(nullptr);
  }
  ThreadedAudio device;
  CSystemClock clock;
  CHandDrivenPlatform hand;
  Platform platform = hand.Interfaces();
};

// With a device that has a thread of its own, everything at once; run under ThreadSanitizer.
TEST(Audio, ThreadsOfDeviceWorkersAndGameMeetInPeace) {
  std::deque<std::vector<uint8_t>> bytes;
  LiveAudio live;
  for (int i = 0; i < 6; ++i) {
    SoundRecord record;
    record.flags = i < 3 ? kEffect : kMusic;
    record.audioIndex = i;
    bytes.push_back(i < 3 ? Effect(0.05 * (i + 1)) : EncodeVorbis(20000, 2, 44100));
    Audio_AddSound(i, record);
    Audio_BindData(i, bytes.back());
  }
  audio_channel_num(16);
  for (int tick = 0; tick < 60; ++tick) {
    audio_play_sound(tick % 6, tick % 5, tick % 7 == 0);
    if (tick % 4 == 0) audio_stop_sound(tick % 3 + 3);
    if (tick % 9 == 0) audio_sound_gain(tick % 6, 0.5, 50);
    if (tick % 11 == 0) audio_pause_all();
    if (tick % 11 == 3) audio_resume_all();
    if (tick == 30) audio_channel_num(8);
    Audio_Update();
    live.clock.Sleep(5000);
  }
  audio_stop_all();
  for (int tick = 0; tick < 200 && !Audio_Playing().empty(); ++tick) {
    Audio_Update();
    live.clock.Sleep(2000);
  }
  EXPECT_TRUE(Audio_Playing().empty());
  EXPECT_GT(live.device.Loudest(), 1000);
}

// The stop is still being worked on when the play is asked for.
TEST(Audio, APlayStraightBehindAStopIsNotLost) {
  const std::vector<uint8_t> song = EncodeVorbis(40000, 2, 44100);
  LiveAudio live;
  SoundRecord record;
  record.flags = kMusic;
  record.audioIndex = 0;
  Audio_AddSound(0, record);
  Audio_BindData(0, song);
  COggAudio& streams = *Audio().ogg;
  AudioSound& sound = *Audio_SoundOf(0);
  streams.PlaySound(0, sound, true, 0, 1);
  live.clock.Sleep(30000);
  {
    const CLock mixing(Audio().context->lock); // the worker waits in the middle of the stop
    streams.StopSound(0);
    live.clock.Sleep(30000);
    streams.PlaySound(0, sound, true, 0, 1);
  }
  live.clock.Sleep(30000);
  EXPECT_TRUE(streams.Active(0)) << "a looped stream never ends by itself";
}

// The whole way: the desktop's device opens beside the game and takes over; its driver writes what it is
// given.
TEST(Audio, TheDesktopsDeviceOpensBesideTheGameAndPlays) {
  const std::string path = Directory_Temporary() + "vesk_audio.raw";
  File_Remove(path);
  Environment_Set("SDL_AUDIODRIVER", "disk");
  Environment_Set("SDL_DISKAUDIOFILE", path);
  Environment_Set("SDL_DISKAUDIODELAY", "4");
  {
    CDesktopPlatform desktop;
    Platform_Set(&desktop.Interfaces());
    const IClock& clock = *desktop.Interfaces().clock;
    const int64_t before = clock.Microseconds();
    Audio_Init(true);
    EXPECT_LT(clock.Microseconds() - before, 200000) << "the start doesn't wait for the device";
    const std::vector<uint8_t> bytes = Effect(0.4);
    SoundRecord record;
    record.flags = kEffect;
    record.audioIndex = 0;
    Audio_AddSound(0, record);
    Audio_BindData(0, bytes);
    for (int i = 0; i < 500 && !desktop.Interfaces().audio->IsOpen(); ++i) CSystemClock().Sleep(2000);
    EXPECT_TRUE(desktop.Interfaces().audio->IsOpen());
    const int voice = audio_play_sound(0, 1, false);
    for (int i = 0; i < 1000 && audio_is_playing(voice); ++i) {
      Audio_Update();
      CSystemClock().Sleep(2000);
    }
    EXPECT_FALSE(audio_is_playing(voice));
    Audio_Quit();
    Platform_Set(nullptr);
  }
  Environment_Set("SDL_AUDIODRIVER", "dummy");
  std::string raw;
  ASSERT_TRUE(File_ReadAll(path, raw));
  std::vector<int16_t> samples(raw.size() / 2);
  std::memcpy(samples.data(), raw.data(), samples.size() * 2);
  const auto loud =
      std::count_if(samples.begin(), samples.end(), [](int16_t sample) { return std::abs(sample) > 500; });
  EXPECT_NEAR(static_cast<double>(loud), 0.4 * 48000 * 2, 4000);
  File_Remove(path);
}

TEST(Audio, AMachineWithoutSoundPlaysOnSilently) {
  LogTrap log;
  Environment_Set("SDL_AUDIODRIVER", "no such driver");
  {
    CDesktopPlatform desktop;
    Platform_Set(&desktop.Interfaces());
    Audio_Init(true);
    const std::vector<uint8_t> bytes = Effect(0.1);
    SoundRecord record;
    record.flags = kEffect;
    record.audioIndex = 0;
    Audio_AddSound(0, record);
    Audio_BindData(0, bytes);
    const CSystemClock clock;
    const int64_t start = clock.Microseconds();
    const int voice = audio_play_sound(0, 1, false);
    EXPECT_TRUE(audio_is_playing(voice));
    for (int i = 0; i < 1000 && audio_is_playing(voice); ++i) {
      Audio_Update();
      CSystemClock().Sleep(2000);
    }
    EXPECT_FALSE(audio_is_playing(voice));
    EXPECT_GT(clock.Microseconds() - start, 90000);
    EXPECT_FALSE(desktop.Interfaces().audio->IsOpen());
    Audio_Quit();
    Platform_Set(nullptr);
  }
  Environment_Set("SDL_AUDIODRIVER", "dummy");
  EXPECT_TRUE(log.Has("Falling back to use dummy output.\n"));
}
