#include "Files/Sound/ZqOpenAL.h"

#include "Files/Sound/ALCdevice.h"
#include "Files/Sound/ALu.h"
#include "Files/Sound/Audio_Log.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace vesk {

namespace {

std::atomic<Context*> g_current{nullptr};

// The current context, locked, for one call.
class Call {
public:
  Call() : m_context(g_current.load()) {
    if (m_context) m_context->lock.lock();
  }
  ~Call() {
    if (m_context) m_context->lock.unlock();
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  explicit operator bool() const { return m_context != nullptr; }
  Context* operator->() const { return m_context; }
  Context& operator*() const { return *m_context; }
  void Fail(ALenum error) const {
    if (m_context->error == AL_NO_ERROR) m_context->error = error;
  }
  ALsource* Source(ALuint name) const {
    ALsource* source = m_context ? m_context->Source(name) : nullptr;
    if (m_context && !source) Fail(AL_INVALID_NAME);
    return source;
  }
  ALbuffer* Buffer(ALuint name) const {
    ALbuffer* buffer = m_context ? m_context->Buffer(name) : nullptr;
    if (m_context && !buffer) Fail(AL_INVALID_NAME);
    return buffer;
  }

private:
  Context* m_context;
};

bool Finite(float value) { return std::isfinite(value); }

template <class T> ALuint NewName(std::vector<std::unique_ptr<T>>& table, std::vector<ALuint>& freeNames) {
  if (freeNames.empty()) {
    table.push_back(std::make_unique<T>());
    return static_cast<ALuint>(table.size());
  }
  const ALuint name = freeNames.back();
  freeNames.pop_back();
  table[name - 1] = std::make_unique<T>();
  return name;
}

void ReleaseQueue(Context& context, ALsource& source) {
  for (const ALuint name : source.queue)
    if (ALbuffer* buffer = context.Buffer(name)) --buffer->uses;
  source.queue.clear();
  source.current = 0;
  source.frame = source.fraction = 0;
}

bool Running(const ALsource& source) { return source.state == AL_PLAYING || source.state == AL_PAUSED; }

int64_t QueueFrames(Context& context, const ALsource& source) {
  int64_t frames = 0;
  for (const ALuint name : source.queue) frames += context.Buffer(name)->frames;
  return frames;
}

// False when the offset lies outside the queue.
bool MoveTo(Context& context, ALsource& source, double frames) {
  if (frames < 0 || frames >= static_cast<double>(QueueFrames(context, source))) return false;
  auto whole = static_cast<int64_t>(frames);
  source.fraction = static_cast<int>((frames - static_cast<double>(whole)) * kFractionOne);
  source.current = 0;
  while (whole >= context.CurrentBuffer(source)->frames)
    whole -= context.Buffer(source.queue[source.current++])->frames;
  source.frame = static_cast<int>(whole);
  return true;
}

// Frames from the start of the queue.
double Offset(Context& context, const ALsource& source) {
  if (!Running(source)) return 0;
  double frames = 0;
  for (size_t i = 0; i < source.current && i < source.queue.size(); ++i)
    frames += context.Buffer(source.queue[i])->frames;
  return frames + source.frame + static_cast<double>(source.fraction) / kFractionOne;
}

const ALbuffer* AnyBuffer(Context& context, const ALsource& source) {
  return source.queue.empty() ? nullptr : context.Buffer(source.queue.front());
}

void SetOffset(const Call& call, ALsource& source, ALenum parameter, double value) {
  const ALbuffer* buffer = AnyBuffer(*call, source);
  double frames = value;
  if (buffer && parameter == AL_SEC_OFFSET) frames = value * buffer->frequency;
  if (buffer && parameter == AL_BYTE_OFFSET) frames = value / (buffer->channels * buffer->sampleBytes);
  if (!buffer || frames < 0 || frames >= static_cast<double>(QueueFrames(*call, source)))
    call.Fail(AL_INVALID_VALUE);
  else if (Running(source))
    MoveTo(*call, source, frames), source.changed = true;
  else
    source.pendingOffset = frames;
}

ALint Processed(const ALsource& source) {
  if (source.looping) return 0;
  if (source.state == AL_STOPPED) return static_cast<ALint>(source.queue.size());
  return source.state == AL_INITIAL ? 0 : static_cast<ALint>(std::min(source.current, source.queue.size()));
}

struct FloatField {
  ALenum parameter;
  float ALsource::*field;
  float least, most;
};
constexpr FloatField kFloatFields[] = {
    {AL_PITCH, &ALsource::pitch, FLT_MIN, FLT_MAX},
    {AL_GAIN, &ALsource::gain, 0, FLT_MAX},
    {AL_MIN_GAIN, &ALsource::minimumGain, 0, 1},
    {AL_MAX_GAIN, &ALsource::maximumGain, 0, 1},
    {AL_REFERENCE_DISTANCE, &ALsource::referenceDistance, 0, FLT_MAX},
    {AL_MAX_DISTANCE, &ALsource::maximumDistance, 0, FLT_MAX},
    {AL_ROLLOFF_FACTOR, &ALsource::rolloff, 0, FLT_MAX},
    {AL_CONE_INNER_ANGLE, &ALsource::coneInner, 0, 360},
    {AL_CONE_OUTER_ANGLE, &ALsource::coneOuter, 0, 360},
    {AL_CONE_OUTER_GAIN, &ALsource::coneOuterGain, 0, 1},
};
const FloatField* FieldOf(ALenum parameter) {
  for (const FloatField& field : kFloatFields)
    if (field.parameter == parameter) return &field;
  return nullptr;
}

Vector3* VectorOf(ALsource& source, ALenum parameter) {
  switch (parameter) {
  case AL_POSITION: return &source.position;
  case AL_VELOCITY: return &source.velocity;
  case AL_DIRECTION: return &source.direction;
  default: return nullptr;
  }
}

void SetBuffer(const Call& call, ALsource& source, ALuint name) {
  ALbuffer* buffer = name == 0 ? nullptr : call->Buffer(name);
  if (Running(source)) return call.Fail(AL_INVALID_OPERATION);
  if (name != 0 && !buffer) return call.Fail(AL_INVALID_VALUE);
  ReleaseQueue(*call, source);
  source.pendingOffset = -1;
  source.type = buffer ? AL_STATIC : AL_UNDETERMINED;
  if (!buffer) return;
  source.queue.push_back(name);
  ++buffer->uses;
}

void Stop(ALsource& source, ALenum state) {
  source.state = state;
  source.current = state == AL_STOPPED ? source.queue.size() : 0;
  source.frame = source.fraction = 0;
  source.pendingOffset = -1;
}

} // namespace

// ---- errors and the room ----

ALenum alGetError() {
  const Call call;
  return call ? std::exchange(call->error, AL_NO_ERROR) : AL_NO_ERROR;
}

const char* alGetString(ALenum error) {
  switch (error) {
  case AL_NO_ERROR: return "No Error";
  case AL_INVALID_NAME: return "Invalid Name";
  case AL_INVALID_ENUM: return "Invalid Enum";
  case AL_INVALID_VALUE: return "Invalid Value";
  case AL_INVALID_OPERATION: return "Invalid Operation";
  case AL_OUT_OF_MEMORY: return "Out of Memory";
  default: return "Unknown";
  }
}

void alDistanceModel(ALenum model) {
  const Call call;
  if (!call) return;
  if (model == AL_NONE || (model >= AL_INVERSE_DISTANCE && model <= AL_EXPONENT_DISTANCE_CLAMPED))
    call->distanceModel = model;
  else
    call.Fail(AL_INVALID_VALUE);
}

ALint alGetInteger(ALenum parameter) {
  const Call call;
  if (!call) return 0;
  if (parameter == AL_DISTANCE_MODEL) return call->distanceModel;
  call.Fail(AL_INVALID_ENUM);
  return 0;
}

void alDopplerFactor(ALfloat factor) {
  const Call call;
  if (!call) return;
  if (Finite(factor) && factor >= 0)
    call->dopplerFactor = factor;
  else
    call.Fail(AL_INVALID_VALUE);
}

void alSpeedOfSound(ALfloat speed) {
  const Call call;
  if (!call) return;
  if (Finite(speed) && speed > 0)
    call->speedOfSound = speed;
  else
    call.Fail(AL_INVALID_VALUE);
}

void alListenerf(ALenum parameter, ALfloat value) {
  const Call call;
  if (!call) return;
  if (parameter != AL_GAIN)
    call.Fail(AL_INVALID_ENUM);
  else if (!Finite(value) || value < 0)
    call.Fail(AL_INVALID_VALUE);
  else
    call->listener.gain = value;
}

void alListener3f(ALenum parameter, ALfloat x, ALfloat y, ALfloat z) {
  const Call call;
  if (!call) return;
  if (parameter != AL_POSITION && parameter != AL_VELOCITY)
    call.Fail(AL_INVALID_ENUM);
  else if (!Finite(x) || !Finite(y) || !Finite(z))
    call.Fail(AL_INVALID_VALUE);
  else
    (parameter == AL_POSITION ? call->listener.position : call->listener.velocity) = {x, y, z};
}

void alListenerfv(ALenum parameter, const ALfloat* values) {
  if (parameter != AL_ORIENTATION) {
    alListener3f(parameter, values[0], values[1], values[2]);
    return;
  }
  const Call call;
  if (!call) return;
  if (!std::all_of(values, values + 6, Finite)) return call.Fail(AL_INVALID_VALUE);
  call->listener.at = {values[0], values[1], values[2]};
  call->listener.up = {values[3], values[4], values[5]};
}

// ---- sources ----

void alGenSources(ALsizei count, ALuint* names) {
  const Call call;
  if (!call) return;
  if (count < 0) return call.Fail(AL_INVALID_VALUE);
  for (ALsizei i = 0; i < count; ++i) names[i] = NewName(call->sources, call->freeSources);
}

void alDeleteSources(ALsizei count, const ALuint* names) {
  const Call call;
  if (!call) return;
  for (ALsizei i = 0; i < count; ++i)
    if (!call->Source(names[i])) return call.Fail(AL_INVALID_NAME);
  for (ALsizei i = 0; i < count; ++i) {
    ReleaseQueue(*call, *call->Source(names[i]));
    call->sources[names[i] - 1].reset();
    call->freeSources.push_back(names[i]);
  }
}

bool alIsSource(ALuint name) {
  const Call call;
  return call && call->Source(name);
}

void alSourcef(ALuint name, ALenum parameter, ALfloat value) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  if (const FloatField* field = FieldOf(parameter)) {
    if (Finite(value) && value >= field->least && value <= field->most)
      source->*field->field = value;
    else
      call.Fail(AL_INVALID_VALUE);
  } else if (parameter == AL_SEC_OFFSET || parameter == AL_SAMPLE_OFFSET || parameter == AL_BYTE_OFFSET) {
    SetOffset(call, *source, parameter, value);
  } else {
    call.Fail(AL_INVALID_ENUM);
  }
}

void alSource3f(ALuint name, ALenum parameter, ALfloat x, ALfloat y, ALfloat z) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  Vector3* vector = VectorOf(*source, parameter);
  if (!vector)
    call.Fail(AL_INVALID_ENUM);
  else if (!Finite(x) || !Finite(y) || !Finite(z))
    call.Fail(AL_INVALID_VALUE);
  else
    *vector = {x, y, z};
}

void alSourcei(ALuint name, ALenum parameter, ALint value) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  switch (parameter) {
  case AL_SOURCE_RELATIVE:
  case AL_LOOPING:
  case AL_SPATIAL: {
    if (value != 0 && value != 1) return call.Fail(AL_INVALID_VALUE);
    bool& flag = parameter == AL_LOOPING   ? source->looping
                 : parameter == AL_SPATIAL ? source->spatial
                                           : source->relative;
    flag = value != 0;
    return;
  }
  case AL_LISTENER_MASK: source->listenerMask = static_cast<uint32_t>(value); return;
  case AL_BUFFER: return SetBuffer(call, *source, static_cast<ALuint>(value));
  case AL_SEC_OFFSET:
  case AL_SAMPLE_OFFSET:
  case AL_BYTE_OFFSET: return SetOffset(call, *source, parameter, value);
  default: return call.Fail(AL_INVALID_ENUM);
  }
}

void alGetSourcef(ALuint name, ALenum parameter, ALfloat* value) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  if (const FloatField* field = FieldOf(parameter)) {
    *value = source->*field->field;
    return;
  }
  const ALbuffer* buffer = AnyBuffer(*call, *source);
  const double frames = Offset(*call, *source);
  switch (parameter) {
  case AL_SEC_OFFSET: *value = buffer ? static_cast<float>(frames / buffer->frequency) : 0; return;
  case AL_SAMPLE_OFFSET: *value = static_cast<float>(frames); return;
  case AL_BYTE_OFFSET:
    *value = buffer ? static_cast<float>(std::floor(frames) * buffer->channels * buffer->sampleBytes) : 0;
    return;
  default: call.Fail(AL_INVALID_ENUM);
  }
}

void alGetSource3f(ALuint name, ALenum parameter, ALfloat* x, ALfloat* y, ALfloat* z) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  const Vector3* vector = VectorOf(*source, parameter);
  if (!vector) return call.Fail(AL_INVALID_ENUM);
  *x = vector->x;
  *y = vector->y;
  *z = vector->z;
}

void alGetSourcei(ALuint name, ALenum parameter, ALint* value) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  switch (parameter) {
  case AL_SOURCE_STATE: *value = source->state; return;
  case AL_SOURCE_TYPE: *value = source->type; return;
  case AL_SOURCE_RELATIVE: *value = source->relative; return;
  case AL_LOOPING: *value = source->looping; return;
  case AL_SPATIAL: *value = source->spatial; return;
  case AL_LISTENER_MASK: *value = static_cast<ALint>(source->listenerMask); return;
  case AL_BUFFERS_QUEUED: *value = static_cast<ALint>(source->queue.size()); return;
  case AL_BUFFERS_PROCESSED: *value = Processed(*source); return;
  case AL_BUFFER:
    *value = source->current < source->queue.size() ? static_cast<ALint>(source->queue[source->current])
             : source->type == AL_STATIC            ? static_cast<ALint>(source->queue.front())
                                                    : 0;
    return;
  case AL_SAMPLE_OFFSET: *value = static_cast<ALint>(Offset(*call, *source)); return;
  case AL_SEC_OFFSET: {
    const ALbuffer* buffer = AnyBuffer(*call, *source);
    *value = buffer ? static_cast<ALint>(Offset(*call, *source) / buffer->frequency) : 0;
    return;
  }
  default: call.Fail(AL_INVALID_ENUM);
  }
}

void alSourcePlay(ALuint name) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  if (source->state == AL_PAUSED) {
    source->state = AL_PLAYING;
    return;
  }
  const double offset = std::exchange(source->pendingOffset, -1);
  if (QueueFrames(*call, *source) == 0) {
    Stop(*source, AL_STOPPED);
    return;
  }
  source->state = AL_PLAYING;
  source->current = 0;
  source->frame = source->fraction = 0;
  if (offset > 0) MoveTo(*call, *source, offset);
  source->begun = false;
  source->changed = true;
  source->startTime = call->currentTime;
}

void alSourcePause(ALuint name) {
  const Call call;
  ALsource* source = call.Source(name);
  if (source && source->state == AL_PLAYING) source->state = AL_PAUSED;
}

void alSourceStop(ALuint name) {
  const Call call;
  ALsource* source = call.Source(name);
  if (source && source->state != AL_INITIAL) Stop(*source, AL_STOPPED);
}

void alSourceRewind(ALuint name) {
  const Call call;
  ALsource* source = call.Source(name);
  if (source) Stop(*source, AL_INITIAL);
}

void alSourceQueueBuffers(ALuint name, ALsizei count, const ALuint* buffers) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  if (count < 0) return call.Fail(AL_INVALID_VALUE);
  if (source->type == AL_STATIC) return call.Fail(AL_INVALID_OPERATION);
  const ALbuffer* first = AnyBuffer(*call, *source);
  for (ALsizei i = 0; i < count; ++i) {
    const ALbuffer* buffer = call.Buffer(buffers[i]);
    if (!buffer) return;
    if (!first) first = buffer;
    if (buffer->format != first->format || buffer->frequency != first->frequency)
      return call.Fail(AL_INVALID_OPERATION);
  }
  for (ALsizei i = 0; i < count; ++i) {
    source->queue.push_back(buffers[i]);
    ++call->Buffer(buffers[i])->uses;
  }
  if (count > 0) source->type = AL_STREAMING;
  // A stopped source has processed all that it had; what comes now waits for the next play with the rest.
  if (source->state == AL_STOPPED) source->current = source->queue.size();
}

void alSourceUnqueueBuffers(ALuint name, ALsizei count, ALuint* buffers) {
  const Call call;
  ALsource* source = call.Source(name);
  if (!source) return;
  if (count < 0 || count > Processed(*source)) return call.Fail(AL_INVALID_VALUE);
  if (source->type == AL_STATIC) return call.Fail(AL_INVALID_OPERATION);
  for (ALsizei i = 0; i < count; ++i) {
    buffers[i] = source->queue[static_cast<size_t>(i)];
    --call->Buffer(buffers[i])->uses;
  }
  source->queue.erase(source->queue.begin(), source->queue.begin() + count);
  source->current -= std::min(source->current, static_cast<size_t>(count));
  if (source->queue.empty() && !Running(*source)) source->type = AL_UNDETERMINED;
}

// ---- buffers ----

void alGenBuffers(ALsizei count, ALuint* names) {
  const Call call;
  if (!call) return;
  if (count < 0) return call.Fail(AL_INVALID_VALUE);
  for (ALsizei i = 0; i < count; ++i) names[i] = NewName(call->buffers, call->freeBuffers);
}

void alDeleteBuffers(ALsizei count, const ALuint* names) {
  const Call call;
  if (!call) return;
  for (ALsizei i = 0; i < count; ++i) {
    if (names[i] == 0) continue;
    const ALbuffer* buffer = call->Buffer(names[i]);
    if (!buffer) return call.Fail(AL_INVALID_NAME);
    if (buffer->uses > 0) return call.Fail(AL_INVALID_OPERATION);
  }
  for (ALsizei i = 0; i < count; ++i) {
    if (names[i] == 0) continue;
    call->buffers[names[i] - 1].reset();
    call->freeBuffers.push_back(names[i]);
  }
}

bool alIsBuffer(ALuint name) {
  const Call call;
  return call && (name == 0 || call->Buffer(name));
}

void alBufferData(ALuint name, ALenum format, const void* data, ALsizei size, ALsizei frequency) {
  struct Form {
    ALenum format;
    int channels, sampleBytes;
  };
  constexpr Form kForms[] = {{AL_FORMAT_MONO8, 1, 1},        {AL_FORMAT_MONO16, 1, 2},
                             {AL_FORMAT_STEREO8, 2, 1},      {AL_FORMAT_STEREO16, 2, 2},
                             {AL_FORMAT_MONO_FLOAT32, 1, 4}, {AL_FORMAT_STEREO_FLOAT32, 2, 4}};
  const Form* form = nullptr;
  for (const Form& each : kForms)
    if (each.format == format) form = &each;

  // Copied before the lock is taken, so that the mixer doesn't wait for it.
  std::vector<uint8_t> bytes;
  if (data && size > 0)
    bytes.assign(static_cast<const uint8_t*>(data), static_cast<const uint8_t*>(data) + size);

  const Call call;
  ALbuffer* buffer = call.Buffer(name);
  if (!buffer) return;
  if (!form) return call.Fail(AL_INVALID_ENUM);
  if (size < 0 || frequency <= 0 || size % (form->channels * form->sampleBytes) != 0)
    return call.Fail(AL_INVALID_VALUE);
  if (buffer->uses > 0) return call.Fail(AL_INVALID_OPERATION);
  std::swap(buffer->bytes, bytes);
  buffer->format = format;
  buffer->channels = form->channels;
  buffer->sampleBytes = form->sampleBytes;
  buffer->frequency = frequency;
  buffer->frames = size / (form->channels * form->sampleBytes);
}

void alGetBufferi(ALuint name, ALenum parameter, ALint* value) {
  const Call call;
  const ALbuffer* buffer = call.Buffer(name);
  if (!buffer) return;
  switch (parameter) {
  case AL_FREQUENCY: *value = buffer->frequency; return;
  case AL_BITS: *value = buffer->sampleBytes * 8; return;
  case AL_CHANNELS: *value = buffer->channels; return;
  case AL_SIZE: *value = buffer->frames * buffer->channels * buffer->sampleBytes; return;
  default: call.Fail(AL_INVALID_ENUM);
  }
}

// ---- devices and contexts ----

namespace {

std::unique_ptr<ALCdevice_struct> OpenNull() {
  Audio_Log("Could not initialize audio output device.  Falling back to use dummy output.\n");
  auto device = std::make_unique<ALCdevice_null>();
  device->open(nullptr);
  device->reset();
  return device;
}

} // namespace

std::unique_ptr<ALCdevice_struct> alcOpenDevice() {
  auto device = std::make_unique<ALCdevice_platform>();
  if (!device->open(nullptr) || !device->reset()) return OpenNull();
  return device;
}

std::unique_ptr<Context> alcCreateContext(std::unique_ptr<ALCdevice_struct> device) {
  if (!device) return nullptr;
  auto context = std::make_unique<Context>();
  context->clock = Platform_Get().clock;
  context->device = std::move(device);
  if (!context->device->start(*context)) {
    context->device->stop();
    context->device = OpenNull();
    context->device->start(*context);
  }
  context->listening = context->device->Listening();
  return context;
}

void alcMakeContextCurrent(Context* context) { g_current = context; }
Context* alcGetCurrentContext() { return g_current; }

void alcProcessContext(Context& context, int64_t now) {
  if (context.device->Failed()) {
    context.device->stop();
    std::unique_ptr<ALCdevice_struct> dummy = OpenNull();
    dummy->start(context);
    const CLock lock(context.lock);
    std::swap(context.device, dummy);
  }
  context.listening = context.device->Listening();
  {
    const CLock lock(context.lock);
    context.currentTime = now;
  }
  context.device->Update(now);
}

void alcDestroyContext(std::unique_ptr<Context> context) {
  if (!context) return;
  context->device->stop();
  context->device->close();
  Context* expected = context.get();
  g_current.compare_exchange_strong(expected, nullptr);
}

} // namespace vesk
