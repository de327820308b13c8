// Environment variables and the names that the user's locale gives to the months.
#ifndef HITWICK_PLATFORM_ENVIRONMENT_H_
#define HITWICK_PLATFORM_ENVIRONMENT_H_

#include <array>
#include <string>
#include <string_view>

namespace platform {

// The value of an environment variable; empty when it is not set.
std::string EnvironmentVariable(const std::string& name);

// The locale of the environment that names the months; "C" when none is named. (Windows has one
// for each user, not for each process: empty.)
std::string TimeLocaleName();

// The full and the abbreviated name of a month (1..12) in the locale of the environment, in
// UTF-8; English in the C locale.
std::string MonthName(int month);
std::string MonthAbbreviation(int month);

// The abbreviations of the C locale, for what is English in every locale.
inline constexpr std::array<std::string_view, 12> kEnglishMonths = {
    "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

}  // namespace platform

#endif  // HITWICK_PLATFORM_ENVIRONMENT_H_
