// One ranked table of the month page with its CSV companion, described by its texts and columns.
//
// No state. Called for every table that lists the entries of a single tally.
#ifndef HITWICK_REPORT_RANKED_TABLE_H_
#define HITWICK_REPORT_RANKED_TABLE_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "report/html.h"
#include "report/month_page.h"
#include "stats/tally.h"

namespace report {

// The figures between rank and key.
enum class Figures {
  kHits,           // hits
  kHitsAndShare,   // hits, share of the month's hits
  kSiteHits,       // the same for a tally whose metric is the hits
  kHitsAndTime,    // hits, mean time (the metric)
  kHitsAndKBytes,  // hits, KBytes
  kTraffic         // hits, share, KBytes, share of the month's bytes
};

// The key of a row: its cells on the page and its text fields in the CSV file.
struct RowKey {
  std::string cells;
  std::vector<std::string_view> texts;
};

struct RankedTable {
  std::string_view opening = html::kBlockWide;
  // The caption: what stands before and after month and year.
  std::string_view caption;
  std::string_view caption_end;
  std::string_view header;
  Figures figures = Figures::kHits;
  std::function<RowKey(const stats::TallyEntry&)> key;

  std::string_view csv_name = {};  // empty: no companion
  std::vector<std::string_view> csv_columns = {};
  bool csv_key_first = false;  // key and figures without the rank, not rank, figures and key
};

// A key that is the tally's text, in a cell made of it.
template <auto MakeCell>
RowKey KeyAs(const stats::TallyEntry& entry) {
  return {MakeCell(entry.Key), {entry.Key}};
}

// Lists the first rows of `table` in its present order. Returns an error code.
int WriteRankedTable(MonthPage& month, stats::TallyTable& table, const RankedTable& description);

}  // namespace report

#endif  // HITWICK_REPORT_RANKED_TABLE_H_
