// Builds the data container from the sources in assets/ and looks into containers.
#include "Files/Function/Function.h"
#include "Files/Runner/BuiltinCatalogue.h"
#include "apps/vesk-pack/GameRecords.h"
#include "pack/AssetFolder.h"
#include "pack/Inspect.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace vesk;

struct Arguments {
  std::string assets = "assets", cache, output, file, prefix;
  int scale = 4;
  bool placeholders = false, builtins = false;
};

// Appears whole or not at all.
void WriteWhole(const fs::path& file, const std::vector<uint8_t>& bytes) {
  const fs::path beside = file.string() + ".new";
  std::ofstream out(beside, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    std::error_code ignored;
    fs::remove(beside, ignored);
    throw std::runtime_error(file.string() + ": can't be written");
  }
  fs::rename(beside, file);
}

int Build(const Arguments& arguments) {
  pack::AssetNames names;
  names.object = FindGameObject;
  names.code = FindGameCode;
  pack::Game game = pack::ReadAssets(arguments.assets, arguments.cache, names);
  AddGameRecords(game);
  std::vector<uint8_t> bytes = pack::Write(game);
  const ContainerView view(bytes.data(), static_cast<uint32_t>(bytes.size()));
  if (LoadError error = Container_Verify(view, GameCodeCount()))
    throw std::runtime_error("the container is not right: " + error.text);
  WriteWhole(arguments.output, bytes);
  std::printf(
      "%s: %zu bytes, %zu sprites, %zu backgrounds, %zu sounds, %zu scripts, %zu objects, %zu rooms\n",
      arguments.output.c_str(), bytes.size(), game.sprites.size(), game.backgrounds.size(),
      game.sounds.size(), game.scripts.size(), game.objects.size(), game.rooms.size());
  return 0;
}

// The records of a file, or an error in words.
ContainerRecords Records(const ContainerView& view, const std::string& file) {
  ContainerRecords records;
  if (LoadError error = Container_ReadRecords(view, -1, records))
    throw std::runtime_error(file + ": " + error.text);
  return records;
}

int ListBuiltins() {
  Builtin_RegisterAll();
  std::fputs(Builtin_List().c_str(), stdout);
  const std::vector<std::string> findings = Builtin_Check();
  for (const std::string& finding : findings) std::fprintf(stderr, "%s\n", finding.c_str());
  Function_Reset();
  return findings.empty() ? 0 : 1;
}

int List(const Arguments& arguments) {
  if (arguments.builtins) return ListBuiltins();
  if (arguments.placeholders) {
    for (const std::string& name : pack::Placeholders(arguments.assets)) std::printf("%s\n", name.c_str());
    return 0;
  }
  std::vector<uint8_t> bytes = pack::ReadContainer(arguments.file);
  const ContainerView view(bytes.data(), static_cast<uint32_t>(bytes.size()));
  std::fputs(pack::ListAssets(Records(view, arguments.file), view).c_str(), stdout);
  return 0;
}

int Extract(const Arguments& arguments) {
  std::vector<uint8_t> bytes = pack::ReadContainer(arguments.file);
  const ContainerView view(bytes.data(), static_cast<uint32_t>(bytes.size()));
  const int files = pack::Extract(Records(view, arguments.file), view, arguments.output);
  std::printf("%s: %d files\n", arguments.output.c_str(), files);
  return 0;
}

int Verify(const Arguments& arguments) {
  std::vector<uint8_t> bytes = pack::ReadContainer(arguments.file);
  const ContainerView view(bytes.data(), static_cast<uint32_t>(bytes.size()));
  const std::vector<std::string> findings = pack::Inspect(view, GameCodeCount());
  for (const std::string& finding : findings) std::printf("%s\n", finding.c_str());
  if (findings.empty()) std::printf("%s: in order\n", arguments.file.c_str());
  return findings.empty() ? 0 : 1;
}

int Sheet(const Arguments& arguments) {
  Studio studio(arguments.assets, arguments.cache);
  WritePng(MakeSheet(studio, arguments.prefix, arguments.scale, arguments.placeholders), arguments.output);
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  CLI::App app{"Builds the data container of the game and looks into containers"};
  app.require_subcommand(1);
  Arguments arguments;
  const auto assets = [&](CLI::App* command) {
    command->add_option("--assets", arguments.assets, "Folder of the sources")->capture_default_str();
  };
  const auto cache = [&](CLI::App* command) {
    command->add_option("--cache", arguments.cache,
                        "Folder that keeps compiled pictures and sounds between runs");
  };

  CLI::App* build = app.add_subcommand("build", "Compile the sources to a container");
  assets(build);
  cache(build);
  build->add_option("-o,--output", arguments.output, "Container to write")->required();

  CLI::App* list = app.add_subcommand("list", "Print the assets of a container, or what is still missing");
  assets(list);
  list->add_option("file", arguments.file, "Container to list")->default_val("build/data.win");
  list->add_flag("--placeholders", arguments.placeholders,
                 "Print the names of pictures and sounds that have no source yet");
  list->add_flag("--builtins", arguments.builtins,
                 "Print the built-in functions: family, name, arguments, implemented or not");

  CLI::App* extract = app.add_subcommand("extract", "Take a container apart: PNG, Ogg and text files");
  extract->add_option("file", arguments.file, "Container to take apart")->required();
  extract->add_option("-o,--output", arguments.output, "Folder to write to")->required();

  CLI::App* verify = app.add_subcommand("verify", "Check every reference, size and index of a container");
  verify->add_option("file", arguments.file, "Container to check")->required();

  CLI::App* sheet = app.add_subcommand("sheet", "Draw a contact sheet of pictures");
  assets(sheet);
  cache(sheet);
  sheet->add_option("prefix", arguments.prefix, "Start of the names; nothing for all");
  sheet->add_option("-o,--output", arguments.output, "PNG to write")->required();
  sheet->add_option("--scale", arguments.scale, "Size of a pixel, 1 to 16")
      ->check(CLI::Range(1, 16))
      ->capture_default_str();
  sheet->add_flag("--placeholders", arguments.placeholders, "Show pictures without a source too");
  CLI11_PARSE(app, argc, argv);

  try {
    if (*build) return Build(arguments);
    if (*list) return List(arguments);
    if (*extract) return Extract(arguments);
    if (*verify) return Verify(arguments);
    return Sheet(arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vesk-pack: %s\n", error.what());
    return 1;
  }
}
