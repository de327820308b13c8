#include "tools/demo_logs.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "config/calendar.h"
#include "tools/demo_visits.h"
#include "tools/log_writer.h"
#include "tools/site_model.h"
#include "tools/visitors.h"

namespace sample_logs {
namespace {

constexpr std::uint64_t kSeed = 20;
constexpr unsigned kVisitsPerDay = 27;
// Shares of a day's visits that begin in each hour, and of a plain day's visits on each weekday
// (Sunday first) in percent.
constexpr unsigned kHourShares[] = {6,  4,  3,  3,  4,  8,  18, 34, 52, 66, 74, 78,
                                    70, 68, 72, 74, 70, 66, 70, 76, 72, 54, 30, 14};
constexpr unsigned kWeekdayPercent[] = {62, 118, 120, 116, 112, 104, 58};
// A newsletter goes out on this day of every month.
constexpr int kNewsletterDay = 12;

class DemoLogs {
 public:
  DemoLogs(const std::string& folder, std::int64_t now) : writer_(folder), now_(now) {}

  std::uint64_t Write(long first_day, long last_day) {
    for (long day = first_day; day <= last_day; ++day) {
      const long age = day - first_day;
      MakeDay(day, 85 + static_cast<unsigned>(30 * age / (last_day - first_day + 1)));
      WriteLinesBefore(std::min((day + 1) * kSecondsPerDay, now_ + 1));
    }
    writer_.Close();
    return writer_.lines();
  }

 private:
  // Each day has random numbers of its own, so that a change in one does not change the others.
  void MakeDay(long day, unsigned growth_percent) {
    Random random(kSeed + static_cast<std::uint64_t>(day));
    VisitMaker visits(site_, random, lines_);
    const calendar::Date date = calendar::DateOfDayNumber(day);
    const std::int64_t midnight = day * kSecondsPerDay;
    for (unsigned i = VisitsOf(date, growth_percent, random); i > 0; --i) {
      visits.Browse(midnight + TimeOfDay(random));
    }
    for (const Robot& robot : Robots()) {
      for (unsigned i = 0; i < robot.crawls_per_week; ++i) {
        if (random.Below(7) == 0) visits.Crawl(robot, midnight + random.Between(0, 86399));
      }
    }
    if (random.Percent(15)) visits.Scan(midnight + random.Between(0, 86399));
  }

  static unsigned VisitsOf(const calendar::Date& date, unsigned growth_percent, Random& random) {
    const auto weekday = static_cast<std::size_t>(calendar::Weekday(date));
    const auto mood_percent = static_cast<unsigned>(random.Between(82, 118));
    const unsigned visits =
        kVisitsPerDay * kWeekdayPercent[weekday] * growth_percent / 100 * mood_percent / 10000;
    return date.day == kNewsletterDay ? visits * 9 / 5 : visits;
  }

  static std::int64_t TimeOfDay(Random& random) {
    const unsigned total = std::accumulate(std::begin(kHourShares), std::end(kHourShares), 0U);
    std::uint64_t share = random.Below(total);
    std::int64_t hour = 0;
    for (; share >= kHourShares[static_cast<std::size_t>(hour)]; ++hour) {
      share -= kHourShares[static_cast<std::size_t>(hour)];
    }
    return hour * 3600 + random.Between(0, 3599);
  }

  // Visits that go on past midnight leave lines for the next day.
  void WriteLinesBefore(std::int64_t end) {
    std::stable_sort(lines_.begin(), lines_.end(),
                     [](const LogLine& a, const LogLine& b) { return a.time < b.time; });
    std::size_t written = 0;
    for (; written < lines_.size() && lines_[written].time < end; ++written) {
      writer_.Write(lines_[written]);
    }
    lines_.erase(lines_.begin(), lines_.begin() + static_cast<std::ptrdiff_t>(written));
  }

  Site site_;
  LogWriter writer_;
  std::int64_t now_;
  std::vector<LogLine> lines_;
};

}  // namespace

std::uint64_t WriteDemoLogs(const std::string& folder, const platform::DateTime& now) {
  const long first_day = calendar::DayNumber({now.year - 1, now.month, 1});
  const long today = calendar::DayNumber({now.year, now.month, now.day});
  const std::int64_t second = now.hour * 3600 + now.minute * 60 + now.second;
  return DemoLogs(folder, today * kSecondsPerDay + second).Write(first_day, today);
}

}  // namespace sample_logs
