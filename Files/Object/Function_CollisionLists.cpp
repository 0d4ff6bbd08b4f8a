// The list forms of the collision built-ins: all hits instead of the first.
#include "Files/Object/Function_Collision.h"

#include "Files/Function/Function.h"
#include "Files/Object/CollisionQuery.h"
#include "Files/Support/Support_Data_Structures.h"

#include <algorithm>

namespace vesk {

namespace {

int32_t AppendTo(int32_t list, std::vector<CInstance*> hits, bool ordered, float x, float y) {
  CDS_List* out = Ds().lists.Find(list);
  if (!out) return 0;
  if (ordered)
    std::stable_sort(hits.begin(), hits.end(), [x, y](const CInstance* a, const CInstance* b) {
      const auto distance = [x, y](const CInstance* i) {
        return (i->x - x) * (i->x - x) + (i->y - y) * (i->y - y);
      };
      return distance(a) < distance(b);
    });
  for (const CInstance* hit : hits) out->values.push_back(RValue(hit->id));
  return static_cast<int32_t>(hits.size());
}

int32_t AllTo(int32_t list, const CInstance* self, const Figure& figure, int32_t object, bool notMe,
              bool ordered) {
  std::vector<CInstance*> hits;
  AllHits(object, figure, notMe ? self : nullptr, hits);
  return AppendTo(list, std::move(hits), ordered, (figure.x1 + figure.x2) / 2, (figure.y1 + figure.y2) / 2);
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&collision_point_list>("collision_point_list"),
    Builtin<&collision_rectangle_list>("collision_rectangle_list"),
    Builtin<&collision_circle_list>("collision_circle_list"),
    Builtin<&collision_ellipse_list>("collision_ellipse_list"),
    Builtin<&collision_line_list>("collision_line_list"),
    Builtin<&instance_position_list>("instance_position_list"),
    Builtin<&instance_place_list>("instance_place_list"),
};

} // namespace

void Function_AddCollisionLists() { Function_Add(kBuiltins); }

int32_t collision_point_list(CInstance* self, float x, float y, int32_t object, bool precise, bool notMe,
                             int32_t list, bool ordered) {
  return AllTo(list, self, Figure::Point(x, y, precise), object, notMe, ordered);
}

int32_t collision_rectangle_list(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                                 bool precise, bool notMe, int32_t list, bool ordered) {
  return AllTo(list, self, {Figure::kRectangle, x1, y1, x2, y2, precise}, object, notMe, ordered);
}

int32_t collision_circle_list(CInstance* self, float x, float y, float radius, int32_t object, bool precise,
                              bool notMe, int32_t list, bool ordered) {
  return AllTo(list, self, Figure::Circle(x, y, radius, precise), object, notMe, ordered);
}

int32_t collision_ellipse_list(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                               bool precise, bool notMe, int32_t list, bool ordered) {
  return AllTo(list, self, {Figure::kEllipse, x1, y1, x2, y2, precise}, object, notMe, ordered);
}

int32_t collision_line_list(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                            bool precise, bool notMe, int32_t list, bool ordered) {
  return AllTo(list, self, {Figure::kLine, x1, y1, x2, y2, precise}, object, notMe, ordered);
}

int32_t instance_position_list(float x, float y, int32_t object, int32_t list, bool ordered) {
  return AllTo(list, nullptr, Figure::Point(x, y, true), object, false, ordered);
}

int32_t instance_place_list(CInstance* self, float x, float y, int32_t object, int32_t list, bool ordered) {
  std::vector<CInstance*> hits;
  if (self) InstanceAt(*self, x, y, object, &hits);
  return AppendTo(list, std::move(hits), ordered, x, y);
}

} // namespace vesk
