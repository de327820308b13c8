// Makes sample logs: `demo` for trying the program out, `bench` for measuring it.

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "tools/bench_logs.h"
#include "tools/demo_logs.h"

namespace {

using sample_logs::BenchPlan;

constexpr char kUsage[] =
    "usage: sample_logs demo FOLDER\n"
    "       sample_logs bench FOLDER --lines N [--urls N] [--visitors N] [--agents N]\n"
    "                   [--open-visits N] [--month YYYY-MM] [--seed N] [--distinct-urls]\n"
    "\n"
    "demo   thirteen months of logs of a small site, ending now: about 150,000 lines\n"
    "bench  one month of N lines (about 240 bytes each)\n"
    "       --urls         different URLs, by Zipf's law                      (50000)\n"
    "       --visitors     different client addresses, by Zipf's law         (200000)\n"
    "       --agents       different user agents                               (5000)\n"
    "       --open-visits  visits open at once              (what the month's lines give)\n"
    "       --month        the month that is logged                         (2026-01)\n"
    "       --seed         another number makes other logs                         (1)\n"
    "       --distinct-urls  a URL of its own for every line\n";

// The numbers that a plan can hold: the addresses of the private range end there.
constexpr std::uint64_t kMaxVisitors = 1 << 24;
constexpr std::uint64_t kMaxKeys = 100'000'000;

std::optional<std::uint64_t> Number(std::string_view text) {
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const std::from_chars_result read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

bool ReadMonth(std::string_view text, BenchPlan* plan) {
  if (text.size() != 7 || text[4] != '-') return false;
  const auto year = Number(text.substr(0, 4));
  const auto month = Number(text.substr(5));
  if (!year || !month || *year < 1970 || *month < 1 || *month > 12) return false;
  plan->year = static_cast<int>(*year);
  plan->month = static_cast<int>(*month);
  return true;
}

bool ReadOption(std::string_view name, std::string_view value, BenchPlan* plan) {
  if (name == "--month") return ReadMonth(value, plan);
  const std::map<std::string_view, std::uint64_t*> numbers = {
      {"--lines", &plan->lines},   {"--urls", &plan->urls}, {"--visitors", &plan->visitors},
      {"--agents", &plan->agents}, {"--seed", &plan->seed}, {"--open-visits", &plan->open_visits}};
  const auto number = numbers.find(name);
  const auto parsed = Number(value);
  if (number == numbers.end() || !parsed) return false;
  *number->second = *parsed;
  return true;
}

bool IsPossible(const BenchPlan& plan) {
  const auto in_range = [](std::uint64_t keys) { return keys >= 1 && keys <= kMaxKeys; };
  return plan.lines >= 1 && in_range(plan.urls) && in_range(plan.agents) && plan.visitors >= 1 &&
         plan.visitors <= kMaxVisitors && plan.open_visits <= kMaxKeys &&
         (!plan.distinct_urls || plan.lines <= kMaxKeys);
}

std::optional<BenchPlan> ReadPlan(const std::vector<std::string>& arguments) {
  BenchPlan plan;
  for (std::size_t i = 2; i < arguments.size(); ++i) {
    if (arguments[i] == "--distinct-urls") {
      plan.distinct_urls = true;
    } else if (i + 1 == arguments.size() || !ReadOption(arguments[i], arguments[i + 1], &plan)) {
      return std::nullopt;
    } else {
      ++i;
    }
  }
  return IsPossible(plan) ? std::optional(plan) : std::nullopt;
}

int Usage() {
  std::fputs(kUsage, stderr);
  return 2;
}

int Run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 2 && arguments[0] == "demo") {
    const std::uint64_t lines =
        sample_logs::WriteDemoLogs(arguments[1], platform::TheClock().UtcNow());
    std::printf("%llu lines\n", static_cast<unsigned long long>(lines));
    return 0;
  }
  if (arguments.size() < 2 || arguments[0] != "bench") return Usage();
  const std::optional<BenchPlan> plan = ReadPlan(arguments);
  if (!plan) return Usage();
  sample_logs::WriteBenchLogs(arguments[1], *plan);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "sample_logs: %s\n", error.what());
    return 1;
  }
}
