#include "tests/scenarios/DrawnFrame.h"

#include "tests/scenarios/EditorDesk.h"

#include "Files/Background/Background.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/Sprite/Sprite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
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

  const Source* Find(TextureHandle texture, float left, float top) const {
    const auto size = m_sizes.find(texture);
    if (size == m_sizes.end()) return nullptr;
    const auto found = m_sources.find({texture, std::lround(left * static_cast<float>(size->second.first)),
                                       std::lround(top * static_cast<float>(size->second.second))});
    return found == m_sources.end() ? nullptr : &found->second;
  }

private:
  void Add(const Source& source) {
    const TextureSlot* page = source.entry ? Texture_Find(source.entry->texture) : nullptr;
    if (!page) return;
    m_sizes[page->handle] = {page->realWidth, page->realHeight};
    m_sources.try_emplace({page->handle, source.entry->sourceX, source.entry->sourceY}, source);
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
    const Source* source =
        stride == sizeof(TexturedVertex)
            ? m_pages.Find(texture, std::min(corner[0].u, corner[2].u), std::min(corner[0].v, corner[2].v))
            : nullptr;
    if (const Glyph* glyph = GlyphOf(source))
      AddLetter({static_cast<char>(glyph->character), box.left - source->entry->targetX - glyph->offset,
                 box.top - source->entry->targetY, static_cast<double>(glyph->advance), box});
    else
      m_frame.pictures.push_back(
          {source ? source->name : "", source ? source->frame : 0, box, corner[0].colour});
  }
  DrawnFrame Take() { return std::move(m_frame); }

private:
  const Glyph* GlyphOf(const Source* source) const {
    const CSprite* letters = m_font ? Sprite_Find(m_font->spriteIndex) : nullptr;
    if (!source || !letters || source->name != letters->name) return nullptr;
    for (const Glyph& glyph : m_font->glyphs)
      if (glyph.frame == source->frame && glyph.character != ' ') return &glyph;
    return nullptr;
  }

  void AddLetter(const Letter& letter) {
    const double blank = m_font->FindGlyph(' ')->advance;
    const double gap = letter.pen - m_pen;
    const bool follows = !m_frame.lines.empty() && m_frame.lines.back().over == m_frame.pictures.size() &&
                         letter.top == m_top && gap > -kLineSlack && gap < 2 * blank + kLineSlack;
    if (!follows) {
      m_frame.lines.push_back({"", letter.ink, letter.ink, m_frame.pictures.size()});
    } else {
      Box& ink = m_frame.lines.back().ink;
      ink = {ink.left, std::min(ink.top, letter.ink.top), std::max(ink.right, letter.ink.right),
             std::max(ink.bottom, letter.ink.bottom)};
      m_frame.lines.back().text.append(static_cast<size_t>(std::max(0L, std::lround(gap / blank))), ' ');
    }
    m_frame.lines.back().text += letter.character;
    m_pen = letter.pen + letter.advance;
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

const DrawnPicture* DrawnFrame::Find(const std::string& name) const {
  const auto found = std::find_if(pictures.rbegin(), pictures.rend(),
                                  [&](const DrawnPicture& picture) { return picture.name == name; });
  return found == pictures.rend() ? nullptr : &*found;
}

bool DrawnFrame::Reads(const std::string& text) const {
  return std::ranges::any_of(lines, [&](const DrawnLine& line) { return line.text == text; });
}

std::string DrawnFrame::Words() const {
  std::string words;
  for (const DrawnLine& line : lines) words += line.text + "\n";
  return words;
}

DrawnFrame LookAtFrame(EditorDesk& desk) {
  auto* device = dynamic_cast<CRecordingDevice*>(Graphics().device.get());
  EXPECT_NE(device, nullptr) << "the game runs on another device";
  if (!device) return {};
  device->Forget();
  device->keep = true;
  desk.Step();
  device->keep = false;
  size_t begin = 0; // of the layer that is drawn into the window itself, the last that draws anything
  for (size_t at = 0, target = 0; at < device->calls.size(); ++at) {
    if (device->calls[at].kind == CRecordingDevice::Kind::Target) target = at;
    if (device->calls[at].kind == CRecordingDevice::Kind::Draw) begin = target;
  }
  Reader reader(static_cast<int32_t>(desk.Global("font")));
  for (size_t at = begin; at < device->calls.size(); ++at) {
    const CRecordingDevice::Call& call = device->calls[at];
    if (call.kind != CRecordingDevice::Kind::Draw || call.primitive != pr_trianglelist) continue;
    for (int32_t vertex = 0; vertex + 6 <= call.count; vertex += 6)
      reader.Add(call.texture, call.data.data() + static_cast<ptrdiff_t>(vertex) * call.stride, call.stride);
  }
  device->Forget();
  return reader.Take();
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
