// What the tests of the visits share: a month and visits that have just begun, and the event log.
// Test code only.
#ifndef HITWICK_STATS_VISIT_FIXTURE_H_
#define HITWICK_STATS_VISIT_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/service.h"
#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/tally_keys.h"
#include "tests/fakes/recording_event_log.h"

class VisitTest : public testing::Test {
 protected:
  VisitTest() {
    mdlMonth::InitMonth();
    mdlMonth::Month().RobotsTxtAgents.Clear();
    mdlVisit::InitVisits();
  }
  ~VisitTest() override { mdlMonth::Month().RobotsTxtAgents.Clear(); }

  static void Hit(const std::string& ip, std::int32_t time, const std::string& uri = "/",
                  const std::string& agent = "Mozilla") {
    mdlVisit::TrackVisit(ip, agent, time, uri, 10);
  }

  static void OpenVisitors(int first, int last, std::int32_t time) {
    for (int i = first; i <= last; ++i) Hit("10.0." + std::to_string(i), time);
  }

  static std::int32_t VisitsSoFar() { return mdlVisit::AllVisitLengths()[0].Visits; }

  fakes::RecordingEventLog log_;

 private:
  platform::Replacement<platform::EventLog> replacement_{log_};
};

#endif  // HITWICK_STATS_VISIT_FIXTURE_H_
