#pragma once
// The audio_ built-ins. A number below 400,000 names a sound, one above a voice, as audio_play_sound gives
// it. Gains are 0 to 1, times seconds unless they say otherwise.
#include "Files/Code/Value.h"

#include <cstdint>
#include <string>

namespace vesk {

void Function_AddAudio();

inline constexpr int32_t audio_falloff_none = 0;
inline constexpr int32_t audio_falloff_inverse_distance = 1;
inline constexpr int32_t audio_falloff_inverse_distance_clamped = 2;
inline constexpr int32_t audio_falloff_linear_distance = 3;
inline constexpr int32_t audio_falloff_linear_distance_clamped = 4;
inline constexpr int32_t audio_falloff_exponent_distance = 5;
inline constexpr int32_t audio_falloff_exponent_distance_clamped = 6;
inline constexpr int32_t audio_old_system = 0;
inline constexpr int32_t audio_new_system = 1;

// The voice; -1 without audio or when no voice is to be had, 0 for an unknown sound.
int32_t audio_play_sound(int32_t sound, double priority, bool loop);
int32_t audio_play_sound_on(int32_t emitter, int32_t sound, bool loop, double priority);
int32_t audio_play_sound_at(int32_t sound, double x, double y, double z, double reference, double maximum,
                            double factor, bool loop, double priority);
void audio_stop_sound(int32_t target); // silent at once, ended two frames later
void audio_stop_all();
void audio_pause_sound(int32_t target);
void audio_resume_sound(int32_t target);
void audio_pause_all();
void audio_resume_all();
bool audio_is_playing(int32_t target); // false from the stop on
bool audio_is_paused(int32_t target);
void audio_sound_gain(int32_t target, double gain, double milliseconds);
void audio_sound_pitch(int32_t target, double pitch);
double audio_sound_get_gain(int32_t target);
double audio_sound_get_pitch(int32_t target);
double audio_sound_length(int32_t target);
double audio_sound_get_track_position(int32_t target);
void audio_sound_set_track_position(int32_t target, double seconds);
void audio_channel_num(int32_t count);
void audio_master_gain(double gain);
void audio_set_master_gain(int32_t listener, double gain);
double audio_get_master_gain(int32_t listener);
void audio_falloff_set_model(int32_t model);

int32_t audio_emitter_create();
void audio_emitter_free(int32_t emitter);
bool audio_emitter_exists(int32_t emitter);
void audio_emitter_position(int32_t emitter, double x, double y, double z);
void audio_emitter_velocity(int32_t emitter, double x, double y, double z);
void audio_emitter_gain(int32_t emitter, double gain);
void audio_emitter_pitch(int32_t emitter, double pitch);
void audio_emitter_falloff(int32_t emitter, double reference, double maximum, double factor);
void audio_listener_position(double x, double y, double z);
void audio_listener_velocity(double x, double y, double z);
void audio_listener_orientation(double atX, double atY, double atZ, double upX, double upY, double upZ);

bool audio_group_load(int32_t group);
bool audio_group_unload(int32_t group);
bool audio_group_is_loaded(int32_t group);
double audio_group_load_progress(int32_t group); // 0 to 100
std::string audio_group_name(int32_t group);
void audio_group_stop_all(int32_t group);
void audio_group_set_gain(int32_t group, double gain, double milliseconds);

bool audio_exists(int32_t target);
std::string audio_get_name(int32_t target); // the asset's name
int32_t audio_get_type(int32_t sound);      // 0 in memory, 1 streamed, -1 unknown
int32_t audio_system();

} // namespace vesk
