// Host names of visitors and of this computer, through the system's resolver.
//
// State: one answer per address for the life of the process, so that a catch-up run asks for each
// address once, and what the page being written has learnt of time-outs.
// Called by the month page writer for the rows it lists, and by both page writers for this
// computer's name.
#ifndef HITWICK_STATS_MDLDNS_H_
#define HITWICK_STATS_MDLDNS_H_

#include <string>

namespace mdlDNS {

// Gives the resolver a new chance with every page: it is asked again for addresses without an
// answer. After a page that it left without answers, one more time-out ends the asking, so that a
// dead name server costs a run of thirteen pages little more than one page.
void BeginPage();

// The host name of a client address (IPv4 or IPv6) with leading and trailing blanks removed; empty
// when there is none. Blocks while the resolver works. After `kTimeoutLimit` consecutive time-outs
// the page's further addresses stay without a name, which is said once in the event log.
std::string HostNameOf(const std::string& ip);
inline constexpr int kTimeoutLimit = 3;

// This computer's name, only characters with codes 45..122 ("-" to "z") kept; "localhost" when it
// cannot be had.
std::string LocalHostName();

// Starts the sockets library; true when that succeeded.
bool StartNetworking();

// Empties the cache and forgets the time-outs. For tests.
void Reset();

}  // namespace mdlDNS

#endif  // HITWICK_STATS_MDLDNS_H_
