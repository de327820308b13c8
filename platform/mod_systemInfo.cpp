#include "platform/mod_systemInfo.h"

#include "platform/file_system.h"
#include "platform/message_box.h"
#include "platform/shell.h"

namespace mod_systemInfo {
namespace {

bool boxes_allowed = false;

// Opens `path`; a failure is told as `complaint`, then the path in single quotes.
void OpenOrTell(const std::string& path, const std::string& complaint) {
  if (platform::TheShell().Open(path) || !boxes_allowed) return;
  platform::TheMessageBoxes().Show(complaint + " '" + path + "'");
}

}  // namespace

std::string GetErrorText(std::int32_t code) {
  if (code == platform::kForeignLinkError) {
    return "A symbolic link on the way belongs to another user";
  }
  if (code == platform::kLockBusyError) return "Another process has held the lock all the time";
  if (code == platform::kDamagedArchiveError) return "The archive is damaged or cut off";
  return SystemErrorText(code);
}

void AllowBoxes(bool allowed) { boxes_allowed = allowed; }

bool BoxesAllowed() { return boxes_allowed; }

void OpenHelp() { OpenOrTell(platform::TheShell().HelpPage(), "Cannot locate help file"); }

void OpenFile(const std::string& path) { OpenOrTell(path, "Cannot locate file"); }

}  // namespace mod_systemInfo
