// Writes log lines into one W3C extended log file a day, as IIS 8 names and lays them out.
#ifndef HITWICK_TOOLS_LOG_WRITER_H_
#define HITWICK_TOOLS_LOG_WRITER_H_

#include <cstdint>
#include <fstream>
#include <string>

namespace sample_logs {

inline const std::string kEmptyField = "-";

// One request. Texts stand as the log holds them, blanks as "+".
struct LogLine {
  std::int64_t time = 0;  // seconds since 1970-01-01, UTC
  std::string method = "GET";
  std::string stem;
  std::string query = kEmptyField;
  std::string user = kEmptyField;
  std::string client;
  std::string agent;
  std::string referrer = kEmptyField;
  std::uint32_t status = 200;
  std::uint32_t substatus = 0;
  std::uint32_t win32_status = 0;
  std::uint64_t bytes_sent = 0;
  std::uint64_t bytes_received = 0;
  std::uint64_t time_taken_ms = 0;
};

inline constexpr std::int64_t kSecondsPerDay = 86400;

class LogWriter {
 public:
  // Creates the folder when it is missing; existing files of the days written are replaced.
  explicit LogWriter(std::string folder);
  ~LogWriter();
  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;

  // Lines come in time order. Throws `std::runtime_error` when a file cannot be written.
  void Write(const LogLine& line);
  // Finishes the last file. Throws like `Write`.
  void Close();

  std::uint64_t lines() const { return lines_; }

 private:
  void StartDay(const LogLine& first);
  void Flush();

  std::string folder_;
  std::string path_;
  std::ofstream file_;
  std::string buffer_;
  std::string date_;
  std::int64_t day_number_ = -1;
  std::uint64_t lines_ = 0;
};

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_LOG_WRITER_H_
