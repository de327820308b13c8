#include "tools/visitors.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace sample_logs {
namespace {

TEST(ClientAddress, VisitorsHaveDifferentAddressesOfUnownedRanges) {
  std::set<std::string> addresses;
  bool has_range[5] = {};
  const char* const ranges[] = {"192.0.2.", "198.51.100.", "203.0.113.", "10.", "2001:db8:"};
  for (std::uint64_t index = 0; index < 200000; ++index) {
    const std::string address = ClientAddress(index);
    ASSERT_TRUE(addresses.insert(address).second) << address;
    bool known = false;
    for (int i = 0; i < 5; ++i) {
      if (!address.starts_with(ranges[i])) continue;
      known = has_range[i] = true;
    }
    ASSERT_TRUE(known) << address;
  }
  for (const bool has : has_range) EXPECT_TRUE(has);
}

TEST(BrowserAgent, AgentsAreDifferentAndHoldNoBlank) {
  std::set<std::string> agents;
  for (std::uint64_t index = 0; index < 20000; ++index) {
    const std::string agent = BrowserAgent(index);
    ASSERT_TRUE(agents.insert(agent).second) << agent;
    ASSERT_EQ(agent.find_first_of(" #"), std::string::npos) << agent;
  }
}

}  // namespace
}  // namespace sample_logs
