// The device on the CPU: the same pixels on every machine, for pictures where there is no OpenGL and for
// tests.
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics_API/RenderDevice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace vesk {

namespace {

struct Image {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
  bool used = false;
};

struct Corner { // a vertex on the target
  double x, y;  // pixels
  double u, v;
  std::array<double, 4> colour; // red, green, blue, alpha, 0 to 255
};

struct Clip {
  int32_t left, top, right, bottom; // exclusive right and bottom
};

using Pixel = std::array<int32_t, 4>;

double Factor(uint32_t factor, const Pixel& source, const Pixel& target, size_t channel) {
  switch (factor) {
  case 1: return 0;
  case 3: return source[channel] / 255.0;
  case 4: return 1 - source[channel] / 255.0;
  case 5: return source[3] / 255.0;
  case 6: return 1 - source[3] / 255.0;
  case 7: return target[3] / 255.0;
  case 8: return 1 - target[3] / 255.0;
  case 9: return target[channel] / 255.0;
  case 10: return 1 - target[channel] / 255.0;
  case 11: return channel == 3 ? 1 : std::min(source[3], 255 - target[3]) / 255.0;
  default: return 1;
  }
}

class CSoftwareDevice final : public IRenderDevice {
public:
  CSoftwareDevice(int32_t width, int32_t height, const bool* blind) : m_blind(blind) { Reset(width, height); }

  const char* Name() const override { return "software"; }
  int32_t MaxTextureSize() const override { return 8192; }
  void BeginScene(int32_t width, int32_t height) override {
    if (width != m_back.width || height != m_back.height) Reset(width, height);
  }
  void EndScene() override {}
  bool Present() override { return true; }
  void Reset(int32_t width, int32_t height) override {
    m_back = Make(std::max(width, 1), std::max(height, 1), nullptr);
    m_target = 0;
  }

  TextureHandle CreateTexture(int32_t width, int32_t height, const uint8_t* pixels) override {
    if (width <= 0 || height <= 0 || width > MaxTextureSize() || height > MaxTextureSize()) return 0;
    const auto free =
        std::find_if(m_textures.begin(), m_textures.end(), [](const Image& image) { return !image.used; });
    const auto handle = static_cast<TextureHandle>(free - m_textures.begin() + 1);
    Image image = Make(width, height, pixels);
    if (free == m_textures.end())
      m_textures.push_back(std::move(image));
    else
      *free = std::move(image);
    return handle;
  }
  bool UpdateTexture(TextureHandle texture, const uint8_t* pixels) override {
    Image& image = m_textures[texture - 1];
    std::copy_n(pixels, image.pixels.size(), image.pixels.begin());
    return true;
  }
  TextureHandle CreateRenderTarget(int32_t width, int32_t height) override {
    return CreateTexture(width, height, nullptr);
  }
  void ReleaseTexture(TextureHandle texture) override {
    if (!texture) return;
    m_textures[texture - 1] = {};
    if (m_target == texture) m_target = 0;
    if (m_texture == texture) m_texture = 0;
  }
  void BindTexture(int32_t stage, TextureHandle texture) override {
    if (stage == 0) m_texture = texture;
  }
  bool SetTarget(int32_t slot, TextureHandle target) override {
    if (slot != 0) return target == 0;
    m_target = target;
    return true;
  }
  bool ReadPixels(TextureHandle target, int32_t x, int32_t y, int32_t width, int32_t height,
                  uint8_t* pixels) override {
    const Image& image = ImageOf(target);
    if (x < 0 || y < 0 || x + width > image.width || y + height > image.height) return false;
    const auto row = static_cast<size_t>(width) * 4;
    for (int32_t i = 0; i < height; ++i)
      std::memcpy(pixels + static_cast<size_t>(i) * row, &image.pixels[Offset(image, x, y + i)], row);
    return true;
  }

  void SetViewport(int32_t x, int32_t y, int32_t width, int32_t height) override {
    m_viewport = {x, y, width, height};
  }
  void SetMatrix(int32_t slot, const Matrix& matrix) override {
    m_matrices[static_cast<size_t>(slot)] = matrix;
    m_transform =
        Multiply(Multiply(m_matrices[kMatrixWorld], m_matrices[kMatrixView]), m_matrices[kMatrixProjection]);
  }
  void Clear(uint32_t colour, float, uint32_t, uint32_t flags) override {
    if (!(flags & kClearColour)) return;
    Image& image = ImageOf(m_target);
    const Clip clip = ClipOf(image);
    const uint8_t bytes[4] = {static_cast<uint8_t>(colour >> 16), static_cast<uint8_t>(colour >> 8),
                              static_cast<uint8_t>(colour), static_cast<uint8_t>(colour >> 24)};
    for (int32_t y = clip.top; y < clip.bottom; ++y)
      for (int32_t x = clip.left; x < clip.right; ++x)
        std::memcpy(&image.pixels[Offset(image, x, y)], bytes, 4);
  }
  void SetRenderState(int32_t index, uint32_t value) override {
    m_states[static_cast<size_t>(index)] = value;
  }
  void SetSamplerState(int32_t stage, int32_t index, uint32_t value) override {
    if (stage == 0) m_sampler[static_cast<size_t>(index)] = value;
  }

  BufferHandle CreateBuffer(uint32_t bytes, bool) override {
    m_buffers.emplace_back(bytes);
    return static_cast<BufferHandle>(m_buffers.size());
  }
  uint8_t* MapBuffer(BufferHandle buffer, uint32_t from, bool) override {
    return m_buffers[buffer - 1].data() + from;
  }
  bool UnmapBuffer(BufferHandle, uint32_t, uint32_t) override { return true; }
  void ReleaseBuffer(BufferHandle buffer) override { m_buffers[buffer - 1] = {}; }

  void Draw(Primitive primitive, uint32_t format, int32_t stride, BufferHandle buffer, uint32_t firstByte,
            int32_t vertices) override {
    DrawFromMemory(primitive, format, stride, m_buffers[buffer - 1].data() + firstByte, vertices);
  }
  void DrawFromMemory(Primitive primitive, uint32_t format, int32_t stride, const uint8_t* data,
                      int32_t vertices) override {
    if (m_blind && *m_blind) return;
    const auto at = [&](int32_t i) { return Transform(format, data + static_cast<ptrdiff_t>(i) * stride); };
    m_sampled = m_texture ? &m_textures[m_texture - 1] : nullptr;
    if (m_sampled && m_texture == m_target) { // drawn into itself: from what it held before
      m_before = *m_sampled;
      m_sampled = &m_before;
    }
    switch (primitive) {
    case pr_pointlist:
      for (int32_t i = 0; i < vertices; ++i) DrawPoint(at(i));
      break;
    case pr_linelist:
      for (int32_t i = 0; i + 1 < vertices; i += 2) DrawLine(at(i), at(i + 1));
      break;
    case pr_linestrip:
      for (int32_t i = 0; i + 1 < vertices; ++i) DrawLine(at(i), at(i + 1));
      break;
    case pr_trianglelist:
      for (int32_t i = 0; i + 2 < vertices; i += 3) DrawTriangle(at(i), at(i + 1), at(i + 2));
      break;
    case pr_trianglestrip:
      for (int32_t i = 0; i + 2 < vertices; ++i) DrawTriangle(at(i), at(i + 1), at(i + 2));
      break;
    case pr_trianglefan:
      for (int32_t i = 1; i + 1 < vertices; ++i) DrawTriangle(at(0), at(i), at(i + 1));
      break;
    }
  }

  bool HasPrograms() const override { return false; }
  ProgramHandle CompileProgram(const std::string&, const std::string&, CompileFailure& failure) override {
    failure = {.fragment = false, .text = "this device runs no shaders"};
    return 0;
  }
  void ReleaseProgram(ProgramHandle) override {}
  void UseProgram(ProgramHandle) override {}
  std::vector<DeviceUniform> Uniforms(ProgramHandle) override { return {}; }
  void SetUniform(const DeviceUniform&, const float*, int32_t) override {}
  void SetUniformInt(const DeviceUniform&, const int32_t*, int32_t) override {}

private:
  static Image Make(int32_t width, int32_t height, const uint8_t* pixels) {
    Image image{width, height, {}, true};
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
    if (pixels)
      image.pixels.assign(pixels, pixels + bytes);
    else
      image.pixels.resize(bytes);
    return image;
  }
  static size_t Offset(const Image& image, int32_t x, int32_t y) {
    return (static_cast<size_t>(y) * static_cast<size_t>(image.width) + static_cast<size_t>(x)) * 4;
  }
  Image& ImageOf(TextureHandle target) { return target ? m_textures[target - 1] : m_back; }

  Clip ClipOf(const Image& image) const {
    const auto [x, y, width, height] = m_viewport;
    return {std::max(x, 0), std::max(y, 0), std::min(x + width, image.width),
            std::min(y + height, image.height)};
  }

  Corner Transform(uint32_t format, const uint8_t* vertex) const {
    float position[3];
    std::memcpy(position, vertex, sizeof(position));
    const auto& m = m_transform.m;
    const double clipX =
        double{position[0]} * m[0] + double{position[1]} * m[4] + double{position[2]} * m[8] + m[12];
    const double clipY =
        double{position[0]} * m[1] + double{position[1]} * m[5] + double{position[2]} * m[9] + m[13];
    Corner corner;
    // To a 256th of a pixel, as graphics hardware does: float matrices leave an edge a hair beside its pixel.
    const auto snap = [](double value) { return std::round(value * 256) / 256; };
    corner.x = snap(m_viewport[0] + (clipX + 1) / 2 * m_viewport[2]);
    corner.y = snap(m_viewport[1] + (1 - clipY) / 2 * m_viewport[3]);
    const auto colourAt = static_cast<size_t>(VertexColourAt(format));
    const uint8_t* colour = vertex + colourAt;
    corner.colour = {double(colour[2]), double(colour[1]), double(colour[0]), double(colour[3])};
    float texture[2] = {0, 0};
    if (format & kVertexTexture) std::memcpy(texture, vertex + colourAt + 4, sizeof(texture));
    corner.u = texture[0];
    corner.v = texture[1];
    return corner;
  }

  static int32_t Address(double place, int32_t size, bool wraps) { // in texels
    const auto texel = static_cast<int64_t>(std::floor(place));
    if (wraps) return static_cast<int32_t>(((texel % size) + size) % size);
    return static_cast<int32_t>(std::clamp<int64_t>(texel, 0, size - 1));
  }

  const uint8_t* Texel(double x, double y) const {
    const Image& texture = *m_sampled;
    return &texture.pixels[Offset(texture, Address(x, texture.width, m_sampler[kSamplerAddressU] == 0),
                                  Address(y, texture.height, m_sampler[kSamplerAddressV] == 0))];
  }

  // The texel at the place, or with the filter on the four around it by their nearness.
  std::array<double, 4> Sample(double u, double v) const {
    if (!m_sampled) return {255, 255, 255, 255};
    double x = u * m_sampled->width, y = v * m_sampled->height;
    if (m_sampler[kSamplerMagnify] != 1) {
      const uint8_t* texel = Texel(x, y);
      return {double(texel[0]), double(texel[1]), double(texel[2]), double(texel[3])};
    }
    x -= 0.5, y -= 0.5;
    const double right = x - std::floor(x), below = y - std::floor(y);
    const uint8_t *topLeft = Texel(x, y), *topRight = Texel(x + 1, y), *bottomLeft = Texel(x, y + 1),
                  *bottomRight = Texel(x + 1, y + 1);
    std::array<double, 4> mixed;
    for (size_t i = 0; i < 4; ++i)
      mixed[i] = std::lerp(std::lerp(double(topLeft[i]), double(topRight[i]), right),
                           std::lerp(double(bottomLeft[i]), double(bottomRight[i]), right), below);
    return mixed;
  }

  void Shade(Image& target, int32_t x, int32_t y, double u, double v, const std::array<double, 4>& colour) {
    std::array<double, 4> exact = Sample(u, v);
    for (size_t i = 0; i < 4; ++i) exact[i] = exact[i] * colour[i] / 255.0;
    if (m_states[kStateAlphaTest] && exact[3] <= m_states[kStateAlphaReference]) return;
    Pixel source;
    for (size_t i = 0; i < 4; ++i) source[i] = static_cast<int32_t>(exact[i] + 0.5);
    uint8_t* at = &target.pixels[Offset(target, x, y)];
    const Pixel old{at[0], at[1], at[2], at[3]};
    for (size_t i = 0; i < 4; ++i) {
      if (!(m_states[kStateColourMask] >> i & 1)) continue;
      double value = exact[i];
      if (m_states[kStateBlending])
        value = value * Factor(m_states[kStateSourceBlend], source, old, i) +
                old[i] * Factor(m_states[kStateDestinationBlend], source, old, i);
      at[i] = static_cast<uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
    }
  }

  void DrawPoint(const Corner& at) {
    Image& image = ImageOf(m_target);
    const Clip clip = ClipOf(image);
    const auto x = static_cast<int32_t>(std::floor(at.x)), y = static_cast<int32_t>(std::floor(at.y));
    if (x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom)
      Shade(image, x, y, at.u, at.v, at.colour);
  }

  // The last pixel stays free, for the line that goes on from there.
  void DrawLine(const Corner& from, const Corner& to) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const auto steps = static_cast<int32_t>(std::lround(std::max(std::fabs(dx), std::fabs(dy))));
    for (int32_t i = 0; i < std::min(steps, 65536); ++i) {
      const double share = static_cast<double>(i) / steps;
      Corner at = from;
      at.x += dx * share;
      at.y += dy * share;
      for (size_t channel = 0; channel < 4; ++channel)
        at.colour[channel] += (to.colour[channel] - from.colour[channel]) * share;
      DrawPoint(at);
    }
  }

  struct Edge { // above 0 inside; counts at 0 for top and left edges
    double a, b, c;
    bool inclusive;
    Edge(const Corner& p, const Corner& q) : a(p.y - q.y), b(q.x - p.x), c(p.x * q.y - q.x * p.y) {
      inclusive = a > 0 || (a == 0 && b > 0);
    }
    double At(double x, double y) const { return a * x + b * y + c; }
    bool Has(double value) const { return value > 0 || (value == 0 && inclusive); }
  };

  void DrawTriangle(const Corner& a, Corner b, Corner c) {
    const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (area == 0 || !std::isfinite(area)) return;
    if (area < 0) std::swap(b, c);
    const double size = std::fabs(area);
    Image& image = ImageOf(m_target);
    const Clip clip = ClipOf(image);
    const auto bound = [](double value) { return static_cast<int32_t>(std::clamp(value, -1e6, 1e6)); };
    const int32_t left = std::max(clip.left, bound(std::floor(std::min({a.x, b.x, c.x}))));
    const int32_t top = std::max(clip.top, bound(std::floor(std::min({a.y, b.y, c.y}))));
    const int32_t right = std::min(clip.right, bound(std::ceil(std::max({a.x, b.x, c.x}))));
    const int32_t bottom = std::min(clip.bottom, bound(std::ceil(std::max({a.y, b.y, c.y}))));
    const Edge toA(b, c), toB(c, a), toC(a, b); // the edge opposite each corner
    const bool flat = a.colour == b.colour && b.colour == c.colour;
    for (int32_t y = top; y < bottom; ++y)
      for (int32_t x = left; x < right; ++x) {
        const double px = x + 0.5, py = y + 0.5;
        const double wa = toA.At(px, py), wb = toB.At(px, py), wc = toC.At(px, py);
        if (!toA.Has(wa) || !toB.Has(wb) || !toC.Has(wc)) continue;
        const double sa = wa / size, sb = wb / size, sc = wc / size;
        std::array<double, 4> colour = a.colour;
        if (!flat)
          for (size_t i = 0; i < 4; ++i) colour[i] = a.colour[i] * sa + b.colour[i] * sb + c.colour[i] * sc;
        Shade(image, x, y, a.u * sa + b.u * sb + c.u * sc, a.v * sa + b.v * sb + c.v * sc, colour);
      }
  }

  const bool* m_blind;
  Image m_back;
  std::vector<Image> m_textures;
  std::vector<std::vector<uint8_t>> m_buffers;
  TextureHandle m_texture = 0, m_target = 0;
  const Image* m_sampled = nullptr; // of the draw in progress
  Image m_before{};
  std::array<int32_t, 4> m_viewport{};
  std::array<Matrix, 3> m_matrices;
  Matrix m_transform;
  std::array<uint32_t, kRenderStates> m_states{};
  std::array<uint32_t, kSamplerStatesPerStage> m_sampler{};
};

} // namespace

std::unique_ptr<IRenderDevice> RenderDevice_MakeSoftware(int32_t width, int32_t height, const bool* blind) {
  return std::make_unique<CSoftwareDevice>(width, height, blind);
}

} // namespace vesk
