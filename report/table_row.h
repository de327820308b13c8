// A row of a table whose cells are the fields of a CSV record, collected together.
//
// No state. Called for the tables of figures: daily and hourly usage, short summary.
#ifndef HITWICK_REPORT_TABLE_ROW_H_
#define HITWICK_REPORT_TABLE_ROW_H_

#include <string>
#include <string_view>

#include "report/csv.h"
#include "report/html.h"

namespace report {

class TableRow {
 public:
  // `opening` begins the row. `file` outlives this object.
  TableRow(csv::Table& file, std::string_view opening) : file_(file), cells_(opening) {}

  // A number; the cell shows it with its unit, or as `cell`.
  void Add(const std::string& number, std::string_view unit = {}) {
    AddAs(number + std::string(unit), number);
  }
  void AddAs(std::string_view cell, const std::string& number) {
    cells_.append("<td>").append(cell).append("</td>");
    file_.Number(number);
  }
  // Ends row and record; `after` follows on the page's line.
  void End(std::string& page, std::string_view after = {}) {
    html::Line(page, cells_, "</tr>", after);
    file_.EndRecord();
  }

 private:
  csv::Table& file_;
  std::string cells_;
};

}  // namespace report

#endif  // HITWICK_REPORT_TABLE_ROW_H_
