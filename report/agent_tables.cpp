#include "report/agent_tables.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "report/csv.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/numbers.h"
#include "report/ranked_table.h"
#include "report/table_row.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/mdlWebPage.h"

namespace report {
namespace {

constexpr std::string_view kClassifierCsv = "BrowserClassifier";
constexpr std::string_view kRobotsCsv = "Robots";
constexpr std::string_view kSummaryCsv = "OneRow";
constexpr std::string_view kPercent = "&nbsp;%";

// "<td>Chrome</td><td align=right>40&nbsp;%</td>" of a classified tally's row; empty cells and
// fields once the list has run out.
std::string ClassCells(const MonthPage& month, stats::TallyTable& table, std::int32_t rank,
                       csv::Table& file) {
  if (rank > month.Rows(table.Count())) {
    file.Text("").Number("");
    return "<td></td><td></td>";
  }
  const stats::TallyEntry entry = table.At(rank);
  const std::string share = numbers::Share(entry.Metric, month.total_hits);
  file.Text(entry.Key).Number(share);
  return html::TextCell(entry.Key) + html::PercentCell(share);
}

// A figure and its share in one cell: "1234 (56&nbsp;%)".
std::string FigureAndShare(const std::string& figure, const std::string& share) {
  return html::NumberCell(figure + " (" + share + "&nbsp;%)");
}

void WriteTraffic(MonthPage& month, std::string_view type, const RobotTraffic& traffic,
                  csv::Table& file) {
  const std::string hits_share = numbers::Share(traffic.hits, month.total_hits);
  const std::string bytes_share = numbers::Share(traffic.bytes, month.total_bytes);
  html::Line(month.page, "<tr>", html::TextCell(type),
             FigureAndShare(numbers::Plain(traffic.hits), hits_share),
             FigureAndShare(numbers::Rounded(numbers::KBytes(traffic.bytes)), bytes_share),
             "</tr>");
  file.Text(type).Number(hits_share).Number(bytes_share).EndRecord();
}

// The share of the visits that were over within three seconds.
std::string BounceRate(const mdlVisit::Breakdown& lengths) {
  return numbers::Share(lengths[1].Visits, lengths[0].Visits);
}

}  // namespace

void ClassifyAgents(MonthPage& month) {
  mdlMonth::MonthStats& stats = mdlMonth::Month();
  stats.Browsers.Clear();
  stats.OperatingSystems.Clear();
  month.robots = {};
  // In the order of the table, which decides between names of equal rank.
  for (std::int32_t rank = 1; rank <= stats.UserAgents.Count(); ++rank) {
    const stats::TallyEntry agent = stats.UserAgents.At(rank);
    const auto hits = static_cast<float>(agent.Count);
    mdlMonth::TallyAdd(mdlWebPage::BrowserOf(agent.Key), stats.Browsers, hits);
    mdlMonth::TallyAdd(mdlWebPage::OsOf(agent.Key), stats.OperatingSystems, hits);
    if (!mdlWebPage::IsRobot(agent.Key)) continue;
    month.robots.hits += agent.Count;
    month.robots.bytes += agent.Metric;
  }
  mdlMonth::SortTallyByMetric(stats.Browsers);
  mdlMonth::SortTallyByMetric(stats.OperatingSystems);
}

int WriteAgents(MonthPage& month) {
  const auto key = [](const stats::TallyEntry& entry) -> RowKey {
    const std::string_view type = mdlWebPage::IsRobot(entry.Key) ? "ROBOT" : "";
    return {html::TextCell(entry.Key) + html::TextCell(type), {entry.Key, type}};
  };
  return WriteRankedTable(
      month, mdlMonth::Month().UserAgents,
      {.caption = "<a name=browsers>Top browsers (agents) for ",
       .caption_end = "</a>",
       .header = "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 "
                 "bgcolor=red>Kbytes</th><th>Browser</th><th>Type</th></tr>",
       .figures = Figures::kTraffic,
       .key = key,
       .csv_name = "Browsers",
       .csv_columns = {"Rank", "Hits", "HitsPct", "KBytes", "KBytesPct", "Browser", "IsRobot"}});
}

int WriteBrowsersAndSystems(MonthPage& month) {
  mdlMonth::MonthStats& stats = mdlMonth::Month();
  html::Line(month.page, html::k80);
  html::Caption(month.page, "Browsers and operating systems", month.DownloadLink(kClassifierCsv));
  html::Line(month.page,
             "<tr><th colspan=2>Browsers</th><th></th><th colspan=2>Operating systems</th></tr>");
  csv::Table file({"Browser", "BrowserPct", "OS", "OSpct"});
  const std::int32_t rows =
      month.Rows(std::max(stats.Browsers.Count(), stats.OperatingSystems.Count()));
  for (std::int32_t rank = 1; rank <= rows; ++rank) {
    const std::string browser = ClassCells(month, stats.Browsers, rank, file);
    const std::string system = ClassCells(month, stats.OperatingSystems, rank, file);
    html::Line(month.page, "<tr>", browser, "<td></td>");
    html::Line(month.page, system, "</tr>");
    file.EndRecord();
  }
  html::Line(month.page, html::kTableEnd);
  return month.SaveCsv(kClassifierCsv, file);
}

int WriteRobots(MonthPage& month) {
  html::Line(month.page, html::kBlockWide);
  html::Caption(month.page,
                "<a name=robots>Traffic from robots for " + month.month_and_year + "</a>",
                month.DownloadLink(kRobotsCsv));
  html::Line(month.page,
             "<tbody><tr><th>Type</th><th bgcolor=green>Hits</th><th bgcolor=red>Kbytes</th></tr>");
  csv::Table file({"Type", "HitsPct", "KBytesPct"});
  WriteTraffic(month, "Robots", month.robots, file);
  WriteTraffic(month, "Others",
               {.hits = month.total_hits - month.robots.hits,
                .bytes = month.total_bytes - month.robots.bytes},
               file);
  html::Line(month.page, html::kTableEnd);
  return month.SaveCsv(kRobotsCsv, file);
}

int WriteShortSummary(MonthPage& month) {
  mdlMonth::MonthStats& stats = mdlMonth::Month();
  html::Line(month.page, html::kBlockWide);
  html::Caption(month.page, "<a name=SEO>Short Summary for " + month.month_and_year + "</a>",
                month.DownloadLink(kSummaryCsv));
  html::Line(month.page,
             "<tbody align=center><tr><th>Days</th><th>Distinct Visitors</th><th>Visits</th>"
             "<th>Bounce rate</th><th>Non-robot Visits</th><th>Non-robot Bounce rate</th>"
             "<th>Hits</th><th>Files</th><th>Pages</th><th>Distinct Pages</th><th>KBytes</th>"
             "<th>Delay mS</th><th>%Robots</th></tr>");
  csv::Table file({"Days", "DistVisitors", "Visits", "Bounces", "NRVisits", "NRBounces", "Hits",
                   "Files", "Pages", "DistPages", "KBytes", "Delay_mS", "%Robots"});
  TableRow row(file, "<tr>");
  row.Add(numbers::Plain(month.days));
  row.Add(numbers::Plain(stats.ClientAddresses.Count()));
  row.Add(numbers::Plain(mdlVisit::AllVisitLengths()[0].Visits));
  row.Add(BounceRate(mdlVisit::AllVisitLengths()), kPercent);
  row.Add(numbers::Plain(mdlVisit::NonRobotVisitLengths()[0].Visits));
  row.Add(BounceRate(mdlVisit::NonRobotVisitLengths()), kPercent);
  row.Add(numbers::Plain(month.total_hits));
  row.Add(numbers::Plain(stats.TotalFiles));
  row.Add(numbers::Plain(stats.TotalPages));
  row.Add(numbers::Plain(stats.Pages.Count()));
  row.Add(numbers::Rounded(numbers::KBytes(month.total_bytes)));
  row.Add(numbers::Rounded(numbers::Per(stats.TotalTimeTaken, month.total_hits)));
  row.Add(numbers::Share(month.robots.hits, month.total_hits), kPercent);
  row.End(month.page, html::kTableEnd);
  return month.SaveCsv(kSummaryCsv, file);
}

}  // namespace report
