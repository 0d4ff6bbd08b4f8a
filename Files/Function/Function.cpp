// The registry of built-ins.
#include "Files/Function/Function.h"

#include "Files/Base/Error.h"
#include "Files/Script/Script.h"

#include <cstring>
#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

namespace vesk {

namespace {

constexpr size_t kNameBytes = 64; // with the end mark
constexpr int kPaddedArguments = 16;

struct RegistryEntry {
  std::string name;
  BuiltinFunction function;
  int argumentCount;
  bool flag; // kept, read by nobody
};

struct NameHash {
  using is_transparent = void;
  size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
};
using NameIndex = std::unordered_map<std::string, int32_t, NameHash, std::equal_to<>>;

struct RegistryState {
  std::deque<RegistryEntry> entries; // an entry stays in place while others are added
  NameIndex byName;                  // the first of each name, as a search from the front finds it
  std::deque<RegistryEntry> extensions;
};
RegistryState g_registry;

const RegistryEntry* EntryOf(int32_t id) {
  const bool isExtension = id >= kExtensionIdBase;
  const auto& entries = isExtension ? g_registry.extensions : g_registry.entries;
  const int32_t index = isExtension ? id - kExtensionIdBase : id;
  return index >= 0 && static_cast<size_t>(index) < entries.size() ? &entries[static_cast<size_t>(index)]
                                                                   : nullptr;
}

// Raw copies of values, whose references stay the caller's.
class BorrowedArguments {
public:
  BorrowedArguments(const RValue* args, int argc, int count) : m_values(static_cast<size_t>(count)) {
    for (int i = 0; i < argc; ++i)
      std::memcpy(static_cast<void*>(&m_values[static_cast<size_t>(i)]), static_cast<const void*>(args + i),
                  sizeof(RValue));
  }
  ~BorrowedArguments() {
    for (RValue& value : m_values) value.kind = kUndefined; // nothing of it is ours to release
  }
  BorrowedArguments(const BorrowedArguments&) = delete;
  BorrowedArguments& operator=(const BorrowedArguments&) = delete;
  RValue* Data() { return m_values.data(); }

private:
  std::vector<RValue> m_values;
};

class CurrentFunction {
public:
  explicit CurrentFunction(const char* name) : m_outer(std::exchange(Code().currentFunction, name)) {}
  ~CurrentFunction() { Code().currentFunction = m_outer; }
  CurrentFunction(const CurrentFunction&) = delete;
  CurrentFunction& operator=(const CurrentFunction&) = delete;

private:
  const char* m_outer;
};

} // namespace

void Function_Add(std::string_view name, BuiltinFunction function, int argumentCount, bool flag) {
  const std::string kept(name.substr(0, kNameBytes - 1));
  g_registry.byName.try_emplace(kept, static_cast<int32_t>(g_registry.entries.size()));
  g_registry.entries.push_back({kept, function, argumentCount, flag});
}

void Function_Add(std::span<const BuiltinRow> rows) {
  for (const BuiltinRow& row : rows) Function_Add(row.name, row.function, row.argc);
}

void Function_AddExtension(std::string_view name, BuiltinFunction function) {
  g_registry.extensions.push_back({std::string(name), function, kAnyCount, false});
}

bool Function_Find(std::string_view name, int32_t& id) {
  id = -1;
  if (name.empty()) return false;
  if (const int32_t script = Script_FindByName(name); script >= 0) {
    id = script + kScriptIdBase;
    return true;
  }
  for (size_t i = 0; i < g_registry.extensions.size(); ++i) {
    if (g_registry.extensions[i].name == name) {
      id = static_cast<int32_t>(i) + kExtensionIdBase;
      return true;
    }
  }
  if (name == "script_execute") {
    id = kScriptExecuteId;
    return true;
  }
  const auto found = g_registry.byName.find(name);
  if (found == g_registry.byName.end()) return false;
  id = found->second;
  return true;
}

bool Function_Resolve(std::span<FunctionEntry> table, std::string& missing) {
  missing.clear();
  for (FunctionEntry& entry : table)
    if (!Function_Find(entry.name, entry.id) && missing.empty()) missing = entry.name;
  return missing.empty();
}

int32_t Function_Count() { return static_cast<int32_t>(g_registry.entries.size()); }

const char* Function_Name(int32_t index) {
  const RegistryEntry* entry = index < kExtensionIdBase ? EntryOf(index) : nullptr;
  return entry ? entry->name.c_str() : "";
}

int32_t Function_ArgumentCount(int32_t index) {
  const RegistryEntry* entry = index < kExtensionIdBase ? EntryOf(index) : nullptr;
  return entry ? entry->argumentCount : kAnyCount;
}

void Function_Reset() { g_registry = {}; }

void CallBuiltin(CInstance* self, CInstance* other, RValue& result, int argc, int32_t id, RValue* args) {
  if (id == kScriptExecuteId) {
    result.SetUndefined();
    if (argc > 0) {
      const CurrentFunction current("script_execute");
      const int32_t index = ArgAsInt32(args, 0);
      Script_Perform(index >= kScriptIdBase ? index - kScriptIdBase : index, self, other, argc - 1, result,
                     args + 1);
    }
    return;
  }
  if (id >= kScriptIdBase && id < kScriptExecuteId) {
    result.SetUndefined();
    Script_Perform(id - kScriptIdBase, self, other, argc, result, args);
    return;
  }
  result.SetUndefined();
  const RegistryEntry* entry = EntryOf(id);
  if (!entry || !entry->function) {
    ReportError("Call of a built-in that does not exist (id %d)", id);
    return;
  }
  if (Code().trace == CodeTrace::kExtended) Code_Trace("call " + entry->name);
  const CurrentFunction current(entry->name.c_str());
  if (argc < entry->argumentCount) {
    BorrowedArguments padded(args, argc, entry->argumentCount + kPaddedArguments);
    entry->function(result, self, other, argc, padded.Data());
  } else {
    entry->function(result, self, other, argc, args);
  }
}

} // namespace vesk
