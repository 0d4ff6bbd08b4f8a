#include "tests/scenarios/HeroModel.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

using Kind = ModelBox::Kind;
constexpr int kCell = 16;
constexpr double kTolerance = 0.00001; // numbers closer than this are equal

bool Above(double a, double b) { return a - b > kTolerance; }
bool Below(double a, double b) { return b - a > kTolerance; }
bool Same(double a, double b) { return std::fabs(a - b) <= kTolerance; }
int Whole(double value) { return static_cast<int>(std::nearbyint(value)); } // ties to even

bool Wide(char shape) { return shape == '/' || shape == '\\' || shape == 'M' || shape == 'N'; }

// Whether pixel (u, v) of the shape is filled.
bool Filled(char shape, int u, int v) {
  switch (shape) {
  case '/': return v >= 15 - u / 2;
  case '\\': return v >= 15 - (31 - u) / 2;
  case 'K': return v >= 15 - u;
  case 'L': return v >= u;
  case 'M': return v <= u / 2;
  case 'N': return v <= (31 - u) / 2;
  case 'O': return v <= u;
  case 'P': return v <= 15 - u;
  default: return true;
  }
}

} // namespace

ModelWorld WorldOf(const Rows& drawing, const LevelSettings& settings) {
  const Rows rows = Framed(drawing);
  ModelWorld world;
  world.width = static_cast<int>(rows[0].size()) * kCell;
  world.height = static_cast<int>(rows.size()) * kCell;
  const auto at = [&](size_t row, size_t column) {
    return row < rows.size() && column < rows[row].size() ? rows[row][column] : '.';
  };
  const auto add = [&](Kind kind, size_t column, size_t row, int width, int height, char shape = ' ') {
    const int left = static_cast<int>(column) * kCell, top = static_cast<int>(row) * kCell;
    world.boxes.push_back({kind, left, top, left + width - 1, top + height - 1, shape, top});
  };
  for (size_t row = 0; row < rows.size(); ++row)
    for (size_t column = 0; column < rows[row].size(); ++column) {
      const char letter = at(row, column);
      if (letter == '#' && row == 0) {
        const int left = static_cast<int>(column) * kCell;
        world.boxes.push_back({Kind::kSolid, left, -96, left + 15, 15, ' ', 0});
      } else if (letter == '#' && (row == 1 || at(row - 1, column) != '#')) { // a column is one block
        size_t end = row;
        while (at(end, column) == '#') ++end;
        add(Kind::kSolid, column, row, kCell, static_cast<int>(end - row) * kCell);
      } else if (letter == '=' && (column == 0 || at(row, column - 1) != '=')) { // a row is one top
        size_t end = column;
        while (at(row, end) == '=') ++end;
        add(Kind::kTop, column, row, static_cast<int>(end - column) * kCell, 5);
      } else if (letter == '|') {
        add(Kind::kClimb, column, row, kCell, kCell);
      } else if (letter == '%') {
        add(Kind::kNet, column, row, kCell, kCell);
      } else if (letter == '/' || letter == '\\' || letter == 'K' || letter == 'L') {
        add(Kind::kSlope, column, row, Wide(letter) ? 32 : 16, 16, letter);
      } else if (letter >= 'M' && letter <= 'P') {
        add(Kind::kSolid, column, row, Wide(letter) ? 32 : 16, 16, letter);
      }
    }
  if (settings.water > 0) {
    const int top = world.height - settings.water * kCell + 1;
    world.boxes.push_back(
        {Kind::kWater, 0, top, world.width * kCell - 1, top + world.height * kCell - 1, ' ', top});
  }
  return world;
}

// ---- the shapes ----

HeroModel::Bounds HeroModel::BoxAt(double atX, double atY) const {
  const int left = Whole(atX - 5), top = Whole(atY + (smallMask ? 16 : 5));
  return {left, top, left + 9, top + (smallMask ? 15 : 26)};
}

bool HeroModel::Pixel(const ModelBox& box, int px, int py) const {
  return Filled(box.shape, px - box.left, py - box.top);
}

bool HeroModel::Hit(std::initializer_list<Kind> kinds, double l, double t, double r, double b,
                    bool precise) const {
  const float left = static_cast<float>(l), top = static_cast<float>(t); // questions are asked in floats
  const float right = static_cast<float>(r), bottom = static_cast<float>(b);
  for (const ModelBox& box : m_world.boxes) {
    if (std::find(kinds.begin(), kinds.end(), box.kind) == kinds.end()) continue;
    if (left >= static_cast<float>(box.right + 1) || right < static_cast<float>(box.left) ||
        top >= static_cast<float>(box.bottom + 1) || bottom < static_cast<float>(box.top))
      continue;
    if (!precise || box.shape == ' ') return true;
    for (int px = std::max(Whole(left), box.left); px <= std::min(Whole(right), box.right); ++px)
      for (int py = std::max(Whole(top), box.top); py <= std::min(Whole(bottom), box.bottom); ++py)
        if (Pixel(box, px, py)) return true;
  }
  return false;
}

bool HeroModel::Point(std::initializer_list<Kind> kinds, double atX, double atY, bool precise) const {
  return Hit(kinds, atX, atY, atX, atY, precise);
}

// The hero's box put at a place against the boxes; slopes and ceiling slopes are not asked for.
bool HeroModel::Overlaps(std::initializer_list<Kind> kinds, double atX, double atY) const {
  const Bounds box = BoxAt(atX, atY);
  return Hit(kinds, box.left, box.top, box.right, box.bottom, false);
}

bool HeroModel::TopAt(double l, double t, double r, double b) const {
  return Hit({Kind::kSolid, Kind::kTop}, l, t, r, b, false);
}
bool HeroModel::SlopeAt(double l, double t, double r, double b) const {
  return Hit({Kind::kSlope}, l, t, r, b, true);
}
bool HeroModel::SolidAt(double l, double t, double r, double b) const {
  return Hit({Kind::kSolid}, l, t, r, b, true);
}

bool HeroModel::RightWall() const {
  const Bounds box = Box();
  return SolidAt(box.right, box.top + 4, box.right + 1, box.bottom - 1);
}
bool HeroModel::LeftWall() const {
  const Bounds box = Box();
  return SolidAt(box.left - 1, box.top + 4, box.left, box.bottom - 1);
}
bool HeroModel::Footing() const {
  const Bounds box = Box();
  const int row = box.bottom + 1;
  return TopAt(box.left, row, box.right, row) || SlopeAt(box.left, row, box.right, row);
}

// ---- a frame ----

void HeroModel::TakeOver(const Stage& stage) {
  const auto hero = [&](std::string_view name) { return stage.Real("obj_tovin", name); };
  const auto manager = [&](std::string_view name) { return stage.Real("obj_levelmanager", name); };
  x = static_cast<float>(hero("x"));
  y = static_cast<float>(hero("y"));
  hspeed = static_cast<float>(hero("hspeed"));
  vspeed = static_cast<float>(hero("vspeed"));
  gravity = static_cast<float>(hero("gravity"));
  imageSpeed = static_cast<float>(hero("image_speed"));
  state = hero("state");
  direct = hero("direct");
  jumpnow = hero("jumpnow");
  skidnow = hero("skidnow");
  isswim = hero("isswim");
  isduck = hero("isduck");
  netsmack = hero("netsmack");
  isslip = hero("isslip");
  disablecontrols = hero("disablecontrols");
  walljump = hero("walljump");
  doublejump = hero("doublejump");
  statedelay = hero("statedelay");
  hitpoint = hero("hitpoint");
  holding = hero("holding");
  iamkicking = hero("iamkicking");
  smallMask = stage.Text("obj_tovin", "mask_index") == "spr_smallmask";
  const std::string sprite = stage.Text("obj_tovin", "sprite_index");
  pose = sprite.substr(sprite.rfind('_') + 1);
  powerup = static_cast<int>(stage.Global("powerup"));
  pmeter = manager("pmeter");
  slowdown = manager("slowdown");
  alarm4 = static_cast<int>(hero("alarm[4]"));
  alarm5 = static_cast<int>(hero("alarm[5]"));
  alarm6 = static_cast<int>(hero("alarm[6]"));
  meterAlarm = static_cast<int>(manager("alarm[7]"));
  fullAlarm = static_cast<int>(manager("alarm[8]"));
  blinkAlarm = static_cast<int>(manager("alarm[9]"));
}

void HeroModel::Frame(std::string_view keys) {
  m_before = m_keys;
  m_keys = keys;
  sounds.clear();
  marks.clear();
  Alarms();

  Tops();
  Slopes();
  if (!Same(isswim, 0))
    Water();
  else if (Same(state, 3))
    Climbing();
  else if (Same(state, 4))
    Clinging();
  else
    Land();
  if (slides) return;
  Walls();

  // Ducking.
  Bounds box = Box();
  if (state == 3 || state == 4) {
    isduck = 0;
  } else if (state != 2 && disablecontrols == 0) {
    if (Held('D') && holding == 0)
      isduck = 1;
    else if (!Held('D') && !SolidAt(box.left, box.top - 16, box.right, box.top))
      isduck = 0;
  }

  // Into water.
  if (isswim == 0 && Overlaps({Kind::kWater}, x, y)) {
    isswim = 1;
    if (Point({Kind::kWater}, x, y + 33, false) && !Point({Kind::kWater}, x, y, false)) {
      vspeed = 0;
      marks.push_back({"obj_smoke", "spr_splash", x - 8.0, y + 17.0});
    }
    if (state > 2) state = 2;
  }

  // Bounds of the room.
  box = Box();
  if (Below(y + 96.0, 0))
    y = -96;
  else if (box.top > m_world.height)
    dies = true;
  if (dies) return;

  // Motion. The pull of gravity leaves a trace along x, as its direction is an angle in floats.
  if (gravity != 0) {
    const float downwards = static_cast<float>(270 * 3.1415927410125732 / 180);
    hspeed =
        static_cast<float>(hspeed + static_cast<double>(static_cast<float>(std::cos(downwards))) * gravity);
    vspeed =
        static_cast<float>(vspeed - static_cast<double>(static_cast<float>(std::sin(downwards))) * gravity);
  }
  x = static_cast<float>(double{x} + hspeed);
  y = static_cast<float>(double{y} + vspeed);

  // Held inside the view, which stands at the room's edge whenever the hero is near it.
  Pose();
  if (Below(x, 5)) {
    x = 5;
    if (Below(hspeed, 0)) hspeed = 0;
  } else if (Above(x, m_world.width - 5)) {
    x = static_cast<float>(m_world.width - 5);
    if (Above(hspeed, 0)) hspeed = 0;
  }
}

void HeroModel::Alarms() {
  const auto rings = [](int& alarm) { return alarm >= 0 && --alarm == 0; };
  if (rings(alarm4)) netsmack = 0;
  if (rings(alarm5)) {
    if (skidnow == 1) {
      const bool ahead = (direct == 1 && state != 4) || (direct == -1 && state == 4);
      marks.push_back({"obj_smoke", "spr_skidsmoke", x + (ahead ? 1.0 : -8.0), y + 24.0});
    }
    alarm5 = 8;
  }
  if (rings(alarm6)) iamkicking = 0;
  Meter();
}

void HeroModel::Meter() {
  const auto rings = [](int& alarm) { return alarm >= 0 && --alarm == 0; };
  const bool fast = Above(std::fabs(hspeed), 2.8);
  const auto drop = [&] {
    pmeter = 5;
    meterAlarm = 15;
  };
  if (rings(meterAlarm)) {
    if (fast && state == 1)
      pmeter += pmeter < 6 ? 1 : 0;
    else if (pmeter > 0 && slowdown == 2)
      pmeter -= 1;
    slowdown = slowdown == 2 ? 0 : slowdown + 1;
    if (pmeter == 6) {
      sounds.push_back("snd_pmeter");
      fullAlarm = 300;
      blinkAlarm = 7;
    } else {
      meterAlarm = 15;
    }
  }
  if (rings(fullAlarm) && pmeter > 5) {
    if (fast && state < 2)
      fullAlarm = 100;
    else
      drop();
  }
  if (rings(blinkAlarm)) {
    if (state < 2 && !fast) {
      drop();
    } else if (pmeter > 5) {
      pmeter = pmeter == 6 ? 7 : 6;
      blinkAlarm = 7;
    }
  }
}

void HeroModel::Landed() {
  vspeed = 0;
  gravity = 0;
  if (jumpnow == 2) jumpnow = 0;
  hitpoint = walljump = doublejump = 0;
}

void HeroModel::Tops() {
  if (!Above(vspeed, 0)) return;
  const Bounds box = Box();
  for (const ModelBox& top : m_world.boxes) { // of several, at most one is fit to stand on
    if (top.kind != Kind::kSolid && top.kind != Kind::kTop) continue;
    if (box.left > top.right || box.right < top.left) continue;
    if (box.bottom > top.bottom ||
        static_cast<float>(box.bottom + double{vspeed}) < static_cast<float>(top.top))
      continue;
    if (box.bottom >= top.origin + 5) continue;
    if (SolidAt(box.left, box.top + 4, box.right, top.origin - 1)) continue;
    y = static_cast<float>(top.origin - 32);
    Landed();
    return;
  }
}

void HeroModel::Slopes() {
  Bounds box = Box();
  if (state == 1 && SlopeAt(box.left, box.bottom, box.right, box.bottom + 4) &&
      !SlopeAt(box.left, box.bottom - 4, box.right, box.bottom - 4)) {
    y += 4;
    box = Box();
  }
  if (!SlopeAt(box.left, box.bottom - 4, box.right, box.bottom)) return;
  if (SlopeAt(box.left, box.bottom - 8, box.right, box.bottom - 8)) return;
  if (Above(vspeed, 0)) Landed();
  if (!Above(vspeed + 0.85, 0)) return;
  while (SlopeAt(box.left, box.bottom - 4, box.right, box.bottom)) {
    y -= 1;
    box = Box();
  }
}

void HeroModel::Friction(double f) {
  if (Above(hspeed, 0))
    hspeed = static_cast<float>(hspeed - f);
  else if (Below(hspeed, 0))
    hspeed = static_cast<float>(hspeed + f);
  if (Below(std::fabs(hspeed), f)) hspeed = 0;
}

void HeroModel::GroundTest() {
  if (Same(gravity, 0) && Footing()) {
    state = Same(hspeed, 0) ? 0 : 1;
    statedelay = 0;
  } else if (statedelay > 4) {
    state = 2;
  } else {
    statedelay += 1;
  }
}

void HeroModel::Land() {
  GroundTest();
  isslip = 0; // no drawing has slippery ground
  if (Above(vspeed, 4)) vspeed = 4;
  const bool controls = disablecontrols == 0;

  if (Pressed('J') && controls && jumpnow == 0 && state < 2) {
    const double pace = std::fabs(hspeed);
    vspeed = Above(pace, 2.8) ? -4.5f : pace <= 1.0 ? -3.85f : -4.05f;
    sounds.push_back("snd_jump");
    jumpnow = 1;
    state = 2;
  }
  if (Released('J') && jumpnow == 1) jumpnow = 2;

  if (isduck == 1 && state != 2) {
    Friction(0.05);
  } else {
    const double way = Alone('R', 'L') ? 1 : Alone('L', 'R') ? -1 : 0;
    if (way != 0 && controls) {
      if (Below(hspeed * way, 3)) {
        if (Below(hspeed * way, 0)) hspeed = static_cast<float>(hspeed + 0.075 * way);
        hspeed = static_cast<float>(hspeed + 0.06 * way);
      }
      if (walljump == 0) direct = way;
    } else if (disablecontrols == 1) {
      Friction(0.135);
    } else if (state != 2) {
      Friction(0.05);
    }
    if (state != 2 && Above(std::fabs(hspeed), 3)) Friction(0.025);
  }

  if (state == 2 || statedelay > 0) {
    const bool floats = !Above(vspeed, -1) && jumpnow == 1;
    gravity = floats ? 0.1f : 0.3f;
    if (!floats && jumpnow == 1) jumpnow = 2;
  }

  if (Overlaps({Kind::kClimb, Kind::kNet}, x, y) && (Held('U') || (Held('D') && state == 2)) &&
      holding == 0 && controls) {
    state = 3;
    gravity = hspeed = vspeed = 0;
    walljump = doublejump = 0;
  }

  const Bounds box = Box();
  if (Pressed('D') && controls && holding == 0 &&
      Point({Kind::kSlope}, box.right, box.bottom + 1, true) !=
          Point({Kind::kSlope}, box.left, box.bottom + 1, true)) {
    slides = true;
    return;
  }

  if (state == 2 && jumpnow != 1 && doublejump == 0 && controls && Pressed('J') &&
      (powerup == 5 || powerup == 6)) {
    doublejump = 1;
    vspeed = -3.85f;
    jumpnow = 1;
    sounds.insert(sounds.end(), {"snd_jump", "snd_stomp"});
    marks.push_back({"obj_spinthump", "", x, y + 32.0});
  }

  if (state == 2 && isduck == 0 && controls && powerup <= 2 && Above(vspeed, 0) && holding == 0 &&
      ((Held('R') && direct == 1 && RightWall()) || (Held('L') && direct == -1 && LeftWall()))) {
    state = 4;
    vspeed = gravity = 0;
    direct = -direct;
    walljump = 1;
  }
}

void HeroModel::Water() {
  GroundTest();
  gravity = 0.125f;
  if (Above(vspeed, 1.5)) vspeed = 1.5f;
  const bool controls = disablecontrols == 0;
  if (Pressed('J') && controls) {
    vspeed = Held('U') ? -3.5f : Held('D') && isduck == 0 ? -1.0f : -2.5f;
    sounds.push_back("snd_swim");
    state = 2;
  }
  const double way = Alone('R', 'L') ? 1 : Alone('L', 'R') ? -1 : 0;
  if (way != 0 && controls && (isduck == 0 || state == 2)) {
    if (Below(hspeed * way, 0)) hspeed = static_cast<float>(hspeed + 0.075 * way);
    hspeed = static_cast<float>(hspeed + 0.06 * way);
    direct = way;
  } else {
    Friction(0.05);
  }
  const float limit = state == 2 ? 1.5f : 0.5f;
  if (Above(std::fabs(hspeed), limit)) hspeed = std::copysign(limit, hspeed);
  if (!Overlaps({Kind::kWater}, x, y)) {
    isswim = jumpnow = walljump = doublejump = 0;
    if (Overlaps({Kind::kWater}, x, y + 2.0)) marks.push_back({"obj_smoke", "spr_splash", x - 8.0, y + 17.0});
  }
}

void HeroModel::Climbing() {
  const auto climbable = [&] { return Overlaps({Kind::kClimb, Kind::kNet}, x, y); };
  if (disablecontrols != 0) {
    hspeed = vspeed = 0;
  } else {
    hspeed = Alone('L', 'R') ? -1.0f : Alone('R', 'L') ? 1.0f : 0.0f;
    if (hspeed != 0) direct = hspeed;
    vspeed = Alone('U', 'D') ? -1.0f : Alone('D', 'U') ? 1.0f : 0.0f;
    if (Pressed('J')) {
      vspeed = -3.75f;
      sounds.push_back("snd_jump");
      jumpnow = 1;
      state = 2;
    }
  }
  if (!climbable() || Footing()) {
    state = 0;
    jumpnow = 0;
  }
  if (Pressed('A') && Overlaps({Kind::kNet}, x, y)) {
    netsmack = 1;
    alarm4 = 2;
    sounds.push_back("snd_bump");
  }
}

void HeroModel::Clinging() {
  const bool ends = direct == -1 ? Held('L') || !RightWall() : Held('R') || !LeftWall();
  if (ends || Footing()) {
    state = 2;
    jumpnow = 0;
    return;
  }
  vspeed = 1;
  if (!Pressed('J') || disablecontrols != 0) return;
  vspeed = -3.75f;
  jumpnow = 1;
  state = 2;
  sounds.insert(sounds.end(), {"snd_jump", "snd_stomp"});
  marks.push_back({"obj_spinthump", "", x, y + 32.0});
  hspeed = static_cast<float>(3 * direct);
}

void HeroModel::Walls() {
  const auto column = [&](bool right) {
    const Bounds box = Box();
    const int at = right ? box.right : box.left;
    return SolidAt(at, box.top + 4, at, box.bottom - 1) && !Point({Kind::kSolid}, x, box.top + 4, false);
  };
  if (Above(hspeed, 0) && RightWall()) {
    hspeed = 0;
    while (column(true)) x -= 1;
  }
  if (Below(hspeed, 0) && LeftWall()) {
    hspeed = 0;
    while (column(false)) x += 1;
  }
  const auto row = [&](int below) {
    const Bounds box = Box();
    return SolidAt(box.left, box.top + below, box.right, box.top + below);
  };
  if (Below(vspeed, 0) && row(0)) {
    if (state > 1)
      while (row(1)) y += 1;
    vspeed = 0;
    if (state < 3) {
      sounds.push_back("snd_bump");
      jumpnow = 2;
    }
  }
}

void HeroModel::Pose() {
  const double pace = std::fabs(hspeed);
  const bool full = pmeter >= 6;
  const auto skid = [&] {
    pose = "skid";
    if (skidnow != 0) return;
    skidnow = 1;
    sounds.push_back("snd_skid");
  };
  smallMask = isduck == 1;
  if (isduck == 1) {
    pose = "duck";
  } else {
    if (state == 0) imageSpeed = 0;
    if (state == 1) imageSpeed = static_cast<float>(pace / 10);
    if (holding != 0) {
      if (state == 2) imageSpeed = 0;
      pose = "hold";
    } else if (state == 0) {
      pose = "walk";
    } else if (state == 1) {
      if (Below(hspeed * direct, -0.001))
        skid();
      else
        pose = full ? "run" : "walk";
    } else if (state == 2 && isswim != 0) {
      pose = "swim";
      imageSpeed = 0;
    } else if (state == 2) {
      pose = full ? "runjump" : "jump";
    }
    if (state == 3) {
      imageSpeed = std::hypot(hspeed, vspeed) < 0.0001 ? 0.0f : 0.15f;
      pose = "climb";
    }
    if (state == 4) skid();
    if (iamkicking == 1) pose = "kick";
  }
  if (pose != "skid" && skidnow == 1) skidnow = 0;
}

} // namespace vesk
