// The queue of asynchronous results, handed to the game at one point of the step.
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/Run_Passes.h"

#include <utility>
#include <vector>

namespace vesk {

namespace {

struct AsyncResult {
  int32_t subtype, map;
};
struct AsyncState {
  std::vector<AsyncResult> queue;
  int32_t current = -1;
  void (*destroyMap)(int32_t map) = nullptr;
};
AsyncState g_async;

void Drop(const AsyncResult& result) {
  if (g_async.destroyMap && result.map >= 0) g_async.destroyMap(result.map);
}

} // namespace

void Async_Post(int32_t subtype, int32_t map) { g_async.queue.push_back({subtype, map}); }
void Async_OnDone(void (*destroyMap)(int32_t map)) { g_async.destroyMap = destroyMap; }
int32_t Async_Load() { return g_async.current; }

void Async_DropPending() {
  for (const AsyncResult& result : std::exchange(g_async.queue, {})) Drop(result);
  g_async.current = -1;
}

// What a handler posts waits for the next frame.
void AsyncPass() {
  if (g_async.queue.empty()) return;
  for (const AsyncResult& result : std::exchange(g_async.queue, {})) {
    g_async.current = result.map;
    EventPass(ev_other, result.subtype);
    g_async.current = -1;
    Drop(result);
  }
}

} // namespace vesk
