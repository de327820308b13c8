#include "report/page_names.h"

#include <algorithm>

#include "config/text.h"
#include "platform/environment.h"
#include "platform/file_system.h"

namespace report {
namespace {

// The bytes that mean the same in a URL with and without percent-encoding.
bool IsPlainInUrl(char c) {
  const char lower = text::ToLower(c);
  return (lower >= 'a' && lower <= 'z') || text::IsDigit(c) || c == '-' || c == '.' || c == '_' ||
         c == '~';
}

}  // namespace

std::string MonthPageName(int month) { return FileNamePart(platform::MonthAbbreviation(month)); }

std::string FileNamePart(std::string_view word) {
  std::string part(text::TrimBlanks(word));
  std::replace_if(
      part.begin(), part.end(), [](char c) { return !platform::FitsInFileName(c); }, '_');
  return part;
}

std::string LinkTo(std::string_view file_name) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string link;
  for (const char c : file_name) {
    if (IsPlainInUrl(c)) {
      link += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    link += '%';
    link += kDigits[byte / 16];
    link += kDigits[byte % 16];
  }
  return link;
}

}  // namespace report
