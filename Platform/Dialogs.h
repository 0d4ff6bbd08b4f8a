#pragma once
// Modal boxes and the clipboard. Game thread only. All text is UTF-8.
#include <cstdint>
#include <string>

namespace vesk {

enum class ErrorChoice : uint8_t { Abort, Ignore };

class IDialogs {
public:
  virtual ~IDialogs() = default;
  // The error box with Copy, Clear, Abort and, when allowed, Ignore. Without a display it counts as Abort.
  virtual ErrorChoice ShowErrorBox(const std::string& title, const std::string& text, bool allowIgnore) = 0;
  // A box with one button.
  virtual void ShowMessage(const std::string& title, const std::string& text) = 0;
  // Yes or no.
  virtual bool AskYesNo(const std::string& title, const std::string& text) = 0;
  // Asks for an existing file; empty when none was chosen.
  virtual std::string AskOpenFile(const std::string& title, const std::string& filter) = 0;

  virtual bool ClipboardHasText() = 0;
  virtual std::string ClipboardText() = 0;
  virtual void SetClipboardText(const std::string& text) = 0;
};

} // namespace vesk
