#include "tools/bench_logs.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <queue>
#include <string_view>
#include <utility>
#include <vector>

#include "config/calendar.h"
#include "tools/log_writer.h"
#include "tools/random.h"
#include "tools/referrers.h"
#include "tools/visitors.h"

namespace sample_logs {
namespace {

constexpr std::uint64_t kVisitTimeoutMs = 1211000;
constexpr std::uint64_t kUsualHits = 8;
constexpr std::uint64_t kUsualGapMs = 30000;

// How the wanted lines, month and open visits fit together: each of `slots` visitors makes a visit
// of `hits` hits, `gap_ms` apart on average, and is followed by another one when the visit is over.
struct Pace {
  std::uint64_t slots;
  std::uint64_t hits;
  std::uint64_t gap_ms;
  std::uint64_t span_ms;  // the time that all lines take

  std::uint64_t CycleMs() const { return kVisitTimeoutMs + (hits - 1) * gap_ms; }
};

Pace PaceOf(const BenchPlan& plan, std::uint64_t month_ms) {
  Pace pace{plan.open_visits, kUsualHits, kUsualGapMs, month_ms};
  const std::uint64_t lines = std::max<std::uint64_t>(plan.lines, 1);
  const std::uint64_t natural = lines * pace.CycleMs() / (pace.hits * month_ms);
  if (pace.slots == 0) pace.slots = std::max<std::uint64_t>(natural, 1);
  if (pace.slots >= natural) {
    pace.span_ms = std::min(month_ms, lines * pace.CycleMs() / (pace.hits * pace.slots));
    return pace;
  }
  // Too few visitors for that many lines: each one has to make more of them.
  const std::uint64_t ms_per_hit = std::max<std::uint64_t>(pace.slots * month_ms / lines, 2);
  pace.gap_ms = std::min(kUsualGapMs, ms_per_hit / 2);
  pace.hits = kVisitTimeoutMs / (ms_per_hit - pace.gap_ms) + 1;
  return pace;
}

// Draws keys by Zipf's law; where the draws suffice for all keys, each key comes once in turn in
// between, spread evenly over the draws.
class KeySource {
 public:
  KeySource(std::uint64_t keys, std::uint64_t expected_draws)
      : zipf_(keys),
        keys_in_turn_(keys <= expected_draws ? keys : 0),
        expected_draws_(std::max<std::uint64_t>(expected_draws, 1)) {}

  std::uint64_t Draw(Random& random) {
    const std::uint64_t due = std::min(keys_in_turn_, ++draws_ * keys_in_turn_ / expected_draws_);
    if (due <= next_) return zipf_.Draw(random);
    return next_++;
  }

 private:
  Zipf zipf_;
  std::uint64_t keys_in_turn_;
  std::uint64_t expected_draws_;
  std::uint64_t draws_ = 0;
  std::uint64_t next_ = 0;
};

void AppendNumber(std::uint64_t number, std::string* out) {
  char digits[20];
  out->append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

bool IsPageUrl(std::uint64_t url) { return url % 4 == 0; }

void AppendUrl(std::uint64_t url, std::string* out) {
  constexpr std::string_view kExtensions[] = {
      ".htm", ".gif", ".jpg", ".css", ".aspx", ".js", ".png", ".jpg",
  };
  out->append(IsPageUrl(url) ? "/s" : "/files/");
  AppendNumber(url / 16 % 97, out);
  out->append(IsPageUrl(url) ? "/page-" : "/");
  AppendNumber(url, out);
  out->append(kExtensions[url % std::size(kExtensions)]);
}

// One agent in sixteen is a robot.
std::string Agent(std::uint64_t index) {
  if (index % 16 != 7) return BrowserAgent(index);
  return "Mozilla/5.0+(compatible;+SampleBot/" + std::to_string(index) +
         ";++http://bots.example.org/)";
}

// A visitor's place: one visit at a time.
struct Slot {
  std::uint64_t visitor = 0;
  std::uint64_t hits_left = 0;
  std::uint64_t last_page = 0;
  bool has_page = false;
};

class BenchLogs {
 public:
  BenchLogs(const std::string& folder, const BenchPlan& plan)
      : plan_(plan),
        start_(calendar::DayNumber({plan.year, plan.month, 1}) * kSecondsPerDay),
        pace_(PaceOf(plan, MonthMs(plan))),
        random_(plan.seed),
        urls_(plan.distinct_urls ? plan.lines : plan.urls, plan.lines),
        // A twentieth fewer visits than there should be: their lengths vary.
        visitors_(plan.visitors, plan.lines / pace_.hits * 19 / 20),
        agents_(plan.agents),
        is_here_(plan.visitors),
        slots_(pace_.slots),
        writer_(folder) {}

  void Write() {
    for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
      next_hits_.emplace(random_.Below(pace_.CycleMs()), slot);
    }
    for (std::uint64_t i = 0; i < plan_.lines; ++i) WriteLine(i);
    writer_.Close();
  }

 private:
  static std::uint64_t MonthMs(const BenchPlan& plan) {
    const long days = calendar::DayNumber({plan.year, plan.month + 1, 1}) -
                      calendar::DayNumber({plan.year, plan.month, 1});
    return static_cast<std::uint64_t>(days * kSecondsPerDay * 1000);
  }

  // The slots' own times only order the lines; the times written advance evenly, so that the lines
  // fill their span to the second.
  void WriteLine(std::uint64_t index) {
    const auto [time_ms, slot_index] = next_hits_.top();
    next_hits_.pop();
    Slot& slot = slots_[slot_index];
    if (slot.hits_left == 0) BeginVisit(slot);
    line_.time = start_ + TimeOfLine(index);
    MakeHit(slot);
    writer_.Write(line_);
    --slot.hits_left;
    next_hits_.emplace(time_ms + Pause(slot), slot_index);
  }

  std::int64_t TimeOfLine(std::uint64_t index) const {
    const double share = static_cast<double>(index) / static_cast<double>(plan_.lines);
    const auto span_seconds = pace_.span_ms / 1000;
    return static_cast<std::int64_t>(share * static_cast<double>(span_seconds));
  }

  void BeginVisit(Slot& slot) {
    is_here_[slot.visitor] = false;
    slot.visitor = ChooseVisitor();
    is_here_[slot.visitor] = true;
    slot.hits_left = 1 + random_.Below(2 * pace_.hits - 1);
    slot.has_page = false;
  }

  // Someone who is not on the site already: two visits of one visitor would count as one. When
  // nearly everybody is there it may happen all the same.
  std::uint64_t ChooseVisitor() {
    std::uint64_t visitor = visitors_.Draw(random_);
    for (int attempt = 0; is_here_[visitor] && attempt < 20; ++attempt) {
      visitor = random_.Below(plan_.visitors);
    }
    return visitor;
  }

  // Files follow their page at once, a page is read for a while; one visit follows the other when
  // that one has timed out.
  std::uint64_t Pause(const Slot& slot) {
    if (slot.hits_left == 0) return kVisitTimeoutMs;
    if (random_.Percent(75)) return random_.Below(pace_.gap_ms / 15 + 1);
    return random_.Below(8 * pace_.gap_ms - pace_.gap_ms / 5 + 1);
  }

  void MakeHit(Slot& slot) {
    const std::uint64_t url = urls_.Draw(random_);
    line_.stem.clear();
    AppendUrl(url, &line_.stem);
    ChooseVisitorsTexts(slot);
    line_.referrer.clear();
    AppendReferrer(slot, &line_.referrer);
    ChooseResult(url);
    if (IsPageUrl(url) || !slot.has_page) {
      slot.last_page = url;
      slot.has_page = true;
    }
  }

  // Everything about a visitor follows from its number.
  void ChooseVisitorsTexts(const Slot& slot) {
    line_.client = ClientAddress(slot.visitor);
    Random habits(plan_.seed ^ Scramble(slot.visitor));
    // The first visitors have an agent each, so that all agents occur.
    line_.agent = Agent(slot.visitor < plan_.agents ? slot.visitor : agents_.Draw(habits));
  }

  void AppendReferrer(const Slot& slot, std::string* out) {
    if (slot.has_page) {
      out->append(kSiteUrl);
      AppendUrl(slot.last_page, out);
    } else {
      out->append(EntryReferrer(random_));
    }
  }

  void ChooseResult(std::uint64_t url) {
    const std::uint64_t chance = random_.Below(1000);
    line_.status = chance < 860   ? 200
                   : chance < 950 ? 304
                   : chance < 975 ? 404
                   : chance < 990 ? 302
                   : chance < 997 ? 206
                                  : 500;
    line_.win32_status = line_.status == 404 ? 2 : 0;
    line_.bytes_sent = line_.status == 200 ? 1000 + Scramble(url) % 60000 : 250 + chance;
    line_.bytes_received = 300 + random_.Below(400);
    line_.time_taken_ms = random_.Below(60) * random_.Below(60);
  }

  const BenchPlan plan_;
  const std::int64_t start_;
  const Pace pace_;
  Random random_;
  KeySource urls_;
  KeySource visitors_;
  Zipf agents_;
  std::vector<bool> is_here_;  // by visitor
  std::vector<Slot> slots_;
  using NextHit = std::pair<std::uint64_t, std::size_t>;  // time, slot
  std::priority_queue<NextHit, std::vector<NextHit>, std::greater<>> next_hits_;
  LogLine line_;
  LogWriter writer_;
};

}  // namespace

void WriteBenchLogs(const std::string& folder, const BenchPlan& plan) {
  BenchLogs(folder, plan).Write();
}

}  // namespace sample_logs
