#include "platform/host_names.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <resolv.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>

#include "platform/mod_systemInfo.h"
#include "platform/service.h"

namespace platform {
namespace {

constexpr std::size_t kLocalNameSize = 256;
constexpr int kSecondsPerTry = 2;
constexpr int kTries = 2;
static_assert(std::chrono::seconds(kSecondsPerTry * kTries) == kLookupPatience);

using Clock = std::chrono::steady_clock;

// Limits the waiting of the calling thread's resolver, and returns the time after which it gives
// up at the earliest. The C library waits 5 seconds for each answer: too long for a page of a
// hundred addresses. What the administrator has set lower stays.
Clock::duration LimitPatience() {
  if (res_init() != 0) return kLookupPatience;
  _res.retrans = std::min(_res.retrans, kSecondsPerTry);
  _res.retry = std::min(_res.retry, kTries);
  return std::chrono::seconds(_res.retrans * _res.retry);
}

// Reads a textual address; the size of what it was stored as, 0 when the text is no address.
socklen_t ParseAddress(const std::string& text, sockaddr_storage* address) {
  if (text.find('\0') != std::string::npos) return 0;
  sockaddr_in6 ipv6{};
  if (inet_pton(AF_INET6, text.c_str(), &ipv6.sin6_addr) == 1) {
    ipv6.sin6_family = AF_INET6;
    std::memcpy(address, &ipv6, sizeof ipv6);
    return sizeof ipv6;
  }
  sockaddr_in ipv4{};
  ipv4.sin_addr.s_addr = inet_addr(text.c_str());
  if (ipv4.sin_addr.s_addr == INADDR_NONE) return 0;
  ipv4.sin_family = AF_INET;
  std::memcpy(address, &ipv4, sizeof ipv4);
  return sizeof ipv4;
}

// What a failure of `getnameinfo` means. A name server that cannot be reached and one that reports
// a failure of its own give the same code: only the time that went by tells them apart.
LookupResult ResultOfFailure(int code, int system_error, bool waited, std::string* error) {
  switch (code) {
    case EAI_NONAME:
      return LookupResult::kNoName;
    case EAI_AGAIN:
      return waited ? LookupResult::kTimedOut : LookupResult::kNoName;
    case EAI_SYSTEM:
      *error = mod_systemInfo::GetErrorText(system_error);
      return LookupResult::kFailed;
    default:
      *error = gai_strerror(code);
      return LookupResult::kFailed;
  }
}

class Resolver : public HostNames {
 public:
  bool Start() override { return true; }
  void Stop() override {}

  LookupResult NameOf(const std::string& address, std::string* name, std::string* error) override {
    sockaddr_storage socket_address{};
    const socklen_t size = ParseAddress(address, &socket_address);
    if (size == 0) return LookupResult::kNotAddress;
    // The C library keeps a resolver for each thread.
    thread_local const Clock::duration patience = LimitPatience();
    const Clock::time_point begin = Clock::now();
    std::array<char, NI_MAXHOST> host{};
    const int code = getnameinfo(reinterpret_cast<const sockaddr*>(&socket_address), size,
                                 host.data(), host.size(), nullptr, 0, NI_NAMEREQD);
    const int system_error = errno;
    if (code != 0) {
      // A tenth less, for clocks that are not quite of one mind. Without patience nobody is asked.
      const bool waited =
          patience > Clock::duration::zero() && Clock::now() - begin >= patience * 9 / 10;
      return ResultOfFailure(code, system_error, waited, error);
    }
    *name = host.data();
    return LookupResult::kFound;
  }

  bool LocalNameBuffer(std::string* buffer) override {
    buffer->assign(kLocalNameSize, '\0');
    return gethostname(buffer->data(), buffer->size()) == 0;
  }
};

}  // namespace

HostNames& TheHostNames() {
  // Never destroyed: a lookup that is no longer waited for may still be under way at the end.
  static Resolver& resolver = *new Resolver;
  return InUse<HostNames>(resolver);
}

}  // namespace platform
