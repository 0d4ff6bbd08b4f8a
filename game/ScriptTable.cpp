#include "game/ScriptTable.h"

#include "game/NotBuilt.h"
#include "game/level/catalogue.h"
#include "game/level/files.h"
#include "game/level/level_build.h"
#include "game/level/level_file.h"
#include "game/play/enter_leave.h"
#include "game/play/globals.h"
#include "game/play/hero_sprites.h"
#include "game/play/lighting.h"
#include "game/text.h"

namespace vesk {

namespace {

// Called by name, an instance comes as its id.
void emit_light(int instance, int sprite, int colour) {
  with(instance, [&](Self it) { scr_emit_light(it, sprite, colour); });
}

constexpr ScriptEntry NotBuilt(const char* name) { return {name, ReportNotBuiltScript}; }

constexpr ScriptEntry kScripts[] = {
    Script<&scr_tovinwalk>("scr_tovinwalk"),
    Script<&scr_tovinjump>("scr_tovinjump"),
    Script<&scr_tovinrun>("scr_tovinrun"),
    Script<&scr_tovinrunjump>("scr_tovinrunjump"),
    Script<&scr_tovinskid>("scr_tovinskid"),
    Script<&scr_tovinclimb>("scr_tovinclimb"),
    Script<&scr_tovinswim>("scr_tovinswim"),
    Script<&scr_tovinhold>("scr_tovinhold"),
    Script<&scr_tovinduck>("scr_tovinduck"),
    Script<&scr_tovinwarp>("scr_tovinwarp"),
    Script<&scr_tovinslide>("scr_tovinslide"),
    Script<&scr_tovinkick>("scr_tovinkick"),
    NotBuilt("scr_tovinparts"),
    NotBuilt("scr_canhold"),
    NotBuilt("scr_enemy_sees_player"),
    NotBuilt("scr_make_bodyparts"),
    Script<&emit_light>("scr_emit_light"),
    Script<&scr_constant_get_sprite>("scr_constant_get_sprite"),
    Script<&scr_sprite_get_constant>("scr_sprite_get_constant"),
    NotBuilt("scr_sprite_make_object"),
    Script<&scr_init_globals>("scr_init_globals"),
    Script<&scr_clearvars>("scr_clearvars"),
    Script<&scr_return>("scr_return"),
    NotBuilt("scr_countpuzz"),
    Script<&scr_level_new>("scr_level_new"),
    Script<&scr_level_add_section>("scr_level_add_section"),
    Script<&scr_level_save>("scr_level_save"),
    Script<&scr_level_load>("scr_level_load"),
    Script<&scr_level_get_levels>("scr_level_get_levels"),
    Script<&scr_gen_tile>("scr_gen_tile"),
    Script<&scr_gen_collision>("scr_gen_collision"),
    Script<&scr_gen_background>("scr_gen_background"),
    Script<&scr_gen_music>("scr_gen_music"),
    Script<&scr_check_tiles_right>("scr_check_tiles_right"),
    Script<&scr_check_tiles_down>("scr_check_tiles_down"),
    Script<&scr_gen_object_editor>("scr_gen_object_editor"),
    Script<&scr_gen_object_level>("scr_gen_object_level"),
    Script<&scr_gen_modifier_editor>("scr_gen_modifier_editor"),
    Script<&scr_gen_modifier_level>("scr_gen_modifier_level"),
    Script<&scr_gen_marker_editor>("scr_gen_marker_editor"),
    Script<&scr_gen_marker_level>("scr_gen_marker_level"),
    Script<&string_add_zeros>("string_add_zeros"),
    Script<&string_copy_improved>("string_copy_improved"),
    Script<&string_make_width>("string_make_width"),
    Script<&outside_view>("outside_view"),
    Script<&turn_towards_direction>("turn_towards_direction"),
    Script<&FS_init>("FS_init"),
    Script<&FS_file_text_open_write>("FS_file_text_open_write"),
    Script<&FS_file_text_write_string>("FS_file_text_write_string"),
    Script<&FS_file_text_open_read>("FS_file_text_open_read"),
    Script<&FS_file_text_read_string>("FS_file_text_read_string"),
    Script<&FS_file_text_close>("FS_file_text_close"),
    Script<&FS_file_exists>("FS_file_exists"),
    Script<&FS_file_find_first>("FS_file_find_first"),
    Script<&FS_file_find_next>("FS_file_find_next"),
    Script<&scr_level_load_file>("scr_level_load_file"),
    Script<&scr_level_problem>("scr_level_problem"),
    Script<&scr_level_play>("scr_level_play"),
    Script<&scr_find_marker>("scr_find_marker"),
};
static_assert(std::size(kScripts) == 59);

} // namespace

std::span<const ScriptEntry> ScriptTable() { return kScripts; }

} // namespace vesk
