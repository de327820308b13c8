#include "platform/event_log.h"

#include <windows.h>

#include "platform/event_text_windows.h"
#include "platform/service.h"
#include "platform/standard_error.h"
#include "platform/utf16_windows.h"

namespace platform {
namespace {

constexpr wchar_t kSource[] = L"Hitwick";

bool StartsInsertionCode(wchar_t after_percent) {
  return (after_percent >= L'0' && after_percent <= L'9') || after_percent == L'{';
}

bool IsFirstHalfOfPair(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

// The event source stays registered for the life of the process: a run writes many entries.
class ApplicationEventLog : public EventLog {
 public:
  ApplicationEventLog() : source_(RegisterEventSourceW(nullptr, kSource)) {}

  ~ApplicationEventLog() override {
    if (source_ != nullptr) DeregisterEventSource(source_);
  }

  void Write(EventLevel level, std::string_view text) override {
    const bool stored = Report(level, EventText(text));
    if (!stored || StandardErrorIsTerminal()) WriteStandardError(text);
  }

  void TellOfFailure(int /*exit_code*/) override {}

 private:
  bool Report(EventLevel level, const std::wstring& text) {
    if (source_ == nullptr) return false;
    const bool warning = level == EventLevel::kWarning;
    const WORD type = warning ? EVENTLOG_WARNING_TYPE : EVENTLOG_INFORMATION_TYPE;
    const DWORD message = warning ? kWarningMessage : kInformationMessage;
    const wchar_t* insertions[] = {text.c_str()};
    return ReportEventW(source_, type, 0, message, nullptr, 1, 0, insertions, nullptr) != 0;
  }

  HANDLE source_;
};

}  // namespace

std::wstring EventText(std::string_view text) {
  std::wstring shown;
  bool after_percent = false;
  for (const wchar_t unit : ToUtf16(text)) {
    if (after_percent && StartsInsertionCode(unit)) shown += L' ';
    shown += unit == L'\0' ? L' ' : unit;
    after_percent = unit == L'%';
  }
  if (shown.size() > kLongestEventText) {
    const bool splits_pair = IsFirstHalfOfPair(shown[kLongestEventText - 1]);
    shown.resize(kLongestEventText - (splits_pair ? 1 : 0));
  }
  return shown;
}

EventLog& TheEventLog() {
  static ApplicationEventLog application;
  return InUse<EventLog>(application);
}

}  // namespace platform
