// Reads a folder of logs back for the tests of the sample logs.
#ifndef HITWICK_TOOLS_LOGS_FOR_TEST_H_
#define HITWICK_TOOLS_LOGS_FOR_TEST_H_

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace sample_logs {

// The bytes of each file by its name.
inline std::map<std::string, std::string> ReadFolder(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    files[entry.path().filename().string()] = bytes.str();
  }
  return files;
}

// The fields of one line, in the order of the "#Fields:" line.
using Fields = std::vector<std::string>;
enum FieldIndex { kDate = 0, kTime = 1, kStem = 4, kClient = 8, kAgent = 9, kReferrer = 10 };

// All lines but the headers, in the files' order.
inline std::vector<Fields> ReadLines(const std::map<std::string, std::string>& files) {
  std::vector<Fields> lines;
  for (const auto& [name, bytes] : files) {
    std::istringstream text(bytes);
    for (std::string line; std::getline(text, line);) {
      if (line.front() == '#') continue;
      std::istringstream tokens(line);
      Fields& fields = lines.emplace_back();
      for (std::string token; tokens >> token;) fields.push_back(token);
    }
  }
  return lines;
}

// Date and time as one text that orders as time does.
inline std::string Moment(const Fields& line) { return line[kDate] + " " + line[kTime]; }

// True when each line has all its fields and none is earlier than the one before it.
inline bool AreCompleteAndInTimeOrder(const std::vector<Fields>& lines) {
  std::string last;
  for (const Fields& line : lines) {
    if (line.size() != 17 || Moment(line) < last) return false;
    last = Moment(line);
  }
  return true;
}

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_LOGS_FOR_TEST_H_
