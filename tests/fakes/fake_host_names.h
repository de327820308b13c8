// A resolver that answers from a map and can fail on demand.
#ifndef HITWICK_TESTS_FAKES_FAKE_HOST_NAMES_H_
#define HITWICK_TESTS_FAKES_FAKE_HOST_NAMES_H_

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/host_names.h"

namespace fakes {

class FakeHostNames : public platform::HostNames {
 public:
  bool Start() override {
    ++starts;
    return can_start;
  }
  void Stop() override { ++stops; }

  platform::LookupResult NameOf(const std::string& address, std::string* name,
                                std::string* error) override {
    asked.push_back(address);
    if (timing_out.count(address) != 0) return platform::LookupResult::kTimedOut;
    if (const auto failure = failures.find(address); failure != failures.end()) {
      *error = failure->second;
      return platform::LookupResult::kFailed;
    }
    const auto found = names.find(address);
    if (found == names.end()) return platform::LookupResult::kNoName;
    *name = found->second;
    return platform::LookupResult::kFound;
  }

  bool LocalNameBuffer(std::string* buffer) override {
    if (!has_local_name) return false;
    *buffer = local_name;
    buffer->resize(256, '\0');
    return true;
  }

  std::map<std::string, std::string> names;     // address -> host name
  std::map<std::string, std::string> failures;  // address -> the system's sentence
  std::set<std::string> timing_out;             // addresses that get no answer
  bool can_start = true;
  bool has_local_name = true;
  std::string local_name = "reporter";

  std::vector<std::string> asked;  // every address in order of the calls
  int starts = 0;
  int stops = 0;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_HOST_NAMES_H_
