#include "Files/Base/Console.h"

#include "Platform/Files.h"

#include <cstdio>

namespace vesk {

namespace {

std::unique_ptr<tagIConsole> MakePrinting(TConsole::Stream stream) {
  return std::make_unique<TConsole>(stream);
}

ConsoleState state{std::make_unique<DummyConsole>(), MakePrinting(TConsole::Stream::StandardOutput),
                   MakePrinting(TConsole::Stream::StandardError)};

} // namespace

std::string FormatTextV(const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

std::string FormatText(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatTextV(format, arguments);
  va_end(arguments);
  return text;
}

void TConsole::Output(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string text = FormatTextV(format, arguments);
  va_end(arguments);
  if (m_stream != Stream::Nothing) {
    std::FILE* stream = m_stream == Stream::StandardError ? stderr : stdout;
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
  }
  if (m_file.empty() || m_fileFailed) return;
  std::string why;
  if (File_Append(m_file, text, &why)) return;
  m_fileFailed = true; // said once
  std::fprintf(stderr, "Log file: %s\n", why.c_str());
}

void TErrStreamConsole::Output(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  m_text += FormatTextV(format, arguments);
  va_end(arguments);
}

tagIConsole& DebugConsole() { return *state.debug; }
tagIConsole& ReleaseConsole() { return *state.release; }
tagIConsole& ErrorConsole() { return *state.error; }
ConsoleState& Consoles() { return state; }

void Console_Open(bool print, const std::string& releaseFile, const std::string& debugFile) {
  using Stream = TConsole::Stream;
  state.release = std::make_unique<TConsole>(print ? Stream::StandardOutput : Stream::Nothing, releaseFile);
  state.error = std::make_unique<TConsole>(print ? Stream::StandardError : Stream::Nothing);
  if (debugFile.empty())
    state.debug = std::make_unique<DummyConsole>();
  else
    state.debug = std::make_unique<TConsole>(print ? Stream::StandardOutput : Stream::Nothing, debugFile);
}

void Console_Reset() { Console_Open(true, {}, {}); }

} // namespace vesk
