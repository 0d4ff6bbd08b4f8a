#include "pack/AssetFolder.h"

#include "pack/PlaceholderSound.h"
#include "pack/TextSource.h"
#include "pack/soundstudio/SoundStudio.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace vesk::pack {
namespace {

namespace fs = std::filesystem;

Sprite MakeSprite(const PictureSpec& spec, std::vector<Picture> frames) {
  Sprite sprite;
  sprite.name = spec.name;
  sprite.frames = std::move(frames);
  sprite.originX = spec.originX;
  sprite.originY = spec.originY;
  sprite.left = spec.boxLeft;
  sprite.top = spec.boxTop;
  sprite.right = spec.boxRight;
  sprite.bottom = spec.boxBottom;
  sprite.bboxMode = spec.boxByHand ? 2 : 0;
  sprite.precise = spec.precise;
  return sprite;
}

void CheckFrames(const PictureSpec& spec, const std::vector<Picture>& frames) {
  const auto fits = [&](const Picture& frame) {
    return frame.width == spec.width && frame.height == spec.height;
  };
  if (frames.size() != static_cast<size_t>(spec.frames) || !std::all_of(frames.begin(), frames.end(), fits))
    throw std::runtime_error(spec.name + ": the source makes " + std::to_string(frames.size()) +
                             " frames, the table asks for " + std::to_string(spec.frames) + " of " +
                             std::to_string(spec.width) + " by " + std::to_string(spec.height));
}

void ReadPictures(const fs::path& assets, const fs::path& cache, Game& game) {
  Studio studio(assets, cache);
  for (const PictureSpec& spec : studio.Specs()) {
    std::vector<Picture> frames = studio.Has(spec.name) ? studio.Frames(spec.name) : studio.Placeholder(spec);
    CheckFrames(spec, frames);
    if (spec.background)
      game.backgrounds.push_back({spec.name, std::move(frames.front())});
    else
      game.sprites.push_back(MakeSprite(spec, std::move(frames)));
  }
}

std::string ReadBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Encoding is the slow part, so a placeholder is kept under what it was made from.
std::string CachedPlaceholder(const fs::path& cache, int number, const std::string& seconds, double length,
                              bool music) {
  if (cache.empty()) return PlaceholderSound(number, length, music);
  const fs::path file =
      cache / "sounds" /
      ("placeholder-" + std::to_string(number) + "-" + seconds + (music ? "-music" : "-effect") + ".ogg");
  if (std::string kept = ReadBytes(file); !kept.empty()) return kept;
  const std::string data = PlaceholderSound(number, length, music);
  fs::create_directories(file.parent_path());
  // Whole or not at all: a broken-off build must not leave half a sound.
  const fs::path beside = file.string() + ".new";
  std::ofstream(beside, std::ios::binary) << data;
  fs::rename(beside, file);
  return data;
}

void ReadSounds(const fs::path& assets, const fs::path& cache, Game& game) {
  const Table table(assets / "sounds.tsv");
  const SoundStudio studio(assets, cache);
  for (size_t row = 0; row < table.Rows(); ++row) {
    const bool music = table.Text(row, "kind") == "music";
    Sound sound;
    sound.name = table.Text(row, "name");
    sound.mode = static_cast<uint32_t>(std::atoi(table.Text(row, "storage_mode").c_str()));
    if (sound.mode < 100 || sound.mode > 103) table.Fail(row, "the storage mode is 100 to 103");
    sound.file = table.Text(row, "file");
    sound.type = fs::path(sound.file).extension().string();
    sound.gain = static_cast<float>(table.Real(row, "gain"));
    sound.audioIndex = table.Integer(row, "audio_index");
    const double seconds = table.Real(row, "length_s");
    if (!(seconds > 0 && seconds < 600))
      table.Fail(row, "a sound lasts more than 0 and less than 600 seconds");
    sound.data = studio.Has(sound.name) ? studio.Ogg(sound.name)
                                        : CachedPlaceholder(cache, static_cast<int>(row),
                                                            table.Text(row, "length_s"), seconds, music);
    game.sounds.push_back(std::move(sound));
  }
}

Shader ReadShader(const fs::path& folder, const std::string& name) {
  Shader shader;
  shader.name = name;
  const fs::path own = folder / (name + ".vert");
  shader.vertex = ReadTextFile(fs::exists(own) ? own : folder / "default.vert");
  shader.fragment = ReadTextFile(folder / (name + ".frag"));
  return shader;
}

// Rooms, paths and shaders in the order of the table of names.
void ReadNamed(const fs::path& assets, const AssetNames& names, Game& game) {
  const Table table(assets / "names.tsv");
  for (size_t row = 0; row < table.Rows(); ++row) {
    const std::string& name = table.Text(row, "name");
    const auto place = [&](size_t count) {
      if (table.Integer(row, "index") != static_cast<int>(count))
        table.Fail(row, "the index is not " + std::to_string(count));
    };
    if (name.starts_with("rm_")) {
      place(game.rooms.size());
      game.rooms.push_back(ReadRoom(assets / "rooms" / (name + ".room"), names));
    } else if (name.starts_with("pth_")) {
      place(game.paths.size());
      game.paths.push_back(ReadPath(assets / "paths" / (name + ".path")));
    } else if (name.starts_with("sha_")) {
      place(game.shaders.size());
      game.shaders.push_back(ReadShader(assets / "shaders", name));
    } else {
      table.Fail(row, "\"" + name + "\" is no room, path or shader");
    }
  }
}

} // namespace

std::vector<std::string> Placeholders(const fs::path& assets) {
  std::vector<std::string> names;
  const Studio studio(assets);
  for (const PictureSpec& spec : studio.Specs())
    if (!studio.Has(spec.name)) names.push_back(spec.name);
  const Table sounds(assets / "sounds.tsv");
  const SoundStudio soundStudio(assets);
  for (size_t row = 0; row < sounds.Rows(); ++row)
    if (!soundStudio.Has(sounds.Text(row, "name"))) names.push_back(sounds.Text(row, "name"));
  return names;
}

Game ReadAssets(const fs::path& assets, const fs::path& cache, AssetNames names) {
  Game game;
  // The runner's next instance is 100040 and its next tile 10000561.
  game.header.lastInstanceId = 100039;
  game.header.lastTileId = 10000560;
  ReadPictures(assets, cache, game);
  ReadSounds(assets, cache, game);
  names.background = [&](const std::string& name) {
    for (size_t i = 0; i < game.backgrounds.size(); ++i)
      if (game.backgrounds[i].name == name) return static_cast<int>(i);
    return -1;
  };
  ReadNamed(assets, names, game);
  return game;
}

} // namespace vesk::pack
