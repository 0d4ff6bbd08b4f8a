#include "Files/Sound/Audio_Ogg.h"

#include "Files/Sound/Audio_Log.h"
#include "Files/Sound/Audio_Sound.h"
#include "Platform/Files.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include <vorbis/vorbisfile.h>

namespace vesk {

// ---- decoder ----

struct COggDecoder::State {
  OggVorbis_File file{};
  bool open = false;
  std::span<const uint8_t> bytes;
  size_t position = 0;
  CFile source; // when it is read from a file

  static size_t ReadMemory(void* to, size_t size, size_t count, void* self) {
    auto& state = *static_cast<State*>(self);
    const size_t whole = size == 0 ? 0 : std::min(count, (state.bytes.size() - state.position) / size);
    std::memcpy(to, state.bytes.data() + state.position, whole * size);
    state.position += whole * size;
    return whole;
  }
  static int SeekMemory(void* self, ogg_int64_t offset, int origin) {
    auto& state = *static_cast<State*>(self);
    const auto size = static_cast<int64_t>(state.bytes.size());
    const int64_t base = origin == SEEK_SET   ? 0
                         : origin == SEEK_CUR ? static_cast<int64_t>(state.position)
                                              : size;
    if (base + offset < 0 || base + offset > size) return -1;
    state.position = static_cast<size_t>(base + offset);
    return 0;
  }
  static long TellMemory(void* self) { return static_cast<long>(static_cast<State*>(self)->position); }

  static size_t ReadFile(void* to, size_t size, size_t count, void* self) {
    return size == 0 ? 0 : static_cast<State*>(self)->source.Read(to, size * count) / size;
  }
  static int SeekFile(void* self, ogg_int64_t offset, int origin) {
    return static_cast<State*>(self)->source.Seek(offset, origin) ? 0 : -1;
  }
  static long TellFile(void* self) { return static_cast<long>(static_cast<State*>(self)->source.Tell()); }
};

COggDecoder::COggDecoder() : m_state(std::make_unique<State>()) {}
COggDecoder::~COggDecoder() { Close(); }

int COggDecoder::OpenMemory(std::span<const uint8_t> bytes) {
  Close();
  m_state->bytes = bytes;
  m_state->position = 0;
  const ov_callbacks callbacks = {&State::ReadMemory, &State::SeekMemory, nullptr, &State::TellMemory};
  const int result = ov_open_callbacks(m_state.get(), &m_state->file, nullptr, 0, callbacks);
  m_state->open = result == 0;
  return result;
}

int COggDecoder::OpenFile(const std::string& path) {
  Close();
  if (!m_state->source.Open(path, "rb")) return -1;
  const ov_callbacks callbacks = {&State::ReadFile, &State::SeekFile, nullptr, &State::TellFile};
  const int result = ov_open_callbacks(m_state.get(), &m_state->file, nullptr, 0, callbacks);
  m_state->open = result == 0;
  return result;
}

void COggDecoder::Close() {
  if (m_state->open) ov_clear(&m_state->file);
  m_state->open = false;
  m_state->source.Close();
}

bool COggDecoder::IsOpen() const { return m_state->open; }

int COggDecoder::Rate() const {
  const vorbis_info* info = m_state->open ? ov_info(&m_state->file, -1) : nullptr;
  return info ? static_cast<int>(info->rate) : 0;
}
int COggDecoder::Channels() const {
  const vorbis_info* info = m_state->open ? ov_info(&m_state->file, -1) : nullptr;
  return info ? info->channels : 0;
}
int64_t COggDecoder::PcmTotal() { return m_state->open ? ov_pcm_total(&m_state->file, -1) : -1; }

int64_t COggDecoder::Read(uint8_t* bytes, int64_t count) {
  if (!m_state->open) return 0;
  int section = 0;
  return ov_read(&m_state->file, reinterpret_cast<char*>(bytes),
                 static_cast<int>(std::min<int64_t>(count, 1 << 20)), 0, 2, 1, &section);
}
int COggDecoder::SeekStart() { return m_state->open ? ov_raw_seek(&m_state->file, 0) : 0; }
int COggDecoder::SeekSeconds(double seconds) {
  return m_state->open ? ov_time_seek(&m_state->file, seconds) : 0;
}

namespace {

// More channels than two have no format here.
bool Playable(const COggDecoder& decoder) {
  return decoder.Rate() > 0 && (decoder.Channels() == 1 || decoder.Channels() == 2);
}
ALenum FormatOf(const COggDecoder& decoder) {
  return decoder.Channels() == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16;
}

constexpr int64_t kLargestSound = int64_t{1} << 30; // bytes decoded

} // namespace

bool Ogg_DecodeWhole(std::span<const uint8_t> bytes, const std::string& name, DecodedSound& sound) {
  Audio_Log("Decoding ogg %s ...\n", name.c_str());
  COggDecoder decoder;
  if (const int error = decoder.OpenMemory(bytes); error != 0 || !Playable(decoder)) {
    Audio_Log("Error %d opening ogg stream for %s\n", error, name.c_str());
    return false;
  }
  const int64_t expected = decoder.PcmTotal() * 2 * decoder.Channels();
  if (expected < 0 || expected > kLargestSound) {
    Audio_Log("ERROR: failed to allocate buffer of %d bytes for sound %s\n", static_cast<int>(expected),
              name.c_str());
    return false;
  }
  sound.bytes.resize(static_cast<size_t>(expected));
  sound.format = FormatOf(decoder);
  sound.rate = decoder.Rate();
  int64_t done = 0;
  while (done < expected) {
    const int64_t got = decoder.Read(sound.bytes.data() + done, expected - done);
    if (got < 0) Audio_Log("ov_read error: %d\n", static_cast<int>(got));
    if (got <= 0) break;
    done += got;
  }
  if (done != expected) {
    Audio_Log("Ogg unexpected decompressed size: %d (expected: %d)\n", static_cast<int>(done),
              static_cast<int>(expected));
    sound.bytes.resize(static_cast<size_t>(done));
  }
  return done > 0;
}

bool Ogg_Measure(std::span<const uint8_t> bytes, int& rate, int& channels, int64_t& frames) {
  COggDecoder decoder;
  if (decoder.OpenMemory(bytes) != 0 || !Playable(decoder)) return false;
  rate = decoder.Rate();
  channels = decoder.Channels();
  frames = decoder.PcmTotal();
  return frames >= 0;
}

// ---- streams ----

namespace {

constexpr int kPlay = 1, kLoop = 2, kStop = 8, kSeek = 16; // bits of a command
constexpr int64_t kPassTime = 16000;                       // microseconds from pass to pass

enum class PlayState { Idle, Once, Looped, Draining };

int64_t Now() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

} // namespace

struct COggAudio::Request {
  int command = 0;
  AudioSound* sound = nullptr;
  uint32_t listenerMask = 1;
  double seekSeconds = 0;
};

struct COggAudio::Channel {
  ALuint source = 0;
  std::array<ALuint, 2> buffers{};
  COggDecoder decoder;
  std::vector<uint8_t> pcm; // two halves; made at the first play
  int currentHalf = 0;
  PlayState playState = PlayState::Idle;
  AudioSound* sound = nullptr;
  int64_t total = -1;      // frames of the stream
  int64_t silentFrame = 0; // where a stream that nobody hears stands
  bool silent = false;     // the channel fills without decoding

  CMutex* lock = nullptr; // the worker's
  Request next;           // under the lock
  bool paused = false;    // under the lock: what is playing, or is about to, stands still

  std::atomic<bool> active{false}; // changed under the lock, from the play request until it falls idle

  // Written by the worker alone.
  std::atomic<double> baseSeconds{0};   // where the first buffer since the start or the last seek began
  std::atomic<int64_t> framesPlayed{0}; // of buffers finished since then
  std::atomic<int> rate{0};
  std::atomic<double> lengthSeconds{0};
};

struct COggAudio::Worker {
  CMutex lock; // "OggMutex"
  std::vector<std::unique_ptr<Channel>> channels;
  CThread thread;
  CSignal wake;
  std::atomic<bool> quit{false};
  bool started = false; // game thread
  bool failed = false;
};

COggAudio::COggAudio(std::vector<ALuint> sources, bool threads, const Context& context)
    : m_threads(threads), m_listening(context.listening) {
  for (auto& worker : m_workers) worker = std::make_unique<Worker>();
  for (size_t i = 0; i < sources.size(); ++i) {
    auto channel = std::make_unique<Channel>();
    channel->source = sources[i];
    channel->lock = &m_workers[i % kStreamWorkers]->lock;
    m_workers[i % kStreamWorkers]->channels.push_back(std::move(channel));
  }
}

COggAudio::~COggAudio() {
  for (auto& worker : m_workers) {
    worker->quit = true;
    worker->wake.Raise();
    worker->thread.Join();
    for (auto& channel : worker->channels) {
      if (channel->playState != PlayState::Idle) End(*channel);
      if (channel->buffers[0] != 0) alDeleteBuffers(2, channel->buffers.data());
    }
  }
}

COggAudio::Worker& COggAudio::WorkerOf(int source) {
  return *m_workers[static_cast<size_t>(source) % kStreamWorkers];
}
COggAudio::Channel& COggAudio::ChannelOf(int source) const {
  return *m_workers[static_cast<size_t>(source) % kStreamWorkers]
              ->channels[static_cast<size_t>(source) / kStreamWorkers];
}

void COggAudio::Wake(int source) {
  Worker& worker = WorkerOf(source);
  if (!m_threads) return;
  if (!worker.started) {
    worker.started = true;
    int error = 0;
    worker.failed = !worker.thread.Start([this, &worker] { Run(worker); }, true, &error);
    if (worker.failed) Audio_Log("Error %d creating ogg thread\n", error);
  }
  worker.wake.Raise();
}

bool COggAudio::PlaySound(int source, AudioSound& sound, bool loop, double startSeconds,
                          uint32_t listenerMask) {
  if (sound.streamed && sound.filePath.empty()) {
    Audio_Log("COggAudio::PlaySound- could not find audio file for sound %s\n", sound.name.c_str());
    return false;
  }
  Channel& channel = ChannelOf(source);
  {
    const CLock lock(WorkerOf(source).lock);
    channel.next.command = kPlay | (loop ? kLoop : 0) | (startSeconds > 0 ? kSeek : 0);
    channel.next.sound = &sound;
    channel.next.listenerMask = listenerMask;
    channel.next.seekSeconds = startSeconds;
    channel.paused = false;
    channel.active = true;
  }
  Wake(source);
  if (!WorkerOf(source).failed) return true;
  const CLock lock(WorkerOf(source).lock);
  channel.next = {};
  channel.active = false;
  return false;
}

void COggAudio::StopSound(int source) {
  {
    const CLock lock(WorkerOf(source).lock);
    ChannelOf(source).next.command = kStop;
  }
  Wake(source);
}

void COggAudio::PauseSound(int source, bool pause) {
  Channel& channel = ChannelOf(source);
  const CLock lock(WorkerOf(source).lock);
  if (!channel.active) return;
  channel.paused = pause;
  ALint state = AL_INITIAL;
  alGetSourcei(channel.source, AL_SOURCE_STATE, &state);
  if (pause && state == AL_PLAYING) alSourcePause(channel.source);
  if (!pause && state == AL_PAUSED) alSourcePlay(channel.source);
}

void COggAudio::SeekSound(int source, double seconds) {
  {
    Channel& channel = ChannelOf(source);
    const CLock lock(WorkerOf(source).lock);
    if (!channel.active) return;
    channel.next.command |= kSeek;
    channel.next.seekSeconds = seconds;
  }
  Wake(source);
}

bool COggAudio::Active(int source) const { return ChannelOf(source).active; }

bool COggAudio::Paused(int source) {
  const CLock lock(WorkerOf(source).lock);
  return ChannelOf(source).paused;
}

double COggAudio::Position(int source) {
  Channel& channel = ChannelOf(source);
  const CLock lock(WorkerOf(source).lock);
  if (!channel.active || channel.rate == 0) return 0;
  ALint inQueue = 0;
  alGetSourcei(channel.source, AL_SAMPLE_OFFSET, &inQueue);
  double seconds = channel.baseSeconds + static_cast<double>(channel.framesPlayed + inQueue) / channel.rate;
  while (channel.lengthSeconds > 0 && seconds >= channel.lengthSeconds) seconds -= channel.lengthSeconds;
  return seconds;
}

void COggAudio::Service() {
  if (m_threads) return;
  for (auto& worker : m_workers) Pass(*worker);
}

void COggAudio::Run(Worker& worker) {
  while (!worker.quit) {
    const int64_t start = Now();
    const bool busy = Pass(worker);
    const int64_t left = kPassTime - (Now() - start);
    if (!busy)
      worker.wake.Wait(-1);
    else if (left >= 1000)
      worker.wake.Wait(left);
  }
}

bool COggAudio::Pass(Worker& worker) {
  bool busy = false;
  for (auto& channel : worker.channels) {
    Request request;
    if (channel->active || channel->playState != PlayState::Idle) {
      const CLock lock(worker.lock);
      request = std::exchange(channel->next, {});
    }
    if (request.command != 0) Act(*channel, request);
    if (channel->playState != PlayState::Idle) Refill(*channel);
    busy = busy || channel->playState != PlayState::Idle;
  }
  return busy;
}

void COggAudio::Act(Channel& channel, const Request& request) {
  if ((request.command & (kPlay | kStop)) && channel.playState != PlayState::Idle) End(channel);
  if (request.command & kPlay)
    Begin(channel, request);
  else if (request.command & kStop)
    FallIdle(channel);
  else if ((request.command & kSeek) && channel.playState != PlayState::Idle) {
    Drain(channel);
    if (channel.playState == PlayState::Draining) channel.playState = PlayState::Once;
    if (const int error = channel.decoder.SeekSeconds(request.seekSeconds); error != 0)
      Audio_Log("ov_time_seek error %d\n", error);
    channel.silentFrame = static_cast<int64_t>(request.seekSeconds * channel.rate);
    channel.baseSeconds = request.seekSeconds;
    Restart(channel);
  }
}

// A play that was asked for meanwhile keeps the channel awake.
void COggAudio::FallIdle(Channel& channel) {
  const CLock lock(*channel.lock);
  if (!(channel.next.command & kPlay)) channel.active = false;
}

bool COggAudio::Open(Channel& channel, const AudioSound& sound) {
  if (sound.streamed) {
    const int error = channel.decoder.OpenFile(sound.filePath);
    if (error == -1)
      Audio_Log("Could not open Ogg file %s\n", sound.filePath.c_str());
    else if (error != 0)
      Audio_Log("ov_open error %d\n", error);
    return error == 0 && Playable(channel.decoder);
  }
  const int error = channel.decoder.OpenMemory(sound.data);
  if (error != 0) Audio_Log("ov_open_callbacks error %d\n", error);
  return error == 0 && Playable(channel.decoder);
}

void COggAudio::Begin(Channel& channel, const Request& request) {
  if (!Open(channel, *request.sound)) {
    channel.decoder.Close();
    FallIdle(channel);
    return;
  }
  if (channel.buffers[0] == 0) alGenBuffers(2, channel.buffers.data());
  channel.pcm.resize(size_t{2} * kStreamHalf);
  channel.sound = request.sound;
  channel.total = channel.decoder.PcmTotal();
  channel.silent = !m_listening && channel.total > 0;
  channel.silentFrame = 0;
  channel.playState = request.command & kLoop ? PlayState::Looped : PlayState::Once;
  channel.currentHalf = 0;
  channel.rate = channel.decoder.Rate();
  channel.lengthSeconds = channel.total > 0 ? static_cast<double>(channel.total) / channel.rate : 0;
  channel.baseSeconds = 0;
  alSourceStop(channel.source);
  alSourcei(channel.source, AL_BUFFER, 0);
  if (const ALenum error = alGetError(); error != AL_NO_ERROR)
    Audio_Log("AL Error %x detaching buffer\n", error);
  alSourcei(channel.source, AL_LOOPING, 0);
  if (const ALenum error = alGetError(); error != AL_NO_ERROR)
    Audio_Log("AL Error %x set looping to false\n", error);
  if (request.command & kSeek) {
    if (const int error = channel.decoder.SeekSeconds(request.seekSeconds); error != 0)
      Audio_Log("ov_time_seek error %d\n", error);
    channel.silentFrame = static_cast<int64_t>(request.seekSeconds * channel.rate);
    channel.baseSeconds = request.seekSeconds;
  }
  alSourcei(channel.source, AL_LISTENER_MASK, static_cast<ALint>(request.listenerMask));
  Restart(channel);
}

// Fills both halves from where the decoder stands and plays them.
void COggAudio::Restart(Channel& channel) {
  channel.framesPlayed = 0;
  if (Fill(channel, channel.buffers[0]) == 0) {
    End(channel);
    FallIdle(channel);
    return;
  }
  const int queued = Fill(channel, channel.buffers[1]) > 0 ? 2 : 1;
  alSourceQueueBuffers(channel.source, queued, channel.buffers.data());
  Play(channel);
}

// A pause that came while the source wasn't playing yet takes effect here.
void COggAudio::Play(Channel& channel) {
  alSourcePlay(channel.source);
  const CLock lock(*channel.lock);
  if (channel.paused) alSourcePause(channel.source);
}

void COggAudio::Drain(Channel& channel) {
  alSourceStop(channel.source);
  ALint queued = 0;
  alGetSourcei(channel.source, AL_BUFFERS_QUEUED, &queued);
  for (ALuint buffer = 0; queued > 0; --queued) alSourceUnqueueBuffers(channel.source, 1, &buffer);
}

void COggAudio::End(Channel& channel) {
  Drain(channel);
  alSourcei(channel.source, AL_BUFFER, 0);
  channel.decoder.Close();
  channel.playState = PlayState::Idle;
  channel.sound = nullptr;
}

void COggAudio::Refill(Channel& channel) {
  ALint processed = 0;
  alGetSourcei(channel.source, AL_BUFFERS_PROCESSED, &processed);
  for (; processed > 0; --processed) {
    ALuint buffer = 0;
    alSourceUnqueueBuffers(channel.source, 1, &buffer);
    if (buffer == 0) break;
    ALint size = 0, channels = 1;
    alGetBufferi(buffer, AL_SIZE, &size);
    alGetBufferi(buffer, AL_CHANNELS, &channels);
    channel.framesPlayed += size / (2 * channels);
    if (Fill(channel, buffer) > 0)
      alSourceQueueBuffers(channel.source, 1, &buffer);
    else
      channel.playState = PlayState::Draining;
  }
  ALint state = AL_INITIAL;
  ALint queued = 0;
  alGetSourcei(channel.source, AL_SOURCE_STATE, &state);
  alGetSourcei(channel.source, AL_BUFFERS_QUEUED, &queued);
  if (state != AL_STOPPED) return;
  if (queued > 0 && channel.playState != PlayState::Draining) {
    Play(channel); // it ran out of data
  } else if (channel.playState == PlayState::Draining) {
    End(channel);
    FallIdle(channel);
  }
}

int COggAudio::Fill(Channel& channel, ALuint buffer) {
  const bool looped = channel.playState == PlayState::Looped;
  const int frameBytes = 2 * channel.decoder.Channels();
  int filled = 0;
  uint8_t* const half = channel.pcm.data() + ptrdiff_t{channel.currentHalf} * kStreamHalf;
  if (channel.silent) {
    int64_t frames = kStreamHalf / frameBytes;
    if (!looped) frames = std::min(frames, std::max<int64_t>(channel.total - channel.silentFrame, 0));
    channel.silentFrame = (channel.silentFrame + frames) % (looped ? channel.total : INT64_MAX);
    filled = static_cast<int>(frames) * frameBytes;
  }
  bool rewound = false; // twice in a row without a sample between: there is none
  while (!channel.silent && filled < kStreamHalf) {
    const int64_t got = channel.decoder.Read(half + filled, kStreamHalf - filled);
    if (got < 0) {
      Audio_Log("ov_read error: %d\n", static_cast<int>(got));
      filled = 0;
      break;
    }
    if (got > 0) {
      filled += static_cast<int>(got);
      rewound = false;
      continue;
    }
    if (!looped || rewound) break;
    rewound = true;
    if (const int error = channel.decoder.SeekStart(); error != 0) {
      Audio_Log("ov_raw_seek error %d\n", error);
      break;
    }
  }
  if (filled > 0)
    alBufferData(buffer, FormatOf(channel.decoder), channel.silent ? nullptr : half, filled,
                 channel.decoder.Rate());
  channel.currentHalf ^= 1;
  return filled;
}

} // namespace vesk
