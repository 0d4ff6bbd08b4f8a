#pragma once
// A level drawn in a test and played without a window: one letter is one 16-pixel cell.
//
//   #  block               =  one-way top        |  climbable          %  climbing net
//   /  gentle slope up     \  gentle slope down  (two cells wide: the second is a '.')
//   K  steep slope up      L  steep slope down   M N O P  ceiling slopes, as in the collision table
//   G H  hurting blocks    S  where the hero starts (the upper cell of its two)
//
// A drawing smaller than the view is filled up with air above and to the right.
#include "sim/Simulation.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

class CInstance;

using Rows = std::vector<std::string>;

struct LevelSettings {
  std::string hero = "Durian"; // the code that stands at S
  std::string music = "Sick", background = "Wall", waterColor = "Red";
  int water = 0; // cells above the bottom
  int rain = 0, darkness = 0;
  std::map<std::string, std::string> objects, markers, modifiers; // "cx,cy" to code, beside what is drawn
};

// The drawing with its air: at least 24 columns and 14 rows.
Rows Framed(const Rows& rows);
std::string SectionText(const Rows& rows, const LevelSettings& settings = {});
std::string LevelText(const Rows& rows, const LevelSettings& settings = {});

// A pixel of the window, each channel 0 to 255.
struct Pixel {
  int red = 0, green = 0, blue = 0;
};

class Stage {
public:
  // Plays the drawing to the first frame in which the hero can move.
  explicit Stage(const Rows& rows, const LevelSettings& settings = {}, int32_t seed = 1,
                 bool pictures = false);
  // A started game with no level. With pictures a frame is drawn where Draw says so.
  explicit Stage(int32_t seed = 1, bool pictures = false);
  ~Stage();

  Simulation& Game() { return *m_game; }
  void WriteLevel(const std::string& name, const std::string& text) const;
  std::string ReadLevel(const std::string& name) const;
  std::string LevelFile(const std::string& name) const;

  void Step(int64_t frames = 1) { m_game->Step(frames); }
  // Runs frames and draws the last one.
  void Draw(int64_t frames = 1);
  void Hold(std::string_view keys); // of L R U D J A; what isn't named is let go
  // Until the hero stands still on the ground.
  void Settle();

  // Of the oldest live active instance; a failure of the test when there is none.
  double Real(std::string_view object, std::string_view variable) const;
  std::string Text(std::string_view object, std::string_view variable) const;
  double Global(std::string_view variable) const;
  std::string GlobalText(std::string_view variable) const;
  size_t Count(std::string_view object) const;
  // Of the frame drawn last, in view pixels. Bloom and waves are left out.
  Pixel At(int x, int y) const;
  std::vector<CInstance*> All(std::string_view object) const;
  void Set(std::string_view object, std::string_view variable, double value);
  void SetGlobal(std::string_view variable, double value);
  void SetGlobal(std::string_view variable, const std::string& value);

private:
  std::unique_ptr<Simulation> m_game;
  std::string m_held;
};

double RealOf(CInstance* instance, std::string_view variable);
std::string TextOf(CInstance* instance, std::string_view variable); // names for sprites and masks

} // namespace vesk
