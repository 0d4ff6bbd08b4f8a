// The source format of pictures: small sources written to a folder of their own.
#include "pack/studio/Studio.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vesk {
namespace {

namespace fs = std::filesystem;

class Workshop {
public:
  Workshop() {
    static std::atomic<int> count = 0;
    folder =
        fs::temp_directory_path() / ("studio-" + std::to_string(::getpid()) + "-" + std::to_string(count++));
    fs::create_directories(folder / "pictures");
    Write("palette.txt", "white ffffff\nink 101018 2a2840\nred 200000 600000 a00000 e04040 ffd0d0\n"
                         "blue 000020 000060 0000a0 4040e0 d0d0ff\n");
    Table({"spr_a\t8\t8\t0\t0\t2\t0\t0\t7\t7\t0\t0"});
    Write("backgrounds.tsv", "name\twidth\theight\nbg_a\t16\t8\n");
  }
  ~Workshop() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
  void Table(const std::vector<std::string>& rows) {
    std::string text =
        "name\twidth\theight\torigin_x\torigin_y\tframes\tbbox_left\tbbox_top\tbbox_right\tbbox_bottom\t"
        "kind\tbbox_mode\n";
    for (const auto& row : rows) text += row + "\n";
    Write("sprites.tsv", text);
  }
  void Write(const std::string& name, const std::string& text) { std::ofstream(folder / name) << text; }
  std::string Trouble() {
    try {
      Studio studio(folder);
      studio.Frames("spr_a");
    } catch (const std::runtime_error& e) { return e.what(); }
    return "";
  }
  fs::path folder;
};

uint32_t At(const Picture& p, int x, int y) { return p.rgba[static_cast<size_t>(y * p.width + x)]; }
constexpr uint32_t kRed0 = 0xff000020, kRed2 = 0xff0000a0, kBlue2 = 0xffa00000;

TEST(StudioSource, DrawsGridsPartsFramesAndVariables) {
  Workshop shop;
  shop.Write("pictures/lib.art", "key r=red.2\ngrid flag\nrr\n.r\nend\n"
                                 "part corner x y colour=red.2\n  rect x y 2 2 colour\nend\n");
  shop.Write("pictures/a.art",
             "use lib\nsprite spr_a\n  put flag 0 0\n  put flag 6 0 fx red>blue\n  frame 1\n"
             "    let far = 3 + 3\n    draw corner far 6 colour=blue.2\n    for i 2 4 2\n"
             "      px red.2 i,4\n    end\n  frame\n  paint 0 7 1 1\n    if x == 0 && y == 7\n"
             "      dot red.0\n    end\n  end\nend\n");
  Studio studio(shop.folder);
  const auto& frames = studio.Frames("spr_a");
  ASSERT_EQ(frames.size(), 2u);
  for (const Picture& p : frames) {
    EXPECT_EQ(At(p, 0, 0), kRed2);
    EXPECT_EQ(At(p, 0, 1), 0u);
    EXPECT_EQ(At(p, 6, 1), kBlue2); // mirrored and recoloured
    EXPECT_EQ(At(p, 7, 1), 0u);
    EXPECT_EQ(At(p, 0, 7), kRed0);
  }
  EXPECT_EQ(At(frames[0], 6, 6), 0u);
  EXPECT_EQ(At(frames[1], 6, 6), kBlue2);
  EXPECT_EQ(At(frames[1], 2, 4), kRed2);
  EXPECT_EQ(At(frames[1], 3, 4), 0u);
}

TEST(StudioSource, OutlineEndsOnTheBoxAndNothingPassesIt) {
  Workshop shop;
  shop.Table({"spr_a\t8\t8\t0\t0\t1\t1\t2\t6\t7\t0\t0"});
  shop.Write("pictures/a.art", "sprite spr_a outline\n  ell 4 4 9 9 red flat=2\nend\n");
  Studio studio(shop.folder);
  const Picture& p = studio.Frames("spr_a").at(0);
  EXPECT_EQ(At(p, 1, 4), kRed0);
  EXPECT_EQ(At(p, 2, 4), kRed2);
  EXPECT_EQ(At(p, 0, 4), 0u);
  EXPECT_EQ(At(p, 4, 1), 0u);
  EXPECT_TRUE(studio.Differences("spr_a").empty());
}

// Without the map of pieces the outline of the left cell and the row that sticks out would reach the others.
TEST(StudioSource, PiecesKeepToThemselves) {
  Workshop shop;
  const auto source = [](const std::string& pieces) {
    return "key r=red.2\ngrid flag\nr\nend\nsprite bg_a\n" + pieces +
           "  layer\n    rect 0 0 4 4 red.2\n    rect 5 1 6 2 red.2\n    outline\n  end\n"
           "  rect 12 1 3 4 blue.2\n  put flag 0 4 full\nend\n";
  };
  shop.Write("pictures/bg.art", source("  pieces 4\n    .aa.\n    ....\n  end\n"));
  Studio parted(shop.folder);
  const Picture& p = parted.Frames("bg_a")[0];
  EXPECT_EQ(At(p, 3, 3), kRed2);
  EXPECT_EQ(At(p, 4, 0), 0u); // not the outline of the first cell
  EXPECT_EQ(At(p, 4, 1), kRed0);
  EXPECT_EQ(At(p, 8, 0), kRed0); // a piece of two cells is one
  EXPECT_EQ(At(p, 1, 4), kRed0);
  EXPECT_EQ(At(p, 0, 3), kRed2); // not the line round the flag
  EXPECT_EQ(At(p, 12, 3), kBlue2);
  EXPECT_EQ(At(p, 12, 4), 0u);
  shop.Write("pictures/bg.art", source(""));
  Studio open(shop.folder);
  const Picture& q = open.Frames("bg_a")[0];
  EXPECT_EQ(At(q, 4, 0), kRed0);
  EXPECT_EQ(At(q, 0, 3), kRed0);
  EXPECT_EQ(At(q, 12, 4), kBlue2);
}

TEST(StudioSource, DifferencesAreSaidInWords) {
  Workshop shop;
  shop.Write("pictures/a.art", "sprite spr_a\n  rect 0 0 7 8 red.2\nend\n");
  Studio studio(shop.folder);
  const auto all = studio.Differences("spr_a");
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0], "spr_a ends at 6 on the right, the table says 7");
  EXPECT_EQ(studio.Differences("bg_a").at(0), "bg_a has no source");
  EXPECT_TRUE(studio.Frames("bg_a").empty());
  EXPECT_EQ(studio.Placeholder(*studio.Find("bg_a")).at(0).rgba.size(), 128u);
}

TEST(StudioSource, MistakesNameFileLineAndCause) {
  const std::pair<const char*, const char*> cases[] = {
      {"sprite spr_a\n  rect 0 0 7 red.2\nend\n", "pictures/a.art:2: rect takes 5 values, not 4"},
      {"sprite spr_a\n  rect 0 0 7 8 green.2\nend\n", "pictures/a.art:2: nothing is named green"},
      {"sprite spr_a\n  circle 0 0 7\nend\n", "pictures/a.art:2: no statement is named circle"},
      {"sprite spr_a\n  rect 0 0 7 8 red.2\n", "pictures/a.art:1: sprite spr_a has no end"},
      {"key r=red.2\ngrid g\nrr\nr\nend\n", "pictures/a.art:4: this row is 1 wide, the first 2"},
      {"grid g\nqq\nend\n", "pictures/a.art:2: no key for q"},
      {"sprite spr_a\n  put nothing 0 0\nend\n", "pictures/a.art:2: spr_a: no grid is named nothing"},
      {"part p\n  draw p\nend\nsprite spr_a\n  draw p\nend\n",
       "pictures/a.art:1: p: parts draw each other without end"},
      {"sprite spr_a\n  px red.2 3\nend\n", "pictures/a.art:2: px takes 1 values, not 2"},
      {"sprite spr_a\n  line 0 0 (1 1 red.2\nend\n", "pictures/a.art:2: can't read \"(1\""},
      {"sprite spr_a\n  for i 0 3 0\n  end\nend\n", "pictures/a.art:2: spr_a: a step of 0 never ends"},
      {"sprite spr_a\n  pieces 4\n    ab\n    a\n  end\nend\n",
       "pictures/a.art:4: all rows of pieces are equally wide"},
      {"part p\n  pieces 4\n    a\n  end\nend\n", "pictures/a.art:2: only a sprite has pieces"},
      {"sprite spr_a\n  pieces 4\n  end\nend\n", "pictures/a.art:3: pieces has no rows"},
      {"use b\nsprite spr_a\nend\n", "pictures/a.art: uses b.art, which isn't there"},
  };
  for (const auto& [source, message] : cases) {
    Workshop shop;
    shop.Write("pictures/a.art", source);
    EXPECT_EQ(shop.Trouble(), message) << source;
  }
}

TEST(StudioSource, IconsAreMadeOfWhatIsThere) {
  Workshop shop;
  const std::string large = "spr_large\t32\t32\t0\t0\t1\t0\t0\t31\t31\t0\t0";
  shop.Table({"spr_a\t16\t16\t0\t0\t4\t0\t0\t15\t15\t0\t0", large});
  shop.Write("pictures/a.art",
             "sprite spr_a\n  frame 0\n    icon spr_large 0\n  frame 1\n    icon spr_large 0 8 8 16 16\n"
             "  frame 2\n    icon spr_large 0 cut red>blue\n  frame 3\n"
             "    icon spr_large 0 size=8 left=2 top=4\nend\n");
  fs::create_directories(shop.folder / "cache");
  {
    Studio early(shop.folder, shop.folder / "cache");
    EXPECT_NE(At(early.Frames("spr_a")[0], 1, 1), 0u); // the mark of what isn't drawn yet
    EXPECT_EQ(At(early.Frames("spr_a")[0], 8, 8), 0u);
  }
  // A ball with an outline and an eye of two by two.
  shop.Write("pictures/later.art",
             "sprite spr_large outline\n  ell 15.5 15.5 14 14 red flat=2\n  rect 18 8 2 2 white\nend\n");
  Studio studio(shop.folder, shop.folder / "cache");
  const auto& frames = studio.Frames("spr_a");
  const auto box = [](const Picture& p) {
    int left = p.width, right = -1;
    for (int y = 0; y < p.height; ++y)
      for (int x = 0; x < p.width; ++x)
        if (At(p, x, y)) left = std::min(left, x), right = std::max(right, x);
    return std::pair(left, right);
  };
  EXPECT_EQ(box(frames[0]), std::pair(0, 15));
  EXPECT_EQ(At(frames[0], 0, 8), kRed0); // one pixel of outline, as before
  EXPECT_EQ(At(frames[0], 1, 8), kRed2);
  EXPECT_EQ(std::count(frames[0].rgba.begin(), frames[0].rgba.end(), 0xffffffffu), 1); // the eye
  EXPECT_EQ(At(frames[1], 0, 0), kRed2); // a part of the icon's size stays as it is
  EXPECT_EQ(At(frames[1], 10, 0), 0xffffffffu);
  EXPECT_EQ(At(frames[2], 8, 8), kBlue2);
  EXPECT_EQ(box(frames[3]), std::pair(2, 9));

  shop.Write("pictures/a.art", "sprite spr_a\n  icon spr_large 0 20 20 16 16\nend\n");
  EXPECT_EQ(shop.Trouble(), "pictures/a.art:2: spr_a: the part reaches beyond spr_large");
  shop.Write("pictures/a.art", "sprite spr_a\n  icon spr_large 3\nend\n");
  EXPECT_EQ(shop.Trouble(), "pictures/a.art:2: spr_a: spr_large has no frame 3");
  shop.Write("pictures/a.art", "sprite spr_a\n  icon spr_a 0\nend\n");
  EXPECT_EQ(shop.Trouble(), "pictures/a.art: spr_a: icons of each other without end");
}

TEST(StudioSource, TheCacheGivesTheSameAndNoticesChanges) {
  Workshop shop;
  const auto cache = shop.folder / "cache";
  shop.Write("pictures/lib.art", "part p\n  rect 0 0 8 8 red.2\nend\n");
  shop.Write("pictures/a.art", "use lib\nsprite spr_a\n  draw p\n  frame 1\n  px blue.2 0,0\nend\n");
  Studio first(shop.folder, cache);
  EXPECT_EQ(At(first.Frames("spr_a").at(1), 0, 0), kBlue2);
  ASSERT_FALSE(fs::is_empty(cache / "pictures"));
  Studio second(shop.folder, cache);
  EXPECT_EQ(second.Frames("spr_a").at(1).rgba, first.Frames("spr_a").at(1).rgba);
  // A change in a used file counts as well, and a spoiled file is made again.
  shop.Write("pictures/lib.art", "part p\n  rect 0 0 8 8 blue.2\nend\n");
  Studio third(shop.folder, cache);
  EXPECT_EQ(At(third.Frames("spr_a").at(0), 5, 5), kBlue2);
  for (const auto& file : fs::directory_iterator(cache / "pictures")) std::ofstream(file.path()) << "spoiled";
  Studio fourth(shop.folder, cache);
  EXPECT_EQ(fourth.Frames("spr_a").at(0).rgba, third.Frames("spr_a").at(0).rgba);
}

TEST(StudioSource, PalettesOfMoreThan64ColoursAreRefused) {
  Workshop shop;
  std::string text;
  for (int i = 0; i < 65; ++i) {
    char line[32];
    std::snprintf(line, sizeof line, "r%d 0000%02x\n", i, i);
    text += line;
  }
  shop.Write("palette.txt", text);
  EXPECT_NE(shop.Trouble().find("more than 64 colours"), std::string::npos);
}

TEST(StudioSource, SheetsShowWhatStartsWithAName) {
  Workshop shop;
  shop.Write("pictures/a.art", "sprite spr_a\n  rect 0 0 8 8 red.2\n  frame 1\n  px white 1,1\nend\n");
  Studio studio(shop.folder);
  const Picture sheet = MakeSheet(studio, "spr_", 2);
  EXPECT_GE(sheet.width, 2 * 2 * 8);
  EXPECT_EQ(std::count(sheet.rgba.begin(), sheet.rgba.end(), kRed2) > 150, true);
  EXPECT_THROW(MakeSheet(studio, "nothing", 2), std::runtime_error);
}

} // namespace
} // namespace vesk
