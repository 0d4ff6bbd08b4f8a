#pragma once
// Sounds made for the audio tests, and an audio system on a platform driven by hand.
#include "Files/Sound/Audio_Main.h"
#include "Files/Sound/Audio_Sound.h"
#include "Files/Sound/SoundRecords.h"
#include "Platform/HandDriven.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

#include <vorbis/vorbisenc.h>

namespace vesk::test {

// A sine of so many frames, encoded as Ogg Vorbis.
inline std::vector<uint8_t> EncodeVorbis(int frames, int channels, int rate, double frequency = 440) {
  std::vector<uint8_t> bytes;
  vorbis_info info;
  vorbis_comment comment;
  vorbis_dsp_state dsp;
  vorbis_block block;
  ogg_stream_state stream;
  vorbis_info_init(&info);
  if (vorbis_encode_init_vbr(&info, channels, rate, 0.3f) != 0) return bytes;
  vorbis_comment_init(&comment);
  vorbis_analysis_init(&dsp, &info);
  vorbis_block_init(&dsp, &block);
  ogg_stream_init(&stream, 7);
  const auto take = [&](bool flush) {
    ogg_page page;
    while ((flush ? ogg_stream_flush(&stream, &page) : ogg_stream_pageout(&stream, &page)) != 0) {
      bytes.insert(bytes.end(), page.header, page.header + page.header_len);
      bytes.insert(bytes.end(), page.body, page.body + page.body_len);
    }
  };
  ogg_packet identification, comments, code;
  vorbis_analysis_headerout(&dsp, &comment, &identification, &comments, &code);
  ogg_stream_packetin(&stream, &identification);
  ogg_stream_packetin(&stream, &comments);
  ogg_stream_packetin(&stream, &code);
  take(true);
  for (int done = 0; done <= frames;) {
    const int count = std::min(1024, frames - done);
    if (count > 0) {
      float** samples = vorbis_analysis_buffer(&dsp, count);
      for (int i = 0; i < count; ++i)
        for (int channel = 0; channel < channels; ++channel)
          samples[channel][i] =
              0.5f *
              static_cast<float>(std::sin((done + i) * frequency * (channel + 1) * 6.283185307 / rate));
    }
    vorbis_analysis_wrote(&dsp, count); // 0 ends the stream
    while (vorbis_analysis_blockout(&dsp, &block) == 1) {
      vorbis_analysis(&block, nullptr);
      vorbis_bitrate_addblock(&block);
      ogg_packet packet;
      while (vorbis_bitrate_flushpacket(&dsp, &packet) != 0) ogg_stream_packetin(&stream, &packet);
      take(false);
    }
    if (count == 0) break;
    done += count;
  }
  take(true);
  ogg_stream_clear(&stream);
  vorbis_block_clear(&block);
  vorbis_dsp_clear(&dsp);
  vorbis_comment_clear(&comment);
  vorbis_info_clear(&info);
  return bytes;
}

inline constexpr int kEffect = 103; // storage modes
inline constexpr int kMusic = 102;

// The audio system on a clock that moves by frames of the game.
class AudioRig {
public:
  explicit AudioRig(bool listening) {
    platform.audio.keep = listening;
    Platform_Set(&platform.Interfaces());
    Audio_Init(true);
  }
  ~AudioRig() {
    Audio_Quit();
    Platform_Set(nullptr);
  }
  int Add(const std::string& name, int mode, std::vector<uint8_t> bytes, float gain = 1, int index = -1) {
    if (index < 0) index = Audio_SoundCount();
    SoundRecord record;
    record.name = name;
    record.file = name + ".ogg";
    record.flags = mode;
    record.gain = gain;
    record.audioIndex = index;
    m_bytes.push_back(std::move(bytes));
    Audio_AddSound(index, record);
    Audio_BindData(index, m_bytes.back());
    return index;
  }
  void Tick(int frames = 1) {
    for (int i = 0; i < frames; ++i) {
      platform.clock.Advance(1000000 / 60);
      Audio_Update();
    }
  }
  CHandDrivenPlatform platform;

private:
  std::deque<std::vector<uint8_t>> m_bytes;
};

} // namespace vesk::test
