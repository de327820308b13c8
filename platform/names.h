// Names as the settings store and the file listings compare them: letter case of A to Z ignored,
// every other byte taken as it is. Used inside platform/, by the fakes that stand in for it, and by
// the text helpers above.
#ifndef HITWICK_PLATFORM_NAMES_H_
#define HITWICK_PLATFORM_NAMES_H_

#include <algorithm>
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
