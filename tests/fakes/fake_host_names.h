// A resolver that answers from a map, can fail on demand and be kept from answering.
#ifndef HITWICK_TESTS_FAKES_FAKE_HOST_NAMES_H_
#define HITWICK_TESTS_FAKES_FAKE_HOST_NAMES_H_

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/host_names.h"

namespace fakes {

class FakeHostNames : public platform::HostNames {
 public:
  // Lets go of the threads that still wait here and sees them leave.
  ~FakeHostNames() override {
    Release();
    std::unique_lock<std::mutex> lock(mutex_);
    inside_.erase(std::this_thread::get_id());
    changed_.wait(lock, [this] { return inside_.empty(); });
  }

  bool Start() override {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++starts;
    return can_start;
  }
  void Stop() override {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++stops;
    inside_.erase(std::this_thread::get_id());
    changed_.notify_all();
  }

  platform::LookupResult NameOf(const std::string& address, std::string* name,
                                std::string* error) override {
    std::unique_lock<std::mutex> lock(mutex_);
    const std::optional<std::string> spelt = Spelt(address);
    if (!spelt) return platform::LookupResult::kNotAddress;
    asked.push_back(address);
    inside_.insert(std::this_thread::get_id());
    most_at_once = std::max(most_at_once, inside_.size());
    changed_.notify_all();
    if (hanging.count(*spelt) != 0) changed_.wait(lock, [this] { return released_; });
    changed_.wait_for(lock, std::chrono::seconds(20), [this] { return most_at_once >= gather; });
    return AnswerOf(*spelt, name, error);
  }

  bool LocalNameBuffer(std::string* buffer) override {
    if (!has_local_name) return false;
    *buffer = local_name;
    buffer->resize(256, '\0');
    return true;
  }

  // Ends the hanging of all lookups.
  void Release() {
    const std::lock_guard<std::mutex> lock(mutex_);
    released_ = true;
    changed_.notify_all();
  }
  // Every address asked for so far, sorted: lookups may be made in any order.
  std::vector<std::string> Asked() {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> sorted = asked;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }

  // Addresses are those that `inet_addr` would print: four decimal numbers.
  std::map<std::string, std::string> names;     // address -> host name
  std::map<std::string, std::string> failures;  // address -> the system's sentence
  std::set<std::string> timing_out;             // addresses that get no answer, in no time
  std::set<std::string> hanging;                // addresses that get none before `Release`
  std::size_t gather = 0;                       // lookups that have to meet before any returns
  bool can_start = true;
  bool has_local_name = true;
  std::string local_name = "reporter";

  std::vector<std::string> asked;  // every address in order of the calls
  std::size_t most_at_once = 0;    // lookups that have been here at the same time
  int starts = 0;
  int stops = 0;

 private:
  static constexpr std::size_t kParts = 4;

  // One number of an address: "0x" begins a hexadecimal, "0" an octal one.
  static std::optional<std::uint64_t> Number(const std::string& text) {
    if (text.empty() || text.size() > 12) return std::nullopt;
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const std::string digits = hex              ? "0123456789abcdefABCDEF"
                               : text[0] == '0' ? "01234567"
                                                : "0123456789";
    if (text.find_first_not_of(digits, hex ? 2 : 0) != std::string::npos) return std::nullopt;
    return std::stoull(text, nullptr, hex ? 16 : text[0] == '0' ? 8 : 10);
  }

  // An IPv4 address of one to four numbers, of which the last fills what the others leave.
  static std::optional<std::uint64_t> Ipv4(std::string text) {
    std::uint64_t address = 0;
    for (std::size_t part = 0; part < kParts; ++part) {
      const std::size_t dot = text.find('.');
      const std::optional<std::uint64_t> number = Number(text.substr(0, dot));
      const std::size_t bits = 8 * (kParts - part);
      const std::uint64_t limit = dot == std::string::npos ? std::uint64_t{1} << bits : 256;
      if (!number || *number >= limit) return std::nullopt;
      if (dot == std::string::npos) return address | *number;
      address |= *number << (bits - 8);
      text.erase(0, dot + 1);
    }
    return std::nullopt;
  }

  // The address as the maps spell it; nothing for what is none.
  static std::optional<std::string> Spelt(const std::string& address) {
    if (std::count(address.begin(), address.end(), ':') >= 2 &&
        address.find_first_not_of("0123456789abcdefABCDEF:.") == std::string::npos) {
      return address;
    }
    const std::optional<std::uint64_t> ipv4 = Ipv4(address);
    if (!ipv4 || *ipv4 == 0xFFFFFFFF) return std::nullopt;
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
      text += std::to_string(*ipv4 >> shift & 255) + (shift > 0 ? "." : "");
    }
    return text;
  }

  platform::LookupResult AnswerOf(const std::string& address, std::string* name,
                                  std::string* error) const {
    if (timing_out.count(address) != 0 || hanging.count(address) != 0) {
      return platform::LookupResult::kTimedOut;
    }
    if (const auto failure = failures.find(address); failure != failures.end()) {
      *error = failure->second;
      return platform::LookupResult::kFailed;
    }
    const auto found = names.find(address);
    if (found == names.end()) return platform::LookupResult::kNoName;
    *name = found->second;
    return platform::LookupResult::kFound;
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::set<std::thread::id> inside_;
  bool released_ = false;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_HOST_NAMES_H_
