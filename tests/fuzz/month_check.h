// Compares the month's statistics with the literal ones. Test code only.
#ifndef HITWICK_TESTS_FUZZ_MONTH_CHECK_H_
#define HITWICK_TESTS_FUZZ_MONTH_CHECK_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "tests/fuzz/expect.h"
#include "tests/reference/literal_month.h"

namespace fuzz {

class MonthCheck {
 public:
  // `ranked`: the tables still have their order by count.
  static void Run(const reference::LiteralMonth& literal, bool ranked) {
    CheckTotals(literal);
    CheckSums(literal);
    CheckTables(literal, ranked);
    CheckVisits(literal, ranked);
  }

 private:
  using Tables = mdlMonth::MonthStats;

  static void CheckTotals(const reference::LiteralMonth& literal) {
    const Tables& month = mdlMonth::Month();
    ExpectEqual(month.TotalHits, literal.total_hits, "hits");
    ExpectEqual(month.TotalBytes, literal.total_bytes, "bytes");
    ExpectEqual(month.TotalFiles, literal.total_files, "files");
    ExpectEqual(month.TotalPages, literal.total_pages, "pages");
    ExpectEqual(month.TotalTimeTaken, literal.total_time, "time taken");
    ExpectEqual(month.MaxTimeTaken, literal.longest_time, "longest time taken");
    Expect(month.HostLabel == literal.host_label, "host label", month.HostLabel);
    for (int day = 1; day <= 31; ++day) {
      const auto place = static_cast<std::size_t>(day);
      ExpectEqual(month.DayHits[day], literal.day_hits[place], "hits of a day");
      ExpectEqual(month.DayBytes[day], literal.day_bytes[place], "bytes of a day");
      ExpectEqual(month.DayFailures[day], literal.day_failures[place], "failures of a day");
    }
    for (int hour = 0; hour <= 24; ++hour) {
      const auto place = static_cast<std::size_t>(hour);
      ExpectEqual(month.HourHits[hour], literal.hour_hits[place], "hits of an hour");
      ExpectEqual(month.HourBytes[hour], literal.hour_bytes[place], "bytes of an hour");
    }
  }

  template <class Array>
  static double SumOf(const Array& values, int first, int last) {
    double sum = 0;
    for (int i = first; i <= last; ++i) sum += static_cast<double>(values[i]);
    return sum;
  }

  // Counts are whole numbers far below 2^24, so their sums are exact.
  static void CheckSums(const reference::LiteralMonth& literal) {
    const Tables& month = mdlMonth::Month();
    ExpectEqual(static_cast<std::size_t>(month.TotalHits), literal.Count(reference::Fate::kHit),
                "every line that counts is a hit");
    if (literal.failed_hits != 0) return;
    ExpectEqual(SumOf(month.DayHits, 1, 31), double{month.TotalHits}, "hits by day");
    ExpectEqual(SumOf(month.HourHits, 0, 24), double{month.TotalHits}, "hits by hour");
    ExpectEqual(SumOf(month.DayFiles, 1, 31), double{month.TotalFiles}, "files by day");
    ExpectEqual(SumOf(month.HourFiles, 0, 24), double{month.TotalFiles}, "files by hour");
    ExpectEqual(SumOf(month.DayPages, 1, 31), double{month.TotalPages}, "pages by day");
    ExpectEqual(SumOf(month.HourPages, 0, 24), double{month.TotalPages}, "pages by hour");
  }

  static void CheckTables(const reference::LiteralMonth& literal, bool ranked) {
    Tables& month = mdlMonth::Month();
    const struct {
      mdlMonth::TallyTable& real;
      const reference::TallyTable& literal;
      std::string_view name;
    } tables[] = {{month.SuccessUrls, literal.success_urls, "SuccessUrls"},
                  {month.RobotsTxtAgents, literal.robots_txt_agents, "RobotsTxtAgents"},
                  {month.UserAgents, literal.agents, "UserAgents"},
                  {month.ClientAddresses, literal.addresses, "ClientAddresses"},
                  {month.Methods, literal.methods, "Methods"},
                  {month.Referrers, literal.referrers, "Referrers"},
                  {month.StatusCodes, literal.statuses, "StatusCodes"},
                  {month.Queries, literal.queries, "Queries"},
                  {month.UserNames, literal.users, "UserNames"},
                  {month.Pages, literal.pages, "Pages"},
                  {month.FailedUrls, literal.failed_urls, "FailedUrls"},
                  {month.FailedReferrers, literal.failed_referrers, "FailedReferrers"},
                  {month.FileTypes, literal.file_types, "FileTypes"},
                  {month.UrlResponseTimes, literal.response_times, "UrlResponseTimes"},
                  {month.Visits.AllEntry, literal.visits.all_entry, "AllEntry"},
                  {month.Visits.AllExit, literal.visits.all_exit, "AllExit"},
                  {month.Visits.NonRobotEntry, literal.visits.non_robot_entry, "NonRobotEntry"},
                  {month.Visits.NonRobotExit, literal.visits.non_robot_exit, "NonRobotExit"}};
    for (const auto& [real, expected, name] : tables) CheckTable(real, expected, name, ranked);
  }

  static void CheckTable(mdlMonth::TallyTable& real, const reference::TallyTable& literal,
                         std::string_view name, bool ranked) {
    ExpectEqual(real.Count(), literal.Count(), name);
    for (std::int32_t rank = 1; rank <= literal.Count(); ++rank) {
      const reference::TallyEntry& expected = literal.entries[static_cast<std::size_t>(rank)];
      mdlMonth::TallyEntry entry;
      if (ranked) {
        entry = real.At(rank);
        Expect(entry.Key == expected.Key, name, expected.Key);
      } else {
        Expect(real.Find(expected.Key, &entry), name, expected.Key);
      }
      ExpectEqual(entry.Count, expected.Count, name);
      ExpectEqual(std::bit_cast<std::uint32_t>(entry.Metric),
                  std::bit_cast<std::uint32_t>(expected.Metric), name);
      // What is written into pages and files as it stands.
      Expect(expected.Key.find_first_of("<>\"'\n") == std::string::npos, "no markup in a key",
             expected.Key);
    }
  }

  static void CheckVisits(const reference::LiteralMonth& literal, bool all_closed) {
    ExpectEqual(int{mdlVisit::SlotCount()}, literal.visits.slot_count(), "visit slots");
    if (!all_closed) return;
    CheckBreakdown(mdlVisit::AllVisitLengths(), literal.visits.all_lengths());
    CheckBreakdown(mdlVisit::NonRobotVisitLengths(), literal.visits.non_robot_lengths());
  }

  static void CheckBreakdown(const mdlVisit::Breakdown& real, const reference::Breakdown& literal) {
    for (std::size_t row = 0; row < literal.size(); ++row) {
      ExpectEqual(real[row].Visits, literal[row].Visits, "visits of a band");
      ExpectEqual(real[row].Seconds, literal[row].Seconds, "seconds of a band");
      ExpectEqual(real[row].Fetches, literal[row].Fetches, "fetches of a band");
      ExpectEqual(std::bit_cast<std::uint32_t>(real[row].SecondsSquares),
                  std::bit_cast<std::uint32_t>(literal[row].SecondsSquares), "squares of a band");
    }
  }
};

}  // namespace fuzz

#endif  // HITWICK_TESTS_FUZZ_MONTH_CHECK_H_
