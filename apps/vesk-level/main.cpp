// vesk-level: looks at level files: what is wrong with them, what is in them, how they look.
#include "Files/Function/Function_Data_Structures.h"
#include "Platform/Files.h"
#include "apps/vesk-level/Render.h"
#include "game/level/level_check.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

using namespace vesk;

enum ExitCode { kAllWell = 0, kFaults = 1, kBadUse = 2 };

// The tree of the file; -1 after it was told why there is none.
int32_t Open(const std::string& file) {
  std::string text, why;
  if (!File_ReadAll(file, text, &why)) {
    std::cerr << file << ": " << why << "\n";
    return -1;
  }
  const int32_t root = ReadLevelTree(text, why);
  if (root < 0) std::cout << file << ": " << why << "\n";
  return root;
}

int Check(const std::vector<std::string>& files) {
  bool all_well = true;
  for (const std::string& file : files) {
    const int32_t root = Open(file);
    if (root < 0) {
      all_well = false;
      continue;
    }
    const LevelReport report = CheckLevel(root);
    ds_map_destroy(root);
    for (const std::string& fault : report.faults) std::cout << file << ": " << fault << "\n";
    if (report.faults.empty())
      std::cout << file << ": all well\n";
    else
      all_well = false;
    if (!report.withoutRules.empty()) {
      std::cout << file << ": without rules yet:";
      const char* separator = " ";
      for (const auto& [code, count] : report.withoutRules) {
        std::cout << separator << "\"" << code << "\" (" << count << ")";
        separator = ", ";
      }
      std::cout << "\n";
    }
  }
  return all_well ? kAllWell : kFaults;
}

void PrintCodes(const char* title, const std::map<std::string, int32_t>& codes) {
  if (codes.empty()) return;
  std::cout << "    " << title << ":";
  const char* separator = " ";
  for (const auto& [code, count] : codes) {
    std::cout << separator << code << " " << count;
    separator = ", ";
  }
  std::cout << "\n";
}

int Info(const std::string& file) {
  const int32_t root = Open(file);
  if (root < 0) return kFaults;
  const std::vector<SectionCounts> sections = CountLevel(root);
  ds_map_destroy(root);
  std::cout << file << ": " << sections.size() << (sections.size() == 1 ? " section\n" : " sections\n");
  for (const SectionCounts& section : sections) {
    std::cout << "  \"" << section.name << "\": " << section.width << " by " << section.height
              << " cells, music " << section.music << ", background " << section.background;
    if (section.waterLevel > 0)
      std::cout << ", " << section.waterColour << " water of " << section.waterLevel << " cells";
    if (section.rain) std::cout << ", rain";
    if (section.darkness) std::cout << ", darkness";
    std::cout << "\n   ";
    const char* separator = " ";
    for (const auto& [layer, count] : section.layers) {
      std::cout << separator << layer << " " << count;
      separator = ", ";
    }
    std::cout << "\n";
    PrintCodes("objects", section.objects);
    PrintCodes("modifiers", section.modifiers);
    PrintCodes("markers", section.markers);
  }
  return kAllWell;
}

int Render(const RenderChoice& choice) {
  const std::string problem = RenderSection(choice);
  if (problem.empty()) return kAllWell;
  std::cerr << "vesk-level: " << problem << "\n";
  return kFaults;
}

} // namespace

int main(int argc, char** argv) {
  CLI::App app("Looks at level files of Vesk Editor. Exit code 0: all well, 1: something is wrong with a "
               "file, 2: bad use.",
               "vesk-level");
  app.require_subcommand(1);

  std::vector<std::string> files;
  CLI::App* check = app.add_subcommand(
      "check", "Says in words what is wrong with level files, with section, layer and cell; "
               "lists the codes whose things have no rules yet");
  check->add_option("FILE", files, "Level files")->required();

  std::string file;
  CLI::App* info = app.add_subcommand("info", "Counts what is in a level file");
  info->add_option("FILE", file, "A level file")->required();

  RenderChoice choice;
  CLI::App* render = app.add_subcommand("render", "Draws a whole section as the editor shows it");
  render->add_option("FILE", choice.file, "A level file")->required();
  render->add_option("--section", choice.section, "The section (default: Main)")->type_name("NAME");
  render->add_option("-o,--output", choice.output, "The picture to write")->type_name("PNG")->required();
  render->add_flag("!--no-lights", choice.lights, "Everything fully lit, without darkness and lights");
  render->add_flag("!--no-water", choice.water, "Without the water");
  render->add_flag("--grid", choice.grid, "With the grid of cells");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) { return app.exit(error) == 0 ? kAllWell : kBadUse; }
  if (*check) return Check(files);
  if (*info) return Info(file);
  return Render(choice);
}
