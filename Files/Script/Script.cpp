#include "Files/Script/Script.h"

#include "Files/Base/Error.h"
#include "Files/Code/Slots.h"

namespace vesk {

namespace {

ScriptState g_scripts;

} // namespace

ScriptState& Scripts() { return g_scripts; }

void Script_Reset() { g_scripts.table.clear(); }

void Script_Add(std::string_view name, int32_t codeIndex) {
  auto script = std::make_unique<CScript>();
  script->name = name;
  script->codeIndex = codeIndex;
  g_scripts.table.push_back(std::move(script));
}

void Script_AddHole() { g_scripts.table.emplace_back(); }

CScript* Script_Find(int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= g_scripts.table.size()) return nullptr;
  return g_scripts.table[static_cast<size_t>(index)].get();
}

int32_t Script_FindByName(std::string_view name) {
  for (size_t i = 0; i < g_scripts.table.size(); ++i)
    if (g_scripts.table[i] && g_scripts.table[i]->name == name) return static_cast<int32_t>(i);
  return -1;
}

bool Script_Prepare(std::span<const int32_t> startupCode, std::string& error) {
  const std::span<const CodeEntry> table = Code().table;
  for (const auto& script : g_scripts.table) {
    if (!script) continue;
    const auto index = static_cast<size_t>(script->codeIndex);
    if (script->codeIndex < 0 || index >= table.size() || (!table[index].script && !table[index].event)) {
      error = "COMPILATION ERROR in Script: " + script->name + "\nNo function has the code index " +
              std::to_string(script->codeIndex) + ".";
      return false;
    }
    script->entry = &table[index];
  }
  for (const int32_t index : startupCode) {
    const CCode code(index);
    if (!code.Entry()) {
      error = "The start-up code names no function: " + std::to_string(index) + ".";
      return false;
    }
    RValue result;
    Code_ExecuteReporting(GlobalInstance(), GlobalInstance(), &code, result);
  }
  return true;
}

} // namespace vesk
