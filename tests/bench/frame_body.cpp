// What a frame of the world costs: instances without handlers, drawn and not, sleeping and waking, births and
// deaths.
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/Object/CollisionIndex.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Sprite/Sprite.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <utility>

namespace vesk {
namespace {

// One object with a sprite of four frames, and a room full of its instances.
class FullRoom {
public:
  explicit FullRoom(int64_t instances) {
    Clear();
    auto sprite = std::make_unique<CSprite>();
    sprite->index = 0;
    sprite->width = sprite->height = 16;
    sprite->right = sprite->bottom = 15;
    sprite->frames.resize(4);
    Sprites().table.push_back(std::move(sprite));
    Object_Add("block").spriteIndex = 0;
    BuildEventLists();
    Rooms().templates.push_back(std::make_unique<CRoom>());
    Rooms().templates.back()->index = 0;
    Rooms().templates.back()->width = Rooms().templates.back()->height = 1600;
    Rooms().order = {0};
    Room_StartGame();
    for (int64_t i = 0; i < instances; ++i)
      instance_create(static_cast<float>(i % 100 * 16), static_cast<float>(i / 100 * 16), 0);
  }
  ~FullRoom() { Clear(); }

private:
  static void Clear() {
    Run_ResetEvents();
    Room_Reset();
    CollisionIndex_Reset();
    Object_Reset();
    Sprite_Reset();
  }
};

// The same with a picture for the sprite, on a device that draws nothing.
class DrawnRoom {
public:
  explicit DrawnRoom(int64_t instances) : m_room(instances) {
    Graphics_Reset();
    GR_D3D_Init(std::make_unique<CRecordingDevice>());
    const std::vector<uint8_t> pixels(size_t{16} * 16 * 4, 255);
    m_picture = Page_OfTexture(
        Texture_CreateFromPixels(16, 16, pixels.data(), static_cast<uint32_t>(pixels.size())), 16, 16);
    for (const PageEntry*& frame : Sprites().table[0]->frames) frame = &m_picture;
    FrameBody().services.drawScreen = &DrawScreen;
  }
  ~DrawnRoom() {
    FrameBody().services = {};
    Graphics_Reset();
  }
  void Frame() {
    BeginFrame();
    RunFrameBody();
    EndFrame(true);
  }

private:
  FullRoom m_room;
  PageEntry m_picture;
};

void FrameOfRestingInstances(benchmark::State& state) {
  FullRoom room(state.range(0));
  for (auto _ : state) RunFrameBody();
}
BENCHMARK(FrameOfRestingInstances)->Arg(1000)->Arg(10000);

void FrameOfRestingInstancesInView(benchmark::State& state) {
  DrawnRoom room(state.range(0));
  for (auto _ : state) room.Frame();
  const auto& device = static_cast<const CRecordingDevice&>(*Graphics().device);
  state.counters["quads_a_frame"] =
      static_cast<double>(device.vertices) / 6 / static_cast<double>(state.iterations());
  state.counters["draw_calls_a_frame"] =
      static_cast<double>(device.draws) / static_cast<double>(state.iterations());
}
BENCHMARK(FrameOfRestingInstancesInView)->Arg(1000)->Arg(10000);

void FrameOfMovingInstances(benchmark::State& state) {
  FullRoom room(state.range(0));
  for (CInstance* it = CurrentRoom()->active.head; it; it = it->next) it->SetHspeed(0.25f);
  for (auto _ : state) RunFrameBody();
}
BENCHMARK(FrameOfMovingInstances)->Arg(10000);

void OneSleepsOrWakesAFrame(benchmark::State& state) {
  FullRoom room(10000);
  const int32_t id = CurrentRoom()->active.head->id;
  bool asleep = false;
  for (auto _ : state) {
    if (std::exchange(asleep, !asleep))
      instance_activate_object(id);
    else
      instance_deactivate_object(id);
    RunFrameBody();
  }
}
BENCHMARK(OneSleepsOrWakesAFrame);

void BirthAndDeathAmongMany(benchmark::State& state) {
  FullRoom room(10000);
  for (auto _ : state) {
    instance_destroy(instance_create(0, 0, 0));
    RemoveMarked();
  }
}
BENCHMARK(BirthAndDeathAmongMany);

} // namespace
} // namespace vesk
