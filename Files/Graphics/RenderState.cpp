#include "Files/Graphics/RenderState.h"

#include "Files/Base/Console.h"
#include "Files/Graphics_API/RenderDevice.h"

#include <bit>

namespace vesk {

namespace {

struct StartValue {
  int32_t index;
  uint32_t value;
};
constexpr StartValue kStart[] = {
    {kStateFillMode, 3},
    {kStateShadeMode, 2},
    {kStateDepthWrite, 1},
    {kStateSourceBlend, 5},
    {kStateDestinationBlend, 6},
    {kStateDepthCompare, 4},
    {kStateAlphaCompare, 5},
    {kStateBlending, 1},
    {16, 1},
    {18, std::bit_cast<uint32_t>(1.0f)},
    {23, 3},
    {kStateColourMask, 15},
    {26, 1},
    {27, 1},
    {28, 1},
    {29, 8},
    {31, 0xFFFFFFFF},
    {32, 0xFFFFFFFF},
    {kStateSeparateSourceBlend, 5},
    {kStateSeparateDestinationBlend, 6},
};

constexpr bool ReachesDevice(int32_t renderState) {
  return renderState != 0 && renderState != 14 && renderState != 19 && renderState != 22 && renderState < 33;
}

} // namespace

RenderStateCache detail::g_states;

void RenderStateCache::Reset() {
  m_render = {};
  m_sampler = {};
  for (const auto& [index, value] : kStart) m_render[static_cast<size_t>(index)].wanted = value;
  for (int stage = 0; stage < kSamplerStages; ++stage)
    for (const int index : {kSamplerAddressU, kSamplerAddressV})
      m_sampler[static_cast<size_t>(stage * kSamplerStatesPerStage + index)].wanted = 1;
  m_dirtyRender.set();
  m_dirtySampler.set();
  m_dirty = true;
  m_stack.clear();
}

void RenderStateCache::SetRenderState(int32_t index, uint32_t value) {
  if (index < 0 || index >= kRenderStates) return;
  const auto at = static_cast<size_t>(index);
  Entry& entry = m_render[at];
  if (entry.wanted == value) return;
  entry.wanted = value;
  m_dirtyRender[at] = entry.Differs();
  m_dirty = m_dirtyRender.any() || m_dirtySampler.any();
}

void RenderStateCache::SetSamplerState(int32_t stage, int32_t index, uint32_t value) {
  if (stage < 0 || stage >= kSamplerStages || index < 0 || index >= kSamplerStatesPerStage) return;
  const auto at = static_cast<size_t>(stage * kSamplerStatesPerStage + index);
  Entry& entry = m_sampler[at];
  if (entry.wanted == value) return;
  entry.wanted = value;
  m_dirtySampler[at] = entry.Differs();
  m_dirty = m_dirtyRender.any() || m_dirtySampler.any();
}

void RenderStateCache::SendDirty(IRenderDevice& device) {
  if (!m_dirty) return;
  for (size_t at = 0; at < kRenderStates; ++at) {
    if (!m_dirtyRender[at]) continue;
    m_render[at].sent = m_render[at].wanted;
    m_render[at].known = true;
    if (ReachesDevice(static_cast<int32_t>(at)))
      device.SetRenderState(static_cast<int32_t>(at), m_render[at].sent);
  }
  for (size_t at = 0; at < kSamplerStates; ++at) {
    if (!m_dirtySampler[at]) continue;
    m_sampler[at].sent = m_sampler[at].wanted;
    m_sampler[at].known = true;
    const auto index = static_cast<int32_t>(at % kSamplerStatesPerStage);
    if (index <= kSamplerAddressV)
      device.SetSamplerState(static_cast<int32_t>(at / kSamplerStatesPerStage), index, m_sampler[at].sent);
  }
  m_dirtyRender.reset();
  m_dirtySampler.reset();
  m_dirty = false;
}

void RenderStateCache::ResendAll(IRenderDevice& device) {
  m_dirtyRender.set();
  m_dirtySampler.set();
  m_dirty = true;
  SendDirty(device);
}

void RenderStateCache::Push() {
  if (m_stack.size() >= kStateStackDepth) {
    DebugConsole().Output("GPU state stack has run out of space\n");
    return;
  }
  Saved& saved = m_stack.emplace_back();
  for (size_t at = 0; at < kRenderStates; ++at) saved.render[at] = m_render[at].wanted;
  for (size_t at = 0; at < kSamplerStates; ++at) saved.sampler[at] = m_sampler[at].wanted;
}

void RenderStateCache::Pop() {
  if (m_stack.empty()) {
    DebugConsole().Output("Attempting to drop below bottom of GPU state stack\n");
    return;
  }
  const Saved saved = m_stack.back();
  m_stack.pop_back();
  for (int32_t at = 0; at < kRenderStates; ++at) SetRenderState(at, saved.render[static_cast<size_t>(at)]);
  for (int32_t at = 0; at < kSamplerStates; ++at)
    SetSamplerState(at / kSamplerStatesPerStage, at % kSamplerStatesPerStage,
                    saved.sampler[static_cast<size_t>(at)]);
}

} // namespace vesk
