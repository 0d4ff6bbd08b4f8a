#include "game/play/heartbeat.h"

#include "game/Game.h"

namespace vesk {

namespace {

constexpr int kLowHealth = 8; // hit points
constexpr int kPulseTick = 4; // steps

} // namespace

void mind_heartbeat(Self manager) {
  if (manager[heart] == 0 && health <= kLowHealth) {
    manager[heart] = 1;
    manager[beat] = 0;
    manager[beatd] = kPulseStep;
    manager[alarm][2] = kPulseTick;
    audio_play_sound(snd_heartbeat, 1, true);
  } else if (manager[heart] == 1 && health > kLowHealth) {
    manager[heart] = 0;
    audio_stop_sound(snd_heartbeat);
  }
}

void Alarm_Pulse(Self manager) {
  manager[beat] += manager[beatd];
  if (manager[beat] > 1) {
    manager[beat] = 1;
    manager[beatd] = -kPulseStep;
  } else if (manager[beat] < 0) {
    manager[beat] = 0;
    manager[beatd] = kPulseStep;
  }
  if (manager[heart] == 1) manager[alarm][2] = kPulseTick;
}

} // namespace vesk
