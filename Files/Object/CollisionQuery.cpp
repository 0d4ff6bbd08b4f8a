#include "Files/Object/CollisionQuery.h"

#include "Files/Object/CollisionIndex.h"
#include "Files/Room/Room.h"

#include <cmath>
#include <limits>

namespace vesk {

namespace {

using Record = CollisionIndexState::Record;

constexpr int32_t kShortList = 16;     // a list below this is walked: faster than the grid
constexpr int64_t kShortProduct = 128; // pairs below this are tested one by one
constexpr int64_t kManyCells = 64;     // a figure over more cells walks its list

// ---- the plain walks: what the answers are ----

// Calls visit(instance) for each live candidate in order until it returns true.
template <class Visit> void Walk(int32_t target, Visit visit) {
  if (target == all) {
    CRoom* room = CurrentRoom();
    for (CInstance* i = room ? room->active.head : nullptr; i; i = i->next)
      if (i->Live() && visit(*i)) return;
  } else if (target >= kFirstInstanceId) {
    CInstance* i = Instance_Find(target);
    if (i && i->Live()) visit(*i);
  } else if (CObjectFb* object = target >= 0 ? Object_Find(target) : nullptr) {
    for (InstanceList::Node* n = object->instancesRecursive.head; n; n = n->next)
      if (n->instance->Live() && visit(*n->instance)) return;
  }
}

// ---- the same answers from the grid ----

// The whole pixels that a figure's rectangle can share with boxes. False where the grid doesn't reach: then
// only the walk answers.
bool RegionOf(const Figure& figure, BoundingBox& region) {
  const float left = std::floor(std::min(figure.x1, figure.x2)),
              right = std::floor(std::max(figure.x1, figure.x2));
  const float top = std::floor(std::min(figure.y1, figure.y2)),
              bottom = std::floor(std::max(figure.y1, figure.y2));
  constexpr float kLimit = CollisionIndexState::kLimit;
  // Written so that "not a number" fails; the sum is one exactly when a corner is.
  if (!(left > -kLimit && right < kLimit && top > -kLimit && bottom < kLimit) ||
      std::isnan(figure.x1 + figure.x2 + figure.y1 + figure.y2))
    return false;
  region = {static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right),
            static_cast<int32_t>(bottom)};
  return true;
}

bool StandsUnder(const Record& record, const CObjectFb* object) {
  for (const CObjectFb* o = record.object; o; o = o->parent)
    if (o == object) return true;
  return false;
}

// Position of an instance in the list that a target walks.
struct Order {
  float depth;
  uint64_t serial;
  bool operator<(const Order& o) const { return depth != o.depth ? depth < o.depth : serial < o.serial; }
};

// What a target selects from the grid. Not usable: the walk is the better or the only way.
class GridTarget {
public:
  GridTarget(int32_t target, const BoundingBox& region) {
    const CollisionIndexState& index = CollisionIndex();
    if (!index.enabled || !CollisionIndexState::Covers(region) ||
        CollisionIndexState::Cells(region).Count() > kManyCells)
      return;
    if (target == all) {
      // Equal counts mean that the grid has just what the active list has: nothing hangs between clean-ups.
      const CRoom* room = CurrentRoom();
      m_usable = room && room->active.count >= kShortList && room->active.count == index.count;
    } else if (target >= 0 && target < kFirstInstanceId) {
      m_object = Object_Find(target);
      m_usable = m_object && m_object->instancesRecursive.count >= kShortList;
    }
  }
  bool Usable() const { return m_usable; }
  bool Selects(const Record& record) const { return !m_object || StandsUnder(record, m_object); }
  Order OrderOf(const Record& record) const {
    if (m_object) return {0, record.serial};
    return {record.instance->sortDepth, record.instance->listOrder};
  }

private:
  bool m_usable = false;
  CObjectFb* m_object = nullptr; // null: all
};

// Tests have no side effect on answers, so the hits may be found in any order; the earliest one counts.
template <class Hit>
CInstance* First(int32_t target, const BoundingBox* region, const CInstance* notRefreshed, Hit hit) {
  if (region) {
    if (const GridTarget grid(target, *region); grid.Usable()) {
      CollisionIndex().Refresh(notRefreshed);
      CInstance* first = nullptr;
      Order order{};
      CollisionIndex().ForEachIn(*region, [&](const Record& record) {
        CInstance& instance = *record.instance;
        if (!instance.Live() || !grid.Selects(record)) return;
        const Order at = grid.OrderOf(record);
        if ((!first || at < order) && hit(instance)) {
          first = &instance;
          order = at;
        }
      });
      return first;
    }
  }
  CInstance* first = nullptr;
  Walk(target, [&](CInstance& instance) {
    if (!hit(instance)) return false;
    first = &instance;
    return true;
  });
  return first;
}

template <class Hit>
void Collect(int32_t target, const BoundingBox* region, const CInstance* notRefreshed,
             std::vector<CInstance*>& hits, Hit hit) {
  if (region) {
    if (const GridTarget grid(target, *region); grid.Usable()) {
      CollisionIndex().Refresh(notRefreshed);
      std::vector<std::pair<Order, CInstance*>> found;
      CollisionIndex().ForEachIn(*region, [&](const Record& record) {
        if (record.instance->Live() && grid.Selects(record) && hit(*record.instance))
          found.push_back({grid.OrderOf(record), record.instance});
      });
      std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
      for (const auto& entry : found) hits.push_back(entry.second);
      return;
    }
  }
  Walk(target, [&](CInstance& instance) {
    if (hit(instance)) hits.push_back(&instance);
    return false;
  });
}

// Puts an instance on trial at another place for the time of a test.
class Trial {
public:
  Trial(CInstance& instance, float x, float y) : m_instance(instance), m_x(instance.x), m_y(instance.y) {
    instance.SetPosition(x, y);
  }
  ~Trial() { m_instance.SetPosition(m_x, m_y); }
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

private:
  CInstance& m_instance;
  float m_x, m_y;
};

bool SelectsAnything(int32_t target) { return target >= 0 || target == all; }

template <class Better> CInstance* ByDistance(float x, float y, int32_t target, float start, Better better) {
  if (target >= kFirstInstanceId) return nullptr;
  CInstance* best = nullptr;
  float bestDistance = start;
  Walk(target, [&](CInstance& instance) {
    const float dx = instance.x - x, dy = instance.y - y, distance = dx * dx + dy * dy;
    if (better(distance, bestDistance)) {
      best = &instance;
      bestDistance = distance;
    }
    return false;
  });
  return best;
}

// ---- the collision pass ----

using Collided = std::function<void(CInstance&, CInstance&)>;

bool TakesPart(const CInstance& instance, uint64_t limit) {
  return instance.Live() && instance.creationStamp <= limit;
}

void WalkPairs(const CollisionPair& pair, uint64_t limit, const Collided& collide) {
  for (InstanceList::Node *na = pair.objectA->instances.head, *nextA; na; na = nextA) {
    nextA = na->next;
    CInstance& a = *na->instance;
    if (!TakesPart(a, limit)) continue;
    for (InstanceList::Node *nb = pair.objectB->instances.head, *nextB; nb; nb = nextB) {
      nextB = nb->next;
      CInstance& b = *nb->instance;
      if (TakesPart(b, limit) && Collide(a, b, true)) collide(a, b);
    }
  }
}

struct Pair { // of instances whose boxes overlap
  uint64_t serialA, serialB;
  CInstance *a, *b;
};
// The last pass's queue, whose room the next one takes over.
std::vector<Pair> g_spareQueue;

// The nested walk without the pairs that are far apart.
//
// Why it visits the same pairs in the same state: the walk goes through pairs in the order of (a, b) by list
// serial, and between two callbacks nothing changes. The queue always holds every pair behind the last one
// taken whose boxes overlap now: at first by a search around each instance of the shorter list; after a
// callback by a search around each one that got another box since. A pair that isn't queued has no
// overlapping boxes, so the walk would pass it without effect; a queued pair is tested anew when its turn
// comes. What enters a list during the pass is younger than the limit, and nothing leaves. Whether `a` takes
// part is asked once, when the walk reaches it.
class PairPass {
public:
  PairPass(const CollisionPair& pair, uint64_t limit)
      : m_index(CollisionIndex()), m_a(pair.objectA), m_b(pair.objectB), m_limit(limit),
        m_queue(std::move(g_spareQueue)) {
    m_queue.clear();
    m_index.Refresh();
    if (m_index.watchers++ == 0) m_index.changed.clear();
    m_seen = m_index.changed.size();
    const bool fromA = m_a->instances.count <= m_b->instances.count;
    for (InstanceList::Node* n = (fromA ? m_a : m_b)->instances.head; n; n = n->next) {
      if (n->instance->marked || n->instance->creationStamp > limit) continue;
      const Record& record = RecordOf(*n->instance);
      fromA ? SearchAsA(record) : SearchAsB(record);
    }
    std::make_heap(m_queue.begin(), m_queue.end(), Later);
  }
  ~PairPass() {
    --m_index.watchers;
    g_spareQueue = std::move(m_queue);
  }
  PairPass(const PairPass&) = delete;
  PairPass& operator=(const PairPass&) = delete;

  void Run(const Collided& collide) {
    const CInstance* current = nullptr;
    bool takesPart = false;
    while (!m_queue.empty()) {
      std::pop_heap(m_queue.begin(), m_queue.end(), Later);
      const Pair pair = m_queue.back();
      m_queue.pop_back();
      if (!Later(pair, m_last)) continue; // queued twice
      m_last = pair;
      if (pair.a != current) {
        current = pair.a;
        takesPart = TakesPart(*pair.a, m_limit);
      }
      if (!takesPart || !TakesPart(*pair.b, m_limit) || !Collide(*pair.a, *pair.b, true)) continue;
      collide(*pair.a, *pair.b);
      QueueChanged();
    }
  }

private:
  static bool Later(const Pair& x, const Pair& y) {
    return x.serialA != y.serialA ? x.serialA > y.serialA : x.serialB > y.serialB;
  }
  const Record& RecordOf(const CInstance& instance) const {
    return m_index.records[static_cast<size_t>(instance.indexSlot)];
  }
  // Deactivated ones are queued as well: they may be awake when their turn comes.
  bool MayTakePart(const Record& record, const CObjectFb* object) const {
    return record.object == object && !record.instance->marked && record.instance->creationStamp <= m_limit;
  }
  void Queue(const Record& a, const Record& b) {
    const Pair pair{a.serial, b.serial, a.instance, b.instance};
    if (pair.a != pair.b && Later(pair, m_last)) m_queue.push_back(pair);
  }
  void SearchAsA(const Record& a) {
    m_index.ForEachIn(a.box, [&](const Record& b) {
      if (MayTakePart(b, m_b)) Queue(a, b);
    });
  }
  void SearchAsB(const Record& b) {
    m_index.ForEachIn(b.box, [&](const Record& a) {
      if (MayTakePart(a, m_a)) Queue(a, b);
    });
  }
  void QueueChanged() {
    m_index.Refresh();
    for (; m_seen < m_index.changed.size(); ++m_seen) {
      const Record& record = m_index.records[static_cast<size_t>(m_index.changed[m_seen])];
      if (!record.instance) continue;
      const size_t sorted = m_queue.size();
      if (MayTakePart(record, m_a)) SearchAsA(record);
      if (MayTakePart(record, m_b)) SearchAsB(record);
      for (size_t end = sorted + 1; end <= m_queue.size(); ++end)
        std::push_heap(m_queue.begin(), m_queue.begin() + static_cast<std::ptrdiff_t>(end), Later);
    }
  }

  CollisionIndexState& m_index;
  CObjectFb *m_a, *m_b;
  uint64_t m_limit;
  size_t m_seen = 0; // how much of `changed` is queued
  std::vector<Pair> m_queue;
  Pair m_last{0, 0, nullptr, nullptr}; // serials start at 1
};

} // namespace

bool Figure::Hits(CInstance& instance) const {
  switch (kind) {
  case kPoint: return PointHit(instance, x1, y1, precise);
  case kRectangle: return RectHit(instance, x1, y1, x2, y2, precise);
  case kEllipse: return EllipseHit(instance, x1, y1, x2, y2, precise);
  case kLine: return LineHit(instance, x1, y1, x2, y2, precise);
  }
  return false;
}

CInstance* FirstHit(int32_t target, const Figure& figure, const CInstance* except) {
  BoundingBox region;
  return First(target, RegionOf(figure, region) ? &region : nullptr, nullptr,
               [&](CInstance& i) { return &i != except && figure.Hits(i); });
}

void AllHits(int32_t target, const Figure& figure, const CInstance* except, std::vector<CInstance*>& hits) {
  BoundingBox region;
  Collect(target, RegionOf(figure, region) ? &region : nullptr, nullptr, hits,
          [&](CInstance& i) { return &i != except && figure.Hits(i); });
}

CInstance* InstanceAt(CInstance& self, float x, float y, int32_t target, std::vector<CInstance*>* hits) {
  if (!SelectsAnything(target)) return nullptr;
  const Trial trial(self, x, y);
  // The grid keeps the old place of `self` during the trial; that's no matter, as it is never its own hit.
  const auto hit = [&self](CInstance& candidate) { return Collide(candidate, self, true); };
  if (!hits) return First(target, &self.Bounds(), &self, hit);
  const size_t before = hits->size();
  Collect(target, &self.Bounds(), &self, *hits, hit);
  return hits->size() > before ? (*hits)[before] : nullptr;
}

bool PlaceIsFree(CInstance& self, float x, float y, bool solidOnly) {
  const Trial trial(self, x, y);
  return !First(all, &self.Bounds(), &self, [&](CInstance& candidate) {
    return (!solidOnly || candidate.solid) && Collide(candidate, self, true);
  });
}

CInstance* NearestInstance(float x, float y, int32_t target) {
  return ByDistance(x, y, target, std::numeric_limits<float>::max(),
                    [](float distance, float best) { return distance < best; });
}

CInstance* FurthestInstance(float x, float y, int32_t target) {
  return ByDistance(x, y, target, -1.0f, [](float distance, float best) { return distance > best; });
}

void ForEachCollidingPair(const CollisionPair& pair, uint64_t limit, const Collided& collide) {
  const int64_t countA = pair.objectA->instances.count, countB = pair.objectB->instances.count;
  if (countA == 0 || countB == 0) return;
  if (!CollisionIndex().enabled || countA * countB < kShortProduct)
    WalkPairs(pair, limit, collide);
  else
    PairPass(pair, limit).Run(collide);
}

} // namespace vesk
