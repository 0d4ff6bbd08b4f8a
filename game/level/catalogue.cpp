#include "game/level/catalogue.h"

#include "game/Game.h"
#include "game/level/level_build.h"
#include "game/play/lighting.h"
#include "game/text.h"

#include <unordered_map>

namespace vesk {

namespace {

constexpr int kDestinationBlue = make_colour_rgb(88, 199, 248);
constexpr double kModifierAlpha = 0.7;
constexpr int kMessageWidth = 292; // pixels of a line in a message box

// clang-format off
const CatalogueRow kObjects[] = {
#include "game/level/catalogue_rows.inc"
};

const CatalogueRow kMarkers[] = {
#include "game/level/marker_rows.inc"
};
// clang-format on

constexpr Look Item(int sprite, int frame = 0, double speed = 0) {
  return {.sprite = sprite, .frame = frame, .speed = speed, .alpha = kModifierAlpha};
}
constexpr ModifierRow Gun(std::string_view code, int sprite) {
  return {code, obj_cc_gun, sprite, {.sprite = sprite, .dx = 8, .alpha = kModifierAlpha}};
}

const ModifierRow kModifiers[] = {
    {"Vesk", obj_cc_modifier, 3, Item(spr_muvesk, 1)},
    {"Hosku Shoe", obj_cc_modifier, -14, Item(spr_hoskushoe)},
    {"Lamboz Shoe", obj_cc_modifier, -17, Item(spr_lambozshoe, 1)},
    {"Poison Vesk", obj_cc_modifier, -20, Item(spr_poison)},
    {"Star", obj_cc_modifier, -21, Item(spr_star)},
    {"Key", obj_cc_modifier, -22, Item(spr_key)},
    {"Spring", obj_cc_modifier, -23, Item(spr_spring)},
    {"Super Spring", obj_cc_modifier, -24, Item(spr_spring_super)},
    {"P-Switch", obj_cc_modifier, -25, Item(spr_pswitch, 0, 0.15)},
    {"E-Switch", obj_cc_modifier, -26, Item(spr_eswitch)},
    {"Propeller Block", obj_cc_modifier, -27, Item(spr_propellerblock)},
    {"Beanstalk", obj_cc_modifier, -28, Item(spr_beanstalk)},
    Gun("Gun", spr_pistol),
    Gun("Rapidfire Gun", spr_pistol_rapid),
    Gun("Piercing Gun", spr_pistol_pierce),
    Gun("Improved Gun", spr_pistol_plus),
    Gun("Improved Rapidfire Gun", spr_pistol_rapidplus),
    Gun("Xtreme Gun", spr_pistol_xtreme),
    Gun("Rocket Launcher", spr_rocketlauncher),
    Gun("Angled Rocket Launcher", spr_rocketlauncher_arc),
    Gun("Homing Rocket Launcher", spr_rocketlauncher_homing),
    Gun("Grenade Launcher", spr_grenadelauncher),
    Gun("Laser", spr_laser),
    Gun("Ray Laser", spr_laser_rapid),
    Gun("Flamethrower", spr_flamethrower),
};

// What a value of "MODIFIERS" looks like that is no code: free text.
constexpr Look kFreeText = {.sprite = spr_editor_modifier_icons, .frame = 35, .alpha = kModifierAlpha};

// Contents that arise in play alone.
struct Content {
  int constant, sprite;
};
constexpr Content kFurtherContents[] = {{-15, spr_glimmoshoe}, {-16, spr_stompelshoe}};

Self MakeAt(const CatalogueRow& row, const std::string& key) {
  const Cell cell = parse_cell(key);
  return make(cell.x * kCellSize + row.dx, cell.y * kCellSize + row.dy, row.object);
}

Self MakeCarrier(const std::string& key, int object) {
  const Cell cell = parse_cell(key);
  return make(cell.x * kCellSize, cell.y * kCellSize, object);
}

void MakeStart(const CatalogueRow& row, const std::string& key) {
  if (instance_exists(obj_tovin)) return; // a second start point is ignored
  global[powerup] = row.character;
  MakeAt(row, key);
}

void Dress(Self it, const Look& look) {
  it[sprite_index] = look.sprite;
  it[image_index] = look.frame;
  it[image_speed] = look.speed;
  it[image_alpha] = look.alpha;
  it[x_offset] = look.dx;
  it[y_offset] = look.dy;
  it[x_direct] = look.flipX ? -1 : 1;
  it[y_direct] = look.flipY ? -1 : 1;
  it[a_l] = static_cast<int>(look.attached.size());
  int row = 0;
  for (const Attached& worn : look.attached) {
    it[a_s].at(row, 0) = worn.sprite;
    it[a_s].at(row, 1) = worn.frame;
    it[a_s].at(row, 2) = worn.dx;
    it[a_s].at(row, 3) = worn.dy;
    it[a_s].at(row, 4) = worn.alpha;
    ++row;
  }
  if (look.light != -1 && it[object_index] == obj_editor_object)
    make(it[x], it[y], obj_editor_light)[light_color] = look.light;
}

} // namespace

std::span<const CatalogueRow> ObjectCatalogue() { return kObjects; }
std::span<const CatalogueRow> MarkerCatalogue() { return kMarkers; }
std::span<const ModifierRow> ModifierCatalogue() { return kModifiers; }

const CatalogueRow* FindObjectCode(std::string_view code) {
  static const auto index = [] { // never changes
    std::unordered_map<std::string_view, const CatalogueRow*> made;
    for (const CatalogueRow& row : kObjects) made.emplace(row.code, &row);
    return made;
  }();
  const auto found = index.find(code);
  return found == index.end() ? nullptr : found->second;
}

const CatalogueRow* FindMarkerCode(std::string_view code) {
  for (const CatalogueRow& row : kMarkers)
    if (row.code == code) return &row;
  return nullptr;
}

const ModifierRow* FindModifierCode(std::string_view code) {
  for (const ModifierRow& row : kModifiers)
    if (row.code == code) return &row;
  return nullptr;
}

void scr_gen_object_level(std::string key, std::string code) {
  const DebugFrame frame("scr_gen_object_level");
  const CatalogueRow* row = FindObjectCode(code);
  if (!row) return;
  if (row->character != 0) {
    MakeStart(*row, key);
    return;
  }
  const Self it = MakeAt(*row, key);
  if (!it) return; // its Create ended it
  if (row->playSprite != -1) it[sprite_index] = row->playSprite;
  if (row->playFrame != -1) it[image_index] = row->playFrame;
  if (row->lampColour != -1) it[lamp_color] = row->lampColour;
}

void scr_gen_marker_level(std::string key, std::string code) {
  const DebugFrame frame("scr_gen_marker_level");
  if (const CatalogueRow* row = FindMarkerCode(code)) MakeAt(*row, key);
}

void scr_gen_modifier_level(std::string key, std::string value) {
  const DebugFrame frame("scr_gen_modifier_level");
  if (const ModifierRow* row = FindModifierCode(value))
    MakeCarrier(key, row->carrier)[modify] = row->value;
  else if (value.starts_with(kTextPrefix))
    MakeCarrier(key, obj_cc_text)[cc_text] = value.substr(kTextPrefix.size());
  else if (value.starts_with(kDestinationPrefix))
    MakeCarrier(key, obj_cc_dest)[cc_text] = value.substr(kDestinationPrefix.size());
}

void scr_gen_object_editor(double instance, std::string code) {
  const DebugFrame frame("scr_gen_object_editor");
  const Self it = first(static_cast<int>(instance));
  const CatalogueRow* row = FindObjectCode(code);
  if (it && row) Dress(it, row->look);
}

void scr_gen_marker_editor(double instance, std::string code) {
  const DebugFrame frame("scr_gen_marker_editor");
  const Self it = first(static_cast<int>(instance));
  const CatalogueRow* row = FindMarkerCode(code);
  if (it && row) Dress(it, row->look);
}

void scr_gen_modifier_editor(double instance, std::string value) {
  const DebugFrame frame("scr_gen_modifier_editor");
  const Self it = first(static_cast<int>(instance));
  if (!it) return;
  const ModifierRow* row = FindModifierCode(value);
  Dress(it, row ? row->look : kFreeText);
  for (const std::string_view prefix : {kTextPrefix, kDestinationPrefix})
    if (value.starts_with(prefix))
      it[cc_text] = string_make_width(value.substr(prefix.size()), kMessageWidth);
  if (value.starts_with(kDestinationPrefix)) it[image_blend] = kDestinationBlue;
}

double scr_constant_get_sprite(double constant) {
  for (const ModifierRow& row : kModifiers)
    if (row.carrier == obj_cc_modifier && row.value == constant) return row.look.sprite;
  for (const Content& content : kFurtherContents)
    if (content.constant == constant) return content.sprite;
  return -1;
}

double scr_sprite_get_constant(double sprite) {
  for (const ModifierRow& row : kModifiers)
    if (row.carrier == obj_cc_modifier && row.look.sprite == sprite) return row.value;
  for (const Content& content : kFurtherContents)
    if (content.sprite == sprite) return content.constant;
  return -1;
}

} // namespace vesk
