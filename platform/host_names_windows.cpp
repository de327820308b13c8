#include "platform/host_names.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <array>
#include <chrono>

#include "platform/mod_systemInfo.h"
#include "platform/service.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

// What a failure means. The resolver's failures have the same numbers in both of its interfaces,
// and those of a name server that keeps silent, of one that has failed and of an address without
// a name are mixed up: the time that went by decides.
LookupResult ResultOfFailure(int code, Clock::time_point begin, std::string* error) {
  if (Clock::now() - begin >= kLookupPatience) return LookupResult::kTimedOut;
  switch (code) {
    case WSATRY_AGAIN:
    case WSAHOST_NOT_FOUND:
    case WSANO_DATA:
      return LookupResult::kNoName;
    default:
      *error = mod_systemInfo::GetErrorText(code);
      return LookupResult::kFailed;
  }
}

LookupResult NameOfIpv4(const std::string& address, std::string* name, std::string* error) {
  const unsigned long binary = inet_addr(address.c_str());
  if (binary == INADDR_NONE) return LookupResult::kNotAddress;
  const Clock::time_point begin = Clock::now();
  const hostent* host = gethostbyaddr(reinterpret_cast<const char*>(&binary), 4, AF_INET);
  if (host == nullptr) return ResultOfFailure(WSAGetLastError(), begin, error);
  *name = host->h_name;
  return LookupResult::kFound;
}

LookupResult NameOfIpv6(const std::string& address, std::string* name, std::string* error) {
  sockaddr_in6 binary = {};
  binary.sin6_family = AF_INET6;
  if (inet_pton(AF_INET6, address.c_str(), &binary.sin6_addr) != 1) {
    return LookupResult::kNotAddress;
  }
  const Clock::time_point begin = Clock::now();
  std::array<char, NI_MAXHOST> host = {};
  const int code =
      getnameinfo(reinterpret_cast<const sockaddr*>(&binary), sizeof binary, host.data(),
                  static_cast<DWORD>(host.size()), nullptr, 0, NI_NAMEREQD);
  if (code != 0) return ResultOfFailure(code, begin, error);
  *name = host.data();
  return LookupResult::kFound;
}

class WindowsSockets : public HostNames {
 public:
  bool Start() override {
    WSADATA details = {};
    return WSAStartup(MAKEWORD(2, 2), &details) == 0;
  }

  void Stop() override { WSACleanup(); }

  LookupResult NameOf(const std::string& address, std::string* name, std::string* error) override {
    // The system calls would take what stands before a zero for the whole text.
    if (address.find('\0') != std::string::npos) return LookupResult::kNotAddress;
    const bool ipv6 = address.find(':') != std::string::npos;
    return ipv6 ? NameOfIpv6(address, name, error) : NameOfIpv4(address, name, error);
  }

  bool LocalNameBuffer(std::string* buffer) override {
    constexpr std::size_t kSize = 256;
    buffer->assign(kSize, '\0');
    return gethostname(buffer->data(), static_cast<int>(kSize)) == 0;
  }
};

}  // namespace

HostNames& TheHostNames() {
  // Never destroyed: a lookup that is no longer waited for may still be under way at the end.
  static WindowsSockets& sockets = *new WindowsSockets;
  return InUse<HostNames>(sockets);
}

}  // namespace platform
