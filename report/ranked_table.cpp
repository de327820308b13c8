#include "report/ranked_table.h"

#include <cstdint>

#include "report/csv.h"
#include "report/numbers.h"

namespace report {
namespace {

// A number and the cell that shows it.
struct FigureCell {
  std::string number;
  std::string cell;
};

FigureCell NumberFigure(const std::string& number) { return {number, html::NumberCell(number)}; }

FigureCell ShareFigure(double value, double total) {
  const std::string share = numbers::Share(value, total);
  return {share, html::PercentCell(share)};
}

FigureCell TimeFigure(double mean) {
  const std::string time = numbers::Rounded(mean);
  return {time, html::NumberCell(time + "&nbsp;")};
}

std::vector<FigureCell> FigureCells(const MonthPage& month, const stats::TallyEntry& entry,
                                    Figures figures) {
  const double hits = figures == Figures::kSiteHits ? double{entry.Metric} : entry.Count;
  const double bytes = entry.Metric;
  std::vector<FigureCell> cells = {NumberFigure(numbers::Plain(hits))};
  if (figures == Figures::kHitsAndShare || figures == Figures::kSiteHits ||
      figures == Figures::kTraffic) {
    cells.push_back(ShareFigure(hits, month.total_hits));
  }
  if (figures == Figures::kHitsAndTime) cells.push_back(TimeFigure(entry.Metric));
  if (figures == Figures::kHitsAndKBytes || figures == Figures::kTraffic) {
    cells.push_back(NumberFigure(numbers::Rounded(numbers::KBytes(bytes))));
  }
  if (figures == Figures::kTraffic) cells.push_back(ShareFigure(bytes, month.total_bytes));
  return cells;
}

void WriteRecord(csv::Table& file, const std::string& rank, const std::vector<FigureCell>& figures,
                 const RowKey& key, bool key_first) {
  if (!key_first) file.Number(rank);
  if (key_first) {
    for (const std::string_view text : key.texts) file.Text(text);
  }
  for (const FigureCell& figure : figures) file.Number(figure.number);
  if (!key_first) {
    for (const std::string_view text : key.texts) file.Text(text);
  }
  file.EndRecord();
}

}  // namespace

int WriteRankedTable(MonthPage& month, stats::TallyTable& table, const RankedTable& description) {
  const bool with_csv = !description.csv_name.empty();
  html::Line(month.page, description.opening);
  html::Caption(month.page,
                std::string(description.caption) + month.month_and_year +
                    std::string(description.caption_end),
                with_csv ? month.DownloadLink(description.csv_name) : std::string());
  html::Line(month.page, description.header);
  csv::Table file(description.csv_columns);
  const std::int32_t rows = month.Rows(table.Count());
  for (std::int32_t rank = 1; rank <= rows; ++rank) {
    const stats::TallyEntry entry = table.At(rank);
    const std::string number = std::to_string(rank);
    const std::vector<FigureCell> figures = FigureCells(month, entry, description.figures);
    const RowKey key = description.key(entry);
    std::string cells = "<tr>" + html::NumberCell(number);
    for (const FigureCell& figure : figures) cells += figure.cell;
    html::Line(month.page, cells, key.cells, "</tr>");
    if (with_csv) WriteRecord(file, number, figures, key, description.csv_key_first);
  }
  html::Line(month.page, html::kTableEnd);
  return with_csv ? month.SaveCsv(description.csv_name, file) : 0;
}

}  // namespace report
