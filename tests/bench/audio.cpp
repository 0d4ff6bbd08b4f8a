// What sound costs: seconds of work for a second of sound are the share of a core.
#include "Files/Sound/ALu.h"
#include "Files/Sound/Audio_Ogg.h"
#include "tests/runner/audio_support.h"

#include <benchmark/benchmark.h>

using namespace vesk;

namespace {

class BlockDevice final : public ALCdevice_struct {
public:
  BlockDevice() { BuildPanTable(); }
  bool open(const char*) override { return true; }
  void close() override {}
  bool reset() override { return true; }
  bool start(Context&) override { return true; }
  void stop() override {}
  void Update(int64_t) override {}
  bool HasThread() const override { return false; }
  bool Listening() const override { return true; }
};

// One second of 16 looping voices at 48 kHz, half of them stereo, all at another rate than the device's.
void MixSixteenVoices(benchmark::State& state) {
  auto context = alcCreateContext(std::make_unique<BlockDevice>());
  alcMakeContextCurrent(context.get());
  ALuint sources[16], buffers[16];
  alGenSources(16, sources);
  alGenBuffers(16, buffers);
  std::vector<int16_t> samples(44100 * 2);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<int16_t>(i * 37);
  for (int i = 0; i < 16; ++i) {
    alBufferData(buffers[i], i % 2 ? AL_FORMAT_STEREO16 : AL_FORMAT_MONO16, samples.data(),
                 static_cast<ALsizei>(samples.size() * 2), 44100);
    alSourcei(sources[i], AL_BUFFER, static_cast<ALint>(buffers[i]));
    alSourcei(sources[i], AL_LOOPING, 1);
    alSourcePlay(sources[i]);
  }
  std::vector<int16_t> out(1600 * 2);
  for (auto _ : state)
    for (int block = 0; block < 30; ++block) aluMixBlock(*context, out.data(), 1600);
  benchmark::DoNotOptimize(out.data());
  alcDestroyContext(std::move(context));
}
BENCHMARK(MixSixteenVoices)->Unit(benchmark::kMillisecond);

// One second of stereo music out of its stream.
void DecodeMusic(benchmark::State& state) {
  constexpr int kSeconds = 20;
  const auto ogg = test::EncodeVorbis(kSeconds * 44100, 2, 44100);
  COggDecoder decoder;
  decoder.OpenMemory(ogg);
  std::vector<uint8_t> half(kStreamHalf);
  for (auto _ : state) {
    for (int bytes = 0; bytes < 44100 * 4;) {
      const auto got = static_cast<int>(decoder.Read(half.data(), kStreamHalf));
      if (got <= 0) decoder.SeekStart();
      bytes += got;
    }
  }
}
BENCHMARK(DecodeMusic)->Unit(benchmark::kMillisecond);

} // namespace
