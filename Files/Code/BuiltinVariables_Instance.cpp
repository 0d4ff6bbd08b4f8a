// The built-in variables of an instance, in their order.
#include "Files/Base/Error.h"
#include "Files/Code/VariableRows.h"
#include "Files/Run/Run_FrameBody.h"

namespace vesk {

using rows::Row;

namespace {

bool GetAsyncLoad(CInstance*, int32_t, RValue& out) {
  out.SetReal(Async_Load());
  return true;
}

// No instance of this system has a physics body, so what belongs to one can be neither read nor written.
bool GetPhysics(CInstance*, int32_t, RValue& out) {
  ReportError("The instance does not have a physics component associated with it.");
  out.SetReal(0);
  return true;
}
bool SetPhysics(CInstance*, int32_t, const RValue&) {
  ReportError("The instance does not have a physics component associated with it.");
  return false;
}

#define VESK_ROW(name) Row(#name, name)
#define VESK_PHYSICS(name)                                                                                   \
  { "phy_" #name, GetPhysics, SetPhysics }
#define VESK_PHYSICS_READ_ONLY(name)                                                                         \
  { "phy_" #name, GetPhysics }

constexpr VariableRow kRows[] = {
    VESK_ROW(x),
    VESK_ROW(y),
    VESK_ROW(xprevious),
    VESK_ROW(yprevious),
    VESK_ROW(xstart),
    VESK_ROW(ystart),
    VESK_ROW(hspeed),
    VESK_ROW(vspeed),
    VESK_ROW(direction),
    VESK_ROW(speed),
    VESK_ROW(friction),
    VESK_ROW(gravity),
    VESK_ROW(gravity_direction),
    VESK_ROW(object_index),
    VESK_ROW(id),
    VESK_ROW(alarm),
    VESK_ROW(solid),
    VESK_ROW(visible),
    VESK_ROW(persistent),
    VESK_ROW(depth),
    VESK_ROW(bbox_left),
    VESK_ROW(bbox_right),
    VESK_ROW(bbox_top),
    VESK_ROW(bbox_bottom),
    VESK_ROW(sprite_index),
    VESK_ROW(image_index),
    VESK_ROW(image_single),
    VESK_ROW(image_number),
    VESK_ROW(sprite_width),
    VESK_ROW(sprite_height),
    VESK_ROW(sprite_xoffset),
    VESK_ROW(sprite_yoffset),
    VESK_ROW(image_xscale),
    VESK_ROW(image_yscale),
    VESK_ROW(image_angle),
    VESK_ROW(image_alpha),
    VESK_ROW(image_blend),
    VESK_ROW(image_speed),
    VESK_ROW(mask_index),
    VESK_ROW(path_index),
    VESK_ROW(path_position),
    VESK_ROW(path_positionprevious),
    VESK_ROW(path_speed),
    VESK_ROW(path_scale),
    VESK_ROW(path_orientation),
    VESK_ROW(path_endaction),
    VESK_ROW(timeline_index),
    VESK_ROW(timeline_position),
    VESK_ROW(timeline_speed),
    VESK_ROW(timeline_running),
    VESK_ROW(timeline_loop),
    {"async_load", GetAsyncLoad},
    {"event_data", rows::GetConstant<-1>},
    {"iap_data", rows::GetConstant<-1>},
    VESK_PHYSICS(rotation),
    VESK_PHYSICS(position_x),
    VESK_PHYSICS(position_y),
    VESK_PHYSICS(angular_velocity),
    VESK_PHYSICS(linear_velocity_x),
    VESK_PHYSICS(linear_velocity_y),
    VESK_PHYSICS(speed_x),
    VESK_PHYSICS(speed_y),
    VESK_PHYSICS(angular_damping),
    VESK_PHYSICS(linear_damping),
    VESK_PHYSICS(bullet),
    VESK_PHYSICS(fixed_rotation),
    VESK_PHYSICS(active),
    VESK_PHYSICS_READ_ONLY(mass),
    VESK_PHYSICS_READ_ONLY(inertia),
    VESK_PHYSICS_READ_ONLY(com_x),
    VESK_PHYSICS_READ_ONLY(com_y),
    VESK_PHYSICS_READ_ONLY(speed),
    VESK_PHYSICS_READ_ONLY(dynamic),
    VESK_PHYSICS_READ_ONLY(kinematic),
    VESK_PHYSICS_READ_ONLY(sleeping),
    VESK_PHYSICS_READ_ONLY(position_xprevious),
    VESK_PHYSICS_READ_ONLY(position_yprevious),
    VESK_PHYSICS_READ_ONLY(collision_points),
    VESK_PHYSICS_READ_ONLY(collision_x),
    VESK_PHYSICS_READ_ONLY(collision_y),
    VESK_PHYSICS_READ_ONLY(col_normal_x),
    VESK_PHYSICS_READ_ONLY(col_normal_y),
    {"display_aa", rows::GetConstant<0>},
    VESK_ROW(delta_time),
    {"webgl_enabled", rows::GetConstant<0>},
    VESK_ROW(layer),
};

#undef VESK_ROW
#undef VESK_PHYSICS
#undef VESK_PHYSICS_READ_ONLY

} // namespace

std::span<const VariableRow> InstanceVariables() { return kRows; }

} // namespace vesk
