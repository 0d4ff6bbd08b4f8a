#pragma once
// What the device was told and what it shall be told: states change at the next flush, and only if they
// differ then.
#include <array>
#include <bitset>
#include <cstdint>
#include <vector>

namespace vesk {

class IRenderDevice;

enum RenderStateIndex : int32_t {
  kStateDepthTest = 1,
  kStateFillMode = 2,
  kStateShadeMode = 3,
  kStateDepthWrite = 4,
  kStateAlphaTest = 5,
  kStateSourceBlend = 6,
  kStateDestinationBlend = 7,
  kStateCull = 8,
  kStateDepthCompare = 9,
  kStateAlphaReference = 10,
  kStateAlphaCompare = 11,
  kStateBlending = 12,
  kStateFog = 13,
  kStateLighting = 21,
  kStateColourMask = 24,
  kStateStencil = 25,
  kStateSeparateSourceBlend = 34,
  kStateSeparateDestinationBlend = 35,
};
enum SamplerStateIndex : int32_t {
  kSamplerMagnify = 0,
  kSamplerMinify = 1,
  kSamplerAddressU = 2,
  kSamplerAddressV = 3
};

inline constexpr int kRenderStates = 36;
inline constexpr int kSamplerStages = 8;
inline constexpr int kSamplerStatesPerStage = 10;
inline constexpr int kSamplerStates = kSamplerStages * kSamplerStatesPerStage;
inline constexpr int kStateStackDepth = 32;

class RenderStateCache {
public:
  RenderStateCache() { Reset(); }
  void Reset(); // start values; all count as unsent
  void SetRenderState(int32_t index, uint32_t value);
  void SetSamplerState(int32_t stage, int32_t index, uint32_t value);
  uint32_t RenderState(int32_t index) const { return m_render[static_cast<size_t>(index)].wanted; }
  uint32_t SamplerState(int32_t stage, int32_t index) const {
    return m_sampler[static_cast<size_t>(stage * kSamplerStatesPerStage + index)].wanted;
  }
  bool Dirty() const { return m_dirty; }
  void SendDirty(IRenderDevice& device);
  void ResendAll(IRenderDevice& device);
  void Push(); // beyond 32: logged, nothing saved
  void Pop();

private:
  struct Entry {
    uint32_t sent = 0, wanted = 0;
    bool known = false; // the device has `sent`
    bool Differs() const { return !known || wanted != sent; }
  };
  struct Saved {
    std::array<uint32_t, kRenderStates> render;
    std::array<uint32_t, kSamplerStates> sampler;
  };
  std::array<Entry, kRenderStates> m_render;
  std::array<Entry, kSamplerStates> m_sampler;
  std::bitset<kRenderStates> m_dirtyRender;
  std::bitset<kSamplerStates> m_dirtySampler;
  bool m_dirty = false;
  std::vector<Saved> m_stack;
};

namespace detail {
extern RenderStateCache g_states;
}
inline RenderStateCache& RenderStates() { return detail::g_states; }

} // namespace vesk
