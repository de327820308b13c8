// History.txt of any bytes: what is read lies in the last twelve months and within the bounds of a
// figure, and what is saved loads to itself.
#include <cmath>

#include "report/mdlYear.h"
#include "tests/fuzz/page_check.h"
#include "tests/fuzz/site.h"

namespace {

using stats::HistoryRow;

constexpr double kMostFigure = 1e15;

void CheckRow(const HistoryRow& row, int month) {
  if (row.yr == 0) return;
  fuzz::ExpectEqual(int{row.mon}, month, "a row's month");
  fuzz::Expect(row.yr == 2026 ? row.mon <= 12 : row.yr == 2025 && row.mon > 1, "a row's year");
  for (const double figure : {row.bytes, row.hits, row.pages, row.upages, row.responseTime,
                              row.visitors, row.visits, row.files}) {
    fuzz::Expect(figure >= 0 && figure <= kMostFigure && !std::signbit(figure), "a figure");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Site site;
  mdlConfigs::Run().Settings.UsageDir = "usage";
  const std::string path = platform::JoinPath("usage", "History.txt");
  const std::string given(reinterpret_cast<const char*>(data), size);
  site.files.AddFile(path, given);
  mdlYear::LoadHistory();
  for (int month = 1; month <= 12; ++month) CheckRow(mdlYear::HistorySlot(month), month);
  std::string page;
  mdlYear::WriteLast12Months(page);
  fuzz::PageCheck::Run(page);
  fuzz::ExpectEqual(mdlYear::SaveHistory(), std::int16_t{0}, "saving");
  const std::string saved = site.files.Content(path);
  const std::string old = platform::JoinPath("usage", "History.old");
  fuzz::Expect(!site.files.Exists(old) || site.files.Content(old) == given,
               "a broken file is kept as it was");
  mdlYear::LoadHistory();
  fuzz::ExpectEqual(mdlYear::SaveHistory(), std::int16_t{0}, "saving again");
  fuzz::Expect(site.files.Content(path) == saved, "a saved history loads to itself", saved);
  return 0;
}
