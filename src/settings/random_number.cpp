#include "settings/random_number.h"

#include <bit>
#include <cmath>

namespace quorvex {

namespace {
std::uint64_t SplitMix64(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ull;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
  return x ^ (x >> 31);
}
}  // namespace

int RandomNumber(int n, double timer, std::uint64_t seed) {
  if (n < 1) return 0;
  // Re-seed from the clock: the state is the seed mixed with the clock's
  // bits, and the draw is the first output of that state.
  std::uint64_t state = SplitMix64(seed) ^ std::bit_cast<std::uint64_t>(timer);
  double random = static_cast<double>(SplitMix64(state) >> 11) * 0x1p-53;
  double pick = std::floor(n * random + 1);
  // n * random can round up to n for large n.
  return pick > n ? n : static_cast<int>(pick);
}

}  // namespace quorvex
