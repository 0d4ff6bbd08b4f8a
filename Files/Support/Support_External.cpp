// Definition and call of external functions.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Function/Function_External.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Support/FileBridge.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Library.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <utility>
#include <vector>

namespace vesk {

namespace {

constexpr size_t kMaxArguments = 16;
constexpr size_t kMaxMixedArguments = 4;

struct LoadedLibrary {
  std::string name; // as given, for comparison without case
  CLibrary handle;  // closed for the built-in one
  bool builtIn = false;

  void* Find(const std::string& function) const {
    return builtIn ? FileBridge_Find(function) : handle.Find(function);
  }
};

struct ExternalFunction {
  std::shared_ptr<LoadedLibrary> module; // null once freed
  std::string name;
  void* entry = nullptr;
  bool decorated = false; // found under its stdcall name
  std::vector<bool> stringArguments;
  bool stringResult = false;
};

struct ExternalState {
  std::vector<ExternalFunction> functions; // by id
  bool callsDisabled = false;
};
ExternalState g_external;

bool SameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
  });
}

std::shared_ptr<LoadedLibrary> Load(const std::string& name) {
  for (const ExternalFunction& function : g_external.functions)
    if (function.module && SameName(function.module->name, name)) return function.module;

  auto library = std::make_shared<LoadedLibrary>();
  library->name = name;
  if (FileBridge_IsLibrary(name)) {
    library->builtIn = true;
    return library;
  }
  const std::string found = Files_FindForReading(name);
  const std::string path = found.empty() ? name : found;
  // From the library's own directory, so that it finds what it depends on.
  const std::string before = Directory_Current();
  const std::string folder = Path_Folder(path);
  if (!folder.empty()) Directory_SetCurrent(folder);
  std::string why;
  int code = 0;
  const bool loaded = library->handle.Open(path, &why, &code);
  Directory_SetCurrent(before);
  if (loaded) return library;
  ErrorConsole().Output("LoadLibraryA failed with error code %d\n", code);
  ErrorConsole().Output("The library %s can't be loaded: %s\n", name.c_str(), why.c_str());
  return nullptr;
}

// ---- what a library may call back ----

void PostEvent(int map, int subtype) { Async_Post(subtype, map); }
int CreateMap() { return ds_map_create(); }
int AddReal(int map, const char* key, double value) { return ds_map_add(map, key, value); }
int AddString(int map, const char* key, const char* value) { return ds_map_add(map, key, value); }

void RegisterCallbacks(const LoadedLibrary& library) {
  if (library.builtIn) return;
  if (void* entry = library.handle.Find("RegisterCallbacks"))
    reinterpret_cast<void (*)(decltype(&PostEvent), decltype(&CreateMap), decltype(&AddReal),
                              decltype(&AddString))>(entry)(&PostEvent, &CreateMap, &AddReal, &AddString);
}

bool IsLoaded(const std::shared_ptr<LoadedLibrary>& library) {
  return std::any_of(g_external.functions.begin(), g_external.functions.end(),
                     [&](const ExternalFunction& function) { return function.module == library; });
}

int32_t Define(const std::string& library, const std::string& name, bool stringResult,
               std::vector<bool> stringArguments) {
  const bool anyString =
      std::find(stringArguments.begin(), stringArguments.end(), true) != stringArguments.end();
  if (stringArguments.size() > kMaxArguments) {
    ErrorConsole().Output("ERROR :: DLL_Define :: function %s has too many parameters (limit 16) - has %d\n",
                          name.c_str(), static_cast<int>(stringArguments.size()));
    return -1;
  }
  if (stringArguments.size() > kMaxMixedArguments && anyString) {
    ErrorConsole().Output(
        "ERROR :: DLL_Define :: function %s has more than 4 parameters and they are not all numbers\n",
        name.c_str());
    return -1;
  }
  ExternalFunction function;
  function.module = Load(library);
  if (!function.module) return -1;
  function.entry = function.module->Find(name);
  if (!function.entry) {
    size_t size = 0;
    for (const bool isString : stringArguments) size += isString ? 4 : 8;
    function.entry = function.module->Find("_" + name + "@" + std::to_string(size));
    function.decorated = function.entry != nullptr;
  }
  if (!function.entry) return -1;
  function.name = name;
  function.stringArguments = std::move(stringArguments);
  function.stringResult = stringResult;
  if (!IsLoaded(function.module)) RegisterCallbacks(*function.module);
  g_external.functions.push_back(std::move(function));
  return static_cast<int32_t>(g_external.functions.size()) - 1;
}

// ---- the call ----

struct Argument {
  double real = 0;
  std::string text;
  const char* chars = nullptr;
};

// In place: the characters of a short text stand in the argument itself.
void Fill(Argument& argument, const RValue& value, bool asString) {
  if (asString && value.Kind() == kPtr) {
    argument.chars = static_cast<const char*>(value.ptr);
  } else if (asString) {
    argument.text = value.Text();
    argument.chars = argument.text.c_str();
  } else if (value.IsNumber()) {
    argument.real = ValueAsReal(value);
  } else if (value.Kind() == kPtr) {
    argument.real = static_cast<double>(reinterpret_cast<intptr_t>(value.ptr));
  }
}

// Picks the C signature argument by argument.
template <class Result, class... Done>
Result CallMixed(const ExternalFunction& function, const Argument* arguments, Done... done) {
  constexpr size_t at = sizeof...(Done);
  if (at == function.stringArguments.size())
    return reinterpret_cast<Result (*)(Done...)>(function.entry)(done...);
  if constexpr (at < kMaxMixedArguments) {
    return function.stringArguments[at] ? CallMixed<Result>(function, arguments, done..., arguments[at].chars)
                                        : CallMixed<Result>(function, arguments, done..., arguments[at].real);
  } else {
    return Result();
  }
}

template <size_t> using Real = double;
template <class Result, size_t... I>
Result CallReals(const ExternalFunction& function, const Argument* arguments, std::index_sequence<I...>) {
  return reinterpret_cast<Result (*)(Real<I>...)>(function.entry)(arguments[I].real...);
}
template <class Result, size_t kCount = kMaxMixedArguments + 1>
Result CallManyReals(const ExternalFunction& function, const Argument* arguments) {
  if (function.stringArguments.size() == kCount)
    return CallReals<Result>(function, arguments, std::make_index_sequence<kCount>());
  if constexpr (kCount < kMaxArguments)
    return CallManyReals<Result, kCount + 1>(function, arguments);
  else
    return Result();
}

template <class Result> Result Call(const ExternalFunction& function, const Argument* arguments) {
  return function.stringArguments.size() <= kMaxMixedArguments ? CallMixed<Result>(function, arguments)
                                                               : CallManyReals<Result>(function, arguments);
}

} // namespace

void External_Reset() { g_external = ExternalState(); }
void External_DisableCalls() { g_external.callsDisabled = true; }

int32_t External_FunctionCount() { return static_cast<int32_t>(g_external.functions.size()); }

int32_t External_LibraryCount() {
  std::vector<const LoadedLibrary*> seen;
  for (const ExternalFunction& function : g_external.functions)
    if (function.module && std::find(seen.begin(), seen.end(), function.module.get()) == seen.end())
      seen.push_back(function.module.get());
  return static_cast<int32_t>(seen.size());
}

int32_t external_define(std::string_view library, std::string_view function, int32_t, int32_t resultType,
                        std::span<const int32_t> argumentTypes) {
  std::vector<bool> strings;
  for (const int32_t type : argumentTypes) strings.push_back(type == ty_string);
  const bool anyString = std::find(strings.begin(), strings.end(), true) != strings.end();
  if (strings.size() > kMaxArguments) {
    ShowError("DLL functions can have at most 16 arguments");
    return -1;
  }
  if (strings.size() > kMaxMixedArguments && anyString) {
    ShowError("DLL functions with more than 4 arguments cannot have string arguments");
    return -1;
  }
  const int32_t id =
      Define(std::string(library), std::string(function), resultType == ty_string, std::move(strings));
  if (id < 0) ShowError("Error defining an external function.");
  return id;
}

RValue external_call(int32_t id, std::span<const RValue> args) {
  if (id < 0) return -1;
  if (static_cast<size_t>(id) >= g_external.functions.size() || g_external.callsDisabled) return 0;
  // A copy: the library may define or free functions while it runs.
  const ExternalFunction function = g_external.functions[static_cast<size_t>(id)];
  if (!function.module || args.size() != function.stringArguments.size()) return 0;
  std::array<Argument, kMaxArguments> arguments;
  for (size_t i = 0; i < args.size(); ++i) Fill(arguments[i], args[i], function.stringArguments[i]);
  if (!function.stringResult) return Call<double>(function, arguments.data());
  const char* text = Call<const char*>(function, arguments.data());
  return RValue(text ? text : "");
}

void external_free(std::string_view library) {
  for (ExternalFunction& function : g_external.functions)
    if (function.module && SameName(function.module->name, library)) function.module.reset();
}

} // namespace vesk
