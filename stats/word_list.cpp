#include "stats/word_list.h"

#include <bit>

#include "config/text.h"

namespace stats {

WordList::WordList(const std::vector<std::string_view>& words) {
  for (const std::string_view word : words) {
    const Words bit = Words{1} << words_.size();
    by_first_byte_[static_cast<unsigned char>(text::ToLower(word.front()))] |= bit;
    by_first_byte_[static_cast<unsigned char>(text::ToUpper(word.front()))] |= bit;
    std::string& lower = words_.emplace_back(word);
    for (char& c : lower) c = text::ToLower(c);
  }
}

WordList::Words WordList::BeginningAt(std::string_view text, std::size_t at) const {
  if (at >= text.size()) return 0;
  Words found = 0;
  for (Words candidates = by_first_byte_[static_cast<unsigned char>(text[at])]; candidates != 0;
       candidates &= candidates - 1) {
    const std::string& word = words_[static_cast<std::size_t>(std::countr_zero(candidates))];
    if (text.size() - at >= word.size() &&
        text::EqualsIgnoringCase(text.substr(at, word.size()), word)) {
      found |= candidates & (~candidates + 1);
    }
  }
  return found;
}

WordList::Words WordList::OccurringIn(std::string_view text) const {
  Words found = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (by_first_byte_[static_cast<unsigned char>(text[i])] != 0) found |= BeginningAt(text, i);
  }
  return found;
}

bool WordList::AnyIn(std::string_view text) const {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (by_first_byte_[static_cast<unsigned char>(text[i])] != 0 && BeginningAt(text, i) != 0) {
      return true;
    }
  }
  return false;
}

}  // namespace stats
