// Daily tasks and an AT service that keep what they are given and answer as the test wants.
#ifndef HITWICK_TESTS_FAKES_FAKE_DAILY_TASKS_H_
#define HITWICK_TESTS_FAKES_FAKE_DAILY_TASKS_H_

#include <cstdint>
#include <vector>

#include "platform/daily_tasks.h"

namespace fakes {

class FakeDailyTasks : public platform::DailyTasks {
 public:
  platform::TaskResult Hitwick_schedule(const platform::DailyTask& task) override {
    scheduled.push_back(task);
    return result;
  }

  std::vector<platform::DailyTask> scheduled;
  platform::TaskResult result;
};

class FakeAtService : public platform::AtService {
 public:
  std::int32_t NetScheduleJobAdd(const platform::AtJob& job) override {
    jobs.push_back(job);
    return number;
  }

  std::vector<platform::AtJob> jobs;
  std::int32_t number = 0;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_DAILY_TASKS_H_
