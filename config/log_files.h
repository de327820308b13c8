// Which log files a folder holds: those as the web server writes them, and for a log that is not
// there any more its archive, which has the same name and ".gz" behind it.
//
// State: whether it has been said that this build cannot read archives. Called by the settings,
// which look whether there are logs at all, and by the log reader.
#ifndef HITWICK_CONFIG_LOG_FILES_H_
#define HITWICK_CONFIG_LOG_FILES_H_

#include <string>
#include <string_view>
#include <vector>

namespace log_files {

// The names of the logs whose names begin with `stem`, in the order of their plain names and each
// once. A build that cannot read archives warns once that there are any, and leaves them out.
std::vector<std::string> List(const std::string& folder, std::string_view stem);

bool IsArchive(std::string_view name);
// The name that the log had before it was archived.
std::string_view PlainName(std::string_view name);

// Forgets what has been said. For tests.
void Reset();

}  // namespace log_files

#endif  // HITWICK_CONFIG_LOG_FILES_H_
