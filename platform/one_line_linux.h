// A text as one line that does nothing to the terminal on which it is read. Used by the event log;
// no state.
#ifndef HITWICK_PLATFORM_ONE_LINE_LINUX_H_
#define HITWICK_PLATFORM_ONE_LINE_LINUX_H_

#include <string>
#include <string_view>

namespace platform {

// `text` with its control characters escaped: a line feed as the two characters `\n` (a carriage
// return before it is dropped), the bytes of any other as `\x1b`, two hexadecimal digits each.
// Those of the upper range (U+0080 to U+009F), which terminals obey as well, are meant too: as
// UTF-8, and as single bytes where they belong to no UTF-8 character. Everything else stands.
std::string OnOneLine(std::string_view text);

}  // namespace platform

#endif  // HITWICK_PLATFORM_ONE_LINE_LINUX_H_
