#include "Files/Function/Function.h"
#include "Files/Function/Function_Math.h"
#include "Platform/HandDriven.h"
#include "Platform/Platform.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>

namespace vesk::test {
namespace {

TEST(NumberBuiltins, RoundGoesToEven) {
  EXPECT_EQ(round(0.5), 0);
  EXPECT_EQ(round(1.5), 2);
  EXPECT_EQ(round(2.5), 2);
  EXPECT_EQ(round(-0.5), 0);
  EXPECT_EQ(round(-1.5), -2);
  EXPECT_EQ(round(2.500001), 3);
  EXPECT_EQ(sign(-3), -1);
  EXPECT_EQ(sign(0), 0);
  EXPECT_EQ(frac(-2.25), -0.25);
}

TEST(NumberBuiltins, SineAndCosineSnapToZero) {
  EXPECT_EQ(sin(3.14159265358979), 0);
  EXPECT_EQ(cos(3.14159265358979 / 2), 0);
  EXPECT_NE(sin(1e-4), 0);
  EXPECT_EQ(sin(0.7), std::sin(static_cast<double>(0.7f))) << "the argument is a 32-bit float";
  EXPECT_EQ(cos(0.7), std::cos(0.7));
}

TEST(NumberBuiltins, Directions) {
  struct Case {
    float dx, dy, degrees;
  };
  const Case cases[] = {{0, 0, 0},   {0, 5, 270},   {0, -5, 90},  {5, 0, 0},  {-5, 0, 180},
                        {3, -3, 45}, {-3, -3, 135}, {-3, 3, 225}, {3, 3, 315}};
  for (const Case& c : cases)
    EXPECT_FLOAT_EQ(point_direction(10, 20, 10 + c.dx, 20 + c.dy), c.degrees) << c.dx << "," << c.dy;
  EXPECT_FALSE(std::signbit(point_direction(0, 0, 5, 0)));
  EXPECT_EQ(point_distance(1, 2, 4, 6), 5);
  EXPECT_EQ(lengthdir_x(4, 90), 0);
  EXPECT_EQ(lengthdir_y(4, 90), -4);
  EXPECT_EQ(lengthdir_x(4, 180), -4);
  EXPECT_EQ(lengthdir_y(4, 270), 4);
  EXPECT_NEAR(lengthdir_x(2, 60), 1, 1e-6);
  EXPECT_EQ(angle_difference(10, 350), 20);
  EXPECT_EQ(angle_difference(350, 10), -20);
}

TEST(NumberBuiltins, MeanMinMax) {
  EXPECT_EQ(mean(), 0);
  EXPECT_EQ(mean(1, 2, 6), 3);
  EXPECT_EQ(min(3, 1.5, 2), 1.5);
  EXPECT_EQ(max(3, Real(4), 2), 4);
}

TEST(NumberBuiltins, EpsilonTakesOnlyValuesBelowOne) {
  const double before = g_epsilon;
  math_set_epsilon(1e-5);
  EXPECT_EQ(math_get_epsilon(), 1e-5);
  math_set_epsilon(1);
  math_set_epsilon(-0.1);
  EXPECT_EQ(math_get_epsilon(), 1e-5);
  math_set_epsilon(0);
  EXPECT_EQ(math_get_epsilon(), 1e-11);
  g_epsilon = before;
}

// ---- WELL512a, as its recurrence is written down: an implementation of its own ----

class Well512 {
public:
  explicit Well512(int32_t seed) {
    int64_t s = seed;
    for (uint32_t& word : m_state) {
      s = static_cast<int32_t>(s * 214013 + 2531011) >> 16;
      s &= 0x7FFFFFFF;
      word = static_cast<uint32_t>(s);
    }
  }
  uint32_t Next() {
    const uint32_t v0 = At(0), vm1 = At(13), vm2 = At(9), last = At(15);
    const uint32_t z1 = (v0 ^ v0 << 16) ^ (vm1 ^ vm1 << 15);
    const uint32_t z2 = vm2 ^ vm2 >> 11;
    const uint32_t newV1 = z1 ^ z2;
    const uint32_t newV0 =
        (last ^ last << 2) ^ (z1 ^ z1 << 18) ^ z2 << 28 ^ (newV1 ^ (newV1 << 5 & 0xDA442D24u));
    At(0) = newV1;
    At(15) = newV0;
    m_index = (m_index + 15) % 16;
    return At(0);
  }

private:
  uint32_t& At(size_t offset) { return m_state[(m_index + offset) % 16]; }
  std::array<uint32_t, 16> m_state{};
  size_t m_index = 0;
};

TEST(RandomBuiltins, FollowWell512ForAnySeed) {
  for (const int32_t seed : {0, 1, 12345, -1, 0x7FFFFFFF}) {
    random_set_seed(seed);
    EXPECT_EQ(random_get_seed(), seed);
    Well512 expected(seed);
    for (int i = 0; i < 500; ++i)
      ASSERT_EQ(Random_Next(), expected.Next()) << "seed " << seed << ", word " << i;
  }
}

TEST(RandomBuiltins, NumbersComeFromTheWordsInOrder) {
  random_set_seed(7);
  Well512 words(7);
  EXPECT_EQ(random(10), words.Next() * 2.3283064365386963e-10 * 10);
  for (const int32_t n : {0, 1, 9, 1000000, 0x7FFFFFFF, -5}) {
    const uint64_t low = words.Next(), high = words.Next();
    const auto drawn = static_cast<int64_t>((high << 32 | low) & 0x7FFFFFFFFFFFFFFF) % (std::llabs(n) + 1);
    EXPECT_EQ(irandom(n), n < 0 ? -drawn : drawn);
  }
  const int options[] = {4, 5, 6};
  for (int i = 0; i < 20; ++i) ASSERT_EQ(choose(4, 5, 6), options[words.Next() % 3]);
  const char* const texts[] = {"a", "bcd"};
  EXPECT_STREQ(choose("a", "bcd"), texts[words.Next() % 2]);
  std::set<int64_t> seen;
  for (int i = 0; i < 300; ++i) seen.insert(irandom(3));
  EXPECT_EQ(seen, (std::set<int64_t>{0, 1, 2, 3}));
  EXPECT_GE(irandom(-2147483647 - 1), -2147483648LL);
}

TEST(RandomBuiltins, RandomizeSeedsFromTheClock) {
  CHandDrivenPlatform hand;
  Platform_Set(&hand.Interfaces());
  const int32_t first = randomize();
  const uint32_t word = Random_Next();
  EXPECT_EQ(randomize(), first) << "the clock stands";
  EXPECT_EQ(Random_Next(), word);
  hand.clock.Advance(1);
  EXPECT_NE(randomize(), first);
  Platform_Set(nullptr);
  Random_Seed(0);
}

} // namespace
} // namespace vesk::test
