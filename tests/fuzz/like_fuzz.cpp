// LIKE patterns against a matcher that tries every length for every star.
//
// Parts: pattern, value.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "logread/like_pattern.h"
#include "tests/fuzz/expect.h"
#include "tests/fuzz/parts.h"

namespace {

// One place of a pattern: the characters that fit, or a star.
struct Place {
  bool star = false;
  bool nothing = false;  // takes no character and fits always: "[]"
  std::vector<bool> fits = std::vector<bool>(256, false);
};

std::size_t Code(char c) { return static_cast<unsigned char>(c); }

// The list between brackets; false when a range in it runs backwards.
bool ReadList(std::string_view list, Place* place) {
  const bool negated = list.size() > 1 && list[0] == '!';
  if (negated) list.remove_prefix(1);
  for (std::size_t i = 0; i < list.size(); ++i) {
    // A "-" at either end of the list stands for itself.
    const bool dash_at_start = i == 0 && list[i] == '-';
    const bool dash_at_end = i + 3 == list.size() && list.back() == '-';
    const bool range = i + 2 < list.size() && list[i + 1] == '-' && !dash_at_start && !dash_at_end;
    const std::size_t last = range ? Code(list[i + 2]) : Code(list[i]);
    if (last < Code(list[i])) return false;
    for (std::size_t c = Code(list[i]); c <= last; ++c) place->fits[c] = true;
    if (range) i += 2;
  }
  if (negated) place->fits.flip();
  return true;
}

std::optional<std::vector<Place>> ReadPattern(std::string_view pattern) {
  std::vector<Place> places;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    Place place;
    if (pattern[i] == '*') {
      place.star = true;
    } else if (pattern[i] == '?') {
      place.fits.assign(256, true);
    } else if (pattern[i] == '#') {
      for (char c = '0'; c <= '9'; ++c) place.fits[Code(c)] = true;
    } else if (pattern[i] == '[') {
      const std::size_t end = pattern.find(']', i);
      if (end == std::string_view::npos) return std::nullopt;
      place.nothing = end == i + 1;
      if (!ReadList(pattern.substr(i + 1, end - i - 1), &place)) return std::nullopt;
      i = end;
    } else {
      place.fits[Code(pattern[i])] = true;
    }
    if (!place.nothing) places.push_back(place);
  }
  return places;
}

// ends[j]: the places so far match the first j characters.
bool MatchesLiterally(const std::vector<Place>& places, std::string_view text) {
  std::vector<bool> ends(text.size() + 1, false);
  ends[0] = true;
  for (const Place& place : places) {
    std::vector<bool> next(text.size() + 1, false);
    for (std::size_t j = 0; j <= text.size(); ++j) {
      if (place.star) next[j] = ends[j] || (j > 0 && next[j - 1]);
      if (!place.star && j > 0) next[j] = ends[j - 1] && place.fits[Code(text[j - 1])];
    }
    ends = next;
  }
  return ends[text.size()];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string_view> parts = fuzz::PartsOf(data, size);
  if (parts.size() != 2) return -1;
  const std::optional<LikePattern> pattern = LikePattern::Compile(parts[0]);
  const std::optional<std::vector<Place>> literal = ReadPattern(parts[0]);
  fuzz::Expect(pattern.has_value() == literal.has_value(), "usable patterns", parts[0]);
  if (!pattern) return 0;
  fuzz::Expect(pattern->Matches(parts[1]) == MatchesLiterally(*literal, parts[1]), "a match",
               parts[0]);
  return 0;
}
