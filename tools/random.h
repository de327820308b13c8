// Random numbers that come out the same on every system: integer arithmetic only, since the
// distributions of the standard library differ from one library to the next.
#ifndef HITWICK_TOOLS_RANDOM_H_
#define HITWICK_TOOLS_RANDOM_H_

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sample_logs {

// A number whose bits all depend on all bits of `value` (splitmix64); distinct values give
// distinct results.
constexpr std::uint64_t Scramble(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
  return value ^ (value >> 31);
}

// xoshiro256**.
class Random {
 public:
  explicit Random(std::uint64_t seed) {
    for (std::uint64_t& word : state_) word = seed = Scramble(seed);
  }

  std::uint64_t Next() {
    const std::uint64_t result = std::rotl(state_[1] * 5, 7) * 9;
    const std::uint64_t shifted = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= shifted;
    state_[3] = std::rotl(state_[3], 45);
    return result;
  }

  // 0..limit-1; `limit` is 1 or more.
  std::uint64_t Below(std::uint64_t limit) { return Next() % limit; }
  // first..last, both included.
  std::int64_t Between(std::int64_t first, std::int64_t last) {
    return first + static_cast<std::int64_t>(Below(static_cast<std::uint64_t>(last - first) + 1));
  }
  // True in `percent` of 100 cases.
  bool Percent(unsigned percent) { return Below(100) < percent; }

  template <class Container>
  const auto& Pick(const Container& container) {
    return *(std::begin(container) + static_cast<std::ptrdiff_t>(Below(std::size(container))));
  }

 private:
  std::array<std::uint64_t, 4> state_{};
};

// Draws ranks 0..count-1 by Zipf's law: rank r comes 1 / (r + 1) times as often as rank 0.
class Zipf {
 public:
  explicit Zipf(std::size_t count) {
    upper_bounds_.reserve(count);
    std::uint64_t total = 0;
    for (std::size_t rank = 0; rank < count; ++rank) {
      total += (std::uint64_t{1} << 40) / (rank + 1);
      upper_bounds_.push_back(total);
    }
  }

  std::size_t Draw(Random& random) const {
    const std::uint64_t at = random.Below(upper_bounds_.back());
    return static_cast<std::size_t>(
        std::upper_bound(upper_bounds_.begin(), upper_bounds_.end(), at) - upper_bounds_.begin());
  }

 private:
  std::vector<std::uint64_t> upper_bounds_;
};

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_RANDOM_H_
