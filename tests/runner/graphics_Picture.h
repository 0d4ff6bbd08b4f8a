#pragma once
// Tests that look at pixels: on the device that draws on the CPU and, where there is OpenGL, on that one.
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace vesk::test {

inline uint8_t RoundToByte(double value) { return static_cast<uint8_t>(std::clamp(value + 0.5, 0.0, 255.0)); }

// What is expected, painted pixel by pixel; black at first.
class Canvas {
public:
  Canvas(int width, int height) : m_width(width), m_height(height) {
    m_pixels.assign(static_cast<size_t>(width * height), Rgba{0, 0, 0, 255});
  }
  Rgba& At(int x, int y) { return m_pixels[static_cast<size_t>(y * m_width + x)]; }
  // `paint` gets the place from the box's left top, and the colour there.
  void Fill(int left, int top, int right, int bottom,
            const std::function<Rgba(int x, int y, Rgba old)>& paint);

private:
  int m_width, m_height;
  std::vector<Rgba> m_pixels;
};

class PictureTest : public testing::TestWithParam<bool> { // the parameter: whether on OpenGL
protected:
  PictureTest(int width, int height) : kWidth(width), kHeight(height) {}
  void SetUp() override;
  void TearDown() override;
  Canvas NewCanvas() const { return {kWidth, kHeight}; }
  // Every pixel of the window within `tolerance` of the expected one; alpha is not compared. Places with an
  // expected alpha of 0 are anybody's.
  void Expect(Canvas& canvas, int tolerance) const;

  const int kWidth, kHeight;
  std::unique_ptr<Stage> stage; // a view of the window's size, cleared to black

private:
  std::unique_ptr<IWindow> m_window;
};

inline std::string DeviceName(const testing::TestParamInfo<bool>& test) {
  return test.param ? "OpenGL" : "Software";
}

} // namespace vesk::test
