#pragma once
// Sounds, voices, priorities, fades, emitters: the life of the audio system. Game thread only.
// The built-ins stand in Files/Function/Function_Audio.h, the container's side in SoundRecords.h.
#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

// Opens the platform's output and makes the voices. Disabled, every audio operation returns at once. Opening
// a real device goes on beside the caller; without one the game is silent and all else goes on.
void Audio_Init(bool enabled);
void Audio_Quit(); // stops everything, closes the device, forgets the sounds
// Once a frame, before input: fades, delayed stops, emitters, groups; lets a clock-driven output mix.
void Audio_Update();
// At the end of the game with `immediate`; otherwise each voice ends two ticks later.
void Audio_StopAll(bool immediate);

int32_t Audio_SoundCount();
// Asset names of the sounds that are playing, and of those begun since the last call, oldest first.
std::vector<std::string> Audio_Playing();
std::vector<std::string> Audio_TakeStarted();

} // namespace vesk
