// What the tests of the windows' decisions share: a site in memory whose folders are absolute, and
// a desktop that opens nothing. Test code only.
#ifndef HITWICK_UI_WINDOW_FIXTURE_H_
#define HITWICK_UI_WINDOW_FIXTURE_H_

#include <string>

#include "app/run_fixture.h"
#include "platform/folder_path.h"
#include "platform/mod_systemInfo.h"
#include "platform/shell.h"
#include "tests/fakes/fake_shell.h"

class WindowTest : public RunTest {
 protected:
  WindowTest() {
    mod_systemInfo::AllowBoxes(true);
    files_.AddFolder(root_);
    files_.AddFile(platform::JoinPath(logs_, "ex260115.log"), kLog);
    files_.AddFolder(usage_);
    UseFolders("INI");
    UseFolders("web1");
  }
  ~WindowTest() override { mod_systemInfo::AllowBoxes(false); }

  void UseFolders(const std::string& site) {
    store_.Put(site, "IISLogDir", logs_);
    store_.Put(site, "UsageDir", usage_);
  }
  // A folder directly below the root.
  std::string Folder(const std::string& name) const { return platform::FolderInside(root_, name); }
  std::string Page(const std::string& name) const { return platform::JoinPath(usage_, name); }
  // Settings as if they had been loaded.
  void UseAbsoluteSettings() {
    State().SiteName = "web1";
    State().Settings = {"W3C", logs_, usage_, 10, false, false, false};
  }

  static constexpr const char* kLog =
      "#Fields: date time c-ip cs-uri-stem sc-status\n2026-01-15 12:00:00 10.0.0.1 /x 200\n";
  const std::string root_ = platform::FolderChain(platform::NormalisedFolder("")).front();
  const std::string logs_ = platform::FolderInside(root_, "srv-logs");
  const std::string usage_ = platform::FolderInside(root_, "srv-usage");
  fakes::FakeShell shell_;

 private:
  platform::Replacement<platform::Shell> shell_replacement_{shell_};
};

#endif  // HITWICK_UI_WINDOW_FIXTURE_H_
