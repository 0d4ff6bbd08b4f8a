#include "Files/Runner/Function_Runner.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Runner.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"

#include <vector>

namespace vesk {

int32_t parameter_count() {
  return static_cast<int32_t>(CommandLine_Words(Runner().originalCommandLine).size());
}

std::string parameter_string(int32_t index) {
  if (index == 0) return Path_Executable();
  const std::vector<std::string> words = CommandLine_Words(Runner().originalCommandLine);
  return index > 0 && static_cast<size_t>(index) <= words.size() ? words[static_cast<size_t>(index - 1)]
                                                                 : std::string();
}

std::string environment_get_variable(std::string_view name) {
  std::string value;
  Environment_Get(std::string(name), value);
  return value;
}

void game_change(std::string_view file, std::string_view exitFile) {
  Runner().nextGame = file;
  Runner().nextExit = exitFile;
  Loop().changeGame = true;
  Rooms().request = RoomRequestEndGame;
}

void show_error(std::string_view text, bool abort) { ReportError(text, abort); }

void show_message(std::string_view text) {
  if (Options().headless)
    ReleaseConsole().Output("%.*s\n", static_cast<int>(text.size()), text.data());
  else
    Platform_Get().dialogs->ShowMessage(Error().gameName, std::string(text));
}

bool show_question(std::string_view text) {
  return !Options().headless && Platform_Get().dialogs->AskYesNo(Error().gameName, std::string(text));
}

void show_debug_message(std::string_view text) {
  ReleaseConsole().Output("%.*s\n", static_cast<int>(text.size()), text.data());
}

bool clipboard_has_text() { return Platform_Get().dialogs->ClipboardHasText(); }
std::string clipboard_get_text() { return Platform_Get().dialogs->ClipboardText(); }
void clipboard_set_text(std::string_view text) {
  Platform_Get().dialogs->SetClipboardText(std::string(text));
}

namespace {

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&parameter_count>("parameter_count"),
    Builtin<&parameter_string>("parameter_string"),
    Builtin<&environment_get_variable>("environment_get_variable"),
    Builtin<&game_change>("game_change"),
    Builtin<&show_error>("show_error"),
    Builtin<&show_message>("show_message"),
    Builtin<&show_question>("show_question"),
    Builtin<&show_debug_message>("show_debug_message"),
    Builtin<&clipboard_has_text>("clipboard_has_text"),
    Builtin<&clipboard_get_text>("clipboard_get_text"),
    Builtin<&clipboard_set_text>("clipboard_set_text"),
};

} // namespace

void Function_AddRunner() { Function_Add(kBuiltins); }

} // namespace vesk
