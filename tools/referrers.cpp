#include "tools/referrers.h"

namespace sample_logs {
namespace {

struct SearchEngine {
  std::string_view before_words;
  std::string_view after_words;
};

constexpr SearchEngine kEngines[] = {
    {.before_words = "https://www.google.com/search?q=", .after_words = "&ie=UTF-8"},
    {.before_words = "https://www.google.com/search?q=", .after_words = "&ie=UTF-8"},
    {.before_words = "http://www.google.co.uk/search?hl=en&q=", .after_words = "&start=10"},
    {.before_words = "https://www.bing.com/search?q=", .after_words = "&form=QBLH"},
    {.before_words = "https://duckduckgo.com/?q=", .after_words = "&ia=web"},
    {.before_words = "https://search.yahoo.com/search?p=", .after_words = "&fr=yfp-t"},
    {.before_words = "https://www.ecosia.org/search?method=index&q=", .after_words = ""},
    {.before_words = "http://www.ask.com/web?o=0&q=", .after_words = "&qsrc=364"},
};

constexpr std::string_view kSearches[] = {
    "harbour+museum",
    "harbour+museum",
    "harbour%20museum",
    "harbour+museum+opening+hours",
    "lighthouse+lens+how+does+it+work",
    "%22rope+walk%22",
    "ship%27s+bell+history",
    "tide+table",
    "fresnel+lens",
    "caf%C3%A9+near+harbour+museum",
    "model+ships+for+children",
    "steam+tug+boat+trips",
    "how+to+tie+a+bowline",
    "sextant+explained",
    "museum+tickets+family",
    "what%27s+on+harbour+weekend",
    "old+sea+charts+1880",
    "ship+in+a+bottle+workshop",
    "diving+helmet",
    "morse+code+signal+lamp",
    "herring+fishery+history",
    "knots+%26+splices",
    "museum+parking",
    "figurehead+collection",
    "school+visit+museum+harbour",
    "100%25+cotton+sailor+shirt",
};

constexpr std::string_view kSites[] = {
    "http://www.town.example/tourism/museums.htm",
    "http://www.town.example/",
    "https://news.example.org/culture/weekend-tips",
    "https://blog.example.net/2024/06/old-lights/",
    "http://forum.example.com/viewtopic.php?t=4711",
    "https://wiki.example.org/wiki/Fresnel_lens",
    "http://links.example.com/maritime.html#museums",
    "https://social.example/post/1882",
    "http://schools.example.net/trips",
};

}  // namespace

std::string SearchReferrer(Random& random) {
  const SearchEngine& engine = random.Pick(kEngines);
  std::string url(engine.before_words);
  url.append(random.Pick(kSearches)).append(engine.after_words);
  return url;
}

std::string SiteReferrer(Random& random) { return std::string(random.Pick(kSites)); }

std::string EntryReferrer(Random& random) {
  const std::uint64_t kind = random.Below(100);
  if (kind < 45) return SearchReferrer(random);
  if (kind < 65) return SiteReferrer(random);
  return "-";
}

}  // namespace sample_logs
