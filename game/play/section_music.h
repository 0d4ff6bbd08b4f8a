#pragma once
// The song of a section. It starts two steps after the room, so that a section with the same song lets it
// run.
#include "Files/Code/Self.h"

namespace vesk {

// At room start: another section's song ends here.
void hand_over_music(Self manager);

void Alarm_StartMusic(Self manager);
void Alarm_StopMusic(Self manager);
// From now on no song starts.
void Silence(Self manager);

} // namespace vesk
