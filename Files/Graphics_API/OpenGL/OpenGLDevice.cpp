// The device on OpenGL ES 2.0. Rows of render targets run from the top, as everywhere else here: a target
// that is a texture is drawn upside down, so that its first row is the picture's first.
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics_API/OpenGL/OpenGLProgram.h"
#include "Files/Graphics_API/RenderDevice.h"
#include "Platform/Window.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace vesk {

namespace {

constexpr int kStages = 8;

struct GlTexture {
  GLuint name = 0;
  GLuint frame = 0; // of a render target
  int32_t width = 0, height = 0;
  bool used = false;
  std::array<uint32_t, 4> sampler{~0u, ~0u, ~0u, ~0u}; // as last told to it
};

struct GlBuffer {
  GLuint name = 0;
  std::vector<uint8_t> memory;
  bool discard = false, dynamic = true;
};

GLenum BlendFactor(uint32_t factor) {
  constexpr GLenum kFactors[] = {GL_ZERO,
                                 GL_ZERO,
                                 GL_ONE,
                                 GL_SRC_COLOR,
                                 GL_ONE_MINUS_SRC_COLOR,
                                 GL_SRC_ALPHA,
                                 GL_ONE_MINUS_SRC_ALPHA,
                                 GL_DST_ALPHA,
                                 GL_ONE_MINUS_DST_ALPHA,
                                 GL_DST_COLOR,
                                 GL_ONE_MINUS_DST_COLOR,
                                 GL_SRC_ALPHA_SATURATE};
  return kFactors[factor < std::size(kFactors) ? factor : 2];
}

bool PowerOfTwo(int32_t size) { return (size & (size - 1)) == 0; }

class COpenGLDevice final : public IRenderDevice {
public:
  explicit COpenGLDevice(IWindow& window) : m_window(window) {}

  bool Start(std::string& why) {
    CompileFailure failure;
    m_plain = OpenGL_Compile(kPlainVertexShader, kPlainFragmentShader, failure);
    if (!m_plain.name) {
      why = failure.text;
      return false;
    }
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &m_maxTexture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_DITHER);
    UseProgram(0);
    return true;
  }

  ~COpenGLDevice() override {
    if (!m_window.HasContext()) return;
    m_window.MakeCurrent();
    for (size_t i = 0; i < m_textures.size(); ++i) ReleaseTexture(static_cast<TextureHandle>(i + 1));
    for (size_t i = 0; i < m_buffers.size(); ++i) ReleaseBuffer(static_cast<BufferHandle>(i + 1));
    for (const OpenGLProgram& program : m_programs) glDeleteProgram(program.name);
    glDeleteProgram(m_plain.name);
    if (m_before) glDeleteTextures(1, &m_before);
  }

  const char* Name() const override { return "OpenGL"; }
  int32_t MaxTextureSize() const override { return std::min(m_maxTexture, 16384); }

  void BeginScene(int32_t width, int32_t height) override {
    m_window.MakeCurrent();
    m_width = width;
    m_height = height;
  }
  void EndScene() override {}
  bool Present() override {
    m_window.Swap();
    return true;
  }
  void Reset(int32_t width, int32_t height) override {
    BeginScene(width, height);
    SetTarget(0, 0);
    UseProgram(0);
  }

  // ---- textures ----

  TextureHandle CreateTexture(int32_t width, int32_t height, const uint8_t* pixels) override {
    if (width <= 0 || height <= 0 || width > m_maxTexture || height > m_maxTexture) return 0;
    GlTexture texture;
    texture.used = true;
    texture.width = width;
    texture.height = height;
    glGenTextures(1, &texture.name);
    const auto free =
        std::find_if(m_textures.begin(), m_textures.end(), [](const GlTexture& t) { return !t.used; });
    const auto handle = static_cast<TextureHandle>(free - m_textures.begin() + 1);
    if (free == m_textures.end())
      m_textures.push_back(texture);
    else
      *free = texture;
    if (pixels) UpdateTexture(handle, pixels);
    return handle;
  }

  bool UpdateTexture(TextureHandle handle, const uint8_t* pixels) override {
    GlTexture& texture = m_textures[handle - 1];
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture.name);
    while (glGetError() != GL_NO_ERROR) {}
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, texture.width, texture.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels);
    m_bound[0] = handle;
    ApplySampler(0);
    return glGetError() == GL_NO_ERROR;
  }

  TextureHandle CreateRenderTarget(int32_t width, int32_t height) override {
    const TextureHandle handle = CreateTexture(width, height, nullptr);
    if (!handle) return 0;
    const std::vector<uint8_t> clear(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    GlTexture& texture = m_textures[handle - 1];
    bool good = UpdateTexture(handle, clear.data());
    glGenFramebuffers(1, &texture.frame);
    glBindFramebuffer(GL_FRAMEBUFFER, texture.frame);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture.name, 0);
    good = good && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, FrameOf(m_target));
    if (good) return handle;
    ReleaseTexture(handle);
    return 0;
  }

  void ReleaseTexture(TextureHandle handle) override {
    if (!handle || !m_textures[handle - 1].used) return;
    GlTexture& texture = m_textures[handle - 1];
    if (m_target == handle) SetTarget(0, 0);
    if (texture.frame) glDeleteFramebuffers(1, &texture.frame);
    glDeleteTextures(1, &texture.name);
    for (TextureHandle& bound : m_bound)
      if (bound == handle) bound = 0;
    texture = {};
  }

  void BindTexture(int32_t stage, TextureHandle handle) override {
    if (stage < 0 || stage >= kStages) return;
    const auto at = static_cast<size_t>(stage);
    if (m_bound[at] != handle) {
      m_bound[at] = handle;
      glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + stage));
      glBindTexture(GL_TEXTURE_2D, handle ? m_textures[handle - 1].name : 0);
    }
    ApplySampler(at);
  }

  bool SetTarget(int32_t slot, TextureHandle target) override {
    if (slot != 0) return target == 0; // one colour target is all there is
    m_target = target;
    glBindFramebuffer(GL_FRAMEBUFFER, FrameOf(target));
    m_matricesChanged = true;
    return true;
  }

  bool ReadPixels(TextureHandle target, int32_t x, int32_t y, int32_t width, int32_t height,
                  uint8_t* pixels) override {
    glBindFramebuffer(GL_FRAMEBUFFER, FrameOf(target));
    const int32_t row = target ? y : m_height - y - height;
    while (glGetError() != GL_NO_ERROR) {}
    glReadPixels(x, row, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    const bool good = glGetError() == GL_NO_ERROR;
    glBindFramebuffer(GL_FRAMEBUFFER, FrameOf(m_target));
    if (!target) TurnRows(pixels, width, height);
    return good;
  }

  // ---- where and how ----

  void SetViewport(int32_t x, int32_t y, int32_t width, int32_t height) override {
    glViewport(x, m_target ? y : m_height - y - height, std::max(width, 0), std::max(height, 0));
    m_clip = {x, y, width, height};
  }

  void SetMatrix(int32_t slot, const Matrix& matrix) override {
    m_matrices[static_cast<size_t>(slot)] = matrix;
    m_matricesChanged = true;
  }

  // As the viewport bounds it.
  void Clear(uint32_t colour, float, uint32_t, uint32_t flags) override {
    if (!(flags & kClearColour)) return; // there is neither depth nor stencil
    const auto channel = [colour](int shift) { return static_cast<float>(colour >> shift & 0xFF) / 255.0f; };
    glClearColor(channel(16), channel(8), channel(0), channel(24));
    const auto [x, y, width, height] = m_clip;
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE); // clears know no mask
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, m_target ? y : m_height - y - height, std::max(width, 0), std::max(height, 0));
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    ApplyMask();
  }

  void SetRenderState(int32_t index, uint32_t value) override {
    switch (index) {
    case kStateBlending: value ? glEnable(GL_BLEND) : glDisable(GL_BLEND); break;
    case kStateSourceBlend: m_source = value; break;
    case kStateDestinationBlend: m_destination = value; break;
    case kStateColourMask:
      m_mask = value;
      ApplyMask();
      return;
    case kStateAlphaTest: m_alphaTest = value != 0, m_alphaChanged = true; break;
    case kStateAlphaReference: m_alphaReference = value, m_alphaChanged = true; break;
    case kStateCull:
      if (value > 1)
        glEnable(GL_CULL_FACE);
      else
        glDisable(GL_CULL_FACE);
      break;
    default: return; // depth, fog, light and stencil have no part in the 2-D mode
    }
    glBlendFunc(BlendFactor(m_source), BlendFactor(m_destination));
  }

  void SetSamplerState(int32_t stage, int32_t index, uint32_t value) override {
    if (stage < 0 || stage >= kStages || index < 0 || index > kSamplerAddressV) return;
    m_sampler[static_cast<size_t>(stage)][static_cast<size_t>(index)] = value;
  }

  // ---- vertices ----

  BufferHandle CreateBuffer(uint32_t bytes, bool dynamic) override {
    GlBuffer buffer;
    glGenBuffers(1, &buffer.name);
    buffer.memory.resize(bytes);
    buffer.dynamic = dynamic;
    glBindBuffer(GL_ARRAY_BUFFER, buffer.name);
    while (glGetError() != GL_NO_ERROR) {}
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr,
                 dynamic ? GL_STREAM_DRAW : GL_STATIC_DRAW);
    if (glGetError() != GL_NO_ERROR) {
      glDeleteBuffers(1, &buffer.name);
      return 0;
    }
    m_buffers.push_back(std::move(buffer));
    return static_cast<BufferHandle>(m_buffers.size());
  }

  uint8_t* MapBuffer(BufferHandle handle, uint32_t from, bool discard) override {
    GlBuffer& buffer = m_buffers[handle - 1];
    buffer.discard = discard;
    return buffer.memory.data() + from;
  }

  bool UnmapBuffer(BufferHandle handle, uint32_t from, uint32_t to) override {
    GlBuffer& buffer = m_buffers[handle - 1];
    if (to <= from) return true;
    glBindBuffer(GL_ARRAY_BUFFER, buffer.name);
    if (buffer.discard)
      glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(buffer.memory.size()), nullptr, GL_STREAM_DRAW);
    buffer.discard = false;
    m_upload = {handle, from, to}; // sent at the draw, which knows where the colours stand
    return true;
  }

  void ReleaseBuffer(BufferHandle handle) override {
    GlBuffer& buffer = m_buffers[handle - 1];
    if (buffer.name) glDeleteBuffers(1, &buffer.name);
    if (m_upload.buffer == handle) m_upload = {};
    buffer = {};
  }

  void Draw(Primitive primitive, uint32_t format, int32_t stride, BufferHandle handle, uint32_t firstByte,
            int32_t vertices) override {
    GlBuffer& buffer = m_buffers[handle - 1];
    glBindBuffer(GL_ARRAY_BUFFER, buffer.name);
    if (m_upload.buffer == handle) {
      SwapColours(format, stride, buffer.memory.data() + m_upload.from, m_upload.to - m_upload.from);
      glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(m_upload.from),
                      static_cast<GLsizeiptr>(m_upload.to - m_upload.from), m_swapped.data());
      m_upload = {};
    }
    SubmitVertices(primitive, format, stride,
                   reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(firstByte)), vertices);
  }

  void DrawFromMemory(Primitive primitive, uint32_t format, int32_t stride, const uint8_t* data,
                      int32_t vertices) override {
    SwapColours(format, stride, data, static_cast<size_t>(stride) * static_cast<size_t>(vertices));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    SubmitVertices(primitive, format, stride, m_swapped.data(), vertices);
  }

  // ---- programs ----

  bool HasPrograms() const override { return true; }

  ProgramHandle CompileProgram(const std::string& vertex, const std::string& fragment,
                               CompileFailure& failure) override {
    const OpenGLProgram program = OpenGL_Compile(vertex, fragment, failure);
    if (!program.name) return 0;
    m_programs.push_back(program);
    UseProgram(m_program); // compiling has put another one in use
    return static_cast<ProgramHandle>(m_programs.size());
  }

  void ReleaseProgram(ProgramHandle program) override {
    if (!program || !m_programs[program - 1].name) return;
    if (m_program == program) UseProgram(0);
    glDeleteProgram(m_programs[program - 1].name);
    m_programs[program - 1] = {};
  }

  void UseProgram(ProgramHandle program) override {
    m_program = program;
    glUseProgram(InUse().name);
    m_matricesChanged = m_alphaChanged = true;
  }

  std::vector<DeviceUniform> Uniforms(ProgramHandle program) override {
    return m_programs[program - 1].uniforms;
  }

  void SetUniform(const DeviceUniform& uniform, const float* values, int32_t elements) override {
    if (uniform.location == InUse().matrices) return; // kept up to date here, as it depends on the target
    OpenGL_SetUniform(uniform, values, elements);
  }
  void SetUniformInt(const DeviceUniform& uniform, const int32_t* values, int32_t elements) override {
    OpenGL_SetUniformInt(uniform, values, elements);
  }

private:
  struct Upload {
    BufferHandle buffer = 0;
    uint32_t from = 0, to = 0;
  };

  GLuint FrameOf(TextureHandle target) const { return target ? m_textures[target - 1].frame : 0; }
  const OpenGLProgram& InUse() const { return m_program ? m_programs[m_program - 1] : m_plain; }

  static void TurnRows(uint8_t* pixels, int32_t width, int32_t height) {
    const auto row = static_cast<ptrdiff_t>(width) * 4;
    for (int32_t i = 0; i < height / 2; ++i)
      std::swap_ranges(pixels + i * row, pixels + (i + 1) * row, pixels + (height - 1 - i) * row);
  }

  void ApplyMask() const { glColorMask(m_mask & 1, m_mask >> 1 & 1, m_mask >> 2 & 1, m_mask >> 3 & 1); }

  void ApplySampler(size_t stage) {
    const TextureHandle handle = m_bound[stage];
    if (!handle) return;
    GlTexture& texture = m_textures[handle - 1];
    std::array<uint32_t, 4> wanted = m_sampler[stage];
    // Textures of other sizes can't be repeated in this version of the interface.
    if (!PowerOfTwo(texture.width) || !PowerOfTwo(texture.height))
      wanted[kSamplerAddressU] = wanted[kSamplerAddressV] = 1;
    if (texture.sampler == wanted) return;
    texture.sampler = wanted;
    glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + stage));
    SetSampler(wanted);
  }

  // Of the texture bound to the active stage.
  static void SetSampler(const std::array<uint32_t, 4>& wanted) {
    const auto set = [](GLenum name, bool first, GLint one, GLint other) {
      glTexParameteri(GL_TEXTURE_2D, name, first ? one : other);
    };
    set(GL_TEXTURE_MAG_FILTER, wanted[kSamplerMagnify] == 1, GL_LINEAR, GL_NEAREST);
    set(GL_TEXTURE_MIN_FILTER, wanted[kSamplerMinify] == 1, GL_LINEAR, GL_NEAREST);
    set(GL_TEXTURE_WRAP_S, wanted[kSamplerAddressU] == 0, GL_REPEAT, GL_CLAMP_TO_EDGE);
    set(GL_TEXTURE_WRAP_T, wanted[kSamplerAddressV] == 0, GL_REPEAT, GL_CLAMP_TO_EDGE);
  }

  // Vertices come with blue first, as a little-endian ARGB word has it; the shaders want red first.
  void SwapColours(uint32_t format, int32_t stride, const uint8_t* data, size_t bytes) {
    m_swapped.assign(data, data + bytes);
    if (!(format & kVertexColour)) return;
    const auto at = static_cast<size_t>(VertexColourAt(format));
    for (size_t vertex = at; vertex + 4 <= bytes; vertex += static_cast<size_t>(stride))
      std::swap(m_swapped[vertex], m_swapped[vertex + 2]);
  }

  // A target that is drawn into itself shows what it held before this draw.
  void KeepFromFeedback() {
    if (!m_target) return;
    for (size_t stage = 0; stage < m_bound.size(); ++stage) {
      if (m_bound[stage] != m_target) continue;
      const GlTexture& target = m_textures[m_target - 1];
      if (!m_before) glGenTextures(1, &m_before);
      glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + stage));
      glBindTexture(GL_TEXTURE_2D, m_before);
      glCopyTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 0, 0, target.width, target.height, 0);
      SetSampler(target.sampler);
      m_bound[stage] = 0; // the copy, which has no handle
    }
  }

  void SendMatrices() {
    if (!m_matricesChanged) return;
    m_matricesChanged = false;
    Matrix projection = m_matrices[kMatrixProjection];
    if (m_target) {
      Matrix turned;
      turned.m[5] = -1;
      projection = Multiply(projection, turned);
    }
    const Matrix worldView = Multiply(m_matrices[kMatrixWorld], m_matrices[kMatrixView]);
    const Matrix all[] = {m_matrices[kMatrixView], projection, m_matrices[kMatrixWorld], worldView,
                          Multiply(worldView, projection)};
    const OpenGLProgram& program = InUse();
    if (program.matrices >= 0) glUniformMatrix4fv(program.matrices, program.matrixCount, GL_FALSE, all[0].m);
  }

  void SendAlphaTest() {
    if (!m_alphaChanged) return;
    m_alphaChanged = false;
    const OpenGLProgram& program = InUse();
    if (m_program == 0)
      glUniform1f(program.alphaReference,
                  m_alphaTest ? static_cast<float>(m_alphaReference) / 255.0f : -1.0f);
  }

  void SubmitVertices(Primitive primitive, uint32_t format, int32_t stride, const uint8_t* base,
                      int32_t vertices) {
    KeepFromFeedback();
    SendMatrices();
    SendAlphaTest();
    const auto pointer = [&](GLuint attribute, GLint size, GLenum type, GLboolean normalised,
                             ptrdiff_t offset) {
      glEnableVertexAttribArray(attribute);
      glVertexAttribPointer(attribute, size, type, normalised, stride, base + offset);
    };
    const ptrdiff_t colour = VertexColourAt(format);
    pointer(kAttributePosition, 3, GL_FLOAT, GL_FALSE, 0);
    if (format & kVertexColour) {
      pointer(kAttributeColour, 4, GL_UNSIGNED_BYTE, GL_TRUE, colour);
    } else {
      glDisableVertexAttribArray(kAttributeColour);
      glVertexAttrib4f(kAttributeColour, 1, 1, 1, 1);
    }
    if (format & kVertexTexture) {
      pointer(kAttributeTexture, 2, GL_FLOAT, GL_FALSE, colour + (format & kVertexColour ? 4 : 0));
    } else {
      glDisableVertexAttribArray(kAttributeTexture);
      glVertexAttrib4f(kAttributeTexture, 0, 0, 0, 1);
    }
    constexpr GLenum kModes[] = {GL_POINTS,    GL_POINTS,         GL_LINES,       GL_LINE_STRIP,
                                 GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN};
    glDrawArrays(kModes[primitive], 0, vertices);
  }

  IWindow& m_window;
  GLint m_maxTexture = 2048;
  int32_t m_width = 0, m_height = 0; // back buffer
  std::array<int32_t, 4> m_clip{};
  std::vector<GlTexture> m_textures;
  std::vector<GlBuffer> m_buffers;
  std::vector<OpenGLProgram> m_programs;
  OpenGLProgram m_plain;
  ProgramHandle m_program = 0;
  TextureHandle m_target = 0;
  std::array<TextureHandle, kStages> m_bound{};
  std::array<std::array<uint32_t, 4>, kStages> m_sampler{};
  std::array<Matrix, 3> m_matrices;
  bool m_matricesChanged = true, m_alphaChanged = true, m_alphaTest = false;
  uint32_t m_mask = 15, m_source = 5, m_destination = 6, m_alphaReference = 0;
  Upload m_upload;
  GLuint m_before = 0; // copy of a target that is its own source
  std::vector<uint8_t> m_swapped;
};

} // namespace

std::unique_ptr<IRenderDevice> RenderDevice_MakeOpenGL(IWindow& window, std::string& why) {
  if (!window.HasContext() && !window.CreateContext()) {
    why = window.Failure();
    return nullptr;
  }
  window.MakeCurrent();
  auto device = std::make_unique<COpenGLDevice>(window);
  if (!device->Start(why)) return nullptr;
  return device;
}

} // namespace vesk
