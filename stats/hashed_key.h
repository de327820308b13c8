// A text and its hash, so that a text that several tables look up is hashed once.
#ifndef HITWICK_STATS_HASHED_KEY_H_
#define HITWICK_STATS_HASHED_KEY_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace stats {

// Hashes a text with a key that is drawn anew for every process: log writers can neither see nor
// foresee it, so they cannot aim texts at one bucket.
std::uint64_t HashText(std::string_view text);

struct HashedKey {
  // Implicit, so that a plain text can be passed wherever a key is wanted.
  HashedKey(std::string_view key) : text(key), hash(HashText(key)) {}      // NOLINT
  HashedKey(const std::string& key) : HashedKey(std::string_view(key)) {}  // NOLINT
  HashedKey(const char* key) : HashedKey(std::string_view(key)) {}         // NOLINT
  // With the hash that the same text had before in this process.
  HashedKey(std::string_view key, std::uint64_t known_hash) : text(key), hash(known_hash) {}

  std::string_view text;
  std::uint64_t hash;
};

}  // namespace stats

#endif  // HITWICK_STATS_HASHED_KEY_H_
