#pragma once
// Darkness, and the lights that lift it. A thing that shines draws its light in user event 14.
#include "Files/Code/Self.h"
#include "Files/Graphics/Draw.h"
#include "game/AssetNames.h"
#include "game/ObjectNames.h"

namespace vesk {

inline constexpr int kGivesLight = 14; // the user event

struct Light {
  int object;
  int sprite; // large, medium or small
  int colour;
};

namespace detail {
inline constexpr int kFireGlow = make_colour_rgb(255, 160, 64);
} // namespace detail

// What shines, and how. Children without a row of their own shine as their parents do.
inline constexpr Light kLights[] = {
    {obj_lava, spr_megadark, make_colour_rgb(64, 40, 16)},
    {obj_torchfire, spr_megadark, make_colour_rgb(192, 120, 48)},
    {obj_lamplight, spr_megadark, make_colour_rgb(128, 116, 78)}, // unless lamp_color says otherwise
    {obj_ghostfire, spr_megadark, make_colour_rgb(96, 48, 184)},
    {obj_flamethrower_fire, spr_smalldark, detail::kFireGlow},
    {obj_spitbloomfire, spr_smalldark, detail::kFireGlow},
    {obj_lavrix, spr_smalldark, detail::kFireGlow},
    {obj_lavrix_bounce, spr_smalldark, detail::kFireGlow},
    {obj_orbitflare, spr_smalldark, detail::kFireGlow},
    {obj_littlespark, spr_smalldark, make_colour_rgb(255, 255, 0)},
    {obj_netspark, spr_smalldark, make_colour_rgb(255, 255, 0)},
    {obj_lasershot, spr_smalldark, make_colour_rgb(255, 0, 0)},
    {obj_flamestick, spr_smallerdark, detail::kFireGlow},
    {obj_flamestick_large, spr_smallerdark, detail::kFireGlow},
    {obj_flamestickball, spr_smallerdark, detail::kFireGlow},
    {obj_flarechaser, spr_smallerdark, detail::kFireGlow},
    {obj_flarechaser_tail, spr_smallerdark, detail::kFireGlow},
    {obj_emberworm, spr_smallerdark, detail::kFireGlow},
    {obj_emberworm_part, spr_smallerdark, detail::kFireGlow},
    {obj_lavagulp, spr_smallerdark, detail::kFireGlow},
    {obj_lavagulp_jump, spr_smallerdark, detail::kFireGlow},
    {obj_ashbloom, spr_smallerdark, detail::kFireGlow},
    {obj_lotusball, spr_smallerdark, detail::kFireGlow},
    {obj_plantfire, spr_smallerdark, detail::kFireGlow},
    {obj_ombrel_fire, spr_smallerdark, detail::kFireGlow},
};

namespace detail {
constexpr Light FindLight(int object) {
  for (const Light& light : kLights)
    if (light.object == object) return light;
  throw "the object gives no light"; // stops the build
}
} // namespace detail

// The row of an object; one without a row doesn't compile.
template <int kObject> inline constexpr Light kLightOf = detail::FindLight(kObject);

// Draws the light sprite at the centre of the instance's box, in view coordinates, tinted.
void scr_emit_light(Self instance, int sprite, int colour);

// The event of a thing that shines as its row says: {ev_other, ev_user(kGivesLight), Shine<obj_torchfire>}.
template <int kObject> void Shine(Self self) {
  scr_emit_light(self, kLightOf<kObject>.sprite, kLightOf<kObject>.colour);
}

} // namespace vesk
