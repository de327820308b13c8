#include "report/visit_tables.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "report/csv.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/numbers.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"

namespace report {
namespace {

constexpr std::string_view kBreakdownCsv = "SessionBreakdown";
constexpr std::string_view kEntryExitCsv = "EntryExit";

// The unit that a band's stays are shown in.
struct StayUnit {
  std::string_view name;
  double seconds;
};

// "very short" and "short" visits last less than a minute.
StayUnit UnitOf(std::size_t band) {
  return band == 1 || band == 2 ? StayUnit{.name = "secs", .seconds = 1}
                                : StayUnit{.name = "mins", .seconds = 60};
}

// The three cells and six fields of one band, for all visits or for those of non-robots.
void AddBand(const mdlVisit::LengthBucket& band, const StayUnit& unit, std::string& cells,
             csv::Table& file) {
  const double visits = band.Visits;
  const std::string count = numbers::Plain(visits);
  const std::string fetches = numbers::Tenths(numbers::Mean(band.Fetches, visits));
  const std::string fetches_deviation =
      numbers::Tenths(numbers::Deviation(band.Fetches, band.FetchesSquares, visits));
  const std::string stay = numbers::Tenths(numbers::Mean(band.Seconds, visits) / unit.seconds);
  const std::string stay_deviation =
      numbers::Tenths(numbers::Deviation(band.Seconds, band.SecondsSquares, visits) / unit.seconds);
  cells += html::NumberCell(count);
  cells += html::NumberCell(fetches + " +/- " + fetches_deviation);
  cells += html::NumberCell(stay + " +/- " + stay_deviation + " " + std::string(unit.name));
  file.Number(count).Number(fetches).Number(fetches_deviation);
  file.Number(stay).Number(stay_deviation).Text(unit.name);
}

// One of the four lists that stand side by side.
struct UrlList {
  stats::TallyTable& table;
  std::int32_t rows;
};

using UrlLists = std::array<UrlList, 4>;

UrlLists EntryAndExitLists(const MonthPage& month) {
  mdlMonth::VisitTables& visits = mdlMonth::Month().Visits;
  const auto list = [&month](stats::TallyTable& table) {
    return UrlList{.table = table, .rows = month.Rows(table.Count())};
  };
  return {list(visits.AllEntry), list(visits.AllExit), list(visits.NonRobotEntry),
          list(visits.NonRobotExit)};
}

void WriteUrlLists(MonthPage& month, const UrlLists& lists, std::int32_t rank, csv::Table& file) {
  std::string cells = "<tr>";
  for (std::size_t i = 0; i < lists.size(); ++i) {
    if (i > 0) cells += "<td></td>";
    if (rank > lists[i].rows) {
      cells += "<td></td><td></td>";
      file.Number("").Text("");
      continue;
    }
    const stats::TallyEntry entry = lists[i].table.At(rank);
    const std::string count = numbers::Plain(entry.Count);
    cells += html::NumberCell(count) + html::UrlCell(entry.Key);
    file.Number(count).Text(entry.Key);
  }
  html::Line(month.page, cells, "</tr>");
  file.EndRecord();
}

}  // namespace

int WriteSessionBreakdown(MonthPage& month) {
  html::Line(month.page, html::kBlock70);
  html::Caption(month.page,
                "<a name=sessions>Session breakdown for " + month.month_and_year + "</a>",
                month.DownloadLink(kBreakdownCsv));
  html::Line(month.page,
             "<tbody><tr><th rowspan=2>Visit length</th><th colspan=3  bgcolor=blue>All visits"
             "</th><th colspan=3 bgcolor=pink>Non-robot</th></tr>");
  html::Line(month.page,
             "<tr><th bgcolor=yellow># visits</th><th bgcolor=green>Ave # fetches</th>"
             "<th bgcolor=pink>Ave Stay</th><th bgcolor=yellow># visits</th>"
             "<th bgcolor=green>Ave # fetches</th><th bgcolor=pink>Ave Stay</th></tr>");
  csv::Table file({"Range", "Visits", "FetchesAve", "FetchesStdDev", "StayAve", "StayStdDev",
                   "Units", "NRVisits", "NRFetchesAve", "NRFetchesStdDev", "NRStayAve",
                   "NRStayStdDev", "NRUnits"});
  for (std::size_t band = 0; band < mdlVisit::kBreakdownRows; ++band) {
    const mdlVisit::LengthBucket& all = mdlVisit::AllVisitLengths()[band];
    std::string cells = "<tr>" + html::TextCell(all.Label);
    file.Text(all.Label);
    AddBand(all, UnitOf(band), cells, file);
    AddBand(mdlVisit::NonRobotVisitLengths()[band], UnitOf(band), cells, file);
    html::Line(month.page, cells, "</tr>");
    file.EndRecord();
  }
  html::Line(month.page, html::kTableEnd);
  return month.SaveCsv(kBreakdownCsv, file);
}

int WriteEntryAndExitPages(MonthPage& month) {
  html::Line(month.page, html::kWide);
  html::Caption(month.page, "Most common Entry/Exit pages for " + month.month_and_year,
                month.DownloadLink(kEntryExitCsv));
  html::Line(month.page,
             "<tr><th colspan=5 bgcolor=blue>All visits</th><th></th>"
             "<th colspan=5 bgcolor=pink>Non-Robots</th></tr>");
  html::Line(month.page,
             "<tr><th>#</th><th bgcolor=green>Entry page</th><th></th><th>#</th>"
             "<th bgcolor=blue>Exit page</th><th></th><th>#</th><th bgcolor=green>Entry page</th>"
             "<th></th><th>#</th><th bgcolor=blue>Exit page</th></tr>");
  csv::Table file({"EntryCount", "EntryURL", "ExitCount", "ExitURL", "NREntryCount", "NREntryURL",
                   "NRExitCount", "NRExitURL"});
  const UrlLists lists = EntryAndExitLists(month);
  std::int32_t rows = 0;
  for (const UrlList& list : lists) rows = std::max(rows, list.rows);
  for (std::int32_t rank = 1; rank <= rows; ++rank) WriteUrlLists(month, lists, rank, file);
  html::Line(month.page, html::kTableEnd);
  return month.SaveCsv(kEntryExitCsv, file);
}

}  // namespace report
