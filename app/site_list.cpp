#include "app/site_list.h"

#include <iostream>
#include <string>

#include "app/frmMain.h"
#include "config/mdlRegistry.h"
#include "config/program.h"
#include "platform/settings_store.h"
#include "platform/standard_error.h"

namespace {

// The branch that holds the sites; nobody has made it as long as there are none.
mdlRegistry::OpenedKey OpenBranch() {
  platform::SettingsStore::Key key = 0;
  const std::int32_t result =
      platform::TheSettingsStore().OpenKey(std::string(platform::kSettingsBranch), &key);
  return {result, key};
}

}  // namespace

int PrintSites() {
  const mdlRegistry::OpenedKey branch = OpenBranch();
  if (!branch && branch.result() != platform::kStoreNotFound) {
    platform::WriteStandardError(std::string(program::kTitle) + ": The settings cannot be read : " +
                                 std::to_string(branch.result()));
    return frmMain::kExitFailed;
  }
  if (!branch) return frmMain::kExitDone;
  for (const std::string& site : mdlRegistry::SubkeyNames(branch.key())) std::cout << site << '\n';
  std::cout.flush();
  return frmMain::kExitDone;
}
