#pragma once
// The contract between the game's native functions and the runner: function shapes, the code table that data
// records point into, the debug frame, with, event_inherited.
#include "Files/Code/Value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vesk {

class CInstance;
struct Self;

// ---- function shapes ----

// An event, room or instance function. Rules that never look at `other` take self alone.
class EventFunction {
public:
  constexpr EventFunction() = default;
  constexpr EventFunction(void (*function)(Self)) : m_self(function) {}
  constexpr EventFunction(void (*function)(Self, Self)) : m_pair(function) {}
  constexpr explicit operator bool() const { return m_self || m_pair; }
  bool operator==(const EventFunction&) const = default;
  void operator()(CInstance* self, CInstance* other) const;

private:
  void (*m_self)(Self) = nullptr;
  void (*m_pair)(Self, Self) = nullptr;
};

// A script: `args` points at values owned by the caller; `result` is released and overwritten.
using ScriptFunction = RValue& (*)(CInstance* self, CInstance* other, RValue& result, int argc,
                                   RValue** args);
// A built-in: `args` is a contiguous array that the built-in must not release.
using BuiltinFunction = void (*)(RValue& result, CInstance* self, CInstance* other, int argc, RValue* args);

struct CodeEntry {
  const char* name; // fbl_Object_obj_coin_Step_0; lives as long as the game
  EventFunction event;
  ScriptFunction script = nullptr;
};

// ---- the descriptor: all that the runner knows of the game ----

struct VariableEntry {
  const char* name;
  int32_t id; // at build time the slot, -1 for a built-in variable; the final id after the load
};
struct FunctionEntry {
  const char* name;
  int32_t id = -1;
};

struct GameDescriptor {
  uint8_t* container = nullptr; // writable; null when a file is to be read
  uint32_t containerSize = 0;
  int32_t globalSlotCount = 0;
  int32_t instanceSlotCount = 0;
  std::span<const CodeEntry> codeTable;
  std::span<VariableEntry> variableTable; // in slot order
  std::span<FunctionEntry> functionTable;
};

// ---- debug frames ----

// One link of the script call chain, for the error report. Lives on the stack.
struct DebugFrame {
  explicit DebugFrame(const char* functionName);
  ~DebugFrame();
  DebugFrame(const DebugFrame&) = delete;
  DebugFrame& operator=(const DebugFrame&) = delete;

  DebugFrame* previous;
  const char* name;
  int32_t line = -1; // negative: unknown, and left out of the report
};
DebugFrame* FrameHead(); // innermost; null between events

// ---- code objects ----

// What an event slot, a room or a room's instance holds: an entry of the code table, or nothing.
class CCode {
public:
  explicit CCode(int32_t index); // below 0 or outside the table: runs nothing
  explicit CCode(const RValue& constant);
  virtual ~CCode();
  CCode(const CCode&) = delete;
  CCode& operator=(const CCode&) = delete;

  int32_t Kind() const { return m_kind; } // 1 normal, 3 constant, 0 no code
  const char* Name() const { return m_entry ? m_entry->name : ""; }
  const CodeEntry* Entry() const { return m_entry; }
  int32_t Index() const { return m_index; }
  const RValue& Constant() const { return m_constant; }

private:
  int32_t m_kind;
  int32_t m_index;
  const CodeEntry* m_entry;
  RValue m_constant;
};

// Runs the code with a debug frame. True unless an error was captured.
bool Code_Execute(CInstance* self, CInstance* other, const CCode* code, RValue& result);
// The same; an error that was captured goes to the report as one that is not fatal.
bool Code_ExecuteReporting(CInstance* self, CInstance* other, const CCode* code, RValue& result);
// The same; after an error `result` is the text "ERROR".
bool Code_ExecuteMarking(CInstance* self, CInstance* other, const CCode* code, RValue& result);
// Runs script `index`; false for an index outside the table or a hole.
bool Script_Perform(int32_t index, CInstance* self, CInstance* other, int argc, RValue& result, RValue* args);

// What the debug channel is told of the code that runs: nothing; the name of every function that is entered;
// also its depth, whose event it is, and every built-in that is called by index.
enum class CodeTrace { kOff, kEntries, kExtended };

struct CodeState {
  std::span<const CodeEntry> table;
  bool execute = true; // cleared by -oldexec: no code runs
  CodeTrace trace = CodeTrace::kOff;
  const char* currentFunction = ""; // the built-in that is running, for argument messages
  int32_t codeCount = 0;            // live code objects
  int32_t instanceSlotCount = 0;    // of every instance, from the descriptor
  RValue* arguments = nullptr;      // of the script that Script_Perform runs; at least 16
  int argumentCount = 0;
};
CodeState& Code();
void Code_Trace(const std::string& entered); // a line of the trace; indented in the extended one
void Code_Reset();

// ---- with ----

// The instances that `with (target)` visits, collected before the first round. `self` and `other` are the
// pair of the surrounding code; targets -1 self, -2 other, -3 all, an object index, or an instance id.
// Snapshots share one stack: they end in the reverse order of their beginning, as local variables do.
class WithSnapshot {
public:
  WithSnapshot(CInstance* self, CInstance* other, int32_t target);
  ~WithSnapshot();
  WithSnapshot(const WithSnapshot&) = delete;
  WithSnapshot& operator=(const WithSnapshot&) = delete;
  CInstance* Next(); // from the one collected last to the first; null at the end

private:
  size_t m_first, m_next;
};
// What `target.variable` reads from, and what it writes to: an object, -3 for all, or an instance id, which
// reaches a deactivated instance too.
CInstance* FirstTarget(int32_t target); // null when there is none
std::vector<CInstance*> WriteTargets(int32_t target);

// ---- random numbers (WELL512a) ----

void Random_Seed(int32_t seed);
uint32_t Random_Next();
struct RandomState {
  uint32_t words[16];
  uint32_t index;
  int32_t seed; // that it was last given
};
RandomState& Random();
// What randomize seeds with in place of the clock, for runs that repeat; none by default.
std::optional<int32_t>& Random_ClockSeed();

} // namespace vesk
