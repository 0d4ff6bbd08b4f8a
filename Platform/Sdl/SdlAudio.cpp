#include "Platform/Sdl/Sdl.h"

namespace vesk {

void SDLCALL CSdlAudio::Call(void* self, Uint8* bytes, int length) {
  const auto* device = static_cast<CSdlAudio*>(self);
  constexpr int kFrameBytes = 2 * static_cast<int>(sizeof(int16_t));
  device->m_fill(device->m_user, reinterpret_cast<int16_t*>(bytes), length / kFrameBytes);
}

bool CSdlAudio::Open(AudioFormat& format, AudioFill fill, void* user) {
  Close();
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return false;
  SDL_AudioSpec wanted{}, got{};
  wanted.freq = format.rate;
  wanted.format = AUDIO_S16SYS;
  wanted.channels = 2;
  wanted.samples = static_cast<Uint16>(format.blockFrames);
  wanted.callback = &CSdlAudio::Call;
  wanted.userdata = this;
  m_fill = fill;
  m_user = user;
  m_device = SDL_OpenAudioDevice(nullptr, 0, &wanted, &got,
                                 SDL_AUDIO_ALLOW_FREQUENCY_CHANGE | SDL_AUDIO_ALLOW_SAMPLES_CHANGE);
  if (m_device == 0) {
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    return false;
  }
  format.rate = got.freq;
  format.blockFrames = got.samples;
  SDL_PauseAudioDevice(m_device, 0);
  return true;
}

void CSdlAudio::Close() {
  if (m_device == 0) return;
  SDL_CloseAudioDevice(m_device);
  SDL_QuitSubSystem(SDL_INIT_AUDIO);
  m_device = 0;
}

} // namespace vesk
