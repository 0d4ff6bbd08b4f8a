// Audio groups: sounds that stand in a file of their own and are loaded on demand.
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Sound/Audio_Log.h"
#include "Files/Sound/Audio_Sound.h"
#include "Files/Sound/SoundRecords.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <cstring>

namespace vesk {

namespace {

constexpr int32_t kAsyncSound = 72; // subtype of the asynchronous event
constexpr size_t kDataStart = 16;   // of the sound data in the group's file

uint32_t WordAt(const std::string& image, size_t at) {
  uint32_t word = 0;
  if (at + 4 <= image.size()) std::memcpy(&word, image.data() + at, 4);
  return word;
}

void SetState(int32_t number, AudioGroupState state) {
  constexpr const char* kNames[] = {"Unloaded", "Loading...", "Loaded", "Unloading..."};
  Audio().groups[static_cast<size_t>(number)].state = state;
  Audio_Log("Audio group %d -> %s\n", number, kNames[static_cast<size_t>(state)]);
}

AudioGroup* GroupOf(int32_t number) {
  auto& groups = Audio().groups;
  return number > 0 && static_cast<size_t>(number) < groups.size() ? &groups[static_cast<size_t>(number)]
                                                                   : nullptr;
}

// A list of references into the file, each to a length and that many bytes.
void BindSounds(const std::string& image, int32_t number) {
  const uint32_t count = WordAt(image, kDataStart);
  for (uint32_t i = 0; i < count; ++i) {
    const size_t reference = kDataStart + 4 + size_t{4} * i;
    if (reference + 4 > image.size()) break;
    const size_t entry = WordAt(image, reference);
    const size_t length = entry + 4 <= image.size() ? WordAt(image, entry) : 0;
    if (entry + 4 > image.size() || length > image.size() - entry - 4) {
      Audio_Log("Format error loading audiogroup%d.dat: sound %u lies outside the file\n", number, i);
      continue;
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(image.data()) + entry + 4;
    Audio_BindData(static_cast<int32_t>(i), std::span<const uint8_t>(bytes, length), number);
  }
}

bool HasVoices(int32_t number) {
  for (const auto& voice : Audio().voices) {
    const AudioSound* sound = voice->active ? Audio_SoundOf(voice->soundId) : nullptr;
    if (!sound || Audio_GroupOf(*sound) != number) continue;
    // A finished sound in memory stays active until its voice is needed.
    ALint state = AL_INITIAL;
    alGetSourcei(Audio_SourceOf(*voice), AL_SOURCE_STATE, &state);
    if (voice->isStream || state == AL_PLAYING || state == AL_PAUSED) return true;
    alSourcei(Audio_SourceOf(*voice), AL_BUFFER, 0);
  }
  return false;
}

} // namespace

bool Audio_LoadGroup(int32_t number) {
  AudioGroup* group = GroupOf(number);
  if (!group || group->state != AudioGroupState::Unloaded) return false;
  const std::string name = "audiogroup" + std::to_string(number) + ".dat";
  const std::string found = Files_FindForReading(name);
  if (found.empty() || !File_ReadAll(found, group->image)) {
    Audio_Log("Failed to load %s\n", name.c_str());
    return false;
  }
  if (group->image.compare(8, 4, "AUDO", 4) != 0 || group->image.size() <= kDataStart ||
      WordAt(group->image, 12) == 0) {
    Audio_Log("Format error loading %s\n", name.c_str());
    group->image.clear();
    return false;
  }
  SetState(number, AudioGroupState::Loading);
  BindSounds(group->image, number);
  return true;
}

bool Audio_UnloadGroup(int32_t number) {
  const AudioGroup* group = GroupOf(number);
  if (!group || group->state != AudioGroupState::Loaded) return false;
  for (auto& voice : Audio().voices) {
    const AudioSound* sound = Audio_SoundOf(voice->soundId);
    if (sound && Audio_GroupOf(*sound) == number) Audio_StopVoice(*voice, true);
  }
  SetState(number, AudioGroupState::Unloading);
  return true;
}

void Audio_ServiceGroups() {
  for (int32_t number = 1; number < static_cast<int32_t>(Audio().groups.size()); ++number) {
    AudioGroup& group = Audio().groups[static_cast<size_t>(number)];
    if (group.state == AudioGroupState::Unloading && !HasVoices(number)) {
      for (auto& sound : Audio().sounds) {
        if (!sound || Audio_GroupOf(*sound) != number) continue;
        Audio_ReleaseBuffer(*sound);
        sound->data = {};
      }
      group.image.clear();
      SetState(number, AudioGroupState::Unloaded);
    } else if (group.state == AudioGroupState::Loading) {
      SetState(number, AudioGroupState::Loaded);
      const int32_t map = ds_map_create();
      ds_map_add(map, "type", "audiogroup_load");
      ds_map_add(map, "group_id", number);
      Async_Post(kAsyncSound, map);
    }
  }
}

} // namespace vesk
