#pragma once
// Ogg Vorbis: decoding a whole sound at once, and streams that decode while they play.
#include "Files/Sound/ZqOpenAL.h"
#include "Platform/Threads.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vesk {

struct AudioSound;

// One open Vorbis stream. 16-bit samples, interleaved. One thread at a time.
class COggDecoder {
public:
  COggDecoder();
  ~COggDecoder();
  COggDecoder(const COggDecoder&) = delete;
  COggDecoder& operator=(const COggDecoder&) = delete;

  // 0, or libvorbisfile's error number. The bytes must outlive the decoder.
  int OpenMemory(std::span<const uint8_t> bytes);
  int OpenFile(const std::string& path); // -1 when the file can't be opened
  void Close();
  bool IsOpen() const;

  int Rate() const;
  int Channels() const;
  int64_t PcmTotal();                          // frames; below 0 unknown
  int64_t Read(uint8_t* bytes, int64_t count); // bytes; 0 at the end, negative an error number
  int SeekStart();                             // 0, or an error number
  int SeekSeconds(double seconds);             // the same

private:
  struct State;
  std::unique_ptr<State> m_state;
};

struct DecodedSound {
  std::vector<uint8_t> bytes;
  ALenum format = AL_FORMAT_MONO16;
  int rate = 0;
};
// The whole stream; false, with the reason in the log, when it can't be decoded. `name` is for the log.
bool Ogg_DecodeWhole(std::span<const uint8_t> bytes, const std::string& name, DecodedSound& sound);
// Length without decoding. False when the bytes are no Vorbis stream.
bool Ogg_Measure(std::span<const uint8_t> bytes, int& rate, int& channels, int64_t& frames);

inline constexpr int kStreamHalf = 16384; // bytes of one of the two buffers of a stream
inline constexpr int kStreamWorkers = 4;

// The stream workers. Source i belongs to worker i mod 4 as channel i / 4. Without threads, Service does
// their work on the caller's thread.
class COggAudio {
public:
  COggAudio(std::vector<ALuint> sources, bool threads, const Context& context);
  ~COggAudio(); // stops the workers and all streams
  COggAudio(const COggAudio&) = delete;
  COggAudio& operator=(const COggAudio&) = delete;

  // Requests; the worker acts on them at its next pass. `sound` must live until the channel is idle.
  bool PlaySound(int source, AudioSound& sound, bool loop, double startSeconds, uint32_t listenerMask);
  void StopSound(int source);
  void PauseSound(int source, bool pause);
  void SeekSound(int source, double seconds);
  bool Active(int source) const; // from the play request until the channel falls idle
  bool Paused(int source);
  double Position(int source); // seconds into the sound, 0 when idle

  void Service(); // one pass of every worker, when there are no threads

private:
  struct Channel;
  struct Worker;
  struct Request;
  Channel& ChannelOf(int source) const;
  Worker& WorkerOf(int source);
  void Wake(int source);
  void Run(Worker& worker);
  bool Pass(Worker& worker); // true while some channel plays
  void Act(Channel& channel, const Request& request);
  void Begin(Channel& channel, const Request& request);
  bool Open(Channel& channel, const AudioSound& sound);
  void FallIdle(Channel& channel);
  void End(Channel& channel);
  void Drain(Channel& channel);
  void Restart(Channel& channel);
  void Play(Channel& channel);
  void Refill(Channel& channel);
  int Fill(Channel& channel, ALuint buffer); // bytes

  bool m_threads;
  const std::atomic<bool>& m_listening;
  std::array<std::unique_ptr<Worker>, kStreamWorkers> m_workers;
};

} // namespace vesk
