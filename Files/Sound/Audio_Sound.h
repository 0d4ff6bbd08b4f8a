#pragma once
// Sounds, voices, emitters and groups as the audio system keeps them. Game thread only, unless a field says
// otherwise.
#include "Files/Sound/ALu.h"
#include "Files/Sound/Audio_Ogg.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vesk {

inline constexpr int32_t kFirstVoiceId = 400001;
inline constexpr int32_t kVoiceRange = 400000; // from here on a number names a voice
inline constexpr int32_t kInitialVoices = 128;

struct AudioSound {
  std::string name; // the record's file
  std::string assetName;
  float gain = 1.0f;
  float pitch = 1.0f;
  std::span<const uint8_t> data; // in the container
  int32_t audioIndex = -1;
  float fadeStep = 0;
  int32_t fadeFrames = 0;
  bool streamed = false;      // decoded from a file while playing
  bool compressed = false;    // decoded while playing
  bool decodedAtLoad = false; // a Vorbis stream turned into a buffer
  std::string filePath;       // of a streamed sound; empty until first played
  float length = -1.0f;       // seconds; below 0 until measured
  int32_t sampleRate = 0;
  int32_t channels = 0;
  int64_t pcmLength = 0; // frames
  float startOffset = 0; // seconds
  int32_t audioGroup = 0;
  bool singleVoice = false;

  // The buffer is made by whoever needs it first: the game at a play, or the thread that prepares sounds.
  CMutex prepareLock;
  bool prepared = false; // under the lock; then `buffer` doesn't change until the sound goes
  ALuint buffer = 0;

  bool OnStream() const { return streamed || compressed; }
};

struct AudioVoice {
  bool loop = false;
  bool active = false;
  int32_t stopStage = 0; // 0 none; 1, 2, 3 the stages of the delayed stop
  bool isStream = false;
  bool stopRequested = false; // an immediate stop has been posted to the stream channel
  int32_t sourceIndex = -1;
  int32_t voiceId = -1;
  int32_t soundId = -1;
  float priority = 0;
  float pitch = 1.0f;
  float gain = 1.0f;
  float gainStep = 0;
  int32_t gainFrames = 0;
  uint32_t listenerMask = 1;
  int32_t emitter = -1;
};

struct AudioEmitter {
  Vector3 position, velocity;
  bool active = false;
  float reference = 100.0f;
  float maximum = 100000.0f;
  float factor = 1.0f;
  float gain = 1.0f;
  float pitch = 1.0f;
  uint32_t listenerMask = 1;
  std::vector<AudioVoice*> voices; // null: a free place
};

struct AudioListener {
  Vector3 position, velocity;
  Vector3 at{0, 0, 1}, up{0, 1, 0};
  float gain = 1.0f;
};

enum class AudioGroupState : int32_t { Unloaded, Loading, Loaded, Unloading };

struct AudioGroup {
  std::string name;
  AudioGroupState state = AudioGroupState::Unloaded;
  std::string image; // the group's file
};

struct AudioState {
  bool enabled = false;
  uint64_t updates = 0; // frames so far
  std::unique_ptr<Context> context;
  std::unique_ptr<COggAudio> ogg;
  std::vector<std::unique_ptr<AudioSound>> sounds; // by index; null: a hole
  std::vector<ALuint> sources;                     // as many as voices may play
  std::vector<std::unique_ptr<AudioVoice>> voices; // grows up to the limit
  std::vector<AudioEmitter> emitters;
  std::vector<AudioGroup> groups;
  AudioListener listener;
  ALenum distanceModel = AL_INVERSE_DISTANCE;
  int32_t falloffModel = 1;
  int32_t nextVoiceId = kFirstVoiceId;
  std::vector<int32_t> started; // sounds begun since the last Audio_TakeStarted
};
AudioState& Audio();

AudioSound* Audio_SoundOf(int32_t id);          // null outside the list or a hole
int32_t Audio_GroupOf(const AudioSound& sound); // 0 unless there is such a group
AudioVoice* Audio_VoiceOf(int32_t voiceId);     // null when the voice no longer plays

ALuint Audio_SourceOf(const AudioVoice& voice);   // OpenAL name, 0 for none
bool Audio_VoicePlaying(const AudioVoice& voice); // and not on its way out
bool Audio_VoicePaused(const AudioVoice& voice);
// Where and how a play is heard.
struct AudioPlacement {
  int32_t emitter = -1; // whose list the voice joins
  bool relative = true; // on the listener, without a place in the room
  Vector3 position, velocity;
  float reference = 1, maximum = 100000, factor = 1;
  float gain = 1, pitch = 1;
  uint32_t listenerMask = 1;
};
int32_t Audio_Play(int32_t sound, double priority, bool loop, const AudioPlacement& placement);
void Audio_StopVoice(AudioVoice& voice, bool immediate);
void Audio_LeaveEmitter(AudioVoice& voice);
void Audio_ApplyGain(const AudioVoice& voice);
void Audio_ApplyPitch(const AudioVoice& voice);
void Audio_SetVoiceLimit(int32_t count);   // stops all; nothing happens at the current limit
void Audio_CheckError(const char* format); // logs a pending OpenAL error through a format with one %d

// Groups.
bool Audio_LoadGroup(int32_t group);
bool Audio_UnloadGroup(int32_t group);
void Audio_ServiceGroups();

// Makes the sound ready for the path on which it plays: a buffer, or a path to its file. Any thread.
bool Audio_PrepareSound(AudioSound& sound);
void Audio_ReleaseBuffer(AudioSound& sound);
void Audio_MeasureSound(AudioSound& sound); // fills length, rate and channels
// Prepares everything on a thread of its own; does nothing where nobody listens or where it was started
// before.
void Audio_StartPreparing();
void Audio_StopPreparing();

} // namespace vesk
