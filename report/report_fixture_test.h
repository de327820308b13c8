// What the tests of the pages share: the fakes behind the services, a month filled hit by hit, and
// a look into the tables of a finished page.
#ifndef HITWICK_REPORT_REPORT_FIXTURE_TEST_H_
#define HITWICK_REPORT_REPORT_FIXTURE_TEST_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "config/mdlConfigs.h"
#include "logread/mdlFilters.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/service.h"
#include "report/mdlGenHTML.h"
#include "report/page_frame.h"
#include "stats/mdlDNS.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/mdlWebPage.h"
#include "tests/fakes/fake_clock.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/fake_host_names.h"
#include "tests/fakes/recording_event_log.h"

class ReportTest : public testing::Test {
 protected:
  ReportTest() {
    mdlConfigs::ResetRun();
    mdlConfigs::Run().SiteName = "INI";
    mdlConfigs::Run().Settings.UsageDir = "usage";
    files_.AddFolder("usage");
    clock_.local = {2026, 3, 15, 10, 20, 30};
    clock_.utc = {2026, 3, 15, 9, 20, 30};
    clock_.bias_minutes = -60;
    mdlFilters::Reset();
    mdlDNS::Reset();
    report::ForgetHostName();
    mdlWebPage::BuildLookupTables();
    mdlMonth::InitMonth();
    mdlMonth::Month().RobotsTxtAgents.Clear();
    mdlVisit::InitVisits();
  }
  ~ReportTest() override {
    mdlMonth::InitMonth();
    mdlVisit::InitVisits();
    mdlFilters::Reset();
    mdlDNS::Reset();
    report::ForgetHostName();
    mdlConfigs::ResetRun();
  }

  mdlConfigs::SiteSettings& Settings() { return mdlConfigs::Run().Settings; }

  static std::string UsagePath(std::string_view name) { return platform::JoinPath("usage", name); }

  // A successful fetch that a test then changes as it needs.
  static stats::LogRecord Fetch(std::string_view uri) {
    stats::LogRecord record;
    record.month = 1;
    record.day = 1;
    record.clientAddress = "192.0.2.1";
    record.method = "GET";
    record.uriStem = uri;
    record.status = "200";
    record.bytesSent = 1000;
    record.timeTaken = 10;
    record.userAgent = "Firefox";
    record.referrer = "-";
    record.userName = "-";
    return record;
  }
  static void Add(stats::LogRecord record) { mdlMonth::AddHit(record); }

  mdlGenHTML::WriteResult Write(std::string_view name, const mdlGenHTML::Period& period,
                                bool on_demand = false) {
    page_.clear();
    return mdlGenHTML::WriteMonthPage(page_, UsagePath(name), period, on_demand);
  }
  // The page of January 2026.
  std::string JanuaryPage() {
    const mdlGenHTML::WriteResult result = Write("Jan", {1, 31, 1, 2026});
    EXPECT_TRUE(result.ok) << result.error;
    return page_;
  }
  std::string Csv(const std::string& table, const std::string& base = "Jan") const {
    return files_.Content(UsagePath(base + "-" + table + ".csv"));
  }

  std::string page_;
  fakes::FakeClock clock_;
  fakes::FakeFileSystem files_;
  fakes::FakeHostNames resolver_;
  fakes::RecordingEventLog log_;

 private:
  platform::Replacement<platform::Clock> use_clock_{clock_};
  platform::Replacement<platform::FileSystem> use_files_{files_};
  platform::Replacement<platform::HostNames> use_resolver_{resolver_};
  platform::Replacement<platform::EventLog> use_log_{log_};
};

namespace page_text {

using Cells = std::vector<std::string>;

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
    lines.push_back(text.substr(start, end - start));
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  return lines;
}

// The lines after the one that holds `caption` up to the end of its table.
inline std::vector<std::string> TableLines(const std::string& page, const std::string& caption) {
  std::vector<std::string> lines;
  bool inside = false;
  for (const std::string& line : Lines(page)) {
    if (inside) {
      if (line.find("</table>") != std::string::npos && line.find("<tr>") != 0) return lines;
      lines.push_back(line);
    }
    if (line.find(caption) != std::string::npos) inside = true;
  }
  return lines;
}

// The content of a row's cells, tags inside them included.
inline Cells CellsOf(const std::string& row) {
  Cells cells;
  std::size_t at = 0;
  while ((at = row.find("<td", at)) != std::string::npos) {
    const std::size_t start = row.find('>', at) + 1;
    const std::size_t end = row.find("</td>", start);
    cells.push_back(row.substr(start, end - start));
    at = end;
  }
  return cells;
}

// The rows of a ranked table: those whose first cell is a rank.
inline std::vector<Cells> RankedRows(const std::string& page, const std::string& caption) {
  std::vector<Cells> rows;
  for (const std::string& line : TableLines(page, caption)) {
    if (line.find("<tr><td align=right>") == 0) rows.push_back(CellsOf(line));
  }
  return rows;
}

inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

inline std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
    ++count;
  }
  return count;
}

}  // namespace page_text

#endif  // HITWICK_REPORT_REPORT_FIXTURE_TEST_H_
