#pragma once
// Colours in ramps, dark to light. A colour is kept as ramp and step until the very end, so no pass can leave
// the palette: ramp * 16 + step, with ramps counted from 1; 0 is a clear pixel. Greys of light pictures stand
// apart.
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace vesk::studio {

using Colour = uint16_t;
constexpr Colour kClear = 0;
constexpr Colour kGrey = 0x8000; // kGrey + 0..255
constexpr int kStepsPerRamp = 16;
constexpr size_t kPaletteLimit = 64;

class Palette {
public:
  // Throws std::runtime_error on a malformed line, a repeated name or more than kPaletteLimit distinct
  // colours.
  explicit Palette(const std::filesystem::path& file);

  int Ramp(const std::string& name) const; // its number, or 0
  int Steps(int ramp) const { return static_cast<int>(ramps_[ramp].size()); }
  uint32_t Rgba(Colour colour) const; // opaque; 0 for kClear
  // The first colour of the palette that looks so, or the grey; kClear when there is none.
  Colour Find(uint32_t opaque) const;
  // The colour some steps lighter (or darker, below 0) of the same ramp, within it. Greys and clear stay.
  Colour Step(Colour colour, int by) const;
  // The same step of another ramp, within it.
  Colour InRamp(Colour colour, int ramp) const;
  const std::vector<uint32_t>& Colours() const { return colours_; }
  const std::string& Text() const { return text_; }

private:
  std::map<std::string, int> byName_;
  std::vector<std::vector<uint32_t>> ramps_;
  std::vector<uint32_t> colours_;
  std::string text_;
};

} // namespace vesk::studio
