// Settings that were meant but are not read, such as a misspelt `IISLogdirs`.
//
// State: what has been reported in this process. Called when a site's settings are loaded. A store
// without lines (the Windows registry) is not looked at.
#ifndef HITWICK_CONFIG_UNREAD_SETTINGS_H_
#define HITWICK_CONFIG_UNREAD_SETTINGS_H_

#include <string>

namespace unread_settings {

// Logs one warning, which names the line, for each value that nothing reads: above the first
// section, in the site's section, and in those below it. A value is reported once per process,
// however often its site is loaded. The names of a site's settings are known in any letter case;
// those of a filter rule only as they are read, letter case included.
void Report(const std::string& site);

// Forgets what has been reported. For tests.
void Reset();

}  // namespace unread_settings

#endif  // HITWICK_CONFIG_UNREAD_SETTINGS_H_
