#pragma once
// Builds a section of the level tree in the play room, before its first step.
#include "Files/Code/Self.h"

namespace vesk {

// Builds global.section; nothing with no level loaded or for a section that isn't there. False when the room
// restarts first to take the section's size: its room start comes again.
bool build_section(Self manager);

} // namespace vesk
