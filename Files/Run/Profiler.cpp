#include "Files/Run/Profiler.h"

#include "Files/Base/Console.h"
#include "Files/Graphics/Batch.h"
#include "Files/Room/Room.h"
#include "Files/Run/Timing.h"
#include "Platform/Files.h"

#include <algorithm>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace vesk {

namespace {

struct Mark {
  const char* name;
  int64_t calls = 0;
  int64_t total = 0; // microseconds
  int64_t longest = 0;
  int64_t frame = 0; // of the frame in progress
};

struct ProfilerState {
  bool running = false;
  std::vector<Mark> marks; // few, in order of first use
  std::vector<MarkTime> lastFrame;
  size_t current = SIZE_MAX;
  int64_t since = 0;
  int64_t frames = 0;
  std::string dumpFile;
  int32_t dumpAfter = 0;
  std::vector<int64_t> errors; // microseconds between the due time and the start of each frame
  int64_t spentWaiting = 0;
  int64_t started = 0;
};
ProfilerState state;

size_t FindMark(const char* name) {
  for (size_t at = 0; at < state.marks.size(); ++at)
    if (std::strcmp(state.marks[at].name, name) == 0) return at;
  state.marks.push_back({name});
  return state.marks.size() - 1;
}

void EndMark() {
  if (state.current == SIZE_MAX) return;
  Mark& mark = state.marks[state.current];
  const int64_t spent = Timing_Time() - state.since;
  ++mark.calls;
  mark.total += spent;
  mark.frame += spent;
  mark.longest = std::max(mark.longest, spent);
  state.current = SIZE_MAX;
}

std::string PacingText() {
  if (state.errors.empty()) return {};
  std::vector<int64_t> errors = state.errors;
  std::sort(errors.begin(), errors.end());
  const auto elapsed = static_cast<double>(Timing_Time() - state.started);
  return FormatText("%zu frames started on time but for %" PRId64 " us (median), %" PRId64
                    " us (99 in 100), %" PRId64 " us (worst)\nWaiting took %.2f %% of a core\n",
                    errors.size(), errors[errors.size() / 2], errors[errors.size() * 99 / 100], errors.back(),
                    100.0 * static_cast<double>(state.spentWaiting) / elapsed);
}

} // namespace

void Profiler_Start(const std::string& dumpFile, int32_t dumpAfterFrames) {
  state = ProfilerState{};
  state.running = true;
  state.dumpFile = dumpFile;
  state.dumpAfter = dumpAfterFrames;
  state.started = Timing_Time();
}

void Profiler_Stop() { state.running = false; }
bool Profiler_Running() { return state.running; }

void Profiler_Mark(const char* name) {
  if (!state.running) return;
  EndMark();
  state.current = FindMark(name);
  state.since = Timing_Time();
}

void Profiler_FrameStarted(int64_t late, int64_t spentWaiting) {
  if (!state.running || state.dumpFile.empty() || state.frames >= state.dumpAfter) return;
  state.errors.push_back(std::abs(late));
  state.spentWaiting += spentWaiting;
}

void Profiler_EndFrame() {
  if (!state.running) return;
  EndMark();
  ++state.frames;
  state.lastFrame.clear();
  for (Mark& mark : state.marks) state.lastFrame.push_back({mark.name, std::exchange(mark.frame, 0)});
  if (state.dumpFile.empty() || state.frames != state.dumpAfter) return;
  std::string why;
  if (!File_WriteAll(state.dumpFile, Profiler_Text(), &why))
    ErrorConsole().Output("Profile: %s\n", why.c_str());
}

std::span<const MarkTime> Profiler_LastFrame() { return state.lastFrame; }

std::string Profiler_Text() {
  std::vector<Mark> marks = state.marks;
  std::stable_sort(marks.begin(), marks.end(),
                   [](const Mark& a, const Mark& b) { return a.total > b.total; });
  std::string text = FormatText("%" PRId64 " frames", state.frames);
  if (const CRoom* room = CurrentRoom())
    text += FormatText("; in the last one %d instances, %d more asleep, %" PRIu64 " draw calls",
                       room->active.count, room->inactive.count, Batch().lastFrame.batches);
  text += '\n';
  for (const Mark& mark : marks)
    text += FormatText("%-20s %8" PRId64 " calls %10" PRId64 " us %8.1f mean %8" PRId64 " longest\n",
                       mark.name, mark.calls, mark.total,
                       static_cast<double>(mark.total) / static_cast<double>(mark.calls), mark.longest);
  return text + PacingText();
}

void Profiler_Reset() { state = ProfilerState{}; }

} // namespace vesk
