#include "report/csv.h"

namespace csv {

std::string FileName(std::string_view base, std::string_view table) {
  return std::string(base).append("-").append(table).append(".csv");
}

Table::Table(const std::vector<std::string_view>& columns) {
  for (const std::string_view column : columns) Text(column);
  EndRecord();
}

void Table::BeginField() {
  if (in_record_) content_ += ',';
  in_record_ = true;
}

Table& Table::Text(std::string_view text) {
  BeginField();
  content_ += '"';
  for (const char c : text) {
    if (c == '"') content_ += '"';
    content_ += c;
  }
  content_ += '"';
  return *this;
}

Table& Table::Number(std::string_view number) {
  BeginField();
  content_.append(number);
  return *this;
}

void Table::EndRecord() {
  content_.append("\r\n");
  in_record_ = false;
}

}  // namespace csv
