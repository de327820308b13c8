// Host names of visitors and of this computer, through the system's resolver.
//
// State: one answer per address for the life of the process, so that a catch-up run asks for each
// address once, and whether this run has given up asking.
// Called by the month page writer for the rows it lists, by both page writers for this computer's
// name, and by the run driver.
#ifndef HITWICK_STATS_MDLDNS_H_
#define HITWICK_STATS_MDLDNS_H_

#include <string>
#include <vector>

namespace mdlDNS {

// Gives the resolver a new chance with every run: also for the addresses that it left without an
// answer.
void BeginRun();

// Asks for the addresses of a page (IPv4 or IPv6) that are not known yet, many at the same time.
// When no address of the page has an answer, now or before, the run gives up: the addresses that
// are left, and those of its later pages, stay without a name, which is said once in the event
// log. Blocks while the resolver works, but for no single address longer than
// `name_lookups::kLongestWait`.
void LookUpPage(const std::vector<std::string>& ips);

// The host name of a client address with leading and trailing blanks removed; empty when there is
// none or the lookup failed. Asks when the address has not been looked up with its page.
std::string HostNameOf(const std::string& ip);

// This computer's name, only characters with codes 45..122 ("-" to "z") kept; "localhost" when it
// cannot be had.
std::string LocalHostName();

// Starts the sockets library; true when that succeeded.
bool StartNetworking();

// Forgets all answers and that a run has given up. For tests.
void Reset();

}  // namespace mdlDNS

#endif  // HITWICK_STATS_MDLDNS_H_
