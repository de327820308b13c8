#include "report/month_page.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "config/mdlConfigs.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "report/dates.h"
#include "report/page_frame.h"
#include "report/page_names.h"
#include "stats/mdlMonth.h"

namespace report {

MonthPage::MonthPage(std::string& page_text, std::string base_path, const Period& reported)
    : page(page_text),
      period(reported),
      month_name(platform::MonthName(reported.month)),
      month_and_year(month_name + " " + std::to_string(reported.year)),
      host(HostName()),
      days(DaysCounted(reported.month, reported.year)),
      total_hits(mdlMonth::Month().TotalHits),
      total_bytes(mdlMonth::Month().TotalBytes),
      base_path_(std::move(base_path)),
      list_size_(mdlConfigs::Run().Settings.MaxListSize),
      with_csv_(mdlConfigs::Run().Settings.GenerateCSV) {}

std::int32_t MonthPage::Rows(std::int32_t entries) const {
  return std::clamp(list_size_, 0, entries);
}

std::string MonthPage::DownloadLink(std::string_view csv_name) const {
  if (!with_csv_) return {};
  const std::size_t folder_end = base_path_.rfind(platform::kPathSeparator);
  const std::string base_name =
      folder_end == std::string::npos ? base_path_ : base_path_.substr(folder_end + 1);
  return " <small><a href=\"" + LinkTo(csv::FileName(base_name, csv_name)) +
         "\">(Download)</a></small>";
}

int MonthPage::SaveCsv(std::string_view csv_name, const csv::Table& table) const {
  if (!with_csv_) return 0;
  return platform::TheFileSystem().ReplaceFile(csv::FileName(base_path_, csv_name),
                                               table.content());
}

}  // namespace report
