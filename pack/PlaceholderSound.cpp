#include "pack/PlaceholderSound.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>
#include <vorbis/vorbisenc.h>

namespace vesk::pack {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kMusicSeconds = 4;
constexpr double kBlipSeconds = 0.06;
constexpr int kSerialNumber = 1; // fixed: equal sounds are equal bytes

// The library's four states, freed in their order.
struct Encoder {
  vorbis_info info;
  vorbis_comment comment;
  vorbis_dsp_state dsp;
  vorbis_block block;
  ogg_stream_state stream;

  Encoder(float quality, int channels) {
    vorbis_info_init(&info);
    if (vorbis_encode_init_vbr(&info, channels, kSoundRate, quality) != 0) {
      vorbis_info_clear(&info);
      throw std::runtime_error("the Vorbis encoder does not start");
    }
    vorbis_comment_init(&comment);
    vorbis_analysis_init(&dsp, &info);
    vorbis_block_init(&dsp, &block);
    ogg_stream_init(&stream, kSerialNumber);
  }
  ~Encoder() {
    ogg_stream_clear(&stream);
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&dsp);
    vorbis_comment_clear(&comment);
    vorbis_info_clear(&info);
  }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;
};

void Append(std::string& file, const ogg_page& page) {
  file.append(reinterpret_cast<const char*>(page.header), static_cast<size_t>(page.header_len));
  file.append(reinterpret_cast<const char*>(page.body), static_cast<size_t>(page.body_len));
}

void WriteHeaders(Encoder& encoder, std::string& file) {
  ogg_packet packets[3];
  vorbis_analysis_headerout(&encoder.dsp, &encoder.comment, &packets[0], &packets[1], &packets[2]);
  for (ogg_packet& packet : packets) ogg_stream_packetin(&encoder.stream, &packet);
  ogg_page page;
  while (ogg_stream_flush(&encoder.stream, &page) != 0) Append(file, page);
}

void WriteBlocks(Encoder& encoder, std::string& file) {
  ogg_packet packet;
  ogg_page page;
  while (vorbis_analysis_blockout(&encoder.dsp, &encoder.block) == 1) {
    vorbis_analysis(&encoder.block, nullptr);
    vorbis_bitrate_addblock(&encoder.block);
    while (vorbis_bitrate_flushpacket(&encoder.dsp, &packet) != 0) {
      ogg_stream_packetin(&encoder.stream, &packet);
      while (ogg_stream_pageout(&encoder.stream, &page) != 0) Append(file, page);
    }
  }
}

} // namespace

std::string EncodeOgg(std::span<const float> samples, float quality, int channels) {
  constexpr size_t kBlock = 4096;
  Encoder encoder(quality, channels);
  const size_t step = static_cast<size_t>(channels), frames = samples.size() / step;
  std::string file;
  WriteHeaders(encoder, file);
  for (size_t at = 0; at < frames; at += kBlock) {
    const size_t count = std::min(kBlock, frames - at);
    float** buffer = vorbis_analysis_buffer(&encoder.dsp, static_cast<int>(count));
    for (size_t i = 0; i < count; ++i)
      for (size_t c = 0; c < step; ++c) buffer[c][i] = samples[(at + i) * step + c];
    vorbis_analysis_wrote(&encoder.dsp, static_cast<int>(count));
    WriteBlocks(encoder, file);
  }
  vorbis_analysis_wrote(&encoder.dsp, 0);
  WriteBlocks(encoder, file);
  ogg_page page;
  while (ogg_stream_flush(&encoder.stream, &page) != 0) Append(file, page);
  return file;
}

std::string PlaceholderSound(int number, double seconds, bool music) {
  const double length = music ? std::min(seconds, kMusicSeconds) : seconds;
  std::vector<float> samples(static_cast<size_t>(std::max(1.0, std::round(length * kSoundRate))));
  // A tone with a whole number of waves, so that a loop has no seam; semitones over two octaves.
  const double wish = (music ? 110.0 : 440.0) * std::pow(2.0, number % 24 / 12.0);
  const double tone = music ? std::round(wish * length) / length : wish;
  const double loudness = music ? 0.02 : 0.1;
  for (size_t i = 0; i < samples.size(); ++i) {
    const double t = static_cast<double>(i) / kSoundRate;
    const double fade = music ? 1.0 : std::max(0.0, 1.0 - t / std::min(kBlipSeconds, length));
    samples[i] = static_cast<float>(loudness * fade * std::sin(2 * kPi * tone * t));
  }
  return EncodeOgg(samples, music ? 0.0f : 0.1f);
}

} // namespace vesk::pack
