// Pictures on texture pages: nothing overlaps or is lost, and the lower rank shares a page.
#include "pack/TexturePages.h"

#include <gtest/gtest.h>

#include <vector>

namespace vesk::pack {
namespace {

Picture Filled(int width, int height, uint32_t colour) {
  return {width, height,
          std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height), colour)};
}

// Every picture's pixels stand where its place says, and no pixel of the pages has two owners or, between
// sprites, a neighbour's.
void ExpectWhole(const TexturePages& pages, const std::vector<PagePicture>& pictures) {
  ASSERT_EQ(pages.places.size(), pictures.size());
  for (size_t at = 0; at < pictures.size(); ++at) {
    const PagePlace& place = pages.places[at];
    const Picture& own = *pictures[at].picture;
    const Picture& page = pages.pages.at(static_cast<size_t>(place.page));
    for (int y = 0; y < place.height; ++y)
      for (int x = 0; x < place.width; ++x)
        ASSERT_EQ(page.rgba[static_cast<size_t>(place.sourceY + y) * static_cast<size_t>(page.width) +
                            static_cast<size_t>(place.sourceX + x)],
                  own.rgba[static_cast<size_t>(place.targetY + y) * static_cast<size_t>(own.width) +
                           static_cast<size_t>(place.targetX + x)])
            << "picture " << at;
    for (size_t other = 0; other < at; ++other) {
      const PagePlace& beside = pages.places[other];
      const int gap = pictures[at].backdrop || pictures[other].backdrop ? 0 : 1;
      ASSERT_TRUE(place.page != beside.page || place.sourceX + place.width + gap <= beside.sourceX ||
                  beside.sourceX + beside.width + gap <= place.sourceX ||
                  place.sourceY + place.height + gap <= beside.sourceY ||
                  beside.sourceY + beside.height + gap <= place.sourceY)
          << at << " and " << other;
    }
  }
}

TEST(TexturePages, SpritesShareAPageAndBackdropsLieTight) {
  std::vector<Picture> own;
  for (int at = 0; at < 20; ++at) // more than one page of these
    own.push_back(Filled(512, 600, 0xFF000000u + static_cast<uint32_t>(at)));
  for (int at = 0; at < 400; ++at)
    own.push_back(Filled(20 + at % 13, 20 + at % 29, 0xFF100000u + static_cast<uint32_t>(at)));
  std::vector<PagePicture> pictures;
  for (const Picture& picture : own) pictures.push_back({&picture, picture.width == 512});

  const TexturePages pages = PackPages(pictures);
  ASSERT_EQ(pages.pages.size(), 2u);
  for (size_t at = 20; at < pictures.size(); ++at) ASSERT_EQ(pages.places[at].page, 0) << at;
  ExpectWhole(pages, pictures);
  // Eight of the first page's room fit beside the sprites, four abreast; twelve are left for the second.
  EXPECT_EQ(pages.pages[1].width * pages.pages[1].height, 2048 * 1808);
}

} // namespace
} // namespace vesk::pack
