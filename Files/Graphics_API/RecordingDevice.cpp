#include "Files/Graphics_API/RecordingDevice.h"

#include <algorithm>
#include <cstring>

namespace vesk {

std::vector<CRecordingDevice::Call> CRecordingDevice::Draws() const {
  std::vector<Call> result;
  for (const Call& call : calls)
    if (call.kind == Kind::Draw) result.push_back(call);
  return result;
}

bool CRecordingDevice::Present() {
  ++presents;
  if (keep) calls.push_back({.kind = Kind::Present});
  return true;
}

TextureHandle CRecordingDevice::CreateTexture(int32_t width, int32_t height, const uint8_t*) {
  if (failTextures || width <= 0 || height <= 0 || width > maxTexture || height > maxTexture) return 0;
  textures[m_nextTexture] = {width, height};
  return m_nextTexture++;
}

TextureHandle CRecordingDevice::CreateRenderTarget(int32_t width, int32_t height) {
  return CreateTexture(width, height, nullptr);
}

void CRecordingDevice::BindTexture(int32_t stage, TextureHandle texture) {
  if (stage == 0) m_bound = texture;
}

bool CRecordingDevice::SetTarget(int32_t slot, TextureHandle target) {
  if (keep) calls.push_back({.kind = Kind::Target, .texture = target, .index = slot});
  return true;
}

bool CRecordingDevice::ReadPixels(TextureHandle, int32_t, int32_t, int32_t width, int32_t height,
                                  uint8_t* pixels) {
  const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
  for (size_t i = 0; i < bytes; ++i)
    pixels[i] = readBack.empty() ? uint8_t{0} : readBack[i % readBack.size()];
  return true;
}

void CRecordingDevice::SetViewport(int32_t x, int32_t y, int32_t width, int32_t height) {
  if (keep) calls.push_back({.kind = Kind::Viewport, .box = {x, y, width, height}});
}

void CRecordingDevice::SetMatrix(int32_t slot, const Matrix& matrix) {
  if (!keep) return;
  Call& call = calls.emplace_back(Call{.kind = Kind::Matrix, .index = slot});
  call.data.resize(sizeof(matrix.m));
  std::memcpy(call.data.data(), matrix.m, sizeof(matrix.m));
}

void CRecordingDevice::Clear(uint32_t colour, float, uint32_t, uint32_t flags) {
  if (keep) calls.push_back({.kind = Kind::Clear, .index = static_cast<int32_t>(flags), .value = colour});
}

void CRecordingDevice::SetRenderState(int32_t index, uint32_t value) {
  ++states;
  if (keep) calls.push_back({.kind = Kind::State, .index = index, .value = value});
}

void CRecordingDevice::SetSamplerState(int32_t stage, int32_t index, uint32_t value) {
  ++states;
  if (keep) calls.push_back({.kind = Kind::Sampler, .index = stage * 10 + index, .value = value});
}

BufferHandle CRecordingDevice::CreateBuffer(uint32_t bytes, bool dynamic) {
  if (failBuffers || (dynamic && failDynamicBuffers)) return 0;
  ++buffersMade;
  m_buffers.emplace_back(bytes);
  return static_cast<BufferHandle>(m_buffers.size());
}

uint8_t* CRecordingDevice::MapBuffer(BufferHandle buffer, uint32_t from, bool discard) {
  if (discard) ++discards;
  return m_buffers[buffer - 1].data() + from;
}

void CRecordingDevice::ReleaseBuffer(BufferHandle buffer) { m_buffers[buffer - 1] = {}; }

void CRecordingDevice::Draw(Primitive primitive, uint32_t format, int32_t stride, BufferHandle buffer,
                            uint32_t firstByte, int32_t count) {
  DrawFromMemory(primitive, format, stride, m_buffers[buffer - 1].data() + firstByte, count);
}

void CRecordingDevice::DrawFromMemory(Primitive primitive, uint32_t, int32_t stride, const uint8_t* data,
                                      int32_t count) {
  ++draws;
  vertices += count;
  if (!keep) return;
  Call& call = calls.emplace_back(Call{.kind = Kind::Draw,
                                       .primitive = primitive,
                                       .texture = m_bound,
                                       .program = m_program,
                                       .stride = stride,
                                       .count = count});
  call.data.assign(data, data + static_cast<ptrdiff_t>(stride) * count);
}

ProgramHandle CRecordingDevice::CompileProgram(const std::string&, const std::string& fragment,
                                               CompileFailure& failure) {
  if (!failCompileWith.empty()) {
    failure = {.fragment = true, .text = failCompileWith};
    return 0;
  }
  m_programs.push_back(fragment);
  return static_cast<ProgramHandle>(m_programs.size());
}

void CRecordingDevice::UseProgram(ProgramHandle program) {
  m_program = program;
  if (keep) calls.push_back({.kind = Kind::Program, .program = program});
}

std::vector<DeviceUniform> CRecordingDevice::Uniforms(ProgramHandle program) {
  const auto found = programs.find(m_programs[program - 1]);
  return found == programs.end() ? std::vector<DeviceUniform>{} : found->second;
}

void CRecordingDevice::SetUniform(const DeviceUniform& uniform, const float* values, int32_t elements) {
  if (!keep) return;
  Call& call =
      calls.emplace_back(Call{.kind = Kind::Uniform, .program = m_program, .index = uniform.location});
  call.data.resize(sizeof(float) * static_cast<size_t>(uniform.components * elements));
  std::memcpy(call.data.data(), values, call.data.size());
}

void CRecordingDevice::SetUniformInt(const DeviceUniform& uniform, const int32_t* values, int32_t elements) {
  if (!keep) return;
  Call& call =
      calls.emplace_back(Call{.kind = Kind::Uniform, .program = m_program, .index = uniform.location});
  call.data.resize(sizeof(int32_t) * static_cast<size_t>(uniform.components * elements));
  std::memcpy(call.data.data(), values, call.data.size());
}

} // namespace vesk
