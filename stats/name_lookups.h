// Asks the resolver for the names of many addresses at the same time.
//
// Name lookups are the one thing for which the program uses threads, and this is the only place:
// the threads call the resolver and hand its answers back, everything else (event log, cache,
// pages) is left to the caller's thread. They share nothing with it but the questions of one call,
// which live until the last of them has ended.
//
// Nobody waits for a lookup that goes on for longer than the resolver's patience and a second. Its
// thread is left behind: it ends by itself when the resolver returns, or with the process.
//
// State: the number of threads left behind. Called by the host names of visitors (`mdlDNS`).
#ifndef HITWICK_STATS_NAME_LOOKUPS_H_
#define HITWICK_STATS_NAME_LOOKUPS_H_

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/host_names.h"

namespace name_lookups {

struct Answer {
  platform::LookupResult result = platform::LookupResult::kNoName;
  std::string name = {};   // with kFound
  std::string error = {};  // with kFailed
};

// Lookups that are waited for at the same time, and threads that may be there in all, those left
// behind included.
inline constexpr std::size_t kAtOnce = 32;
inline constexpr std::size_t kMostThreads = 256;

inline constexpr std::chrono::milliseconds kLongestWait =
    platform::kLookupPatience + std::chrono::seconds(1);

// Asks for each of `addresses`; the answers stand in their order. An address without one was not
// asked for: the sockets library did not start, or the asking has ended because a lookup timed out
// before any other was answered (or `answered`, which says that there was an answer before), or
// because the resolver held on to all the threads there may be.
std::vector<std::optional<Answer>> AskAll(const std::vector<std::string>& addresses,
                                          bool answered = false,
                                          std::chrono::milliseconds longest_wait = kLongestWait);

// True for an answer that shows that somebody answers. For this computer's own addresses no name
// server is asked, as a rule.
bool ShowsLife(const std::string& address, const Answer& answer);

}  // namespace name_lookups

#endif  // HITWICK_STATS_NAME_LOOKUPS_H_
