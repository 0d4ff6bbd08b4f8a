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

// Every picture's pixels stand where its place says.
void ExpectWhole(const TexturePages& pages, const std::vector<const Picture*>& pictures) {
  ASSERT_EQ(pages.places.size(), pictures.size());
  for (size_t at = 0; at < pictures.size(); ++at) {
    const PagePlace& place = pages.places[at];
    const Picture& page = pages.pages.at(static_cast<size_t>(place.page));
    for (int y = 0; y < place.height; ++y)
      for (int x = 0; x < place.width; ++x)
        ASSERT_EQ(page.rgba[static_cast<size_t>(place.sourceY + y) * static_cast<size_t>(page.width) +
                            static_cast<size_t>(place.sourceX + x)],
                  pictures[at]->rgba[static_cast<size_t>(place.targetY + y) *
                                         static_cast<size_t>(pictures[at]->width) +
                                     static_cast<size_t>(place.targetX + x)])
            << "picture " << at;
  }
}

TEST(TexturePages, TheLowerRankSharesAPageHoweverTallTheOthersAre) {
  std::vector<Picture> own;
  std::vector<int> ranks;
  for (int at = 0; at < 20; ++at) { // more than one page of these
    own.push_back(Filled(600, 700, 0xFF000000u + static_cast<uint32_t>(at)));
    ranks.push_back(1);
  }
  for (int at = 0; at < 400; ++at) {
    own.push_back(Filled(20 + at % 13, 20 + at % 29, 0xFF100000u + static_cast<uint32_t>(at)));
    ranks.push_back(0);
  }
  std::vector<const Picture*> pictures;
  for (const Picture& picture : own) pictures.push_back(&picture);

  const TexturePages ranked = PackPages(pictures, ranks);
  ASSERT_GT(ranked.pages.size(), 1u);
  for (size_t at = 20; at < pictures.size(); ++at) ASSERT_EQ(ranked.places[at].page, 0) << at;
  ExpectWhole(ranked, pictures);
  ExpectWhole(PackPages(pictures), pictures);
}

} // namespace
} // namespace vesk::pack
