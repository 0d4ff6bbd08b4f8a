#include "tests/scenarios/DrawnFrame.h"

#include "tests/scenarios/EditorDesk.h"

#include "Files/Background/Background.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/Sprite/Sprite.h"
#include "sim/Look.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <ostream>
#include <tuple>

namespace vesk {

namespace {

constexpr Box kView = {0, 0, 384, 216};
constexpr const char* kCursor = "spr_target"; // may cover anything
constexpr int kLineSlack = 3;                 // pixels that a letter may lie off its predecessor's pen

struct Source {
  std::string name;
  int32_t frame;
  const PageEntry* entry;
  int32_t column = 0, row = 0; // of a part of it
};

// Where each picture comes from, so that it can be told by its place on a texture page.
class Pages {
public:
  Pages() {
    for (const auto& sprite : Sprites().table)
      for (int32_t frame = 0; sprite && frame < sprite->FrameCount(); ++frame)
        Add({sprite->name, frame, sprite->Frame(frame)});
    for (const auto& background : Backgrounds().table)
      if (background) Add({background->name, 0, background->page});
  }

  // No name for what comes from no picture.
  Source Find(TextureHandle texture, float u, float v) const {
    const auto size = m_sizes.find(texture);
    if (size == m_sizes.end()) return {"", 0, nullptr};
    const long left = std::lround(u * static_cast<float>(size->second.first)),
               top = std::lround(v * static_cast<float>(size->second.second));
    if (const auto found = m_sources.find({texture, left, top}); found != m_sources.end())
      return found->second;
    return PartOf(texture, static_cast<int32_t>(left), static_cast<int32_t>(top));
  }

private:
  void Add(const Source& source) {
    const TextureSlot* page = source.entry ? Texture_Find(source.entry->texture) : nullptr;
    if (!page) return;
    m_sizes[page->handle] = {page->realWidth, page->realHeight};
    m_sources.try_emplace({page->handle, source.entry->sourceX, source.entry->sourceY}, source);
  }
  static Source PartOf(TextureHandle texture, int32_t left, int32_t top) {
    for (const auto& background : Backgrounds().table) {
      const PageEntry* entry = background ? background->page : nullptr;
      if (!entry || Texture_Get(entry->texture) != texture) continue;
      const int32_t column = left - entry->sourceX, row = top - entry->sourceY;
      if (column >= 0 && row >= 0 && column < entry->sourceWidth && row < entry->sourceHeight)
        return {background->name, 0, nullptr, column, row};
    }
    return {"", 0, nullptr};
  }

  std::map<TextureHandle, std::pair<int32_t, int32_t>> m_sizes; // pixels
  std::map<std::tuple<TextureHandle, long, long>, Source> m_sources;
};

struct Letter {
  char character;
  double pen, top; // of its cell
  double advance;
  Box ink;
};

class Reader {
public:
  explicit Reader(int32_t font) : m_font(Font_Find(font)) {}

  void Add(TextureHandle texture, const uint8_t* vertices, int32_t stride) {
    TexturedVertex corner[6] = {};
    for (size_t at = 0; at < 6; ++at)
      std::memcpy(&corner[at], vertices + static_cast<ptrdiff_t>(at) * stride,
                  std::min<size_t>(static_cast<size_t>(stride), sizeof(TexturedVertex)));
    Box box = {corner[0].x, corner[0].y, corner[0].x, corner[0].y};
    for (const TexturedVertex& v : corner)
      box = {std::min<double>(box.left, v.x), std::min<double>(box.top, v.y),
             std::max<double>(box.right, v.x), std::max<double>(box.bottom, v.y)};
    const Source source =
        stride == sizeof(TexturedVertex)
            ? m_pages.Find(texture, std::min(corner[0].u, corner[2].u), std::min(corner[0].v, corner[2].v))
            : Source{"", 0, nullptr};
    if (const Glyph* glyph = GlyphOf(source))
      AddLetter({static_cast<char>(glyph->character), box.left - source.entry->targetX - glyph->offset,
                 box.top - source.entry->targetY, static_cast<double>(glyph->advance), box});
    else
      m_frame.pictures.push_back(
          {source.name, source.frame, source.column, source.row, box, corner[0].colour});
  }
  DrawnFrame Take() { return std::move(m_frame); }

private:
  const Glyph* GlyphOf(const Source& source) const {
    const CSprite* letters = m_font ? Sprite_Find(m_font->spriteIndex) : nullptr;
    if (!source.entry || !letters || source.name != letters->name) return nullptr;
    for (const Glyph& glyph : m_font->glyphs)
      if (glyph.frame == source.frame && glyph.character != ' ') return &glyph;
    return nullptr;
  }

  void AddLetter(const Letter& letter) {
    const double blank = m_font->FindGlyph(' ')->advance;
    const double gap = letter.pen - m_pen;
    const bool follows = !m_frame.lines.empty() && m_frame.lines.back().over == m_frame.pictures.size() &&
                         letter.top == m_top && gap > -kLineSlack && gap < 2 * blank + kLineSlack;
    if (!follows) {
      m_frame.lines.push_back(
          {"", letter.pen, letter.top, letter.pen, letter.ink, letter.ink, m_frame.pictures.size()});
    } else {
      Box& ink = m_frame.lines.back().ink;
      ink = {ink.left, std::min(ink.top, letter.ink.top), std::max(ink.right, letter.ink.right),
             std::max(ink.bottom, letter.ink.bottom)};
      m_frame.lines.back().text.append(static_cast<size_t>(std::max(0L, std::lround(gap / blank))), ' ');
    }
    m_frame.lines.back().text += letter.character;
    m_pen = m_frame.lines.back().right = letter.pen + letter.advance;
    m_top = letter.top;
  }

  Pages m_pages;
  const CFontFb* m_font;
  DrawnFrame m_frame;
  double m_pen = 0, m_top = -1;
};

std::string Name(const DrawnPicture& picture) {
  return (picture.name.empty() ? "a plain area" : picture.name + " " + std::to_string(picture.frame)) + " " +
         picture.box.Words();
}

bool IsButton(const DrawnPicture& picture) { return picture.name.starts_with("spr_button"); }

void FindMisfitsOfLine(const DrawnFrame& frame, const DrawnLine& line, std::vector<std::string>& misfits) {
  const std::string said = "\"" + line.text + "\" " + line.ink.Words();
  if (!kView.Holds(line.ink)) misfits.push_back(said + " leaves the view");
  const double x = (line.firstLetter.left + line.firstLetter.right) / 2,
               y = (line.firstLetter.top + line.firstLetter.bottom) / 2;
  const DrawnPicture* ground = nullptr;
  for (size_t at = 0; at < line.over; ++at)
    if (frame.pictures[at].box.HoldsPoint(x, y)) ground = &frame.pictures[at];
  if (ground && !ground->box.Holds(line.ink)) misfits.push_back(said + " leaves " + Name(*ground));
  for (const DrawnPicture& picture : frame.pictures)
    if (&picture > ground && picture.name != kCursor && picture.box.Touches(line.ink))
      misfits.push_back(said + " meets " + Name(picture));
  for (const DrawnLine& other : frame.lines)
    if (&other > &line && other.ink.Touches(line.ink))
      misfits.push_back(said + " runs into \"" + other.text + "\"");
}

} // namespace

std::string Box::Words() const {
  const auto word = [](double pixels) { return std::to_string(std::lround(pixels)); };
  return "(" + word(left) + "," + word(top) + " to " + word(right) + "," + word(bottom) + ")";
}

std::ostream& operator<<(std::ostream& out, const DrawnPicture& picture) {
  return out << Name(picture) << " part " << picture.column << "," << picture.row << " colour " << std::hex
             << picture.colour << std::dec;
}

std::ostream& operator<<(std::ostream& out, const DrawnLine& line) {
  return out << '"' << line.text << "\" from " << line.left << " to " << line.right << ", top " << line.top;
}

std::optional<DrawnPicture> DrawnFrame::Find(const std::string& name) const {
  const auto found = std::find_if(pictures.rbegin(), pictures.rend(),
                                  [&](const DrawnPicture& picture) { return picture.name == name; });
  if (found == pictures.rend()) return {};
  return *found;
}

bool DrawnFrame::Reads(const std::string& text) const {
  return std::ranges::any_of(lines, [&](const DrawnLine& line) { return line.text == text; });
}

std::string DrawnFrame::Words() const {
  std::string words;
  for (const DrawnLine& line : lines) words += line.text + "\n";
  return words;
}

namespace {

using Call = CRecordingDevice::Call;

std::vector<Call> CallsOfAFrame(Simulation& game) {
  auto* device = dynamic_cast<CRecordingDevice*>(Graphics().device.get());
  EXPECT_NE(device, nullptr) << "the game runs on another device";
  if (!device) return {};
  device->Forget();
  device->keep = true;
  game.Step();
  device->keep = false;
  std::vector<Call> calls = std::move(device->calls);
  device->Forget();
  return calls;
}

// From a change of target to the next.
DrawnFrame Read(const std::vector<Call>& calls, size_t begin) {
  Reader reader(ValueAsInt32(ReadVariable(nullptr, {"font", kNoIndex})));
  for (size_t at = begin + 1; at < calls.size() && calls[at].kind != CRecordingDevice::Kind::Target; ++at) {
    const Call& call = calls[at];
    if (call.kind != CRecordingDevice::Kind::Draw || call.primitive != pr_trianglelist) continue;
    for (int32_t vertex = 0; vertex + 6 <= call.count; vertex += 6)
      reader.Add(call.texture, call.data.data() + static_cast<ptrdiff_t>(vertex) * call.stride, call.stride);
  }
  return reader.Take();
}

} // namespace

DrawnFrame LookAtFrame(Simulation& game) {
  const std::vector<Call> calls = CallsOfAFrame(game);
  size_t begin = 0; // of the layer that is drawn into the window itself, the last that draws anything
  for (size_t at = 0, target = 0; at < calls.size(); ++at) {
    if (calls[at].kind == CRecordingDevice::Kind::Target) target = at;
    if (calls[at].kind == CRecordingDevice::Kind::Draw) begin = target;
  }
  return Read(calls, begin);
}

DrawnFrame LookAtFrame(EditorDesk& desk) { return LookAtFrame(desk.Game()); }

DrawnFrame LookAtRoom(EditorDesk& desk) {
  const std::vector<Call> calls = CallsOfAFrame(desk.Game());
  const auto begin = std::ranges::find_if(calls, [](const Call& call) {
    return call.kind == CRecordingDevice::Kind::Target && call.texture != 0; // the application surface
  });
  return Read(calls, static_cast<size_t>(begin - calls.begin()));
}

std::vector<std::string> Misfits(const DrawnFrame& frame) {
  std::vector<std::string> misfits;
  for (const DrawnLine& line : frame.lines) FindMisfitsOfLine(frame, line, misfits);
  for (const DrawnPicture& one : frame.pictures)
    for (const DrawnPicture& other : frame.pictures)
      if (&other > &one && IsButton(one) && IsButton(other) && one.box.Touches(other.box))
        misfits.push_back(Name(one) + " lies under " + Name(other));
  return misfits;
}

} // namespace vesk
