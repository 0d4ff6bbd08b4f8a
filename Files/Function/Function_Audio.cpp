#include "Files/Function/Function_Audio.h"

#include "Files/Function/Function.h"
#include "Files/Room/Room.h"
#include "Files/Sound/Audio_Log.h"
#include "Files/Sound/Audio_Main.h"
#include "Files/Sound/Audio_Sound.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr float kLowestPitch = 0.0039f;
constexpr float kHighestPitch = 256.0f;
constexpr size_t kEmitterGrowth = 8;
constexpr int32_t kLeastVoices = 2;
constexpr int32_t kMostVoices = 4096;

bool IsVoice(int32_t target) { return target >= kVoiceRange; }

// Calls visit(voice) for the voice, or for all voices of the sound, that `target` names.
template <class Visit> void ForVoices(int32_t target, Visit visit) {
  if (!Audio().enabled) return;
  for (auto& voice : Audio().voices)
    if (voice->active && (IsVoice(target) ? voice->voiceId : voice->soundId) == target) visit(*voice);
}

AudioEmitter* EmitterOf(int32_t emitter) {
  auto& emitters = Audio().emitters;
  const bool known = emitter >= 0 && static_cast<size_t>(emitter) < emitters.size();
  return known && emitters[static_cast<size_t>(emitter)].active ? &emitters[static_cast<size_t>(emitter)]
                                                                : nullptr;
}

template <class Visit> void ForVoicesOf(const AudioEmitter& emitter, Visit visit) {
  for (AudioVoice* voice : emitter.voices)
    if (voice) visit(*voice);
}

void Pause(AudioVoice& voice, bool pause) {
  if (voice.isStream) {
    Audio().ogg->PauseSound(voice.sourceIndex, pause);
    return;
  }
  const ALuint source = Audio_SourceOf(voice);
  ALint state = AL_INITIAL;
  alGetSourcei(source, AL_SOURCE_STATE, &state);
  if (pause && state == AL_PLAYING) alSourcePause(source);
  if (!pause && state == AL_PAUSED) alSourcePlay(source);
}

// Ticks of the game that a time takes, at least 1.
int32_t FramesOf(double milliseconds) {
  const double speed = CurrentRoom() ? std::max(CurrentRoom()->speed, 1) : 30;
  const double frameLength = std::max(std::floor(1000 / speed), 1.0);
  return static_cast<int32_t>(std::clamp(milliseconds / frameLength, 1.0, 1e9));
}

void StartFade(float& gain, float& step, int32_t& frames, double target, double milliseconds) {
  const auto wanted = static_cast<float>(std::max(target, 0.0));
  if (milliseconds != 0) {
    frames = FramesOf(milliseconds);
    step = (wanted - gain) / static_cast<float>(frames);
  } else {
    gain = wanted;
    frames = 0;
  }
}

float Clamped(double value) { return std::isfinite(value) ? static_cast<float>(value) : 0.0f; }
Vector3 Vector(double x, double y, double z) { return {Clamped(x), Clamped(y), Clamped(z)}; }
float Distance(double value) { return std::max(Clamped(value), 0.0f); }

} // namespace

// ---- playing ----

int32_t audio_play_sound(int32_t sound, double priority, bool loop) {
  return Audio_Play(sound, priority, loop, {});
}

int32_t audio_play_sound_on(int32_t emitter, int32_t sound, bool loop, double priority) {
  if (!Audio().enabled) return -1;
  const AudioEmitter* at = EmitterOf(emitter);
  if (!at) {
    Audio_Log("Audio_PlaySound Attempting to play sound on inactive emitter %d\n", emitter);
    return -1;
  }
  AudioPlacement placement;
  placement.emitter = emitter;
  placement.relative = false;
  placement.position = at->position;
  placement.velocity = at->velocity;
  placement.reference = at->reference;
  placement.maximum = at->maximum;
  placement.factor = at->factor;
  placement.gain = at->gain;
  placement.pitch = at->pitch;
  placement.listenerMask = at->listenerMask;
  return Audio_Play(sound, priority, loop, placement);
}

int32_t audio_play_sound_at(int32_t sound, double x, double y, double z, double reference, double maximum,
                            double factor, bool loop, double priority) {
  AudioPlacement placement;
  placement.relative = false;
  placement.position = Vector(x, y, z);
  placement.reference = Distance(reference);
  placement.maximum = Distance(maximum);
  placement.factor = Distance(factor);
  return Audio_Play(sound, priority, loop, placement);
}

void audio_stop_sound(int32_t target) {
  ForVoices(target, [](AudioVoice& voice) { Audio_StopVoice(voice, false); });
}
void audio_stop_all() {
  if (Audio().enabled) Audio_StopAll(false);
}
void audio_pause_sound(int32_t target) {
  ForVoices(target, [](AudioVoice& voice) { Pause(voice, true); });
}
void audio_resume_sound(int32_t target) {
  ForVoices(target, [](AudioVoice& voice) { Pause(voice, false); });
}
void audio_pause_all() {
  for (auto& voice : Audio().voices)
    if (voice->active) Pause(*voice, true);
}
void audio_resume_all() {
  for (auto& voice : Audio().voices)
    if (voice->active) Pause(*voice, false);
}

bool audio_is_playing(int32_t target) {
  bool playing = false;
  ForVoices(target, [&](const AudioVoice& voice) { playing = playing || Audio_VoicePlaying(voice); });
  return playing;
}
bool audio_is_paused(int32_t target) {
  bool paused = false;
  ForVoices(target, [&](const AudioVoice& voice) { paused = paused || Audio_VoicePaused(voice); });
  return paused;
}

// ---- gain, pitch, position ----

void audio_sound_gain(int32_t target, double gain, double milliseconds) {
  if (!Audio().enabled) return;
  if (IsVoice(target)) {
    if (AudioVoice* voice = Audio_VoiceOf(target); voice && voice->stopStage == 0) {
      StartFade(voice->gain, voice->gainStep, voice->gainFrames, gain, milliseconds);
      Audio_ApplyGain(*voice);
    }
    return;
  }
  AudioSound* sound = Audio_SoundOf(target);
  if (!sound) return;
  StartFade(sound->gain, sound->fadeStep, sound->fadeFrames, gain, milliseconds);
  ForVoices(target, [](const AudioVoice& voice) { Audio_ApplyGain(voice); });
}

void audio_sound_pitch(int32_t target, double pitch) {
  const float clamped = std::clamp(Clamped(pitch), kLowestPitch, kHighestPitch);
  AudioSound* sound = IsVoice(target) ? nullptr : Audio_SoundOf(target);
  if (sound) sound->pitch = clamped;
  ForVoices(target, [&](AudioVoice& voice) {
    if (!sound) voice.pitch = clamped;
    Audio_ApplyPitch(voice);
  });
}

double audio_sound_get_gain(int32_t target) {
  if (!IsVoice(target)) return Audio_SoundOf(target) ? Audio_SoundOf(target)->gain : 0;
  const AudioVoice* voice = Audio_VoiceOf(target);
  return voice ? voice->gain : 0;
}

double audio_sound_get_pitch(int32_t target) {
  if (!IsVoice(target)) return Audio_SoundOf(target) ? Audio_SoundOf(target)->pitch : 0;
  const AudioVoice* voice = Audio_VoiceOf(target);
  return voice ? voice->pitch : 0;
}

double audio_sound_length(int32_t target) {
  const AudioVoice* voice = IsVoice(target) ? Audio_VoiceOf(target) : nullptr;
  AudioSound* sound = Audio_SoundOf(voice ? voice->soundId : target);
  if (!sound) return 0;
  Audio_MeasureSound(*sound);
  return sound->length;
}

double audio_sound_get_track_position(int32_t target) {
  if (!IsVoice(target)) return Audio_SoundOf(target) ? Audio_SoundOf(target)->startOffset : 0;
  const AudioVoice* voice = Audio_VoiceOf(target);
  if (!voice || !Audio().enabled) return 0;
  if (voice->isStream) return Audio().ogg->Position(voice->sourceIndex);
  ALfloat seconds = 0;
  alGetSourcef(Audio_SourceOf(*voice), AL_SEC_OFFSET, &seconds);
  return seconds;
}

void audio_sound_set_track_position(int32_t target, double seconds) {
  const AudioVoice* voice = IsVoice(target) ? Audio_VoiceOf(target) : nullptr;
  AudioSound* sound = Audio_SoundOf(voice ? voice->soundId : target);
  if (!sound || !Audio().enabled) return;
  Audio_MeasureSound(*sound);
  if (!(seconds >= 0) || seconds >= sound->length) return; // no such place in the sound
  if (!voice)
    sound->startOffset = static_cast<float>(seconds);
  else if (voice->isStream)
    Audio().ogg->SeekSound(voice->sourceIndex, seconds);
  else
    alSourcef(Audio_SourceOf(*voice), AL_SEC_OFFSET, static_cast<float>(seconds));
}

void audio_channel_num(int32_t count) {
  // Fewer than the least is the least; the sum with the remainder is an old rounding, kept.
  Audio_SetVoiceLimit(count < kLeastVoices ? kLeastVoices : std::min(count, kMostVoices) + count % 4);
}

void audio_master_gain(double gain) { audio_set_master_gain(0, gain); }
void audio_set_master_gain(int32_t listener, double gain) {
  if (listener == 0) Audio().listener.gain = std::max(Clamped(gain), 0.0f);
}
double audio_get_master_gain(int32_t listener) { return listener == 0 ? Audio().listener.gain : 0; }

void audio_falloff_set_model(int32_t model) {
  if (model < audio_falloff_none || model > audio_falloff_exponent_distance_clamped) {
    Audio_Log("Attempting to set audio falloff to unknown model\n");
    return;
  }
  Audio().falloffModel = model;
  Audio().distanceModel = model == audio_falloff_none ? AL_NONE : AL_INVERSE_DISTANCE + model - 1;
  alDistanceModel(Audio().distanceModel);
}

// ---- emitters and the listener ----

int32_t audio_emitter_create() {
  auto& emitters = Audio().emitters;
  auto place =
      std::find_if(emitters.begin(), emitters.end(), [](const AudioEmitter& each) { return !each.active; });
  const auto index = static_cast<size_t>(place - emitters.begin());
  if (place == emitters.end()) emitters.resize(emitters.size() + kEmitterGrowth);
  emitters[index] = AudioEmitter();
  emitters[index].active = true;
  return static_cast<int32_t>(index);
}

void audio_emitter_free(int32_t emitter) {
  AudioEmitter* freed = EmitterOf(emitter);
  if (!freed) return;
  const std::vector<AudioVoice*> voices = freed->voices; // stopping changes the list
  for (AudioVoice* voice : voices) {
    if (!voice) continue;
    Audio_StopVoice(*voice, true);
    Audio_LeaveEmitter(*voice);
  }
  *freed = AudioEmitter();
}

bool audio_emitter_exists(int32_t emitter) { return EmitterOf(emitter) != nullptr; }

void audio_emitter_position(int32_t emitter, double x, double y, double z) {
  AudioEmitter* at = EmitterOf(emitter);
  if (!at) return;
  at->position = Vector(x, y, z);
  ForVoicesOf(*at, [&](const AudioVoice& voice) {
    alSource3f(Audio_SourceOf(voice), AL_POSITION, at->position.x, at->position.y, at->position.z);
  });
}

void audio_emitter_velocity(int32_t emitter, double x, double y, double z) {
  AudioEmitter* at = EmitterOf(emitter);
  if (!at) return;
  at->velocity = Vector(x, y, z);
  ForVoicesOf(*at, [&](const AudioVoice& voice) {
    alSource3f(Audio_SourceOf(voice), AL_VELOCITY, at->velocity.x, at->velocity.y, at->velocity.z);
  });
}

void audio_emitter_gain(int32_t emitter, double gain) {
  AudioEmitter* at = EmitterOf(emitter);
  if (!at) return;
  at->gain = std::max(Clamped(gain), 0.0f);
  ForVoicesOf(*at, [](const AudioVoice& voice) { Audio_ApplyGain(voice); });
}

void audio_emitter_pitch(int32_t emitter, double pitch) {
  AudioEmitter* at = EmitterOf(emitter);
  if (!at) return;
  at->pitch = std::clamp(Clamped(pitch), kLowestPitch, kHighestPitch);
  ForVoicesOf(*at, [](const AudioVoice& voice) { Audio_ApplyPitch(voice); });
}

void audio_emitter_falloff(int32_t emitter, double reference, double maximum, double factor) {
  AudioEmitter* at = EmitterOf(emitter);
  if (!at) return;
  at->reference = Distance(reference);
  at->maximum = Distance(maximum);
  at->factor = Distance(factor);
  ForVoicesOf(*at, [&](const AudioVoice& voice) {
    const ALuint source = Audio_SourceOf(voice);
    alSourcef(source, AL_REFERENCE_DISTANCE, at->reference);
    alSourcef(source, AL_MAX_DISTANCE, at->maximum);
    alSourcef(source, AL_ROLLOFF_FACTOR, at->factor);
  });
}

void audio_listener_position(double x, double y, double z) { Audio().listener.position = Vector(x, y, z); }
void audio_listener_velocity(double x, double y, double z) { Audio().listener.velocity = Vector(x, y, z); }
void audio_listener_orientation(double atX, double atY, double atZ, double upX, double upY, double upZ) {
  Audio().listener.at = Vector(atX, atY, atZ);
  Audio().listener.up = Vector(upX, upY, upZ);
}

// ---- groups ----

bool audio_group_load(int32_t group) { return Audio().enabled && Audio_LoadGroup(group); }
bool audio_group_unload(int32_t group) { return Audio().enabled && Audio_UnloadGroup(group); }

bool audio_group_is_loaded(int32_t group) {
  const auto& groups = Audio().groups;
  if (group == 0) return true; // the container itself
  return group > 0 && static_cast<size_t>(group) < groups.size() &&
         groups[static_cast<size_t>(group)].state == AudioGroupState::Loaded;
}

// The file is read in one piece: nothing or all of it.
double audio_group_load_progress(int32_t group) { return audio_group_is_loaded(group) ? 100 : 0; }

std::string audio_group_name(int32_t group) {
  const auto& groups = Audio().groups;
  return group >= 0 && static_cast<size_t>(group) < groups.size() ? groups[static_cast<size_t>(group)].name
                                                                  : "";
}

namespace {

template <class Visit> void ForSoundsOf(int32_t group, Visit visit) {
  for (int32_t i = 0; i < Audio_SoundCount(); ++i)
    if (const AudioSound* sound = Audio_SoundOf(i); sound && Audio_GroupOf(*sound) == group) visit(i);
}

} // namespace

void audio_group_stop_all(int32_t group) {
  ForSoundsOf(group, [](int32_t sound) { audio_stop_sound(sound); });
}
void audio_group_set_gain(int32_t group, double gain, double milliseconds) {
  ForSoundsOf(group, [&](int32_t sound) { audio_sound_gain(sound, gain, milliseconds); });
}

// ---- queries ----

bool audio_exists(int32_t target) {
  return IsVoice(target) ? Audio_VoiceOf(target) != nullptr : Audio_SoundOf(target) != nullptr;
}

std::string audio_get_name(int32_t target) {
  const AudioVoice* voice = IsVoice(target) ? Audio_VoiceOf(target) : nullptr;
  const AudioSound* sound = Audio_SoundOf(voice ? voice->soundId : target);
  return sound ? sound->assetName : "<undefined>";
}

int32_t audio_get_type(int32_t target) {
  const AudioSound* sound = Audio_SoundOf(target);
  return sound ? (sound->streamed ? 1 : 0) : -1;
}

int32_t audio_system() { return audio_new_system; }

namespace {

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&audio_play_sound>("audio_play_sound"),
    Builtin<&audio_play_sound_on>("audio_play_sound_on"),
    Builtin<&audio_play_sound_at>("audio_play_sound_at"),
    Builtin<&audio_stop_sound>("audio_stop_sound"),
    Builtin<&audio_stop_all>("audio_stop_all"),
    Builtin<&audio_pause_sound>("audio_pause_sound"),
    Builtin<&audio_resume_sound>("audio_resume_sound"),
    Builtin<&audio_pause_all>("audio_pause_all"),
    Builtin<&audio_resume_all>("audio_resume_all"),
    Builtin<&audio_is_playing>("audio_is_playing"),
    Builtin<&audio_is_paused>("audio_is_paused"),
    Builtin<&audio_sound_gain>("audio_sound_gain"),
    Builtin<&audio_sound_pitch>("audio_sound_pitch"),
    Builtin<&audio_sound_get_gain>("audio_sound_get_gain"),
    Builtin<&audio_sound_get_pitch>("audio_sound_get_pitch"),
    Builtin<&audio_sound_length>("audio_sound_length"),
    Builtin<&audio_sound_get_track_position>("audio_sound_get_track_position"),
    Builtin<&audio_sound_set_track_position>("audio_sound_set_track_position"),
    Builtin<&audio_channel_num>("audio_channel_num"),
    Builtin<&audio_master_gain>("audio_master_gain"),
    Builtin<&audio_set_master_gain>("audio_set_master_gain"),
    Builtin<&audio_get_master_gain>("audio_get_master_gain"),
    Builtin<&audio_falloff_set_model>("audio_falloff_set_model"),
    Builtin<&audio_emitter_create>("audio_emitter_create"),
    Builtin<&audio_emitter_free>("audio_emitter_free"),
    Builtin<&audio_emitter_exists>("audio_emitter_exists"),
    Builtin<&audio_emitter_position>("audio_emitter_position"),
    Builtin<&audio_emitter_velocity>("audio_emitter_velocity"),
    Builtin<&audio_emitter_gain>("audio_emitter_gain"),
    Builtin<&audio_emitter_pitch>("audio_emitter_pitch"),
    Builtin<&audio_emitter_falloff>("audio_emitter_falloff"),
    Builtin<&audio_listener_position>("audio_listener_position"),
    Builtin<&audio_listener_velocity>("audio_listener_velocity"),
    Builtin<&audio_listener_orientation>("audio_listener_orientation"),
    Builtin<&audio_group_load>("audio_group_load"),
    Builtin<&audio_group_unload>("audio_group_unload"),
    Builtin<&audio_group_is_loaded>("audio_group_is_loaded"),
    Builtin<&audio_group_load_progress>("audio_group_load_progress"),
    Builtin<&audio_group_name>("audio_group_name"),
    Builtin<&audio_group_stop_all>("audio_group_stop_all"),
    Builtin<&audio_group_set_gain>("audio_group_set_gain"),
    Builtin<&audio_exists>("audio_exists"),
    Builtin<&audio_get_name>("audio_get_name"),
    Builtin<&audio_get_type>("audio_get_type"),
    Builtin<&audio_system>("audio_system"),
};

} // namespace

void Function_AddAudio() { Function_Add(kBuiltins); }

} // namespace vesk
