#pragma once
// The picture studio: compiles the text sources in assets/pictures/ to the frames of sprites and backgrounds.
// assets/README.md describes the source format. Throws std::runtime_error, in words, with file and line, when
// a source is wrong. One thread at a time per Studio.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

// Pixels are 0xAABBGGRR words, so R, G, B, A bytes in memory; straight alpha; rows from the top, no padding.
struct Picture {
  int width = 0, height = 0;
  std::vector<uint32_t> rgba;
};

// One row of assets/sprites.tsv or assets/backgrounds.tsv. The box is inclusive; for a background it is the
// picture.
struct PictureSpec {
  std::string name;
  int width = 0, height = 0, originX = 0, originY = 0, frames = 1;
  int boxLeft = 0, boxTop = 0, boxRight = 0, boxBottom = 0;
  bool precise = false;   // one bit mask per frame
  bool boxByHand = false; // the visible pixels needn't end on the box
  bool background = false;
};

class Studio {
public:
  // cacheDir may be empty: then nothing is kept between runs. Reads the tables and the headings of all
  // sources.
  explicit Studio(const std::filesystem::path& assetsDir, const std::filesystem::path& cacheDir = {});
  ~Studio();
  Studio(const Studio&) = delete;
  Studio& operator=(const Studio&) = delete;

  // All rows of both tables, sprites first, each in index order.
  const std::vector<PictureSpec>& Specs() const;

  // The row of that name, or null.
  const PictureSpec* Find(const std::string& name) const;

  // Whether a source makes that picture.
  bool Has(const std::string& name) const;

  // The frames of the sprite or background of that name; empty when no source makes it yet.
  // The reference stays valid as long as the Studio.
  const std::vector<Picture>& Frames(const std::string& name);

  // The first frame of a picture that is cut into pieces, with only one of four sets of pieces drawn (0 to
  // 3), and the set of each of its cells, row by row. Empty when the picture has no pieces.
  Picture DrawSetOfPieces(const std::string& name, int set, std::vector<int>& setOfCell) const;

  // Frames as they should be for a picture without a source: its box drawn as a plainly marked dummy.
  std::vector<Picture> Placeholder(const PictureSpec& spec) const;

  // What differs between the picture and its row, one sentence each; empty when all is right.
  std::vector<std::string> Differences(const std::string& name);

  // Colours of assets/palette.txt, without repeats.
  const std::vector<uint32_t>& Palette() const;

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// A contact sheet of all pictures whose name starts with prefix ("" for all, a full name for one): names,
// frame numbers, box and origin cross. scale is 1 to 16. Pictures without a source are left out unless
// placeholders.
Picture MakeSheet(Studio& studio, const std::string& prefix, int scale, bool placeholders = false);

// A part of a picture (left, top, width, height; empty for all) on grey, every pixel scale times as large.
Picture Enlarge(const Picture& picture, const std::vector<int>& area, int scale);

// Writes an 8-bit RGBA PNG. Throws std::runtime_error.
void WritePng(const Picture& picture, const std::filesystem::path& file);

} // namespace vesk
