// Between the program's byte strings (UTF-8) and the UTF-16 that the wide half of Windows takes.
//
// No state. Used only by the Windows implementations of this folder.
#ifndef HITWICK_PLATFORM_UTF16_WINDOWS_H_
#define HITWICK_PLATFORM_UTF16_WINDOWS_H_

#include <string>
#include <string_view>

namespace platform {

// Bytes that are not UTF-8, and halves of surrogate pairs, become U+FFFD; nothing fails.
std::wstring ToUtf16(std::string_view text);
std::string ToUtf8(std::wstring_view text);

}  // namespace platform

#endif  // HITWICK_PLATFORM_UTF16_WINDOWS_H_
