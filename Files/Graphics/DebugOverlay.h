#pragma once
// What -debug, -audiodebug and show_debug_overlay lay over the finished picture, in window pixels.
#include <cstdint>

namespace vesk {

enum OverlayPart : uint32_t {
  kOverlayFrame = 2,  // rates, counts, and a bar of what each stage took of the frame's time
  kOverlayAudio = 16, // the voices that play
};

// Draws the parts that Graphics().overlay names; leaves colours, fonts, shader and states as they were.
void DebugOverlay_Draw();

void show_debug_overlay(bool on); // the part kOverlayFrame

} // namespace vesk
