#include "platform/standard_time_linux.h"

#include <cstdlib>
#include <optional>

namespace platform {
namespace {

constexpr std::time_t kSecondsPerDay = 24 * 60 * 60;
constexpr int kDaysOfYear = 366;

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

bool IsFlagged(std::time_t time) { return LocalTime(time).tm_isdst > 0; }

// The time nearest to `same` at which the flag is not what it is there, `other` being one.
std::time_t Change(std::time_t same, std::time_t other) {
  const bool flagged = IsFlagged(same);
  while (std::labs(other - same) > 1) {
    const std::time_t middle = same + (other - same) / 2;
    (IsFlagged(middle) == flagged ? same : other) = middle;
  }
  return other;
}

enum class Direction { kPast = -1, kFuture = 1 };

// The nearest time within a year at which the flag is not what it is at `now`. No zone changes its
// flag for less than a day.
std::optional<std::time_t> NearestChange(std::time_t now, Direction direction) {
  const bool flagged = IsFlagged(now);
  const std::time_t step = static_cast<int>(direction) * kSecondsPerDay;
  for (int day = 1; day <= kDaysOfYear; ++day) {
    const std::time_t time = now + day * step;
    if (IsFlagged(time) != flagged) return Change(time - step, time);
  }
  return std::nullopt;
}

// The time whose offset is compared with the one at `now`. For a time that is not flagged only
// what comes counts: a zone may have given up its daylight saving for good.
std::optional<std::time_t> OtherTime(std::time_t now) {
  const std::optional<std::time_t> next = NearestChange(now, Direction::kFuture);
  if (!IsFlagged(now)) return next;
  const std::optional<std::time_t> last = NearestChange(now, Direction::kPast);
  if (!last || !next) return last ? last : next;
  return *next - now < now - *last ? next : last;
}

}  // namespace

long StandardOffset(std::time_t now) {
  const long present = LocalTime(now).tm_gmtoff;
  const std::optional<std::time_t> other = OtherTime(now);
  if (!other) return present;
  const long others = LocalTime(*other).tm_gmtoff;
  const long flagged = IsFlagged(now) ? present : others;
  const long unflagged = IsFlagged(now) ? others : present;
  return flagged < unflagged ? flagged : unflagged;
}

}  // namespace platform
