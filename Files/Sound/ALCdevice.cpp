#include "Files/Sound/ALCdevice.h"

#include "Files/Sound/Audio_Log.h"
#include "Platform/AudioDevice.h"
#include "Platform/Platform.h"

namespace vesk {

namespace {

constexpr int kDeviceBlock = 1024; // frames; devices want a power of two

} // namespace

void ClockDriver::Run(Context& context, int64_t now, int blockFrames, int rate,
                      std::vector<int16_t>* scratch) {
  if (m_start < 0 || now < m_start) m_start = now, m_frames = 0;
  const int64_t due = (now - m_start) * rate / 1000000;
  for (; due - m_frames >= blockFrames; m_frames += blockFrames) {
    if (scratch) scratch->resize(static_cast<size_t>(blockFrames) * kOutputs);
    aluMixBlock(context, scratch ? scratch->data() : nullptr, blockFrames);
    if (context.betweenBlocks) context.betweenBlocks();
  }
}

// ---- null ----

bool ALCdevice_null::reset() {
  updateCount = 1;
  BuildPanTable();
  return true;
}

bool ALCdevice_null::start(Context& context) {
  m_context = &context;
  return true;
}

void ALCdevice_null::Update(int64_t now) {
  if (m_context) m_driver.Run(*m_context, now, updateSize, frequency, nullptr);
}

// ---- platform ----

ALCdevice_platform::~ALCdevice_platform() {
  stop();
  close();
}

bool ALCdevice_platform::open(const char*) {
  m_device = Platform_Get().audio;
  if (!m_device) {
    Audio_Log("No audio output devices found.  Will fallback to use dummy output.\n");
    return false;
  }
  m_hasThread = !m_device->DrivenByClock();
  return true;
}

void ALCdevice_platform::close() { m_device = nullptr; }

bool ALCdevice_platform::reset() {
  format = AL_FORMAT_STEREO16;
  channels = 2;
  updateSize = kDeviceBlock;
  updateCount = 4;
  BuildPanTable();
  return true;
}

bool ALCdevice_platform::start(Context& context) {
  m_context = &context;
  m_state = State::Opening;
  if (!m_hasThread)
    OpenDevice();
  else if (!m_opener.Start([this] { OpenDevice(); }))
    m_state = State::Failed;
  return m_state != State::Failed;
}

void ALCdevice_platform::OpenDevice() {
  AudioFormat wanted{frequency, updateSize};
  if (!m_device->Open(wanted, &Fill, this)) {
    m_state = State::Failed;
    return;
  }
  const CLock lock(m_context->lock);
  frequency = wanted.rate;
  updateSize = wanted.blockFrames;
  m_state = State::Running;
}

void ALCdevice_platform::stop() {
  m_opener.Join();
  if (m_device && m_state == State::Running) m_device->Close();
  m_state = State::Closed;
  m_context = nullptr;
}

void ALCdevice_platform::Update(int64_t now) {
  if (m_state == State::Running)
    m_device->Update(now);
  else if (m_state == State::Opening && m_context)
    m_driver.Run(*m_context, now, kDeviceBlock, 48000, nullptr);
}

bool ALCdevice_platform::Listening() const { return m_device && m_device->Listening(); }

void ALCdevice_platform::Fill(void* self, int16_t* samples, int frames) {
  const auto* device = static_cast<ALCdevice_platform*>(self);
  Context& context = *device->m_context;
  aluMixBlock(context, device->Listening() ? samples : nullptr, frames);
  if (!device->m_hasThread && context.betweenBlocks) context.betweenBlocks();
}

} // namespace vesk
