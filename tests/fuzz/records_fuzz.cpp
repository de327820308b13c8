// The log reader and the statistics: any bytes as log files, with any filter rule, against the
// literal month.
//
// Parts: options ('d' diagnostics, a zone, 's' small reads), a rule ("+" or "-", field, "=",
// pattern) or nothing, log files.
#include "stats/mdlWebPage.h"
#include "tests/fuzz/month_check.h"
#include "tests/fuzz/site.h"

namespace {

void SetRule(std::string_view text) {
  const std::size_t equals = text.find('=');
  if (text.empty() || equals == std::string_view::npos) return;
  mdlFilters::SetFilter("Rule", text[0] == '+', std::string(text.substr(1, equals - 1)),
                        std::string(text.substr(equals + 1)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string_view> parts = fuzz::PartsOf(data, size);
  if (parts.size() < 3) return -1;
  static const bool built = (mdlWebPage::BuildLookupTables(), true);
  static_cast<void>(built);
  fuzz::Site site;
  site.clock.bias_minutes = fuzz::BiasOf(parts[0]);
  if (fuzz::HasOption(parts[0], 's')) site.files.read_size_limit = 7;
  mdlConfigs::Run().LogTranslations = fuzz::HasOption(parts[0], 'd');
  mdlConfigs::Run().BatchMode = true;
  mdlConfigs::Run().Settings.LogDir = "logs";
  SetRule(parts[1]);
  site.AddLogs(parts, 2);
  const int slots = mdlVisit::SlotCapacity();
  stats::HistoryRow row;
  mdlW3C::ReadMonthLogs(1, 31, 1, 2026, [&row](const stats::HistoryRow& given) { row = given; });
  const reference::LiteralMonth literal = site.ReadLiterally(slots);
  fuzz::MonthCheck::Run(literal, true);
  fuzz::ExpectEqual(row.hits, double{literal.total_hits}, "hits of the history");
  fuzz::ExpectEqual(row.visits, double{static_cast<double>(literal.visits.all_lengths()[0].Visits)},
                    "visits of the history");
  if (mdlConfigs::Run().LogTranslations) site.CheckReasons(literal);
  return 0;
}
