#include "platform/crontab_linux.h"

#include <algorithm>
#include <cstddef>

#include "platform/file_system.h"

namespace platform {
namespace {

constexpr std::string_view kEveryDay = " * * *";
// Every cron reads commands of this length.
constexpr std::size_t kLongestLine = 998;

// Switches of capitals alone mean the same to everybody.
bool NeedsQuotes(std::string_view word) {
  return !std::all_of(word.begin(), word.end(),
                      [](char c) { return c == '/' || (c >= 'A' && c <= 'Z'); });
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    if (!word.empty()) words.push_back(word);
    text.remove_prefix(std::min(text.size(), word.size() + 1));
  }
  return words;
}

// The lines of a text, each with its line end, if it has one.
std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    lines.push_back(text.substr(0, std::min(text.size(), line.size() + 1)));
    text.remove_prefix(lines.back().size());
  }
  return lines;
}

std::string_view WithoutLineEnd(std::string_view line) {
  return line.ends_with('\n') ? line.substr(0, line.size() - 1) : line;
}

// Whether a line may be what this program wrote behind a task's comment.
bool IsTaskLine(std::string_view line) {
  return !line.starts_with('#') && line.find(" /BATCH") != std::string_view::npos;
}

}  // namespace

std::string CrontabWord(std::string_view text) {
  std::string word = "'";
  for (const char c : text) {
    switch (c) {
      case '\'':
        word += "'\"'\"'";
        break;
      case '%':
        word += "\\%";
        break;
      case '\\':
        // Nothing that cron might take for an escape follows it, and the shell sees no more.
        word += "\\''";
        break;
      default:
        word += c;
    }
  }
  return word + "'";
}

std::string CrontabLine(const DailyTask& task,
                        const std::vector<std::pair<std::string, std::string>>& variables) {
  std::string line =
      std::to_string(task.minute) + " " + std::to_string(task.hour) + std::string(kEveryDay);
  for (const auto& [name, value] : variables) line += " " + name + "=" + CrontabWord(value);
  line += " " + CrontabWord(JoinPath(task.folder, task.program));
  for (const std::string_view word : Words(task.parameters)) {
    line += " " + (NeedsQuotes(word) ? CrontabWord(word) : std::string(word));
  }
  return line;
}

std::string CrontabRefusal(std::string_view line) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; };
  if (std::any_of(line.begin(), line.end(), is_control)) {
    return "A name with control characters cannot stand in a crontab";
  }
  if (line.size() > kLongestLine) return "The command is too long for a crontab";
  return {};
}

std::string CrontabComment(std::string_view name) {
  return std::string("# Hitwick task ").append(name);
}

std::string CrontabWith(std::string_view crontab, std::string_view name, std::string_view line) {
  const std::string comment = CrontabComment(name);
  const std::string entry = comment + "\n" + std::string(line) + "\n";
  std::string text;
  bool placed = false;
  bool behind_comment = false;
  for (const std::string_view old : Lines(crontab)) {
    const bool is_comment = WithoutLineEnd(old) == comment;
    const bool is_old_task = behind_comment && IsTaskLine(old);
    behind_comment = is_comment;
    if (is_comment && !placed) text += entry;
    if (is_comment) placed = true;
    if (!is_comment && !is_old_task) text += old;
  }
  if (!text.empty() && text.back() != '\n') text += '\n';
  return placed ? text : text + entry;
}

}  // namespace platform
