#include "platform/mod_systemInfo.h"

#include <array>
#include <cstring>

namespace mod_systemInfo {

std::int32_t GetOSMajorVersion() { return 6; }

std::string SystemErrorText(std::int32_t code) {
  std::array<char, 160> buffer{};
  // The GNU form, which returns the text and may leave the buffer unused.
  return strerror_r(code, buffer.data(), buffer.size());
}

}  // namespace mod_systemInfo
