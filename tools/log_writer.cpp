#include "tools/log_writer.h"

#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "config/calendar.h"

namespace sample_logs {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;
constexpr std::string_view kServerAddress = "10.0.0.80";
constexpr std::string_view kFields =
    "date time s-ip cs-method cs-uri-stem cs-uri-query s-port cs-username c-ip cs(User-Agent) "
    "cs(Referer) sc-status sc-substatus sc-win32-status sc-bytes cs-bytes time-taken";

void AppendTwoDigits(std::int64_t number, std::string* out) {
  out->push_back(static_cast<char>('0' + number / 10 % 10));
  out->push_back(static_cast<char>('0' + number % 10));
}

void AppendNumber(std::uint64_t number, std::string* out) {
  char digits[20];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
  out->append(digits, end.ptr);
}

void AppendField(std::string_view text, std::string* out) {
  out->push_back(' ');
  out->append(text);
}

void AppendField(std::uint64_t number, std::string* out) {
  out->push_back(' ');
  AppendNumber(number, out);
}

void AppendTime(std::int64_t time, std::string* out) {
  const std::int64_t second = time % kSecondsPerDay;
  AppendTwoDigits(second / 3600, out);
  out->push_back(':');
  AppendTwoDigits(second / 60 % 60, out);
  out->push_back(':');
  AppendTwoDigits(second % 60, out);
}

std::string DateText(const calendar::Date& date) {
  std::string text = std::to_string(date.year) + "-";
  AppendTwoDigits(date.month, &text);
  text.push_back('-');
  AppendTwoDigits(date.day, &text);
  return text;
}

std::string FileName(const calendar::Date& date) {
  std::string name = "u_ex";
  for (const int part : {date.year, date.month, date.day}) AppendTwoDigits(part % 100, &name);
  return name + ".log";
}

}  // namespace

LogWriter::LogWriter(std::string folder) : folder_(std::move(folder)) {
  std::filesystem::create_directories(folder_);
  buffer_.reserve(kBufferSize + 4096);
}

LogWriter::~LogWriter() = default;

void LogWriter::StartDay(const LogLine& first) {
  Close();
  day_number_ = first.time / kSecondsPerDay;
  const calendar::Date date = calendar::DateOfDayNumber(static_cast<long>(day_number_));
  date_ = DateText(date);
  path_ = (std::filesystem::path(folder_) / FileName(date)).string();
  file_.open(path_, std::ios::binary | std::ios::trunc);
  if (!file_) throw std::runtime_error("cannot create " + path_);
  buffer_ = "#Software: Microsoft Internet Information Services 8.5\r\n#Version: 1.0\r\n#Date: ";
  buffer_.append(date_).push_back(' ');
  AppendTime(first.time, &buffer_);
  buffer_.append("\r\n#Fields: ").append(kFields).append("\r\n");
}

void LogWriter::Write(const LogLine& line) {
  if (line.time / kSecondsPerDay != day_number_) StartDay(line);
  buffer_.append(date_).push_back(' ');
  AppendTime(line.time, &buffer_);
  AppendField(kServerAddress, &buffer_);
  AppendField(line.method, &buffer_);
  AppendField(line.stem, &buffer_);
  AppendField(line.query, &buffer_);
  AppendField("80", &buffer_);
  AppendField(line.user, &buffer_);
  AppendField(line.client, &buffer_);
  AppendField(line.agent, &buffer_);
  AppendField(line.referrer, &buffer_);
  AppendField(line.status, &buffer_);
  AppendField(line.substatus, &buffer_);
  AppendField(line.win32_status, &buffer_);
  AppendField(line.bytes_sent, &buffer_);
  AppendField(line.bytes_received, &buffer_);
  AppendField(line.time_taken_ms, &buffer_);
  buffer_.append("\r\n");
  ++lines_;
  if (buffer_.size() >= kBufferSize) Flush();
}

void LogWriter::Flush() {
  file_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
  if (!file_) throw std::runtime_error("cannot write " + path_);
}

void LogWriter::Close() {
  if (!file_.is_open()) return;
  Flush();
  file_.close();
  if (!file_) throw std::runtime_error("cannot write " + path_);
}

}  // namespace sample_logs
