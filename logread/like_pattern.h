// Wildcard patterns of the record filters, compared byte by byte and letter case included:
//
//     ?        one character            [list]   one character of the list, e.g. [a-z_]
//     *        any run of characters    [!list]  one character that is not in the list
//     #        one digit                other    itself
//
// In a list a "-" at either end, and a "!" anywhere but in front, stand for themselves; so does a
// "]" outside a list. "[]" takes no character, "[!]" is the list that holds "!". An unclosed "["
// and a range that runs backwards make the pattern unusable.
//
// No state. Used by the record filters.
#ifndef HITWICK_LOGREAD_LIKE_PATTERN_H_
#define HITWICK_LOGREAD_LIKE_PATTERN_H_

#include <bitset>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class LikePattern {
 public:
  // Prepares a pattern; nothing when it is unusable.
  static std::optional<LikePattern> Compile(std::string_view pattern);

  // Whether the whole of `text` matches. The time is at most the product of the two lengths,
  // whatever the text.
  bool Matches(std::string_view text) const;

 private:
  using CharacterSet = std::bitset<256>;

  // What stands between two stars: a text of fixed length, one set of characters for each place.
  class Stretch {
   public:
    void Append(const CharacterSet& set);
    std::size_t length() const { return sets_.size(); }
    // `text` is at least as long as the stretch; only its beginning is compared.
    bool MatchesStartOf(std::string_view text) const;
    // The first position of `text` at which the stretch matches; npos when there is none.
    std::size_t FindIn(std::string_view text) const;

   private:
    std::vector<CharacterSet> sets_;
    std::string literal_;  // the stretch's characters while each set holds just one
    bool is_literal_ = true;
  };

  LikePattern() : stretches_(1) {}
  // Adds the list that begins at pattern[*at], a "["; leaves *at after its "]". False when the
  // list is unusable.
  bool AppendList(std::string_view pattern, std::size_t* at);
  bool MatchesInner(std::string_view text) const;

  // The pattern cut at its stars: one stretch more than there are stars.
  std::vector<Stretch> stretches_;
};

#endif  // HITWICK_LOGREAD_LIKE_PATTERN_H_
