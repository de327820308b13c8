// The application event log: what an administrator reads after a nightly run.
//
// Windows: the application event log, source "Hitwick". Linux: one append-only text file,
// `$XDG_STATE_HOME/hitwick/events.log` (default `~/.local/state`), one line an entry:
//
//     2026-01-31T02:00:00+01:00 information TEXT
//
// in local time; a line feed inside the text is written as the two characters `\n` (a carriage
// return before it is dropped), any other control character as `\x1b`, so that a log's text does
// nothing to the terminal on which the file is read. An entry that would take the file over
// 10,000,000 bytes finds a new one: the old one moves to `events.log.1`, and the one there goes.
//
// When standard error is a terminal the text is shown there too. An entry that cannot be stored is
// shown on standard error instead; it never stops a run.
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
  // The end of a run that nobody watched and that failed. Linux: one line on standard error, which
  // cron mails, with the last warning and the file's path, unless standard error is a terminal,
  // where the warning has been seen. Windows: nothing; Task Scheduler shows the exit code.
  virtual void TellOfFailure(int exit_code) = 0;
};

EventLog& TheEventLog();

}  // namespace platform

#endif  // HITWICK_PLATFORM_EVENT_LOG_H_
