// One month of logs of any size, for measuring the program: how many lines, how many different
// keys, how many visits open at once.
#ifndef HITWICK_TOOLS_BENCH_LOGS_H_
#define HITWICK_TOOLS_BENCH_LOGS_H_

#include <cstdint>
#include <string>

namespace sample_logs {

struct BenchPlan {
  std::uint64_t lines = 0;
  // Different URLs, visitors (client addresses) and user agents. URLs and visitors come by Zipf's
  // law, but each at least once when there are as many lines (visits) as that; so logs of more
  // lines have the same keys. A visitor keeps its agent.
  std::uint64_t urls = 50000;
  std::uint64_t visitors = 200000;
  std::uint64_t agents = 5000;
  bool distinct_urls = false;  // a URL of its own for every line
  // About how many visits are open at once, counting a visit for 1210 seconds after its last hit.
  // 0: as many as hits spread over the whole month give. A number above that squeezes the lines
  // into the first days of the month, one below makes visits longer.
  std::uint64_t open_visits = 0;
  int year = 2026;
  int month = 1;
  std::uint64_t seed = 1;
};

// Throws `std::runtime_error` when a file cannot be written.
void WriteBenchLogs(const std::string& folder, const BenchPlan& plan);

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_BENCH_LOGS_H_
