// Comma-separated tables, built in memory and put in place as whole files.
//
// No state. Called by the month page for the companions of its tables.
#ifndef HITWICK_REPORT_CSV_H_
#define HITWICK_REPORT_CSV_H_

#include <string>
#include <string_view>
#include <vector>

namespace csv {

// base name, "-", table name, ".csv". With a base path the path of the file, with a bare name the
// target of a link beside it.
std::string FileName(std::string_view base, std::string_view table);

// Fields are added from left to right, `EndRecord` closes the record.
class Table {
 public:
  Table() = default;
  // A table that starts with its column names.
  explicit Table(const std::vector<std::string_view>& columns);

  // A text in double quotes; those inside it are doubled.
  Table& Text(std::string_view text);
  // A number as it stands; empty for a field without one.
  Table& Number(std::string_view number);
  void EndRecord();

  const std::string& content() const { return content_; }

 private:
  void BeginField();

  std::string content_;
  bool in_record_ = false;
};

}  // namespace csv

#endif  // HITWICK_REPORT_CSV_H_
