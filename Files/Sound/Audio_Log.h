#pragma once
// Log lines of the audio threads, kept until the game thread brings them to the debug channel.
#include "Files/Base/Error.h"

namespace vesk {

void Audio_Log(const char* format, ...) VESK_PRINTF(1, 2); // any thread
void Audio_FlushLog();                                     // game thread

} // namespace vesk
