#pragma once
// The three log channels: debug (silent unless asked for), release, error. Game thread only.
#include "Files/Base/Error.h"

#include <cstdarg>
#include <memory>
#include <string>
#include <string_view>

namespace vesk {

class tagIConsole {
public:
  virtual ~tagIConsole() = default;
  virtual bool IsOpen() const { return true; }
  virtual void Output(const char* format, ...) VESK_PRINTF(2, 3) = 0; // UTF-8; any length
};

// Prints, and appends to a file when one was named.
class TConsole final : public tagIConsole {
public:
  enum class Stream { Nothing, StandardOutput, StandardError };
  explicit TConsole(Stream stream, std::string file = {}) : m_stream(stream), m_file(std::move(file)) {}
  void Output(const char* format, ...) override VESK_PRINTF(2, 3);

private:
  Stream m_stream;
  std::string m_file; // path; empty for none
  bool m_fileFailed = false;
};

class DummyConsole final : public tagIConsole {
public:
  void Output(const char*, ...) override VESK_PRINTF(2, 3) {}
};

// Collects its text, for the error report and for tests.
class TErrStreamConsole final : public tagIConsole {
public:
  void Output(const char* format, ...) override VESK_PRINTF(2, 3);
  const std::string& Text() const { return m_text; }
  void Clear() { m_text.clear(); }

private:
  std::string m_text;
};

tagIConsole& DebugConsole();
tagIConsole& ReleaseConsole();
tagIConsole& ErrorConsole();

struct ConsoleState {
  std::unique_ptr<tagIConsole> debug, release, error;
};
ConsoleState& Consoles(); // replace a member to redirect its channel; never null
// Channels as a plain start has them. Files get every text of their channel appended; `print` false keeps the
// terminal quiet.
void Console_Open(bool print, const std::string& releaseFile, const std::string& debugFile);
void Console_Reset();

// A printf into a string.
std::string FormatText(const char* format, ...) VESK_PRINTF(1, 2);
std::string FormatTextV(const char* format, va_list arguments);

} // namespace vesk
