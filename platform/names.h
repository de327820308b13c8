// Names as the settings store and the file listings read and compare them: letter case of A to Z
// ignored, every other byte taken as it is. Used inside platform/, by the fakes that stand in for
// it, and by the text helpers above.
#ifndef HITWICK_PLATFORM_NAMES_H_
#define HITWICK_PLATFORM_NAMES_H_

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

constexpr char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

inline std::string LowerCased(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = LowerCase(c);
  return lower;
}

// The text without those of the characters `blanks` that stand at its ends.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

inline bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

// True when `name` begins with `prefix` and, behind it, ends with `suffix`.
inline bool NameFits(std::string_view name, std::string_view prefix, std::string_view suffix) {
  return name.size() >= prefix.size() + suffix.size() &&
         SameName(name.substr(0, prefix.size()), prefix) &&
         SameName(name.substr(name.size() - suffix.size()), suffix);
}

// The order of file listings: by the lower-cased names, equal ones by their plain bytes.
inline void SortNames(std::vector<std::string>* names) {
  std::sort(names->begin(), names->end(), [](const std::string& a, const std::string& b) {
    const int order = LowerCased(a).compare(LowerCased(b));
    return order != 0 ? order < 0 : a < b;
  });
}

}  // namespace platform

#endif  // HITWICK_PLATFORM_NAMES_H_
