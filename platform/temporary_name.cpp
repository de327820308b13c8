#include "platform/temporary_name.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <random>

namespace platform {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::string_view kSuffix = ".tmp";

std::string RandomPart() {
  std::random_device device;
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%08x%08x", device(), device());
  return text.data();
}

bool ConsistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

}  // namespace

std::string TemporaryName(std::string_view target, unsigned long process) {
  return std::string(target)
      .append(".")
      .append(std::to_string(process))
      .append("-")
      .append(RandomPart())
      .append(kSuffix);
}

std::string_view TargetOfTemporary(std::string_view name) {
  if (!name.ends_with(kSuffix)) return {};
  name.remove_suffix(kSuffix.size());
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return {};
  const std::string_view mark = name.substr(dot + 1);
  const std::size_t dash = mark.find('-');
  const bool random_fits =
      dash == std::string_view::npos || ConsistsOf(mark.substr(dash + 1), kHexDigits);
  return ConsistsOf(mark.substr(0, dash), kDigits) && random_fits ? name.substr(0, dot)
                                                                  : std::string_view();
}

}  // namespace platform
