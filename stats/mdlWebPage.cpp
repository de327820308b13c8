#include "stats/mdlWebPage.h"

#include <algorithm>
#include <bit>
#include <map>
#include <span>
#include <vector>

#include "config/text.h"
#include "stats/mdlMonth.h"
#include "stats/word_list.h"

namespace mdlWebPage {
namespace {

struct StatusRow {
  std::string_view code;
  std::string_view meaning;
};

constexpr StatusRow kStatusRows[] = {
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

// One word to a line.
// clang-format off

// The order decides: Chrome agents also name Safari, most agents also name Gecko.
constexpr std::string_view kBrowserTokens[] = {
    "MSIE",  // Microsoft Internet Explorer
    "Navigator",  // Netscape Navigator
    "iCab",
    "Camino",
    "Chrome",
    "Safari",
    "Firefox",
    "Opera",
    "Konqueror",
    "SeaMonkey",
    "Gecko",
    "Netscape",
    "iTunes",
    "FrontPage",  // Microsoft FrontPage
    "Epiphany",
    "Galeon",
    "WebKit",
    "Voyager",
    "Dillo",
    "Lynx",
};

// "Linux" before "Android", so Android counts as Linux.
constexpr std::string_view kOsTokens[] = {
    "Macintosh",
    "Darwin",
    "Windows",
    "Linux",
    "Solaris",
    "SunOS",
    "BSD",
    "AIX",
    "HP-UX",
    "Symbian",
    "Nokia",
    "MIDP",
    "iPod",
    "iPad",
    "iPhone",
    "Android",
    "BlackBerry",
    "Amiga",
};

// "bot" alone makes every agent that contains it a robot: deliberately broad.
constexpr std::string_view kRobotWords[] = {
    "msnbot",
    "mmcrawler",
    "googlebot",
    "slurp",
    "bot",
    "crawl",
    "spider",
    "ia_archiver",
    "panscient",
    "yandex",
    "walker",
    "ScoutJet",
};

// Extensions without their dot; each also matches what begins with it.
constexpr std::string_view kPageExtensions[] = {
    "htm",
    "shtml",
    "phtml",
    "asp",
    "php",
    "jsp",
    "cgi",
    "asa",
    "chm",
};
constexpr std::string_view kFileExtensions[] = {
    "xml",
    "jpg",
    "jpeg",
    "ico",
    "gif",
    "mp",
    "avi",
    "aif",
    "ogg",
    "png",
    "au",
    "wav",
    "ra",
    "ram",
    "pcx",
    "tif",
    "bmp",
    "sdp",
    "rts",
    "qt",
    "mov",
    "aac",
    "asf",
    "css",
    "js",
    "swf",
    "spl",
    "pic",
    "wmv",
    "zip",
    "exe",
    "gz",
};

// Compared with letter case.
constexpr std::string_view kSearchParameterNames[] = {
    "q",
    "qry",
    "query",
    "search",
    "ask",
    "Term",
    "Topic",
    "pt",
    "wf",
    "prev",
    "back",
    "str",
    "Keywords",
    "qkw",
    "p",
    "searchfor",
    "aqa",
    "userQuery",
    "keywords",
    "wfq",
    "MT",
    "qs",
    "as_epq",
    "as_oq",
    "oq",
    "w",
    "Words",
    "q_phrase",
    "what",
    "k",
};

// clang-format on

template <std::size_t N>
stats::WordList MakeWordList(const std::string_view (&words)[N]) {
  return stats::WordList(std::vector<std::string_view>(std::begin(words), std::end(words)));
}

std::map<std::string_view, std::string_view> status_meanings;
stats::WordList browser_words;
stats::WordList os_words;
stats::WordList robot_words;
const stats::WordList page_extensions = MakeWordList(kPageExtensions);
const stats::WordList file_extensions = MakeWordList(kFileExtensions);

constexpr std::string_view kUnknown = "Unknown";

// The first word of the list that occurs in the text; `words` was made from that list.
std::string_view FirstWordIn(std::string_view text, const stats::WordList& words,
                             std::span<const std::string_view> list) {
  const stats::WordList::Words found = words.OccurringIn(text);
  return found == 0 ? kUnknown : list[static_cast<std::size_t>(std::countr_zero(found))];
}

bool IsSearchParameter(std::string_view name) {
  return std::find(std::begin(kSearchParameterNames), std::end(kSearchParameterNames), name) !=
         std::end(kSearchParameterNames);
}

// A hexadecimal digit's value; any other character counts as 0.
int HexValue(char c) {
  if (text::IsDigit(c)) return c - '0';
  const char upper = text::ToUpper(c);
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : 0;
}

// "&#" + at least three digits + ";": the words are written into pages as they are.
void AppendCharacterReference(std::string& words, int code) {
  words += "&#";
  const std::string digits = std::to_string(code);
  words.append(digits.size() < 3 ? 3 - digits.size() : 0, '0');
  words += digits;
  words += ';';
}

// Copies the value that begins at `i` up to its "&", decoding "+" and "%xx".
std::string DecodeValue(std::string_view query, std::size_t i) {
  std::string words;
  for (; i < query.size() && query[i] != '&'; ++i) {
    if (query[i] == '+') {
      words += ' ';
    } else if (query[i] != '%') {
      words += query[i];
    } else if (i + 2 < query.size()) {
      AppendCharacterReference(words, HexValue(query[i + 1]) * 16 + HexValue(query[i + 2]));
      i += 2;
    }
  }
  return words;
}

}  // namespace

void BuildLookupTables() {
  status_meanings.clear();
  for (const StatusRow& row : kStatusRows) status_meanings.emplace(row.code, row.meaning);
  browser_words = MakeWordList(kBrowserTokens);
  os_words = MakeWordList(kOsTokens);
}

void BuildRobotWords() { robot_words = MakeWordList(kRobotWords); }

std::string StatusMeaning(std::string_view code) {
  const auto found = status_meanings.find(code);
  return found == status_meanings.end() ? std::string() : std::string(found->second) + " - ";
}

std::string_view BrowserOf(std::string_view userAgent) {
  return FirstWordIn(userAgent, browser_words, kBrowserTokens);
}

std::string_view OsOf(std::string_view userAgent) {
  return FirstWordIn(userAgent, os_words, kOsTokens);
}

bool IsRobot(std::string_view userAgent) {
  return FetchedRobotsTxt(userAgent) || HasRobotWord(userAgent);
}

bool FetchedRobotsTxt(std::string_view userAgent) {
  return mdlMonth::Month().RobotsTxtAgents.Contains(userAgent);
}

bool HasRobotWord(std::string_view userAgent) { return robot_words.AnyIn(userAgent); }

std::int16_t IsPage(std::string_view uri) {
  bool is_other_file = false;
  for (std::size_t dot = uri.find('.'); dot != text::kNone; dot = uri.find('.', dot + 1)) {
    if (page_extensions.BeginningAt(uri, dot + 1) != 0) return 1;
    is_other_file = is_other_file || file_extensions.BeginningAt(uri, dot + 1) != 0;
  }
  return is_other_file ? 0 : 1;
}

std::string ExtractSearchWords(std::string_view queryPart) {
  std::size_t i = queryPart.find('?');
  if (i == text::kNone) return {};
  // From the start of a parameter name: a name ends at "=", an uninteresting value at "&".
  for (++i; i < queryPart.size();) {
    const std::size_t equals = queryPart.find('=', i);
    if (equals == text::kNone) return {};
    if (IsSearchParameter(queryPart.substr(i, equals - i)))
      return DecodeValue(queryPart, equals + 1);
    const std::size_t ampersand = queryPart.find('&', equals + 1);
    if (ampersand == text::kNone) return {};
    i = ampersand + 1;
  }
  return {};
}

}  // namespace mdlWebPage
