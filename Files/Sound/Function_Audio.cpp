// There is no mixer yet: nothing sounds, and nothing counts as playing. The first call says so.
#include "Files/Sound/Function_Audio.h"

#include "Files/Base/Console.h"

namespace vesk {

namespace {

void SayOnce() {
  static bool said = false;
  if (!said) ReleaseConsole().Output("no sound yet: the mixer is not built\n");
  said = true;
}

} // namespace

int32_t audio_play_sound(int32_t, double, bool) {
  SayOnce();
  return -1;
}
void audio_stop_sound(int32_t) {}
void audio_stop_all() {}
bool audio_is_playing(int32_t) { return false; }
void audio_channel_num(int32_t) {}

} // namespace vesk
