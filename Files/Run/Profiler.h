#pragma once
// Time spent under each mark of the frame, and the dump of -profiledump. Game thread only.
#include <cstdint>
#include <span>
#include <string>

namespace vesk {

void Profiler_Start(const std::string& dumpFile, int32_t dumpAfterFrames); // an empty file name: no dump
void Profiler_Stop();
bool Profiler_Running();
// Ends the running mark and begins the named one; the name must be a literal.
void Profiler_Mark(const char* name);
// A frame that waited for its time began: microseconds behind it (negative: ahead), and what the wait took of
// a core.
void Profiler_FrameStarted(int64_t late, int64_t spentWaiting);
void Profiler_EndFrame();
// What each mark took in the last whole frame, in order of first use; empty while the profiler stands.
struct MarkTime {
  const char* name;
  int64_t microseconds;
};
std::span<const MarkTime> Profiler_LastFrame();
// Instances and draw calls of the last frame; one line a mark: name, calls, total and mean microseconds,
// longest, longest total first; how exactly frames started.
std::string Profiler_Text();
void Profiler_Reset();

} // namespace vesk
