// Code objects, their execution, debug frames and script calls.
#include "Files/Code/Code.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/Self.h"
#include "Files/Script/Script.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace vesk {

namespace {

CodeState g_code;
DebugFrame* g_frameHead = nullptr;

constexpr int kArgumentRoom = 16; // a script may read argument15 whatever it got

// Publishes the arguments of the running script for argument0 and its kin.
class ArgumentScope {
public:
  ArgumentScope(RValue* arguments, int count)
      : m_arguments(std::exchange(g_code.arguments, arguments)),
        m_count(std::exchange(g_code.argumentCount, count)) {}
  ~ArgumentScope() {
    g_code.arguments = m_arguments;
    g_code.argumentCount = m_count;
  }
  ArgumentScope(const ArgumentScope&) = delete;
  ArgumentScope& operator=(const ArgumentScope&) = delete;

private:
  RValue* m_arguments;
  int m_count;
};

} // namespace

CodeState& Code() { return g_code; }

void Code_Reset() {
  const int32_t live = g_code.codeCount; // code objects outlive the reset only where their holders do
  g_code = {};
  g_code.codeCount = live;
}

DebugFrame::DebugFrame(const char* functionName)
    : previous(std::exchange(g_frameHead, this)), name(functionName) {
  if (g_code.trace != CodeTrace::kOff) Code_Trace(functionName);
}

DebugFrame::~DebugFrame() { g_frameHead = previous; }

DebugFrame* FrameHead() { return g_frameHead; }

void Code_Trace(const std::string& entered) {
  int depth = 0;
  if (g_code.trace == CodeTrace::kExtended)
    for (const DebugFrame* frame = g_frameHead; frame; frame = frame->previous) ++depth;
  DebugConsole().Output("%*s%s\n", 2 * depth, "", entered.c_str());
}

// ---- code objects ----

CCode::CCode(int32_t index) : m_kind(0), m_index(index < 0 ? -1 : index), m_entry(nullptr) {
  if (index < 0) return;
  ++g_code.codeCount;
  if (static_cast<size_t>(index) >= g_code.table.size()) return;
  m_entry = &g_code.table[static_cast<size_t>(index)];
  m_kind = 1;
}

CCode::CCode(const RValue& constant) : m_kind(3), m_index(-1), m_entry(nullptr), m_constant(constant) {}

CCode::~CCode() {
  if (m_index >= 0) --g_code.codeCount;
}

bool Code_Execute(CInstance* self, CInstance* other, const CCode* code, RValue& result) {
  if (!g_code.execute) return true;
  Error().captured = false;
  if (!code) return true;
  if (code->Kind() == 3) {
    result = code->Constant();
    return true;
  }
  const CodeEntry* entry = code->Entry();
  if (!entry) return true;
  const DebugFrame frame(entry->name);
  if (entry->event)
    entry->event(self, other);
  else if (entry->script)
    entry->script(self, other, result, 0, nullptr);
  return !Error().captured;
}

bool Code_ExecuteReporting(CInstance* self, CInstance* other, const CCode* code, RValue& result) {
  if (Code_Execute(self, other, code, result)) return true;
  ReportError(Error().capturedText, false);
  Error().captured = false;
  return false;
}

bool Code_ExecuteMarking(CInstance* self, CInstance* other, const CCode* code, RValue& result) {
  if (Code_Execute(self, other, code, result)) return true;
  result.SetString("ERROR");
  return false;
}

bool Script_Perform(int32_t index, CInstance* self, CInstance* other, int argc, RValue& result,
                    RValue* args) {
  const CScript* script = Script_Find(index);
  if (!script || !script->entry || !script->entry->script) return false;
  if (!g_code.execute) return true;

  // The usual number of arguments stands on the stack.
  std::array<RValue, kArgumentRoom> few;
  std::array<RValue*, kArgumentRoom> fewPointers;
  std::vector<RValue> many(argc > kArgumentRoom ? static_cast<size_t>(argc) : 0);
  std::vector<RValue*> manyPointers(many.size());
  RValue* const values = many.empty() ? few.data() : many.data();
  RValue** const pointers = many.empty() ? fewPointers.data() : manyPointers.data();
  const int room = std::max(argc, kArgumentRoom);
  for (int i = 0; i < room; ++i) {
    if (i < argc) values[i] = args[i];
    pointers[i] = &values[i];
  }
  const DebugFrame frame(script->entry->name);
  const ArgumentScope scope(values, argc);
  const bool capturedBefore = Error().captured;
  script->entry->script(self, other, result, argc, pointers);
  if (Error().captured && !capturedBefore)
    Error().capturedText = "In script " + script->name + ":\n" + Error().capturedText;
  return true;
}

} // namespace vesk
