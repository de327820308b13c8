#include "logread/visitor_address.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "config/text.h"
#include "platform/names.h"

namespace logread {
namespace {

constexpr std::string_view kBlanks = " +";  // IIS writes a blank as "+"

bool IsHexDigit(char c) {
  const char lower = platform::LowerCase(c);
  return text::IsDigit(c) || (lower >= 'a' && lower <= 'f');
}

// Takes what stands before the first `separator` from `text`, all of it when there is none.
std::string_view TakePart(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

bool IsByte(std::string_view text) {
  if (text.empty() || text.size() > 3 || !std::ranges::all_of(text, text::IsDigit)) return false;
  return text.size() < 3 || text <= "255";
}

bool IsIPv4(std::string_view text) {
  if (std::ranges::count(text, '.') != 3) return false;
  for (int i = 0; i < 4; ++i) {
    if (!IsByte(TakePart(text, '.'))) return false;
  }
  return true;
}

bool IsGroup(std::string_view text) {
  return !text.empty() && text.size() <= 4 && std::ranges::all_of(text, IsHexDigit);
}

// The number of 16-bit groups that `text`, colons between them, writes; nine when it is no such
// list. At the end of an address the last two may be written as an IPv4 address.
int GroupsIn(std::string_view text, bool at_end) {
  constexpr int kNone = 9;
  if (text.empty()) return 0;
  const auto colons = std::ranges::count(text, ':');
  if (colons > 7) return kNone;
  int groups = 0;
  for (auto left = colons; left >= 0; --left) {
    const std::string_view part = TakePart(text, ':');
    const bool embedded = at_end && left == 0 && IsIPv4(part);
    if (!embedded && !IsGroup(part)) return kNone;
    groups += embedded ? 2 : 1;
  }
  return groups;
}

// "::" stands once at most, for one group of zeros or more.
bool IsIPv6(std::string_view text) {
  const std::size_t gap = text.find("::");
  if (gap == std::string_view::npos) return GroupsIn(text, true) == 8;
  return GroupsIn(text.substr(0, gap), false) + GroupsIn(text.substr(gap + 2), true) < 8;
}

// "[address]" with a port behind it or without.
std::string_view InBrackets(std::string_view text) {
  text.remove_prefix(1);
  const std::string_view address = text.substr(0, std::min(text.find(']'), text.size()));
  return IsIPv6(address) ? address : std::string_view();
}

// The address that one part of the list holds; empty when it holds none.
std::string_view AddressIn(std::string_view part) {
  part = platform::Trimmed(part, kBlanks);
  if (part.starts_with('[')) return InBrackets(part);
  if (IsIPv6(part)) return part;
  const std::string_view address = TakePart(part, ':');
  return IsIPv4(address) && std::ranges::all_of(part, text::IsDigit) ? address : std::string_view();
}

}  // namespace

std::string_view FirstAddress(std::string_view list) {
  while (!list.empty()) {
    const std::string_view address = AddressIn(TakePart(list, ','));
    if (!address.empty()) return address;
  }
  return {};
}

}  // namespace logread
