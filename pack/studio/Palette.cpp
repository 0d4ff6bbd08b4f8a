#include "pack/studio/Palette.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace vesk::studio {

Palette::Palette(const std::filesystem::path& file) : ramps_(1) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file.string() + ": can't be read");
  text_.assign(std::istreambuf_iterator<char>(in), {});
  std::istringstream lines(text_);
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    const auto fail = [&](const std::string& why) {
      throw std::runtime_error(file.string() + ":" + std::to_string(number) + ": " + why);
    };
    std::istringstream words(line.substr(0, line.find('#')));
    std::string name, word;
    if (!(words >> name)) continue;
    std::vector<uint32_t> ramp;
    while (words >> word) {
      // A step of an earlier ramp; its name alone is its step 0.
      if (const size_t dot = word.find('.'); dot != std::string::npos || Ramp(word)) {
        const int other = Ramp(word.substr(0, dot));
        const int step = dot == std::string::npos ? 0 : std::atoi(word.c_str() + dot + 1);
        if (!other || step < 0 || step >= Steps(other)) fail("no colour " + word);
        ramp.push_back(ramps_[other][step]);
        continue;
      }
      if (word.size() != 6 || word.find_first_not_of("0123456789abcdef") != std::string::npos)
        fail("a colour is six small hexadecimal digits, not " + word);
      const uint32_t rgb = static_cast<uint32_t>(std::stoul(word, nullptr, 16));
      ramp.push_back(0xff000000u | (rgb & 0xff) << 16 | (rgb & 0xff00) | rgb >> 16);
    }
    if (ramp.empty() || ramp.size() > kStepsPerRamp) fail("a ramp has 1 to 16 steps");
    if (!byName_.emplace(name, static_cast<int>(ramps_.size())).second)
      fail("ramp " + name + " stands twice");
    ramps_.push_back(ramp);
    for (const uint32_t colour : ramp)
      if (std::find(colours_.begin(), colours_.end(), colour) == colours_.end()) colours_.push_back(colour);
    if (colours_.size() > kPaletteLimit) fail("more than 64 colours");
  }
}

int Palette::Ramp(const std::string& name) const {
  const auto it = byName_.find(name);
  return it == byName_.end() ? 0 : it->second;
}

uint32_t Palette::Rgba(Colour colour) const {
  if (colour == kClear) return 0;
  if (colour & kGrey) return 0xff000000u | (colour & 0xffu) * 0x010101u;
  const auto& ramp = ramps_[colour / kStepsPerRamp];
  return ramp[std::min<size_t>(colour % kStepsPerRamp, ramp.size() - 1)];
}

Colour Palette::Find(uint32_t opaque) const {
  for (size_t ramp = 1; ramp < ramps_.size(); ++ramp)
    for (size_t step = 0; step < ramps_[ramp].size(); ++step)
      if (ramps_[ramp][step] == opaque) return static_cast<Colour>(ramp * kStepsPerRamp + step);
  const uint32_t grey = opaque & 255;
  return opaque == (0xff000000u | grey * 0x010101u) ? static_cast<Colour>(kGrey | grey) : kClear;
}

Colour Palette::Step(Colour colour, int by) const {
  if (colour == kClear || colour & kGrey) return colour;
  const int ramp = colour / kStepsPerRamp;
  return static_cast<Colour>(ramp * kStepsPerRamp +
                             std::clamp(colour % kStepsPerRamp + by, 0, Steps(ramp) - 1));
}

Colour Palette::InRamp(Colour colour, int ramp) const {
  return static_cast<Colour>(ramp * kStepsPerRamp + std::min(colour % kStepsPerRamp, Steps(ramp) - 1));
}

} // namespace vesk::studio
