#include "ui/type_ahead.h"

#include "config/text.h"

namespace ui {
namespace {

constexpr long kPauseMs = 1000;

bool BeginsWith(std::string_view line, std::string_view start) {
  line = text::TrimBlanks(line);
  return line.size() >= start.size() &&
         text::EqualsIgnoringCase(line.substr(0, start.size()), start);
}

std::optional<std::size_t> Find(const std::vector<std::string>& lines, std::size_t from,
                                std::string_view start) {
  for (std::size_t step = 0; step < lines.size(); ++step) {
    const std::size_t line = (from + step) % lines.size();
    if (BeginsWith(lines[line], start)) return line;
  }
  return std::nullopt;
}

}  // namespace

bool TypeAhead::typing(long now_ms) const {
  return !typed_.empty() && now_ms - last_ms_ < kPauseMs;
}

std::optional<std::size_t> TypeAhead::Type(std::string_view character, long now_ms,
                                           const std::vector<std::string>& lines,
                                           std::size_t selected) {
  if (!typing(now_ms) || text::EqualsIgnoringCase(typed_, character)) typed_.clear();
  last_ms_ = now_ms;
  const std::size_t from = typed_.empty() ? selected + 1 : selected;
  typed_ += character;
  return Find(lines, from, typed_);
}

}  // namespace ui
