// What the tests of the log reader share: a log folder in memory, a fixed zone, and the month's
// statistics as the outcome. Test code only.
#ifndef HITWICK_LOGREAD_READER_FIXTURE_H_
#define HITWICK_LOGREAD_READER_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/mdlConfigs.h"
#include "logread/mdlFilters.h"
#include "logread/mdlW3C.h"
#include "platform/file_system.h"
#include "platform/service.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/tally_keys.h"
#include "tests/fakes/fake_clock.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/recording_event_log.h"

class ReaderTest : public testing::Test {
 protected:
  using List = std::vector<std::string>;

  ReaderTest() {
    mdlConfigs::ResetRun();
    mdlFilters::Reset();
    mdlW3C::Reset();
    mdlMonth::Month().RobotsTxtAgents.Clear();
    mdlConfigs::Run().Settings.LogFormat = "W3C";
    mdlConfigs::Run().Settings.LogDir = "logs";
  }
  ~ReaderTest() override {
    mdlConfigs::ResetRun();
    mdlFilters::Reset();
    mdlW3C::Reset();
    mdlMonth::Month().RobotsTxtAgents.Clear();
  }

  static mdlMonth::MonthStats& Month() { return mdlMonth::Month(); }
  static mdlConfigs::RunState& State() { return mdlConfigs::Run(); }

  static std::string PathOf(std::string_view name) { return platform::JoinPath("logs", name); }
  void AddLog(std::string_view name, std::string_view content) {
    files_.AddFile(PathOf(name), content);
  }
  // A log whose lines are the given ones.
  void AddLines(std::string_view name, const List& lines) {
    std::string content;
    for (const std::string& line : lines) content += line + "\r\n";
    AddLog(name, content);
  }

  void Read(int month, int year, int first_day = 1, int last_day = 31) {
    mdlW3C::ReadMonthLogs(static_cast<std::int16_t>(first_day), static_cast<std::int16_t>(last_day),
                          static_cast<std::int16_t>(month), static_cast<std::int16_t>(year),
                          [this](const stats::HistoryRow& row) { rows_.push_back(row); });
  }
  // Reads January 2007 from one file of the 15th.
  void ReadLines(const List& lines) {
    AddLines("ex070115.log", lines);
    Read(1, 2007);
  }

  // The names of the files opened, in order.
  List Opened() const {
    List names;
    for (const std::string& path : files_.opened) names.push_back(path.substr(5));
    return names;
  }

  static List Urls() { return stats::Keys(Month().SuccessUrls); }
  // The days or hours that have hits.
  static std::vector<int> DaysWithHits() {
    std::vector<int> days;
    for (int day = 1; day <= 31; ++day) {
      if (Month().DayHits[day] > 0) days.push_back(day);
    }
    return days;
  }
  static std::vector<int> HoursWithHits() {
    std::vector<int> hours;
    for (int hour = 0; hour <= 24; ++hour) {
      if (Month().HourHits[hour] > 0) hours.push_back(hour);
    }
    return hours;
  }

  fakes::FakeFileSystem files_;
  fakes::FakeClock clock_;
  fakes::RecordingEventLog log_;
  std::vector<stats::HistoryRow> rows_;

 private:
  platform::Replacement<platform::FileSystem> file_replacement_{files_};
  platform::Replacement<platform::Clock> clock_replacement_{clock_};
  platform::Replacement<platform::EventLog> log_replacement_{log_};
};

#endif  // HITWICK_LOGREAD_READER_FIXTURE_H_
