#include "Files/Base/Error.h"

#include "Files/Base/Console.h"
#include "Files/Code/Code.h"
#include "Files/Room/Room.h"
#include "Files/Run/Timing.h"
#include "Platform/Platform.h"

#include <cstdarg>
#include <cstdio>

namespace vesk {

namespace {

ErrorState state;

constexpr size_t kScriptMessage = 1024; // bytes, the end mark included
constexpr int64_t kBoxPause = 100000;   // microseconds

const std::string kHashes = std::string(92, '#') + "\n";

std::string Body(std::string_view text, bool fatal) {
  const char* prefix = fatal ? "FATAL " : "";
  const std::string message(text);
  std::string event, object;
  int action = 0;
  if (state.runningEvent && state.runningEvent(event, object, action))
    return FormatText("%sERROR in\naction number %d\nof %s\nfor object %s:\n\n\n%s", prefix, action,
                      event.c_str(), object.c_str(), message.c_str());
  const DebugFrame* frame = FrameHead();
  const char* line = !state.contextLine.empty() ? state.contextLine.c_str() : frame ? frame->name : "";
  return FormatText("%s%s\n\n\n%s\n", prefix, line, message.c_str());
}

std::string Ruled(const std::string& body) {
  std::string text = kHashes + body;
  if (const DebugFrame* frame = FrameHead()) {
    if (frame->line >= 0)
      text += FormatText(" at %s (line %d) - %s\n", frame->name, frame->line, "<unknown source line>");
    else
      text += FormatText("at %s\n", frame->name);
  }
  return text + kHashes;
}

std::string BoxText(const std::string& report) {
  std::string text = std::string(43, '_') + "\r\n";
  for (size_t at = 0; at < report.size(); ++at) {
    const char letter = report[at];
    const bool lonelyFeed = letter == '\n' && (at == 0 || report[at - 1] != '\r');
    const bool lonelyReturn = letter == '\r' && (at + 1 == report.size() || report[at + 1] != '\n');
    if (letter == '\t')
      text += "       ";
    else if (lonelyFeed || lonelyReturn)
      text += "\r\n";
    else
      text += letter;
  }
  return text;
}

ErrorChoice AskUser(const std::string& report, bool fatal) {
  for (int round = 0; round < 2; ++round) {
    Platform_Get().clock->Sleep(kBoxPause);
    ProcessMessages();
  }
  return Platform_Get().dialogs->ShowErrorBox("Code Error", BoxText(report), !fatal);
}

void Report(const std::string& ruled, bool fatal) {
  const std::string report = Error_CallChain() + ruled;
  ErrorChoice choice = ErrorChoice::Ignore;
  // A game on its way out may fail again and again; one box is enough.
  if (state.showBox && !state.inError) choice = AskUser(report, fatal);
  state.last = report;
  state.lastReport = report;
  state.occurred = true;
  if (!state.capture) ErrorConsole().Output("ERROR!!! :: %s\n", report.c_str());
  if (!fatal && choice != ErrorChoice::Abort) return;
  ++state.fatalCount;
  state.inError = true;
  Rooms().request = RoomRequestAbortGame;
  Message quit;
  quit.kind = MessageKind::Quit;
  Platform_Get().messages->Post(quit);
}

} // namespace

void ShowError(const char* format, ...) {
  char text[kScriptMessage];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  if (state.capture) {
    state.captured = true;
    state.capturedText = text;
    return;
  }
  ReportError(std::string_view(text), true);
}

void ReportError(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string text = FormatTextV(format, arguments);
  va_end(arguments);
  ReportError(std::string_view(text), false);
}

void ReportErrorText(std::string_view text, bool fatal) {
  fatal = fatal || state.allFatal;
  Report(Ruled(Body(text, fatal)), fatal);
}

void ReportShaderError(ShaderStage stage, std::string_view text) {
  const char* prefix = stage == ShaderStage::kVertex
                           ? "FATAL ERROR in Vertex Shader compilation\n\nShaderName: "
                           : "FATAL ERROR in Fragment Shader compilation\n\nShaderName: ";
  Report(Ruled(prefix + std::string(text)), true);
}

std::string Error_CallChain() {
  std::string text = std::string(92, '-') + "\n";
  for (const DebugFrame* frame = FrameHead(); frame; frame = frame->previous)
    text += frame->line < 0 ? FormatText("called from - %s\n", frame->name)
                            : FormatText("called from - %s (line %d)\n", frame->name, frame->line);
  return text;
}

void Error_ShowBox(std::string_view text) {
  ErrorConsole().Output("%.*s\n", static_cast<int>(text.size()), text.data());
  state.lastReport = text;
  // A game on its way out may fail again and again; one box is enough.
  if (state.showBox && !state.inError) Platform_Get().dialogs->ShowMessage(state.gameName, state.lastReport);
}

ErrorState& Error() { return state; }

void Error_Reset() {
  const auto runningEvent = state.runningEvent;
  state = ErrorState{};
  state.runningEvent = runningEvent;
}

} // namespace vesk
