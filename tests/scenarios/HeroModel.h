#pragma once
// A second, small account of how the hero moves, to hold the game's against. It knows nothing of the runner:
// the world is the drawing, a handful of boxes and slope formulas; one call is one frame.
#include "tests/scenarios/Stage.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct ModelBox {
  enum Kind { kSolid, kTop, kSlope, kClimb, kNet, kWater } kind;
  int left, top, right, bottom; // inclusive
  char shape = ' ';             // of a slope or ceiling slope: its letter; else filled
  int origin;                   // the y that counts as the top's
};

struct ModelWorld {
  std::vector<ModelBox> boxes;
  int width = 0, height = 0; // pixels
};
ModelWorld WorldOf(const Rows& rows, const LevelSettings& settings);

struct ModelMark { // smoke and thumps
  std::string object, sprite;
  double x, y;
  bool operator==(const ModelMark&) const = default;
};

struct HeroModel {
  explicit HeroModel(const ModelWorld& world) : m_world(world) {}
  void TakeOver(const Stage& stage); // the hero as he is now
  void Frame(std::string_view keys); // of L R U D J A

  float x = 0, y = 0, hspeed = 0, vspeed = 0, gravity = 0, imageSpeed = 0;
  double state = 0, direct = 1, jumpnow = 0, skidnow = 0, isswim = 0, isduck = 0, netsmack = 0, isslip = 0;
  double disablecontrols = 0, walljump = 0, doublejump = 0, statedelay = 0, hitpoint = 0, holding = 0,
         iamkicking = 0;
  bool smallMask = false;
  std::string pose = "walk";
  int powerup = 1;
  double pmeter = 0, slowdown = 0;
  int alarm4 = -1, alarm5 = -1, alarm6 = -1, meterAlarm = -1, fullAlarm = -1, blinkAlarm = -1;

  std::vector<std::string> sounds; // begun in the frame
  std::vector<ModelMark> marks;    // made in the frame
  bool slides = false;             // a slide began: another object leads now
  bool dies = false;               // fell out of the room

private:
  struct Bounds {
    int left, top, right, bottom;
  };
  Bounds Box() const { return BoxAt(x, y); }
  Bounds BoxAt(double atX, double atY) const;
  bool Hit(std::initializer_list<ModelBox::Kind> kinds, double l, double t, double r, double b,
           bool precise) const;
  bool Point(std::initializer_list<ModelBox::Kind> kinds, double atX, double atY, bool precise) const;
  bool Overlaps(std::initializer_list<ModelBox::Kind> kinds, double atX, double atY) const;
  bool Pixel(const ModelBox& box, int px, int py) const;
  bool TopAt(double l, double t, double r, double b) const;
  bool SlopeAt(double l, double t, double r, double b) const;
  bool SolidAt(double l, double t, double r, double b) const;
  bool RightWall() const;
  bool LeftWall() const;
  bool Footing() const;

  void Alarms();
  void Tops();
  void Slopes();
  void Landed();
  void GroundTest();
  void Land();
  void Water();
  void Climbing();
  void Clinging();
  void Walls();
  void Pose();
  void Meter();
  void Friction(double f);

  bool Held(char key) const { return m_keys.find(key) != std::string::npos; }
  bool Pressed(char key) const { return Held(key) && m_before.find(key) == std::string::npos; }
  bool Released(char key) const { return !Held(key) && m_before.find(key) != std::string::npos; }
  bool Alone(char key, char opposite) const { return Held(key) && !Held(opposite); }

  const ModelWorld& m_world;
  std::string m_keys, m_before;
};

// Plays the script of keys in the stage and in the model and compares all of the hero in every frame; false,
// with a failure of the test, at the first difference. A script is "R60 RJ12 .40": keys and the number of
// frames they are held.
class Duel {
public:
  Duel(const Rows& rows, const LevelSettings& settings = {}, bool settled = true);
  bool Play(std::string_view script);
  bool PlayFrame(const std::string& keys);

  Stage& Game() { return m_stage; }
  HeroModel& Hero() { return m_model; }
  void Resume() { m_model.TakeOver(m_stage); } // after the test has changed something in the game
  // What the frames since the last call showed.
  struct Seen {
    double lowestY = 1e9, highestY = -1e9, fastest = 0; // y of the highest and of the lowest place
    std::vector<double> states;                         // each value once, in order
    std::vector<std::string> sounds;
    std::vector<std::string> poses; // each once, in order
    bool state(double value) const;
    bool pose(std::string_view name) const;
    int heard(std::string_view sound) const;
  };
  Seen Take();

private:
  Stage m_stage;
  ModelWorld m_world;
  HeroModel m_model;
  Seen m_seen;
  int64_t m_frame = 0;
  int32_t m_newestId = 0;
};

} // namespace vesk
