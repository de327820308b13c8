#include "logread/field_list.h"

#include <bit>
#include <cstring>

#include "config/text.h"

namespace mdlW3C {

// One name to a line.
// clang-format off
const std::array<std::string_view, kFieldKinds - 1> kFieldNames = {
    "date",
    "time",
    "c-ip",
    "cs-method",
    "cs-uri-stem",
    "cs-uri-query",
    "sc-status",
    "sc-bytes",
    "cs-bytes",
    "time-taken",
    "cs(User-Agent)",
    "cs(Referer)",
    "cs-username",
    "cs-host",
    "s-computername",
};
// clang-format on

Field FieldOf(std::string_view name) {
  for (std::size_t i = 0; i < kFieldNames.size(); ++i) {
    if (kFieldNames[i] == name) return static_cast<Field>(i);
  }
  return Field::kOther;
}

RegularColumns::RegularColumns(const std::vector<Column>& columns) {
  columns_.fill(kNone);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].field == Field::kOther) continue;
    std::size_t& column = columns_[static_cast<std::size_t>(columns[i].field)];
    if (column != kNone) return;
    column = i;
  }
  if (Has(Field::kDate) && Has(Field::kTime) && PrecedesTime(Field::kDate)) {
    count_ = columns.size();
  }
}

namespace {

// The first eight bytes, the first of them lowest.
std::uint64_t LoadEight(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

}  // namespace

// The digits are moved to the end of a word whose other places hold "0"; then neighbours are
// joined: digits to pairs, pairs to fours, fours to the number.
bool ReadPlainNumber(std::string_view token, std::int32_t* value) {
  *value = 0;
  if (token.empty() || token == "-") return true;
  if (token.size() > 8) return false;
  constexpr std::uint64_t kZeros = 0x3030303030303030u;
  const unsigned unused = 64 - 8 * static_cast<unsigned>(token.size());
  std::uint64_t digits = LoadEight(token.data()) << unused ^ kZeros << unused;
  // Above 9 in a place: a bit above the fourth, or one that carries into it when 6 is added.
  if (((digits | (digits + 0x0606060606060606u)) & 0xF0F0F0F0F0F0F0F0u) != 0) return false;
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FFu;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFFu;
  digits = digits * 10000 + (digits >> 32);
  *value = static_cast<std::int32_t>(digits & 0xFFFFFFFFu);
  return true;
}

bool ReadPlainTime(std::string_view token, int* hour, int* minute) {
  if (token.size() < 5) return false;
  for (const std::size_t at : {0U, 1U, 3U, 4U}) {
    if (!text::IsDigit(token[at])) return false;
  }
  *hour = (token[0] - '0') * 10 + (token[1] - '0');
  *minute = (token[3] - '0') * 10 + (token[4] - '0');
  return true;
}

}  // namespace mdlW3C
