// A text and its hash, so that a text that several tables look up is hashed once.
#ifndef HITWICK_STATS_HASHED_KEY_H_
#define HITWICK_STATS_HASHED_KEY_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace stats {

// The process's secret numbers, drawn anew for every process: log writers can neither see nor
// foresee them, so they cannot aim texts at one bucket. Odd, so that no factor of two is lost in
// the multiplications.
struct HashSecret {
  std::uint64_t a;
  std::uint64_t b;
  std::uint64_t c;
};
extern const HashSecret hash_secret;

// Both halves of the 128-bit product folded into one word: every input bit reaches every output
// bit in two such steps.
inline std::uint64_t FoldedProduct(std::uint64_t x, std::uint64_t y) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = Wide{x} * y;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// The hash of a number.
inline std::uint64_t HashNumber(std::uint64_t number) {
  return FoldedProduct(number ^ hash_secret.a, hash_secret.b);
}

// The hash of a text.
std::uint64_t HashText(std::string_view text);

struct HashedKey {
  // Implicit, so that a plain text can be passed wherever a key is wanted.
  HashedKey(std::string_view key) : text(key), hash(HashText(key)) {}      // NOLINT
  HashedKey(const std::string& key) : HashedKey(std::string_view(key)) {}  // NOLINT
  HashedKey(const char* key) : HashedKey(std::string_view(key)) {}         // NOLINT

  std::string_view text;
  std::uint64_t hash;
};

}  // namespace stats

#endif  // HITWICK_STATS_HASHED_KEY_H_
