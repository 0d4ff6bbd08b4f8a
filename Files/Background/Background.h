#pragma once
// Backgrounds at run time: one picture each, from the container or from a surface.
#include "Files/Sprite/Sprite.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

class CBackground {
public:
  std::string name;
  int32_t index = -1;
  bool transparent = false, smooth = false, preload = false;
  const PageEntry* page = nullptr;  // null: nothing to draw
  std::unique_ptr<PageEntry> owned; // of a background made at run time
  int32_t width = 0, height = 0;    // pixels of the full picture
};

struct BackgroundState {
  std::vector<std::unique_ptr<CBackground>> table; // by index; null for a hole or a deleted one
};
BackgroundState& Backgrounds();
void Background_Reset();

CBackground* Background_Find(int32_t index); // null for an index that names none
int32_t Background_FindByName(std::string_view name);

} // namespace vesk
