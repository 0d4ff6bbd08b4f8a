// The mixer and the OpenAL layer, checked on output samples.
#include "Files/Sound/ALu.h"
#include "Files/Sound/ZqOpenAL.h"
#include "Platform/Clock.h"

#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

using namespace vesk;

namespace {

// Blocks on demand, as floats.
class BlockDevice final : public ALCdevice_struct {
public:
  BlockDevice() {
    format = AL_FORMAT_STEREO_FLOAT32;
    BuildPanTable();
  }
  bool open(const char*) override { return true; }
  void close() override {}
  bool reset() override { return true; }
  bool start(Context&) override { return true; }
  void stop() override {}
  void Update(int64_t) override {}
  bool HasThread() const override { return false; }
  bool Listening() const override { return true; }
};

class Mixer : public testing::Test {
protected:
  void SetUp() override {
    m_context = alcCreateContext(std::make_unique<BlockDevice>());
    m_context->clock = &m_clock;
    alcMakeContextCurrent(m_context.get());
    alGenSources(1, &m_source);
    alSourcei(m_source, AL_SOURCE_RELATIVE, 1);
  }
  void TearDown() override { alcDestroyContext(std::move(m_context)); }

  ALuint Buffer(const std::vector<float>& samples, ALenum format = AL_FORMAT_MONO_FLOAT32, int rate = 48000) {
    ALuint name = 0;
    alGenBuffers(1, &name);
    alBufferData(name, format, samples.data(), static_cast<ALsizei>(samples.size() * sizeof(float)), rate);
    return name;
  }
  // Left and right of the next frames.
  std::vector<std::pair<float, float>> Mix(int frames) {
    std::vector<float> out(static_cast<size_t>(frames) * 2);
    aluMixBlock(*m_context, out.data(), frames);
    m_clock.Advance(int64_t{frames} * 1000000 / 48000);
    std::vector<std::pair<float, float>> pairs;
    for (size_t i = 0; i < out.size(); i += 2) pairs.emplace_back(out[i], out[i + 1]);
    return pairs;
  }
  ALint State(ALenum parameter = AL_SOURCE_STATE) {
    ALint value = -1;
    alGetSourcei(m_source, parameter, &value);
    return value;
  }
  static std::vector<float> Ramp(int frames, float first = 1) {
    std::vector<float> samples(static_cast<size_t>(frames));
    std::iota(samples.begin(), samples.end(), first);
    return samples;
  }

  CVirtualClock m_clock;
  std::unique_ptr<Context> m_context;
  ALuint m_source = 0;
};

const float kHalfPower = 1 / std::sqrt(2.0f);

} // namespace

TEST_F(Mixer, APlainSoundHasHalfItsPowerOnEachSideAndStereoStaysApart) {
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer({1, 1, 1, 1})));
  alSourcePlay(m_source);
  for (const auto& [left, right] : Mix(4)) {
    EXPECT_FLOAT_EQ(left, kHalfPower);
    EXPECT_FLOAT_EQ(right, kHalfPower);
  }
  EXPECT_EQ(State(), AL_STOPPED);
  EXPECT_EQ(Mix(2)[0].first, 0);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer({1, 2, 1, 2}, AL_FORMAT_STEREO_FLOAT32)));
  alSourcePlay(m_source);
  EXPECT_FLOAT_EQ(Mix(2)[1].first, kHalfPower);
  EXPECT_EQ(alGetError(), AL_NO_ERROR);
}

TEST_F(Mixer, PitchStepsThroughSamplesWithLinearInterpolation) {
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer({0, 4, 8, 12, 16, 20, 24, 28})));
  alSourcei(m_source, AL_SPATIAL, 0); // plain gain
  alSourcef(m_source, AL_PITCH, 0.25f);
  alSourcePlay(m_source);
  const auto slow = Mix(29);
  for (int i = 0; i < 28; ++i)
    EXPECT_FLOAT_EQ(slow[static_cast<size_t>(i)].first, static_cast<float>(i)) << i;
  EXPECT_FLOAT_EQ(slow[28].first, 28);
  alSourcef(m_source, AL_PITCH, 1.5f);
  alSourcePlay(m_source);
  const auto fast = Mix(5);
  for (int i = 0; i < 5; ++i)
    EXPECT_FLOAT_EQ(fast[static_cast<size_t>(i)].first, static_cast<float>(i) * 6) << i;
}

TEST_F(Mixer, ALoopAndAQueuePassTheirEndsWithoutAGap) {
  alSourcei(m_source, AL_SPATIAL, 0);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer(Ramp(5))));
  alSourcei(m_source, AL_LOOPING, 1);
  alSourcef(m_source, AL_PITCH, 0.5f);
  alSourcePlay(m_source);
  std::vector<float> heard;
  for (const int frames : {3, 7, 1, 9})
    for (const auto& [left, right] : Mix(frames)) heard.push_back(left);
  const float round[] = {1, 1.5f, 2, 2.5f, 3, 3.5f, 4, 4.5f, 5, 3}; // between 5 and the 1 that follows
  for (size_t i = 0; i < heard.size(); ++i) EXPECT_FLOAT_EQ(heard[i], round[i % 10]) << i;

  alSourceStop(m_source);
  alSourcei(m_source, AL_LOOPING, 0);
  alSourcei(m_source, AL_BUFFER, 0);
  alSourcef(m_source, AL_PITCH, 1);
  const ALuint queue[] = {Buffer(Ramp(3)), Buffer(Ramp(2, 4)), Buffer(Ramp(4, 6))};
  alSourceQueueBuffers(m_source, 3, queue);
  alSourcePlay(m_source);
  heard.clear();
  for (const auto& [left, right] : Mix(4)) heard.push_back(left);
  EXPECT_EQ(State(AL_BUFFERS_PROCESSED), 1);
  ALuint taken = 0;
  alSourceUnqueueBuffers(m_source, 1, &taken);
  EXPECT_EQ(taken, queue[0]);
  for (const auto& [left, right] : Mix(5)) heard.push_back(left);
  for (size_t i = 0; i < heard.size(); ++i) EXPECT_FLOAT_EQ(heard[i], static_cast<float>(i + 1)) << i;
  EXPECT_EQ(State(), AL_STOPPED);
  EXPECT_EQ(State(AL_BUFFERS_PROCESSED), 2);
  EXPECT_EQ(alGetError(), AL_NO_ERROR);
}

TEST_F(Mixer, GainsRampOverABlockAndEndExact) {
  alSourcei(m_source, AL_SPATIAL, 0);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer(std::vector<float>(64, 1.0f))));
  alSourcePlay(m_source);
  EXPECT_FLOAT_EQ(Mix(8)[0].first, 1) << "the first block doesn't ramp";
  alSourcef(m_source, AL_GAIN, 0);
  const auto falling = Mix(8);
  for (int i = 0; i < 8; ++i)
    EXPECT_NEAR(falling[static_cast<size_t>(i)].first, 1 - static_cast<float>(i + 1) / 8, 1e-6f);
  for (const auto& [left, right] : Mix(8)) EXPECT_EQ(left, 0);
  alSourcef(m_source, AL_GAIN, 0.5f);
  Mix(8);
  EXPECT_FLOAT_EQ(Mix(8)[0].first, 0.5f);
}

TEST_F(Mixer, PlacesArePannedAndFadeWithTheirDistance) {
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer(std::vector<float>(4096, 1.0f))));
  const auto heardAt = [&](float x, float z) {
    alSource3f(m_source, AL_POSITION, x, 0, z);
    alSourcePlay(m_source); // starts anew: no ramp
    return Mix(2)[0];
  };
  alSourcef(m_source, AL_REFERENCE_DISTANCE, 10);
  EXPECT_NEAR(heardAt(10, 0).first, 0, 1e-6f);
  EXPECT_NEAR(heardAt(10, 0).second, 1, 1e-6f);
  EXPECT_NEAR(heardAt(-10, 0).first, 1, 1e-6f);
  EXPECT_NEAR(heardAt(0, -10).first, kHalfPower, 1e-6f);
  EXPECT_NEAR(heardAt(0, 10).second, kHalfPower, 1e-6f);
  EXPECT_NEAR(heardAt(5, 0).second, 0.5f + kHalfPower / 2, 1e-6f)
      << "half way between the middle and the side";
  const auto [left, right] = heardAt(7.0710678f, -7.0710678f);
  EXPECT_NEAR(left, std::cos(67.5 * 3.14159265 / 180), 1e-3f);
  EXPECT_NEAR(right, std::sin(67.5 * 3.14159265 / 180), 1e-3f);

  struct Row {
    ALenum model;
    float distance, gain;
  };
  alSourcef(m_source, AL_MAX_DISTANCE, 50);
  const Row rows[] = {{AL_NONE, 40, 1},
                      {AL_INVERSE_DISTANCE, 40, 0.25f},
                      {AL_INVERSE_DISTANCE, 100, 0.1f},
                      {AL_INVERSE_DISTANCE_CLAMPED, 100, 0.2f},
                      {AL_LINEAR_DISTANCE, 30, 0.5f},
                      {AL_LINEAR_DISTANCE_CLAMPED, 80, 0},
                      {AL_EXPONENT_DISTANCE, 20, 0.5f},
                      {AL_EXPONENT_DISTANCE_CLAMPED, 5, 1}};
  for (const Row& row : rows) {
    alDistanceModel(row.model);
    const float pan = row.distance < 10 ? row.distance / 10 + kHalfPower * (1 - row.distance / 10) : 1;
    EXPECT_NEAR(heardAt(row.distance, 0).second, row.gain * pan, 1e-5f)
        << row.model << " at " << row.distance;
  }
  alSourcei(m_source, AL_SOURCE_RELATIVE, 0);
  alDistanceModel(AL_NONE);
  alListener3f(AL_POSITION, 100, 0, 0);
  EXPECT_NEAR(heardAt(110, 0).second, 1, 1e-6f) << "seen from the listener";
  EXPECT_EQ(alGetError(), AL_NO_ERROR);
}

TEST_F(Mixer, ASourceStartedSinceTheLastBlockBeginsLate) {
  alSourcei(m_source, AL_SPATIAL, 0);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer(Ramp(100))));
  Mix(480); // the clock stands at 10 ms behind it
  m_context->currentTime = 5000;
  alSourcePlay(m_source);
  m_context->lastMixTime = 0;
  const auto heard = Mix(480);
  EXPECT_EQ(heard[239].first, 0);
  EXPECT_EQ(heard[240].first, 1);
  EXPECT_EQ(heard[339].first, 100);
  EXPECT_EQ(heard[340].first, 0);
}

TEST_F(Mixer, AnUnheardBlockMovesSourcesAsAHeardOneDoes) {
  alSourcei(m_source, AL_SPATIAL, 0);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer(Ramp(100))));
  alSourcef(m_source, AL_PITCH, 1.25f);
  alSourcePlay(m_source);
  aluMixBlock(*m_context, nullptr, 40);
  EXPECT_EQ(State(AL_SAMPLE_OFFSET), 50);
  EXPECT_FLOAT_EQ(Mix(1)[0].first, 51);
  aluMixBlock(*m_context, nullptr, 40);
  EXPECT_EQ(State(), AL_STOPPED);
}

TEST_F(Mixer, OutputIsClampedAndTruncated) {
  m_context->device->format = AL_FORMAT_STEREO16;
  alSourcei(m_source, AL_SPATIAL, 0);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(Buffer({0.5f, 2, -2, 0.00004f, -0.00004f})));
  alSourcePlay(m_source);
  int16_t out[10] = {};
  aluMixBlock(*m_context, out, 5);
  const int16_t expected[] = {16384, 32767, -32768, 1, -1};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(out[2 * i], expected[i]);

  uint8_t bytes[] = {128, 192, 0};
  ALuint small = 0;
  alGenBuffers(1, &small);
  alBufferData(small, AL_FORMAT_MONO8, bytes, 3, 48000);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(small));
  alSourcePlay(m_source);
  aluMixBlock(*m_context, out, 3);
  EXPECT_EQ(out[0], 0);
  EXPECT_EQ(out[2], 16384);
  EXPECT_EQ(out[4], -32768);
}

TEST_F(Mixer, WrongCallsGiveTheStandardsErrors) {
  const ALuint buffer = Buffer({1, 2});
  alSourcei(99, AL_BUFFER, 0);
  EXPECT_EQ(alGetError(), AL_INVALID_NAME);
  EXPECT_EQ(alGetError(), AL_NO_ERROR) << "reading clears it";
  alSourcef(m_source, AL_GAIN, -1);
  EXPECT_EQ(alGetError(), AL_INVALID_VALUE);
  alSourcef(m_source, 0x7777, 1);
  EXPECT_EQ(alGetError(), AL_INVALID_ENUM);
  ALuint taken = 0;
  alSourceUnqueueBuffers(m_source, 1, &taken);
  EXPECT_EQ(alGetError(), AL_INVALID_VALUE);
  alSourcei(m_source, AL_BUFFER, static_cast<ALint>(buffer));
  alSourceQueueBuffers(m_source, 1, &buffer);
  EXPECT_EQ(alGetError(), AL_INVALID_OPERATION);
  alDeleteBuffers(1, &buffer);
  EXPECT_EQ(alGetError(), AL_INVALID_OPERATION);
  alSourcePlay(m_source);
  alSourcei(m_source, AL_BUFFER, 0);
  EXPECT_EQ(alGetError(), AL_INVALID_OPERATION);
  alSourcef(m_source, AL_SEC_OFFSET, 1);
  EXPECT_EQ(alGetError(), AL_INVALID_VALUE);
  alBufferData(buffer, AL_FORMAT_MONO16, "x", 1, 48000);
  EXPECT_EQ(alGetError(), AL_INVALID_VALUE);
}
