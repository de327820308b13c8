// Opening a log file, archived or not; what is read of it is counted where somebody watches.
//
// State: how many bytes of the month have been read, and how many there are. Called by the log
// reader.
#ifndef HITWICK_LOGREAD_LOG_INPUT_H_
#define HITWICK_LOGREAD_LOG_INPUT_H_

#include <memory>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace log_input {

// A month begins whose logs are these files of the folder.
void BeginMonth(const std::string& folder, const std::vector<std::string>& names);

// Opens a log or an archive of one. Null with `*error` set when it cannot be opened.
std::unique_ptr<platform::InputFile> Open(const std::string& path, int* error);

}  // namespace log_input

#endif  // HITWICK_LOGREAD_LOG_INPUT_H_
