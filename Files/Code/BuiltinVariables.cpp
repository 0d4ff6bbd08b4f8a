// The table of built-in variables and generic access to variables by id, by slot and through a target.
#include "Files/Code/BuiltinVariables.h"

#include "Files/Base/Error.h"
#include "Platform/Dialogs.h"
#include "Platform/Platform.h"

#include <unordered_map>
#include <vector>

namespace vesk {

namespace {

struct NameHash {
  using is_transparent = void;
  size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
};
using NameIndex = std::unordered_map<std::string, int32_t, NameHash, std::equal_to<>>;

struct BuiltinEntry {
  std::string name;
  VariableGetter getter;
  VariableSetter setter;
};

struct VariableState {
  std::vector<BuiltinEntry> builtins;
  NameIndex builtinByName;
  std::vector<std::string> slotNames; // of instances and of the global object alike
  NameIndex slotByName;
  VariableAccessState access;
};
VariableState g_variables;

int32_t FindName(const NameIndex& index, std::string_view name) {
  const auto found = index.find(name);
  return found == index.end() ? -1 : found->second;
}

const BuiltinEntry* EntryOf(int32_t index) {
  return index >= 0 && index < BuiltinVariables_Count() ? &g_variables.builtins[static_cast<size_t>(index)]
                                                        : nullptr;
}

bool FailedRead() {
  g_variables.access.readFailed = true;
  return false;
}

// Writes through `write` to all that the target names.
template <class Write> bool WriteAll(int32_t target, Write write) {
  const std::vector<CInstance*> targets = WriteTargets(target);
  if (targets.empty() && target >= kFirstInstanceId)
    ReportError("Unable to find any instance for object index '%d'", target);
  bool written = false;
  for (CInstance* it : targets) written = write(it) || written;
  return written;
}

} // namespace

// ---- the table ----

void BuiltinVariables_Init() {
  if (!g_variables.builtins.empty()) return;
  BuiltinVariables_Add(InstanceVariables());
  BuiltinVariables_Add(GameRoomVariables());
  BuiltinVariables_Add(SystemVariables());
}

void BuiltinVariables_Reset() { g_variables = {}; }

void BuiltinVariables_Add(std::span<const VariableRow> rows) {
  for (const VariableRow& row : rows) {
    if (BuiltinVariables_Count() >= kBuiltinVariableLimit) {
      Platform_Get().dialogs->ShowMessage("", "INTERNAL ERROR: Adding too many variables");
      return;
    }
    g_variables.builtinByName.try_emplace(row.name, BuiltinVariables_Count());
    g_variables.builtins.push_back({row.name, row.getter, row.setter});
  }
}

int32_t BuiltinVariables_Count() { return static_cast<int32_t>(g_variables.builtins.size()); }
int32_t BuiltinVariables_Find(std::string_view name) { return FindName(g_variables.builtinByName, name); }
const char* BuiltinVariables_Name(int32_t index) {
  const BuiltinEntry* entry = EntryOf(index);
  return entry ? entry->name.c_str() : "";
}
bool BuiltinVariables_CanWrite(int32_t index) {
  const BuiltinEntry* entry = EntryOf(index);
  return entry && entry->setter;
}

// ---- names of script variables ----

void Variables_Intern(std::span<VariableEntry> table, int32_t slotCount) {
  g_variables.slotNames.clear();
  g_variables.slotByName.clear();
  for (size_t i = 0; i < table.size(); ++i) {
    VariableEntry& entry = table[i];
    if (static_cast<int64_t>(i) < slotCount) {
      g_variables.slotNames.emplace_back(entry.name);
      g_variables.slotByName.try_emplace(entry.name, static_cast<int32_t>(i));
    }
    if (entry.id == -1) entry.id = BuiltinVariables_Find(entry.name);
  }
}

void Variables_Number(std::span<VariableEntry> table) {
  int32_t position = 0; // in the list of script variables, which grows in table order
  NameIndex numbered;
  for (VariableEntry& entry : table) {
    if (const int32_t builtin = BuiltinVariables_Find(entry.name); builtin >= 0) {
      entry.id = builtin;
      continue;
    }
    const auto [place, isNew] = numbered.try_emplace(entry.name, position);
    if (isNew) ++position;
    entry.id = kVariableIdBase + place->second;
  }
}

int32_t Variable_SlotOf(std::string_view name) { return FindName(g_variables.slotByName, name); }

const char* Variable_NameOfSlot(int32_t slot) {
  if (slot < 0 || static_cast<size_t>(slot) >= g_variables.slotNames.size()) return "";
  return g_variables.slotNames[static_cast<size_t>(slot)].c_str();
}

// ---- access ----

VariableAccessState& VariableAccess() { return g_variables.access; }

bool Variable_GetValue(ZqObjectBase* holder, int32_t id, int32_t arrayIndex, RValue& out) {
  if (id < kFirstScriptVariable) {
    const BuiltinEntry* entry = EntryOf(id);
    return entry && entry->getter(dynamic_cast<CInstance*>(holder), arrayIndex, out);
  }
  if (!holder || !holder->HasSlots()) return false;
  ArrayReadInto(out, holder->GetSlot(id - kVariableIdBase), arrayIndex);
  return true;
}

bool Variable_SetValue(ZqObjectBase* holder, int32_t id, int32_t arrayIndex, const RValue& in) {
  if (id < kFirstScriptVariable) {
    const BuiltinEntry* entry = EntryOf(id);
    return entry && entry->setter && entry->setter(dynamic_cast<CInstance*>(holder), arrayIndex, in);
  }
  if (!holder || !holder->HasSlots()) return false;
  ArrayWrite(holder->GetSlot(id - kVariableIdBase), arrayIndex, in);
  return true;
}

bool GetVarOf(int32_t target, int32_t id, int32_t arrayIndex, RValue& out) {
  CInstance* found = FirstTarget(target);
  return found ? Variable_GetValue(found, id, arrayIndex, out) : FailedRead();
}

bool SetVarOf(int32_t target, int32_t id, int32_t arrayIndex, const RValue& in) {
  return WriteAll(target, [&](CInstance* it) { return Variable_SetValue(it, id, arrayIndex, in); });
}

bool GetSlotOf(int32_t target, int32_t slot, int32_t arrayIndex, RValue& out) {
  return GetVarOf(target, kVariableIdBase + slot, arrayIndex, out);
}

bool SetSlotOf(int32_t target, int32_t slot, int32_t arrayIndex, const RValue& in) {
  return SetVarOf(target, kVariableIdBase + slot, arrayIndex, in);
}

} // namespace vesk
