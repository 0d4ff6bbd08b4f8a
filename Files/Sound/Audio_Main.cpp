#include "Files/Sound/Audio_Main.h"

#include "Files/Sound/Audio_Log.h"
#include "Files/Sound/Audio_Sound.h"
#include "Platform/Clock.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

AudioState g_audio;

constexpr float kStoppingPriority = -1e9f;
constexpr size_t kMostStarted = 1000; // entries of AudioState::started

ALint SourceState(const AudioVoice& voice) {
  ALint state = AL_INITIAL;
  if (const ALuint source = Audio_SourceOf(voice)) alGetSourcei(source, AL_SOURCE_STATE, &state);
  return state;
}

void CreateSources(int32_t count) {
  g_audio.sources.assign(static_cast<size_t>(count), 0);
  alGenSources(count, g_audio.sources.data());
  Audio_CheckError("Error creating audio sources %d\n");
  g_audio.ogg =
      std::make_unique<COggAudio>(g_audio.sources, g_audio.context->device->HasThread(), *g_audio.context);
}

// The voice gives its sound up; the source keeps nothing of it.
void ReleaseVoice(AudioVoice& voice) {
  voice.active = false;
  voice.stopStage = 0;
  voice.stopRequested = false;
  Audio_LeaveEmitter(voice);
  if (const ALuint source = Audio_SourceOf(voice); source != 0 && !voice.isStream)
    alSourcei(source, AL_BUFFER, 0);
}

AudioVoice* FindVoice(const AudioSound& sound, int32_t soundId, float priority) {
  const bool wantStream = sound.OnStream();
  if (sound.singleVoice)
    for (auto& voice : g_audio.voices)
      if (voice->active && voice->soundId == soundId && voice->stopStage == 0 && !voice->stopRequested)
        return voice.get();

  for (auto& voice : g_audio.voices) {
    if (!voice->active) return voice.get();
    if (!voice->isStream) {
      const ALint state = SourceState(*voice);
      if (state != AL_STOPPED && state != AL_INITIAL) continue;
      ReleaseVoice(*voice);
      return voice.get();
    }
    if (wantStream && voice->stopRequested && voice->stopStage == 0) {
      Audio_LeaveEmitter(*voice);
      return voice.get();
    }
  }
  if (g_audio.voices.size() < g_audio.sources.size()) {
    g_audio.voices.push_back(std::make_unique<AudioVoice>());
    g_audio.voices.back()->sourceIndex = static_cast<int32_t>(g_audio.voices.size()) - 1;
    return g_audio.voices.back().get();
  }
  AudioVoice* lowest = nullptr;
  for (auto& voice : g_audio.voices) {
    if (voice->isStream && !wantStream) continue;
    if (voice->priority < priority && (!lowest || voice->priority < lowest->priority)) lowest = voice.get();
  }
  if (lowest) Audio_StopVoice(*lowest, true);
  return lowest;
}

void SetUpSource(ALuint source, const AudioSound& sound, const AudioPlacement& placement) {
  if (!placement.relative) alDistanceModel(g_audio.distanceModel);
  alSourcef(source, AL_MAX_DISTANCE, placement.maximum);
  alSourcef(source, AL_REFERENCE_DISTANCE, placement.reference);
  alSourcef(source, AL_ROLLOFF_FACTOR, placement.factor);
  alSourcef(source, AL_GAIN, sound.gain * placement.gain);
  alSourcef(source, AL_PITCH, sound.pitch * placement.pitch);
  alSourcei(source, AL_SOURCE_RELATIVE, placement.relative ? 1 : 0);
  alSource3f(source, AL_POSITION, placement.position.x, placement.position.y, placement.position.z);
  alSource3f(source, AL_VELOCITY, placement.velocity.x, placement.velocity.y, placement.velocity.z);
}

bool StartVoice(AudioVoice& voice, AudioSound& sound, bool running) {
  const ALuint source = Audio_SourceOf(voice);
  if (sound.singleVoice && running) {
    alSourcePlay(source);
    return true;
  }
  if (sound.OnStream()) {
    Audio_PrepareSound(sound);
    return g_audio.ogg->PlaySound(voice.sourceIndex, sound, voice.loop, sound.startOffset,
                                  voice.listenerMask);
  }
  if (!Audio_PrepareSound(sound)) return false;
  // What a stream left queued on this source goes with the stop.
  alSourceStop(source);
  alSourcei(source, AL_BUFFER, static_cast<ALint>(sound.buffer));
  Audio_CheckError("Error setting sample buffer\n");
  alSourcei(source, AL_LOOPING, voice.loop ? 1 : 0);
  if (sound.startOffset > 0) alSourcef(source, AL_SEC_OFFSET, sound.startOffset);
  alSourcei(source, AL_LISTENER_MASK, static_cast<ALint>(voice.listenerMask));
  alSourcePlay(source);
  return true;
}

// Where nobody asks, only the newest are kept.
void NoteStarted(int32_t sound) {
  if (g_audio.started.size() >= kMostStarted) g_audio.started.erase(g_audio.started.begin());
  g_audio.started.push_back(sound);
}

void JoinEmitter(AudioVoice& voice, int32_t emitter) {
  voice.emitter = emitter;
  if (emitter < 0) return;
  auto& places = g_audio.emitters[static_cast<size_t>(emitter)].voices;
  const auto place = std::find(places.begin(), places.end(), nullptr);
  if (place != places.end())
    *place = &voice;
  else
    places.push_back(&voice);
}

void UpdateListener() {
  const AudioListener& listener = g_audio.listener;
  alListener3f(AL_POSITION, listener.position.x, listener.position.y, listener.position.z);
  Audio_CheckError("Error setting listener position %d\n");
  alListener3f(AL_VELOCITY, listener.velocity.x, listener.velocity.y, listener.velocity.z);
  Audio_CheckError("Error setting listener velocity %d\n");
  const float orientation[] = {listener.at.x, listener.at.y, listener.at.z,
                               listener.up.x, listener.up.y, listener.up.z};
  alListenerfv(AL_ORIENTATION, orientation);
  Audio_CheckError("Error setting listener orientation %d\n");
  alListenerf(AL_GAIN, listener.gain);
}

void ReleaseEndedStreams() {
  g_audio.ogg->Service();
  for (auto& voice : g_audio.voices)
    if (voice->active && voice->isStream && !g_audio.ogg->Active(voice->sourceIndex)) ReleaseVoice(*voice);
}

void Fade(float& gain, float step, int32_t& frames) {
  if (frames <= 0) return;
  gain = std::clamp(gain + step, 0.0f, 1.0f);
  --frames;
}

void UpdateVoice(AudioVoice& voice) {
  if (voice.stopStage != 0) {
    ++voice.stopStage;
    if (voice.stopStage == 3)
      Audio_StopVoice(voice, true);
    else if (voice.stopStage > 3)
      voice.stopStage = 0;
  } else {
    Fade(voice.gain, voice.gainStep, voice.gainFrames);
  }
  if (voice.active) Audio_ApplyGain(voice);
}

void UpdateEmitter(AudioEmitter& emitter) {
  for (AudioVoice*& voice : emitter.voices) {
    if (!voice) continue;
    const ALint state = SourceState(*voice);
    const bool ended = !voice->isStream && state != AL_PLAYING && state != AL_PAUSED;
    if (!Audio_SoundOf(voice->soundId) || ended) {
      AudioVoice* const gone = std::exchange(voice, nullptr);
      gone->emitter = -1;
      ReleaseVoice(*gone);
      continue;
    }
    const ALuint source = Audio_SourceOf(*voice);
    alSource3f(source, AL_POSITION, emitter.position.x, emitter.position.y, emitter.position.z);
    alSource3f(source, AL_VELOCITY, emitter.velocity.x, emitter.velocity.y, emitter.velocity.z);
    Audio_CheckError("Error updating emitter\n");
  }
}

} // namespace

AudioState& Audio() { return g_audio; }

// ---- life ----

void Audio_Init(bool enabled) {
  if (g_audio.context) return;
  g_audio.enabled = false;
  if (!enabled) return;
  g_audio.context = alcCreateContext(alcOpenDevice());
  if (!g_audio.context) return;
  alcMakeContextCurrent(g_audio.context.get());
  g_audio.context->betweenBlocks = [] {
    if (g_audio.ogg) g_audio.ogg->Service();
  };
  g_audio.enabled = true;
  CreateSources(kInitialVoices);
  g_audio.distanceModel = AL_INVERSE_DISTANCE;
  alDistanceModel(g_audio.distanceModel);
  UpdateListener();
}

void Audio_Quit() {
  if (g_audio.context) {
    Audio_StopPreparing();
    g_audio.ogg.reset();
    alcDestroyContext(std::move(g_audio.context));
  }
  Audio_FlushLog();
  g_audio = AudioState();
}

void Audio_Update() {
  if (!g_audio.enabled) return;
  if (g_audio.updates++ > 0) Audio_StartPreparing(); // not ahead of the first picture
  alcProcessContext(*g_audio.context, Platform_Get().clock->Microseconds());
  Audio_ServiceGroups();
  UpdateListener();
  ReleaseEndedStreams();
  for (auto& sound : g_audio.sounds)
    if (sound) Fade(sound->gain, sound->fadeStep, sound->fadeFrames);
  for (auto& voice : g_audio.voices)
    if (voice->active) UpdateVoice(*voice);
  for (AudioEmitter& emitter : g_audio.emitters)
    if (emitter.active) UpdateEmitter(emitter);
  if (const ALenum error = alGetError(); error != AL_NO_ERROR)
    Audio_Log("OpenAL error: %d (%s)\nAudio_Tick End\n", error, alGetString(error));
  Audio_FlushLog();
}

void Audio_StopAll(bool immediate) {
  for (auto& voice : g_audio.voices) Audio_StopVoice(*voice, immediate);
  if (immediate && g_audio.ogg) g_audio.ogg->Service();
}

void Audio_CheckError(const char* format) {
  const ALenum error = alGetError();
  if (error == AL_NO_ERROR) return;
  std::string text = format;
  if (const size_t at = text.find("%d"); at != std::string::npos) text.replace(at, 2, std::to_string(error));
  Audio_Log("%s", text.c_str());
}

// ---- sounds and voices ----

AudioSound* Audio_SoundOf(int32_t id) {
  return id >= 0 && static_cast<size_t>(id) < g_audio.sounds.size()
             ? g_audio.sounds[static_cast<size_t>(id)].get()
             : nullptr;
}

AudioVoice* Audio_VoiceOf(int32_t voiceId) {
  for (auto& voice : g_audio.voices)
    if (voice->active && voice->voiceId == voiceId) return voice.get();
  return nullptr;
}

ALuint Audio_SourceOf(const AudioVoice& voice) {
  const auto at = static_cast<size_t>(voice.sourceIndex);
  return voice.sourceIndex >= 0 && at < g_audio.sources.size() ? g_audio.sources[at] : 0;
}

int32_t Audio_Play(int32_t soundId, double priority, bool loop, const AudioPlacement& placement) {
  if (!g_audio.enabled) return -1;
  Audio_CheckError("Error before playing sample %d\n");
  AudioSound* sound = Audio_SoundOf(soundId);
  if (!sound) {
    Audio_Log("Error: no sound exists for soundid %d\n", soundId);
    return 0;
  }
  const int32_t group = Audio_GroupOf(*sound);
  if (group > 0 && g_audio.groups[static_cast<size_t>(group)].state != AudioGroupState::Loaded) {
    Audio_Log("%s: Audio Group %d is not loaded\n", sound->name.c_str(), group);
    return -1;
  }
  AudioVoice* voice = FindVoice(*sound, soundId, static_cast<float>(priority));
  if (!voice) return -1;
  const bool running = voice->active && voice->soundId == soundId;
  Audio_LeaveEmitter(*voice);
  voice->active = false;
  voice->voiceId = g_audio.nextVoiceId++;
  voice->soundId = soundId;
  voice->gain = 1;
  voice->pitch = 1;
  voice->gainFrames = 0;
  voice->stopStage = 0;
  voice->listenerMask = placement.listenerMask;
  voice->loop = loop;
  voice->priority = static_cast<float>(priority);
  JoinEmitter(*voice, placement.emitter);
  SetUpSource(Audio_SourceOf(*voice), *sound, placement);
  const bool begun = StartVoice(*voice, *sound, running);
  Audio_CheckError("Error playing simple sound %d\n");
  if (!begun) {
    Audio_LeaveEmitter(*voice);
    return voice->voiceId;
  }
  voice->active = true;
  voice->isStream = sound->OnStream();
  voice->stopRequested = false;
  NoteStarted(soundId);
  return voice->voiceId;
}

void Audio_LeaveEmitter(AudioVoice& voice) {
  const int32_t emitter = std::exchange(voice.emitter, -1);
  if (emitter < 0 || static_cast<size_t>(emitter) >= g_audio.emitters.size()) return;
  for (AudioVoice*& place : g_audio.emitters[static_cast<size_t>(emitter)].voices)
    if (place == &voice) place = nullptr;
}

void Audio_StopVoice(AudioVoice& voice, bool immediate) {
  if (!voice.active) return;
  const ALuint source = Audio_SourceOf(voice);
  if (!immediate) {
    if (voice.stopStage != 0) return;
    voice.stopStage = 1;
    voice.gain = 0;
    voice.priority = kStoppingPriority;
    alSourcef(source, AL_GAIN, 0);
    return;
  }
  voice.stopRequested = true;
  if (voice.isStream) {
    g_audio.ogg->StopSound(voice.sourceIndex);
    return;
  }
  alSourceStop(source);
  Audio_CheckError("Error stopping sound %d\n");
  ReleaseVoice(voice);
}

bool Audio_VoicePlaying(const AudioVoice& voice) {
  if (!voice.active || voice.stopStage != 0 || voice.stopRequested) return false;
  if (!voice.isStream) return SourceState(voice) == AL_PLAYING;
  return g_audio.ogg->Active(voice.sourceIndex) && !g_audio.ogg->Paused(voice.sourceIndex);
}

bool Audio_VoicePaused(const AudioVoice& voice) {
  if (!voice.active || voice.stopStage != 0 || voice.stopRequested) return false;
  return voice.isStream ? g_audio.ogg->Paused(voice.sourceIndex) : SourceState(voice) == AL_PAUSED;
}

void Audio_ApplyGain(const AudioVoice& voice) {
  const AudioSound* sound = Audio_SoundOf(voice.soundId);
  float gain = voice.gain * (sound ? sound->gain : 1);
  if (voice.emitter >= 0) gain *= g_audio.emitters[static_cast<size_t>(voice.emitter)].gain;
  alSourcef(Audio_SourceOf(voice), AL_GAIN, gain);
}

void Audio_ApplyPitch(const AudioVoice& voice) {
  const AudioSound* sound = Audio_SoundOf(voice.soundId);
  float pitch = voice.pitch * (sound ? sound->pitch : 1);
  if (voice.emitter >= 0) pitch *= g_audio.emitters[static_cast<size_t>(voice.emitter)].pitch;
  alSourcef(Audio_SourceOf(voice), AL_PITCH, pitch);
}

void Audio_SetVoiceLimit(int32_t count) {
  if (!g_audio.enabled || static_cast<size_t>(count) == g_audio.sources.size()) return;
  Audio_Log("Audio setting channel count to %d\n", count);
  Audio_StopAll(true);
  g_audio.ogg.reset();
  for (const ALuint source : g_audio.sources) alSourcei(source, AL_BUFFER, 0);
  alDeleteSources(static_cast<ALsizei>(g_audio.sources.size()), g_audio.sources.data());
  for (AudioEmitter& emitter : g_audio.emitters) emitter.voices.clear();
  g_audio.voices.clear();
  CreateSources(count);
}

int32_t Audio_SoundCount() { return static_cast<int32_t>(g_audio.sounds.size()); }

std::vector<std::string> Audio_Playing() {
  std::vector<std::pair<int32_t, std::string>> playing;
  for (const auto& voice : g_audio.voices)
    if (Audio_VoicePlaying(*voice))
      playing.emplace_back(voice->voiceId, Audio_SoundOf(voice->soundId)->assetName);
  std::sort(playing.begin(), playing.end());
  std::vector<std::string> names;
  names.reserve(playing.size());
  for (auto& [id, name] : playing) names.push_back(std::move(name));
  return names;
}

std::vector<std::string> Audio_TakeStarted() {
  std::vector<std::string> names;
  for (const int32_t sound : std::exchange(g_audio.started, {}))
    names.push_back(Audio_SoundOf(sound)->assetName);
  return names;
}

} // namespace vesk
