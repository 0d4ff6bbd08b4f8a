#pragma once
// Sound output: 16-bit stereo, interleaved, asked for by callback.
#include <cstdint>

namespace vesk {

// Fills `frames` stereo frames. Called on the device's thread, never by two threads at once.
using AudioFill = void (*)(void* user, int16_t* samples, int frames);

struct AudioFormat {
  int rate = 48000;       // frames a second
  int blockFrames = 1024; // frames a callback, about
};

class IAudioDevice {
public:
  virtual ~IAudioDevice() = default;
  // Starts calling. `format` takes what the device really runs at. False, with nothing called, when there is
  // none.
  virtual bool Open(AudioFormat& format, AudioFill fill, void* user) = 0;
  virtual void Close() = 0; // no call is running or will come when this returns
  virtual bool IsOpen() const = 0;
  // Once a frame with the clock's time; devices with a thread of their own ignore it, others make up the time
  // passed.
  virtual void Update(int64_t nowMicroseconds) = 0;
  // True: Open takes no time, and blocks are asked for only inside Update, on the caller's thread.
  virtual bool DrivenByClock() const { return false; }
  // False: what is filled in is thrown away, and need not be worked out.
  virtual bool Listening() const { return true; }
};

} // namespace vesk
