#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>

#include "platform/environment.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

// The names are read once in a process: each case asks a process of its own.
std::string AskedInChild(const std::function<void()>& prepare,
                         const std::function<std::string()>& ask) {
  int ends[2] = {};
  if (pipe(ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child == 0) {
    prepare();
    const std::string answer = ask();
    const ssize_t written = write(ends[1], answer.data(), answer.size());
    _exit(written == static_cast<ssize_t>(answer.size()) ? 0 : 1);
  }
  close(ends[1]);
  std::string answer;
  char buffer[512];
  for (ssize_t got = 0; (got = read(ends[0], buffer, sizeof buffer)) > 0;) {
    answer.append(buffer, static_cast<std::size_t>(got));
  }
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return answer;
}

void SetLocale(const std::string& name) {
  unsetenv("LC_TIME");
  unsetenv("LANG");
  setenv("LC_ALL", name.c_str(), 1);
}

std::string ThirdMonth() { return MonthName(3) + " " + MonthAbbreviation(3); }

class MonthNamesTest : public testing::Test {
 protected:
  // Compiles a locale into a folder of the test's own.
  void Compile(const std::string& source, const std::string& charset, const std::string& name) {
    const std::string command =
        "localedef -i " + source + " -f " + charset + " " + (folder_ / name) + " >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command << " (Debian package locales)";
  }
  void Use(const std::string& name) {
    setenv("LOCPATH", folder_.path().c_str(), 1);
    SetLocale(name);
  }

  fakes::ScopedTempDir folder_;
};

TEST_F(MonthNamesTest, AreEnglishInTheCLocale) {
  EXPECT_EQ(AskedInChild([] { SetLocale("C"); }, ThirdMonth), "March Mar");
  EXPECT_EQ(AskedInChild([] { SetLocale("C"); },
                         [] { return MonthName(12) + " " + MonthAbbreviation(12); }),
            "December Dec");
}

TEST_F(MonthNamesTest, AreEnglishWithoutAnyLocale) {
  const auto no_locale = [] {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(variable);
  };
  EXPECT_EQ(AskedInChild(no_locale, ThirdMonth), "March Mar");
}

TEST_F(MonthNamesTest, AreEnglishInALocaleThatDoesNotExist) {
  EXPECT_EQ(AskedInChild([] { SetLocale("xx_XX.NOWHERE"); }, ThirdMonth), "March Mar");
}

TEST_F(MonthNamesTest, FollowTheLocale) {
  ASSERT_NO_FATAL_FAILURE(Compile("de_DE", "UTF-8", "de_DE.UTF-8"));
  EXPECT_EQ(AskedInChild([&] { Use("de_DE.UTF-8"); }, [] { return MonthName(3); }), "März");
}

TEST_F(MonthNamesTest, AreConvertedFromAnotherCharacterSet) {
  ASSERT_NO_FATAL_FAILURE(Compile("de_DE", "ISO-8859-1", "de_DE.ISO-8859-1"));
  EXPECT_EQ(AskedInChild([&] { Use("de_DE.ISO-8859-1"); }, [] { return MonthName(3); }), "März");
}

TEST_F(MonthNamesTest, FollowTheDateLocaleBeforeTheGeneralOne) {
  ASSERT_NO_FATAL_FAILURE(Compile("de_DE", "ISO-8859-1", "de_DE.ISO-8859-1"));
  const auto date_only = [&] {
    Use("");
    setenv("LC_TIME", "de_DE.ISO-8859-1", 1);
    setenv("LANG", "C.UTF-8", 1);
  };
  EXPECT_EQ(AskedInChild(date_only, [] { return MonthName(3); }), "März");
}

}  // namespace
}  // namespace platform
