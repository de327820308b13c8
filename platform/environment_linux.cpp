#include "platform/environment.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

namespace platform {
namespace {

constexpr int kMonths = 12;

using NameList = std::array<std::string, kMonths>;

NameList Strings(const std::array<std::string_view, kMonths>& names) {
  NameList strings;
  std::copy(names.begin(), names.end(), strings.begin());
  return strings;
}

struct MonthNames {
  NameList full{"January", "February", "March",     "April",   "May",      "June",
                "July",    "August",   "September", "October", "November", "December"};
  NameList abbreviated = Strings(kEnglishMonths);
};

constexpr std::array<nl_item, kMonths> kFullItems{MON_1, MON_2, MON_3, MON_4,  MON_5,  MON_6,
                                                  MON_7, MON_8, MON_9, MON_10, MON_11, MON_12};
constexpr std::array<nl_item, kMonths> kAbbreviatedItems{ABMON_1, ABMON_2,  ABMON_3,  ABMON_4,
                                                         ABMON_5, ABMON_6,  ABMON_7,  ABMON_8,
                                                         ABMON_9, ABMON_10, ABMON_11, ABMON_12};

// `text` converted to UTF-8; empty when it is no valid text of that character set.
std::string ToUtf8(std::string text, const char* codeset) {
  const iconv_t converter = iconv_open("UTF-8", codeset);
  if (converter == reinterpret_cast<iconv_t>(-1)) return {};
  std::string utf8(text.size() * 4 + 4, '\0');
  char* in = text.data();
  std::size_t in_left = text.size();
  char* out = utf8.data();
  std::size_t out_left = utf8.size();
  const std::size_t converted = iconv(converter, &in, &in_left, &out, &out_left);
  iconv_close(converter);
  if (converted == static_cast<std::size_t>(-1)) return {};
  utf8.resize(utf8.size() - out_left);
  return utf8;
}

// Puts the locale's names in the place of the English ones; one that is missing or cannot be
// converted stays English.
void TakeNames(locale_t locale, const std::array<nl_item, kMonths>& items, NameList* names) {
  const char* codeset = nl_langinfo_l(CODESET, locale);
  for (std::size_t month = 0; month < items.size(); ++month) {
    const std::string name = ToUtf8(nl_langinfo_l(items[month], locale), codeset);
    if (!name.empty()) (*names)[month] = name;
  }
}

MonthNames NamesOfEnvironment() {
  MonthNames names;
  // The character set is taken from the same locale as the names, whatever LC_CTYPE says.
  const locale_t locale =
      newlocale(LC_TIME_MASK | LC_CTYPE_MASK, TimeLocaleName().c_str(), nullptr);
  if (locale == nullptr) return names;
  TakeNames(locale, kFullItems, &names.full);
  TakeNames(locale, kAbbreviatedItems, &names.abbreviated);
  freelocale(locale);
  return names;
}

const MonthNames& Names() {
  static const MonthNames names = NamesOfEnvironment();
  return names;
}

}  // namespace

std::string EnvironmentVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value != nullptr ? value : std::string();
}

std::string TimeLocaleName() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    if (std::string name = EnvironmentVariable(variable); !name.empty()) return name;
  }
  return "C";
}

std::string MonthName(int month) { return Names().full.at(static_cast<std::size_t>(month) - 1); }

std::string MonthAbbreviation(int month) {
  return Names().abbreviated.at(static_cast<std::size_t>(month) - 1);
}

}  // namespace platform
