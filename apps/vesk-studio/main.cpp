// Looks at the pictures: contact sheets and a check against the tables.
#include "pack/studio/Studio.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
  CLI::App app{"Compiles the picture sources and shows them"};
  std::string assets = "assets", cache, prefix, output = "sheet.png";
  int scale = 4;
  bool placeholders = false;
  app.add_option("--assets", assets, "Folder of the sources")->capture_default_str();
  app.add_option("--cache", cache, "Folder that keeps compiled pictures");
  app.require_subcommand(1);
  auto* sheet = app.add_subcommand("sheet", "Draw a contact sheet");
  sheet->add_option("prefix", prefix, "Start of the names")->required();
  sheet->add_option("-o,--output", output, "PNG to write")->capture_default_str();
  sheet->add_option("--scale", scale, "Size of a pixel")->capture_default_str();
  sheet->add_flag("--placeholders", placeholders, "Show pictures without a source too");
  auto* check = app.add_subcommand("check", "Say what differs from the tables");
  check->add_option("prefix", prefix, "Start of the names");
  std::vector<int> area;
  int frame = 0;
  auto* view = app.add_subcommand("view", "Draw one frame or a part of it, enlarged");
  view->add_option("name", prefix, "Name of the picture")->required();
  view->add_option("-o,--output", output, "PNG to write")->capture_default_str();
  view->add_option("--scale", scale, "Size of a pixel")->capture_default_str();
  view->add_option("--frame", frame, "Which frame")->capture_default_str();
  view->add_option("--area", area, "Left, top, width and height in pixels")->expected(4);
  CLI11_PARSE(app, argc, argv);
  try {
    vesk::Studio studio(assets, cache);
    if (*sheet) {
      vesk::WritePng(vesk::MakeSheet(studio, prefix, scale, placeholders), output);
      return 0;
    }
    if (*view) {
      const auto& frames = studio.Frames(prefix);
      if (frame < 0 || static_cast<size_t>(frame) >= frames.size())
        throw std::runtime_error(prefix + " has no frame " + std::to_string(frame));
      vesk::WritePng(vesk::Enlarge(frames[static_cast<size_t>(frame)], area, scale), output);
      return 0;
    }
    int missing = 0, wrong = 0;
    for (const auto& spec : studio.Specs()) {
      if (spec.name.compare(0, prefix.size(), prefix) != 0) continue;
      if (!studio.Has(spec.name)) {
        ++missing;
        continue;
      }
      for (const auto& difference : studio.Differences(spec.name))
        std::printf("%s\n", difference.c_str()), ++wrong;
    }
    std::printf("%d differences, %d pictures without a source\n", wrong, missing);
    return wrong ? 1 : 0;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
}
