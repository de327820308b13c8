#include "ui/filter_fields.h"

#include <algorithm>
#include <array>

namespace ui {
namespace {

struct Field {
  std::string_view offered;
  std::string_view w3c;
};

// In the order in which they are offered.
constexpr std::array<Field, 7> kFields = {{{"Client IP", "c-ip"},
                                           {"Method", "cs-method"},
                                           {"Referrer", "cs(Referer)"},
                                           {"HTTP status", "sc-status"},
                                           {"Query", "cs-uri-query"},
                                           {"URL", "cs-uri-stem"},
                                           {"Browser", "cs(User-Agent)"}}};

bool CanBeFiltered(std::string_view log_format) { return log_format == "W3C"; }

}  // namespace

std::vector<std::string> OfferedFields(std::string_view log_format) {
  std::vector<std::string> names;
  if (!CanBeFiltered(log_format)) return names;
  for (const Field& field : kFields) names.emplace_back(field.offered);
  return names;
}

int OfferedFieldOf(std::string_view w3c_field) {
  const auto same = [w3c_field](const Field& field) { return field.w3c == w3c_field; };
  const auto found = std::find_if(kFields.begin(), kFields.end(), same);
  return found != kFields.end() ? static_cast<int>(found - kFields.begin()) : kNoField;
}

std::string W3CFieldOf(std::string_view offered_name, std::string_view log_format) {
  const auto same = [offered_name](const Field& field) { return field.offered == offered_name; };
  const auto found = std::find_if(kFields.begin(), kFields.end(), same);
  if (found == kFields.end() || !CanBeFiltered(log_format)) return "ERROR";
  return std::string(found->w3c);
}

}  // namespace ui
