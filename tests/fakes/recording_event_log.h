// An event log that keeps its entries for the test to look at.
#ifndef HITWICK_TESTS_FAKES_RECORDING_EVENT_LOG_H_
#define HITWICK_TESTS_FAKES_RECORDING_EVENT_LOG_H_

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "platform/event_log.h"

namespace fakes {

class RecordingEventLog : public platform::EventLog {
 public:
  struct Entry {
    platform::EventLevel level;
    std::string text;
    bool operator==(const Entry&) const = default;
  };

  void Write(platform::EventLevel level, std::string_view text) override {
    entries.push_back({level, std::string(text)});
  }

  void TellOfFailure(int exit_code) override { failures.push_back(exit_code); }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Entry& entry : entries) texts.push_back(entry.text);
    return texts;
  }
  // True when an entry has exactly this text (and level).
  bool Contains(std::string_view text) const {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const Entry& entry) { return entry.text == text; });
  }
  bool Contains(platform::EventLevel level, std::string_view text) const {
    return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
      return entry.level == level && entry.text == text;
    });
  }
  bool ContainsWarning(std::string_view text) const {
    return Contains(platform::EventLevel::kWarning, text);
  }
  bool ContainsInformation(std::string_view text) const {
    return Contains(platform::EventLevel::kInformation, text);
  }
  // The number of entries that hold `part` anywhere.
  int CountWith(std::string_view part) const {
    return static_cast<int>(std::count_if(entries.begin(), entries.end(), [&](const Entry& entry) {
      return entry.text.find(part) != std::string::npos;
    }));
  }
  void Clear() { entries.clear(); }

  std::vector<Entry> entries;
  std::vector<int> failures;  // exit codes of the runs that were told to have failed
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_RECORDING_EVENT_LOG_H_
