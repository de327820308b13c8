#include "logread/like_pattern.h"

#include <algorithm>

namespace {

using CharacterSet = std::bitset<256>;

unsigned char Code(char c) { return static_cast<unsigned char>(c); }

// False when the range runs backwards.
bool AddRange(char first, char last, CharacterSet* set) {
  if (Code(last) < Code(first)) return false;
  for (unsigned code = Code(first); code <= Code(last); ++code) set->set(code);
  return true;
}

// Whether list[at] begins a range: a "-" at either end of the list is no range and no end of one.
bool BeginsRange(std::string_view list, std::size_t at) {
  const bool leading_dash = at == 0 && list[at] == '-';
  const bool has_dash = at + 2 < list.size() && list[at + 1] == '-';
  const bool ends_in_trailing_dash = at + 3 == list.size() && list.back() == '-';
  return has_dash && !leading_dash && !ends_in_trailing_dash;
}

// The characters of a list without its brackets and its leading "!"; nothing when a range runs
// backwards.
std::optional<CharacterSet> ParseList(std::string_view list) {
  CharacterSet set;
  for (std::size_t at = 0; at < list.size();) {
    const bool range = BeginsRange(list, at);
    if (!AddRange(list[at], list[range ? at + 2 : at], &set)) return std::nullopt;
    at += range ? 3 : 1;
  }
  return set;
}

CharacterSet SetOf(char first, char last) {
  CharacterSet set;
  AddRange(first, last, &set);
  return set;
}

}  // namespace

void LikePattern::Stretch::Append(const CharacterSet& set) {
  is_literal_ = is_literal_ && set.count() == 1;
  if (is_literal_) {
    for (unsigned code = 0; code < set.size(); ++code) {
      if (set.test(code)) literal_.push_back(static_cast<char>(code));
    }
  }
  sets_.push_back(set);
}

bool LikePattern::Stretch::MatchesStartOf(std::string_view text) const {
  if (is_literal_) return text.starts_with(literal_);
  return std::equal(sets_.begin(), sets_.end(), text.begin(),
                    [](const CharacterSet& set, char c) { return set.test(Code(c)); });
}

std::size_t LikePattern::Stretch::FindIn(std::string_view text) const {
  if (is_literal_) return text.find(literal_);
  for (std::size_t at = 0; at + length() <= text.size(); ++at) {
    if (MatchesStartOf(text.substr(at))) return at;
  }
  return std::string_view::npos;
}

bool LikePattern::AppendList(std::string_view pattern, std::size_t* at) {
  const std::size_t end = pattern.find(']', *at);
  if (end == std::string_view::npos) return false;
  std::string_view list = pattern.substr(*at + 1, end - *at - 1);
  *at = end + 1;
  if (list.empty()) return true;
  const bool negated = list.size() > 1 && list.front() == '!';
  if (negated) list.remove_prefix(1);
  const std::optional<CharacterSet> set = ParseList(list);
  if (!set) return false;
  stretches_.back().Append(negated ? ~*set : *set);
  return true;
}

std::optional<LikePattern> LikePattern::Compile(std::string_view pattern) {
  LikePattern compiled;
  for (std::size_t at = 0; at < pattern.size();) {
    const char c = pattern[at];
    if (c == '[') {
      if (!compiled.AppendList(pattern, &at)) return std::nullopt;
      continue;
    }
    ++at;
    if (c == '*') {
      compiled.stretches_.emplace_back();
    } else if (c == '?') {
      compiled.stretches_.back().Append(CharacterSet().set());
    } else if (c == '#') {
      compiled.stretches_.back().Append(SetOf('0', '9'));
    } else {
      compiled.stretches_.back().Append(SetOf(c, c));
    }
  }
  return compiled;
}

bool LikePattern::Matches(std::string_view text) const {
  const Stretch& first = stretches_.front();
  const Stretch& last = stretches_.back();
  if (stretches_.size() == 1) {
    return text.size() == first.length() && first.MatchesStartOf(text);
  }
  if (text.size() < first.length() + last.length()) return false;
  if (!first.MatchesStartOf(text)) return false;
  if (!last.MatchesStartOf(text.substr(text.size() - last.length()))) return false;
  text.remove_prefix(first.length());
  text.remove_suffix(last.length());
  return MatchesInner(text);
}

// Taking each stretch at its first place leaves the most room for those after it, so no place has
// to be tried again.
bool LikePattern::MatchesInner(std::string_view text) const {
  for (std::size_t i = 1; i + 1 < stretches_.size(); ++i) {
    const std::size_t at = stretches_[i].FindIn(text);
    if (at == std::string_view::npos) return false;
    text.remove_prefix(at + stretches_[i].length());
  }
  return true;
}
