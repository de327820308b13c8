#include "report/usage_sections.h"

#include <string>
#include <string_view>
#include <vector>

#include "config/calendar.h"
#include "report/csv.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/numbers.h"
#include "report/table_row.h"
#include "report/usage.h"

namespace report {
namespace {

using Slots = std::vector<usage::Slot>;

constexpr std::string_view kDailyCsv = "DailyUsage";
constexpr std::string_view kHourlyCsv = "HourlyUsage";
constexpr std::string_view kChart =
    "<table width=\"90%\" border=1 rules=groups frame=box cellpadding=0>";
constexpr std::string_view kTable = "<table width=\"60%\" border=1>";

// One of the bars that every slot gets.
struct Series {
  std::string_view colour;
  usage::Measure measure;
  double full_scale;
};

Series ScaledSeries(std::string_view colour, const Slots& slots, usage::Measure measure) {
  return {.colour = colour,
          .measure = measure,
          .full_scale = numbers::FullScale(usage::Largest(slots, measure))};
}

// Hits, KBytes and response time; the legends name their full scales in this order.
std::vector<Series> CommonSeries(const Slots& slots) {
  return {ScaledSeries("green", slots, usage::Hits), ScaledSeries("red", slots, usage::KBytes),
          ScaledSeries("pink", slots, usage::AverageTime)};
}

// A day's number, blue at weekends. A day that the month does not have takes the colour of the
// date that it runs over to.
std::string DayNumber(const MonthPage& month, int day) {
  const std::string digits = std::to_string(day);
  const int weekday = calendar::Weekday({month.period.year, month.period.month, day});
  const bool weekend = weekday == 0 || weekday == 6;
  return weekend ? "<font color=\"blue\">" + digits + "</font>" : digits;
}

std::string HourNumber(const MonthPage&, int hour) { return std::to_string(hour); }

void WriteFoot(MonthPage& month, const Slots& slots, std::size_t columns,
               std::string (*number_of)(const MonthPage&, int)) {
  html::Line(month.page, "<tfoot><tr align=left><td></td>");
  for (const usage::Slot& slot : slots) {
    html::Line(month.page, "<td colspan=", std::to_string(columns), " align=center><tt><b>",
               slot.number < 10 ? "&nbsp;" : "", number_of(month, slot.number), "</b></tt></td>");
  }
  html::Line(month.page, "</tr></tfoot>");
}

void WriteBars(MonthPage& month, const Slots& slots, const std::vector<Series>& all_series) {
  html::Line(month.page, "<tbody><tr><td></td>");
  for (const usage::Slot& slot : slots) {
    for (const Series& series : all_series) {
      html::BarCell(month.page, numbers::BarHeight(series.measure(slot), series.full_scale),
                    series.colour);
    }
  }
}

// The full scales of the first three series, with their units.
struct Legend {
  std::string hits;
  std::string kbytes;
  std::string time;
};

// The CSV link and the scales that both charts have.
void WriteLegend(MonthPage& month, std::string_view csv_name, const Legend& legend) {
  const std::string link = month.DownloadLink(csv_name);
  if (!link.empty()) html::Line(month.page, link);
  html::Line(month.page, "<table width=\"90%\"><tr><td>100%=</td>");
  html::Line(month.page, "<td><font color=green>", legend.hits, "</font></td>");
  html::Line(month.page, "<td><font color=red>", legend.kbytes, "</font></td>");
  html::Line(month.page, "<td><font color=salmon>", legend.time, "</font></td>");
}

std::string UsageCaption(const MonthPage& month, std::string_view kind) {
  return std::string(kind) + " usage for " + month.host + " for " + month.month_and_year;
}

void WriteDailyChart(MonthPage& month, const Slots& slots) {
  std::vector<Series> all_series = CommonSeries(slots);
  all_series.push_back(
      {.colour = "lightblue", .measure = usage::FailurePercentage, .full_scale = 100});
  html::Line(month.page, "<br>", kChart);
  html::Caption(month.page, "<a name=daily>" + UsageCaption(month, "Daily") + "</a>");
  WriteFoot(month, slots, all_series.size(), DayNumber);
  WriteBars(month, slots, all_series);
  html::Line(month.page, "<td></td></tr></tbody>");
  html::Line(month.page, "</table>");
  WriteLegend(month, kDailyCsv,
              {.hits = numbers::Plain(all_series[0].full_scale) + " Hits",
               .kbytes = numbers::Plain(all_series[1].full_scale) + " KBytes",
               .time = numbers::Plain(all_series[2].full_scale) + " mS"});
  html::Line(month.page, "<td><font color=blue>% failures</font></td>");
  html::Line(month.page, "</tr></table>");
}

void WriteHourlyChart(MonthPage& month, const Slots& slots) {
  const std::vector<Series> all_series = CommonSeries(slots);
  html::Line(month.page, "<hr><br>", kChart);
  html::Caption(month.page, "<a name=hourly>" + UsageCaption(month, "Hourly") + "</a>");
  WriteFoot(month, slots, all_series.size(), HourNumber);
  WriteBars(month, slots, all_series);
  html::Line(month.page, "<td></td></tr>");
  html::Line(month.page, "</tbody></table>");
  WriteLegend(month, kHourlyCsv,
              {.hits = numbers::Tenths(all_series[0].full_scale / month.days) + " Hits/hour",
               .kbytes = numbers::Tenths(all_series[1].full_scale / month.days) + " KBytes/hour",
               .time = numbers::Plain(all_series[2].full_scale) + " mS"});
  html::Line(month.page, "</tr></table>");
}

TableRow StartRow(csv::Table& file, const std::string& number_cell, int number) {
  TableRow row(file, "<tr align=right>");
  row.AddAs(number_cell, std::to_string(number));
  return row;
}

csv::Table WriteDailyTable(MonthPage& month, const Slots& slots) {
  html::Line(month.page, kTable);
  html::Caption(month.page, UsageCaption(month, "Daily"));
  html::Line(month.page, "<tbody>");
  html::Line(month.page,
             "<tr><th>Day</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>"
             "KBytes</th><th bgcolor=pink>mS</th><th bgcolor=lightblue colspan=2>failures</th>");
  csv::Table file({"Day", "Hits", "HitsPct", "KBytes", "KBytesPct", "mS", "Failures", "FailPct"});
  for (const usage::Slot& slot : slots) {
    TableRow row = StartRow(file, DayNumber(month, slot.number), slot.number);
    row.Add(numbers::Plain(slot.hits));
    row.Add(numbers::Share(slot.hits, month.total_hits), "%");
    row.Add(numbers::Rounded(usage::KBytes(slot)));
    row.Add(numbers::Share(slot.bytes, month.total_bytes), "%");
    row.Add(numbers::Rounded(usage::AverageTime(slot)));
    row.Add(numbers::Plain(slot.failures));
    row.Add(numbers::Rounded(usage::FailurePercentage(slot)), "%");
    row.End(month.page);
  }
  html::Line(month.page, "</table>");
  return file;
}

csv::Table WriteHourlyTable(MonthPage& month, const Slots& slots) {
  html::Line(month.page, kTable);
  html::Caption(month.page, UsageCaption(month, "Hourly"));
  html::Line(month.page, "<tbody>");
  html::Line(month.page,
             "<tr><th>Hour</th><th colspan=2 bgcolor=green>Hits/hour</th>"
             "<th colspan=2 bgcolor=red>KBytes</th><th bgcolor=pink>mS</th>");
  csv::Table file({"Hour", "HitsPerHour", "HitsPct", "KBytesPerHour", "KBytesPct", "mS"});
  for (const usage::Slot& slot : slots) {
    TableRow row = StartRow(file, HourNumber(month, slot.number), slot.number);
    row.Add(numbers::Tenths(slot.hits / month.days));
    row.Add(numbers::Share(slot.hits, month.total_hits), "%");
    row.Add(numbers::Tenths(usage::KBytes(slot) / month.days));
    row.Add(numbers::Share(slot.bytes, month.total_bytes), "%");
    row.Add(numbers::Rounded(usage::AverageTime(slot)));
    row.End(month.page);
  }
  html::Line(month.page, html::kTableEnd);
  return file;
}

}  // namespace

int WriteDailyUsage(MonthPage& month) {
  const Slots slots = usage::Days();
  WriteDailyChart(month, slots);
  return month.SaveCsv(kDailyCsv, WriteDailyTable(month, slots));
}

int WriteHourlyUsage(MonthPage& month) {
  const Slots slots = usage::Hours();
  WriteHourlyChart(month, slots);
  return month.SaveCsv(kHourlyCsv, WriteHourlyTable(month, slots));
}

}  // namespace report
