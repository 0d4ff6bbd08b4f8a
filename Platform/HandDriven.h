#pragma once
// A platform that a test or a script drives: virtual clock, injected messages, pads of numbers, no window, no
// sound card.
#include "Platform/KeyCodes.h"
#include "Platform/Platform.h"
#include "Platform/Text.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class CQueuedMessages final : public IMessages {
public:
  bool Next(Message& message) override;
  void Post(const Message& message) override;
  bool KeyHeld(int key) const override { return m_states.Held(key); }
  bool KeyHeldNow(int key) override { return m_statesNow.Held(key); }
  bool KeyToggled(int key) const override { return m_states.Toggled(key); }
  void InjectKey(int key, bool down) override { Key(key, down); }

  // Plain gestures; each posts what a window with a US keyboard would. A held key that is pressed again
  // repeats.
  void Key(int key, bool down);      // with the character that it gives
  void KeyAlone(int key, bool down); // without
  void Character(char16_t unit);
  void Text(const std::string& utf8); // one character message a UTF-16 unit, no keys
  void Mouse(int32_t x, int32_t y);
  void Button(int button, bool down); // at the last mouse position
  void Wheel(int32_t delta);
  void Activate(bool active);
  void PadsChanged();
  void Close();

private:
  std::deque<Message> m_waiting;
  CKeyStates m_states;    // as of the messages taken
  CKeyStates m_statesNow; // as of the messages posted
  int32_t m_x = 0;
  int32_t m_y = 0;
};

class CUnseenWindow final : public IWindow {
public:
  bool Create(const WindowSettings& settings) override;
  void Destroy() override { m_exists = false; }
  bool Exists() const override { return m_exists; }
  const std::string& Failure() const override { return m_failure; }
  Extent DesktopSize() const override { return desktop; }
  double RefreshRate() const override { return refreshRate; }
  Extent FrameSize() const override { return {6, 29}; }
  void SetTitle(const std::string& title) override { m_settings.title = title; }
  std::string Title() const override { return m_settings.title; }
  void SetSize(Extent size) override { m_settings.size = size; }
  Extent Size() const override { return fixedSize.width > 0 ? fixedSize : m_settings.size; }
  void SetPosition(int32_t x, int32_t y) override { m_x = x, m_y = y; }
  void Position(int32_t& x, int32_t& y) const override { x = m_x, y = m_y; }
  void Center() override;
  void SetFullscreen(bool on) override { m_settings.fullscreen = on; }
  bool Fullscreen() const override { return m_settings.fullscreen; }
  void SetBorder(bool on) override { m_settings.borderless = !on; }
  void SetResizable(bool on) override { m_settings.resizable = on; }
  void SetVisible(bool on) override { m_visible = on; }
  bool Visible() const override { return m_visible; }
  void Focus() override {}
  bool HasFocus() const override { return focused; }
  void ShowCursor(bool on) override { m_settings.cursorVisible = on; }
  void SetCursor(CursorShape shape) override { cursor = shape; }
  void CaptureMouse(bool on) override { captured = on; }
  void CursorPosition(int32_t& x, int32_t& y) const override { x = m_cursorX, y = m_cursorY; }
  void SetCursorPosition(int32_t x, int32_t y) override { m_cursorX = m_x + x, m_cursorY = m_y + y; }
  bool CreateContext() override;
  bool HasContext() const override { return false; }
  void MakeCurrent() override {}
  void Swap() override { ++swaps; }
  Extent DrawableSize() const override { return Size(); }
  bool SetSwapInterval(int) override { return false; }

  Extent desktop{1920, 1080};
  double refreshRate = 60;
  Extent fixedSize{}; // above 0: the size that the window has whatever is asked for
  bool focused = true;
  bool captured = false;
  CursorShape cursor = CursorShape::Default;
  int swaps = 0;
  const WindowSettings& Settings() const { return m_settings; }

private:
  WindowSettings m_settings;
  std::string m_failure;
  bool m_exists = false;
  bool m_visible = true;
  int32_t m_x = 0, m_y = 0, m_cursorX = 0, m_cursorY = 0;
};

class CRecordedDialogs final : public IDialogs {
public:
  ErrorChoice ShowErrorBox(const std::string& title, const std::string& text, bool allowIgnore) override;
  void ShowMessage(const std::string& title, const std::string& text) override;
  bool AskYesNo(const std::string& title, const std::string& text) override;
  std::string AskOpenFile(const std::string&, const std::string&) override { return fileChoice; }
  bool ClipboardHasText() override { return !clipboard.empty(); }
  std::string ClipboardText() override { return clipboard; }
  void SetClipboardText(const std::string& text) override { clipboard = text; }

  struct Shown {
    std::string title;
    std::string text;
    bool error = false;
    bool allowedIgnore = false;
  };
  std::vector<Shown> shown;                      // everything that was shown, oldest first
  ErrorChoice errorChoice = ErrorChoice::Ignore; // what the user answers; Abort where Ignore is not offered
  bool yes = true;
  std::string fileChoice;
  std::string clipboard;
};

class CNumberPads final : public IPads {
public:
  bool Available() const override { return available; }
  std::vector<PadInfo> Devices() override;
  bool ReadStandard(int32_t device, StandardPadState& state) override;
  bool ReadRaw(int32_t device, RawPadState& state) override;
  void Vibrate(int32_t device, uint16_t left, uint16_t right) override;

  struct Device {
    PadInfo info;
    StandardPadState standard;
    RawPadState raw;
    uint16_t motorLeft = 0;
    uint16_t motorRight = 0;
  };
  // Attach and Detach do not post PadsChanged; the caller does.
  int32_t Attach(const PadInfo& info); // the device's number
  void Detach(int32_t device);
  Device* Find(int32_t device); // null when detached; stays where it is while attached
  bool available = true;

private:
  std::vector<std::unique_ptr<Device>> m_devices;
  int32_t m_next = 0;
};

// Makes up the frames that the clock has passed, block by block, on the caller's thread; silence when nobody
// listens.
class CSilentAudio final : public IAudioDevice {
public:
  bool Open(AudioFormat& format, AudioFill fill, void* user) override;
  void Close() override { m_fill = nullptr; }
  bool IsOpen() const override { return m_fill != nullptr; }
  void Update(int64_t nowMicroseconds) override;
  bool DrivenByClock() const override { return true; }
  bool Listening() const override { return keep; }

  bool available = true;
  bool keep = false;                          // collects what was mixed
  std::vector<int16_t> samples;               // stereo, interleaved
  int64_t Frames() const { return m_frames; } // all frames asked for since Open

private:
  AudioFormat m_format;
  AudioFill m_fill = nullptr;
  void* m_user = nullptr;
  int64_t m_start = -1; // clock time of the first update
  int64_t m_frames = 0;
  std::vector<int16_t> m_block;
};

class CHandDrivenPlatform {
public:
  CVirtualClock clock;
  CQueuedMessages messages;
  CUnseenWindow window;
  CRecordedDialogs dialogs;
  CNumberPads pads;
  CSilentAudio audio;

  const Platform& Interfaces() {
    m_platform = {&clock, &messages, &window, &dialogs, &pads, &audio};
    return m_platform;
  }

private:
  Platform m_platform;
};

} // namespace vesk
