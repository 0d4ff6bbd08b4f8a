#include "pack/studio/Studio.h"

#include "pack/studio/Canvas.h"
#include "pack/studio/Painter.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <zlib.h>

namespace vesk {

using namespace studio;

namespace {

// To be raised whenever the same source would give another picture.
constexpr const char* kPainterVersion = "3";
constexpr uint32_t kCacheMark = 0x43495056; // VPIC

std::vector<PictureSpec> ReadTable(const std::filesystem::path& file, bool background) {
  std::ifstream in(file);
  if (!in) throw std::runtime_error(file.string() + ": can't be read");
  std::string line;
  std::vector<std::string> columns;
  const auto cut = [](const std::string& text) {
    std::vector<std::string> cells;
    std::istringstream stream(text);
    for (std::string cell; std::getline(stream, cell, '\t');) cells.push_back(cell);
    return cells;
  };
  std::getline(in, line);
  columns = cut(line);
  std::vector<PictureSpec> specs;
  for (int number = 2; std::getline(in, line); ++number) {
    const auto cells = cut(line);
    const auto at = [&](const char* column) {
      const auto i = static_cast<size_t>(std::find(columns.begin(), columns.end(), column) - columns.begin());
      if (i >= cells.size())
        throw std::runtime_error(file.string() + ":" + std::to_string(number) + ": no column " + column);
      return cells[i];
    };
    const auto whole = [&](const char* column) { return std::atoi(at(column).c_str()); };
    PictureSpec spec;
    spec.name = at("name"), spec.width = whole("width"), spec.height = whole("height");
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
      throw std::runtime_error(file.string() + ":" + std::to_string(number) + ": " + spec.name +
                               " has no sensible size");
    specs.push_back(spec);
  }
  return specs;
}

std::string HexHash(const std::string& text) {
  uint64_t a = 0xcbf29ce484222325ull, b = 0x9e3779b97f4a7c15ull;
  for (const char c : text) {
    a = (a ^ static_cast<uint8_t>(c)) * 0x100000001b3ull;
    b = (b ^ static_cast<uint8_t>(c)) * 0xff51afd7ed558ccdull, b ^= b >> 29;
  }
  char out[33];
  std::snprintf(out, sizeof out, "%016llx%016llx", static_cast<unsigned long long>(a),
                static_cast<unsigned long long>(b));
  return out;
}

// A cache file: mark, byte count, deflated pixels of all frames. Anything unfit counts as not there.
bool ReadCache(const std::filesystem::path& file, const PictureSpec& spec, std::vector<Picture>& frames) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return false;
  const std::string bytes((std::istreambuf_iterator<char>(in)), {});
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

// A failed write only costs time at the next run, so it isn't reported; the file appears whole or not at all.
void WriteCache(const std::filesystem::path& file, const std::vector<Picture>& frames) {
  std::vector<uint32_t> all;
  for (const Picture& p : frames) all.insert(all.end(), p.rgba.begin(), p.rgba.end());
  uLongf size = compressBound(all.size() * 4);
  std::vector<char> packed(size);
  if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(all.data()),
                all.size() * 4, 1) != Z_OK)
    return;
  const std::filesystem::path part = file.string() + ".part";
  std::ofstream out(part, std::ios::binary);
  out.write(reinterpret_cast<const char*>(&kCacheMark), 4);
  out.write(packed.data(), static_cast<std::streamsize>(size));
  out.close();
  std::error_code ignored;
  if (out) std::filesystem::rename(part, file, ignored);
}

} // namespace

struct Studio::Impl {
  std::filesystem::path cache;
  studio::Palette palette;
  std::vector<PictureSpec> specs;
  Library library;
  std::map<std::string, std::vector<Picture>> frames;
  std::map<std::string, std::string> hashOfFile;
  std::set<std::string> painting; // pictures whose frames are being painted

  Impl(const std::filesystem::path& assets, const std::filesystem::path& cacheDir)
      : cache(cacheDir.empty() ? cacheDir : cacheDir / "pictures"), palette(assets / "palette.txt"),
        specs(ReadTable(assets / "sprites.tsv", false)), library(assets / "pictures", palette) {
    const auto backgrounds = ReadTable(assets / "backgrounds.tsv", true);
    specs.insert(specs.end(), backgrounds.begin(), backgrounds.end());
    if (!cache.empty()) std::filesystem::create_directories(cache);
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

  std::filesystem::path CacheFile(const PictureSpec& spec) {
    const std::string& source = library.Sprite(spec.name)->file;
    std::string& hash = hashOfFile[source];
    if (hash.empty())
      hash = HexHash(kPainterVersion + palette.Text() + library.TextsOf(source) + TextsOfIcons(source));
    return cache / (spec.name + "-" + HexHash(hash + Geometry(spec)).substr(0, 24) + ".pic");
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
  if (!impl_->cache.empty() && ReadCache(impl_->CacheFile(*spec), *spec, frames)) return frames;
  if (!impl_->painting.insert(name).second)
    throw std::runtime_error("pictures/" + impl_->library.Sprite(name)->file + ": " + name +
                             ": icons of each other without end");
  const FramesOf framesOf = [this](const std::string& other) -> const std::vector<Picture>& {
    return Frames(other);
  };
  frames = PaintSprite(impl_->library, impl_->palette, *spec, impl_->specs, framesOf);
  impl_->painting.erase(name);
  if (!impl_->cache.empty()) {
    for (const auto& old : std::filesystem::directory_iterator(impl_->cache))
      if (old.path().filename().string().rfind(name + "-", 0) == 0) std::filesystem::remove(old.path());
    WriteCache(impl_->CacheFile(*spec), frames);
  }
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
