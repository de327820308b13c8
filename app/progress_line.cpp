#include "app/progress_line.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "config/mdlConfigs.h"
#include "config/number_text.h"
#include "platform/standard_error.h"

namespace progress_line {
namespace {

std::string month_text;
std::string line;

// Most blocks change nothing that the line says.
void Show(const std::string& text) {
  if (text == line) return;
  line = text;
  platform::ShowStatusLine(line);
}

void ShowMonth(const mdlConfigs::MonthBegun& begun) {
  month_text = std::to_string(begun.year) + "-" + text::TwoDigits(begun.month) + " (" +
               std::to_string(begun.number) + " of " + std::to_string(begun.all) + ")";
  Show(month_text);
}

void ShowBytesRead(const std::string& file, std::uint64_t done, std::uint64_t all) {
  const std::uint64_t percent = all == 0 ? 0 : std::min<std::uint64_t>(done * 100 / all, 100);
  Show(month_text + ": " + file + ", " + std::to_string(percent) + " %");
}

}  // namespace

void Begin() {
  if (mdlConfigs::Run().Quiet || !platform::StandardErrorIsTerminal()) return;
  mdlConfigs::Run().Ui.show_month = ShowMonth;
  mdlConfigs::Run().Ui.show_bytes_read = ShowBytesRead;
}

void End() {
  mdlConfigs::Run().Ui.show_month = nullptr;
  mdlConfigs::Run().Ui.show_bytes_read = nullptr;
  line.clear();
  platform::ClearStatusLine();
}

}  // namespace progress_line
