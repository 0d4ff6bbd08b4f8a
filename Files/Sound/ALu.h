#pragma once
// The mixer's side of the OpenAL layer: what a context holds and how a block of output is made of it.
// What touches a context is used under Context::lock, unless it says otherwise.
#include "Files/Sound/ZqOpenAL.h"
#include "Platform/Threads.h"

#include <array>
#include <cfloat>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class IClock;

inline constexpr int kOutputs = 2;       // most output channels
inline constexpr int kFractionBits = 14; // of a read position
inline constexpr int kFractionOne = 1 << kFractionBits;
inline constexpr int kPanSteps = 512; // around the listener, 0 in front, clockwise

struct Vector3 {
  float x = 0, y = 0, z = 0;
};

struct ALbuffer {
  std::vector<uint8_t> bytes; // empty for a silent one
  ALenum format = AL_FORMAT_MONO16;
  int channels = 1;
  int sampleBytes = 2; // 1 unsigned, 2 signed, 4 float
  int frequency = 0;   // frames a second
  int frames = 0;
  int uses = 0; // sources that hold it
};

// What a block is mixed with.
struct SourceParameters {
  std::array<float, kOutputs> gain{};
  int step = kFractionOne; // read position a frame, fixed point
};

struct ALsource {
  // As the application sets them.
  float pitch = 1, gain = 1, minimumGain = 0, maximumGain = 1;
  float referenceDistance = 1, maximumDistance = FLT_MAX, rolloff = 1;
  float coneInner = 360, coneOuter = 360, coneOuterGain = 0;
  Vector3 position, velocity, direction;
  bool relative = false, looping = false, spatial = true;
  uint32_t listenerMask = 1;

  ALenum state = AL_INITIAL;
  ALenum type = AL_UNDETERMINED;
  std::vector<ALuint> queue; // buffer names; those before `current` are processed
  size_t current = 0;
  int frame = 0;             // in the current buffer
  int fraction = 0;          // 14 bits
  double pendingOffset = -1; // frames into the queue at which the next play begins

  int64_t startTime = 0;                 // microseconds
  bool begun = false;                    // mixed at least once since it was started
  bool changed = true;                   // its gains don't ramp in the next block
  std::array<float, kOutputs> reached{}; // gains at the end of the last block
  int blockFrames = 0;                   // of the block in work: how much of it the source takes
  int blockStep = kFractionOne;          // and the step with which it reads
};

struct ALlistener {
  Vector3 position, velocity;
  Vector3 at{0, 0, -1}, up{0, 1, 0};
  float gain = 1;
};

class ALCdevice_struct {
public:
  virtual ~ALCdevice_struct() = default;
  virtual bool open(const char* name) = 0;
  virtual void close() = 0;
  virtual bool reset() = 0; // takes the format over; builds the pan table
  virtual bool start(Context& context) = 0;
  virtual void stop() = 0; // no block is mixed or will be when this returns
  // Once a frame, outside the lock: devices that have no thread mix what the clock has passed.
  virtual void Update(int64_t nowMicroseconds) = 0;
  virtual bool Failed() const { return false; } // it turned out that there is no such device
  virtual bool HasThread() const = 0;           // blocks are asked for on a thread of the device
  virtual bool Listening() const = 0;           // false: what is mixed is thrown away

  ALenum format = AL_FORMAT_STEREO16;
  int frequency = 48000; // frames a second
  int updateSize = 1600; // frames a block
  int updateCount = 1;
  int channels = 2;
  uint32_t listenerMask = 1;
  std::array<std::array<float, kOutputs>, kPanSteps> pan{};

protected:
  void BuildPanTable();
};

struct Context {
  CMutex lock;
  std::unique_ptr<ALCdevice_struct> device;
  IClock* clock = nullptr;
  std::atomic<bool> listening{true};              // somebody hears the output; read without the lock
  std::vector<std::unique_ptr<ALsource>> sources; // name - 1
  std::vector<std::unique_ptr<ALbuffer>> buffers;
  std::vector<ALuint> freeSources, freeBuffers; // names
  ALlistener listener;
  ALenum distanceModel = AL_INVERSE_DISTANCE_CLAMPED;
  float dopplerFactor = 1;
  float speedOfSound = 343.3f;
  ALenum error = AL_NO_ERROR;
  int64_t currentTime = 0;           // what sources that start now take as their start
  int64_t lastMixTime = -1;          // -1: nothing was mixed yet
  void (*betweenBlocks)() = nullptr; // called outside the lock after each block of a device without a thread

  // Scratch of the mixer; grows and stays.
  std::vector<float> mix, samples;
  std::vector<ALsource*> playing;

  ALsource* Source(ALuint name) {
    return name > 0 && name <= sources.size() ? sources[name - 1].get() : nullptr;
  }
  ALbuffer* Buffer(ALuint name) {
    return name > 0 && name <= buffers.size() ? buffers[name - 1].get() : nullptr;
  }
  ALbuffer* CurrentBuffer(const ALsource& source) {
    return source.current < source.queue.size() ? Buffer(source.queue[source.current]) : nullptr;
  }
};

// Mixes a block of `frames` into `out`, in the device's format; a null `out` is for a block that nobody hears
// and does only what the next block needs. aluAdvance moves the sources on and must follow.
void aluMixData(Context& context, void* out, int frames);
void aluAdvance(Context& context);
// Both, taking the lock, as a device's thread calls them.
void aluMixBlock(Context& context, void* out, int frames);

SourceParameters aluSourceParameters(const Context& context, const ALsource& source, int bufferFrequency);

} // namespace vesk
