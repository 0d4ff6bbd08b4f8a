#include "pack/studio/Studio.h"

#include "pack/SourceCache.h"
#include "pack/TextSource.h"
#include "pack/studio/Canvas.h"
#include "pack/studio/Painter.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <stdexcept>
#include <zlib.h>

namespace vesk {

using namespace studio;

namespace {

// To be raised whenever the same source would give another picture.
constexpr const char* kPainterVersion = "3";
constexpr uint32_t kCacheMark = 0x43495056; // VPIC

std::vector<PictureSpec> ReadTable(const std::filesystem::path& file, bool background) {
  const pack::Table table(file);
  std::vector<PictureSpec> specs;
  for (size_t row = 0; row < table.Rows(); ++row) {
    const auto whole = [&](const char* column) { return table.Integer(row, column); };
    PictureSpec spec;
    spec.name = table.Text(row, "name"), spec.width = whole("width"), spec.height = whole("height");
    spec.background = background;
    spec.boxRight = spec.width - 1, spec.boxBottom = spec.height - 1;
    if (!background) {
      spec.frames = whole("frames");
      spec.originX = whole("origin_x"), spec.originY = whole("origin_y");
      spec.boxLeft = whole("bbox_left"), spec.boxTop = whole("bbox_top");
      spec.boxRight = whole("bbox_right"), spec.boxBottom = whole("bbox_bottom");
      spec.precise = whole("kind") == 1;
      spec.boxByHand = whole("bbox_mode") == 2;
    }
    if (spec.width < 1 || spec.height < 1 || spec.frames < 1 || spec.width > 4096 || spec.height > 4096)
      table.Fail(row, spec.name + " has no sensible size");
    specs.push_back(spec);
  }
  return specs;
}

// Kept frames: mark, then the deflated pixels of all frames. Anything unfit counts as not there.
bool Unpack(const std::string& bytes, const PictureSpec& spec, std::vector<Picture>& frames) {
  const size_t pixels = static_cast<size_t>(spec.width) * static_cast<size_t>(spec.height);
  std::vector<uint32_t> all(pixels * static_cast<size_t>(spec.frames));
  uLongf size = all.size() * 4;
  uint32_t mark = 0;
  if (bytes.size() < 4) return false;
  std::memcpy(&mark, bytes.data(), 4);
  if (mark != kCacheMark ||
      uncompress(reinterpret_cast<Bytef*>(all.data()), &size,
                 reinterpret_cast<const Bytef*>(bytes.data()) + 4, bytes.size() - 4) != Z_OK ||
      size != all.size() * 4)
    return false;
  for (int f = 0; f < spec.frames; ++f)
    frames.push_back({spec.width,
                      spec.height,
                      {all.begin() + static_cast<std::ptrdiff_t>(pixels * static_cast<size_t>(f)),
                       all.begin() + static_cast<std::ptrdiff_t>(pixels * static_cast<size_t>(f + 1))}});
  return true;
}

std::string Pack(const std::vector<Picture>& frames) {
  std::vector<uint32_t> all;
  for (const Picture& p : frames) all.insert(all.end(), p.rgba.begin(), p.rgba.end());
  uLongf size = compressBound(all.size() * 4);
  std::string bytes(4 + size, '\0');
  std::memcpy(bytes.data(), &kCacheMark, 4);
  if (compress2(reinterpret_cast<Bytef*>(bytes.data()) + 4, &size, reinterpret_cast<const Bytef*>(all.data()),
                all.size() * 4, 1) != Z_OK)
    throw std::runtime_error("pictures can't be compressed");
  bytes.resize(4 + size);
  return bytes;
}

} // namespace

struct Studio::Impl {
  pack::SourceCache cache;
  studio::Palette palette;
  std::vector<PictureSpec> specs;
  Library library;
  std::map<std::string, std::vector<Picture>> frames;
  std::map<std::string, std::string> hashOfFile;
  std::set<std::string> painting; // pictures whose frames are being painted

  Impl(const std::filesystem::path& assets, const std::filesystem::path& cacheDir)
      : cache(cacheDir.empty() ? cacheDir : cacheDir / "pictures", ".pic"), palette(assets / "palette.txt"),
        specs(ReadTable(assets / "sprites.tsv", false)), library(assets / "pictures", palette) {
    const auto backgrounds = ReadTable(assets / "backgrounds.tsv", true);
    specs.insert(specs.end(), backgrounds.begin(), backgrounds.end());
  }

  // What the icons of a file depend on: the sources of their pictures and the sizes of those.
  std::string TextsOfIcons(const std::string& file) {
    std::string texts;
    std::set<std::string> files;
    for (const std::string& name : library.IconsIn(file)) {
      texts += name + "\n";
      for (const PictureSpec& spec : specs)
        if (spec.name == name) texts += Geometry(spec);
      if (const Part* part = library.Sprite(name)) files.insert(part->file);
    }
    for (const std::string& other : files) texts += library.TextsOf(other);
    return texts;
  }

  static std::string Geometry(const PictureSpec& spec) {
    std::string text;
    for (const int v : {spec.width, spec.height, spec.frames, spec.boxLeft, spec.boxTop, spec.boxRight,
                        spec.boxBottom, int(spec.boxByHand)})
      text += std::to_string(v) + ",";
    return text;
  }

  // All that the finished picture depends on.
  std::string SourceOf(const PictureSpec& spec) {
    const std::string& file = library.Sprite(spec.name)->file;
    std::string& hash = hashOfFile[file];
    if (hash.empty())
      hash = pack::HexHash(kPainterVersion + palette.Text() + library.TextsOf(file) + TextsOfIcons(file));
    return hash + Geometry(spec);
  }
};

Studio::Studio(const std::filesystem::path& assetsDir, const std::filesystem::path& cacheDir)
    : impl_(std::make_unique<Impl>(assetsDir, cacheDir)) {}
Studio::~Studio() = default;

const std::vector<PictureSpec>& Studio::Specs() const { return impl_->specs; }
const std::vector<uint32_t>& Studio::Palette() const { return impl_->palette.Colours(); }

const PictureSpec* Studio::Find(const std::string& name) const {
  const auto it =
      std::find_if(impl_->specs.begin(), impl_->specs.end(), [&](const auto& s) { return s.name == name; });
  return it == impl_->specs.end() ? nullptr : &*it;
}

bool Studio::Has(const std::string& name) const { return impl_->library.Sprite(name) && Find(name); }

const std::vector<Picture>& Studio::Frames(const std::string& name) {
  std::vector<Picture>& frames = impl_->frames[name];
  const PictureSpec* spec = Find(name);
  if (!frames.empty() || !spec || !Has(name)) return frames;
  const std::string source = impl_->cache.Keeps() ? impl_->SourceOf(*spec) : "";
  if (Unpack(impl_->cache.Read(name, source), *spec, frames)) return frames;
  if (!impl_->painting.insert(name).second)
    throw std::runtime_error("pictures/" + impl_->library.Sprite(name)->file + ": " + name +
                             ": icons of each other without end");
  const FramesOf framesOf = [this](const std::string& other) -> const std::vector<Picture>& {
    return Frames(other);
  };
  frames = PaintSprite(impl_->library, impl_->palette, *spec, impl_->specs, framesOf);
  impl_->painting.erase(name);
  if (impl_->cache.Keeps()) impl_->cache.Write(name, source, Pack(frames));
  return frames;
}

Picture Studio::DrawSetOfPieces(const std::string& name, int set, std::vector<int>& setOfCell) const {
  const PictureSpec* spec = Find(name);
  const Part* part = impl_->library.Sprite(name);
  setOfCell.clear();
  if (!spec || !part || part->pieces.empty()) return {};
  const Pieces pieces(part->pieces, part->cellSize);
  for (size_t r = 0; r < part->pieces.size(); ++r)
    for (size_t c = 0; c < part->pieces[r].size(); ++c)
      setOfCell.push_back(pieces.SetOf(
          pieces.At(static_cast<int>(c) * part->cellSize, static_cast<int>(r) * part->cellSize)));
  const std::vector<Picture> none;
  const FramesOf framesOf = [&](const std::string&) -> const std::vector<Picture>& { return none; };
  return PaintSprite(impl_->library, impl_->palette, *spec, impl_->specs, framesOf, set).front();
}

std::vector<Picture> Studio::Placeholder(const PictureSpec& spec) const {
  std::vector<Picture> frames;
  for (int f = 0; f < spec.frames; ++f) {
    Picture p{spec.width, spec.height, {}};
    for (int y = 0; y < spec.height; ++y)
      for (int x = 0; x < spec.width; ++x) {
        const bool inside =
            x >= spec.boxLeft && x <= spec.boxRight && y >= spec.boxTop && y <= spec.boxBottom;
        const bool edge = x == spec.boxLeft || x == spec.boxRight || y == spec.boxTop || y == spec.boxBottom;
        const bool stripe = ((x + y + f * 2) & 7) < 2;
        p.rgba.push_back(!inside ? 0 : edge || stripe ? 0xffff00ffu : 0xff301030u);
      }
    frames.push_back(std::move(p));
  }
  return frames;
}

std::vector<std::string> Studio::Differences(const std::string& name) {
  const PictureSpec* spec = Find(name);
  if (!spec) return {name + " stands in no table"};
  if (!Has(name)) return {name + " has no source"};
  std::vector<std::string> all;
  int left = spec->width, top = spec->height, right = -1, bottom = -1, foreign = 0;
  const auto& palette = Palette();
  const auto& frames = Frames(name);
  const std::set<uint32_t> allowed(palette.begin(), palette.end());
  const auto isGrey = [](uint32_t c) { return (c & 255) == (c >> 8 & 255) && (c & 255) == (c >> 16 & 255); };
  for (const Picture& p : frames)
    for (int y = 0; y < p.height; ++y)
      for (int x = 0; x < p.width; ++x) {
        const uint32_t pixel = p.rgba[static_cast<size_t>(y * p.width + x)];
        if (!(pixel >> 24)) continue;
        left = std::min(left, x), right = std::max(right, x), top = std::min(top, y),
        bottom = std::max(bottom, y);
        foreign += !allowed.count(pixel | 0xff000000u) && !isGrey(pixel);
      }
  if (static_cast<int>(frames.size()) != spec->frames)
    all.push_back(name + " has " + std::to_string(frames.size()) + " frames, not " +
                  std::to_string(spec->frames));
  if (foreign) all.push_back(name + " has " + std::to_string(foreign) + " pixels outside the palette");
  if (!spec->boxByHand && !spec->background) {
    const auto side = [&](const char* what, int is, int wanted) {
      if (is != wanted)
        all.push_back(name + " ends at " + std::to_string(is) + " on the " + what + ", the table says " +
                      std::to_string(wanted));
    };
    if (right < 0) {
      all.push_back(name + " is empty");
    } else {
      side("left", left, spec->boxLeft), side("top", top, spec->boxTop);
      side("right", right, spec->boxRight), side("bottom", bottom, spec->boxBottom);
    }
  }
  return all;
}

} // namespace vesk
