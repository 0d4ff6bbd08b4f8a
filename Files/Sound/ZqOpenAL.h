#pragma once
// The part of the OpenAL 1.1 interface that the runner needs, with its meanings, constants and error codes.
// One device, one context, one listener. Every call takes the context's lock; any thread
// may call. Without a context calls do nothing.
#include <cstdint>
#include <memory>

namespace vesk {

using ALuint = uint32_t;
using ALint = int32_t;
using ALenum = int32_t;
using ALsizei = int32_t;
using ALfloat = float;

inline constexpr ALenum AL_NONE = 0;
inline constexpr ALenum AL_SOURCE_RELATIVE = 0x202;
inline constexpr ALenum AL_CONE_INNER_ANGLE = 0x1001;
inline constexpr ALenum AL_CONE_OUTER_ANGLE = 0x1002;
inline constexpr ALenum AL_PITCH = 0x1003;
inline constexpr ALenum AL_POSITION = 0x1004;
inline constexpr ALenum AL_DIRECTION = 0x1005;
inline constexpr ALenum AL_VELOCITY = 0x1006;
inline constexpr ALenum AL_LOOPING = 0x1007;
inline constexpr ALenum AL_BUFFER = 0x1009;
inline constexpr ALenum AL_GAIN = 0x100A;
inline constexpr ALenum AL_MIN_GAIN = 0x100D;
inline constexpr ALenum AL_MAX_GAIN = 0x100E;
inline constexpr ALenum AL_ORIENTATION = 0x100F;
inline constexpr ALenum AL_SOURCE_STATE = 0x1010;
inline constexpr ALenum AL_INITIAL = 0x1011;
inline constexpr ALenum AL_PLAYING = 0x1012;
inline constexpr ALenum AL_PAUSED = 0x1013;
inline constexpr ALenum AL_STOPPED = 0x1014;
inline constexpr ALenum AL_BUFFERS_QUEUED = 0x1015;
inline constexpr ALenum AL_BUFFERS_PROCESSED = 0x1016;
inline constexpr ALenum AL_REFERENCE_DISTANCE = 0x1020;
inline constexpr ALenum AL_ROLLOFF_FACTOR = 0x1021;
inline constexpr ALenum AL_CONE_OUTER_GAIN = 0x1022;
inline constexpr ALenum AL_MAX_DISTANCE = 0x1023;
inline constexpr ALenum AL_SEC_OFFSET = 0x1024;
inline constexpr ALenum AL_SAMPLE_OFFSET = 0x1025;
inline constexpr ALenum AL_BYTE_OFFSET = 0x1026;
inline constexpr ALenum AL_SOURCE_TYPE = 0x1027;
inline constexpr ALenum AL_STATIC = 0x1028;
inline constexpr ALenum AL_STREAMING = 0x1029;
inline constexpr ALenum AL_UNDETERMINED = 0x1030;
inline constexpr ALenum AL_FORMAT_MONO8 = 0x1100;
inline constexpr ALenum AL_FORMAT_MONO16 = 0x1101;
inline constexpr ALenum AL_FORMAT_STEREO8 = 0x1102;
inline constexpr ALenum AL_FORMAT_STEREO16 = 0x1103;
inline constexpr ALenum AL_FORMAT_MONO_FLOAT32 = 0x10010;
inline constexpr ALenum AL_FORMAT_STEREO_FLOAT32 = 0x10011;
inline constexpr ALenum AL_FREQUENCY = 0x2001;
inline constexpr ALenum AL_BITS = 0x2002;
inline constexpr ALenum AL_CHANNELS = 0x2003;
inline constexpr ALenum AL_SIZE = 0x2004;
inline constexpr ALenum AL_NO_ERROR = 0;
inline constexpr ALenum AL_INVALID_NAME = 0xA001;
inline constexpr ALenum AL_INVALID_ENUM = 0xA002;
inline constexpr ALenum AL_INVALID_VALUE = 0xA003;
inline constexpr ALenum AL_INVALID_OPERATION = 0xA004;
inline constexpr ALenum AL_OUT_OF_MEMORY = 0xA005;
inline constexpr ALenum AL_INVERSE_DISTANCE = 0xD001;
inline constexpr ALenum AL_INVERSE_DISTANCE_CLAMPED = 0xD002;
inline constexpr ALenum AL_LINEAR_DISTANCE = 0xD003;
inline constexpr ALenum AL_LINEAR_DISTANCE_CLAMPED = 0xD004;
inline constexpr ALenum AL_EXPONENT_DISTANCE = 0xD005;
inline constexpr ALenum AL_EXPONENT_DISTANCE_CLAMPED = 0xD006;

// Beyond the standard: which listeners hear a source (bits, default 1); 0 takes a source out of the room, so
// that it plays with its plain gain on every channel.
inline constexpr ALenum AL_LISTENER_MASK = 0x20001;
inline constexpr ALenum AL_SPATIAL = 0x20002;

ALenum alGetError(); // the first error since the last call; reading clears it
const char* alGetString(ALenum error);

void alDistanceModel(ALenum model);
ALint alGetInteger(ALenum parameter); // AL_DISTANCE_MODEL
inline constexpr ALenum AL_DISTANCE_MODEL = 0xD000;
void alDopplerFactor(ALfloat factor);
void alSpeedOfSound(ALfloat speed);

void alListenerf(ALenum parameter, ALfloat value);
void alListener3f(ALenum parameter, ALfloat x, ALfloat y, ALfloat z);
void alListenerfv(ALenum parameter, const ALfloat* values);

void alGenSources(ALsizei count, ALuint* names);
void alDeleteSources(ALsizei count, const ALuint* names);
bool alIsSource(ALuint name);
void alSourcef(ALuint source, ALenum parameter, ALfloat value);
void alSource3f(ALuint source, ALenum parameter, ALfloat x, ALfloat y, ALfloat z);
void alSourcei(ALuint source, ALenum parameter, ALint value);
void alGetSourcef(ALuint source, ALenum parameter, ALfloat* value);
void alGetSource3f(ALuint source, ALenum parameter, ALfloat* x, ALfloat* y, ALfloat* z);
void alGetSourcei(ALuint source, ALenum parameter, ALint* value);
void alSourcePlay(ALuint source);
void alSourcePause(ALuint source);
void alSourceStop(ALuint source);
void alSourceRewind(ALuint source);
void alSourceQueueBuffers(ALuint source, ALsizei count, const ALuint* buffers);
void alSourceUnqueueBuffers(ALuint source, ALsizei count, ALuint* buffers);

void alGenBuffers(ALsizei count, ALuint* names);
void alDeleteBuffers(ALsizei count, const ALuint* names);
bool alIsBuffer(ALuint name);
// Copies `size` bytes; a null `data` makes a silent buffer of that length that takes no memory.
void alBufferData(ALuint buffer, ALenum format, const void* data, ALsizei size, ALsizei frequency);
void alGetBufferi(ALuint buffer, ALenum parameter, ALint* value);

class ALCdevice_struct;
struct Context;

// The platform's output, opened beside the caller where it may take its time, or the clock-driven one.
std::unique_ptr<ALCdevice_struct> alcOpenDevice();
// The context takes the device; null on failure.
std::unique_ptr<Context> alcCreateContext(std::unique_ptr<ALCdevice_struct> device);
void alcMakeContextCurrent(Context* context); // null: none
Context* alcGetCurrentContext();
// Once a frame, on the game thread: takes `nowMicroseconds` as the time at which sources start from now on,
// lets a device without a thread mix, and replaces a device that turned out not to be there.
void alcProcessContext(Context& context, int64_t nowMicroseconds);
void alcDestroyContext(std::unique_ptr<Context> context); // stops and closes its device

} // namespace vesk
