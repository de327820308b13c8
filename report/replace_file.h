// Putting a whole file in place of an older one.
//
// No state. Called for the CSV companions and for the yearly history.
#ifndef HITWICK_REPORT_REPLACE_FILE_H_
#define HITWICK_REPORT_REPLACE_FILE_H_

#include <string>
#include <string_view>

namespace report {

// Readers see the old file or the new one, each in full. Returns the system's error code, 0 for
// success; on failure the old file stands.
int ReplaceFile(const std::string& path, std::string_view content);

}  // namespace report

#endif  // HITWICK_REPORT_REPLACE_FILE_H_
