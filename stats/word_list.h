// A fixed list of words that are looked for in log texts, letter case (A to Z) ignored.
//
// A table by first letter tells which words can begin at a character, so one pass over the text
// looks for all of them, and a text made to be slow costs no more than any other of its length.
#ifndef HITWICK_STATS_WORD_LIST_H_
#define HITWICK_STATS_WORD_LIST_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace stats {

class WordList {
 public:
  // A set of words of the list: bit i stands for word i.
  using Words = std::uint64_t;

  WordList() = default;
  // At most 64 words, none empty.
  explicit WordList(const std::vector<std::string_view>& words);

  // The words that begin at position `at` of the text.
  Words BeginningAt(std::string_view text, std::size_t at) const;
  // The words that occur anywhere in the text.
  Words OccurringIn(std::string_view text) const;
  // Whether any word occurs.
  bool AnyIn(std::string_view text) const;

 private:
  std::vector<std::string> words_;          // lower case
  std::array<Words, 256> by_first_byte_{};  // upper and lower case of the first letter
};

}  // namespace stats

#endif  // HITWICK_STATS_WORD_LIST_H_
