#include "Files/Graphics/DebugOverlay.h"

#include "Files/Base/Console.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics/Shader.h"
#include "Files/Room/Room.h"
#include "Files/Run/Profiler.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Sound/Audio_Sound.h"

#include <iterator>
#include <string>

namespace vesk {

namespace {

constexpr float kMargin = 4, kBarHeight = 6; // pixels
constexpr float kBackAlpha = 0.6f;
constexpr double kSecond = 1e6; // microseconds

constexpr int32_t kMarkColours[] = {c_gray, c_fuchsia, c_aqua, c_lime, c_yellow, c_orange, c_red, c_blue};

// The states that the overlay changes, put back at its end.
class KeptDrawing {
public:
  KeptDrawing()
      : m_drawing(Drawing()), m_font(draw_get_font()), m_halign(draw_get_halign()),
        m_valign(draw_get_valign()), m_shader(shader_current()) {
    FlushBatch();
    RenderStates().Push();
    if (m_shader >= 0) shader_reset();
    draw_set_font(-1);
    draw_set_halign(fa_left);
    draw_set_valign(fa_top);
    draw_set_blend_mode(bm_normal);
    draw_enable_alphablend(true);
    Graphics_ViewOfWindow();
  }
  ~KeptDrawing() {
    FlushBatch();
    RenderStates().Pop();
    if (m_shader >= 0) shader_set(m_shader);
    draw_set_font(m_font);
    draw_set_halign(m_halign);
    draw_set_valign(m_valign);
    Drawing() = m_drawing;
  }
  KeptDrawing(const KeptDrawing&) = delete;
  KeptDrawing& operator=(const KeptDrawing&) = delete;

private:
  DrawState m_drawing;
  int32_t m_font, m_halign, m_valign, m_shader;
};

// Lines of text one below the other, each on a dark ground.
class Panel {
public:
  void Line(const std::string& text, int32_t colour = c_white) {
    const auto width = static_cast<float>(string_width(text)), height = LineHeight();
    Back(kMargin + width + kMargin, height);
    draw_set_colour(colour);
    draw_text(kMargin, m_y, RValue(text));
    m_y += height;
  }
  // The whole width is one frame at the room's speed.
  void Bar(std::span<const MarkTime> marks) {
    const auto width = static_cast<float>(Graphics().windowWidth);
    const double period = kSecond / Run_RoomSpeed();
    Back(width, kBarHeight);
    float x = 0;
    for (size_t at = 0; at < marks.size(); ++at) {
      const float part = static_cast<float>(static_cast<double>(marks[at].microseconds) / period) * width;
      draw_set_colour(kMarkColours[at % std::size(kMarkColours)]);
      if (part >= 1) draw_rectangle(x, m_y, x + part - 1, m_y + kBarHeight - 1, false);
      x += part;
    }
    m_y += kBarHeight;
  }

private:
  static float LineHeight() { return static_cast<float>(string_height("X")); }
  void Back(float width, float height) {
    draw_set_colour(c_black);
    draw_set_alpha(kBackAlpha);
    draw_rectangle(0, m_y, width - 1, m_y + height - 1, false);
    draw_set_alpha(1);
  }
  float m_y = 0;
};

void ShowFrame(Panel& panel) {
  const DrawCounters& drawn = Batch().lastFrame;
  panel.Line(FormatText("fps %d of %d, real %.0f", Run_Fps(), Run_RoomSpeed(), Run_FpsReal()));
  panel.Line(FormatText("batches %llu, quads %llu", static_cast<unsigned long long>(drawn.batches),
                        static_cast<unsigned long long>(drawn.quads)));
  if (const CRoom* room = CurrentRoom())
    panel.Line(FormatText("%s: instances %d, asleep %d, tiles %zu", room->name.c_str(), room->active.count,
                          room->inactive.count, room->tiles.LiveCount()));
  const std::span<const MarkTime> marks = Profiler_LastFrame();
  panel.Bar(marks);
  for (size_t at = 0; at < marks.size(); ++at)
    panel.Line(FormatText("%.2f ms %s", static_cast<double>(marks[at].microseconds) / 1000, marks[at].name),
               kMarkColours[at % std::size(kMarkColours)]);
}

void ShowVoices(Panel& panel) {
  const AudioState& audio = Audio();
  if (!audio.enabled) return panel.Line("audio is off");
  size_t playing = 0;
  for (const auto& voice : audio.voices) playing += Audio_VoicePlaying(*voice);
  panel.Line(FormatText("voices %zu of %zu", playing, audio.sources.size()));
  for (const auto& voice : audio.voices) {
    if (!Audio_VoicePlaying(*voice)) continue;
    panel.Line(FormatText("%d %s, gain %.2f, pitch %.2f%s", voice->voiceId,
                          Audio_SoundOf(voice->soundId)->assetName.c_str(), static_cast<double>(voice->gain),
                          static_cast<double>(voice->pitch), voice->loop ? ", loops" : ""),
               Audio_VoicePaused(*voice) ? c_gray : c_white);
  }
}

} // namespace

void DebugOverlay_Draw() {
  const uint32_t parts = Graphics().overlay;
  if ((parts & (kOverlayFrame | kOverlayAudio)) == 0 || !Graphics().device) return;
  const KeptDrawing kept;
  Panel panel;
  if (parts & kOverlayFrame) ShowFrame(panel);
  if (parts & kOverlayAudio) ShowVoices(panel);
}

void show_debug_overlay(bool on) {
  uint32_t& parts = Graphics().overlay;
  parts = on ? parts | kOverlayFrame : parts & ~kOverlayFrame;
  if (on && !Profiler_Running()) Profiler_Start({}, 0);
}

} // namespace vesk
