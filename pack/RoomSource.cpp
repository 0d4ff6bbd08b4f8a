#include "pack/RoomSource.h"

#include "pack/TextSource.h"

#include <charconv>

namespace vesk::pack {
namespace {

int Index(SourceLine& line, const char* what, const std::function<int(const std::string&)>& find) {
  const std::string name = line.Word(what);
  const int index = find ? find(name) : -1;
  if (index < 0) line.Fail("there is no " + std::string(what) + " \"" + name + "\"");
  return index;
}

bool YesOrNo(SourceLine& line) {
  if (line.Accept("yes")) return true;
  line.Expect("no");
  return false;
}

// "c0a080" to 0xBBGGRR.
uint32_t Colour(SourceLine& line) {
  const std::string word = line.Word("colour");
  uint32_t rgb = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), rgb, 16);
  if (word.size() != 6 || error != std::errc() || end != word.data() + 6)
    line.Fail("a colour is six digits, red, green and blue, not \"" + word + "\"");
  return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

template <size_t N, class T> T& Slot(SourceLine& line, std::array<T, N>& slots) {
  const int slot = line.Integer("slot");
  if (slot < 0 || slot >= static_cast<int>(N)) line.Fail("slots are 0 to " + std::to_string(N - 1));
  return slots[static_cast<size_t>(slot)];
}

void ReadBackground(SourceLine& line, Room& room, const AssetNames& names) {
  RoomBackground& slot = Slot(line, room.backgrounds);
  slot.visible = true;
  slot.background = Index(line, "background", names.background);
  while (!line.AtEnd()) {
    if (line.Accept("at")) {
      slot.x = line.Integer("x");
      slot.y = line.Integer("y");
    } else if (line.Accept("speed")) {
      slot.hspeed = line.Integer("horizontal speed");
      slot.vspeed = line.Integer("vertical speed");
    } else if (line.Accept("tiled")) {
      const bool both = line.Accept("both");
      slot.tiledSideways = both || line.Accept("sideways");
      slot.tiledUpright = both || (!slot.tiledSideways && line.Accept("upright"));
      if (!slot.tiledSideways && !slot.tiledUpright) line.Fail("tiled is both, sideways or upright");
    } else if (line.Accept("foreground")) {
      slot.foreground = true;
    } else if (line.Accept("stretch")) {
      slot.stretch = true;
    } else {
      line.Expect("hidden");
      slot.visible = false;
    }
  }
}

void ReadView(SourceLine& line, Room& room, const AssetNames& names) {
  RoomView& view = Slot(line, room.views);
  view.enabled = room.viewsEnabled = true;
  while (!line.AtEnd()) {
    if (line.Accept("at")) {
      view.x = line.Integer("x");
      view.y = line.Integer("y");
    } else if (line.Accept("size")) {
      view.width = line.Integer("width");
      view.height = line.Integer("height");
    } else if (line.Accept("port")) {
      view.portX = line.Integer("port x");
      view.portY = line.Integer("port y");
      view.portWidth = line.Integer("port width");
      view.portHeight = line.Integer("port height");
    } else if (line.Accept("border")) {
      view.borderX = line.Integer("horizontal border");
      view.borderY = line.Integer("vertical border");
    } else if (line.Accept("speed")) {
      view.speedX = line.Integer("horizontal speed");
      view.speedY = line.Integer("vertical speed");
    } else {
      line.Expect("follow");
      view.object = Index(line, "object", names.object);
    }
  }
}

void ReadInstance(SourceLine& line, Room& room, const AssetNames& names) {
  RoomInstance instance;
  instance.object = Index(line, "object", names.object);
  instance.x = line.Integer("x");
  instance.y = line.Integer("y");
  while (!line.AtEnd()) {
    if (line.Accept("scale")) {
      instance.scaleX = line.Real("horizontal scale");
      instance.scaleY = line.Real("vertical scale");
    } else if (line.Accept("rotation")) {
      instance.rotation = line.Real("rotation");
    } else if (line.Accept("id")) {
      instance.id = line.Integer("id");
    } else {
      line.Expect("code");
      instance.code = Index(line, "function", names.code);
    }
  }
  room.instances.push_back(instance);
}

// What the "tile" lines that follow have in common.
void ReadTiles(SourceLine& line, RoomTile& common, const AssetNames& names) {
  common = {};
  common.background = Index(line, "background", names.background);
  while (!line.AtEnd()) {
    if (line.Accept("size")) {
      common.width = line.Integer("width");
      common.height = line.Integer("height");
    } else {
      line.Expect("depth");
      common.depth = line.Integer("depth");
    }
  }
}

void ReadTile(SourceLine& line, Room& room, RoomTile tile) {
  if (tile.background < 0) line.Fail("a \"tiles\" line must stand before the first tile");
  tile.x = line.Integer("x");
  tile.y = line.Integer("y");
  line.Expect("from");
  tile.sourceX = line.Integer("source x");
  tile.sourceY = line.Integer("source y");
  room.tiles.push_back(tile);
}

void ReadRoomLine(SourceLine& line, Room& room, RoomTile& common, const AssetNames& names) {
  if (line.Accept("size")) {
    room.width = line.Integer("width");
    room.height = line.Integer("height");
  } else if (line.Accept("speed")) {
    room.speed = line.Integer("speed");
  } else if (line.Accept("colour")) {
    room.colour = Colour(line);
  } else if (line.Accept("show-colour")) {
    room.showColour = YesOrNo(line);
  } else if (line.Accept("persistent")) {
    room.persistent = YesOrNo(line);
  } else if (line.Accept("clear-views")) {
    room.clearViews = YesOrNo(line);
  } else if (line.Accept("clear-display")) {
    room.clearDisplay = YesOrNo(line);
  } else if (line.Accept("code")) {
    room.code = Index(line, "function", names.code);
  } else if (line.Accept("background")) {
    ReadBackground(line, room, names);
  } else if (line.Accept("view")) {
    ReadView(line, room, names);
  } else if (line.Accept("instance")) {
    ReadInstance(line, room, names);
  } else if (line.Accept("tiles")) {
    ReadTiles(line, common, names);
  } else if (line.Accept("tile")) {
    ReadTile(line, room, common);
  } else {
    line.Fail("\"" + line.Word("word") + "\" is no part of a room");
  }
  line.End();
}

} // namespace

Room ReadRoom(const std::filesystem::path& file, const AssetNames& names) {
  Room room;
  room.name = file.stem().string();
  RoomTile common;
  common.background = -1;
  for (SourceLine& line : ReadSource(file)) ReadRoomLine(line, room, common, names);
  return room;
}

Path ReadPath(const std::filesystem::path& file) {
  Path path;
  path.name = file.stem().string();
  for (SourceLine& line : ReadSource(file)) {
    if (line.Accept("smooth")) {
      path.smooth = true;
    } else if (line.Accept("closed")) {
      path.closed = true;
    } else if (line.Accept("precision")) {
      path.precision = line.Integer("precision");
    } else {
      line.Expect("point");
      const float x = line.Real("x"), y = line.Real("y");
      path.points.push_back({x, y, line.Real("speed")});
    }
    line.End();
  }
  return path;
}

} // namespace vesk::pack
