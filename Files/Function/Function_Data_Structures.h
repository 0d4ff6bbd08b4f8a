#pragma once
// The ds_ built-ins that rules use, typed. Ids are small numbers from 0; a bad one is an error report and
// gives the neutral value.
#include "Files/Code/Value.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

void Function_AddDs(); // enters the whole family, json_encode and json_decode included

inline constexpr int32_t ds_type_map = 1;
inline constexpr int32_t ds_type_list = 2;
inline constexpr int32_t ds_type_stack = 3;
inline constexpr int32_t ds_type_queue = 4;
inline constexpr int32_t ds_type_grid = 5;
inline constexpr int32_t ds_type_priority = 6;

bool ds_exists(int32_t id, int32_t type);
void ds_set_precision(double precision); // the sign is dropped

int32_t ds_map_create();
void ds_map_destroy(int32_t id); // with all nested structures
bool ds_map_add(int32_t id, const RValue& key,
                const RValue& value); // false: the key is there and stays as it is
bool ds_map_add_map(int32_t id, const RValue& key, int32_t child); // the map owns the child from now on
bool ds_map_add_list(int32_t id, const RValue& key, int32_t child);
void ds_map_replace(int32_t id, const RValue& key, const RValue& value);
void ds_map_replace_map(int32_t id, const RValue& key, int32_t child);
void ds_map_replace_list(int32_t id, const RValue& key, int32_t child);
void ds_map_delete(int32_t id, const RValue& key); // a nested structure lives on
bool ds_map_exists(int32_t id, const RValue& key);
RValue ds_map_find_value(int32_t id, const RValue& key); // undefined when it isn't there
bool ds_map_owns_map(int32_t id, const RValue& key); // a nested map, not a number that happens to be an id
bool ds_map_owns_list(int32_t id, const RValue& key);
RValue ds_map_find_first(int32_t id); // keys in iteration order; undefined at the end
RValue ds_map_find_last(int32_t id);
RValue ds_map_find_next(int32_t id, const RValue& key);
RValue ds_map_find_previous(int32_t id, const RValue& key);
int32_t ds_map_size(int32_t id);
bool ds_map_empty(int32_t id);
void ds_map_clear(int32_t id);
void ds_map_copy(int32_t id, int32_t source);

int32_t ds_list_create();
void ds_list_destroy(int32_t id);
void ds_list_add(int32_t id, const RValue& value);
int32_t ds_list_size(int32_t id);
RValue ds_list_find_value(int32_t id, int32_t position); // undefined outside 0 to size - 1
// Grows the list with zeros up to the position.
void ds_list_set(int32_t id, int32_t position, const RValue& value);
void ds_list_shuffle(int32_t id);

// ---- for the families of these built-ins ----

void Ds_ReportBadId();
void Ds_Shuffle(std::vector<RValue>& values); // 8 swaps an element with the game's generator
void Function_AddDsText();                    // _write and _read, ds_map_secure_*
void Function_AddDsGrid();                    // grids among themselves, shuffle, sort

std::string json_encode(int32_t map);    // "" for a bad id, without a report
int32_t json_decode(const RValue& text); // a new map; -1 for text that can't be kept even as text

} // namespace vesk
