// One frame of the game world, in its fixed order.
#include "Files/Run/Run_FrameBody.h"

#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_Passes.h"

#include <utility>
#include <vector>

namespace vesk {

namespace {

FrameBodyState g_frame;

void Call(void (*service)()) {
  if (service) service();
}

void Mark(const char* name) {
  if (g_frame.services.mark) g_frame.services.mark(name);
}

void Resize() {
  if (!std::exchange(Run().resizePending, false)) return;
  RemoveMarked();
  BroadcastEvent(ev_draw, ev_draw_resize);
  RemoveMarked();
}

// Remembers where everything stands and turns the pictures on. Destroyed and deactivated ones included.
void BeginLoop() {
  const CInstance* alike = nullptr; // the last one whose number of frames was looked up
  float frames = 0;
  for (CInstance *it = CurrentRoom()->active.head, *next; it; it = next) {
    next = it->next;
    Prefetch(next);
    it->xPrevious = it->x;
    it->yPrevious = it->y;
    it->pathPositionPrevious = it->pathPosition;
    if (!alike || alike->spriteIndex != it->spriteIndex) frames = static_cast<float>(it->ImageNumber());
    alike = it;
    if (!it->AdvanceImage(frames) || !it->object->handlesAnimationEnd) continue;
    PerformOwnEvent(it, it, ev_other, ev_animation_end);
    alike = nullptr; // the event may have changed any sprite
  }
}

void BeginStepPass() { EventPass(ev_step, ev_step_begin); }
void StepPass() { EventPass(ev_step, ev_step_normal); }
void EndStepPass() { EventPass(ev_step, ev_step_end); }
void RunServices() { Call(g_frame.services.runServices); }

constexpr void (*kUpdatePasses[])() = {
    BeginStepPass, RunServices, AlarmPass, KeyboardPass,  MousePass,   StepPass,
    MotionPass,    OutsidePass, AsyncPass, CollisionPass, EndStepPass,
};

// False when an event asked for another room or for the end: the rest of the frame doesn't run.
bool Update() {
  Mark("Update");
  Resize();
  BeginLoop();
  for (const auto pass : kUpdatePasses) {
    pass();
    CleanUpInstances();
    if (Rooms().request != kNoRoomRequest) return false;
  }
  Call(g_frame.services.updateParticles);
  return true;
}

bool Draw() {
  Mark("Draw");
  RemoveMarked();
  if (Run().automaticDrawing) {
    Call(g_frame.services.drawScreen);
    g_frame.drawn = true;
    CleanUpInstances();
  }
  return Rooms().request == kNoRoomRequest;
}

bool Scroll() {
  Mark("Scroll");
  for (BackgroundSlot& background : CurrentRoom()->backgrounds) {
    background.x += background.hspeed;
    background.y += background.vspeed;
  }
  CleanUpInstances();
  return Rooms().request == kNoRoomRequest;
}

// False when the game stands still this frame.
bool Enter() {
  const FrameServices& services = g_frame.services;
  if (services.now) {
    const int64_t now = services.now();
    g_frame.deltaTime = g_frame.lastEntry < 0 ? 0 : now - g_frame.lastEntry;
    g_frame.lastEntry = now;
  }
  Mark("Garbage Collector"); // objects are counted, so there is nothing to sweep
  Call(services.feedAudio);
  Mark("IO&Kelda");
  Call(services.updateInput);
  if (services.readInput) services.readInput(g_frame.input);
  return !(services.frozen && services.frozen());
}

} // namespace

FrameBodyState& FrameBody() { return g_frame; }

void Run_ResetFrameBody() {
  const FrameServices services = g_frame.services;
  g_frame = FrameBodyState();
  g_frame.services = services;
  Async_DropPending();
}

void RunFrameBody() {
  g_frame.drawn = false;
  if (!Enter() || !CurrentRoom()) return;
  if (Update() && Draw() && Scroll()) ++Rooms().frameCounter;
}

} // namespace vesk
