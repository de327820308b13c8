// The system's resolver and the name of this computer.
//
// Windows: Windows Sockets. Linux: the resolver of the C library, where starting and stopping
// have no counterpart and do nothing.
#ifndef HITWICK_PLATFORM_HOST_NAMES_H_
#define HITWICK_PLATFORM_HOST_NAMES_H_

#include <string>

namespace platform {

enum class LookupResult {
  kFound,
  kNoName,    // the resolver answered: this address has no name (or is no address at all)
  kTimedOut,  // no answer within the resolver's patience
  kFailed     // any other failure; `error` says which
};

class HostNames {
 public:
  virtual ~HostNames() = default;
  // Starts the sockets library; false when it cannot be started.
  virtual bool Start() = 0;
  // Undoes one `Start`; harmless without one.
  virtual void Stop() = 0;
  // Asks for the name of a dotted IPv4 or a textual IPv6 address; blocks while the resolver
  // works. `name` is set for kFound, `error` (a sentence of the system) for kFailed.
  virtual LookupResult NameOf(const std::string& address, std::string* name,
                              std::string* error) = 0;
  // The bytes that the system leaves in a 256-byte, zero-filled buffer for this computer's name;
  // false when the name cannot be had.
  virtual bool LocalNameBuffer(std::string* buffer) = 0;
};

HostNames& TheHostNames();

}  // namespace platform

#endif  // HITWICK_PLATFORM_HOST_NAMES_H_
