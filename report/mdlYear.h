// The yearly history ("History.txt", "Annual.csv") and the last-12-months page ("index.htm").
//
// State: twelve `HistoryRow` slots by calendar month, filled by `LoadHistory` before a run's first
// month and by the log reader with each finished month, saved after the last. The page stands in
// year_page.cpp.
#ifndef HITWICK_REPORT_MDLYEAR_H_
#define HITWICK_REPORT_MDLYEAR_H_

#include <array>
#include <cstdint>
#include <string>

#include "stats/history_row.h"

namespace mdlYear {

using stats::HistoryRow;

// The slot of a month (1..12); yr 0 when empty.
const HistoryRow& HistorySlot(int month);

// Empties the slots and reads "History.txt" in the usage folder as far as it is readable.
void LoadHistory();
// Stores a month's totals in the slot of its month if it lies within the last twelve months: this
// year, or last year and later than the current month. Other rows are dropped silently.
void AddHistoryRow(const HistoryRow& row);
// Replaces "History.txt" and, with CSV output on, "Annual.csv". A failure is logged.
void SaveHistory();

// Appends the whole last-12-months page to `page`.
void WriteLast12Months(std::string& page);

}  // namespace mdlYear

#endif  // HITWICK_REPORT_MDLYEAR_H_
