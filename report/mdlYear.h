// The yearly history ("History.txt", "Annual.csv") and the last-12-months page ("index.htm").
//
// State: twelve `HistoryRow` slots by calendar month, filled by `LoadHistory` before a run's first
// month and by the log reader with each finished month, saved after the last; and which of them
// this run has reported. Other runs may work on the same usage folder: a save keeps their rows. The
// page stands in year_page.cpp.
#ifndef HITWICK_REPORT_MDLYEAR_H_
#define HITWICK_REPORT_MDLYEAR_H_

#include <cstdint>
#include <memory>
#include <string>

#include "platform/file_system.h"
#include "stats/history_row.h"

namespace mdlYear {

using stats::HistoryRow;

// The slot of a month (1..12); yr 0 when empty.
const HistoryRow& HistorySlot(int month);

// Empties the slots and reads "History.txt" in the usage folder as far as it is readable.
void LoadHistory();
// Stores the totals of a month that this run has read in the slot of its month if it lies within
// the last twelve months: this year, or last year and later than the current month. Other rows are
// dropped silently.
void AddHistoryRow(const HistoryRow& row);
// Reads "History.txt" again, puts this run's rows in the place of those of their months, and
// replaces the file and, with CSV output on, "Annual.csv"; the folder is locked meanwhile. A file
// that exists and cannot be read is not replaced; one with a malformed line is kept as
// "History.old" first. 0, or 1 when either file could not be written (logged). From then on the
// slots hold the rows of the file.
std::int16_t SaveHistory();
// After a save: takes the rows as they stand in the file now and keeps other runs from saving until
// the end of the scope, so that the page written in it is the newest. Null when there was no save,
// or no lock to be had (logged).
std::unique_ptr<platform::FolderLock> HoldHistory();

// Appends the whole last-12-months page to `page`.
void WriteLast12Months(std::string& page);

}  // namespace mdlYear

#endif  // HITWICK_REPORT_MDLYEAR_H_
