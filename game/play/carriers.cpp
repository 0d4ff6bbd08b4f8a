// The short-lived carriers of modifiers: each hands its value to what stands on its cell and ends.
// obj_cc_dest stays as a named point for warps.
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/level/catalogue.h"
#include "game/play/globals.h"

namespace vesk {

namespace {

constexpr int kWaitForTarget = 3; // steps until a text or a gun that nothing took ends
constexpr int kCell = 16;
constexpr int kVesk = 3, kPoisonVesk = -20, kStar = -21, kBeanstalk = -28; // contents

void end(Self carrier) { instance_destroy(carrier); }

void Create_Expiring(Self self) { self[alarm][0] = kWaitForTarget; }

// ---- obj_cc_modifier ----

void ModifierMeetsBlock(Self self, Other block) {
  block[sprout] = self[modify];
  end(self);
}

// Three cells wide; each cell takes its own.
void ModifierMeetsTriple(Self self, Other block) {
  const int slot = self[x] == block[x] + 2 * kCell ? 2 : self[x] == block[x] + kCell ? 1 : 0;
  block[sprout][slot] = self[modify];
  end(self);
}

// What breaks can hold nothing: a block that looks the same takes its place, and then the content.
void replace_by_block(Other target, int look) {
  const Self block = make(target[x], target[y], obj_block);
  block[sprite_index] = look;
  block[image_speed] = target[image_speed];
  instance_destroy(target);
}
void ModifierMeetsBrick(Self, Other brick) { replace_by_block(brick, spr_brick); }
void ModifierMeetsFlipBlock(Self, Other block) { replace_by_block(block, spr_flipblock); }
void ModifierMeetsBumpBlock(Self, Other block) { replace_by_block(block, spr_block_bump); }

void ModifierMeetsBubble(Self self, Other bubble) {
  if (self[modify] != kBeanstalk) {
    bubble[item] = self[modify];
    bubble[sprite] = scr_constant_get_sprite(bubble[item]);
  }
  end(self);
}

void ModifierMeetsSpawner(Self self, Other spawner) {
  struct Spawned {
    int content, object;
  };
  constexpr Spawned kSpawned[] = {{kVesk, obj_muvesk}, {kPoisonVesk, obj_poison}, {kStar, obj_star}};
  for (const Spawned& row : kSpawned)
    if (self[modify] == row.content) spawner[obj] = row.object;
  end(self);
}

// ---- obj_cc_gun ----

void GunMeetsSoldier(Self self, Other soldier) {
  soldier[gun] = self[modify];
  end(self);
}

void GunMeetsPentagram(Self self, Other soldier) {
  soldier[gun][self[y] == soldier[ystart] ? 0 : 1] = self[modify];
  end(self);
}

// The spawner is made a cell below its code; a gun on the code's own cell reaches it too.
void GunStep(Self self) {
  const int below =
      collision_point(self, self[x] + kCell / 2, self[y] + kCell * 3 / 2, obj_security_spawner, false, true);
  if (below == noone) return;
  const Self spawner = first(below);
  if (self[x] == spawner[xstart] && self[y] + kCell == spawner[ystart]) GunMeetsSoldier(self, spawner);
}

// ---- obj_cc_text ----

void TextCreate(Self self) {
  self[cc_text] = "";
  self[cc_text2] = "";
  Create_Expiring(self);
}

void TextSplit(Self self) {
  const std::string whole = self[cc_text].text();
  const size_t comma = whole.find(',');
  if (comma == std::string::npos) return;
  self[cc_text] = whole.substr(0, comma);
  self[cc_text2] = whole.substr(comma + 1);
}

// False when the text has no digits.
bool digits_of(Self self, Slot which, double& number) {
  const std::string digits = string_digits(self[which].text());
  if (digits.empty()) return false;
  number = real(RValue(digits));
  return true;
}

void give_number(Self self, Other target, Slot taken) {
  double number = 0;
  if (digits_of(self, cc_text, number)) target[taken] = number;
  end(self);
}

void TextMeetsMessageBlock(Self self, Other block) {
  block[varmsg] = self[cc_text];
  end(self);
}
void TextMeetsCodeBlock(Self self, Other block) { give_number(self, block, digit); }
void TextMeetsTimedPlatform(Self self, Other platform) { give_number(self, platform, var::time); }
void TextMeetsSpeedMarker(Self self, Other marker) { give_number(self, marker, setspeed); }

void TextMeetsRope(Self self, Other carriage) {
  double cells = 0;
  if (digits_of(self, cc_text, cells)) {
    carriage[ropelength] = cells;
    with(obj_movingrope_rope, [&](Self rope) {
      if (rope[x] == carriage[x] && rope[y] == carriage[y] + kCell) rope[image_yscale] = cells;
    });
  }
  end(self);
}

void TextMeetsZephlet(Self self, Other rider) {
  if (const Self marker = first(static_cast<int>(scr_find_marker(self[cc_text].text())))) {
    rider[xmin] = min(self[x], marker[x]);
    rider[xmax] = max(self[x], marker[x]);
  }
  end(self);
}

void TextMeetsSensor(Self self, Other sensor) {
  if (self[x] != sensor[xstart] || self[y] != sensor[ystart]) return;
  event_user(self, 0);
  double one = 0, two = 0;
  if (digits_of(self, cc_text, one)) {
    const bool sweeps = digits_of(self, cc_text2, two);
    if (sweeps) {
      sensor[turn] = 1;
      sensor[minang] = std::min(one, two);
      sensor[maxang] = std::max(one, two);
    }
    sensor[image_angle] = sweeps ? std::min(one, two) : one;
  }
  end(self);
}

// A door leads nowhere by itself; the point of change that it needs is what the text then meets.
void TextMeetsDoor(Self self, Other door) {
  if (!place_meeting(door, door[x], door[y], obj_postchange) &&
      !place_meeting(door, door[x], door[y], obj_warproom))
    make(self[x], self[y], obj_postchange);
}

void TextMeetsPostchange(Self self, Other point) {
  event_user(self, 0);
  if (ds_map_exists(global[leveldata], self[cc_text].value())) {
    const Self exit = make(point[x], point[y], obj_warproom);
    exit[my_section] = self[cc_text];
    exit[my_dest] = self[cc_text2];
    instance_destroy(point);
  } else if (const Self marker = first(static_cast<int>(scr_find_marker(self[cc_text].text())))) {
    point[postx] = marker[x];
    point[posty] = marker[y];
  }
  end(self);
}

// ---- obj_cc_dest ----

void DestCreate(Self self) { self[cc_text] = ""; }

} // namespace

const EventTable obj_cc_modifier_events = {
    {ev_collision, obj_block, ModifierMeetsBlock},
    {ev_collision, obj_block_hidden, ModifierMeetsBlock},
    {ev_collision, obj_block_triple, ModifierMeetsTriple},
    {ev_collision, obj_block_triple_hidden, ModifierMeetsTriple},
    {ev_collision, obj_block_spiked, ModifierMeetsBlock},
    {ev_collision, obj_block_winged, ModifierMeetsBlock},
    {ev_collision, obj_block_bump, ModifierMeetsBumpBlock},
    {ev_collision, obj_brick, ModifierMeetsBrick},
    {ev_collision, obj_flipblock, ModifierMeetsFlipBlock},
    {ev_collision, obj_noteblock, ModifierMeetsBlock},
    {ev_collision, obj_noteblock_hidden, ModifierMeetsBlock},
    {ev_collision, obj_bubble_item, ModifierMeetsBubble},
    {ev_collision, obj_vesk_spawner, ModifierMeetsSpawner},
};

const EventTable obj_cc_dest_events = {{ev_create, 0, DestCreate}};

const EventTable obj_cc_text_events = {
    {ev_create, 0, TextCreate},
    {ev_alarm, 0, end},
    {ev_collision, obj_noteblock_warp, TextMeetsDoor},
    {ev_collision, obj_warpnoteblock_hidden, TextMeetsDoor},
    {ev_collision, obj_messageblock, TextMeetsMessageBlock},
    {ev_collision, obj_block_code, TextMeetsCodeBlock},
    {ev_collision, obj_zephlet, TextMeetsZephlet},
    {ev_collision, obj_platformtimed, TextMeetsTimedPlatform},
    {ev_collision, obj_movingrope, TextMeetsRope},
    {ev_collision, obj_security_node, TextMeetsSensor},
    {ev_collision, obj_door, TextMeetsDoor},
    {ev_collision, obj_door_locked, TextMeetsDoor},
    {ev_collision, obj_door_bomb, TextMeetsDoor},
    {ev_collision, obj_postchange, TextMeetsPostchange},
    {ev_collision, obj_speedmarker, TextMeetsSpeedMarker},
    {ev_other, ev_user(0), TextSplit},
};

const EventTable obj_cc_gun_events = {
    {ev_create, 0, Create_Expiring},
    {ev_alarm, 0, end},
    {ev_step, ev_step_normal, GunStep},
    {ev_collision, obj_wartoss, GunMeetsSoldier},
    {ev_collision, obj_wartoss_pentagram, GunMeetsPentagram},
    {ev_collision, obj_security_spawner, GunMeetsSoldier},
};

// Its record keeps its place; nothing makes one.
const EventTable obj_cc_message_events = {};

} // namespace vesk
