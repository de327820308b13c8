// Windows that nobody sees: what start-up asks of them is kept in order.
#ifndef HITWICK_TESTS_FAKES_FAKE_WINDOW_SYSTEM_H_
#define HITWICK_TESTS_FAKES_FAKE_WINDOW_SYSTEM_H_

#include <functional>
#include <string>
#include <vector>

#include "platform/window_system.h"

namespace fakes {

class FakeWindowSystem : public platform::WindowSystem {
 public:
  bool Start(std::string* why_not) override {
    calls.push_back("Start");
    if (!can_start) *why_not = "there is no display";
    return can_start;
  }
  void SelectSite() override {
    calls.push_back("SelectSite");
    if (user_selects) user_selects();
  }
  void ShowConfiguration() override { calls.push_back("ShowConfiguration"); }
  void RunUntilClosed() override {
    calls.push_back("RunUntilClosed");
    if (user_acts) user_acts();
  }
  void Stop() override { calls.push_back("Stop"); }

  bool can_start = true;
  std::function<void()> user_selects;  // in the site selection window
  std::function<void()> user_acts;     // in the configuration window
  std::vector<std::string> calls;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_WINDOW_SYSTEM_H_
