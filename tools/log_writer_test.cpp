#include "tools/log_writer.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>

#include "tests/fakes/temp_dir.h"
#include "tools/logs_for_test.h"

namespace sample_logs {
namespace {

constexpr std::int64_t kNewYear2026 = 1767225600;

LogLine Line(std::int64_t time) {
  LogLine line;
  line.time = time;
  line.stem = "/a.htm";
  line.client = "192.0.2.1";
  line.agent = "Lynx/2.8";
  line.bytes_sent = 1234;
  line.bytes_received = 56;
  line.time_taken_ms = 7;
  return line;
}

TEST(LogWriter, FileHasHeaderAndLinesAsIisWritesThem) {
  const fakes::ScopedTempDir folder;
  LogWriter writer(folder.path());
  writer.Write(Line(kNewYear2026 + 5 * 3600 + 7 * 60 + 9));
  writer.Close();
  EXPECT_EQ(ReadFolder(folder.path())["u_ex260101.log"],
            "#Software: Microsoft Internet Information Services 8.5\r\n"
            "#Version: 1.0\r\n"
            "#Date: 2026-01-01 05:07:09\r\n"
            "#Fields: date time s-ip cs-method cs-uri-stem cs-uri-query s-port cs-username c-ip "
            "cs(User-Agent) cs(Referer) sc-status sc-substatus sc-win32-status sc-bytes cs-bytes "
            "time-taken\r\n"
            "2026-01-01 05:07:09 10.0.0.80 GET /a.htm - 80 - 192.0.2.1 Lynx/2.8 - 200 0 0 1234 56 "
            "7\r\n");
}

TEST(LogWriter, EachDayHasAFileOfItsOwn) {
  const fakes::ScopedTempDir folder;
  LogWriter writer(folder.path());
  writer.Write(Line(kNewYear2026 - 1));
  writer.Write(Line(kNewYear2026));
  writer.Write(Line(kNewYear2026 + kSecondsPerDay));
  writer.Close();
  const auto files = ReadFolder(folder.path());
  EXPECT_EQ(files.size(), 3U);
  EXPECT_EQ(files.count("u_ex251231.log"), 1U);
  EXPECT_EQ(files.count("u_ex260102.log"), 1U);
  EXPECT_EQ(writer.lines(), 3U);
}

TEST(LogWriter, FileThatCannotBeWrittenIsAnError) {
  const fakes::ScopedTempDir folder;
  std::filesystem::create_directory(folder / "u_ex260101.log");
  LogWriter writer(folder.path());
  EXPECT_THROW(writer.Write(Line(kNewYear2026)), std::runtime_error);
}

}  // namespace
}  // namespace sample_logs
