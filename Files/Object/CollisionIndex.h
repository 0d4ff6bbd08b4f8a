#pragma once
// Where the instances stand: a grid of 64-pixel cells over the boxes of everything in the objects' lists.
//
// Object lists report what enters and leaves; CInstance::DirtyBounds reports what
// moves, and the grid takes the new box before its next answer. The grid only proposes: it names every
// instance whose box can meet a region, and the tests of Collision.h decide. Game thread only.
#include "Files/Object/Instance.h"

#include <cstdint>
#include <vector>

namespace vesk {

class CObjectFb;

// ---- reported by the lists ----

// `object` put the instance into its lists: behind everything that stands there.
void CollisionIndex_Enter(CInstance& instance, CObjectFb& object);
// It left them; nothing for an instance that never entered.
void CollisionIndex_Leave(CInstance& instance);
void CollisionIndex_Reset();

} // namespace vesk
