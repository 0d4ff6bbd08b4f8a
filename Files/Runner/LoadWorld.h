#pragma once
// The part of the load that fills the tables of objects and rooms; called by LoadGameData.

namespace vesk {

void World_ClearTables();
// Both read Load().records. Code objects are made here: the code table must be set.
void World_LoadObjects();
void World_LoadRooms();

} // namespace vesk
