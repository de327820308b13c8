#include "stats/mdlWebPage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "stats/mdlMonth.h"

namespace {

using mdlWebPage::BrowserOf;
using mdlWebPage::ExtractSearchWords;
using mdlWebPage::IsPage;
using mdlWebPage::IsRobot;
using mdlWebPage::OsOf;
using mdlWebPage::StatusMeaning;
using WordList = std::vector<std::string>;

const WordList kBrowserTokens = {"MSIE",   "Navigator", "iCab",    "Camino",    "Chrome",
                                 "Safari", "Firefox",   "Opera",   "Konqueror", "SeaMonkey",
                                 "Gecko",  "Netscape",  "iTunes",  "FrontPage", "Epiphany",
                                 "Galeon", "WebKit",    "Voyager", "Dillo",     "Lynx"};

const WordList kOsTokens = {"Macintosh", "Darwin", "Windows", "Linux",   "Solaris",    "SunOS",
                            "BSD",       "AIX",    "HP-UX",   "Symbian", "Nokia",      "MIDP",
                            "iPod",      "iPad",   "iPhone",  "Android", "BlackBerry", "Amiga"};

const WordList kRobotWords = {"msnbot", "mmcrawler",   "googlebot", "slurp",  "bot",    "crawl",
                              "spider", "ia_archiver", "panscient", "yandex", "walker", "ScoutJet"};

const WordList kPageExtensions = {".htm", ".shtml", ".phtml", ".asp", ".php",
                                  ".jsp", ".cgi",   ".asa",   ".chm"};

const WordList kFileExtensions = {".xml", ".jpg", ".jpeg", ".ico", ".gif", ".mp",  ".avi", ".aif",
                                  ".ogg", ".png", ".au",   ".wav", ".ra",  ".ram", ".pcx", ".tif",
                                  ".bmp", ".sdp", ".rts",  ".qt",  ".mov", ".aac", ".asf", ".css",
                                  ".js",  ".swf", ".spl",  ".pic", ".wmv", ".zip", ".exe", ".gz"};

const WordList kSearchParameters = {"q",        "qry", "query", "search",    "ask",    "Term",
                                    "Topic",    "pt",  "wf",    "prev",      "back",   "str",
                                    "Keywords", "qkw", "p",     "searchfor", "aqa",    "userQuery",
                                    "keywords", "wfq", "MT",    "qs",        "as_epq", "as_oq",
                                    "oq",       "w",   "Words", "q_phrase",  "what",   "k"};

// The plainest forms of the lookups, which the real ones have to agree with.
std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

bool Holds(std::string_view text, std::string_view word) {
  return Lower(text).find(Lower(word)) != std::string::npos;
}

bool HoldsAny(std::string_view text, const WordList& words) {
  return std::any_of(words.begin(), words.end(),
                     [&](const std::string& word) { return Holds(text, word); });
}

std::string FirstToken(std::string_view agent, const WordList& tokens) {
  for (const std::string& token : tokens) {
    if (Holds(agent, token)) return token;
  }
  return "Unknown";
}

int PlainIsPage(std::string_view uri) {
  if (HoldsAny(uri, kPageExtensions)) return 1;
  return HoldsAny(uri, kFileExtensions) ? 0 : 1;
}

int HexDigit(char c) {
  if (c >= '1' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 0;
}

std::string CharacterReference(char high, char low) {
  std::array<char, 16> reference{};
  std::snprintf(reference.data(), reference.size(), "&#%03d;", HexDigit(high) * 16 + HexDigit(low));
  return reference.data();
}

std::string PlainSearchWords(std::string_view text) {
  enum { kBefore, kName, kIgnored, kWanted, kDone } state = kBefore;
  std::string name;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (state == kBefore) {
      if (c == '?') state = kName;
    } else if (state == kName) {
      if (c != '=') {
        name += c;
      } else {
        state = std::count(kSearchParameters.begin(), kSearchParameters.end(), name) != 0
                    ? kWanted
                    : kIgnored;
      }
    } else if (state == kIgnored) {
      if (c == '&') {
        state = kName;
        name.clear();
      }
    } else if (state == kWanted) {
      if (c == '&') {
        state = kDone;
      } else if (c == '+') {
        result += ' ';
      } else if (c != '%') {
        result += c;
      } else if (i + 2 < text.size()) {
        result += CharacterReference(text[i + 1], text[i + 2]);
        i += 2;
      }
    }
  }
  return result;
}

class ClassificationTest : public testing::Test {
 protected:
  ClassificationTest() {
    mdlWebPage::BuildLookupTables();
    mdlMonth::InitMonth();
    mdlMonth::Month().RobotsTxtAgents.Clear();
  }
  ~ClassificationTest() override { mdlMonth::Month().RobotsTxtAgents.Clear(); }
};

using StatusMeaningTest = ClassificationTest;
using BrowserOfTest = ClassificationTest;
using OsOfTest = ClassificationTest;
using IsRobotTest = ClassificationTest;
using IsPageTest = ClassificationTest;
using ExtractSearchWordsTest = ClassificationTest;
using RandomClassification = ClassificationTest;

struct Meaning {
  const char* code;
  const char* meaning;
};

constexpr Meaning kMeanings[] = {
    {"100", "Continue"},
    {"101", "Switching Protocols"},
    {"102", "Processing"},
    {"200", "OK"},
    {"201", "Created"},
    {"202", "Accepted"},
    {"203", "Non-Authoritative Information"},
    {"204", "No Content"},
    {"205", "Reset Content"},
    {"206", "Partial Content"},
    {"207", "Multi-Status "},
    {"300", "Multiple Choices"},
    {"301", "Moved Permanently"},
    {"302", "Found (Moved Temporarily)"},
    {"303", "See Other"},
    {"304", "Not Modified"},
    {"305", "Use Proxy"},
    {"306", "Switch Proxy"},
    {"307", "Temporary Redirect"},
    {"400", "Bad Request"},
    {"401", "Unauthorized"},
    {"402", "Payment Required"},
    {"403", "Forbidden"},
    {"404", "Not Found"},
    {"405", "Method Not Allowed"},
    {"406", "Not Acceptable"},
    {"407", "Proxy Authentication Required"},
    {"408", "Request Timeout"},
    {"409", "Conflict"},
    {"410", "Gone"},
    {"411", "Length Required"},
    {"412", "Precondition Failed"},
    {"413", "Request Entity Too Large"},
    {"414", "Request-URI Too Long"},
    {"415", "Unsupported Media Type"},
    {"416", "Requested Range Not Satisfiable"},
    {"417", "Expectation Failed"},
    {"422", "Unprocessable Entity"},
    {"423", "Locked"},
    {"424", "Failed Dependency"},
    {"425", "Unordered Collection"},
    {"426", "Upgrade Required"},
    {"449", "Retry With"},
    {"500", "Internal Server Error"},
    {"501", "Not Implemented"},
    {"502", "Bad Gateway"},
    {"503", "Service Unavailable"},
    {"504", "Gateway Timeout"},
    {"505", "HTTP Version Not Supported"},
    {"506", "Variant Also Negotiates"},
    {"507", "Insufficient Storage"},
    {"509", "Bandwidth Limit Exceeded"},
    {"510", "Not Extended"},
};
static_assert(std::size(kMeanings) == 53);

TEST_F(StatusMeaningTest, EveryCodeOfThreeDigits) {
  std::size_t known = 0;
  for (int code = 0; code < 1000; ++code) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%03d", code);
    const std::string_view text(digits.data());
    std::string expected;
    if (known < std::size(kMeanings) && text == kMeanings[known].code) {
      expected = std::string(kMeanings[known].meaning) + " - ";
      ++known;
    }
    EXPECT_EQ(StatusMeaning(text), expected) << text;
  }
  EXPECT_EQ(known, std::size(kMeanings));
}

TEST_F(StatusMeaningTest, OtherTextsHaveNone) {
  for (const char* code : {"", "-", "4", "40", "4040", " 404", "404 ", "abc", "0404"}) {
    EXPECT_EQ(StatusMeaning(code), "") << code;
  }
}

TEST_F(BrowserOfTest, EveryTokenIsFoundAlone) {
  ASSERT_EQ(kBrowserTokens.size(), 20U);
  for (const std::string& token : kBrowserTokens) {
    EXPECT_EQ(BrowserOf(token), token);
    EXPECT_EQ(BrowserOf("xx" + Lower(token) + "/1.0"), token);
  }
}

TEST_F(BrowserOfTest, EarlierTokenWins) {
  for (std::size_t earlier = 0; earlier < kBrowserTokens.size(); ++earlier) {
    for (std::size_t later = earlier + 1; later < kBrowserTokens.size(); ++later) {
      const std::string agent = kBrowserTokens[later] + " " + kBrowserTokens[earlier];
      EXPECT_EQ(BrowserOf(agent), kBrowserTokens[earlier]) << agent;
    }
  }
}

TEST_F(BrowserOfTest, AgentsAsTheyAreLogged) {
  EXPECT_EQ(BrowserOf("Mozilla/5.0 (Windows NT 6.1) AppleWebKit Chrome Safari"), "Chrome");
  EXPECT_EQ(BrowserOf("Mozilla/4.0+(compatible;+MSIE+8.0;+Windows+NT+6.1)"), "MSIE");
  EXPECT_EQ(BrowserOf("Mozilla/5.0+(X11;+Linux)+Gecko/20100101+Firefox/4.0"), "Firefox");
  EXPECT_EQ(BrowserOf("Mozilla/5.0+(X11)+AppleWebKit/533"), "WebKit");
  EXPECT_EQ(BrowserOf("Wget/1.12"), "Unknown");
  EXPECT_EQ(BrowserOf("-"), "Unknown");
  EXPECT_EQ(BrowserOf(""), "Unknown");
}

TEST_F(BrowserOfTest, NamesOfEntriesAreNotLookedFor) {
  EXPECT_EQ(BrowserOf("Microsoft Internet Explorer"), "Unknown");
}

TEST_F(OsOfTest, EveryTokenIsFoundAlone) {
  ASSERT_EQ(kOsTokens.size(), 18U);
  for (const std::string& token : kOsTokens) {
    EXPECT_EQ(OsOf(token), token);
    EXPECT_EQ(OsOf("(x11;" + Lower(token) + ")"), token);
  }
}

TEST_F(OsOfTest, EarlierTokenWins) {
  for (std::size_t earlier = 0; earlier < kOsTokens.size(); ++earlier) {
    for (std::size_t later = earlier + 1; later < kOsTokens.size(); ++later) {
      const std::string agent = kOsTokens[later] + " " + kOsTokens[earlier];
      EXPECT_EQ(OsOf(agent), kOsTokens[earlier]) << agent;
    }
  }
}

TEST_F(OsOfTest, AgentsAsTheyAreLogged) {
  EXPECT_EQ(OsOf("Mozilla/5.0 (Windows NT 6.1) AppleWebKit Chrome Safari"), "Windows");
  EXPECT_EQ(OsOf("Mozilla/5.0+(Linux;+U;+Android+2.2)"), "Linux");
  EXPECT_EQ(OsOf("Mozilla/5.0+(FreeBSD)"), "BSD");
  EXPECT_EQ(OsOf("Wget/1.12"), "Unknown");
  EXPECT_EQ(OsOf(""), "Unknown");
}

TEST_F(IsRobotTest, EveryRobotWordInAnyLetterCase) {
  for (const std::string& word : kRobotWords) {
    EXPECT_TRUE(IsRobot("xx" + word + "/2.1")) << word;
    EXPECT_TRUE(IsRobot(Lower(word))) << word;
  }
  EXPECT_TRUE(IsRobot("Mozilla/5.0+(compatible;+Googlebot/2.1)"));
  EXPECT_TRUE(IsRobot("GOOGLEBOT"));
  EXPECT_TRUE(IsRobot("SCOUTJET"));
}

TEST_F(IsRobotTest, BotAnywhereIsEnough) {
  EXPECT_TRUE(IsRobot("a bottle"));
  EXPECT_TRUE(IsRobot("Robot"));
}

TEST_F(IsRobotTest, BrowsersAreNone) {
  EXPECT_FALSE(IsRobot("Mozilla/5.0 (Windows NT 6.1) Firefox"));
  EXPECT_FALSE(IsRobot("bo t"));
  EXPECT_FALSE(IsRobot(""));
  EXPECT_FALSE(IsRobot("-"));
}

TEST_F(IsRobotTest, AgentThatFetchedRobotsTxtIsOneExactlySpelled) {
  mdlMonth::TallyAdd("Stealth/1.0", mdlMonth::Month().RobotsTxtAgents, 1);
  EXPECT_TRUE(IsRobot("Stealth/1.0"));
  EXPECT_FALSE(IsRobot("stealth/1.0"));
  EXPECT_FALSE(IsRobot("Stealth/1.0 "));
  EXPECT_FALSE(IsRobot("Stealth"));
}

TEST_F(IsPageTest, EveryPageExtensionAnywhereInAnyLetterCase) {
  for (const std::string& extension : kPageExtensions) {
    EXPECT_EQ(IsPage("/a" + extension), 1) << extension;
    std::string upper = extension;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(IsPage("/x.gif" + upper + "l?x=.css"), 1) << extension;
  }
}

TEST_F(IsPageTest, EveryFileExtensionAnywhereInAnyLetterCase) {
  for (const std::string& extension : kFileExtensions) {
    EXPECT_EQ(IsPage("/a" + extension), 0) << extension;
    std::string upper = extension;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(IsPage("/a" + upper + "/rest"), 0) << extension;
  }
}

TEST_F(IsPageTest, ExtensionsAreOnlyTheBeginning) {
  EXPECT_EQ(IsPage("/index.html"), 1);
  EXPECT_EQ(IsPage("/app.aspx?x=1"), 1);
  EXPECT_EQ(IsPage("/song.mp3"), 0);
  EXPECT_EQ(IsPage("/data.json"), 0);
  EXPECT_EQ(IsPage("/logo.GIF"), 0);
}

TEST_F(IsPageTest, UnknownExtensionsAndFoldersArePages) {
  EXPECT_EQ(IsPage("/"), 1);
  EXPECT_EQ(IsPage("/dir/"), 1);
  EXPECT_EQ(IsPage("/notes.txt"), 1);
  EXPECT_EQ(IsPage("/file.pdf"), 1);
  EXPECT_EQ(IsPage(""), 1);
  EXPECT_EQ(IsPage("-"), 1);
}

TEST_F(ExtractSearchWordsTest, EveryParameterNameExactly) {
  ASSERT_EQ(kSearchParameters.size(), 30U);
  for (const std::string& name : kSearchParameters) {
    EXPECT_EQ(ExtractSearchWords("?" + name + "=words"), "words") << name;
    EXPECT_EQ(ExtractSearchWords("?a=b&" + name + "=words&c=d"), "words") << name;
    EXPECT_EQ(ExtractSearchWords("?x" + name + "=words"), "") << name;
  }
  EXPECT_EQ(ExtractSearchWords("?Q=test"), "");
  EXPECT_EQ(ExtractSearchWords("?term=test"), "");
}

TEST_F(ExtractSearchWordsTest, BlanksAndPercentCodes) {
  EXPECT_EQ(ExtractSearchWords("?hl=en&q=cheap+flights%21&oq=x"), "cheap flights&#033;");
  EXPECT_EQ(ExtractSearchWords("?q=%20%22%3Cb%3e"), "&#032;&#034;&#060;b&#062;");
  EXPECT_EQ(ExtractSearchWords("?q=%C3%a9"), "&#195;&#169;");
  EXPECT_EQ(ExtractSearchWords("?q=%ff%00"), "&#255;&#000;");
}

TEST_F(ExtractSearchWordsTest, DigitsThatAreNoneCountAsZero) {
  EXPECT_EQ(ExtractSearchWords("?q=%zz!"), "&#000;!");
  EXPECT_EQ(ExtractSearchWords("?q=%4g"), "&#064;");
  EXPECT_EQ(ExtractSearchWords("?q=%g4"), "&#004;");
  EXPECT_EQ(ExtractSearchWords("?q=%&&x"), "&#000;x");
  EXPECT_EQ(ExtractSearchWords("?q=%%%41"), "&#000;41");
}

TEST_F(ExtractSearchWordsTest, PercentNearTheEndIsDropped) {
  EXPECT_EQ(ExtractSearchWords("?q=50%"), "50");
  EXPECT_EQ(ExtractSearchWords("?q=50%4"), "504");
  EXPECT_EQ(ExtractSearchWords("?q=50%41"), "50&#065;");
}

TEST_F(ExtractSearchWordsTest, OnlyTheFirstListedParameterIsRead) {
  EXPECT_EQ(ExtractSearchWords("?q=first&q=second"), "first");
  EXPECT_EQ(ExtractSearchWords("?q=&p=second"), "");
  EXPECT_EQ(ExtractSearchWords("?prev=/images&q=second"), "/images");
}

TEST_F(ExtractSearchWordsTest, NameRunsToTheNextEqualsSign) {
  EXPECT_EQ(ExtractSearchWords("?a&q=x"), "");
  EXPECT_EQ(ExtractSearchWords("?a&q=x&q=y"), "y");
  EXPECT_EQ(ExtractSearchWords("??q=x"), "");
  EXPECT_EQ(ExtractSearchWords("?=x&q=y"), "y");
}

TEST_F(ExtractSearchWordsTest, NothingBeforeTheQuestionMark) {
  EXPECT_EQ(ExtractSearchWords("q=x"), "");
  EXPECT_EQ(ExtractSearchWords("a=1&q=x?q=y"), "y");
  EXPECT_EQ(ExtractSearchWords(""), "");
  EXPECT_EQ(ExtractSearchWords("?"), "");
  EXPECT_EQ(ExtractSearchWords("?q"), "");
  EXPECT_EQ(ExtractSearchWords("?q="), "");
}

TEST_F(ExtractSearchWordsTest, OtherCharactersAreCopiedAsTheyAre) {
  EXPECT_EQ(ExtractSearchWords("?q=a?b=c#d;e"), "a?b=c#d;e");
  EXPECT_EQ(ExtractSearchWords("?q=\xc3\xa9"), "\xc3\xa9");
}

// Texts made of vocabulary words, pieces of them and noise, so that near misses are frequent.
class TextMaker {
 public:
  TextMaker(unsigned seed, const std::vector<const WordList*>& vocabularies) : random_(seed) {
    for (const WordList* words : vocabularies) {
      words_.insert(words_.end(), words->begin(), words->end());
    }
  }

  std::string Next() {
    std::string text;
    const std::size_t parts = random_() % 6;
    for (std::size_t i = 0; i < parts; ++i) text += Part();
    return text;
  }

 private:
  std::string Part() {
    if (random_() % 3 == 0) {
      static constexpr std::string_view kNoise = "./?&=+%#ab09 -_;\xe9";
      return {kNoise[random_() % kNoise.size()]};
    }
    std::string word = words_[random_() % words_.size()];
    if (random_() % 3 == 0) word.resize(random_() % (word.size() + 1));
    for (char& c : word) {
      if (random_() % 8 == 0) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      }
    }
    return word;
  }

  std::mt19937 random_;
  WordList words_;
};

constexpr int kRandomTexts = 60'000;

TEST_F(RandomClassification, BrowsersAndSystemsAgreeWithThePlainLookup) {
  TextMaker agents(21, {&kBrowserTokens, &kOsTokens});
  for (int i = 0; i < kRandomTexts; ++i) {
    const std::string agent = agents.Next();
    ASSERT_EQ(BrowserOf(agent), FirstToken(agent, kBrowserTokens)) << agent;
    ASSERT_EQ(OsOf(agent), FirstToken(agent, kOsTokens)) << agent;
  }
}

TEST_F(RandomClassification, RobotsAgreeWithThePlainLookup) {
  TextMaker agents(22, {&kRobotWords, &kOsTokens});
  WordList fetched;
  for (int i = 0; i < 20; ++i) {
    fetched.push_back(agents.Next());
    mdlMonth::TallyAdd(fetched.back(), mdlMonth::Month().RobotsTxtAgents, 1);
  }
  for (int i = 0; i < kRandomTexts; ++i) {
    const std::string agent = agents.Next();
    const bool expected =
        HoldsAny(agent, kRobotWords) || std::count(fetched.begin(), fetched.end(), agent) != 0;
    ASSERT_EQ(IsRobot(agent), expected) << agent;
  }
}

TEST_F(RandomClassification, PagesAgreeWithThePlainLookup) {
  TextMaker uris(23, {&kPageExtensions, &kFileExtensions, &kFileExtensions});
  for (int i = 0; i < kRandomTexts; ++i) {
    const std::string uri = uris.Next();
    ASSERT_EQ(IsPage(uri), PlainIsPage(uri)) << uri;
  }
}

TEST_F(RandomClassification, SearchWordsAgreeWithThePlainMachine) {
  const WordList pieces = {"?", "&", "=", "q=", "&p=", "&oq=", "+", "%20", "%", "%zz"};
  TextMaker queries(24, {&kSearchParameters, &pieces, &pieces, &pieces});
  for (int i = 0; i < kRandomTexts; ++i) {
    const std::string query = (i % 4 == 0 ? "" : "?") + queries.Next() + queries.Next();
    ASSERT_EQ(ExtractSearchWords(query), PlainSearchWords(query)) << query;
  }
}

}  // namespace
