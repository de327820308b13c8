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
#include <cstddef>
#include <cstring>

#include "platform/mod_systemInfo.h"
#include "platform/service.h"

namespace platform {
namespace {

constexpr std::size_t kLocalNameSize = 256;
constexpr int kSecondsPerTry = 2;
constexpr int kTries = 2;

// The C library waits 5 seconds for each answer: too long for a page of a hundred addresses. What
// the administrator has set lower stays.
void LimitPatience() {
  if (res_init() != 0) return;
  _res.retrans = std::min(_res.retrans, kSecondsPerTry);
  _res.retry = std::min(_res.retry, kTries);
}

// Reads a textual address; the size of what it was stored as, 0 when the text is no address.
socklen_t ParseAddress(const std::string& text, sockaddr_storage* address) {
  if (text.find('\0') != std::string::npos) return 0;
  sockaddr_in ipv4{};
  if (inet_pton(AF_INET, text.c_str(), &ipv4.sin_addr) == 1) {
    ipv4.sin_family = AF_INET;
    std::memcpy(address, &ipv4, sizeof ipv4);
    return sizeof ipv4;
  }
  sockaddr_in6 ipv6{};
  if (inet_pton(AF_INET6, text.c_str(), &ipv6.sin6_addr) == 1) {
    ipv6.sin6_family = AF_INET6;
    std::memcpy(address, &ipv6, sizeof ipv6);
    return sizeof ipv6;
  }
  return 0;
}

class Resolver : public HostNames {
 public:
  bool Start() override { return true; }
  void Stop() override {}

  LookupResult NameOf(const std::string& address, std::string* name, std::string* error) override {
    sockaddr_storage socket_address{};
    const socklen_t size = ParseAddress(address, &socket_address);
    if (size == 0) return LookupResult::kNoName;
    static const bool limited = (LimitPatience(), true);
    static_cast<void>(limited);
    std::array<char, NI_MAXHOST> host{};
    const int result = getnameinfo(reinterpret_cast<const sockaddr*>(&socket_address), size,
                                   host.data(), host.size(), nullptr, 0, NI_NAMEREQD);
    const int system_error = errno;
    switch (result) {
      case 0:
        *name = host.data();
        return LookupResult::kFound;
      case EAI_NONAME:
        return LookupResult::kNoName;
      case EAI_AGAIN:
        return LookupResult::kTimedOut;
      case EAI_SYSTEM:
        *error = mod_systemInfo::GetErrorText(system_error);
        return LookupResult::kFailed;
      default:
        *error = gai_strerror(result);
        return LookupResult::kFailed;
    }
  }

  bool LocalNameBuffer(std::string* buffer) override {
    buffer->assign(kLocalNameSize, '\0');
    return gethostname(buffer->data(), buffer->size()) == 0;
  }
};

}  // namespace

HostNames& TheHostNames() {
  static Resolver resolver;
  return InUse<HostNames>(resolver);
}

}  // namespace platform
