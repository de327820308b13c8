#include "platform/mod_systemInfo.h"

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

void AllowBoxes(bool allowed) { boxes_allowed = allowed; }

bool BoxesAllowed() { return boxes_allowed; }

void OpenHelp() { OpenOrTell(platform::TheShell().HelpPage(), "Cannot locate help file"); }

void OpenFile(const std::string& path) { OpenOrTell(path, "Cannot locate file"); }

}  // namespace mod_systemInfo
