#include "platform/environment.h"

#include <windows.h>

#include <array>

#include "platform/utf16_windows.h"

namespace platform {
namespace {

// The locale's word number `month` (1..12) of the twelve that begin with `january`. In the user's
// own regional settings, whatever language the program speaks.
std::string LocaleWord(LCTYPE january, int month) {
  std::array<wchar_t, 80> word = {};
  const int units =
      GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, january + static_cast<LCTYPE>(month - 1),
                      word.data(), static_cast<int>(word.size()));
  if (units <= 0) return "";
  return ToUtf8(word.data());
}

}  // namespace

std::string EnvironmentVariable(const std::string& name) {
  const std::wstring wide_name = ToUtf16(name);
  std::wstring value(GetEnvironmentVariableW(wide_name.c_str(), nullptr, 0), L'\0');
  if (value.empty()) return "";
  value.resize(
      GetEnvironmentVariableW(wide_name.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return ToUtf8(value);
}

std::string TimeLocaleName() { return ""; }

std::string MonthName(int month) { return LocaleWord(LOCALE_SMONTHNAME1, month); }

std::string MonthAbbreviation(int month) { return LocaleWord(LOCALE_SABBREVMONTHNAME1, month); }

}  // namespace platform
