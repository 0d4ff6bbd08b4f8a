// The generator behind every random choice of the game: WELL512a.
#include "Files/Code/Code.h"

namespace vesk {

namespace {

// The game's generator starts with the seed 0 before anything runs.
RandomState MakeState(int32_t seed) {
  RandomState state{};
  state.seed = seed;
  for (uint32_t& word : state.words) {
    const uint32_t product = static_cast<uint32_t>(seed) * 214013u + 2531011u;
    seed = (static_cast<int32_t>(product) >> 16) & 0x7FFFFFFF;
    word = static_cast<uint32_t>(seed);
  }
  return state;
}

RandomState g_random = MakeState(0);
std::optional<int32_t> g_clockSeed;

} // namespace

RandomState& Random() { return g_random; }

std::optional<int32_t>& Random_ClockSeed() { return g_clockSeed; }

void Random_Seed(int32_t seed) { g_random = MakeState(seed); }

uint32_t Random_Next() {
  uint32_t* const words = g_random.words;
  uint32_t& index = g_random.index;
  const uint32_t first = words[index];
  const uint32_t second = words[(index + 13) & 15];
  const uint32_t mixed = first ^ second ^ (first << 16) ^ (second << 15);
  uint32_t third = words[(index + 9) & 15];
  third ^= third >> 11;
  const uint32_t fresh = mixed ^ third;
  words[index] = fresh;
  const uint32_t masked = fresh ^ ((fresh << 5) & 0xDA442D24u);
  index = (index + 15) & 15;
  const uint32_t last = words[index];
  words[index] = last ^ mixed ^ masked ^ (last << 2) ^ (mixed << 18) ^ (third << 28);
  return words[index];
}

} // namespace vesk
