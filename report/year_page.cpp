// The last-12-months page, "index.htm". The history that it shows is kept in mdlYear.cpp.

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "config/mdlConfigs.h"
#include "platform/environment.h"
#include "report/dates.h"
#include "report/html.h"
#include "report/mdlYear.h"
#include "report/numbers.h"
#include "report/page_frame.h"
#include "report/page_names.h"

namespace mdlYear {
namespace {

// One of the bars that every month gets, with the unit its legend names.
struct Series {
  std::string_view colour;
  std::string_view legend_colour;
  std::string_view unit;
  double (*measure)(const HistoryRow&);
};

double AverageTime(const HistoryRow& row) { return numbers::Per(row.responseTime, row.hits); }

constexpr Series kSeries[] = {
    {.colour = "green",
     .legend_colour = "green",
     .unit = " Hits",
     .measure = [](const HistoryRow& row) { return row.hits; }},
    {.colour = "red",
     .legend_colour = "red",
     .unit = " Bytes",
     .measure = [](const HistoryRow& row) { return row.bytes; }},
    {.colour = "orange",
     .legend_colour = "orange",
     .unit = " Visitors",
     .measure = [](const HistoryRow& row) { return row.visitors; }},
    {.colour = "pink",
     .legend_colour = "salmon",
     .unit = " mS Ave Response",
     .measure = AverageTime},
};

double ScaleOf(const Series& series) {
  double largest = 0;
  for (int month = 1; month <= 12; ++month) {
    largest = std::max(largest, series.measure(HistorySlot(month)));
  }
  return numbers::FullScale(largest);
}

void WriteOpening(std::string& page) {
  const std::string& host = report::HostName();
  report::WriteHead(page, "Usage statistics for " + host + " - last 12 months");
  html::Line(page, "<H2>Usage Statistics for ", host, report::SiteLabel(), "</H2>");
  html::Line(page, report::PeriodText("Last 12 Months", report::GenerationTime(false), ""));
  html::Line(page, "<HR><center>");
}

void WriteChart(std::string& page) {
  const bool with_csv = mdlConfigs::Run().Settings.GenerateCSV;
  html::Line(page, "<table width=\"90%\" border=1 rules=groups frame=box cellpadding=0>");
  html::Caption(page, "Usage summary for " + report::HostName(),
                with_csv ? " <small><a href=\"Annual.csv\">(Download)</a></small>" : "");
  html::Line(page, "<tfoot>");
  html::Line(page, "<tr align=left><td></td>");
  // English in every locale.
  for (const std::string_view label : platform::kEnglishMonths) {
    html::Line(page, "<td colspan=5><tt><b>", label, "</b></tt></td>");
  }
  html::Line(page, "</tr>");
  html::Line(page, "</tfoot>");
  html::Line(page, "<tbody>");
  html::Line(page,
             "<tr><td style=\"width:1px; border-left:1px solid black\"><br></td><!-- Axis-->");
  std::array<double, std::size(kSeries)> scales;
  std::transform(std::begin(kSeries), std::end(kSeries), scales.begin(), ScaleOf);
  for (int month = 1; month <= 12; ++month) {
    for (std::size_t i = 0; i < scales.size(); ++i) {
      const double value = kSeries[i].measure(HistorySlot(month));
      html::BarCell(page, numbers::BarHeight(value, scales[i]), kSeries[i].colour, "<br>");
    }
    html::Line(page, "<td style=\"width:1px\"><br></td><!-- separator -->");
  }
  html::Line(page, "</tbody>");
  html::Line(page, "</table>");
  html::Line(page, "<table width=\"90%\"><tr><td>100%=</td>");
  for (std::size_t i = 0; i < scales.size(); ++i) {
    html::Line(page, "<td><font color=", kSeries[i].legend_colour, ">", numbers::Plain(scales[i]),
               kSeries[i].unit, "</font></td>");
  }
  html::Line(page, "</tr></table>");
}

void WriteTableHeader(std::string& page) {
  html::Line(page, "<table border=1 rules=all width=\"90%\">");
  html::Caption(page, "By month summary");
  html::Line(page, "<thead>");
  html::Line(page,
             "<tr><th></th><th colspan=4>Daily average</th><th colspan=7>Monthly totals</th></tr>");
  html::Line(page,
             "<tr><th>Month</th><th bgcolor=green>Hits</th><th bgcolor=blue>Files</th>"
             "<th bgcolor=lightblue>Pages</th><th bgcolor=red>KBytes</th>"
             "<th bgcolor=orange>Distinct Visitors</th><th bgcolor=yellow>Visits</th>"
             "<th bgcolor=green>Hits</th><th bgcolor=blue>Files</th>"
             "<th bgcolor=lightblue>Unique Pages</th><th bgcolor=red>KBytes</th>"
             "<th bgcolor=pink>mS</th></tr>");
  html::Line(page, "</thead><tbody>");
}

void WriteRow(std::string& page, const HistoryRow& row) {
  const double days = report::DaysCounted(row.mon, row.yr);
  std::string cells =
      "<tr align=right><td><a href=" + report::LinkTo(report::MonthPageName(row.mon) + ".htm") +
      ">" + platform::MonthAbbreviation(row.mon) + " " + std::to_string(row.yr) + "</a></td>";
  for (const double value :
       {numbers::Round(row.hits / days), numbers::Round(row.files / days),
        numbers::Round(row.pages / days), numbers::Round(row.bytes / (days * 1000)), row.visitors,
        row.visits, row.hits, row.files, row.upages, numbers::Round(numbers::KBytes(row.bytes)),
        numbers::Round(AverageTime(row))}) {
    cells += html::TextCell(numbers::Plain(value));
  }
  html::Line(page, cells, "</tr>");
}

}  // namespace

void WriteLast12Months(std::string& page) {
  WriteOpening(page);
  WriteChart(page);
  WriteTableHeader(page);
  for (int month = 1; month <= 12; ++month) {
    const HistoryRow& row = HistorySlot(month);
    if (row.yr != 0) WriteRow(page, row);
  }
  html::Line(page, "  </tbody></table>");
  report::WriteFooter(page, "");
}

}  // namespace mdlYear
