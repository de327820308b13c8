// Opening files with a stand-in for `xdg-open`.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "platform/shell.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

class DesktopTest : public testing::Test {
 protected:
  DesktopTest() : path_(std::getenv("PATH")) {
    setenv("PATH", (dir_.path() + ":/usr/bin:/bin").c_str(), 1);
    setenv("OPENED", opened_.c_str(), 1);
    fakes::WriteFile(page_, "page");
  }
  ~DesktopTest() override {
    setenv("PATH", path_.c_str(), 1);
    unsetenv("OPENED");
  }

  void UseOpener(const std::string& script) {
    const std::string program = dir_ / "xdg-open";
    fakes::WriteFile(program, "#!/bin/sh\n" + script);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }

  fakes::ScopedTempDir dir_;
  const std::string opened_ = dir_ / "opened";
  const std::string page_ = dir_ / "a page's & $(name).htm";

 private:
  const std::string path_;
};

TEST_F(DesktopTest, ThePathReachesTheOpenerAsItIs) {
  UseOpener("printf '%s|%s' \"$#\" \"$1\" > \"$OPENED\"\n");
  EXPECT_TRUE(TheShell().Open(page_));
  EXPECT_EQ(fakes::ReadFile(opened_), "1|" + page_);
}

TEST_F(DesktopTest, AnOpenerThatFailsIsAFailure) {
  UseOpener("sleep 0.2; exit 3\n");
  EXPECT_FALSE(TheShell().Open(page_));
}

TEST_F(DesktopTest, AnOpenerThatIsKilledIsAFailure) {
  UseOpener("kill -9 $$\n");
  EXPECT_FALSE(TheShell().Open(page_));
}

TEST_F(DesktopTest, AMissingOpenerIsAFailure) {
  setenv("PATH", dir_.path().c_str(), 1);
  EXPECT_FALSE(TheShell().Open(page_));
}

TEST_F(DesktopTest, AMissingFileIsAFailureWithoutAnyOpener) {
  UseOpener("touch \"$OPENED\"\n");
  EXPECT_FALSE(TheShell().Open(dir_ / "missing.htm"));
  EXPECT_FALSE(std::filesystem::exists(opened_));
}

TEST_F(DesktopTest, AnOpenerThatGoesOnIsASuccessAndIsLeftAlone) {
  UseOpener("exec sleep 20\n");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(TheShell().Open(page_));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(DesktopTest, SignalsThatThisProgramIgnoresActOnTheOpener) {
  UseOpener("(sleep 0.3; echo x; touch \"$OPENED\") | true\nsleep 0.6\n");
  signal(SIGPIPE, SIG_IGN);
  EXPECT_TRUE(TheShell().Open(page_));
  signal(SIGPIPE, SIG_DFL);
  EXPECT_FALSE(std::filesystem::exists(opened_));
}

}  // namespace
}  // namespace platform
