// Looks through a finished page for what its own fragments have not put there. Test code only.
#ifndef HITWICK_TESTS_FUZZ_PAGE_CHECK_H_
#define HITWICK_TESTS_FUZZ_PAGE_CHECK_H_

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "config/text.h"
#include "tests/fuzz/expect.h"

namespace fuzz {

class PageCheck {
 public:
  // Ends the process unless every "<" of the page begins one of the fragments' tags, whole and with
  // no attribute but those of its kind; unless elements are closed; and unless no link starts a
  // script.
  static void Run(std::string_view page) {
    PageCheck check(page);
    while (check.at_ < page.size()) check.Step();
    for (const auto& [name, depth] : check.open_) {
      Expect(depth == 0, "elements are closed", name);
    }
  }

 private:
  // Tags and their attributes, blanks around each.
  static constexpr std::pair<std::string_view, std::string_view> kTags[] = {
      {"a", " href name "},
      {"b", ""},
      {"body", " bgcolor text link vlink "},
      {"br", ""},
      {"caption", ""},
      {"center", ""},
      {"div", " style "},
      {"font", " color "},
      {"h2", ""},
      {"head", ""},
      {"hr", ""},
      {"html", ""},
      {"meta", " http-equiv content "},
      {"p", ""},
      {"pre", ""},
      {"small", ""},
      {"strong", ""},
      {"table", " width border rules frame cellpadding "},
      {"tbody", " align "},
      {"td", " style align colspan rowspan width "},
      {"tfoot", ""},
      {"th", " bgcolor colspan rowspan align "},
      {"thead", ""},
      {"title", ""},
      {"tr", " align "},
      {"tt", ""},
  };
  // Fragments with a "<" that begins no tag.
  static constexpr std::string_view kTexts[] = {
      "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\">",
      "<!-- separator -->",
      "<!-- Axis-->",
      "<3 Secs",
      "<1 Min",
      "< 10 Minutes",
      "< 1 Hour",
      "< 8 Hours",
  };
  // Elements that the fragments always close.
  static constexpr std::string_view kPaired[] = {
      "a",     "b",  "caption", "center", "div",  "font", "h2",    "small", "strong", "table",
      "title", "tt", "pre",     "html",   "head", "body", "tfoot", "thead", "th"};

  explicit PageCheck(std::string_view page) : page_(page) {}

  std::string_view Rest() const { return page_.substr(at_); }
  std::string Near() const { return std::string(Rest().substr(0, 60)); }

  void Step() {
    const std::size_t next = page_.find_first_of("<>", at_);
    at_ = next == std::string_view::npos ? page_.size() : next;
    if (at_ == page_.size()) return;
    Expect(page_[at_] == '<', "no \">\" outside of a tag", Near());
    for (const std::string_view text : kTexts) {
      if (Rest().starts_with(text)) {
        at_ += text.size();
        return;
      }
    }
    ReadTag();
  }

  std::string Word() {
    std::string word;
    while (at_ < page_.size() &&
           (text::IsDigit(page_[at_]) || page_[at_] == '-' ||
            (text::ToLower(page_[at_]) >= 'a' && text::ToLower(page_[at_]) <= 'z'))) {
      word += text::ToLower(page_[at_++]);
    }
    return word;
  }

  void ReadTag() {
    const std::string near = Near();
    const bool closes = Rest().starts_with("</");
    at_ += closes ? 2 : 1;
    const std::string name = Word();
    std::string_view attributes;
    bool known = false;
    for (const auto& [tag, list] : kTags) {
      if (tag == name) {
        known = true;
        attributes = list;
      }
    }
    Expect(known, "only the fragments' tags", near);
    for (const std::string_view paired : kPaired) {
      if (paired == name) open_[name] += closes ? -1 : 1;
    }
    Expect(open_[name] >= 0, "an element ends after it has begun", near);
    Expect(name != "a" || open_[name] <= 1, "no link within a link", near);
    ReadAttributes(closes ? std::string_view() : attributes, near);
  }

  void ReadAttributes(std::string_view known, const std::string& near) {
    for (;;) {
      while (at_ < page_.size() && page_[at_] == ' ') ++at_;
      Expect(at_ < page_.size(), "tags end", near);
      if (page_[at_] == '>') {
        ++at_;
        return;
      }
      const std::string name = Word();
      Expect(!name.empty() && known.find(" " + name + " ") != std::string_view::npos,
             "only the fragments' attributes", near);
      Expect(Rest().starts_with("="), "attributes have values", near);
      ++at_;
      const std::string_view value = Value(near);
      if (name == "href") CheckLink(value);
    }
  }

  std::string_view Value(const std::string& near) {
    const bool quoted = Rest().starts_with("\"");
    if (quoted) ++at_;
    const std::size_t end = page_.find_first_of(quoted ? "\"<>" : " >\"<", at_);
    Expect(end != std::string_view::npos && (!quoted || page_[end] == '"'), "values end", near);
    const std::string_view value = page_.substr(at_, end - at_);
    at_ = end + (quoted ? 1 : 0);
    return value;
  }

  // What a browser makes of a link, as far as it decides the scheme: character references resolved,
  // blanks and control characters dropped.
  static std::string Decoded(std::string_view value) {
    std::string decoded;
    for (std::size_t i = 0; i < value.size(); ++i) {
      char c = value[i];
      if (c == '&') c = Reference(value, &i);
      if (static_cast<unsigned char>(c) > ' ' && c != '\x7f') decoded += text::ToLower(c);
    }
    return decoded;
  }

  // The character that a reference at value[*i] stands for, "&" when it is none; *i is left on its
  // last character.
  static char Reference(std::string_view value, std::size_t* i) {
    constexpr std::pair<std::string_view, char> kNamed[] = {
        {"&colon;", ':'}, {"&Tab;", '\t'}, {"&NewLine;", '\n'}, {"&amp;", '&'}};
    for (const auto& [name, c] : kNamed) {
      if (value.substr(*i).starts_with(name)) {
        *i += name.size() - 1;
        return c;
      }
    }
    if (value.substr(*i, 2) != "&#") return '&';
    const bool hex = *i + 2 < value.size() && text::ToLower(value[*i + 2]) == 'x';
    std::size_t at = *i + (hex ? 3 : 2);
    unsigned code = 0;
    const std::size_t first = at;
    for (; at < value.size() && code < 0x110000; ++at) {
      const char c = text::ToLower(value[at]);
      const bool letter = hex && c >= 'a' && c <= 'f';
      if (!text::IsDigit(c) && !letter) break;
      code = code * (hex ? 16 : 10) + static_cast<unsigned>(letter ? c - 'a' + 10 : c - '0');
    }
    if (at == first) return '&';
    *i = at < value.size() && value[at] == ';' ? at : at - 1;
    return static_cast<char>(code < 128 ? code : '?');
  }

  static void CheckLink(std::string_view value) {
    const std::string link = Decoded(value);
    for (const std::string_view scheme : {"javascript:", "data:", "vbscript:"}) {
      Expect(!link.starts_with(scheme), "no link starts a script", value);
    }
  }

  const std::string_view page_;
  std::size_t at_ = 0;
  std::map<std::string, int> open_;
};

}  // namespace fuzz

#endif  // HITWICK_TESTS_FUZZ_PAGE_CHECK_H_
