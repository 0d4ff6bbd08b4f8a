#include "Files/Runner/BuiltinCatalogue.h"

#include "Files/Base/Console.h"
#include "Files/Function/Function.h"
#include "Files/Runner/Builtins.h"

#include <optional>
#include <sstream>
#include <string_view>
#include <unordered_set>

namespace vesk {

namespace {

// Names with their argument counts; "*" takes any number.
struct Family {
  const char* name;
  const char* builtins;
};

constexpr Family kFamilies[] = {
    {"number",
     "abs/1 sign/1 round/1 floor/1 ceil/1 sin/1 cos/1 min/* max/* mean/* choose/* random/1 irandom/1 "
     "random_set_seed/1 randomize/0 point_direction/4 point_distance/4 lengthdir_x/2 lengthdir_y/2 "
     "math_set_epsilon/1 math_get_epsilon/0"},
    {"value",
     "is_real/1 is_string/1 is_array/1 is_undefined/1 is_bool/1 is_ptr/1 is_int32/1 is_int64/1 is_vec3/1 "
     "is_vec4/1 is_matrix/1 typeof/1 real/1 string/1 bool/1 int64/1 ptr/1 array_length_1d/1 "
     "array_height_2d/1 array_length_2d/2 array_get/* array_set/* array_equals/2 array_create/* "
     "array_copy/5"},
    {"string",
     "string_length/1 string_copy/3 string_char_at/2 string_pos/2 string_count/2 string_replace/3 "
     "string_replace_all/3 string_digits/1 string_lower/1 string_upper/1 string_format/3 string_ord_at/2 "
     "string_byte_length/1 string_byte_at/2 string_set_byte_at/3 string_delete/3 string_insert/3 "
     "string_repeat/2 string_letters/1 string_lettersdigits/1 string_hash_to_newline/1 string_width/1 "
     "string_height/1 string_width_ext/3 string_height_ext/3"},
    {"event", "event_perform/2 event_perform_object/3 event_user/1 event_inherited/0 script_execute/*"},
    {"object",
     "object_exists/1 object_get_name/1 object_get_sprite/1 object_get_solid/1 object_get_visible/1 "
     "object_get_depth/1 object_get_persistent/1 object_get_mask/1 object_get_parent/1 object_is_ancestor/2 "
     "object_set_sprite/2 object_set_solid/2 object_set_visible/2 object_set_depth/2 "
     "object_set_persistent/2 object_set_mask/2 object_set_parent/2"},
    {"instance",
     "instance_create/3 instance_create_depth/4 instance_destroy/* instance_exists/1 instance_number/1 "
     "instance_find/2 instance_change/2 instance_copy/1 instance_sprite/3 position_destroy/2 "
     "position_change/4 "
     "instance_deactivate_all/1 instance_deactivate_object/1 instance_deactivate_region/6 "
     "instance_activate_all/0 instance_activate_object/1 instance_activate_region/5 distance_to_point/2 "
     "distance_to_object/1"},
    {"motion",
     "motion_set/2 motion_add/2 move_snap/2 move_contact_solid/2 move_contact_all/2 move_outside_solid/2 "
     "move_outside_all/2 move_contact/1 move_bounce_solid/1 move_bounce_all/1 move_bounce/1 move_wrap/3 "
     "move_towards_point/3 move_random/2"},
    {"collision",
     "place_meeting/3 instance_place/3 place_free/2 place_empty/2 place_snapped/2 collision_point/5 "
     "collision_rectangle/7 collision_circle/6 collision_ellipse/7 collision_line/7 instance_position/3 "
     "position_meeting/3 position_empty/2 instance_nearest/3 instance_furthest/3 collision_point_list/7 "
     "collision_rectangle_list/9 collision_circle_list/8 collision_ellipse_list/9 collision_line_list/9 "
     "instance_position_list/5 instance_place_list/5"},
    {"room", "room_goto/1 room_goto_next/0 room_goto_previous/0 room_restart/0 game_end/0 game_restart/0 "
             "room_exists/1 room_get_name/1 room_next/1 room_previous/1 room_set_width/2 room_set_height/2 "
             "room_set_background_colour/3 room_set_view/16 room_set_view_enabled/2 room_set_persistent/2 "
             "room_add/0 room_duplicate/1 room_assign/2 room_instance_add/4 room_tile_add/9"},
    {"tile",
     "tile_add/8 tile_delete/1 tile_exists/1 tile_layer_find/3 tile_layer_hide/1 tile_layer_show/1 "
     "tile_layer_delete/1 tile_layer_shift/3 tile_layer_delete_at/3 tile_layer_depth/2 tile_get_x/1 "
     "tile_get_y/1 tile_get_left/1 tile_get_top/1 tile_get_width/1 tile_get_height/1 tile_get_depth/1 "
     "tile_get_visible/1 tile_get_xscale/1 tile_get_yscale/1 tile_get_blend/1 tile_get_alpha/1 "
     "tile_get_background/1 tile_set_position/3 tile_set_region/5 tile_set_background/2 tile_set_visible/2 "
     "tile_set_depth/2 tile_set_scale/3 tile_set_blend/2 tile_set_alpha/2"},
    {"path",
     "path_start/4 path_end/0 path_exists/1 path_get_name/1 path_get_kind/1 path_get_closed/1 "
     "path_get_precision/1 path_get_number/1 path_get_length/1 path_get_time/2 path_get_x/2 path_get_y/2 "
     "path_get_speed/2 path_get_point_x/2 path_get_point_y/2 path_get_point_speed/2"},
    {"program", "parameter_count/0 parameter_string/1 game_save/1 game_load/1 show_message/1 show_error/2 "
                "display_set_sleep_margin/1 "
                "display_get_sleep_margin/0"},
    {"display",
     "display_get_width/0 display_get_height/0 display_reset/2 display_set_gui_size/2 window_set_size/2 "
     "window_set_fullscreen/1 window_center/0 window_set_colour/1 window_set_cursor/1 "
     "display_set_windows_vertex_buffer_method/1 display_get_windows_vertex_buffer_method/0 "
     "display_set_windows_alternate_sync/1 display_get_windows_alternate_sync/0 "
     "application_surface_draw_enable/1 application_surface_enable/1 draw_enable_drawevent/1"},
    {"draw",
     "draw_clear/1 draw_clear_alpha/2 draw_enable_alphablend/1 draw_set_blend_mode/1 "
     "draw_set_blend_mode_ext/2 draw_set_colour_write_enable/4 draw_set_alpha_test/1 "
     "draw_set_alpha_test_ref_value/1 draw_set_colour/1 draw_set_color/1 draw_get_colour/0 draw_set_alpha/1 "
     "draw_get_alpha/0 make_colour_rgb/3 make_color_rgb/3 draw_point/2 draw_line/4 draw_line_width/5 "
     "draw_line_colour/6 draw_rectangle/5 draw_circle/4 draw_ellipse/5 draw_triangle/7 draw_roundrect/5 "
     "draw_healthbar/11 draw_primitive_begin/1 draw_vertex/2 draw_vertex_colour/4 draw_primitive_end/0 "
     "texture_set_interpolation/1 texture_set_repeat/1"},
    {"sprite",
     "draw_sprite/4 draw_sprite_ext/9 draw_sprite_part/8 draw_sprite_part_ext/12 draw_sprite_stretched/6 "
     "draw_sprite_stretched_ext/8 draw_sprite_tiled/4 draw_sprite_tiled_ext/8 draw_sprite_general/16 "
     "draw_sprite_pos/11 sprite_exists/1 sprite_get_width/1 sprite_get_height/1 sprite_get_xoffset/1 "
     "sprite_get_yoffset/1 sprite_get_number/1 sprite_add/6 sprite_replace/7 "
     "sprite_create_from_surface/9 sprite_add_from_surface/8 sprite_delete/1"},
    {"background",
     "draw_background/3 draw_background_ext/8 draw_background_part/7 draw_background_part_ext/11 "
     "draw_background_stretched/5 draw_background_stretched_ext/7 draw_background_tiled/3 "
     "draw_background_tiled_ext/7 draw_background_general/15 background_add/3 background_exists/1 "
     "background_get_width/1 "
     "background_get_height/1 background_create_from_surface/* background_delete/1"},
    {"surface",
     "surface_create/2 surface_create_ext/3 surface_create_special/3 surface_exists/1 surface_free/1 "
     "surface_get_width/1 surface_get_height/1 "
     "surface_resize/3 surface_set_target/1 surface_reset_target/0 surface_set_target_ext/2 draw_surface/3 "
     "draw_surface_ext/8 draw_surface_part/7 draw_surface_part_ext/11 draw_surface_stretched/5 "
     "draw_surface_stretched_ext/7 draw_surface_tiled/3 draw_surface_tiled_ext/7 draw_surface_general/15 "
     "surface_getpixel/3 surface_copy/4 surface_copy_part/8 surface_save/2"},
    {"shader",
     "shader_set/1 shader_reset/0 shader_current/0 shader_get_name/1 shader_is_compiled/1 "
     "shader_get_uniform/2 shader_get_sampler_index/2 shader_set_uniform_f/* shader_set_uniform_i/* "
     "shader_set_uniform_f_array/2 shader_set_uniform_i_array/2 shader_set_uniform_matrix/1 "
     "shader_set_uniform_matrix_array/2 shaders_are_supported/0 shader_enable_corner_id/1"},
    {"font",
     "font_add_sprite/4 font_add_sprite_ext/4 font_exists/1 font_delete/1 draw_set_font/1 draw_set_halign/1 "
     "draw_set_valign/1 draw_text/3 draw_text_ext/5 draw_text_transformed/6 draw_text_ext_transformed/8 "
     "draw_text_colour/8 draw_text_ext_colour/10 draw_text_transformed_colour/11 "
     "draw_text_ext_transformed_colour/13"},
    {"audio",
     "audio_play_sound/3 audio_play_sound_on/4 audio_play_sound_at/9 audio_stop_sound/1 audio_stop_all/0 "
     "audio_pause_sound/1 audio_resume_sound/1 audio_pause_all/0 audio_resume_all/0 audio_is_playing/1 "
     "audio_is_paused/1 audio_exists/1 audio_sound_gain/3 audio_sound_pitch/2 audio_sound_get_gain/1 "
     "audio_sound_get_pitch/1 audio_sound_length/1 audio_sound_get_track_position/1 "
     "audio_sound_set_track_position/2 audio_master_gain/1 audio_set_master_gain/2 audio_get_master_gain/1 "
     "audio_channel_num/1 audio_get_name/1 audio_get_type/1 audio_falloff_set_model/1 "
     "audio_listener_position/3 audio_listener_velocity/3 audio_listener_orientation/6 "
     "audio_emitter_create/0 audio_emitter_free/1 audio_emitter_exists/1 audio_emitter_position/4 "
     "audio_emitter_velocity/4 audio_emitter_falloff/4 audio_emitter_gain/2 audio_emitter_pitch/2 "
     "audio_group_load/1 audio_group_unload/1 audio_group_is_loaded/1 audio_group_load_progress/1 "
     "audio_group_name/1 audio_group_stop_all/1 audio_group_set_gain/3 audio_system/0"},
    {"input",
     "keyboard_check/1 keyboard_check_pressed/1 keyboard_check_released/1 keyboard_check_direct/1 "
     "keyboard_key_press/1 keyboard_key_release/1 keyboard_set_map/2 keyboard_get_map/1 "
     "keyboard_unset_map/0 keyboard_clear/1 keyboard_get_numlock/0 keyboard_set_numlock/1 mouse_clear/1 "
     "io_clear/0 mouse_check_button/1 mouse_check_button_pressed/1 mouse_check_button_released/1 "
     "mouse_wheel_up/0 mouse_wheel_down/0 device_mouse_check_button/2 device_mouse_check_button_pressed/2 "
     "device_mouse_check_button_released/2 device_mouse_x/1 device_mouse_y/1 device_mouse_raw_x/1 "
     "device_mouse_raw_y/1 virtual_key_add/5 virtual_key_delete/1 virtual_key_show/1 virtual_key_hide/1"},
    {"gamepad",
     "gamepad_is_supported/0 gamepad_get_device_count/0 gamepad_is_connected/1 gamepad_get_description/1 "
     "gamepad_get_button_threshold/1 gamepad_set_button_threshold/2 gamepad_get_axis_deadzone/1 "
     "gamepad_set_axis_deadzone/2 gamepad_button_count/1 gamepad_axis_count/1 gamepad_button_check/2 "
     "gamepad_button_check_pressed/2 gamepad_button_check_released/2 gamepad_button_value/2 "
     "gamepad_axis_value/2 gamepad_set_vibration/3 gamepad_add_hardware_mapping_from_string/1 "
     "gamepad_add_hardware_mapping_from_file/1 gamepad_get_hardware_mappings/0 gamepad_set_colour/2 "
     "gamepad_set_color/2"},
    {"structure",
     "ds_map_write/1 ds_map_read/* ds_map_secure_save/2 ds_map_secure_load/1 ds_map_set_pre/3 "
     "ds_map_set_post/3 ds_list_set_pre/3 ds_list_set_post/3 ds_list_write/1 ds_list_read/* ds_stack_write/1 "
     "ds_stack_read/* ds_queue_write/1 ds_queue_read/* ds_grid_write/1 ds_grid_read/* ds_priority_write/1 "
     "ds_priority_read/* ds_grid_shuffle/1 ds_grid_sort/3 ds_grid_set_grid_region/8 "
     "ds_grid_add_grid_region/8 ds_grid_multiply_grid_region/8 "
     "ds_exists/2 ds_set_precision/1 ds_map_create/* ds_map_destroy/1 ds_map_add/3 ds_map_add_map/3 "
     "ds_map_add_list/3 ds_map_replace/3 ds_map_replace_map/3 ds_map_replace_list/3 ds_map_set/3 "
     "ds_map_delete/2 ds_map_exists/2 ds_map_find_value/2 ds_map_find_first/1 ds_map_find_last/1 "
     "ds_map_find_next/2 ds_map_find_previous/2 ds_map_size/1 ds_map_empty/1 ds_map_clear/1 ds_map_copy/2 "
     "ds_list_create/0 ds_list_destroy/1 ds_list_add/* ds_list_size/1 ds_list_find_value/2 "
     "ds_list_shuffle/1 ds_list_clear/1 ds_list_copy/2 ds_list_empty/1 ds_list_insert/3 ds_list_replace/3 "
     "ds_list_delete/2 ds_list_find_index/2 ds_list_sort/2 ds_list_set/3 ds_list_mark_as_map/2 "
     "ds_list_mark_as_list/2 ds_stack_create/0 ds_stack_destroy/1 ds_stack_clear/1 ds_stack_copy/2 "
     "ds_stack_size/1 ds_stack_empty/1 ds_stack_push/* ds_stack_pop/1 ds_stack_top/1 ds_queue_create/0 "
     "ds_queue_destroy/1 ds_queue_clear/1 ds_queue_copy/2 ds_queue_size/1 ds_queue_empty/1 "
     "ds_queue_enqueue/* ds_queue_dequeue/1 ds_queue_head/1 ds_queue_tail/1 ds_priority_create/0 "
     "ds_priority_destroy/1 ds_priority_clear/1 ds_priority_copy/2 ds_priority_size/1 ds_priority_empty/1 "
     "ds_priority_add/3 ds_priority_change_priority/3 ds_priority_find_priority/2 "
     "ds_priority_delete_value/2 ds_priority_delete_min/1 ds_priority_find_min/1 ds_priority_delete_max/1 "
     "ds_priority_find_max/1 ds_grid_create/2 ds_grid_destroy/1 ds_grid_copy/2 ds_grid_resize/3 "
     "ds_grid_width/1 ds_grid_height/1 ds_grid_clear/2 ds_grid_get/3 ds_grid_set/4 ds_grid_add/4 "
     "ds_grid_multiply/4 ds_grid_set_region/6 ds_grid_add_region/6 ds_grid_multiply_region/6 "
     "ds_grid_set_disk/5 ds_grid_add_disk/5 ds_grid_multiply_disk/5 ds_grid_get_sum/5 ds_grid_get_max/5 "
     "ds_grid_get_min/5 ds_grid_get_mean/5 ds_grid_get_disk_sum/4 ds_grid_get_disk_max/4 "
     "ds_grid_get_disk_min/4 ds_grid_get_disk_mean/4 ds_grid_value_exists/6 ds_grid_value_x/6 "
     "ds_grid_value_y/6 ds_grid_value_disk_exists/5 ds_grid_value_disk_x/5 ds_grid_value_disk_y/5 "
     "json_encode/1 json_decode/1"},
    {"file",
     "file_exists/1 file_delete/1 file_text_open_read/1 file_text_open_write/1 file_text_open_append/1 "
     "file_text_close/1 file_text_read_string/1 file_text_readln/1 file_text_read_real/1 file_text_eof/1 "
     "file_text_eoln/1 file_text_write_string/2 file_text_write_real/2 file_text_writeln/1 "
     "file_find_first/2 file_find_next/0 file_find_close/0"},
    {"ini",
     "ini_open/1 ini_open_from_string/1 ini_close/0 ini_read_string/3 ini_read_real/3 ini_write_string/3 "
     "ini_write_real/3 ini_key_exists/2 ini_section_exists/1 ini_key_delete/2 ini_section_delete/1"},
    {"external",
     "external_define/* external_define0/4 external_define1/5 external_define2/6 external_define3/7 "
     "external_define4/8 external_define5/9 external_define6/10 external_define7/11 external_define8/12 "
     "external_call/* external_call0/1 external_call1/2 external_call2/3 external_call3/4 external_call4/5 "
     "external_call5/6 external_call6/7 external_call7/8 external_call8/9 external_free/1"},
};

// Families of which no game of this runner reaches a member.
struct Absence {
  const char* reason;
  const char* builtins;
};
constexpr Absence kAbsences[] = {
    {"only the 2-D mode exists", "d3d_start/0"},
    {"fonts are not loaded from files", "font_add/6"},
    {"collision kinds come from the container", "sprite_collision_mask/9"},
    {"rooms have no layers", "instance_create_layer/4"},
};

std::vector<CataloguedBuiltin> Rows(const char* family, const char* text, const char* reason) {
  std::vector<CataloguedBuiltin> rows;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const size_t slash = word.find('/');
    const std::string count = word.substr(slash + 1);
    rows.push_back({family, word.substr(0, slash), count == "*" ? kAnyCount : std::stoi(count), reason});
  }
  return rows;
}

std::string CountText(int argc) { return argc == kAnyCount ? "any" : std::to_string(argc); }

std::string Line(const CataloguedBuiltin& row, const std::string& state) {
  return FormatText("%-12s %-46s %4s  %s\n", row.family.c_str(), row.name.c_str(),
                    CountText(row.argc).c_str(), state.c_str());
}

// The number of arguments that the registry has for the name; nothing when it does not hold it. Scripts and
// extensions don't count.
std::optional<int> RegisteredCount(const std::string& name) {
  int32_t id = -1;
  if (!Function_Find(name, id)) return {};
  if (id == kScriptExecuteId) return kAnyCount;
  if (id >= Function_Count()) return {};
  return Function_ArgumentCount(id);
}

} // namespace

std::vector<CataloguedBuiltin> Builtin_Catalogue() {
  std::vector<CataloguedBuiltin> catalogue;
  for (const Family& family : kFamilies)
    for (CataloguedBuiltin& row : Rows(family.name, family.builtins, "")) catalogue.push_back(std::move(row));
  for (const Absence& absence : kAbsences)
    for (CataloguedBuiltin& row : Rows("left out", absence.builtins, absence.reason))
      catalogue.push_back(std::move(row));
  return catalogue;
}

std::vector<std::string> Builtin_Check() {
  std::vector<std::string> findings;
  std::unordered_set<std::string> seen;
  for (const CataloguedBuiltin& row : Builtin_Catalogue()) {
    if (!seen.insert(row.name).second) findings.push_back(row.name + " is catalogued twice");
    const std::optional<int> argc = RegisteredCount(row.name);
    if (!row.reason.empty()) {
      if (argc) findings.push_back(row.name + " is said to be left out, but it is there");
    } else if (!argc) {
      findings.push_back(row.name + " is missing");
    } else if (*argc != row.argc) {
      findings.push_back(row.name + " takes " + CountText(*argc) + " arguments, promised are " +
                         CountText(row.argc));
    }
  }
  return findings;
}

std::string Builtin_List() {
  std::string text;
  std::unordered_set<std::string> seen;
  for (const CataloguedBuiltin& row : Builtin_Catalogue()) {
    seen.insert(row.name);
    if (!row.reason.empty())
      text += Line(row, "not implemented: " + row.reason);
    else
      text += Line(row, RegisteredCount(row.name) ? "implemented" : "not implemented");
  }
  for (int32_t i = 0; i < Function_Count(); ++i)
    if (seen.insert(Function_Name(i)).second)
      text += Line({"further", Function_Name(i), Function_ArgumentCount(i), ""}, "implemented");
  return text;
}

void Builtin_RegisterAll() {
  for (const BuiltinGroup& group : Runner_BuiltinGroups())
    if (group.add) group.add();
}

} // namespace vesk
