// Reads CSV files strictly. Test code only.
#ifndef HITWICK_TESTS_FUZZ_CSV_CHECK_H_
#define HITWICK_TESTS_FUZZ_CSV_CHECK_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/expect.h"

namespace fuzz {

using CsvRecord = std::vector<std::string>;

// The records of a table; ends the process when it is none: a text is in quotes, those inside it
// doubled, a number is plain, every record ends with CR LF and, but in the summary, whose rows
// differ in kind, has as many fields as the first.
class CsvCheck {
 public:
  static std::vector<CsvRecord> Read(std::string_view content, std::string_view name) {
    CsvCheck check(content, name);
    std::vector<CsvRecord> records;
    while (check.at_ < content.size()) records.push_back(check.Record());
    Expect(!records.empty(), "a table has a header", name);
    if (name.ends_with("-Summary.csv")) return records;
    for (const CsvRecord& record : records) {
      Expect(record.size() == records[0].size(), "records have the header's columns", name);
    }
    return records;
  }

 private:
  CsvCheck(std::string_view content, std::string_view name) : content_(content), name_(name) {}

  char Here() const { return at_ < content_.size() ? content_[at_] : '\0'; }

  CsvRecord Record() {
    CsvRecord record;
    for (;;) {
      record.push_back(Here() == '"' ? Text() : Number());
      if (Here() != ',') break;
      ++at_;
    }
    Expect(content_.substr(at_, 2) == "\r\n", "records end with CR LF", name_);
    at_ += 2;
    return record;
  }

  std::string Text() {
    std::string text;
    for (++at_; at_ < content_.size(); ++at_) {
      if (content_[at_] == '"') {
        if (content_.substr(at_, 2) != "\"\"") break;
        ++at_;
      }
      text += content_[at_];
    }
    Expect(Here() == '"', "texts end", name_);
    ++at_;
    return text;
  }

  std::string Number() {
    const std::size_t end =
        std::min(content_.find_first_not_of("0123456789.-", at_), content_.size());
    const std::string number(content_.substr(at_, end - at_));
    at_ = end;
    return number;
  }

  const std::string_view content_;
  const std::string_view name_;
  std::size_t at_ = 0;
};

}  // namespace fuzz

#endif  // HITWICK_TESTS_FUZZ_CSV_CHECK_H_
