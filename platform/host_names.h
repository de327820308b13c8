// The system's resolver and the name of this computer.
//
// Windows: Windows Sockets. Linux: the resolver of the C library, where starting and stopping
// have no counterpart and do nothing. `Start`, `Stop` and `NameOf` may be called from several
// threads at the same time.
#ifndef HITWICK_PLATFORM_HOST_NAMES_H_
#define HITWICK_PLATFORM_HOST_NAMES_H_

#include <chrono>
#include <string>

namespace platform {

// How long one lookup may wait for its answer: two tries of two seconds. Linux holds its resolver
// to that. One that nobody can hold to it (several name servers that keep silent, a resolving
// service, Windows) may stay away for longer, so a caller that cannot wait keeps its own time.
inline constexpr std::chrono::seconds kLookupPatience{4};

enum class LookupResult {
  kFound,
  kNoName,      // an answer without a name: there is none, or a name server has failed
  kNotAddress,  // the text is no address; nobody was asked
  kTimedOut,    // no answer, and all the time that there was has been spent on waiting for it
  kFailed       // any other failure; `error` says which
};

class HostNames {
 public:
  virtual ~HostNames() = default;
  // Starts the sockets library; false when it cannot be started.
  virtual bool Start() = 0;
  // Undoes one `Start`; harmless without one.
  virtual void Stop() = 0;
  // Asks for the name of an IPv4 address, read as `inet_addr` does ("10.1" and "012.0.0.1" are
  // 10.0.0.1), or of a textual IPv6 address; blocks while the resolver works. `name` is set for
  // kFound, `error` (a sentence of the system) for kFailed.
  virtual LookupResult NameOf(const std::string& address, std::string* name,
                              std::string* error) = 0;
  // The bytes that the system leaves in a 256-byte, zero-filled buffer for this computer's name;
  // false when the name cannot be had.
  virtual bool LocalNameBuffer(std::string* buffer) = 0;
};

// The real one is there until the process has ended, also for a thread that still waits in it.
HostNames& TheHostNames();

}  // namespace platform

#endif  // HITWICK_PLATFORM_HOST_NAMES_H_
