#pragma once
// A small game with every kind of record, for the tests of the container.
#include "pack/ContainerWriter.h"
#include "pack/PlaceholderSound.h"

#include "Files/Object/EventTypes.h"

namespace vesk::test {

inline constexpr int kExampleCodeCount = 5;

inline pack::Game ExampleGame() {
  using namespace pack;
  Game game;
  game.header.name = "Example";
  game.options.constants = {{"@@SleepMargin", "4"}, {"Answer", "42"}};

  Sprite walker = SolidSprite("spr_walker", 16, 12, 3, 0xFF2040A0);
  for (size_t i = 0; i < walker.frames.size(); ++i) walker.frames[i].rgba[i] = 0; // frames differ
  walker.originX = 8;
  walker.originY = -2;
  walker.left = 2;
  walker.top = 1;
  walker.right = 13;
  walker.bottom = 11;
  walker.bboxMode = 2;
  game.sprites.push_back(walker);
  Sprite gem = SolidSprite("spr_gem", 10, 9, 2, 0);
  for (int y = 3; y < 7; ++y)
    for (int x = 2; x < 9; ++x) {
      gem.frames[0].rgba[static_cast<size_t>(y * 10 + x)] = 0xFF0000FF + static_cast<uint32_t>(x) * 0x100;
      gem.frames[1].rgba[static_cast<size_t>(y * 10 + 1)] = 0x80FFFFFF;
    }
  gem.precise = true;
  game.sprites.push_back(gem);
  Sprite nothing;
  nothing.name = "spr_nothing";
  nothing.width = nothing.height = 4;
  game.sprites.push_back(nothing);

  game.backgrounds.push_back({"bg_sky", SolidPicture(40, 30, 0xFFFF8040)});
  game.backgrounds.push_back({"bg_tiles", SolidPicture(64, 32, 0xFF00FF00), true, true, true});

  Sound beat{"Beat", 102, ".ogg", "Beat.ogg", 0.7f, 1, PlaceholderSound(1, 0.05, true)};
  Sound ping{"snd_ping", 103, ".wav", "snd_ping.wav", 1, 0, PlaceholderSound(2, 0.02, false)};
  Sound mute{"snd_mute", 103, ".wav", "snd_mute.wav"};
  game.sounds = {beat, ping, mute};

  game.paths.push_back({"pth_loop", true, true, 3, {{1, 2, 100}, {30.5f, -4, 50}, {0, 60, 100}}});
  game.scripts = {{"scr_first", 0}, {"scr_none", -1}};
  game.startScripts = {0};
  game.shaders.push_back({"sha_plain", "#version 100\nvoid main() {}\n", "#version 100\n// plain\n"});

  Object base{"obj_base"};
  base.sprite = 0;
  base.depth = -5;
  base.events = {{ev_create, 0, 1}, {ev_alarm, 11, 2}};
  Object child{"obj_child"};
  child.sprite = 1;
  child.mask = 0;
  child.parent = 0;
  child.visible = false;
  child.solid = child.persistent = true;
  child.events = {{ev_collision, 0, 3}, {ev_step, ev_step_end, 2}};
  game.objects = {base, child};

  Room room;
  room.name = "rm_first";
  room.caption = "Caption";
  room.width = 320;
  room.height = 200;
  room.speed = 30;
  room.persistent = true;
  room.colour = 0x804020;
  room.showColour = false;
  room.code = 4;
  room.viewsEnabled = true;
  room.clearViews = false;
  room.backgrounds[1] = {true, true, 0, 5, -6, true, false, 1, -2, true};
  room.views[0] = {true, 0, 0, 384, 216, 1, 2, 384, 216, 184, 100, 3, 4, 1};
  RoomInstance first;
  first.x = -16;
  first.y = 128;
  first.object = 1;
  first.code = 4;
  first.preCreateCode = 0;
  first.scaleX = 24;
  first.scaleY = 0.5f;
  first.colour = 0x80402010;
  first.rotation = 90;
  room.instances = {first, RoomInstance{}};
  room.tiles = {{16, 96, 1, 32, 16, 16, 16, 11, 0, 1, 1, 0xFFFFFFFF},
                {0, 0, 0, 1, 2, 3, 4, -3, 0, 2, 3, 0x7F112233}};
  Room second;
  second.name = "rm_second";
  second.instances = {RoomInstance{}};
  game.rooms = {room, second};
  game.header.roomOrder = {1, 0};
  return game;
}

} // namespace vesk::test
