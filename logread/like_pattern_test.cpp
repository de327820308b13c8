#include "logread/like_pattern.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

namespace {

bool Matches(std::string_view pattern, std::string_view text) {
  const std::optional<LikePattern> compiled = LikePattern::Compile(pattern);
  EXPECT_TRUE(compiled.has_value()) << pattern;
  return compiled && compiled->Matches(text);
}

bool IsUsable(std::string_view pattern) { return LikePattern::Compile(pattern).has_value(); }

TEST(LikePattern, PlainTextMatchesItselfWholeAndInItsLetterCase) {
  EXPECT_TRUE(Matches("GET", "GET"));
  EXPECT_FALSE(Matches("GET", "get"));
  EXPECT_FALSE(Matches("GET", "GETS"));
  EXPECT_FALSE(Matches("GET", "GE"));
  EXPECT_TRUE(Matches("", ""));
  EXPECT_FALSE(Matches("", "a"));
}

TEST(LikePattern, StarTakesAnyRunAndAnEmptyOne) {
  EXPECT_TRUE(Matches("*", ""));
  EXPECT_TRUE(Matches("*.htm", "/index.htm"));
  EXPECT_TRUE(Matches("*.htm", ".htm"));
  EXPECT_FALSE(Matches("*.htm", "/index.html"));
  EXPECT_TRUE(Matches("/docs/*", "/docs/"));
  EXPECT_FALSE(Matches("/docs/*", "/doc"));
  EXPECT_TRUE(Matches("*bot*", "Googlebot/2.1"));
  EXPECT_FALSE(Matches("*Bot*", "Googlebot/2.1"));
  EXPECT_TRUE(Matches("a**b", "ab"));
}

TEST(LikePattern, BeginningAndEndDoNotShareCharacters) {
  EXPECT_FALSE(Matches("ab*ba", "aba"));
  EXPECT_TRUE(Matches("ab*ba", "abba"));
  EXPECT_FALSE(Matches("*ab*ab*", "xab"));
}

TEST(LikePattern, LaterPlaceIsFoundWhenTheFirstOneFails) {
  EXPECT_TRUE(Matches("*[0-9]x*end", "1y2x-end"));
  EXPECT_TRUE(Matches("*aab*", "aaab"));
}

TEST(LikePattern, QuestionMarkTakesOneCharacter) {
  EXPECT_TRUE(Matches("10.?.1", "10.7.1"));
  EXPECT_FALSE(Matches("10.?.1", "10..1"));
  EXPECT_FALSE(Matches("10.?.1", "10.77.1"));
  EXPECT_TRUE(Matches("?", std::string_view("\0", 1)));
  EXPECT_TRUE(Matches("??", "\xC3\xA9"));
}

TEST(LikePattern, NumberSignTakesOneDigit) {
  EXPECT_TRUE(Matches("4##", "404"));
  EXPECT_FALSE(Matches("4##", "4x4"));
  EXPECT_FALSE(Matches("4##", "40"));
}

TEST(LikePattern, ListTakesOneOfItsCharacters) {
  EXPECT_TRUE(Matches("[PH]OST", "HOST"));
  EXPECT_FALSE(Matches("[PH]OST", "GOST"));
  EXPECT_FALSE(Matches("[PH]OST", "OST"));
  EXPECT_TRUE(Matches("[a-f0-9]", "7"));
  EXPECT_FALSE(Matches("[a-f0-9]", "g"));
  EXPECT_TRUE(Matches("[\xE0-\xFF]", "\xE9"));
}

TEST(LikePattern, NegatedListTakesOneCharacterOutsideIt) {
  EXPECT_TRUE(Matches("*[!A-Za-z0-9_]*", "my filter"));
  EXPECT_FALSE(Matches("*[!A-Za-z0-9_]*", "my_filter"));
  EXPECT_FALSE(Matches("[!a]", ""));
  EXPECT_TRUE(Matches("[!!]", "a"));
  EXPECT_FALSE(Matches("[!!]", "!"));
}

TEST(LikePattern, WildcardsInAListAreThemselves) {
  for (const char* wildcard : {"?", "*", "#", "["}) EXPECT_TRUE(Matches("[?*#[]", wildcard));
  EXPECT_FALSE(Matches("[?*#[]", "5"));
}

TEST(LikePattern, EmptyListTakesNoCharacter) {
  EXPECT_TRUE(Matches("a[]b", "ab"));
  EXPECT_FALSE(Matches("a[]b", "axb"));
  EXPECT_TRUE(Matches("[]", ""));
  EXPECT_TRUE(Matches("[]a]", "a]"));
}

TEST(LikePattern, LoneExclamationMarkIsAListOfItself) {
  EXPECT_TRUE(Matches("[!]", "!"));
  EXPECT_FALSE(Matches("[!]", "a"));
  EXPECT_TRUE(Matches("[a!]", "!"));
}

TEST(LikePattern, BracketOutsideAListIsItself) {
  EXPECT_TRUE(Matches("a]", "a]"));
  EXPECT_FALSE(Matches("a]", "a"));
  EXPECT_TRUE(Matches("a-!b", "a-!b"));
}

TEST(LikePattern, DashAtEitherEndOfAListIsItself) {
  for (const char* text : {"-", "a"}) {
    EXPECT_TRUE(Matches("[-a]", text));
    EXPECT_TRUE(Matches("[a-]", text));
    EXPECT_TRUE(Matches("[a--]", text));
    EXPECT_FALSE(Matches("[!-a]", text));
    EXPECT_FALSE(Matches("[!a-]", text));
  }
  EXPECT_FALSE(Matches("[-a]", "b"));
  EXPECT_FALSE(Matches("[a-]", "b"));
  EXPECT_TRUE(Matches("[-]", "-"));
}

TEST(LikePattern, DashAfterARangeIsItself) {
  for (const char* text : {"a", "b", "c", "-", "e"}) EXPECT_TRUE(Matches("[a-c-e]", text));
  EXPECT_FALSE(Matches("[a-c-e]", "d"));
}

TEST(LikePattern, UnclosedListIsUnusable) {
  for (const char* pattern : {"[", "a[", "*[a-z", "[!", "[a]["}) {
    EXPECT_FALSE(IsUsable(pattern)) << pattern;
  }
}

TEST(LikePattern, BackwardsRangeIsUnusable) {
  EXPECT_FALSE(IsUsable("[z-a]"));
  EXPECT_FALSE(IsUsable("*[!9-0]"));
  EXPECT_FALSE(IsUsable("[\xFF-\xE0]"));
  EXPECT_TRUE(IsUsable("[a-a]"));
}

// The plain reading of the rules, as slow as it likes: each pattern character in turn, every
// length of a star's run tried.
class PlainReading {
 public:
  static bool IsUsable(std::string_view pattern) {
    while (!pattern.empty()) {
      if (pattern.front() != '[') {
        pattern.remove_prefix(1);
        continue;
      }
      const std::size_t close = pattern.find(']');
      if (close == std::string_view::npos || HasBackwardsRange(List(pattern))) return false;
      pattern.remove_prefix(close + 1);
    }
    return true;
  }

  static bool Matches(std::string_view pattern, std::string_view text) {
    if (pattern.empty()) return text.empty();
    if (pattern.front() == '*') {
      return Matches(pattern.substr(1), text) ||
             (!text.empty() && Matches(pattern, text.substr(1)));
    }
    if (pattern.starts_with("[]")) return Matches(pattern.substr(2), text);
    if (text.empty()) return false;
    if (pattern.front() != '[') {
      return OneMatches(pattern.front(), text.front()) &&
             Matches(pattern.substr(1), text.substr(1));
    }
    return ListMatches(List(pattern), text.front()) &&
           Matches(pattern.substr(pattern.find(']') + 1), text.substr(1));
  }

 private:
  static std::string_view List(std::string_view pattern) {
    return pattern.substr(1, pattern.find(']') - 1);
  }

  static bool OneMatches(char wanted, char c) {
    return wanted == '?' || (wanted == '#' ? c >= '0' && c <= '9' : wanted == c);
  }

  static std::string_view WithoutNegation(std::string_view list) {
    return list.size() > 1 && list[0] == '!' ? list.substr(1) : list;
  }

  // Calls `visit` with each range of the list, single characters being ranges of one.
  template <class Visitor>
  static void ForEachRange(std::string_view list, Visitor visit) {
    std::string_view rest = WithoutNegation(list);
    bool has_dash_at_end = false;
    if (rest.starts_with('-')) {
      visit('-', '-');
      rest.remove_prefix(1);
    }
    if (rest.ends_with('-')) {
      has_dash_at_end = true;
      rest.remove_suffix(1);
    }
    while (!rest.empty()) {
      const bool range = rest.size() >= 3 && rest[1] == '-';
      visit(rest[0], rest[range ? 2 : 0]);
      rest.remove_prefix(range ? 3 : 1);
    }
    if (has_dash_at_end) visit('-', '-');
  }

  static bool HasBackwardsRange(std::string_view list) {
    bool backwards = false;
    ForEachRange(list, [&](char first, char last) { backwards = backwards || last < first; });
    return backwards;
  }

  static bool ListMatches(std::string_view list, char c) {
    bool listed = false;
    ForEachRange(list, [&](char a, char z) { listed = listed || (a <= c && c <= z); });
    return listed != (WithoutNegation(list) != list);
  }
};

std::string RandomText(std::mt19937& random, std::string_view alphabet, std::size_t max_length) {
  std::string text(random() % (max_length + 1), ' ');
  for (char& c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

TEST(LikePattern, AgreesWithThePlainReadingOnRandomPatterns) {
  std::mt19937 random(20260131);
  int usable = 0;
  int matching = 0;
  for (int i = 0; i < 400000; ++i) {
    const std::string pattern = RandomText(random, "ab1?**#[[]]!-", 10);
    const std::string text = RandomText(random, "ab1!-]*", 7);
    const std::optional<LikePattern> compiled = LikePattern::Compile(pattern);
    ASSERT_EQ(compiled.has_value(), PlainReading::IsUsable(pattern)) << pattern;
    if (!compiled) continue;
    ++usable;
    const bool expected = PlainReading::Matches(pattern, text);
    ASSERT_EQ(compiled->Matches(text), expected) << pattern << " against " << text;
    matching += expected;
  }
  EXPECT_GT(usable, 100000);
  EXPECT_GT(matching, 10000);
}

TEST(LikePattern, AgreesWithThePlainReadingOnRandomLists) {
  std::mt19937 random(20260201);
  int usable = 0;
  for (int i = 0; i < 100000; ++i) {
    const std::string pattern = "[" + RandomText(random, "abc1!-", 6) + "]";
    const std::optional<LikePattern> compiled = LikePattern::Compile(pattern);
    ASSERT_EQ(compiled.has_value(), PlainReading::IsUsable(pattern)) << pattern;
    if (!compiled) continue;
    ++usable;
    for (const char* text : {"", "a", "b", "c", "1", "!", "-", "]", "0", "ab"}) {
      ASSERT_EQ(compiled->Matches(text), PlainReading::Matches(pattern, text))
          << pattern << " against " << text;
    }
  }
  EXPECT_GT(usable, 30000);
}

// What would cost a backtracking matcher about n^6 steps: this test would not end.
TEST(LikePattern, ManyStarsDoNotMultiplyTheWork) {
  const std::string text = std::string(30000, 'a') + "c";
  for (const char* pattern : {"*a*a*a*a*a*a*b", "*a*a*a*a*a*a*b*", "*[a]*?*[!b]*a?*a*[b]*",
                              "*aaaaaaaab*aaaaaaaab*aaaaaaaab*", "*?a?b*?a?b*"}) {
    const std::optional<LikePattern> compiled = LikePattern::Compile(pattern);
    ASSERT_TRUE(compiled);
    EXPECT_FALSE(compiled->Matches(text)) << pattern;
  }
}

}  // namespace
