#pragma once
// Built-ins of sounds that rules call. A sound is an asset index.
#include <cstdint>

namespace vesk {

int32_t audio_play_sound(int32_t sound, double priority, bool loop); // a voice's id
void audio_stop_sound(int32_t sound);
void audio_stop_all();
bool audio_is_playing(int32_t sound);
void audio_channel_num(int32_t channels);

} // namespace vesk
