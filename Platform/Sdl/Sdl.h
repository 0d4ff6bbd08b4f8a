#pragma once
// The desktop on SDL2. Included inside this folder only.
#include "Platform/KeyCodes.h"
#include "Platform/Platform.h"

#include <SDL.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace vesk {

class CSdlWindow final : public IWindow {
public:
  // A window for a driver of that name; null: whichever SDL finds.
  explicit CSdlWindow(const char* driver = nullptr) : m_driver(driver ? driver : "") {}
  ~CSdlWindow() override;
  CSdlWindow(const CSdlWindow&) = delete;
  CSdlWindow& operator=(const CSdlWindow&) = delete;

  bool Create(const WindowSettings& settings) override;
  void Destroy() override;
  bool Exists() const override { return m_window != nullptr; }
  const std::string& Failure() const override { return m_failure; }
  Extent DesktopSize() const override;
  double RefreshRate() const override;
  Extent FrameSize() const override;
  void SetTitle(const std::string& title) override;
  std::string Title() const override;
  void SetSize(Extent size) override;
  Extent Size() const override;
  void SetPosition(int32_t x, int32_t y) override;
  void Position(int32_t& x, int32_t& y) const override;
  void Center() override;
  void SetFullscreen(bool on) override;
  bool Fullscreen() const override;
  void SetBorder(bool on) override;
  void SetResizable(bool on) override;
  void SetVisible(bool on) override;
  bool Visible() const override;
  void Focus() override;
  bool HasFocus() const override;
  void ShowCursor(bool on) override;
  void SetCursor(CursorShape shape) override;
  void CaptureMouse(bool on) override;
  void CursorPosition(int32_t& x, int32_t& y) const override;
  void SetCursorPosition(int32_t x, int32_t y) override;
  bool CreateContext() override;
  bool HasContext() const override { return m_context != nullptr; }
  void MakeCurrent() override;
  void Swap() override;
  Extent DrawableSize() const override;
  bool SetSwapInterval(int interval) override;

  SDL_Window* Handle() const { return m_window; }

private:
  bool StartVideo() const;
  bool Unseen() const; // a driver without a display
  void TakeDisplayMode(const DisplayMode& wish);

  std::string m_driver;
  mutable bool m_videoStarted = false;
  SDL_Window* m_window = nullptr;
  SDL_GLContext m_context = nullptr;
  SDL_Cursor* m_cursor = nullptr;
  std::string m_failure;
  Extent m_createdSize;
  bool m_ownMode = false; // full screen switches the display
};

class CSdlMessages final : public IMessages {
public:
  bool Next(Message& message) override;
  void Post(const Message& message) override;
  bool KeyHeld(int key) const override { return m_states.Held(key); }
  bool KeyHeldNow(int key) override;
  bool KeyToggled(int key) const override;
  void InjectKey(int key, bool down) override;

private:
  void Pump();
  void Take(const SDL_Event& event);
  void TakeKey(const SDL_KeyboardEvent& event);
  void TakeWindow(const SDL_WindowEvent& event);
  void PostCharacter(char16_t unit);

  std::deque<Message> m_waiting;
  CKeyStates m_states;    // as of the messages taken
  CKeyStates m_statesNow; // as of the messages posted
};

class CSdlPads final : public IPads {
public:
  ~CSdlPads() override;
  CSdlPads() = default;
  CSdlPads(const CSdlPads&) = delete;
  CSdlPads& operator=(const CSdlPads&) = delete;

  bool Available() const override;
  std::vector<PadInfo> Devices() override;
  bool ReadStandard(int32_t device, StandardPadState& state) override;
  bool ReadRaw(int32_t device, RawPadState& state) override;
  void Vibrate(int32_t device, uint16_t left, uint16_t right) override;

private:
  struct Device {
    SDL_Joystick* joystick = nullptr;
    SDL_GameController* controller = nullptr; // null when its layout is unknown
    PadInfo info;
    uint16_t left = 0, right = 0;
    Uint32 sent = 0; // tick of the last rumble command
  };
  bool Start() const;
  void OpenNew();
  void CloseGone();
  static void Close(Device& device);
  Device* Find(int32_t device);

  mutable bool m_started = false;
  mutable bool m_failed = false;
  std::vector<Device> m_devices;
};

class CSdlAudio final : public IAudioDevice {
public:
  ~CSdlAudio() override { CSdlAudio::Close(); }
  CSdlAudio() = default;
  CSdlAudio(const CSdlAudio&) = delete;
  CSdlAudio& operator=(const CSdlAudio&) = delete;

  bool Open(AudioFormat& format, AudioFill fill, void* user) override;
  void Close() override;
  bool IsOpen() const override { return m_device != 0; }
  void Update(int64_t) override {}

private:
  static void SDLCALL Call(void* self, Uint8* bytes, int length);

  std::atomic<SDL_AudioDeviceID> m_device{0}; // opened on another thread than the game's
  AudioFill m_fill = nullptr;
  void* m_user = nullptr;
};

class CSdlDialogs final : public IDialogs {
public:
  explicit CSdlDialogs(const CSdlWindow& window) : m_window(window) {}
  ErrorChoice ShowErrorBox(const std::string& title, const std::string& text, bool allowIgnore) override;
  void ShowMessage(const std::string& title, const std::string& text) override;
  bool AskYesNo(const std::string& title, const std::string& text) override;
  std::string AskOpenFile(const std::string& title, const std::string& filter) override;
  bool ClipboardHasText() override;
  std::string ClipboardText() override;
  void SetClipboardText(const std::string& text) override;

private:
  const CSdlWindow& m_window;
};

// The virtual key code of a key; 0 for one without.
int Sdl_KeyCode(const SDL_Keysym& key);

} // namespace vesk
