#pragma once
// The things that codes in a level stand for: one table each for objects, markers and modifiers, read by the
// editor and by play.
#include "Files/Code/Self.h"
#include "game/AssetNames.h"

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// A further sprite that a placeholder wears in the editor, at an offset in pixels.
struct Attached {
  int sprite, frame;
  int dx, dy;
  double alpha = 1;
};
// A tag: one letter of the sprite font.
constexpr Attached Letter(char letter, int dx, int dy) { return {spr_spritefont, letter - '!', dx, dy, 0.8}; }

// How a placeholder looks in the editor.
struct Look {
  int sprite = -1;
  int frame = 0;
  int dx = 0, dy = 0; // pixels from the cell's corner
  double speed = 0;   // frames a step
  double alpha = 1;
  bool flipX = false, flipY = false;
  int light = -1; // colour of the light that it shows; -1 none
  std::initializer_list<Attached> attached = {};
};

struct CatalogueRow {
  std::string_view code;
  int object;         // made in play
  int dx = 0, dy = 0; // pixels from the cell's corner, in play
  Look look;
  int character = 0;                                    // of a start point: what global.powerup becomes
  int playSprite = -1, playFrame = -1, lampColour = -1; // set on the new instance; -1 leaves its own
};

struct ModifierRow {
  std::string_view code;
  int carrier; // obj_cc_modifier or obj_cc_gun
  int value;   // a content constant, or the gun's sprite
  Look look;
};

std::span<const CatalogueRow> ObjectCatalogue();
std::span<const CatalogueRow> MarkerCatalogue();
std::span<const ModifierRow> ModifierCatalogue();
// Null for an unknown code.
const CatalogueRow* FindObjectCode(std::string_view code);
const CatalogueRow* FindMarkerCode(std::string_view code);
const ModifierRow* FindModifierCode(std::string_view code);

inline constexpr std::string_view kTextPrefix = "TEXT:";
inline constexpr std::string_view kDestinationPrefix = "DESTINATION:";

// Make the thing of a code at a cell "cx,cy" in play. An unknown code makes nothing.
void scr_gen_object_level(std::string key, std::string code);
void scr_gen_marker_level(std::string key, std::string code);
void scr_gen_modifier_level(std::string key, std::string value);

// Dress an editor placeholder, or the sticky at the cursor, as the thing of the code.
void scr_gen_object_editor(double instance, std::string code);
void scr_gen_marker_editor(double instance, std::string code);
void scr_gen_modifier_editor(double instance, std::string value);

// The sprite that shows a content constant; -1 for none. And back; -1 for an unknown sprite.
double scr_constant_get_sprite(double constant);
double scr_sprite_get_constant(double sprite);

} // namespace vesk
