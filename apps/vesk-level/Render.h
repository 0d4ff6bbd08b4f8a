#pragma once
// A whole section as the editor shows it.
#include <string>

namespace vesk {

struct RenderChoice {
  std::string file, section = "Main", output;
  bool lights = true; // ambient darkness and lights; without them everything is fully lit
  bool water = true;
  bool grid = false;
};
// "" or, in words, why there is no picture.
std::string RenderSection(const RenderChoice& choice);

} // namespace vesk
