// The pictures of the tree against their tables.
#include "pack/studio/Studio.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

namespace vesk {
namespace {

Studio& Tree() {
  static Studio studio("assets");
  return studio;
}

uint32_t At(const Picture& p, int x, int y) { return p.rgba[static_cast<size_t>(y * p.width + x)]; }

bool Opaque(const Picture& p, int x, int y) { return At(p, x, y) >> 24 != 0; }

int Distance(uint32_t a, uint32_t b) {
  int sum = 0;
  for (int shift = 0; shift < 32; shift += 8) sum += std::abs(int(a >> shift & 255) - int(b >> shift & 255));
  return sum;
}

using Rule = std::function<bool(int x, int y)>;

void ExpectFilledWhere(const Picture& p, int left, int top, int width, int height, const Rule& rule,
                       const std::string& what) {
  int wrong = 0;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) wrong += Opaque(p, left + x, top + y) != rule(x, y);
  EXPECT_EQ(wrong, 0) << what;
}

TEST(Pictures, AgreeWithTheirTables) {
  int seen = 0;
  for (const PictureSpec& spec : Tree().Specs()) {
    if (!Tree().Has(spec.name)) continue;
    ++seen;
    for (const auto& difference : Tree().Differences(spec.name)) ADD_FAILURE() << difference;
  }
  EXPECT_GT(seen, 100);
  EXPECT_LE(Tree().Palette().size(), 64u);
}

TEST(Pictures, AnimatedOnesHaveFramesThatDiffer) {
  for (const PictureSpec& spec : Tree().Specs()) {
    if (spec.frames < 2 || !Tree().Has(spec.name)) continue;
    const auto& frames = Tree().Frames(spec.name);
    std::set<std::vector<uint32_t>> different;
    for (const Picture& p : frames) different.insert(p.rgba);
    // A cycle may come back the way it went, so half of the frames is enough.
    EXPECT_GE(different.size() * 2, frames.size()) << spec.name;
    EXPECT_GE(different.size(), 2u) << spec.name;
  }
}

TEST(Pictures, SlopeMasksFollowTheirRules) {
  const std::pair<const char*, Rule> rules[] = {
      {"spr_slope_r", [](int x, int y) { return y >= 15 - x / 2; }},
      {"spr_slope_l", [](int x, int y) { return y >= 15 - (31 - x) / 2; }},
      {"spr_slope_sr", [](int x, int y) { return y >= 15 - x; }},
      {"spr_slope_sl", [](int x, int y) { return y >= x; }},
      {"spr_islope_r", [](int x, int y) { return y <= x / 2; }},
      {"spr_islope_l", [](int x, int y) { return y <= (31 - x) / 2; }},
      {"spr_islope_sr", [](int x, int y) { return y <= x; }},
      {"spr_islope_sl", [](int x, int y) { return y <= 15 - x; }},
      {"spr_trianglemask", [](int x, int y) { return std::abs(x - 47.5) <= (y + 2) * .375; }},
      {"spr_bigmask", [](int, int) { return true; }},
      {"spr_linemask", [](int, int y) { return y == 15; }},
  };
  for (const auto& [name, rule] : rules) {
    const auto& frames = Tree().Frames(name);
    ASSERT_EQ(frames.size(), 1u) << name;
    ExpectFilledWhere(frames[0], 0, 0, frames[0].width, frames[0].height, rule, name);
  }
}

TEST(Pictures, GlyphsFillTheColumnsThatTheFontCountsOn) {
  const auto& font = Tree().Frames("spr_spritefont");
  ASSERT_EQ(font.size(), 94u);
  for (size_t i = 0; i < font.size(); ++i) {
    int left = 9, right = -1, outer = 0;
    for (int y = 0; y < 9; ++y)
      for (int x = 0; x < 9; ++x)
        if (Opaque(font[i], x, y)) left = std::min(left, x), right = std::max(right, x);
    ASSERT_GE(right, left) << i;
    EXPECT_EQ(left, (9 - (right - left + 1)) / 2) << i;
    // The shared column of two neighbours is outline on outline: never core.
    for (int y = 0; y < 9; ++y)
      outer += At(font[i], left, y) == 0xffffffffu || At(font[i], right, y) == 0xffffffffu;
    EXPECT_EQ(outer, 0) << i;
  }
  const auto advance = [&](char c) {
    int left = 9, right = -1;
    for (int y = 0; y < 9; ++y)
      for (int x = 0; x < 9; ++x)
        if (Opaque(font[static_cast<size_t>(c - '!')], x, y))
          left = std::min(left, x), right = std::max(right, x);
    return right - left;
  };
  const auto width = [&](const std::string& text) {
    int sum = 0;
    for (const char c : text) sum += c == ' ' ? 8 : advance(c);
    return sum;
  };
  EXPECT_EQ(width("New Level"), 57);
  EXPECT_EQ(width("Return to Main Menu"), 119);
  EXPECT_EQ(width("Ammo: 500/500"), 82);
  EXPECT_EQ(width("Are you sure? All unsaved changes will be lost!"), 278);
}

// Every cell of the atlas does what its row in the table says.
TEST(Pictures, AtlasCellsKeepTheirRoles) {
  const auto& frames = Tree().Frames("bg_tiles");
  ASSERT_EQ(frames.size(), 1u);
  const std::map<std::string, Rule> slopes = {
      {"slope_r_low", [](int c, int r) { return r >= 15 - c / 2; }},
      {"slope_r_high", [](int c, int r) { return r >= 7 - c / 2; }},
      {"slope_l_high", [](int c, int r) { return r >= c / 2; }},
      {"slope_l_low", [](int c, int r) { return r >= 8 + c / 2; }},
      {"slope_sr", [](int c, int r) { return r >= 15 - c; }},
      {"slope_sl", [](int c, int r) { return r >= c; }},
      {"islope_r_thin", [](int c, int r) { return r <= c / 2; }},
      {"islope_r_thick", [](int c, int r) { return r <= 8 + c / 2; }},
      {"islope_l_thick", [](int c, int r) { return r <= 15 - c / 2; }},
      {"islope_l_thin", [](int c, int r) { return r <= 7 - c / 2; }},
      {"islope_sr", [](int c, int r) { return r <= c; }},
      {"islope_sl", [](int c, int r) { return r <= 15 - c; }},
      {"solid", [](int, int) { return true; }},
      {"fill", [](int, int) { return true; }},
      {"backdrop", [](int, int) { return true; }},
  };
  std::ifstream table("assets/atlas.tsv");
  std::string line;
  std::getline(table, line);
  int cells = 0;
  while (std::getline(table, line)) {
    std::istringstream in(line);
    std::string tx, ty, code, role;
    std::getline(in, tx, '\t'), std::getline(in, ty, '\t'), std::getline(in, code, '\t'),
        std::getline(in, role, '\t');
    const int left = std::stoi(tx) * 16, top = std::stoi(ty) * 16;
    ++cells;
    if (const auto rule = slopes.find(role); rule != slopes.end()) {
      ExpectFilledWhere(frames[0], left, top, 16, 16, rule->second, role + " at " + tx + "," + ty);
      continue;
    }
    int visible = 0, surface = 0;
    for (int y = 0; y < 16; ++y)
      for (int x = 0; x < 16; ++x) visible += Opaque(frames[0], left + x, top + y);
    for (int x = 0; x < 16; ++x) surface += Opaque(frames[0], left + x, top);
    // A corner of a thing of several cells may be empty.
    if (line.find("column ") == std::string::npos) {
      EXPECT_GT(visible, 0) << role << " at " << tx << "," << ty << " is empty";
    }
    if (role == "one_way") { EXPECT_EQ(surface, 16) << "walking surface at " << tx << "," << ty; }
  }
  EXPECT_EQ(cells, 1600);
}

// In a section lit by a quarter only the rim of the ground shows where one can stand.
TEST(Pictures, WalkableEdgesOfTheAtlasAreNearWhite) {
  const Picture& p = Tree().Frames("bg_tiles")[0];
  const std::map<std::string, std::function<int(int)>> surfaces = {
      {"slope_r_low", [](int c) { return 15 - c / 2; }},
      {"slope_r_high", [](int c) { return 7 - c / 2; }},
      {"slope_l_high", [](int c) { return c / 2; }},
      {"slope_l_low", [](int c) { return 8 + c / 2; }},
      {"slope_sr", [](int c) { return 15 - c; }},
      {"slope_sl", [](int c) { return c; }},
      {"one_way", [](int) { return 0; }},
  };
  std::ifstream table("assets/atlas.tsv");
  std::string line;
  std::getline(table, line);
  int seen = 0;
  while (std::getline(table, line)) {
    std::istringstream in(line);
    std::string tx, ty, code, role;
    std::getline(in, tx, '\t'), std::getline(in, ty, '\t'), std::getline(in, code, '\t'),
        std::getline(in, role, '\t');
    const auto surface = surfaces.find(role);
    if (surface == surfaces.end() || line.find("\tfilling under") != std::string::npos) continue;
    ++seen;
    int light = 0;
    for (int c = 0; c < 16; ++c) {
      const uint32_t pixel = At(p, std::stoi(tx) * 16 + c, std::stoi(ty) * 16 + surface->second(c));
      light += static_cast<int>((pixel & 255) * 3 + (pixel >> 8 & 255) * 5 + (pixel >> 16 & 255) * 2) / 10;
    }
    EXPECT_GE(light / 16, 150) << role << " at " << tx << "," << ty;
  }
  EXPECT_GT(seen, 120);
}

// Drawn with only a quarter of the pieces at a time, every cell is the same: nothing reaches into a
// neighbour.
TEST(Pictures, AtlasPiecesKeepToThemselves) {
  const Picture& whole = Tree().Frames("bg_tiles")[0];
  int cells = 0;
  for (int set = 0; set < 4; ++set) {
    std::vector<int> setOfCell;
    const Picture part = Tree().DrawSetOfPieces("bg_tiles", set, setOfCell);
    ASSERT_EQ(setOfCell.size(), 1600u);
    for (int cell = 0; cell < 1600; ++cell) {
      if (setOfCell[static_cast<size_t>(cell)] != set) continue;
      int differ = 0;
      for (int y = cell / 40 * 16; y < cell / 40 * 16 + 16; ++y)
        for (int x = cell % 40 * 16; x < cell % 40 * 16 + 16; ++x)
          differ += At(whole, x, y) != At(part, x, y);
      EXPECT_EQ(differ, 0) << "cell " << cell % 40 << "," << cell / 40;
      ++cells;
    }
  }
  EXPECT_EQ(cells, 1600);
}

// Whoever picks content by its icon must be able to tell it from all others of the sheet.
TEST(Pictures, IconsOfASheetAreAllDifferent) {
  for (const char* sheet :
       {"top", "control", "item", "block", "enemy", "warp", "modifier", "music", "background"}) {
    const auto& frames = Tree().Frames(std::string("spr_editor_") + sheet + "_icons");
    ASSERT_FALSE(frames.empty()) << sheet;
    std::map<std::vector<uint32_t>, size_t> seen;
    for (size_t i = 0; i < frames.size(); ++i) {
      int visible = 0;
      for (const uint32_t pixel : frames[i].rgba) visible += pixel >> 24 != 0;
      EXPECT_GE(visible, 20) << sheet << " " << i;
      const auto [it, fresh] = seen.emplace(frames[i].rgba, i);
      EXPECT_TRUE(fresh) << sheet << " " << i << " looks like " << it->second;
    }
  }
}

// The step over the wrapped edge may be no larger than the largest one inside the picture.
TEST(Pictures, BackdropsThatTileHaveNoSeam) {
  for (const PictureSpec& spec : Tree().Specs()) {
    if (!spec.background || spec.width > 512 || !Tree().Has(spec.name)) continue;
    if (spec.width != 512 && spec.width != 256) continue;
    const Picture& p = Tree().Frames(spec.name)[0];
    const auto columns = [&](int a, int b) {
      double sum = 0;
      for (int y = 0; y < p.height; ++y) sum += Distance(At(p, a, y), At(p, b, y));
      return sum / p.height;
    };
    std::vector<double> inside;
    for (int x = 0; x + 1 < p.width; ++x) inside.push_back(columns(x, x + 1));
    std::sort(inside.begin(), inside.end());
    EXPECT_LE(columns(p.width - 1, 0), inside.back() + 2) << spec.name << ", sideways";
  }
}

TEST(Pictures, ComeOutTheSameEveryTime) {
  Studio again("assets");
  for (const char* name : {"spr_player_durian_walk", "spr_player_rhubarb_slide", "spr_spritefont"}) {
    ASSERT_TRUE(again.Has(name));
    const auto& a = Tree().Frames(name);
    const auto& b = again.Frames(name);
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i) EXPECT_EQ(a[i].rgba, b[i].rgba) << name;
  }
}

} // namespace
} // namespace vesk
