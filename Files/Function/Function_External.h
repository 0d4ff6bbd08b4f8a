#pragma once
// Functions of shared libraries called by scripts: arguments and results are reals (doubles) or strings
// (NUL-ended UTF-8). Up to 4 arguments of any kind, up to 16 when all are reals.
#include "Files/Code/Value.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// A library that exports RegisterCallbacks gets, once, four functions to post asynchronous events with, to be
// called on the game thread: void post(int map, int subtype), int create_map(), int add_real(int map, const
// char* key, double), int add_string(int map, const char* key, const char*).
void Function_AddExternal();
// Forgets all definitions and unloads the libraries.
void External_Reset();
// -ext: from now on calls give the real 0 and run nothing.
void External_DisableCalls();

inline constexpr int32_t ty_real = 0;
inline constexpr int32_t ty_string = 1;
inline constexpr int32_t dll_cdecl = 0;
inline constexpr int32_t dll_stdcall = 1;

// The function's id, or -1 after an error report. "nsfs.dll" names the runner's own file library.
int32_t external_define(std::string_view library, std::string_view function, int32_t callType,
                        int32_t resultType, std::span<const int32_t> argumentTypes);
inline int32_t external_define(std::string_view library, std::string_view function, int32_t callType,
                               int32_t resultType, std::initializer_list<int32_t> argumentTypes) {
  return external_define(library, function, callType, resultType,
                         std::span<const int32_t>(argumentTypes.begin(), argumentTypes.size()));
}
// A negative id gives -1; an unknown one, or another count of arguments than defined, gives 0. Both are
// silent.
RValue external_call(int32_t id, std::span<const RValue> args);
inline RValue external_call(int32_t id, std::initializer_list<RValue> args) {
  return external_call(id, std::span<const RValue>(args.begin(), args.size()));
}
// Unloads the library and all its definitions.
void external_free(std::string_view library);

// Libraries loaded and functions defined, for tests.
int32_t External_LibraryCount();
int32_t External_FunctionCount();

} // namespace vesk
