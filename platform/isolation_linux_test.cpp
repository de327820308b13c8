// Keeps the tests of this program away from the settings and the event log of the user who runs
// them: both services find their files through these variables.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/fakes/temp_dir.h"

namespace {

class OwnFolders : public testing::Environment {
 public:
  OwnFolders() {
    setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
  }

 private:
  fakes::ScopedTempDir folder_;
};

[[maybe_unused]] const testing::Environment* const own_folders =
    testing::AddGlobalTestEnvironment(new OwnFolders);

}  // namespace
