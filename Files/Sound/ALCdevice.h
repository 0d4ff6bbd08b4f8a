#pragma once
// The two outputs: the platform's device, and the one that only lets the time pass.
#include "Files/Sound/ALu.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace vesk {

class IAudioDevice;

// Mixes blocks as the clock passes, for an output without a thread.
class ClockDriver {
public:
  // `scratch` null throws the blocks away unmixed.
  void Run(Context& context, int64_t nowMicroseconds, int blockFrames, int rate,
           std::vector<int16_t>* scratch);

private:
  int64_t m_start = -1;
  int64_t m_frames = 0;
};

// Nobody hears it; all sound logic stays true to the clock.
class ALCdevice_null final : public ALCdevice_struct {
public:
  bool open(const char*) override { return true; }
  void close() override {}
  bool reset() override;
  bool start(Context& context) override;
  void stop() override { m_context = nullptr; }
  void Update(int64_t nowMicroseconds) override;
  bool HasThread() const override { return false; }
  bool Listening() const override { return false; }

private:
  Context* m_context = nullptr;
  ClockDriver m_driver;
};

// The platform's output. One that may take its time is opened on a thread of its own; until it stands, the
// clock drives the sources.
class ALCdevice_platform final : public ALCdevice_struct {
public:
  ~ALCdevice_platform() override;
  bool open(const char* name) override;
  void close() override;
  bool reset() override;
  bool start(Context& context) override;
  void stop() override;
  void Update(int64_t nowMicroseconds) override;
  bool Failed() const override { return m_state == State::Failed; }
  bool HasThread() const override { return m_hasThread; }
  bool Listening() const override;

private:
  enum class State { Closed, Opening, Running, Failed };
  static void Fill(void* self, int16_t* samples, int frames);
  void OpenDevice();

  IAudioDevice* m_device = nullptr;
  Context* m_context = nullptr;
  CThread m_opener;
  std::atomic<State> m_state{State::Closed};
  bool m_hasThread = false;
  ClockDriver m_driver;
};

} // namespace vesk
