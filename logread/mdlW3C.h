// The log reader: which files belong to a month, their lines, and the records on them.
//
// State of a reading run: the field list of the last "#Fields:" line (never reset, from file to
// file nor from month to month), the zone offset, the date in the name of the file being read, and
// the server's name as the logs give it.
// `ReadMonthLogs` is called by the run driver once a month; the rest serves it and the tests.
#ifndef HITWICK_LOGREAD_MDLW3C_H_
#define HITWICK_LOGREAD_MDLW3C_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "stats/history_row.h"

namespace mdlW3C {

using HistorySink = std::function<void(const stats::HistoryRow&)>;

// Reads all log files of a month (1..12) of the site in use into the month's statistics, keeping
// the records of firstDay..lastDay, closes the visits and hands the month's totals to
// `add_history_row`. Returns early, without that, when the user asked to quit.
void ReadMonthLogs(std::int16_t firstDay, std::int16_t lastDay, std::int16_t month,
                   std::int16_t year, const HistorySink& add_history_row);

// Reads one file. `stem` is the full path less its last six characters (two day digits, ".log"; for
// an archive those before ".gz").
void ReadLogFile(const std::string& path, std::int16_t firstDay, std::int16_t lastDay,
                 std::int16_t month, std::int16_t year, const std::string& stem);

// The value of "s-computername" in the last record that had one.
const std::string& ServerName();

// Forgets the field list and the rest of the state. For tests.
void Reset();

}  // namespace mdlW3C

#endif  // HITWICK_LOGREAD_MDLW3C_H_
