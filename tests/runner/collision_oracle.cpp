// The grid against the plain walks: random worlds, random changes, random queries; every answer must be
// equal.
#include "Files/Object/Function_Collision.h"
#include "tests/runner/collision_world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include <chrono>
#include <random>

namespace vesk {
namespace {

// A room full of different shapes, the same for the same seed.
class RandomWorld {
public:
  explicit RandomWorld(uint32_t seed, int32_t population) : m_random(seed), m_world(2000, 1500) {
    for (int i = 0; i < 4; ++i) m_sprites.push_back(m_world.Sprite(Number(1, 40), Number(1, 40)));
    const int32_t offset = m_world.Sprite(32, 32);
    m_world.At(offset).left = 5;
    m_world.At(offset).bottom = 20;
    m_world.At(offset).originX = 16;
    m_sprites.push_back(offset);
    m_sprites.push_back(m_world.Masked(4, {"#...", "##..", "###.", "####"}));
    m_sprites.push_back(m_world.Masked(9, {"#.......#", "...###...", "#.......#", "#...#...#", "........."}));
    m_sprites.push_back(m_world.Sprite(24, 10, SpriteKind::kRotatedRectangle));
    m_sprites.push_back(m_world.Sprite(16, 16, SpriteKind::kPrecise)); // without masks
    m_sprites.push_back(m_world.Sprite(16, 16, SpriteKind::kRectangle, 0));
    m_sprites.push_back(-1);
    const int32_t parents[] = {-1, 0, 1, 0, -1, 4};
    for (const int32_t parent : parents)
      m_objects.push_back(m_world.Object(Pick(m_sprites), parent, Number(-2, 2)));
    for (int32_t i = 0; i < population; ++i) Change(Create());
  }

  int32_t Number(int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(m_random);
  }
  float Real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_random); }
  bool Chance(int percent) { return Number(1, 100) <= percent; }
  template <class T> const T& Pick(const std::vector<T>& from) {
    return from[static_cast<size_t>(Number(0, static_cast<int32_t>(from.size()) - 1))];
  }

  // Whole, half and odd places; mostly crowded together.
  float Place(float extent) {
    const float at = Chance(3) ? Real(-6e6f, 6e6f) : Chance(70) ? Real(0, extent / 4) : Real(-100, extent);
    return Chance(60) ? std::round(at) : Chance(50) ? std::floor(at) + 0.5f : at;
  }
  CInstance& Create() {
    CInstance& it = m_world.Add(Pick(m_objects), Place(2000), Place(1500));
    m_ids.push_back(it.id);
    return it;
  }
  CInstance* Any() {
    for (int tries = 0; tries < 8 && !m_ids.empty(); ++tries)
      if (CInstance* it = Instance_Find(Pick(m_ids))) return it;
    return nullptr;
  }
  void Change(CInstance& it) {
    switch (Number(0, 12)) {
    case 0: it.SetImageXScale(Chance(50) ? -1.0f : Chance(10) ? 0.0f : Real(-3, 60)); break;
    case 1: it.SetImageYScale(Chance(50) ? -1.0f : Chance(10) ? 0.0f : Real(-3, 60)); break;
    case 2: it.SetImageAngle(Chance(50) ? 0 : Real(0, 360)); break;
    case 3: it.SetMaskIndex(Chance(50) ? -1 : Pick(m_sprites)); break;
    case 4: it.SetSpriteIndex(Pick(m_sprites)); break;
    case 5: it.imageIndex = Real(-3, 3); break;
    case 6: it.SetDepth(static_cast<float>(Number(-2, 2))); break;
    case 7: it.solid = !it.solid; break;
    default: it.SetPosition(Place(2000), Place(1500));
    }
  }
  // What events do to a world; `bookkeeping` is what happens between passes.
  void Disturb(bool bookkeeping) {
    if (CInstance* it = Any()) Change(*it);
    if (CInstance* it = Any(); it && Chance(8)) {
      it->deactivated = !it->deactivated;
      NoteDeactivation(it);
    }
    if (CInstance* it = Any(); it && Chance(3)) {
      MarkInstance(it);
      Create();
    }
    if (bookkeeping && Chance(20)) CleanUpInstances();
    if (bookkeeping && Chance(10)) RemoveMarked();
    if (bookkeeping && m_ids.size() > 2000)
      std::erase_if(m_ids, [](int32_t id) { return !Instance_Find(id); });
  }
  int32_t Target() {
    if (Chance(70)) return Pick(m_objects);
    if (Chance(60)) return all;
    if (Chance(80)) return Pick(m_ids);
    return Number(-7, -1);
  }
  const std::vector<int32_t>& objects() const { return m_objects; }

private:
  std::mt19937 m_random;
  CollisionWorld m_world;
  std::vector<int32_t> m_sprites, m_objects;
  std::vector<int32_t> m_ids;
};

struct Answer {
  CInstance* first;
  std::vector<CInstance*> every;
  bool operator==(const Answer&) const = default;
};

struct Question {
  int32_t target;
  int kind; // a figure's, or a place (4), free of solids (5), of all (6)
  float x1, y1, x2, y2;
  bool precise;
  CInstance* self;
  bool listed;

  Answer Ask() const {
    Answer answer{};
    const Figure figure{
        static_cast<Figure::Kind>(kind & 3), x1, y1, kind == 0 ? x1 : x2, kind == 0 ? y1 : y2, precise};
    if (kind < 4) {
      answer.first = FirstHit(target, figure, self);
      if (listed) AllHits(target, figure, self, answer.every);
    } else if (kind == 4) {
      answer.first = InstanceAt(*self, x1, y1, target);
      if (listed) InstanceAt(*self, x1, y1, target, &answer.every);
    } else {
      answer.first = PlaceIsFree(*self, x1, y1, kind == 5) ? self : nullptr;
    }
    return answer;
  }
};

TEST(CollisionOracle, TheGridAnswersAsTheWalk) {
  constexpr int kQueries = 1000000;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  int asked = 0, hits = 0;
  for (uint32_t seed = 1; asked < kQueries && std::chrono::steady_clock::now() < end; ++seed) {
    RandomWorld world(seed, seed % 4 == 0 ? 12 : 100);
    for (int round = 0; round < 2500; ++round) {
      world.Disturb(true);
      for (int i = 0; i < 10; ++i, ++asked) {
        Question q{world.Target(),   world.Number(0, 6), world.Place(2000), world.Place(1500), 0, 0,
                   world.Chance(70), world.Any(),        world.Chance(30)};
        const float size = world.Chance(10) ? 3000.0f : 60.0f;
        q.x2 = world.Chance(30) ? std::round(q.x1 + world.Real(-size, size)) : q.x1 + world.Real(-size, size);
        q.y2 = world.Chance(30) ? std::round(q.y1 + world.Real(-size, size)) : q.y1 + world.Real(-size, size);
        if (q.kind < 4 && world.Chance(50)) q.self = nullptr;
        if (q.kind >= 4 && !q.self) q.kind = 0;
        CollisionIndex().enabled = true;
        const Answer grid = q.Ask();
        CollisionIndex().enabled = false;
        const Answer walk = q.Ask();
        ASSERT_EQ(grid, walk) << "seed " << seed << " round " << round << " kind " << q.kind << " target "
                              << q.target << " at " << q.x1 << "," << q.y1 << " to " << q.x2 << "," << q.y2;
        hits += walk.first != nullptr;
      }
    }
    CollisionIndex().enabled = true;
  }
  RecordProperty("queries", asked);
  EXPECT_GT(asked, 20000);
  EXPECT_GT(hits, asked / 10); // or the worlds are too empty to prove anything
  EXPECT_LT(hits, asked / 10 * 9);
}

// One collision pass whose events disturb the world; the pairs that met, in order.
std::vector<std::pair<int32_t, int32_t>> MeetingsOf(uint32_t seed, bool grid) {
  RandomWorld world(seed, 120);
  CollisionIndex().enabled = grid;
  std::vector<std::pair<int32_t, int32_t>> met;
  for (int pass = 0; pass < 6; ++pass) {
    for (const int32_t a : world.objects())
      for (const int32_t b : world.objects()) {
        if (a > b) continue;
        const uint64_t limit = Rooms().passCounter++;
        ForEachCollidingPair(CollisionWorld::Pair(a, b), limit, [&](CInstance& first, CInstance& second) {
          met.emplace_back(first.id, second.id);
          if (world.Chance(40)) world.Disturb(false);
          if (world.Chance(30)) world.Change(first);
          if (world.Chance(30)) world.Change(second);
          if (world.Chance(20)) // onto another one, so that new meetings lie ahead and behind
            if (const CInstance* it = world.Any()) second.SetPosition(it->x, it->y);
          if (world.Chance(50)) collision_point(&first, first.x, first.y, a, true, true);
        });
        CleanUpInstances();
      }
    RemoveMarked();
  }
  CollisionIndex().enabled = true;
  return met;
}

TEST(CollisionOracle, ThePassMeetsTheSamePairsInTheSameOrder) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(6);
  size_t meetings = 0;
  for (uint32_t seed = 1; seed <= 150 && std::chrono::steady_clock::now() < end; ++seed) {
    const auto walk = MeetingsOf(seed, false), grid = MeetingsOf(seed, true);
    ASSERT_EQ(grid, walk) << "seed " << seed;
    meetings += walk.size();
  }
  EXPECT_GT(meetings, 5000u);
}

TEST(CollisionIndex, ForgetsWhatLeavesAndSurvivesAReset) {
  CollisionWorld world;
  const int32_t object = world.Object(world.Sprite(16, 16));
  std::vector<CInstance*> all;
  for (int i = 0; i < 40; ++i) all.push_back(&world.Add(object, static_cast<float>(i * 20), 0));
  const int32_t last = all.back()->id;
  EXPECT_EQ(collision_point(nullptr, 785, 5, object, false, false), last);
  EXPECT_EQ(CollisionIndex().count, 40);
  all.back()->SetPosition(0, 300);
  MarkInstance(all.back()); // stale when it goes
  RemoveMarked();
  EXPECT_EQ(CollisionIndex().count, 39);
  EXPECT_EQ(collision_point(nullptr, 5, 305, object, false, false), noone);
  CInstance& heir = world.Add(object, 0, 300);
  EXPECT_EQ(collision_point(nullptr, 5, 305, object, false, false), heir.id);
  const size_t slots = CollisionIndex().records.size();
  for (int i = 0; i < 100; ++i) { // places of the gone are used again
    MarkInstance(&world.Add(object, 500, 300));
    RemoveMarked();
    EXPECT_EQ(collision_point(nullptr, 505, 305, object, false, false), noone);
  }
  EXPECT_LE(CollisionIndex().records.size(), slots + 1);
  CollisionIndex_Reset();
  EXPECT_EQ(heir.indexSlot, -1);
  heir.SetPosition(1, 1); // reports to nobody
}

} // namespace
} // namespace vesk
