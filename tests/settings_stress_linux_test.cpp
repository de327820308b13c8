// The settings file under processes that write at the same time, that are killed while they
// write, and on a disk that takes no more.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "config/mdlRegistry.h"
#include "tests/fakes/temp_dir.h"

namespace {

class SettingsStressTest : public testing::Test {
 protected:
  SettingsStressTest() { setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1); }
  ~SettingsStressTest() override { unsetenv("XDG_CONFIG_HOME"); }

  // Runs `work` in a process of its own; its result is the exit code.
  static pid_t StartProcess(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    return child;
  }
  // The exit code of a process; -1 when a signal ended it.
  static int ExitCode(pid_t process) {
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  static int Read(const std::string& site, const std::string& name) {
    return std::atoi(mdlRegistry::ReadSetting(site, name, "-1").c_str());
  }
  std::vector<std::string> EntriesOfFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "config/hitwick")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  fakes::ScopedTempDir folder_;
};

TEST_F(SettingsStressTest, TwoProcessesThatSaveAtOnceLoseNothing) {
  constexpr int kRounds = 100;
  constexpr int kValues = 4;
  for (int round = 0; round < kRounds; ++round) {
    const auto save_site = [round](const std::string& site) {
      return [round, site] {
        for (int value = 0; value < kValues; ++value) {
          const std::string name = "value" + std::to_string(value);
          if (mdlRegistry::SaveSetting(site, name, std::to_string(round)) != 0) return 1;
        }
        const std::string own = "round" + std::to_string(round);
        return mdlRegistry::SaveSetting(site, own, "1") == 0 ? 0 : 1;
      };
    };
    const pid_t first = StartProcess(save_site("web1"));
    const pid_t second = StartProcess(save_site("web2"));
    ASSERT_EQ(ExitCode(first), 0);
    ASSERT_EQ(ExitCode(second), 0);
    for (const char* site : {"web1", "web2"}) {
      for (int value = 0; value < kValues; ++value) {
        ASSERT_EQ(Read(site, "value" + std::to_string(value)), round) << site;
      }
    }
  }
  for (int round = 0; round < kRounds; ++round) {
    EXPECT_EQ(Read("web1", "round" + std::to_string(round)), 1) << round;
    EXPECT_EQ(Read("web2", "round" + std::to_string(round)), 1) << round;
  }
}

// A text too long for a single block of the disk, the same number in every line.
std::string LongText(int number) {
  std::string text;
  for (int line = 0; line < 3000; ++line) text += std::to_string(number) + "\n";
  return text;
}

// Saves ever higher numbers and reports each one on `report` once it is stored, until killed.
int SaveForEver(int first, int report) {
  for (int number = first;; ++number) {
    if (mdlRegistry::SaveSetting("web1", "text", LongText(number)) != 0) return 1;
    if (write(report, &number, sizeof number) != sizeof number) return 2;
  }
}

TEST_F(SettingsStressTest, AKilledProcessLeavesTheOldContentOrTheNew) {
  using Time = std::chrono::steady_clock;
  constexpr int kKills = 60;
  ASSERT_EQ(mdlRegistry::SaveSetting("web2", "UsageDir", "/srv/www"), 0);
  const Time::time_point start = Time::now();
  ASSERT_EQ(mdlRegistry::SaveSetting("web1", "text", LongText(0)), 0);
  const auto one_save = std::chrono::duration<double>(Time::now() - start);
  std::mt19937 random(20260131);
  std::uniform_real_distribution<double> saves(0.0, 3.0);
  int stored = 0;
  for (int kill_number = 0; kill_number < kKills; ++kill_number) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    const pid_t writer = StartProcess([&] { return SaveForEver(stored + 1, ends[1]); });
    close(ends[1]);
    // Every other process is killed after its first save at the earliest, however slow the
    // machine is.
    if (kill_number % 2 == 0) {
      ASSERT_EQ(read(ends[0], &stored, sizeof stored), static_cast<ssize_t>(sizeof stored));
    }
    std::this_thread::sleep_for(one_save * saves(random));
    kill(writer, SIGKILL);
    EXPECT_EQ(ExitCode(writer), -1);
    for (int number = 0; read(ends[0], &number, sizeof number) == sizeof number;) stored = number;
    close(ends[0]);

    const std::string text = mdlRegistry::ReadSetting("web1", "text", "missing");
    const int found = std::atoi(text.c_str());
    ASSERT_TRUE(found == stored || found == stored + 1) << found << " after " << stored;
    ASSERT_TRUE(text == LongText(found));
    ASSERT_EQ(mdlRegistry::ReadSetting("web2", "UsageDir", "missing"), "/srv/www");
    stored = found;
  }
  ASSERT_EQ(mdlRegistry::SaveSetting("web1", "text", "done"), 0);
  EXPECT_EQ(EntriesOfFolder().size(), 2u) << "only the settings and their lock remain";
}

TEST_F(SettingsStressTest, AFullDiskLeavesTheOldFile) {
  ASSERT_EQ(mdlRegistry::SaveSetting("web1", "UsageDir", "/srv/www"), 0);
  const std::string before = fakes::ReadFile(folder_ / "config/hitwick/settings.ini");
  const pid_t writer = StartProcess([] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, 4096};
    setrlimit(RLIMIT_FSIZE, &small);
    return mdlRegistry::SaveSetting("web1", "text", LongText(1)) == 0 ? 0 : 3;
  });
  EXPECT_EQ(ExitCode(writer), 3);
  EXPECT_EQ(fakes::ReadFile(folder_ / "config/hitwick/settings.ini"), before);
  EXPECT_EQ(EntriesOfFolder().size(), 2u);
}

TEST_F(SettingsStressTest, AFolderThatCannotBeMadeIsAnError) {
  fakes::WriteFile(folder_ / "config", "a file where the folder should be");
  EXPECT_NE(mdlRegistry::SaveSetting("web1", "UsageDir", "/srv/www"), 0);
  EXPECT_EQ(mdlRegistry::ReadSetting("web1", "UsageDir", "none"), "none");
}

}  // namespace
