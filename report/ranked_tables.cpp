#include "report/ranked_tables.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "report/domains.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/ranked_table.h"
#include "stats/mdlDNS.h"
#include "stats/mdlMonth.h"

namespace report {
namespace {

using mdlMonth::Month;

constexpr std::string_view kUrlHeader =
    "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes"
    "</th><th>URL</th></tr>";
constexpr std::string_view kFileTypeHeader =
    "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes"
    "</th><th>File Type</th></tr>";

// The part of a referrer that names the site: up to the first "/" of the path.
std::string_view SiteOf(std::string_view referrer) {
  if (referrer == "-") return "Direct";
  constexpr std::string_view kSchemeEnd = "://";
  const std::size_t scheme_end = referrer.find(kSchemeEnd);
  const std::size_t from = scheme_end == text::kNone ? 1 : scheme_end + kSchemeEnd.size();
  return referrer.substr(0, referrer.find('/', from));
}

// The keys of the rows that a table of the page lists.
std::vector<std::string> ListedKeys(const MonthPage& month, stats::TallyTable& table) {
  std::vector<std::string> keys;
  const std::int32_t rows = month.Rows(table.Count());
  for (std::int32_t rank = 1; rank <= rows; ++rank) keys.emplace_back(table.At(rank).Key);
  return keys;
}

}  // namespace

int WriteUrlsByHits(MonthPage& month) {
  return WriteRankedTable(
      month, Month().SuccessUrls,
      {.caption = "<a name=urls>Top hits for ",
       .caption_end = "</a>",
       .header = kUrlHeader,
       .figures = Figures::kTraffic,
       .key = KeyAs<html::UrlCell>,
       .csv_name = "URLbyHits",
       .csv_columns = {"Rank", "Hits", "HitsPct", "KBytes", "KBytesPct", "URL"}});
}

int WriteUrlsByKBytes(MonthPage& month) {
  mdlMonth::SortTallyByMetric(Month().SuccessUrls);
  return WriteRankedTable(
      month, Month().SuccessUrls,
      {.caption = "Top hits for ",
       .caption_end = " by Kbytes",
       .header = kUrlHeader,
       .figures = Figures::kTraffic,
       .key = KeyAs<html::UrlCell>,
       .csv_name = "URLbyKBytes",
       .csv_columns = {"Rank", "Hits", "HitsPct", "KBytes", "KBytesPct", "URL"}});
}

int WritePagesByHits(MonthPage& month) {
  return WriteRankedTable(month, Month().Pages,
                          {.caption = "Top pages for ",
                           .caption_end = "",
                           .header = "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th>"
                                     "<th>URL</th></tr>",
                           .figures = Figures::kHitsAndShare,
                           .key = KeyAs<html::UrlCell>,
                           .csv_name = "PageByHits",
                           .csv_columns = {"Rank", "Hits", "HitsPct", "URL"}});
}

int WriteSlowestPages(MonthPage& month) {
  mdlMonth::SortTallyByMetric(Month().UrlResponseTimes);
  return WriteRankedTable(month, Month().UrlResponseTimes,
                          {.caption = "Slowest pages for ",
                           .caption_end = "",
                           .header = "<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                                     "<th bgcolor=pink>Ave Time taken (mS)</th><th>URL</th></tr>",
                           .figures = Figures::kHitsAndTime,
                           .key = KeyAs<html::UrlCell>,
                           .csv_name = "PageTimes",
                           .csv_columns = {"Rank", "Hits", "TimeTaken", "URL"}});
}

int WriteFileTypesByHits(MonthPage& month) {
  return WriteRankedTable(
      month, Month().FileTypes,
      {.caption = "<a name=FileTypes>Top file types for ",
       .caption_end = "</a>",
       .header = kFileTypeHeader,
       .figures = Figures::kTraffic,
       .key = KeyAs<html::TextCell>,
       .csv_name = "FileTypebyHits",
       .csv_columns = {"Rank", "Hits", "HitsPct", "KBytes", "KBytesPct", "FileType"}});
}

int WriteFileTypesByKBytes(MonthPage& month) {
  mdlMonth::SortTallyByMetric(Month().FileTypes);
  return WriteRankedTable(
      month, Month().FileTypes,
      {.caption = "Top file type for ",
       .caption_end = " by Kbytes",
       .header = kFileTypeHeader,
       .figures = Figures::kTraffic,
       .key = KeyAs<html::TextCell>,
       .csv_name = "FileTypebyKBytes",
       .csv_columns = {"Rank", "Hits", "HitsPct", "KBytes", "KBytesPct", "FileType"}});
}

int WriteReaders(MonthPage& month) {
  mdlDNS::LookUpPage(ListedKeys(month, Month().ClientAddresses));
  const auto key = [&month](const stats::TallyEntry& entry) -> RowKey {
    const std::string host = mdlDNS::HostNameOf(std::string(entry.Key));
    AddHost(month.domains, host, entry.Count);
    return {html::TextCell(entry.Key) + html::TextCell(text::HtmlEscape(host)), {}};
  };
  return WriteRankedTable(
      month, Month().ClientAddresses,
      {.caption = "<a name=readers>Top readers for ",
       .caption_end = "</a>",
       .header = "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 "
                 "bgcolor=red>Kbytes</th><th>IP</th><th>hostname</th></tr>",
       .figures = Figures::kTraffic,
       .key = key});
}

int WriteReferrers(MonthPage& month) {
  return WriteRankedTable(month, Month().Referrers,
                          {.caption = "<a name=referrers>Top referrers for ",
                           .caption_end = "</a>",
                           .header = "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th>"
                                     "<th>Referrer</th></tr>",
                           .figures = Figures::kHitsAndShare,
                           .key = KeyAs<html::ReferrerCell>});
}

// The sites are tallied from all referrers, listed or not. Reading them in their order decides
// between sites of equal rank.
int WriteReferringSites(MonthPage& month) {
  stats::TallyTable& referrers = Month().Referrers;
  stats::TallyTable sites;
  for (std::int32_t rank = 1; rank <= referrers.Count(); ++rank) {
    const stats::TallyEntry entry = referrers.At(rank);
    mdlMonth::TallyAdd(SiteOf(entry.Key), sites, static_cast<float>(entry.Count));
  }
  mdlMonth::SortTallyByMetric(sites);
  return WriteRankedTable(month, sites,
                          {.caption = "<a name=referrers>Top referring sites for ",
                           .caption_end = "</a>",
                           .header = "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th>"
                                     "<th align=left>Referrer</th></tr>",
                           .figures = Figures::kSiteHits,
                           .key = KeyAs<html::TextCell>,
                           .csv_name = "ReferrerSites",
                           .csv_columns = {"Referrer", "Hits", "HitsPct"},
                           .csv_key_first = true});
}

int WriteQueries(MonthPage& month) {
  return WriteRankedTable(month, Month().Queries,
                          {.opening = html::kBlock60,
                           .caption = "<a name=queries>Top queries for ",
                           .caption_end = "</a>",
                           .header = "<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                                     "<th>Query terms</th></tr>",
                           .figures = Figures::kHits,
                           .key = KeyAs<html::TextCell>,
                           .csv_name = "Queries",
                           .csv_columns = {"Query", "Count"},
                           .csv_key_first = true});
}

int WriteBrokenLinks(MonthPage& month) {
  return WriteRankedTable(month, Month().FailedUrls,
                          {.caption = "<a name=broken>Broken links in ",
                           .caption_end = "</a>",
                           .header = "<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                                     "<th bgcolor=red>Local target of link</th></tr>",
                           .figures = Figures::kHits,
                           .key = KeyAs<html::TextCell>});
}

int WriteBrokenReferrers(MonthPage& month) {
  return WriteRankedTable(month, Month().FailedReferrers,
                          {.opening = html::k70,
                           .caption = "<a name=broken>Broken referrer references in ",
                           .caption_end = "</a>",
                           .header = "<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                                     "<th bgcolor=red>Linked from</th></tr>",
                           .figures = Figures::kHits,
                           .key = KeyAs<html::TextCell>});
}

int WriteUserNames(MonthPage& month) {
  if (!mdlConfigs::Run().Settings.ShowUsernames) return 0;
  return WriteRankedTable(month, Month().UserNames,
                          {.caption = "<a name=usernames>Top users for ",
                           .caption_end = "</a>",
                           .header = "<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                                     "<th bgcolor=red>Kbytes</th><th>User name</th></tr>",
                           .figures = Figures::kHitsAndKBytes,
                           .key = KeyAs<html::TextCell>});
}

}  // namespace report
