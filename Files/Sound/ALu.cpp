#include "Files/Sound/ALu.h"

#include "Files/Sound/Audio_Log.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace vesk {

namespace {

constexpr float kSmallestRamp = 1.1920929e-7f; // gain a frame
constexpr float kSilence = 0.001f;             // gain below which nothing is added
constexpr int kQuadrant = kPanSteps / 4;

Vector3 Minus(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
float Dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
float Length(const Vector3& v) { return std::sqrt(Dot(v, v)); }
Vector3 Cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vector3 Normalised(const Vector3& v) {
  const float length = Length(v);
  return length > 0 ? Vector3{v.x / length, v.y / length, v.z / length} : v;
}

// Right, up and back of the listener as axes.
Vector3 IntoListenerSpace(const ALlistener& listener, const Vector3& v) {
  const Vector3 at = Normalised(listener.at);
  const Vector3 side = Normalised(Cross(at, Normalised(listener.up)));
  const Vector3 up = Cross(side, at);
  return {Dot(v, side), Dot(v, up), -Dot(v, at)};
}

float Attenuation(ALenum model, const ALsource& source, float distance) {
  const float reference = source.referenceDistance;
  const float maximum = source.maximumDistance;
  const bool clamped = model == AL_INVERSE_DISTANCE_CLAMPED || model == AL_LINEAR_DISTANCE_CLAMPED ||
                       model == AL_EXPONENT_DISTANCE_CLAMPED;
  if (clamped && maximum < reference) return 1;
  if (clamped) distance = std::clamp(distance, reference, maximum);
  switch (model) {
  case AL_INVERSE_DISTANCE:
  case AL_INVERSE_DISTANCE_CLAMPED: {
    const float divisor = reference + source.rolloff * (distance - reference);
    return reference > 0 && divisor > 0 ? reference / divisor : 1;
  }
  case AL_LINEAR_DISTANCE:
  case AL_LINEAR_DISTANCE_CLAMPED: {
    distance = std::min(distance, maximum);
    if (maximum == reference) return 1;
    return std::max(0.0f, 1 - source.rolloff * (distance - reference) / (maximum - reference));
  }
  case AL_EXPONENT_DISTANCE:
  case AL_EXPONENT_DISTANCE_CLAMPED:
    return distance > 0 && reference > 0 ? std::pow(distance / reference, -source.rolloff) : 1;
  default: return 1;
  }
}

float ConeGain(const ALsource& source, const Vector3& facing, const Vector3& toListener) {
  const Vector3 direction = Normalised(facing);
  if (Length(direction) == 0 || Length(toListener) == 0) return 1;
  const float cosine = std::clamp(Dot(direction, Normalised(toListener)), -1.0f, 1.0f);
  const float angle = std::acos(cosine) * 2 * 180 / std::numbers::pi_v<float>;
  if (angle <= source.coneInner) return 1;
  if (angle >= source.coneOuter) return source.coneOuterGain;
  const float share = (angle - source.coneInner) / (source.coneOuter - source.coneInner);
  return 1 + (source.coneOuterGain - 1) * share;
}

float Doppler(const Context& context, const Vector3& toListener, const Vector3& sourceVelocity,
              const Vector3& listenerVelocity) {
  const float speed = context.speedOfSound;
  const float factor = context.dopplerFactor;
  const float distance = Length(toListener);
  if (speed == 0 || factor == 0 || distance == 0) return 1;
  const float limit = speed / factor;
  const float listener = std::min(Dot(toListener, listenerVelocity) / distance, limit);
  const float source = std::min(Dot(toListener, sourceVelocity) / distance, limit);
  const float divisor = speed - factor * source;
  const float scaled = speed - factor * listener;
  return divisor > 0 && scaled > 0 ? scaled / divisor : 1;
}

int PanIndex(float x, float z) {
  const float sum = std::abs(x) + std::abs(z);
  if (sum == 0) return 0;
  int index = static_cast<int>(std::floor(std::abs(x) * kQuadrant / sum + 0.5f));
  if (z > 0) index = kPanSteps / 2 - index;
  if (x < 0) index = kPanSteps - index;
  return index & (kPanSteps - 1);
}

// ---- reading samples ----

template <class Sample> float Value(Sample sample);
template <> float Value(uint8_t sample) { return (static_cast<float>(sample) - 128) * (1.0f / 128); }
template <> float Value(int16_t sample) { return static_cast<float>(sample) * (1.0f / 32768); }
template <> float Value(float sample) { return sample; }

// Where a source stands in its queue. Steps over the ends of buffers as playing does.
struct Cursor {
  Context& context;
  const ALsource& source;
  size_t current;
  int64_t frame;
  const ALbuffer* buffer;

  Cursor(Context& inContext, const ALsource& of)
      : context(inContext), source(of), current(of.current), frame(of.frame),
        buffer(inContext.CurrentBuffer(of)) {
    Settle();
  }
  // Leaves the position inside a buffer, or `buffer` null at the end of it all.
  void Settle() {
    int64_t passed = 0; // frames of a whole round, to end it when there are none
    while (buffer && frame >= buffer->frames) {
      frame -= buffer->frames;
      passed += buffer->frames;
      if (++current >= source.queue.size()) {
        if (!source.looping || passed == 0) {
          buffer = nullptr;
          return;
        }
        current = 0;
        passed = 0;
      }
      buffer = context.Buffer(source.queue[current]);
    }
  }
};

template <class Sample, int kChannels>
void Read(Context& context, const ALsource& source, int step, float* out, int frames) {
  Cursor at(context, source);
  int fraction = source.fraction;
  while (frames > 0) {
    if (!at.buffer) {
      std::fill_n(out, frames * kChannels, 0.0f);
      return;
    }
    const ALbuffer& buffer = *at.buffer;
    const auto* samples = reinterpret_cast<const Sample*>(buffer.bytes.data());
    // How many output frames have both neighbours in this buffer.
    const int64_t inside = static_cast<int64_t>(buffer.frames - 1 - at.frame) * kFractionOne - fraction;
    const int whole = static_cast<int>(std::clamp<int64_t>((inside + step - 1) / step, 0, frames));
    if (buffer.bytes.empty()) {
      std::fill_n(out, whole * kChannels, 0.0f);
    } else {
      const Sample* const base = samples + at.frame * kChannels;
      size_t position = static_cast<size_t>(fraction);
      for (int i = 0; i < whole; ++i, position += static_cast<size_t>(step)) {
        const Sample* const left = base + (position >> kFractionBits) * kChannels;
        const float share = static_cast<float>(position & (kFractionOne - 1)) * (1.0f / kFractionOne);
        for (int channel = 0; channel < kChannels; ++channel) {
          const float first = Value(left[channel]);
          out[i * kChannels + channel] = first + (Value(left[channel + kChannels]) - first) * share;
        }
      }
    }
    out += static_cast<ptrdiff_t>(whole) * kChannels;
    frames -= whole;
    const int64_t moved = fraction + static_cast<int64_t>(whole) * step;
    at.frame += moved >> kFractionBits;
    fraction = static_cast<int>(moved & (kFractionOne - 1));
    at.Settle();
    if (frames == 0 || !at.buffer || at.frame < at.buffer->frames - 1) continue;

    // One frame between the last sample here and the first of what follows; silence follows the end.
    Cursor next = at;
    ++next.frame;
    next.Settle();
    const auto sampleAt = [](const Cursor& cursor, int channel) {
      if (!cursor.buffer || cursor.buffer->bytes.empty()) return 0.0f;
      return Value(
          reinterpret_cast<const Sample*>(cursor.buffer->bytes.data())[cursor.frame * kChannels + channel]);
    };
    const float share = static_cast<float>(fraction) * (1.0f / kFractionOne);
    for (int channel = 0; channel < kChannels; ++channel) {
      const float first = sampleAt(at, channel);
      *out++ = first + (sampleAt(next, channel) - first) * share;
    }
    --frames;
    const int64_t after = static_cast<int64_t>(fraction) + step;
    at.frame += after >> kFractionBits;
    fraction = static_cast<int>(after & (kFractionOne - 1));
    at.Settle();
  }
}

using Reader = void (*)(Context&, const ALsource&, int, float*, int);

Reader ReaderFor(int channels, int sampleBytes) {
  if (channels == 1 && sampleBytes == 1) return &Read<uint8_t, 1>;
  if (channels == 1 && sampleBytes == 2) return &Read<int16_t, 1>;
  if (channels == 1 && sampleBytes == 4) return &Read<float, 1>;
  if (channels == 2 && sampleBytes == 1) return &Read<uint8_t, 2>;
  if (channels == 2 && sampleBytes == 2) return &Read<int16_t, 2>;
  if (channels == 2 && sampleBytes == 4) return &Read<float, 2>;
  return nullptr;
}

// ---- adding ----

// One source channel into one output channel, from the gain reached to the target over the whole stretch.
void AddChannel(const float* in, ptrdiff_t inStride, float* out, ptrdiff_t outStride, int frames, float from,
                float target) {
  const float step = (target - from) / static_cast<float>(frames);
  if (std::abs(step) > kSmallestRamp) {
    for (int i = 0; i < frames; ++i)
      out[i * outStride] += in[i * inStride] * (from + step * static_cast<float>(i + 1));
  } else if (std::abs(target) > kSilence) {
    for (int i = 0; i < frames; ++i) out[i * outStride] += in[i * inStride] * target;
  }
}

void Add(const ALCdevice_struct& device, const ALsource& source, const SourceParameters& target,
         int sourceChannels, const float* in, float* out, int frames) {
  for (int output = 0; output < device.channels; ++output) {
    const float from = source.reached[static_cast<size_t>(output)];
    const float to = target.gain[static_cast<size_t>(output)];
    if (sourceChannels == 1) {
      AddChannel(in, 1, out + output, device.channels, frames, from, to);
    } else if (device.channels == 2) {
      AddChannel(in + output, 2, out + output, 2, frames, from, to);
    } else {
      for (int channel = 0; channel < 2; ++channel)
        AddChannel(in + channel, 2, out, 1, frames, from * 0.5f, to * 0.5f);
    }
  }
}

void CollectPlaying(Context& context) {
  context.playing.clear();
  for (const auto& source : context.sources)
    if (source && source->state == AL_PLAYING && context.CurrentBuffer(*source) &&
        (source->listenerMask & context.device->listenerMask))
      context.playing.push_back(source.get());
}

// The frame of the block at which the source begins: one started since the last block begins late.
int LateStart(const Context& context, const ALsource& source, int frames) {
  if (source.begun || context.lastMixTime < 0) return 0;
  const int64_t offset = (source.startTime - context.lastMixTime) * context.device->frequency / 1000000;
  return offset > 0 && offset < frames ? static_cast<int>(offset) : 0;
}

void MixSource(Context& context, ALsource& source, const SourceParameters& target, int first, int frames) {
  const ALbuffer& buffer = *context.CurrentBuffer(source);
  if (source.changed) source.reached = target.gain;
  source.changed = false;
  const Reader read = ReaderFor(buffer.channels, buffer.sampleBytes);
  if (!read) {
    Audio_Log("no mixing function for %d source channels %d source bytes\n", buffer.channels,
              buffer.sampleBytes);
    return;
  }
  context.samples.resize(std::max(context.samples.size(), static_cast<size_t>(frames) * 2));
  read(context, source, target.step, context.samples.data(), frames);
  Add(*context.device, source, target, buffer.channels, context.samples.data(),
      context.mix.data() + static_cast<ptrdiff_t>(first) * context.device->channels, frames);
  source.reached = target.gain;
}

void Output(const Context& context, void* out, int frames) {
  const auto count = static_cast<size_t>(frames) * static_cast<size_t>(context.device->channels);
  if (context.device->format == AL_FORMAT_STEREO_FLOAT32 ||
      context.device->format == AL_FORMAT_MONO_FLOAT32) {
    std::memcpy(out, context.mix.data(), count * sizeof(float));
    return;
  }
  auto* samples = static_cast<int16_t*>(out);
  for (size_t i = 0; i < count; ++i)
    samples[i] = static_cast<int16_t>(std::clamp(context.mix[i] * 32768.0f, -32768.0f, 32767.0f));
}

} // namespace

void ALCdevice_struct::BuildPanTable() {
  constexpr double kHalfTurn = std::numbers::pi;
  for (int i = 0; i < kPanSteps; ++i) {
    // The place on the square around the listener that the index stands for, then its angle from the front.
    const int within = i % kQuadrant;
    const double side = static_cast<double>(within) / kQuadrant;
    double x = side, front = 1 - side;
    for (int turn = i / kQuadrant; turn > 0; --turn) {
      const double before = x;
      x = front;
      front = -before;
    }
    const double angle = std::atan2(x, front);
    // Speakers at -90 and 90 degrees: two pairs of half a circle each.
    auto& gains = pan[static_cast<size_t>(i)];
    if (channels == 1) {
      gains = {1, 0};
    } else if (std::abs(angle) <= kHalfTurn / 2) {
      const double share = (angle + kHalfTurn / 2) / kHalfTurn * kHalfTurn / 2;
      gains = {static_cast<float>(std::cos(share)), static_cast<float>(std::sin(share))};
    } else {
      const double behind = angle > 0 ? angle - kHalfTurn / 2 : angle + kHalfTurn * 1.5;
      const double share = behind / kHalfTurn * kHalfTurn / 2;
      gains = {static_cast<float>(std::sin(share)), static_cast<float>(std::cos(share))};
    }
  }
}

SourceParameters aluSourceParameters(const Context& context, const ALsource& source, int bufferFrequency) {
  const ALCdevice_struct& device = *context.device;
  SourceParameters parameters;
  float pitch = source.pitch;
  float gain = source.gain;
  if (!source.spatial) {
    parameters.gain.fill(std::clamp(gain, source.minimumGain, source.maximumGain) * context.listener.gain);
  } else {
    Vector3 position = source.position;
    Vector3 velocity = source.velocity;
    Vector3 direction = source.direction;
    Vector3 listenerVelocity;
    if (!source.relative) {
      position = IntoListenerSpace(context.listener, Minus(position, context.listener.position));
      velocity = IntoListenerSpace(context.listener, velocity);
      direction = IntoListenerSpace(context.listener, direction);
      listenerVelocity = IntoListenerSpace(context.listener, context.listener.velocity);
    }
    const float distance = Length(position);
    const Vector3 toListener{-position.x, -position.y, -position.z};
    gain *= Attenuation(context.distanceModel, source, distance) * ConeGain(source, direction, toListener);
    gain = std::clamp(gain, source.minimumGain, source.maximumGain) * context.listener.gain;
    pitch *= Doppler(context, toListener, velocity, listenerVelocity);

    const float scale = std::max(distance, source.referenceDistance);
    const float x = scale > 0 ? position.x / scale : 0;
    const float z = scale > 0 ? position.z / scale : 0;
    const float aside = std::sqrt(x * x + z * z);
    const auto& pan = device.pan[static_cast<size_t>(PanIndex(x, z))];
    const float even = 1 / std::sqrt(static_cast<float>(device.channels));
    for (size_t i = 0; i < static_cast<size_t>(device.channels); ++i)
      parameters.gain[i] = (pan[i] * aside + even * (1 - aside)) * gain;
  }
  const double step =
      static_cast<double>(bufferFrequency) * pitch / device.frequency * static_cast<double>(kFractionOne);
  parameters.step = static_cast<int>(std::clamp(step, 1.0, 64.0 * kFractionOne * 16));
  return parameters;
}

void aluMixData(Context& context, void* out, int frames) {
  CollectPlaying(context);
  const auto size = static_cast<size_t>(frames) * static_cast<size_t>(context.device->channels);
  if (out) {
    context.mix.resize(std::max(context.mix.size(), size));
    std::fill_n(context.mix.begin(), size, 0.0f);
  }
  for (ALsource* source : context.playing) {
    const int first = LateStart(context, *source, frames);
    source->begun = true;
    source->blockFrames = frames - first;
    const SourceParameters target =
        aluSourceParameters(context, *source, context.CurrentBuffer(*source)->frequency);
    source->blockStep = target.step;
    if (out) MixSource(context, *source, target, first, frames - first);
  }
  if (out) Output(context, out, frames);
  context.lastMixTime = context.clock ? context.clock->Microseconds() : 0;
}

void aluAdvance(Context& context) {
  for (ALsource* source : context.playing) {
    const int64_t moved = source->fraction + static_cast<int64_t>(source->blockStep) * source->blockFrames;
    Cursor at(context, *source);
    at.frame += moved >> kFractionBits;
    at.Settle();
    source->fraction = static_cast<int>(moved & (kFractionOne - 1));
    source->current = at.current;
    source->frame = static_cast<int>(at.frame);
    if (at.buffer) continue;
    source->state = AL_STOPPED;
    source->current = source->queue.size();
    source->frame = 0;
    source->fraction = 0;
  }
  context.playing.clear();
}

void aluMixBlock(Context& context, void* out, int frames) {
  const CLock lock(context.lock);
  aluMixData(context, out, frames);
  aluAdvance(context);
}

} // namespace vesk
