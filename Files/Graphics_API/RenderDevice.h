#pragma once
// What drawing needs of the graphics hardware. Game thread only. Pixels are 4 bytes: red, green, blue, alpha,
// rows from the top. Colours of vertices and clears are ARGB words. Positions are target pixels, y downward.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class IWindow;

using TextureHandle = uint32_t; // 0 names none
using BufferHandle = uint32_t;
using ProgramHandle = uint32_t;

enum Primitive : int32_t {
  pr_pointlist = 1,
  pr_linelist = 2,
  pr_linestrip = 3,
  pr_trianglelist = 4,
  pr_trianglestrip = 5,
  pr_trianglefan = 6,
};

// Vertex formats: bit sets of what a vertex holds, in this order.
enum VertexFormat : uint32_t {
  kVertexPosition = 0x2,
  kVertexWeight = 0x4,
  kVertexWeights = 0x4002, // both bits: a further 16 bytes
  kVertexNormal = 0x10,
  kVertexColour = 0x40,
  kVertexTexture = 0x100,
};

// Bytes of a vertex of that format, and where in it a part begins.
constexpr int32_t VertexStride(uint32_t format) {
  int32_t bytes = 0;
  if (format & kVertexPosition) bytes += 12;
  if (format & kVertexWeight) bytes += 16;
  if ((format & kVertexWeights) == kVertexWeights) bytes += 16;
  if (format & kVertexNormal) bytes += 12;
  if (format & kVertexColour) bytes += 4;
  if (format & kVertexTexture) bytes += 8;
  return bytes;
}
constexpr int32_t VertexColourAt(uint32_t format) {
  return VertexStride(format & ~(kVertexColour | kVertexTexture));
}

// For row vectors: v * M, translation in m[12] to m[14]. The same memory is a column-major matrix for M * v.
struct Matrix {
  float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  bool operator==(const Matrix&) const = default;
};
Matrix Multiply(const Matrix& a, const Matrix& b); // first a, then b

enum ClearFlags : uint32_t { kClearColour = 1, kClearDepth = 2, kClearStencil = 4, kClearAll = 7 };
enum MatrixSlot : int { kMatrixView = 0, kMatrixProjection = 1, kMatrixWorld = 2 };

struct DeviceUniform {
  std::string name;   // without an array suffix
  int32_t location;   // for SetUniform
  int32_t components; // values an element: 1 to 4, 9, 16
  int32_t count;      // elements
  bool integer;       // int, bool or sampler
  bool sampler;
  int32_t stage; // texture stage of a sampler
};

struct CompileFailure {
  bool fragment = false; // else the vertex shader
  std::string text;      // the compiler's words; may be empty
};

class IRenderDevice {
public:
  virtual ~IRenderDevice() = default;

  virtual const char* Name() const = 0;
  virtual int32_t MaxTextureSize() const = 0;                 // pixels
  virtual void BeginScene(int32_t width, int32_t height) = 0; // size of the back buffer
  virtual void EndScene() = 0;
  virtual bool Present() = 0; // false when the device was lost
  // Returns in the display's vertical blank; false at once on a device that can't tell.
  virtual bool WaitForBlank() { return false; }
  // After the window changed: everything but textures' contents, programs and buffers is back to its start.
  virtual void Reset(int32_t width, int32_t height) = 0;

  // Without pixels the contents are undefined until UpdateTexture. 0 on failure.
  virtual TextureHandle CreateTexture(int32_t width, int32_t height, const uint8_t* pixels) = 0;
  virtual bool UpdateTexture(TextureHandle texture, const uint8_t* pixels) = 0; // the whole of it
  virtual TextureHandle CreateRenderTarget(int32_t width, int32_t height) = 0;  // transparent black
  virtual void ReleaseTexture(TextureHandle texture) = 0;
  virtual void BindTexture(int32_t stage, TextureHandle texture) = 0;
  // Slot 0 with 0: the back buffer. Slots 1 to 3 are further colour targets; false when there are none.
  virtual bool SetTarget(int32_t slot, TextureHandle target) = 0;
  virtual bool ReadPixels(TextureHandle target, int32_t x, int32_t y, int32_t width, int32_t height,
                          uint8_t* pixels) = 0; // 0: the back buffer; the rectangle lies inside

  virtual void SetViewport(int32_t x, int32_t y, int32_t width, int32_t height) = 0;
  virtual void SetMatrix(int32_t slot, const Matrix& matrix) = 0;
  virtual void Clear(uint32_t colour, float depth, uint32_t stencil, uint32_t flags) = 0;
  virtual void SetRenderState(int32_t index, uint32_t value) = 0;
  virtual void SetSamplerState(int32_t stage, int32_t index, uint32_t value) = 0;

  virtual BufferHandle CreateBuffer(uint32_t bytes, bool dynamic) = 0; // 0 on failure
  // Writable memory from byte `from` to the buffer's end, valid until unmapped. Null on failure.
  virtual uint8_t* MapBuffer(BufferHandle buffer, uint32_t from, bool discard) = 0;
  virtual bool UnmapBuffer(BufferHandle buffer, uint32_t from, uint32_t to) = 0; // bytes that were written
  virtual void ReleaseBuffer(BufferHandle buffer) = 0;
  virtual void Draw(Primitive primitive, uint32_t format, int32_t stride, BufferHandle buffer,
                    uint32_t firstByte, int32_t vertices) = 0;
  virtual void DrawFromMemory(Primitive primitive, uint32_t format, int32_t stride, const uint8_t* data,
                              int32_t vertices) = 0;

  virtual bool HasPrograms() const = 0;
  virtual ProgramHandle CompileProgram(const std::string& vertex, const std::string& fragment,
                                       CompileFailure& failure) = 0; // 0 on failure
  virtual void ReleaseProgram(ProgramHandle program) = 0;
  virtual void UseProgram(ProgramHandle program) = 0;                     // 0: the device's own
  virtual std::vector<DeviceUniform> Uniforms(ProgramHandle program) = 0; // vertex constants first
  // Of the program in use; `values` holds components * count floats, or integers given as such.
  virtual void SetUniform(const DeviceUniform& uniform, const float* values, int32_t elements) = 0;
  virtual void SetUniformInt(const DeviceUniform& uniform, const int32_t* values, int32_t elements) = 0;
};

// OpenGL ES 2.0 on the window's context, which is made when it has none. Null with the reason in `why`.
std::unique_ptr<IRenderDevice> RenderDevice_MakeOpenGL(IWindow& window, std::string& why);
// Draws on the CPU: nearest sampling, exact blending with rounding to nearest. Has no programs of its own.
// While `blind`, which outlives the device, is true, what is drawn is dropped.
std::unique_ptr<IRenderDevice> RenderDevice_MakeSoftware(int32_t width, int32_t height,
                                                         const bool* blind = nullptr);

} // namespace vesk
