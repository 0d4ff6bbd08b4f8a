// The static terrain: invisible shapes that movers probe. They do nothing themselves.
#include "game/EventTable.h"

namespace vesk {

const EventTable obj_solid_events = {};
const EventTable obj_solidtop_events = {};
const EventTable obj_climb_events = {};
const EventTable obj_climb_net_events = {};
const EventTable obj_swim_events = {};
const EventTable obj_slippery_events = {};
const EventTable obj_hurtsolid2_events = {};
const EventTable obj_slope_r_events = {};
const EventTable obj_slope_l_events = {};
const EventTable obj_slope_sr_events = {};
const EventTable obj_slope_sl_events = {};
const EventTable obj_islope_r_events = {};
const EventTable obj_islope_l_events = {};
const EventTable obj_islope_sr_events = {};
const EventTable obj_islope_sl_events = {};
const EventTable obj_stopblock_events = {};
const EventTable obj_slopeparent_events = {};
const EventTable obj_deactivation_events = {};
const EventTable obj_deactenemyparent_events = {};
const EventTable obj_blockparent_events = {};
const EventTable obj_grayblockparent_events = {};

} // namespace vesk
