// Who visits: client addresses, browsers and robots. No address belongs to anyone: they come from
// the ranges set aside for documentation and for private networks.
#ifndef HITWICK_TOOLS_VISITORS_H_
#define HITWICK_TOOLS_VISITORS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace sample_logs {

// The address of visitor number `index` (below 2^24): two IPv4 addresses to one IPv6 address,
// all different.
std::string ClientAddress(std::uint64_t index);

// Browser number `index`; small numbers are the common ones, all are different.
std::string BrowserAgent(std::uint64_t index);

struct Robot {
  std::string agent;
  std::string address;
  unsigned crawls_per_week;
  unsigned pages_per_crawl;
};
const std::vector<Robot>& Robots();

// A program that looks for holes, with the URLs that it tries.
const std::string& ScannerAgent();
const std::vector<std::string>& ScannedUrls();

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_VISITORS_H_
