// What the tests of the month's statistics share: a month that has just begun, hits to add to it,
// and the event log. Test code only.
#ifndef HITWICK_STATS_MONTH_FIXTURE_H_
#define HITWICK_STATS_MONTH_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/service.h"
#include "stats/log_record.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/tally_keys.h"
#include "tests/fakes/recording_event_log.h"

class MonthTest : public testing::Test {
 protected:
  using KeyList = std::vector<std::string>;

  // A hit of which every field has something to count.
  static stats::LogRecord FullRecord() {
    stats::LogRecord record;
    record.month = 5;
    record.day = 7;
    record.hour = 13;
    record.minute = 20;
    record.clientAddress = "10.0.0.1";
    record.method = "GET";
    record.uriStem = "/index.htm";
    record.searchKeywords = "cheap flights";
    record.status = "200";
    record.bytesSent = 1000;
    record.bytesReceived = 300;
    record.timeTaken = 250;
    record.userAgent = "Mozilla";
    record.referrer = "http://example.com/";
    record.hostLabel = " [www.example.com] ";
    record.userName = "alice";
    return record;
  }

  MonthTest() {
    mdlMonth::InitMonth();
    mdlMonth::Month().RobotsTxtAgents.Clear();
    mdlVisit::InitVisits();
  }
  ~MonthTest() override {
    mdlMonth::InitMonth();
    mdlMonth::Month().RobotsTxtAgents.Clear();
  }

  static void Add(stats::LogRecord record) { mdlMonth::AddHit(record); }
  static void AddAt(std::int16_t day, std::int16_t hour, std::int32_t bytes = 0) {
    stats::LogRecord record;
    record.day = day;
    record.hour = hour;
    record.bytesSent = bytes;
    mdlMonth::AddHit(record);
  }
  static void AddUri(std::string_view uri, std::string_view status = "200") {
    stats::LogRecord record = FullRecord();
    record.uriStem = uri;
    record.status = status;
    mdlMonth::AddHit(record);
  }

  fakes::RecordingEventLog log_;

 private:
  platform::Replacement<platform::EventLog> replacement_{log_};
};

#endif  // HITWICK_STATS_MONTH_FIXTURE_H_
