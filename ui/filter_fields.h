// The log fields that a filter may look at: the names offered to the user and the W3C fields they
// stand for.
//
// No state. Used by the filter windows.
#ifndef HITWICK_UI_FILTER_FIELDS_H_
#define HITWICK_UI_FILTER_FIELDS_H_

#include <string>
#include <string_view>
#include <vector>

namespace ui {

inline constexpr int kNoField = -1;

// The entries of `lstField` for a log format: the offered names, or none for a format other than
// "W3C".
std::vector<std::string> OfferedFields(std::string_view log_format);
// The entry that stands for a W3C field (exact comparison); kNoField when it is not offered.
int OfferedFieldOf(std::string_view w3c_field);
// The W3C field of an offered name; "ERROR" for any other name or log format.
std::string W3CFieldOf(std::string_view offered_name, std::string_view log_format);

}  // namespace ui

#endif  // HITWICK_UI_FILTER_FIELDS_H_
