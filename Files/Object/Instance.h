#pragma once
// One live thing in a room: built-in state in fixed fields, script variables in slots.
// Positions are room pixels, speeds pixels a step, angles degrees counter-clockwise; all stored as 32-bit
// floats.
#include "Files/Code/Slots.h"

#include "Files/Object/Object.h"

#include <cstdint>

namespace vesk {

class CInstance;

// The collision index re-reads the box before its next answer. Defined in CollisionIndex.cpp.
void CollisionIndex_Moved(CInstance& instance);

inline constexpr int kAlarmCount = 12;

// Names of instances that aren't ids.
inline constexpr int32_t self_ = -1;
inline constexpr int32_t other_ = -2;
inline constexpr int32_t all = -3;
inline constexpr int32_t noone = -4;
inline constexpr int32_t kFirstInstanceId = 100000;

struct BoundingBox {
  int32_t left = 0, top = 0, right = 0, bottom = 0; // inclusive room pixels
};

// What the loops over all instances follow; stands beside the fields that they read.
struct InstanceLinks {
  CInstance* next = nullptr; // in the room's active or inactive list
  CInstance* previous = nullptr;
};

// Its places in lists, which no copy shares.
struct InstancePlaces {
  InstanceList::Node* nodes = nullptr; // in the lists of objects
  uint64_t listOrder = 0;              // grows with each entry into a room list
  float sortDepth = 0;                 // the depth under which it stands in the list
  bool inInactiveList = false;         // of the room's two lists
  bool inResortList = false, inChangeList = false, inDeactivationList = false, inMarkedList = false;
  int32_t indexSlot = -1; // record of the collision index; -1 none
};

// The built-in state, without identity.
struct InstanceState {
  // First what the loops over all instances read, together in memory.
  bool bboxDirty = true; // set through DirtyBounds, cleared by Bounds
  bool visible = true;
  bool solid = false;
  bool persistent = false;
  bool marked = false; // destroyed, waiting for removal
  bool deactivated = false;
  bool destroyEventDone = false;
  bool carriedOver = false; // came from the previous room: Create does not run again
  float x = 0, y = 0;
  float xPrevious = 0, yPrevious = 0;
  float pathPosition = 0, pathPositionPrevious = 0;
  float imageIndex = 0;
  float imageSpeed = 1; // frames a step
  int32_t spriteIndex = -1;
  int32_t pathIndex = -1;
  float hspeed = 0, vspeed = 0;
  float friction = 0, gravity = 0;
  CObjectFb* object = nullptr;
  // Then what drawing reads besides.
  float depth = 0;
  float imageXScale = 1, imageYScale = 1;
  float imageAngle = 0;
  float imageAlpha = 1;
  uint32_t imageBlend = 0xFFFFFF; // 24-bit, red in the high byte: swapped against the script's colour

  int32_t objectIndex = -1;
  bool created = false;
  bool precise = false;
  int32_t maskIndex = -1;
  BoundingBox bbox;
  float xStart = 0, yStart = 0;
  float direction = 0, speed = 0; // degrees 0 to under 360
  float gravityDirection = 270;
  int32_t alarm[kAlarmCount]; // -1 off
  float pathSpeed = 0, pathScale = 1, pathOrientation = 0;
  int32_t pathEndAction = 0;
  float pathXStart = 0, pathYStart = 0;
  int32_t timelineIndex = -1;
  float timelinePrevious = 0, timelinePosition = 0, timelineSpeed = 1;
  bool timelineRunning = false, timelineLoop = false;
  bool outsideRoom = false;
  uint8_t mouseInside = 2;       // bits 0 inside, 1 outside, 2 and 3 their changes
  CCode* creationCode = nullptr; // owned by the room template
  CCode* preCreateCode = nullptr;
  int32_t layerId = -1;
};

// Aligned so that what every step reads of an instance lies in two cache lines, and what drawing reads in
// three.
class alignas(64) CInstance : public ZqObjectBase,
                              public InstanceLinks,
                              public InstanceState,
                              public InstancePlaces {
public:
  // Fields as the object's record gives them; in no list yet. Create has not run.
  CInstance(CObjectFb* object, float x, float y, int32_t id, int32_t slotCount);
  ~CInstance() override;

  // All fields and variables but id, links, place in the lists and stamp. Brings the object lists of an
  // instance that stands in some up to date.
  void CopyStateFrom(const CInstance& from);

  // Alive for queries and passes: neither destroyed nor deactivated.
  bool Live() const { return !marked && !deactivated; }

  // ---- setters with side effects; plain fields are written directly ----
  void SetPosition(float newX, float newY);
  void SetHspeed(float value);
  void SetVspeed(float value);
  void SetSpeed(float value);
  void SetDirection(float value);
  void SetSpriteIndex(int32_t value);
  void SetMaskIndex(int32_t value);
  void SetImageXScale(float value);
  void SetImageYScale(float value);
  void SetImageAngle(float value);
  void SetDepth(float value); // takes its new place in the room's order at the next clean-up
  void SetImageSingle(float value);
  void MotionAdd(float dir, float amount);
  void SpeedToVector();
  void VectorToSpeed();
  void ApplyFrictionAndGravity();
  // Advances image_index; true when it wrapped and the animation-end event is due.
  bool AdvanceImage() { return AdvanceImage(static_cast<float>(ImageNumber())); }
  bool AdvanceImage(float frames) {
    imageIndex += imageSpeed;
    if (imageIndex >= frames || (frames == 0 && imageIndex > -1)) // the whole part counts: -0.5 is 0
      imageIndex -= frames;
    else if (imageIndex < 0)
      imageIndex += frames;
    else
      return false;
    return true;
  }

  const BoundingBox& Bounds(); // recomputed when dirty
  // Whatever changes position or shape comes through here, so that the collision index hears of it.
  void DirtyBounds() {
    bboxDirty = true;
    if (indexSlot >= 0) CollisionIndex_Moved(*this);
  }
  // The sprite that collision uses; -1 none.
  int32_t ShapeSprite() const { return maskIndex >= 0 ? maskIndex : spriteIndex; }
  float SpriteWidth() const, SpriteHeight() const, SpriteXOffset() const, SpriteYOffset() const;
  int32_t ImageNumber() const;
  float ImageSingle() const;

  int32_t id;
  uint64_t creationStamp;
  CObjectFb* previousObject = nullptr; // between instance_change and the next clean-up
};

} // namespace vesk
