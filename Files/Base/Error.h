#pragma once
// The report path that every error of the runner and of scripts takes: call chain, text, channels, box.
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

#define VESK_PRINTF(formatAt, firstAt) __attribute__((format(printf, formatAt, firstAt)))

// A script-level fatal error: reports with the call stack, then ends the game the ordinary way. It returns,
// and callers give their neutral value.
void ShowError(const char* format, ...) VESK_PRINTF(1, 2);
// A non-fatal error of a built-in: the player may ignore it and the script goes on.
void ReportError(const char* format, ...) VESK_PRINTF(1, 2);
// Both end here.
void ReportErrorText(std::string_view text, bool fatal);
// Takes a flag and nothing that converts to one, so that a format with one number never lands here.
template <std::same_as<bool> Flag> void ReportError(std::string_view text, Flag fatal) {
  ReportErrorText(text, fatal);
}

// Where a shader fails to compile the report is headed differently.
enum class ShaderStage { kVertex, kFragment };
void ReportShaderError(ShaderStage stage, std::string_view text);

struct ErrorState {
  std::string last;      // error_last
  bool occurred = false; // error_occurred
  bool inError = false;  // a fatal report was made; the game is on its way out
  bool capture = false;  // script errors only set `captured`
  bool captured = false;
  std::string capturedText; // of the last error that was captured
  bool showBox = true;      // cleared by -noerrors and -headless
  bool allFatal = false;    // option: every error counts as fatal
  int32_t fatalCount = 0;   // reports that ended the game, for tests and tools
  std::string lastReport;   // the whole text of the last report or plain box
  std::string contextLine;  // heads the body of a report outside events; empty: the running code's name
  std::string gameName;     // title of plain boxes
  bool restarted = false;   // this run was launched by a restart
  // Names the event being run, null or false when none runs. Set by the event dispatcher; survives a reset.
  bool (*runningEvent)(std::string& eventName, std::string& objectName, int& action) = nullptr;
};
ErrorState& Error();
// A plain box with the game's name as title, for failures that no script is to blame for; the error channel
// gets the text. Not a report: the game goes on.
void Error_ShowBox(std::string_view text);
// One line a frame of the script call chain, innermost first, below a ruled line.
std::string Error_CallChain();
void Error_Reset();

} // namespace vesk
