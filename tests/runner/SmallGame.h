#pragma once
// A small game built in memory: objects whose events are C++ functions, sprites, one or more rooms, steps.
// One lives at a time; everything it touched is reset when it goes.
//
//     SmallGame game;
//     const int coin = game.Object("coin", {.sprite = game.Sprite(16, 16)});
//     game.On(coin, ev_step, ev_step_normal, [](Self self, Self) { Log("step"); });
//     game.Start();
//     const int id = instance_create(10, 20, coin);
//     game.Step(3);
//     EXPECT_EQ(Events(), "step step step");
#include "Files/Code/Self.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_FrameBody.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vesk::test {

// ---- log of the running small game ----

void Log(const std::string& entry);
std::string Events(); // all entries so far, blanks between; empties the log

// ---- the game ----

struct ObjectOptions {
  int32_t sprite = -1;
  int32_t parent = -100;
  int32_t mask = -1;
  int32_t depth = 0;
  bool visible = true, solid = false, persistent = false;
};

class SmallGame {
public:
  using Event = std::function<void(Self self, Self other)>;

  // With one empty room of 640 by 480 at speed 60.
  SmallGame();
  ~SmallGame();
  SmallGame(const SmallGame&) = delete;
  SmallGame& operator=(const SmallGame&) = delete;

  // ---- before Start ----

  // A sprite without pages: its box is the whole frame, its masks are all set unless `mask` gives them (one
  // byte a pixel, row after row, one frame).
  int32_t Sprite(int32_t width, int32_t height, int32_t frames = 1, int32_t originX = 0, int32_t originY = 0);
  int32_t PreciseSprite(int32_t width, int32_t height, const std::vector<uint8_t>& mask, int32_t originX = 0,
                        int32_t originY = 0);
  int32_t Object(const std::string& name, const ObjectOptions& options = {});
  void On(int32_t object, int32_t type, int32_t subtype, Event event);
  CRoom& AddRoom(const std::string& name, int32_t width = 640, int32_t height = 480); // a template
  CRoom& RoomTemplate(int32_t room) { return *Rooms().templates[static_cast<size_t>(room)]; }
  // An instance that the room makes; returns its id.
  int32_t Place(int32_t room, int32_t object, int32_t x, int32_t y);
  // Code for InstanceTemplate::creationCode, CRoom::creationCode and the like.
  std::shared_ptr<CCode> Code(Event event);

  // ---- running ----

  void Start();             // builds the event lists and starts the first room
  void Step(int count = 1); // frame bodies; room requests are acted on as the frame function does
  void Body();              // one frame body; a request stays in Rooms().request
  StepInput input;          // what the next steps see; pressed and released entries are cleared after each

  // What DrawScreen would be; null by default.
  void OnDraw(void (*draw)()) { FrameBody().services.drawScreen = draw; }

private:
  void ActOnRequest();
};

} // namespace vesk::test
