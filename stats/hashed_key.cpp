#include "stats/hashed_key.h"

#include <cstring>
#include <random>

namespace stats {
namespace {

std::uint64_t RandomWord() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

// The process's secret key. Odd, so that no factor of two is lost in the multiplications.
struct Secret {
  std::uint64_t a = RandomWord() | 1;
  std::uint64_t b = RandomWord() | 1;
  std::uint64_t c = RandomWord() | 1;
};
const Secret secret;

// Both halves of the 128-bit product folded into one word: every input bit reaches every output
// bit in two such steps.
std::uint64_t FoldedProduct(std::uint64_t x, std::uint64_t y) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = Wide{x} * y;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t Load64(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

std::uint64_t Load32(const char* bytes) {
  std::uint32_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Fewer than 8 bytes as one word.
std::uint64_t LoadShort(const char* bytes, std::size_t size) {
  if (size >= 4) return Load32(bytes) << 32 | Load32(bytes + size - 4);
  if (size == 0) return 0;
  const auto byte = [bytes](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(bytes[i])};
  };
  return byte(0) << 16 | byte(size / 2) << 8 | byte(size - 1);
}

}  // namespace

std::uint64_t HashText(std::string_view text) {
  const char* bytes = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = secret.a ^ (text.size() * 0x9E3779B97F4A7C15u);
  for (; left >= 16; bytes += 16, left -= 16) {
    hash = FoldedProduct(Load64(bytes) ^ hash, Load64(bytes + 8) ^ secret.b);
  }
  if (left >= 8) {
    hash = FoldedProduct(Load64(bytes) ^ hash, Load64(bytes + left - 8) ^ secret.b);
  } else {
    hash = FoldedProduct(LoadShort(bytes, left) ^ hash, secret.b);
  }
  return FoldedProduct(hash ^ secret.c, secret.a);
}

}  // namespace stats
