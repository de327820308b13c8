#include "stats/hashed_key.h"

#include <random>

namespace stats {
namespace {

std::uint64_t OddRandomWord() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device() | 1;
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

std::uint64_t Fold16(const char* bytes, std::uint64_t lane) {
  return FoldedProduct(Load64(bytes) ^ lane, Load64(bytes + 8) ^ hash_secret.b);
}

}  // namespace

const HashSecret hash_secret = {OddRandomWord(), OddRandomWord(), OddRandomWord()};

// Two lanes, because a multiplication may begin in one while the other still waits for its own;
// what is left over is read as words that overlap.
std::uint64_t HashText(std::string_view text) {
  const char* bytes = text.data();
  std::size_t left = text.size();
  std::uint64_t lane = hash_secret.a ^ (text.size() * 0x9E3779B97F4A7C15u);
  std::uint64_t other_lane = hash_secret.c;
  for (; left > 32; bytes += 32, left -= 32) {
    lane = Fold16(bytes, lane);
    other_lane = Fold16(bytes + 16, other_lane);
  }
  if (left > 16) {
    lane = Fold16(bytes, lane);
    other_lane = Fold16(bytes + left - 16, other_lane);
  } else if (left >= 8) {
    lane = FoldedProduct(Load64(bytes) ^ lane, Load64(bytes + left - 8) ^ hash_secret.b);
  } else {
    lane = FoldedProduct(LoadShort(bytes, left) ^ lane, hash_secret.b);
  }
  return FoldedProduct(lane ^ other_lane, hash_secret.a);
}

}  // namespace stats
