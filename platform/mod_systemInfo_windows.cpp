#include <windows.h>

#include <array>
#include <sstream>

#include "platform/message_box.h"
#include "platform/mod_systemInfo.h"

namespace mod_systemInfo {
namespace {

// The form of the version record that also tells the service pack.
constexpr DWORD kVersionRecordSize = 156;
static_assert(sizeof(OSVERSIONINFOEXA) == kVersionRecordSize);

struct VersionRecord {
  bool queried = false;
  OSVERSIONINFOEXA record = {};
};

VersionRecord version;

// What is said of a code that the system itself cannot put into words. `error` is the reason of
// its refusal.
std::string DescribeRefusal(DWORD error) {
  if (BoxesAllowed()) {
    std::ostringstream box;
    box << "An error occurred with the FormatMessage API function call.\r\nError: " << error
        << " Hex(" << std::hex << std::uppercase << error << ").";
    platform::TheMessageBoxes().Show(box.str());
  }
  return "An internal system error occurred with the\r\nFormatMessage API function: " +
         std::to_string(error) + ". No futher information\r\nis available.";
}

}  // namespace

std::int32_t GetOSMajorVersion() {
  if (!version.queried) {
    version.record.dwOSVersionInfoSize = kVersionRecordSize;
    version.queried = GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&version.record)) != 0;
  }
  return static_cast<std::int32_t>(version.record.dwMajorVersion);
}

std::string SystemErrorText(std::int32_t code) {
  std::array<char, 160> buffer = {};
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, static_cast<DWORD>(code), 0, buffer.data(),
                                      static_cast<DWORD>(buffer.size()), nullptr);
  if (length == 0) return DescribeRefusal(GetLastError());
  std::string text(buffer.data(), length);
  if (text.ends_with("\r\n")) text.resize(text.size() - 2);
  return text;
}

}  // namespace mod_systemInfo
