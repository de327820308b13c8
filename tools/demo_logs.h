// Thirteen months of logs of a small site, for trying the program out.
#ifndef HITWICK_TOOLS_DEMO_LOGS_H_
#define HITWICK_TOOLS_DEMO_LOGS_H_

#include <cstdint>
#include <string>

#include "platform/clock.h"

namespace sample_logs {

// Writes the logs from the first day of the month a year ago up to `now` (UTC), today's file only
// as far as today has come: about 150,000 lines. Days follow the hours of a town in Europe, weeks
// have quiet ends, and the site grows slowly. The same `now` gives the same bytes. Returns the
// number of lines; throws `std::runtime_error` when a file cannot be written.
std::uint64_t WriteDemoLogs(const std::string& folder, const platform::DateTime& now);

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_DEMO_LOGS_H_
