// What an entry of the application event log consists of: the numbers of its messages and the
// form in which it takes a text.
//
// No state. Used by the event log, and by its test. The messages themselves, "%1" each, are a
// resource of the program (packaging/windows/messages.mc) from which Event Viewer reads them.
#ifndef HITWICK_PLATFORM_EVENT_TEXT_WINDOWS_H_
#define HITWICK_PLATFORM_EVENT_TEXT_WINDOWS_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// Severity in the top two bits, the messages' own number below.
inline constexpr unsigned long kInformationMessage = 0x40000001;
inline constexpr unsigned long kWarningMessage = 0x80000002;

// The longest text that the event log takes, in UTF-16 units.
inline constexpr std::size_t kLongestEventText = 31839;

// `text` as the event log shows it unchanged: without zeros, cut to the longest size, and with a
// blank behind every "%" that Event Viewer would take for the start of an insertion code ("%1",
// "%%2", "%{...}"; it knows no way to escape them).
std::wstring EventText(std::string_view text);

}  // namespace platform

#endif  // HITWICK_PLATFORM_EVENT_TEXT_WINDOWS_H_
