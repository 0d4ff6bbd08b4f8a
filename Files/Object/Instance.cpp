// Instances: birth, setters with their side effects, motion, animation, the bounding box.
#include "Files/Object/Instance.h"

#include "Files/Code/Code.h"
#include "Files/Object/CollisionIndex.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Sprite/Sprite.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr double kPi = 3.1415927410125732;     // the 32-bit number, as all angles of motion use it
constexpr double kSnap = 9.999999747378752e-5; // nearer to a whole number than this counts as whole

// Nearest, ties to even.
double Round(double value) {
  constexpr double kWhole = 6755399441055744.0; // 1.5 * 2^52: adding it leaves no room for a fraction
  return std::abs(value) < 2251799813685248.0 ? (value + kWhole) - kWhole : value;
}

int32_t ToInt(double value) {
  if (!(value > -2147483648.0)) return INT32_MIN; // NaN too
  return value < 2147483647.0 ? static_cast<int32_t>(value) : INT32_MAX;
}

int32_t RoundToInt(double value) { return ToInt(Round(value)); }

float Snapped(float value) {
  const double whole = Round(value);
  return std::abs(value - whole) < kSnap ? static_cast<float>(whole) : value;
}

float Radians(double degrees) { return static_cast<float>(degrees * kPi / 180); }

} // namespace

CInstance::CInstance(CObjectFb* itsObject, float newX, float newY, int32_t newId, int32_t slots)
    : ZqObjectBase(slots), id(newId), creationStamp(Rooms().passCounter) {
  std::fill(std::begin(alarm), std::end(alarm), -1);
  object = itsObject;
  if (object) {
    objectIndex = object->objectIndex;
    maskIndex = object->maskIndex;
    depth = static_cast<float>(object->depth);
    solid = object->flags & CObjectFb::kSolid;
    visible = object->flags & CObjectFb::kVisible;
    persistent = object->flags & CObjectFb::kPersistent;
    SetSpriteIndex(object->spriteIndex);
  }
  x = xStart = xPrevious = newX;
  y = yStart = yPrevious = newY;
}

CInstance::~CInstance() {
  ForgetPending(this);
  if (nodes) {
    CollisionIndex_Leave(*this);
    InstanceList::RemoveFromAll(this);
  }
}

void CInstance::CopyStateFrom(const CInstance& from) {
  const bool listed = nodes && object != from.object;
  if (listed) object->RemoveInstance(this);
  static_cast<InstanceState&>(*this) = from;
  if (listed) object->AddInstance(this);
  CopySlotsFrom(from);
  DirtyBounds();
}

// ---- setters ----

void CInstance::SetPosition(float newX, float newY) {
  if (newX == x && newY == y) return;
  x = newX;
  y = newY;
  DirtyBounds();
}

void CInstance::SetHspeed(float value) {
  if (value == hspeed) return;
  hspeed = value;
  VectorToSpeed();
}

void CInstance::SetVspeed(float value) {
  if (value == vspeed) return;
  vspeed = value;
  VectorToSpeed();
}

void CInstance::SetSpeed(float value) {
  if (value == speed) return;
  speed = value;
  SpeedToVector();
}

void CInstance::SetDirection(float value) {
  double degrees = std::isfinite(value) ? std::fmod(static_cast<double>(value), 360.0) : 0.0;
  if (degrees < 0) degrees += 360;
  direction = std::fmod(static_cast<float>(degrees), 360.0f);
  SpeedToVector();
}

void CInstance::SetSpriteIndex(int32_t value) {
  spriteIndex = value;
  const auto frames = static_cast<float>(ImageNumber());
  if (imageIndex >= frames || (frames == 0 && imageIndex > -1)) imageIndex = 0;
  DirtyBounds();
}

void CInstance::SetMaskIndex(int32_t value) {
  if (value == maskIndex) return;
  maskIndex = value;
  DirtyBounds();
}

void CInstance::SetImageXScale(float value) {
  if (value == imageXScale) return;
  imageXScale = value;
  DirtyBounds();
}

void CInstance::SetImageYScale(float value) {
  if (value == imageYScale) return;
  imageYScale = value;
  DirtyBounds();
}

void CInstance::SetImageAngle(float value) {
  if (value == imageAngle) return;
  imageAngle = value;
  DirtyBounds();
}

void CInstance::SetDepth(float value) {
  if (value == depth) return;
  depth = value;
  NoteResort(this);
}

void CInstance::SetImageSingle(float value) {
  if (value < 0) {
    imageSpeed = 1;
    return;
  }
  imageIndex = value;
  imageSpeed = 0;
}

float CInstance::ImageSingle() const { return imageSpeed != 0 ? -1.0f : imageIndex; }

// ---- motion ----

void CInstance::SpeedToVector() {
  const float angle = Radians(direction);
  hspeed = Snapped(
      static_cast<float>(static_cast<double>(static_cast<float>(std::cos(static_cast<double>(angle)))) *
                         static_cast<double>(speed)));
  vspeed = Snapped(
      static_cast<float>(static_cast<double>(static_cast<float>(std::sin(static_cast<double>(angle)))) *
                         -static_cast<double>(speed)));
  DirtyBounds();
}

void CInstance::VectorToSpeed() {
  if (hspeed == 0) {
    direction = vspeed > 0 ? 270.0f : vspeed < 0 ? 90.0f : 0.0f;
  } else {
    float angle = static_cast<float>(std::atan2(static_cast<double>(vspeed), static_cast<double>(hspeed)));
    angle = static_cast<float>(static_cast<double>(angle) * 180 / kPi);
    direction = angle <= 0 ? 0 - angle : static_cast<float>(360.0 - static_cast<double>(angle));
    direction = std::fmod(Snapped(direction), 360.0f);
  }
  const double h = hspeed, v = vspeed;
  speed = Snapped(std::sqrt(static_cast<float>(v * v + h * h)));
  DirtyBounds();
}

void CInstance::MotionAdd(float dir, float amount) {
  const double angle = Radians(dir);
  hspeed = static_cast<float>(hspeed + static_cast<double>(static_cast<float>(std::cos(angle))) * amount);
  vspeed = static_cast<float>(vspeed - static_cast<double>(static_cast<float>(std::sin(angle))) * amount);
  VectorToSpeed();
}

void CInstance::ApplyFrictionAndGravity() {
  if (friction != 0) {
    const double slowed = static_cast<double>(speed) + (speed > 0 ? -friction : friction);
    if ((speed > 0 && slowed < 0) || (speed < 0 && slowed > 0)) {
      speed = 0;
      SpeedToVector();
    } else if (speed != 0 && slowed != speed) {
      speed = static_cast<float>(slowed);
      SpeedToVector();
    }
  }
  if (gravity != 0) MotionAdd(gravityDirection, gravity);
}

// ---- picture ----

int32_t CInstance::ImageNumber() const {
  const CSprite* sprite = Sprite_Find(spriteIndex);
  return sprite ? sprite->FrameCount() : 0;
}

float CInstance::SpriteWidth() const {
  const CSprite* sprite = Sprite_Find(spriteIndex);
  return sprite ? static_cast<float>(sprite->width) * imageXScale : 0;
}
float CInstance::SpriteHeight() const {
  const CSprite* sprite = Sprite_Find(spriteIndex);
  return sprite ? static_cast<float>(sprite->height) * imageYScale : 0;
}
float CInstance::SpriteXOffset() const {
  const CSprite* sprite = Sprite_Find(spriteIndex);
  return sprite ? static_cast<float>(sprite->originX) * imageXScale : 0;
}
float CInstance::SpriteYOffset() const {
  const CSprite* sprite = Sprite_Find(spriteIndex);
  return sprite ? static_cast<float>(sprite->originY) * imageYScale : 0;
}

// ---- bounding box ----

namespace {

// Scaled edges of one axis of the sprite's box, relative to the origin.
struct Edges {
  double low, high;
};
Edges ScaledEdges(int32_t first, int32_t last, int32_t origin, double scale) {
  const double from = first < last ? first : last, to = (first < last ? last : first) + 1.0;
  return {(from - origin) * scale, (to - origin) * scale};
}

void UprightAxis(int32_t first, int32_t last, int32_t origin, double scale, double position, int32_t& low,
                 int32_t& high) {
  const double extent = static_cast<double>(last) - first + 1;
  double from = Round((static_cast<double>(first) - origin) * scale + position);
  double to = Round(extent * scale + from);
  if (from > to) std::swap(from, to);
  low = ToInt(from);
  high = ToInt(to - 1);
}

BoundingBox RotatedBox(const CInstance& it, const CSprite& sprite) {
  const double angle = Radians(it.imageAngle);
  const double c = std::cos(angle), s = std::sin(angle);
  const Edges h = ScaledEdges(sprite.left, sprite.right, sprite.originX, it.imageXScale);
  const Edges v = ScaledEdges(sprite.top, sprite.bottom, sprite.originY, it.imageYScale);
  const auto [cxLow, cxHigh] = std::minmax({c * h.low, c * h.high});
  const auto [sxLow, sxHigh] = std::minmax({s * h.low, s * h.high});
  const auto [cyLow, cyHigh] = std::minmax({c * v.low, c * v.high});
  const auto [syLow, syHigh] = std::minmax({s * v.low, s * v.high});
  BoundingBox box;
  box.left = RoundToInt(it.x + cxLow + syLow);
  box.right = ToInt(Round(it.x + cxHigh + syHigh) - 1);
  box.top = RoundToInt(it.y + cyLow - sxHigh);
  box.bottom = ToInt(Round(it.y + cyHigh - sxLow) - 1);
  return box;
}

} // namespace

const BoundingBox& CInstance::Bounds() {
  if (!bboxDirty) return bbox;
  bboxDirty = false;
  const CSprite* sprite = Sprite_Find(ShapeSprite());
  if (!sprite) {
    bbox.left = bbox.right = ToInt(x);
    bbox.top = bbox.bottom = ToInt(y);
    precise = false;
    return bbox;
  }
  if (imageAngle == 0) {
    UprightAxis(sprite->left, sprite->right, sprite->originX, imageXScale, x, bbox.left, bbox.right);
    UprightAxis(sprite->top, sprite->bottom, sprite->originY, imageYScale, y, bbox.top, bbox.bottom);
  } else {
    bbox = RotatedBox(*this, *sprite);
  }
  precise = sprite->kind == SpriteKind::kPrecise;
  return bbox;
}

} // namespace vesk
