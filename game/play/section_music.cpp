#include "game/play/section_music.h"

#include "game/Game.h"
#include "game/Music.h"

namespace vesk {

void hand_over_music(Self manager) {
  if (global[levelmusic] == manager[levelmusic]) return;
  audio_stop_sound(global[levelmusic]);
  global[levelmusic] = manager[levelmusic];
}

void Alarm_StartMusic(Self manager) {
  if (!audio_is_playing(manager[levelmusic]) && manager[musicdisabled] == 0)
    audio_play_sound(manager[levelmusic], kMusicPriority, true);
}

void Alarm_StopMusic(Self manager) { audio_stop_sound(manager[levelmusic]); }

void Silence(Self manager) {
  manager[musicdisabled] = 1;
  audio_stop_sound(manager[levelmusic]);
  audio_stop_sound(snd_starman);
  audio_stop_sound(snd_switchsong);
}

} // namespace vesk
