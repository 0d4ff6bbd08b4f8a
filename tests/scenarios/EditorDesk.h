#pragma once
// The whole game without a window, sat at with mouse and keys as a player does.
#include "game/AssetNames.h"
#include "game/ObjectNames.h"
#include "sim/Simulation.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class CInstance;

enum class Mouse { kLeft = 1, kRight = 2, kMiddle = 3 };
enum KeyCodes : int {
  kKeyEnter = 13,
  kKeyShift = 16,
  kKeyCtrl = 17,
  kKeyAlt = 18,
  kKeyEscape = 27,
  kKeySpace = 32,
  kKeyLeft = 37,
  kKeyUp = 38,
  kKeyRight = 39,
  kKeyDown = 40,
  kKeyBackspace = 8
};

using Cells = std::map<std::string, std::string>; // "cx,cy" to code

class EditorDesk {
public:
  // Started, in the first room. An empty directory is a fresh temporary one.
  explicit EditorDesk(const std::string& directory = "", int32_t seed = 1);
  ~EditorDesk();

  Simulation& Game() { return *m_game; }
  void Step(int64_t frames = 1) { m_game->Step(frames); }
  // Opens a new level in the editor, at its upper left corner with the mouse in the middle.
  void OpenNew(const std::string& level);
  void OpenMenu();
  void Write(const std::string& level, const std::string& text) const;
  std::string Read(const std::string& level) const; // whole; "" when there is none
  std::string Directory() const { return m_game->Directory(); }

  // ---- hands; places are view pixels ----
  void MoveTo(double x, double y);
  void Click(double x, double y, Mouse button = Mouse::kLeft);
  void Down(Mouse button = Mouse::kLeft) { m_game->Button(static_cast<int>(button), true); }
  void Up(Mouse button = Mouse::kLeft) { m_game->Button(static_cast<int>(button), false); }
  void Drag(double x1, double y1, double x2, double y2, Mouse button = Mouse::kLeft);
  void Hold(int key) { m_game->Key(key, true); }
  void Release(int key) { m_game->Key(key, false); }
  void Tap(int key, int64_t frames = 1);
  void Type(const std::string& text);
  // Clicks the button with that tooltip. A failure of the test when there is none.
  void ClickButton(const std::string& tooltip);
  void ClickNotify(const std::string& notify); // the same by what it tells
  // Opens the window of a tool, a tab of it, and takes an entry; "" leaves a step out.
  void Choose(const std::string& tool, const std::string& tab, const std::string& entry);
  // A stamp out of the atlas, in cells that the unscrolled pane shows.
  void ChooseTiles(int column, int row, int columns = 1, int rows = 1, bool background = false);
  // Clicks the middle of a cell of the section; it must be in view and below the toolbar.
  void ClickCell(int cx, int cy, Mouse button = Mouse::kLeft);
  void MoveToCell(int cx, int cy);

  // ---- looking ----
  int RoomNow() const;
  size_t Count(int object) const;
  double Real(int object, const std::string& variable) const;
  std::string Text(int object, const std::string& variable) const;
  double Global(const std::string& variable) const;
  std::string GlobalText(const std::string& variable) const;
  double ViewX() const { return Global("view_xview[0]"); }
  double ViewY() const { return Global("view_yview[0]"); }
  // Of the section that the editor shows.
  Cells Layer(const std::string& layer) const;
  double Setting(const std::string& key) const;
  std::string SettingText(const std::string& key) const;
  std::vector<std::string> Sections() const;
  std::vector<std::string> SoundsStarted() const; // since the last call
  // Fails when the game has reported anything fatal.
  void ExpectHealthy() const;

private:
  CInstance* ButtonWhose(const std::string& variable, const std::string& text) const;
  void ClickOn(CInstance* button);
  std::unique_ptr<Simulation> m_game;
};

} // namespace vesk
