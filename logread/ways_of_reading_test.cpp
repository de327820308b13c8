// The same random logs read in different ways, which may not show in the results: regular lines
// column by column and in batches, or every line by the general steps and record by record (as
// with diagnostics); in blocks of the usual size, or in pieces that end at any byte.
//
// HITWICK_SEEDS sets the number of logs.

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "logread/line_reader.h"
#include "logread/reader_fixture.h"
#include "platform/environment.h"

namespace {

constexpr int kUsualSeeds = 60;

class RandomLog {
 public:
  explicit RandomLog(unsigned seed) : random_(seed) {}

  unsigned Below(unsigned n) { return static_cast<unsigned>(random_() % n); }
  bool OneIn(unsigned n) { return Below(n) == 0; }

  // Rules of all sorts on one to four fields, now and then one that is an error.
  void SetRules() {
    for (unsigned rule = 1 + Below(4); rule > 0; --rule) {
      mdlFilters::SetFilter("rule" + std::to_string(rule), OneIn(4), std::string(Any(kRuleFields)),
                            OneIn(20) ? "[" : std::string(Any(kPatterns)));
    }
  }

  std::string Text() {
    std::string text = Header();
    for (unsigned lines = 20 + Below(180); lines > 0; --lines) {
      if (OneIn(40)) text += OneIn(2) ? Header() : std::string(Any(kOddLines));
      text += RecordLine();
      if (!OneIn(3)) text += '\r';
      if (lines > 1 || OneIn(2)) text += '\n';
    }
    return text;
  }

 private:
  using Texts = std::vector<std::string_view>;

  std::string_view Any(const Texts& texts) {
    return texts[Below(static_cast<unsigned>(texts.size()))];
  }

  std::string Header() {
    fields_.clear();
    const Texts usual = {"date",   "time",           "s-computername", "cs-method", "cs-uri-stem",
                         "c-ip",   "cs(User-Agent)", "cs(Referer)",    "sc-status", "cs-username",
                         "x-some", "sc-bytes",       "time-taken",     "cs-host"};
    for (const std::string_view field : usual) {
      if (!OneIn(25)) fields_.push_back(field);
    }
    if (OneIn(4)) std::swap(fields_[Below(Size())], fields_[Below(Size())]);
    if (OneIn(12)) fields_.push_back(fields_[Below(Size())]);
    std::string line = "#Fields:";
    for (const std::string_view field : fields_) line += " " + std::string(field);
    return line + "\r\n";
  }

  unsigned Size() const { return static_cast<unsigned>(fields_.size()); }

  std::string RecordLine() {
    std::string line;
    if (OneIn(60)) line += ' ';
    const std::size_t tokens = OneIn(30) ? Below(Size() + 1) : fields_.size();
    for (std::size_t i = 0; i < tokens; ++i) {
      if (i != 0) line += OneIn(150) ? "  " : " ";
      line += OneIn(80) ? std::string(Any(kOddTokens)) : Token(fields_[i]);
    }
    if (OneIn(60)) line += OneIn(2) ? " " : " more";
    if (OneIn(400)) line += std::string(33'000, 'x');
    return line;
  }

  std::string TwoDigits(unsigned number) {
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
  }

  std::string Token(std::string_view field) {
    if (field == "date") {
      if (OneIn(15)) day_ = 1 + Below(31);
      return (OneIn(50) ? "2007-02-" : "2007-01-") + TwoDigits(day_);
    }
    if (field == "time") {
      second_ += Below(600);
      if (OneIn(50)) second_ -= Below(second_ + 1);
      return TwoDigits(second_ / 3600 % 24) + ":" + TwoDigits(second_ / 60 % 60) + ":07";
    }
    if (field == "c-ip") return "192.0.2." + std::to_string(Below(12));
    if (field == "cs-uri-stem") return OneIn(20) ? "/Robots.txt" : "/" + Page();
    if (field == "cs(User-Agent)") return std::string(Any(kAgents));
    if (field == "cs(Referer)") return std::string(Any(kReferrers));
    if (field == "sc-status") return std::string(Any(kStatuses));
    if (field == "sc-bytes") return std::to_string(Below(OneIn(9) ? 99'999'999 : 9999));
    if (field == "time-taken") return std::to_string(Below(OneIn(9) ? 3'000'000 : 900));
    if (field == "cs-method") return OneIn(5) ? "POST" : "GET";
    if (field == "cs-username") return OneIn(5) ? "alice" : "-";
    return std::string(field) + std::to_string(Below(3));
  }

  std::string Page() { return std::to_string(Below(20)) + std::string(Any(kExtensions)); }

  const Texts kRuleFields = {"c-ip",           "cs-method",   "cs-uri-stem", "cs-uri-query",
                             "cs(User-Agent)", "cs(Referer)", "sc-status",   "cs-username"};
  const Texts kPatterns = {"*1*", "2*", "*two*", "[!G]*", "-", "?", "*.gif", "*"};
  const Texts kOddLines = {"\r\n", "\n", "#Date: 2007\n", "#\r\n", "   \n", "a\n"};
  const Texts kOddTokens = {"-",          "1",         "12",      "-5",       "2147483647",
                            "2147483648", "123456789", "1.5",     "x",        "\"",
                            "<b>'",       "::1",       "FE80::1", "2007-1-1", "9:5",
                            "99:99:99",   "24:00",     "\r",      "00000000", "1e5"};
  const Texts kAgents = {"Mozilla/5.0", "Googlebot", "Quiet", "-", "Opera+(<x>)"};
  const Texts kReferrers = {"-",
                            "http://a/b?q=two+words&x=1",
                            "http://a/b#c",
                            "http://a/?hl=1#?q=",
                            "http://search/?p=%41%4",
                            "/x?",
                            "http://a/b?q=three"};
  const Texts kStatuses = {"200", "200", "200", "304", "404", "301", "20", "500"};
  const Texts kExtensions = {"", ".htm", ".gif", ".asp?x", ".d/e", ".JS"};

  std::mt19937 random_;
  std::vector<std::string_view> fields_;
  unsigned day_ = 1;
  unsigned second_ = 0;
};

class WaysOfReading : public ReaderTest {
 protected:
  static void Dump(float number, std::string* out) {
    *out += std::to_string(std::bit_cast<std::uint32_t>(number)) + " ";
  }
  static void Dump(mdlMonth::TallyTable& table, std::string* out) {
    for (std::int32_t rank = 1; rank <= table.Count(); ++rank) {
      const mdlMonth::TallyEntry entry = table.At(rank);
      *out += std::string(entry.Key) + " " + std::to_string(entry.Count) + " ";
      Dump(entry.Metric, out);
    }
    *out += "\n";
  }
  static void Dump(const mdlVisit::Breakdown& breakdown, std::string* out) {
    for (const mdlVisit::LengthBucket& row : breakdown) {
      *out += std::to_string(row.Visits) + " " + std::to_string(row.Seconds) + " " +
              std::to_string(row.Fetches) + " ";
      Dump(row.SecondsSquares, out);
      Dump(row.FetchesSquares, out);
    }
    *out += "\n";
  }

  // All that can be seen of a month.
  static std::string Results() {
    mdlMonth::MonthStats& month = Month();
    std::string out = month.HostLabel + " " + mdlW3C::ServerName() + "\n";
    for (const float number :
         {month.TotalBytes, month.TotalHits, month.TotalFiles, month.TotalPages,
          month.TotalTimeTaken, month.MaxTimeTaken, month.PeakHourBytes, month.PeakHourHits}) {
      Dump(number, &out);
    }
    for (const int number : {month.PeakHourBytesDay, month.PeakHourBytesHour, month.PeakHourHitsDay,
                             month.PeakHourHitsHour}) {
      out += std::to_string(number) + " ";
    }
    for (int day = 1; day <= 31; ++day) {
      for (const auto* days : {&month.DayBytes, &month.DayHits, &month.DayFiles, &month.DayPages,
                               &month.DayTimeTaken, &month.DayFailures}) {
        Dump((*days)[day], &out);
      }
    }
    for (int hour = 0; hour <= 24; ++hour) {
      for (const auto* hours : {&month.HourBytes, &month.HourHits, &month.HourFiles,
                                &month.HourPages, &month.HourTimeTaken}) {
        Dump((*hours)[hour], &out);
      }
    }
    for (mdlMonth::TallyTable* table :
         {&month.SuccessUrls, &month.RobotsTxtAgents, &month.UserAgents, &month.ClientAddresses,
          &month.Methods, &month.Referrers, &month.StatusCodes, &month.Queries, &month.UserNames,
          &month.Pages, &month.FailedUrls, &month.FailedReferrers, &month.FileTypes,
          &month.UrlResponseTimes, &month.Visits.AllEntry, &month.Visits.AllExit,
          &month.Visits.NonRobotEntry, &month.Visits.NonRobotExit}) {
      Dump(*table, &out);
    }
    Dump(mdlVisit::AllVisitLengths(), &out);
    Dump(mdlVisit::NonRobotVisitLengths(), &out);
    return out + std::to_string(mdlVisit::SlotCount());
  }

  // What is left after reading the log, and the messages about hits.
  std::string ReadIn(std::size_t piece, bool general) {
    mdlW3C::Reset();
    Month().RobotsTxtAgents.Clear();
    log_.Clear();
    files_.read_size_limit = piece;
    State().LogTranslations = general;
    Read(1, 2007);
    std::string messages;
    for (const std::string& text : log_.Texts()) {
      if (text.find("Error adding hit") != std::string::npos) messages += text + "\n";
    }
    return Results() + messages;
  }

  static int Seeds() {
    const std::string seeds = platform::EnvironmentVariable("HITWICK_SEEDS");
    return seeds.empty() ? kUsualSeeds : std::atoi(seeds.c_str());
  }
};

TEST_F(WaysOfReading, DoNotShowInTheResults) {
  const int seeds = Seeds();
  for (int seed = 1; seed <= seeds; ++seed) {
    RandomLog log(static_cast<unsigned>(seed));
    clock_.bias_minutes = static_cast<std::int16_t>(30 * (static_cast<int>(log.Below(40)) - 20));
    AddLog("ex070114.log", log.Text());
    AddLog("u_ex070115.log", log.Text());
    mdlFilters::Reset();
    if (seed % 3 == 0) log.SetRules();
    const std::string expected = ReadIn(0, true);
    ASSERT_EQ(ReadIn(0, false), expected) << "seed " << seed;
    const std::size_t piece = seed % 8 == 0 ? 1 + log.Below(63) : 64 + log.Below(3000);
    ASSERT_EQ(ReadIn(piece, false), expected) << "seed " << seed << ", pieces of " << piece;
  }
}

// Every border between two blocks of one log.
TEST_F(WaysOfReading, BlocksMayEndAnywhere) {
  RandomLog log(4711);
  AddLog("ex070114.log", log.Text());
  const std::string expected = ReadIn(0, true);
  for (std::size_t piece = 64; piece <= 512; ++piece) {
    ASSERT_EQ(ReadIn(piece, false), expected) << "pieces of " << piece;
  }
}

}  // namespace
