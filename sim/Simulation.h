#pragma once
// The whole game without a window, on a virtual clock, driven frame by frame.
#include "Files/Code/Code.h"
#include "Platform/HandDriven.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct SimulationSettings {
  std::string directory; // the game's, where Level/ and Settings.dat stand; empty: a fresh temporary one
  int32_t seed = 1;      // what randomize seeds with
  std::span<const uint8_t> container; // copied, so that each run starts from the same bytes
  std::string containerFile;          // read in its place when named
  bool remarks = false; // what the game says while it runs, as of things with no rules yet, to standard error
  bool pictures = false; // draw every frame, so that its picture can be had; else drawing is only counted
};

// One at a time: the runner's state is the process's. The destructor ends the game in the ordinary order.
class Simulation {
public:
  explicit Simulation(const SimulationSettings& settings);
  ~Simulation();
  Simulation(const Simulation&) = delete;
  Simulation& operator=(const Simulation&) = delete;

  // The program as a player starts it, in its first room, with the mouse in the middle. "" or, in words, why
  // it can't run.
  std::string Start();
  bool Running() const;
  // Frames run since the start.
  int64_t Frame() const { return m_frame; }
  // Runs frames until the count or the end of the game.
  void Step(int64_t frames = 1);
  // With pictures: whether the frames that follow are drawn. What was drawn before stays.
  void DrawPictures(bool draw) { m_blind = !draw; }
  // Called after every frame, until it is forgotten by the number that it was given.
  size_t OnFrame(std::function<void()> watcher) {
    m_watchers.push_back(std::move(watcher));
    return m_watchers.size() - 1;
  }
  void ForgetWatcher(size_t number) { m_watchers[number] = nullptr; }

  // The starts that skip the logos; each gives "" or what is wrong.
  std::string Play(const std::string& file,
                   const std::string& section); // to the first frame of a hero that can move
  std::string Edit(const std::string& file,
                   const std::string& section); // to the editor, with no fade running
  std::string New(const std::string& level);
  std::string Room(const std::string& name);

  // Input arrives before the next frame. The mouse is at a point of the 384 by 216 view.
  void Key(int key, bool down) { m_platform.messages.Key(key, down); }
  void Type(char character); // a key press with its character; takes a frame
  void Mouse(double viewX, double viewY);
  void Button(int button, bool down) { m_platform.messages.Button(button, down); }
  void Wheel(bool up) { m_platform.messages.Wheel(up ? 120 : -120); }

  // Opens an input record to take the place of keys and mouse; `frames` is its length. "" or what is wrong.
  std::string BeginPlayback(const std::string& file, int64_t& frames);
  void EndPlayback();
  // Writes an input record from the next frame on; "" ends it.
  std::string Record(const std::string& file);
  std::string FullName(const std::string& file) const; // a file named from where the run began

  CHandDrivenPlatform& Devices() { return m_platform; }
  const std::string& Directory() const { return m_directory; }
  // Error reports that ended the game, whole; empty while all is well.
  std::string FatalReport() const;

private:
  void WaitForFade();

  SimulationSettings m_settings;
  CHandDrivenPlatform m_platform;
  std::vector<uint8_t> m_container;
  std::string m_directory;
  std::string m_startDirectory; // where relative names of files begin
  bool m_ownsDirectory = false;
  bool m_started = false;
  bool m_blind = false;
  int64_t m_frame = 0;
  std::vector<std::function<void()>> m_watchers;
};

} // namespace vesk
