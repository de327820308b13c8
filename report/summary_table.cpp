#include "report/summary_table.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "report/csv.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/numbers.h"
#include "report/usage.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/mdlWebPage.h"

namespace report {
namespace {

constexpr std::string_view kCsvName = "Summary";
constexpr std::string_view kTimeslot = " <small>(timeslot averaged over month)</small>";

// A figure as the page shows it and as the CSV file holds it.
struct Figure {
  std::string page;
  std::string csv;
};

Figure Same(const std::string& number) { return {number, number}; }
// The CSV file keeps the digits that the page rounds away.
Figure Whole(double value) { return {numbers::Rounded(value), numbers::Plain(value)}; }
Figure OneDecimal(double value) { return {numbers::Tenths(value), numbers::Plain(value)}; }

// How the average cell of a row stands to its neighbours: one of its own, one that reaches into
// the next row, or none since that of the row before reaches down.
enum class AverageCell { kOwn, kForTwo, kFromAbove };

struct Label {
  std::string page;
  std::string_view csv;
};

// Writes the rows of the table and the records of its companion together.
class SummaryRows {
 public:
  explicit SummaryRows(MonthPage& month) : month_(month) {}

  void Averaged(std::string_view label, double average, const std::string& total) {
    html::Line(month_.page, kLabelStart, label, "</td>",
               html::NumberCell(numbers::Rounded(average)), html::NumberCell(total), "</tr>");
    file_.Text(label).Number(numbers::Plain(average)).Number(total).EndRecord();
  }

  void Single(std::string_view label, const std::string& value) {
    html::Line(month_.page, kLabelStart, label, "</td><td colspan=2 align=right>", value,
               "</td></tr>");
    file_.Text(label).Number(value).EndRecord();
  }

  void Extreme(const Label& label, AverageCell cell, const Figure& average, const Figure& maximum) {
    std::string cells;
    if (cell == AverageCell::kOwn) cells = html::NumberCell(average.page);
    if (cell == AverageCell::kForTwo) {
      cells = "<td align=right rowspan=2>" + average.page + "</td>";
    }
    html::Line(month_.page, kLabelStart, label.page, "</td>", cells, html::NumberCell(maximum.page),
               "</tr>");
    file_.Text(label.csv).Number(average.csv).Number(maximum.csv).EndRecord();
  }

  // One row per entry: the page's text, and the texts that open the record.
  void Entry(const stats::TallyEntry& entry, std::string_view text,
             const std::vector<std::string_view>& csv_texts) {
    const std::string hits = numbers::Plain(entry.Count);
    const std::string kbytes = numbers::Rounded(numbers::KBytes(entry.Metric));
    html::Line(month_.page, "<tr>", html::TextCell(text), html::NumberCell(hits),
               html::NumberCell(kbytes), "</tr>");
    for (const std::string_view csv_text : csv_texts) file_.Text(csv_text);
    file_.Number(hits).Number(kbytes).EndRecord();
  }

  void Heading(std::string_view row, const std::vector<std::string_view>& csv_texts) {
    html::Line(month_.page, row);
    for (const std::string_view csv_text : csv_texts) file_.Text(csv_text);
    file_.EndRecord();
  }

  const csv::Table& file() const { return file_; }

 private:
  static constexpr std::string_view kLabelStart = "<tr><td align=left width=\"70%\">";

  MonthPage& month_;
  csv::Table file_;
};

void WriteTotals(const MonthPage& month, SummaryRows& rows) {
  const mdlMonth::MonthStats& stats = mdlMonth::Month();
  const double days = month.days;
  const double sessions = mdlVisit::AllVisitLengths()[0].Visits;
  rows.Averaged("Total Hits", month.total_hits / days, numbers::Plain(month.total_hits));
  rows.Averaged("Total Files", stats.TotalFiles / days, numbers::Plain(stats.TotalFiles));
  rows.Averaged("Total Pages", stats.TotalPages / days, numbers::Plain(stats.TotalPages));
  rows.Averaged("Total KBytes", month.total_bytes / (days * 1000),
                numbers::Rounded(numbers::KBytes(month.total_bytes)));
  rows.Single("Ave Response Time mS",
              numbers::Rounded(numbers::Per(stats.TotalTimeTaken, month.total_hits)));
  rows.Single("Total Unique Visitor IP addresses", numbers::Plain(stats.ClientAddresses.Count()));
  rows.Averaged("Total Sessions", sessions / days, numbers::Plain(sessions));
  rows.Single("Max Concurrent Visitor Sessions", numbers::Plain(mdlVisit::SlotCount()));
  rows.Single("Total Unique URLs", numbers::Plain(stats.SuccessUrls.Count()));
  rows.Single("Total Unique Referers", numbers::Plain(stats.Referrers.Count()));
  rows.Single("Total Unique Browser Types", numbers::Plain(stats.UserAgents.Count()));
}

// " [max on 14:00-14:59 on 3-January]" and " [max on 3-January]".
std::string PeakHour(const MonthPage& month, int day, int hour) {
  const std::string digits = std::to_string(hour);
  return " [max on " + digits + ":00-" + digits + ":59 on " + std::to_string(day) + "-" +
         month.month_name + "]";
}

std::string PeakDay(const MonthPage& month, const std::vector<usage::Slot>& slots,
                    usage::Measure measure) {
  return " [max on " + std::to_string(usage::Busiest(slots, measure).number) + "-" +
         month.month_name + "]";
}

// The sums per day and per hour of the day.
struct Sums {
  std::vector<usage::Slot> days = usage::Days();
  std::vector<usage::Slot> hours = usage::Hours();
};

void WriteHitExtremes(const MonthPage& month, const Sums& sums, SummaryRows& rows) {
  const mdlMonth::MonthStats& stats = mdlMonth::Month();
  const Figure hourly = OneDecimal(month.total_hits / (month.days * 24));
  const std::string busiest = numbers::Plain(stats.PeakHourHits);
  rows.Extreme(
      {"Busiest single hour hits" + PeakHour(month, stats.PeakHourHitsDay, stats.PeakHourHitsHour),
       "Busiest single hour hits"},
      AverageCell::kForTwo, hourly, {busiest + ".0", busiest});
  rows.Extreme({"Hits per Hour" + std::string(kTimeslot), "Hits per Hour "},
               AverageCell::kFromAbove, hourly,
               OneDecimal(usage::Largest(sums.hours, usage::Hits) / month.days));
  rows.Extreme({"Hits per Day" + PeakDay(month, sums.days, usage::Hits), "Hits per Day"},
               AverageCell::kOwn, Whole(month.total_hits / month.days),
               Same(numbers::Plain(usage::Largest(sums.days, usage::Hits))));
}

void WriteKByteExtremes(const MonthPage& month, const Sums& sums, SummaryRows& rows) {
  const mdlMonth::MonthStats& stats = mdlMonth::Month();
  const double total = numbers::KBytes(month.total_bytes);
  const Figure hourly = OneDecimal(total / (month.days * 24));
  rows.Extreme({"Busiest single hour KBytes" +
                    PeakHour(month, stats.PeakHourBytesDay, stats.PeakHourBytesHour),
                "Busiest single hour KBytes"},
               AverageCell::kForTwo, hourly,
               Same(numbers::Tenths(numbers::KBytes(stats.PeakHourBytes))));
  rows.Extreme({"KBytes per Hour" + std::string(kTimeslot), "KBytes per Hour"},
               AverageCell::kFromAbove, hourly,
               OneDecimal(usage::Largest(sums.hours, usage::KBytes) / month.days));
  rows.Extreme({"KBytes per Day" + PeakDay(month, sums.days, usage::KBytes), "KBytes per Day"},
               AverageCell::kOwn, Whole(total / month.days),
               Same(numbers::Rounded(usage::Largest(sums.days, usage::KBytes))));
}

// A kind of hits with two rows: files or pages.
struct Fetches {
  double total = 0;
  usage::Measure measure = nullptr;
  Label per_hour;
  std::string_view per_day;
};

void WriteFetchExtremes(const MonthPage& month, const Fetches& fetches, const Sums& sums,
                        SummaryRows& rows) {
  rows.Extreme(fetches.per_hour, AverageCell::kOwn, OneDecimal(fetches.total / (month.days * 24)),
               OneDecimal(usage::Largest(sums.hours, fetches.measure) / month.days));
  rows.Extreme({std::string(fetches.per_day), fetches.per_day}, AverageCell::kOwn,
               Whole(fetches.total / month.days),
               Same(numbers::Plain(usage::Largest(sums.days, fetches.measure))));
}

void WriteTimeExtremes(const MonthPage& month, const Sums& sums, SummaryRows& rows) {
  const mdlMonth::MonthStats& stats = mdlMonth::Month();
  const Figure average =
      Same(numbers::Rounded(numbers::Per(stats.TotalTimeTaken, month.total_hits)));
  const auto largest = [](const std::vector<usage::Slot>& slots) {
    return Same(numbers::Rounded(usage::Largest(slots, usage::AverageTime)));
  };
  const auto row = [&rows](std::string_view label, AverageCell cell, const Figure& mean,
                           const Figure& maximum) {
    rows.Extreme({std::string(label), label}, cell, mean, maximum);
  };
  row("Ave (over hour) Response Time mS", AverageCell::kForTwo, average, largest(sums.hours));
  row("Ave (over day) Response Time mS", AverageCell::kFromAbove, average, largest(sums.days));
  row("Worst individual response time mS", AverageCell::kOwn, {},
      Same(numbers::Plain(stats.MaxTimeTaken)));
}

void WriteExtremes(const MonthPage& month, SummaryRows& rows) {
  const mdlMonth::MonthStats& stats = mdlMonth::Month();
  const Sums sums;
  rows.Heading("<tr><th></th><th>Average</th><th>Max</th></tr>", {"Breakdown", "Average", "Max"});
  WriteHitExtremes(month, sums, rows);
  WriteKByteExtremes(month, sums, rows);
  WriteFetchExtremes(month,
                     {.total = stats.TotalFiles,
                      .measure = usage::Files,
                      .per_hour = {.page = "Files per Hour timeslot" + std::string(kTimeslot),
                                   .csv = "Files per Hour timeslot"},
                      .per_day = "Files per Day"},
                     sums, rows);
  WriteFetchExtremes(month,
                     {.total = stats.TotalPages,
                      .measure = usage::Pages,
                      .per_hour = {.page = "Pages per Hour timeslot" + std::string(kTimeslot),
                                   .csv = "Pages per Hour timeslot "},
                      .per_day = "Pages per Day"},
                     sums, rows);
  WriteTimeExtremes(month, sums, rows);
}

// All return codes, whatever the list size. The page puts the meaning before the code.
void WriteReturnCodes(SummaryRows& rows) {
  constexpr std::string_view kSeparator = " - ";
  stats::TallyTable& codes = mdlMonth::Month().StatusCodes;
  rows.Heading("<tr><th align=left>By return code</th><th>Hits</th><th>K bytes</th></tr>",
               {"By return code", "Meaning", "Count", "K bytes"});
  for (std::int32_t rank = 1; rank <= codes.Count(); ++rank) {
    const stats::TallyEntry entry = codes.At(rank);
    const std::string prefix = mdlWebPage::StatusMeaning(entry.Key);
    std::string_view meaning = prefix;
    if (!meaning.empty()) meaning.remove_suffix(kSeparator.size());
    rows.Entry(entry, prefix + std::string(entry.Key), {entry.Key, meaning});
  }
}

void WriteMethods(SummaryRows& rows) {
  stats::TallyTable& methods = mdlMonth::Month().Methods;
  rows.Heading("<tr><th align=left>By method</th><th>Hits</th><th>K bytes</th></tr>",
               {"method", "count", "K bytes"});
  for (std::int32_t rank = 1; rank <= methods.Count(); ++rank) {
    const stats::TallyEntry entry = methods.At(rank);
    rows.Entry(entry, entry.Key, {entry.Key});
  }
}

}  // namespace

int WriteSummary(MonthPage& month) {
  html::Line(month.page, "<table width=\"80%\" border=1 frame=box>");
  html::Caption(month.page, "Monthly statistics for " + month.month_and_year,
                month.DownloadLink(kCsvName));
  html::Line(month.page,
             "<tr><th align=center> </th><th align=center>Daily Avg</th>"
             "<th align=center>Totals</th></tr>");
  SummaryRows rows(month);
  WriteTotals(month, rows);
  WriteExtremes(month, rows);
  WriteReturnCodes(rows);
  WriteMethods(rows);
  html::Line(month.page, "</table><hr><p>");
  return month.SaveCsv(kCsvName, rows.file());
}

}  // namespace report
