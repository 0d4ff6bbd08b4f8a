#pragma once
// Scripts as assets: names that data and script_execute use for functions of the code table.
#include "Files/Code/Code.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct CScript {
  std::string name;
  int32_t codeIndex = -1;
  const CodeEntry* entry = nullptr; // set by Script_Prepare
};

struct ScriptState {
  std::vector<std::unique_ptr<CScript>> table; // by index; null for a hole
};
ScriptState& Scripts();
void Script_Reset();

void Script_Add(std::string_view name, int32_t codeIndex);
void Script_AddHole();
CScript* Script_Find(int32_t index);              // null for an index that names none
int32_t Script_FindByName(std::string_view name); // the first of that name, -1 none

// Gives each script its function and runs the start-up code, in order, as the global object. False, with the
// reason in `error`, when a script names no function; then nothing was run.
bool Script_Prepare(std::span<const int32_t> startupCode, std::string& error);

} // namespace vesk
