#include "Platform/HandDriven.h"

#include <algorithm>

namespace vesk {

// Messages

bool CQueuedMessages::Next(Message& message) {
  if (m_waiting.empty()) return false;
  message = m_waiting.front();
  m_waiting.pop_front();
  m_states.Apply(message);
  return true;
}

void CQueuedMessages::Post(const Message& message) {
  m_waiting.push_back(message);
  m_statesNow.Apply(message);
}

void CQueuedMessages::KeyAlone(int key, bool down) {
  if (key < 1 || key > 255) return;
  Message message = KeyCode_Message(key, down);
  message.repeat = down && m_statesNow.Held(key);
  message.system = message.key == 18 || m_statesNow.Held(18);
  Post(message);
}

void CQueuedMessages::Key(int key, bool down) {
  KeyAlone(key, down);
  if (!down || m_statesNow.Held(18)) return;
  const char16_t character = KeyCode_Character(key, m_statesNow.Held(16), m_statesNow.Held(17));
  if (character != 0) Character(character);
}

void CQueuedMessages::Character(char16_t unit) {
  Message message;
  message.kind = MessageKind::Character;
  message.character = unit;
  Post(message);
}

void CQueuedMessages::Text(const std::string& utf8) {
  for (const char16_t unit : Text_ToUtf16(utf8)) Character(unit);
}

void CQueuedMessages::Mouse(int32_t x, int32_t y) {
  m_x = x;
  m_y = y;
  Message message;
  message.kind = MessageKind::MouseMove;
  message.x = x;
  message.y = y;
  Post(message);
}

void CQueuedMessages::Button(int button, bool down) {
  Message message;
  message.kind = down ? MessageKind::ButtonDown : MessageKind::ButtonUp;
  message.button = static_cast<uint8_t>(button);
  message.x = m_x;
  message.y = m_y;
  Post(message);
}

void CQueuedMessages::Wheel(int32_t delta) {
  Message message;
  message.kind = MessageKind::Wheel;
  message.delta = delta;
  Post(message);
}

void CQueuedMessages::Activate(bool active) {
  Message message;
  message.kind = MessageKind::Activate;
  message.active = active;
  Post(message);
}

void CQueuedMessages::PadsChanged() {
  Message message;
  message.kind = MessageKind::PadsChanged;
  Post(message);
}

void CQueuedMessages::Close() {
  Message message;
  message.kind = MessageKind::Close;
  Post(message);
}

// Window

bool CUnseenWindow::Create(const WindowSettings& settings) {
  m_settings = settings;
  m_exists = true;
  Center();
  return true;
}

void CUnseenWindow::Center() {
  m_x = (desktop.width - m_settings.size.width) / 2;
  m_y = (desktop.height - m_settings.size.height) / 2;
}

bool CUnseenWindow::CreateContext() {
  m_failure = "this window has no OpenGL";
  return false;
}

// Dialogs

ErrorChoice CRecordedDialogs::ShowErrorBox(const std::string& title, const std::string& text,
                                           bool allowIgnore) {
  shown.push_back({title, text, true, allowIgnore});
  return allowIgnore ? errorChoice : ErrorChoice::Abort;
}

void CRecordedDialogs::ShowMessage(const std::string& title, const std::string& text) {
  shown.push_back({title, text, false, false});
}

bool CRecordedDialogs::AskYesNo(const std::string& title, const std::string& text) {
  shown.push_back({title, text, false, false});
  return yes;
}

// Pads

std::vector<PadInfo> CNumberPads::Devices() {
  std::vector<PadInfo> infos;
  for (const auto& device : m_devices) infos.push_back(device->info);
  return infos;
}

bool CNumberPads::ReadStandard(int32_t device, StandardPadState& state) {
  const Device* found = Find(device);
  state = found ? found->standard : StandardPadState{};
  return found && found->info.standard;
}

bool CNumberPads::ReadRaw(int32_t device, RawPadState& state) {
  const Device* found = Find(device);
  if (found) {
    state = found->raw;
    return true;
  }
  std::fill(state.axes.begin(), state.axes.end(), 0);
  std::fill(state.buttons.begin(), state.buttons.end(), uint8_t{0});
  std::fill(state.hats.begin(), state.hats.end(), kHatCentred);
  return false;
}

void CNumberPads::Vibrate(int32_t device, uint16_t left, uint16_t right) {
  Device* found = Find(device);
  if (!found) return;
  found->motorLeft = left;
  found->motorRight = right;
}

int32_t CNumberPads::Attach(const PadInfo& info) {
  m_devices.push_back(std::make_unique<Device>());
  m_devices.back()->info = info;
  m_devices.back()->info.device = m_next;
  return m_next++;
}

void CNumberPads::Detach(int32_t device) {
  std::erase_if(m_devices, [&](const auto& known) { return known->info.device == device; });
}

CNumberPads::Device* CNumberPads::Find(int32_t device) {
  for (const auto& known : m_devices)
    if (known->info.device == device) return known.get();
  return nullptr;
}

// Audio

bool CSilentAudio::Open(AudioFormat& format, AudioFill fill, void* user) {
  if (!available) return false;
  m_format = format;
  m_fill = fill;
  m_user = user;
  m_start = -1;
  m_frames = 0;
  return true;
}

void CSilentAudio::Update(int64_t nowMicroseconds) {
  if (!m_fill) return;
  if (m_start < 0) m_start = nowMicroseconds;
  const int64_t due = (nowMicroseconds - m_start) * m_format.rate / 1000000;
  // Whole blocks, as a card would ask for them, and always one ahead of the clock.
  while (m_frames <= due) {
    m_block.assign(static_cast<size_t>(m_format.blockFrames) * 2, 0);
    m_fill(m_user, m_block.data(), m_format.blockFrames);
    m_frames += m_format.blockFrames;
    if (keep) samples.insert(samples.end(), m_block.begin(), m_block.end());
  }
}

} // namespace vesk
