// The application event log: what an administrator reads after a nightly run.
//
// Windows: the application event log, source "Hitwick". Linux: one append-only text file,
// `$XDG_STATE_HOME/hitwick/events.log` (default `~/.local/state`), one line an entry:
//
//     2026-01-31T02:00:00+01:00 information TEXT
//
// in local time; a line feed inside the text is written as the two characters `\n` (a carriage
// return before it is dropped). When standard error is a terminal the text is shown there too.
// An entry that cannot be stored is shown on standard error instead; it never stops a run.
#ifndef HITWICK_PLATFORM_EVENT_LOG_H_
#define HITWICK_PLATFORM_EVENT_LOG_H_

#include <string_view>

namespace platform {

enum class EventLevel { kInformation, kWarning };

class EventLog {
 public:
  virtual ~EventLog() = default;
  // Stores one entry. `text` is the whole entry, the program's title included.
  virtual void Write(EventLevel level, std::string_view text) = 0;
};

EventLog& TheEventLog();

}  // namespace platform

#endif  // HITWICK_PLATFORM_EVENT_LOG_H_
