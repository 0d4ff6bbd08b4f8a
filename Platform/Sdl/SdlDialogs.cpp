#include "Platform/Sdl/Sdl.h"

#include <cstdio>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace vesk {

namespace {

enum BoxButton : int { kAbort, kIgnore, kCopy, kClear, kNone };

// Shows the box; kNone when it can't be shown.
int ShowBox(SDL_Window* window, Uint32 flags, const std::string& title, const std::string& text,
            const std::vector<SDL_MessageBoxButtonData>& buttons) {
  SDL_MessageBoxData box{};
  box.flags = flags;
  box.window = window;
  box.title = title.c_str();
  box.message = text.c_str();
  box.numbuttons = static_cast<int>(buttons.size());
  box.buttons = buttons.data();
  int pressed = kNone;
  if (SDL_ShowMessageBox(&box, &pressed) == 0) return pressed;
  std::fprintf(stderr, "%s\n%s\n", title.c_str(), text.c_str());
  return kNone;
}

// Line ends of the box are the window system's own.
std::string PlainLines(const std::string& text) {
  std::string plain;
  for (const char letter : text)
    if (letter != '\r') plain += letter;
  return plain;
}

// Runs a program and takes the first line that it prints; false when there is no such program.
bool FirstLineOf(const std::vector<std::string>& words, std::string& line) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = 0;
  const bool started = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  char letter = 0;
  line.clear();
  bool first = true;
  while (started && read(ends[0], &letter, 1) == 1) {
    first = first && letter != '\n';
    if (first) line += letter;
  }
  close(ends[0]);
  int status = 0;
  if (started) waitpid(child, &status, 0);
  return started;
}

} // namespace

ErrorChoice CSdlDialogs::ShowErrorBox(const std::string& title, const std::string& text, bool allowIgnore) {
  std::string shown = PlainLines(text);
  while (true) {
    Uint32 abortKeys = SDL_MESSAGEBOX_BUTTON_ESCAPEKEY_DEFAULT;
    if (!allowIgnore) abortKeys |= SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT;
    std::vector<SDL_MessageBoxButtonData> buttons = {
        {0, kCopy, "Copy"}, {0, kClear, "Clear"}, {abortKeys, kAbort, "Abort"}};
    if (allowIgnore) buttons.push_back({SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT, kIgnore, "Ignore"});
    switch (ShowBox(m_window.Handle(), SDL_MESSAGEBOX_ERROR | SDL_MESSAGEBOX_BUTTONS_LEFT_TO_RIGHT, title,
                    shown, buttons)) {
    case kIgnore: return ErrorChoice::Ignore;
    case kCopy: SetClipboardText(text); break;
    case kClear: shown.clear(); break;
    default: return ErrorChoice::Abort;
    }
  }
}

void CSdlDialogs::ShowMessage(const std::string& title, const std::string& text) {
  ShowBox(
      m_window.Handle(), SDL_MESSAGEBOX_INFORMATION, title, PlainLines(text),
      {{SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT | SDL_MESSAGEBOX_BUTTON_ESCAPEKEY_DEFAULT, kIgnore, "OK"}});
}

bool CSdlDialogs::AskYesNo(const std::string& title, const std::string& text) {
  return ShowBox(m_window.Handle(), SDL_MESSAGEBOX_INFORMATION | SDL_MESSAGEBOX_BUTTONS_LEFT_TO_RIGHT, title,
                 PlainLines(text),
                 {{SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT, kIgnore, "Yes"},
                  {SDL_MESSAGEBOX_BUTTON_ESCAPEKEY_DEFAULT, kAbort, "No"}}) == kIgnore;
}

std::string CSdlDialogs::AskOpenFile(const std::string& title, const std::string& filter) {
  std::string chosen;
  if (FirstLineOf({"zenity", "--file-selection", "--title=" + title, "--file-filter=" + filter}, chosen))
    return chosen;
  if (FirstLineOf({"kdialog", "--title", title, "--getopenfilename", "."}, chosen)) return chosen;
  ShowMessage(title, "No program that shows a file chooser (zenity, kdialog) is installed.\n"
                     "Name the file on the command line instead.");
  return {};
}

bool CSdlDialogs::ClipboardHasText() { return SDL_HasClipboardText() == SDL_TRUE; }

std::string CSdlDialogs::ClipboardText() {
  char* text = SDL_GetClipboardText();
  const std::string copy = text ? text : "";
  SDL_free(text);
  return copy;
}

void CSdlDialogs::SetClipboardText(const std::string& text) { SDL_SetClipboardText(text.c_str()); }

} // namespace vesk
