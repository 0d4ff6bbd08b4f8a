#include "tests/runner/graphics_Picture.h"

#include "Files/Graphics/Draw.h"
#include "Files/Graphics/View.h"

#include <algorithm>
#include <cstdlib>

namespace vesk::test {

void Canvas::Fill(int left, int top, int right, int bottom,
                  const std::function<Rgba(int x, int y, Rgba old)>& paint) {
  for (int y = std::max(top, 0); y < std::min(bottom, m_height); ++y)
    for (int x = std::max(left, 0); x < std::min(right, m_width); ++x)
      At(x, y) = paint(x - left, y - top, At(x, y));
}

void PictureTest::SetUp() {
  std::unique_ptr<IRenderDevice> device;
  if (GetParam()) {
    m_window = Window_MakeOffscreen();
    std::string why;
    if (m_window->Create({.title = "", .size = {kWidth, kHeight}}))
      device = RenderDevice_MakeOpenGL(*m_window, why);
    if (!device) GTEST_SKIP() << "no OpenGL here: " << m_window->Failure() << why;
  } else {
    device = RenderDevice_MakeSoftware(kWidth, kHeight);
  }
  stage = std::make_unique<Stage>(std::move(device), kWidth, kHeight);
  SetViewport(0, 0, kWidth, kHeight);
  SetView(0, 0, static_cast<float>(kWidth), static_cast<float>(kHeight), 0);
  draw_clear(c_black);
}

void PictureTest::TearDown() {
  stage.reset();
  if (m_window) m_window->Destroy();
}

void PictureTest::Expect(Canvas& canvas, int tolerance) const {
  const WindowPicture picture = Graphics_ReadBackBuffer();
  ASSERT_EQ(picture.width, kWidth);
  int wrong = 0;
  for (int y = 0; y < kHeight && wrong < 5; ++y)
    for (int x = 0; x < kWidth && wrong < 5; ++x)
      for (size_t i = 0; i < 3 && canvas.At(x, y)[3] != 0; ++i) {
        const int got = picture.pixels[static_cast<size_t>(y * kWidth + x) * 4 + i],
                  wanted = canvas.At(x, y)[i];
        if (std::abs(got - wanted) <= tolerance) continue;
        ++wrong;
        ADD_FAILURE() << "(" << x << ", " << y << ") channel " << i << ": " << got << ", expected " << wanted;
        break;
      }
}

} // namespace vesk::test
