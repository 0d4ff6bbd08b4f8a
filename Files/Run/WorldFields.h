#pragma once
// What later frames read of the running world, each field named once: the checksum, the comparison of two
// plays and saved games all go by these lists. `visit(name, field)` is called for every field in a fixed
// order; names are those of the variables where scripts know the field.
#include "Files/Code/BuiltinAccess.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Object/Instance.h"
#include "Files/Room/Room.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

template <class Visit> void VisitFields(Visit& visit, InstanceState& it) {
  static constexpr const char* kAlarms[kAlarmCount] = {"alarm[0]", "alarm[1]", "alarm[2]",  "alarm[3]",
                                                       "alarm[4]", "alarm[5]", "alarm[6]",  "alarm[7]",
                                                       "alarm[8]", "alarm[9]", "alarm[10]", "alarm[11]"};
  visit("object_index", it.objectIndex);
  visit("x", it.x);
  visit("y", it.y);
  visit("xprevious", it.xPrevious);
  visit("yprevious", it.yPrevious);
  visit("xstart", it.xStart);
  visit("ystart", it.yStart);
  visit("hspeed", it.hspeed);
  visit("vspeed", it.vspeed);
  visit("direction", it.direction);
  visit("speed", it.speed);
  visit("friction", it.friction);
  visit("gravity", it.gravity);
  visit("gravity_direction", it.gravityDirection);
  visit("sprite_index", it.spriteIndex);
  visit("mask_index", it.maskIndex);
  visit("image_index", it.imageIndex);
  visit("image_speed", it.imageSpeed);
  visit("image_xscale", it.imageXScale);
  visit("image_yscale", it.imageYScale);
  visit("image_angle", it.imageAngle);
  visit("image_alpha", it.imageAlpha);
  visit("image_blend", it.imageBlend);
  visit("depth", it.depth);
  visit("visible", it.visible);
  visit("solid", it.solid);
  visit("persistent", it.persistent);
  visit("marked", it.marked);
  visit("deactivated", it.deactivated);
  visit("destroyEventDone", it.destroyEventDone);
  visit("carriedOver", it.carriedOver);
  visit("created", it.created);
  for (int n = 0; n < kAlarmCount; ++n) visit(kAlarms[n], it.alarm[n]);
  visit("path_index", it.pathIndex);
  visit("path_position", it.pathPosition);
  visit("path_positionprevious", it.pathPositionPrevious);
  visit("path_speed", it.pathSpeed);
  visit("path_scale", it.pathScale);
  visit("path_orientation", it.pathOrientation);
  visit("path_endaction", it.pathEndAction);
  visit("pathXStart", it.pathXStart);
  visit("pathYStart", it.pathYStart);
  visit("timeline_index", it.timelineIndex);
  visit("timeline_position", it.timelinePosition);
  visit("timelinePrevious", it.timelinePrevious);
  visit("timeline_speed", it.timelineSpeed);
  visit("timeline_running", it.timelineRunning);
  visit("timeline_loop", it.timelineLoop);
  visit("outsideRoom", it.outsideRoom);
  visit("mouseInside", it.mouseInside);
  visit("layer", it.layerId);
}

// The script variables that were written, in slot order; "self.state".
template <class Visit> void VisitSlots(Visit& visit, const ZqObjectBase& holder) {
  std::vector<std::pair<int32_t, const RValue*>> written;
  holder.ForEachSlot([&written](int32_t slot, const RValue& value) {
    if (!value.IsUnset()) written.emplace_back(slot, &value);
  });
  std::sort(written.begin(), written.end());
  for (const auto& [slot, value] : written) {
    const std::string name = Variable_NameOfSlot(slot);
    visit("self." + (name.empty() ? std::to_string(slot) : name), *value);
  }
}

template <class Visit> void VisitFields(Visit& visit, BackgroundSlot& it) {
  visit("background_visible", it.visible);
  visit("background_foreground", it.foreground);
  visit("background_index", it.index);
  visit("background_x", it.x);
  visit("background_y", it.y);
  visit("background_htiled", it.htiled);
  visit("background_vtiled", it.vtiled);
  visit("background_hspeed", it.hspeed);
  visit("background_vspeed", it.vspeed);
  visit("background_xscale", it.xscale);
  visit("background_yscale", it.yscale);
  visit("background_blend", it.blend);
  visit("background_alpha", it.alpha);
}

template <class Visit> void VisitFields(Visit& visit, ViewSlot& it) {
  visit("view_visible", it.visible);
  visit("view_xview", it.xview);
  visit("view_yview", it.yview);
  visit("view_wview", it.wview);
  visit("view_hview", it.hview);
  visit("view_xport", it.xport);
  visit("view_yport", it.yport);
  visit("view_wport", it.wport);
  visit("view_hport", it.hport);
  visit("view_angle", it.angle);
  visit("view_hborder", it.hborder);
  visit("view_vborder", it.vborder);
  visit("view_hspeed", it.hspeed);
  visit("view_vspeed", it.vspeed);
  visit("view_object", it.object);
}

template <class Visit> void VisitFields(Visit& visit, CRoom& it) {
  visit("room", it.index);
  visit("room_width", it.width);
  visit("room_height", it.height);
  visit("room_speed", it.speed);
  visit("room_caption", it.caption);
  visit("room_persistent", it.persistent);
  visit("background_color", it.colour);
  visit("background_showcolor", it.showColour);
  visit("view_enabled", it.viewsEnabled);
  visit("clearDisplay", it.clearDisplay);
  visit("clearViews", it.clearViews);
}

template <class Visit> void VisitFields(Visit& visit, Tile& it) {
  visit("x", it.x);
  visit("y", it.y);
  visit("background", it.background);
  visit("left", it.left);
  visit("top", it.top);
  visit("width", it.width);
  visit("height", it.height);
  visit("depth", it.depth);
  visit("xscale", it.xscale);
  visit("yscale", it.yscale);
  visit("blend", it.blend);
  visit("alpha", it.alpha);
  visit("visible", it.visible);
}

template <class Visit> void VisitFields(Visit& visit, GameVariables& it) {
  visit("score", it.score);
  visit("lives", it.lives);
  visit("health", it.health);
}

// Which key each key stands for.
struct KeyMap {
  std::array<int32_t, 256>& codes;
};
template <class Visit> void VisitFields(Visit& visit, KeyMap& it) {
  for (size_t key = 0; key < it.codes.size(); ++key) visit("key " + std::to_string(key), it.codes[key]);
}

template <class Visit> void VisitFields(Visit& visit, RandomState& it) {
  static constexpr const char* kWords[16] = {"word 0",  "word 1",  "word 2",  "word 3", "word 4",  "word 5",
                                             "word 6",  "word 7",  "word 8",  "word 9", "word 10", "word 11",
                                             "word 12", "word 13", "word 14", "word 15"};
  for (size_t n = 0; n < 16; ++n) visit(kWords[n], it.words[n]);
  visit("index", it.index);
  visit("seed", it.seed);
}

// Single numbers of the run.
struct RunNumbers {
  int32_t& lastInstanceId;
  int32_t& lastTileId;
  double& epsilon; // of comparisons
};
template <class Visit> void VisitFields(Visit& visit, RunNumbers& it) {
  visit("last instance id", it.lastInstanceId);
  visit("last tile id", it.lastTileId);
  visit("epsilon", it.epsilon);
}
inline RunNumbers NumbersOfRun() { return {Rooms().nextInstanceId, Rooms().nextTileId, g_epsilon}; }

} // namespace vesk
