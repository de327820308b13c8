#include "report/domains.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "config/text.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/numbers.h"
#include "stats/tally.h"

namespace report {
namespace {

constexpr std::string_view kCsvName = "Domains";

// Under these a company's name is the label below the top-level one; under all others there is a
// level between them ("co.uk").
// clang-format off
constexpr std::string_view kTopLevelDomains[] = {
    "com",
    "net",
    "org",
    "gov",
    "int",
    "mil",
    "edu",
    "biz",
    "info",
    "name",
    "pro",
    "ca",
    "it",
    "de",
    "gr",
    "nl",
    "ru",
    "tv",
    "cc",
    "ws",
    "to",
    "in",
    "br",
    "pl",
    "nu",
};
// clang-format on

bool IsListed(std::string_view label) {
  return std::ranges::any_of(kTopLevelDomains, [=](std::string_view domain) {
    return text::EqualsIgnoringCase(domain, label);
  });
}

// The 1-based place of the last "." before the 1-based place `end`; 0 when there is none.
std::size_t DotBefore(std::string_view host, std::size_t end) {
  const std::size_t dot = host.substr(0, end - 1).rfind('.');
  return dot == std::string_view::npos ? 0 : dot + 1;
}

std::string_view After(std::string_view host, std::size_t place) { return host.substr(place); }

// The company part of a host name whose last "." is at the 1-based place `dot`; empty when the
// name is too short to have one.
std::string_view CompanyOf(std::string_view host, std::size_t dot) {
  std::size_t start = DotBefore(host, dot);
  if (start > 1 && !IsListed(After(host, dot))) start = DotBefore(host, start);
  return start == 0 ? std::string_view() : After(host, start);
}

// One of the two lists of the table.
struct Side {
  explicit Side(stats::TallyTable& ranked) : table(ranked) { mdlMonth::SortTallyByMetric(table); }
  stats::TallyTable& table;
  std::int32_t rows = 0;
};

// A name and its share of the month's hits for each side, on the page and in the CSV file.
void WriteRow(MonthPage& month, Side& countries, Side& companies, std::int32_t rank,
              csv::Table& file) {
  const std::string number = std::to_string(rank);
  std::string cells = "<tr>" + html::NumberCell(number);
  file.Number(number);
  for (Side* side : {&countries, &companies}) {
    if (rank > side->rows) {
      cells += "<td></td><td></td>";
      file.Text("").Number("");
      continue;
    }
    const stats::TallyEntry entry = side->table.At(rank);
    const std::string share = numbers::Share(entry.Metric, month.total_hits);
    cells += html::TextCell(text::HtmlEscape(entry.Key)) + html::PercentCell(share);
    file.Text(entry.Key).Number(share);
  }
  html::Line(month.page, cells, "</tr>");
  file.EndRecord();
}

// Both sides show the hits without a country, though more of them may lack a company.
void WriteUnaccounted(MonthPage& month, csv::Table& file) {
  const std::string share =
      numbers::Share(month.total_hits - month.domains.attributed_hits, month.total_hits);
  const std::string cells = "<td>Unaccounted</td>" + html::PercentCell(share);
  html::Line(month.page, "<tr><td></td>", cells, cells, "</tr>");
  file.Number("").Text("Unaccounted").Number(share).Text("Unaccounted").Number(share).EndRecord();
}

}  // namespace

void AddHost(DomainTallies& domains, std::string_view host, std::int32_t hits) {
  const std::size_t dot = DotBefore(host, host.size() + 1);
  if (host.size() <= 4 || dot <= 1 || dot == host.size()) return;
  const auto weight = static_cast<float>(hits);
  domains.attributed_hits += hits;
  mdlMonth::TallyAdd(After(host, dot), domains.countries, weight);
  const std::string_view company = CompanyOf(host, dot);
  if (!company.empty()) mdlMonth::TallyAdd(company, domains.companies, weight);
}

int WriteDomains(MonthPage& month) {
  html::Line(month.page, html::kBlock70);
  html::Caption(month.page,
                "<a name=countries>Top Countries, Domains, Companies, ISPs for " +
                    month.month_and_year + "</a>",
                month.DownloadLink(kCsvName));
  html::Line(month.page,
             "<tbody><tr><th colspan=3 bgcolor=green>Countries/Domains</th>"
             "<th bgcolor=blue colspan=2>Companies/ISPs</th></tr>");
  html::Line(month.page,
             "<tr><th>#</th><th bgcolor=green>Country/Domain</th><th bgcolor=green>% hits</th>"
             "<th bgcolor=blue>Company/ISP</th><th bgcolor=blue>% hits</th></tr>");
  csv::Table file({"Rank", "Country", "CountryPctPct", "Company", "CompanyPct"});
  WriteUnaccounted(month, file);
  Side countries(month.domains.countries);
  Side companies(month.domains.companies);
  countries.rows = month.Rows(countries.table.Count());
  companies.rows = month.Rows(companies.table.Count());
  for (std::int32_t rank = 1; rank <= std::max(countries.rows, companies.rows); ++rank) {
    WriteRow(month, countries, companies, rank, file);
  }
  html::Line(month.page, html::kTableEnd);
  return month.SaveCsv(kCsvName, file);
}

}  // namespace report
