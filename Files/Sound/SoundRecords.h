#pragma once
// What the container's reader hands to the audio system. Bytes stay in the container for the whole run.
#include <cstdint>
#include <span>
#include <string>

namespace vesk {

struct SoundRecord {
  std::string name;
  int32_t flags = 0; // storage mode: 100 streamed file, 101 sample, 102 kept compressed, 103 decoded;
                     // below 100: above 0 streamed, 0 sample
  std::string type;  // ".ogg" or ".wav"; decoding doesn't look at it
  std::string file;  // a streamed sound is opened by this name
  float gain = 1.0f; // 0 to 1
  int32_t audioGroup = 0;
  int32_t audioIndex = -1; // in AUDO, -1 for none
};

// SOND: the sound at `index`; indices left out are holes. The record is copied.
void Audio_AddSound(int32_t index, const SoundRecord& record);
// AUDO, after SOND: entry `audioIndex` of the group's list. The caller keeps the bytes alive until
// Audio_Quit.
void Audio_BindData(int32_t audioIndex, std::span<const uint8_t> bytes, int32_t group = 0);
// After AUDO: prepares the group's sounds for playing. Returns at once; the decoding goes on beside the game.
void Audio_PrepareSounds(int32_t group = 0);
// AGRP: the name of a group; the game has none.
void Audio_AddGroup(int32_t group, const std::string& name);

} // namespace vesk
