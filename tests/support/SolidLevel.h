#pragma once
// The text of a level whose one section is filled solid: 250 by 32 cells, a tile in each, a coin in each of
// every eighth row.
#include "game/text.h"

#include <string>

namespace vesk {

inline constexpr int kSolidTiles = 8000, kSolidObjects = 1000;

inline std::string SolidLevel() {
  std::string tiles, objects;
  for (int cx = 0; cx < 250; ++cx)
    for (int cy = 0; cy < 32; ++cy) {
      const std::string key = "\"" + cell_key(cx, cy) + "\":";
      tiles += (tiles.empty() ? "" : ",") + key + "\"1,4\"";
      if (cy % 8 == 0) objects += (objects.empty() ? "" : ",") + key + "\"Coin\"";
    }
  return R"({"Main":{"HEIGHT":32,"WIDTH":250,"MUSIC":"Cool","BACKGROUND":"Wall","RAIN":0,"DARKNESS":0,"WATER_LEVEL":0,)"
         R"("WATER_COLOR":"Blue","TILES_BG":{},"MODIFIERS":{},"MARKERS":{},"TILES":{)" +
         tiles + R"(},"OBJECTS":{)" + objects + "}}}";
}

} // namespace vesk
