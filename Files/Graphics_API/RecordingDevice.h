#pragma once
// A device that draws nothing and remembers what it was asked to do: for runs without a picture, tests and
// benchmarks.
#include "Files/Graphics_API/RenderDevice.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vesk {

class CRecordingDevice final : public IRenderDevice {
public:
  enum class Kind { Draw, Clear, Target, Viewport, Matrix, State, Sampler, Program, Uniform, Present };
  struct Call {
    Kind kind;
    Primitive primitive = pr_pointlist;
    TextureHandle texture = 0; // bound at stage 0; the target of a target change
    ProgramHandle program = 0;
    int32_t stride = 0, count = 0; // of a draw
    int32_t index = 0;             // of a state, a stage, a matrix
    uint32_t value = 0;            // of a state; the colour of a clear
    std::array<int32_t, 4> box{};  // of a viewport
    std::vector<uint8_t> data{};   // vertices of a draw, values of a uniform
  };

  explicit CRecordingDevice(bool keep = false) : keep(keep) {}

  bool keep;               // calls are kept; without it only counted
  std::vector<Call> calls; // oldest first
  int64_t draws = 0, vertices = 0, states = 0, presents = 0, discards = 0, buffersMade = 0;
  bool failBuffers = false, failDynamicBuffers = false, failTextures = false;
  int32_t maxTexture = 8192;
  std::map<std::string, std::vector<DeviceUniform>> programs; // by fragment source; others have none
  std::string failCompileWith;                                // not empty: every program fails with this text
  std::map<TextureHandle, std::array<int32_t, 2>> textures;   // live ones and their sizes
  std::vector<uint8_t> readBack; // what ReadPixels gives, repeated; zeros when empty

  std::vector<Call> Draws() const; // kept draws only
  void Forget() { calls.clear(); }

  const char* Name() const override { return "recording"; }
  int32_t MaxTextureSize() const override { return maxTexture; }
  void BeginScene(int32_t, int32_t) override {}
  void EndScene() override {}
  bool Present() override;
  void Reset(int32_t, int32_t) override {}
  TextureHandle CreateTexture(int32_t width, int32_t height, const uint8_t* pixels) override;
  bool UpdateTexture(TextureHandle, const uint8_t*) override { return true; }
  TextureHandle CreateRenderTarget(int32_t width, int32_t height) override;
  void ReleaseTexture(TextureHandle texture) override { textures.erase(texture); }
  void BindTexture(int32_t stage, TextureHandle texture) override;
  bool SetTarget(int32_t slot, TextureHandle target) override;
  bool ReadPixels(TextureHandle target, int32_t x, int32_t y, int32_t width, int32_t height,
                  uint8_t* pixels) override;
  void SetViewport(int32_t x, int32_t y, int32_t width, int32_t height) override;
  void SetMatrix(int32_t slot, const Matrix& matrix) override;
  void Clear(uint32_t colour, float depth, uint32_t stencil, uint32_t flags) override;
  void SetRenderState(int32_t index, uint32_t value) override;
  void SetSamplerState(int32_t stage, int32_t index, uint32_t value) override;
  BufferHandle CreateBuffer(uint32_t bytes, bool dynamic) override;
  uint8_t* MapBuffer(BufferHandle buffer, uint32_t from, bool discard) override;
  bool UnmapBuffer(BufferHandle, uint32_t, uint32_t) override { return true; }
  void ReleaseBuffer(BufferHandle buffer) override;
  void Draw(Primitive primitive, uint32_t format, int32_t stride, BufferHandle buffer, uint32_t firstByte,
            int32_t count) override;
  void DrawFromMemory(Primitive primitive, uint32_t format, int32_t stride, const uint8_t* data,
                      int32_t count) override;
  bool HasPrograms() const override { return true; }
  ProgramHandle CompileProgram(const std::string& vertex, const std::string& fragment,
                               CompileFailure& failure) override;
  void ReleaseProgram(ProgramHandle) override {}
  void UseProgram(ProgramHandle program) override;
  std::vector<DeviceUniform> Uniforms(ProgramHandle program) override;
  void SetUniform(const DeviceUniform& uniform, const float* values, int32_t elements) override;
  void SetUniformInt(const DeviceUniform& uniform, const int32_t* values, int32_t elements) override;

private:
  std::vector<std::vector<uint8_t>> m_buffers;
  std::vector<std::string> m_programs; // fragment sources by handle - 1
  TextureHandle m_nextTexture = 1;
  TextureHandle m_bound = 0;
  ProgramHandle m_program = 0;
};

} // namespace vesk
