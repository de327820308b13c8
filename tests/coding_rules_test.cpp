// Holds the tree to docs/architecture.md: includes follow the arrows, and only platform/ knows the
// platform.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The folders that each folder may include besides itself.
const std::map<std::string, std::set<std::string>> kArrows = {
    {"platform", {}},
    {"config", {"platform"}},
    {"stats", {"config", "platform"}},
    {"logread", {"stats", "config", "platform"}},
    {"report", {"logread", "stats", "config", "platform"}},
    {"app", {"report", "logread", "stats", "config", "platform"}},
    {"ui", {"app", "report", "logread", "stats", "config", "platform"}},
    {"tools", {"config", "platform"}},
    {"bench", {"app", "report", "logread", "stats", "config", "platform", "tests"}},
};

struct SourceFile {
  std::string folder;
  std::string path;  // below the source folder, with "/"
  std::vector<std::string> lines;
  bool is_test = false;
};

std::vector<std::string> ReadLines(const fs::path& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

bool IsSource(const fs::path& path) {
  const std::string extension = path.extension().string();
  return extension == ".cpp" || extension == ".h" || extension == ".in";
}

std::vector<SourceFile> SourceFiles() {
  const fs::path root = HITWICK_SOURCE_DIR;
  std::vector<SourceFile> files;
  for (const auto& [folder, unused] : kArrows) {
    if (!fs::exists(root / folder)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      if (!entry.is_regular_file() || !IsSource(entry.path())) continue;
      SourceFile file;
      file.folder = folder;
      file.path = fs::relative(entry.path(), root).generic_string();
      file.lines = ReadLines(entry.path());
      file.is_test = file.path.find("_test.") != std::string::npos ||
                     file.path.find("_fixture.") != std::string::npos;
      files.push_back(std::move(file));
    }
  }
  return files;
}

// The first line of `lines` that `pattern` matches somewhere, or nothing.
std::string FirstMatch(const std::vector<std::string>& lines, const std::regex& pattern) {
  for (const std::string& line : lines) {
    if (std::regex_search(line, pattern)) return line;
  }
  return {};
}

// The folder of an include of the project's own; empty for any other line.
std::string IncludedFolder(const std::string& line) {
  static const std::regex pattern("^\\s*#\\s*include\\s*\"([^\"/]+)/");
  std::smatch match;
  return std::regex_search(line, match, pattern) ? match[1].str() : std::string();
}

const std::regex& PlatformKnowledge() {
  static const std::regex pattern(
      "^\\s*#\\s*include\\s*<(windows|winsock2?|ws2tcpip|winreg|unistd|fcntl|netdb|langinfo|"
      "iconv|spawn|dirent|sys/[a-z]+|arpa/[a-z]+|netinet/[a-z]+)\\.h>|"
      "^\\s*#.*\\b(_WIN32|_WIN64|__linux__|__unix__|__MINGW(32|64)__|_MSC_VER|__APPLE__)\\b");
  return pattern;
}

TEST(CodingRules, SourcesAreFound) { EXPECT_GT(SourceFiles().size(), 50u); }

TEST(CodingRules, IncludesFollowTheArrows) {
  for (const SourceFile& file : SourceFiles()) {
    for (const std::string& line : file.lines) {
      const std::string folder = IncludedFolder(line);
      if (folder.empty() || folder == file.folder) continue;
      if (folder == "tests" && file.is_test) continue;
      EXPECT_TRUE(kArrows.at(file.folder).count(folder)) << file.path << ": " << line;
    }
  }
}

TEST(CodingRules, OnlyPlatformKnowsThePlatform) {
  for (const SourceFile& file : SourceFiles()) {
    if (file.folder == "platform" || file.path.find("_linux_test.") != std::string::npos) continue;
    EXPECT_EQ(FirstMatch(file.lines, PlatformKnowledge()), "") << file.path;
  }
}

TEST(CodingRules, PlatformFilesHoldNoPlatformConditionals) {
  const std::regex conditional("^\\s*#\\s*(el)?if.*(_WIN32|__linux__|__MINGW)");
  for (const SourceFile& file : SourceFiles()) {
    if (file.folder != "platform") continue;
    EXPECT_EQ(FirstMatch(file.lines, conditional), "") << file.path;
  }
}

TEST(CodingRules, WindowToolkitStaysInUi) {
  const std::regex toolkit("^\\s*#\\s*include\\s*<(wx|gtk|gdk|atk)/");
  for (const SourceFile& file : SourceFiles()) {
    if (file.folder == "ui") continue;
    EXPECT_EQ(FirstMatch(file.lines, toolkit), "") << file.path;
  }
}

// The windows are one source for both toolkits, but for the files that say so in their names.
TEST(CodingRules, OnlyFilesNamedAfterAToolkitKnowIt) {
  const std::regex one_toolkit(
      "^\\s*#\\s*include\\s*<((gtk|gdk|atk)/|wx/(gtk|msw)/)|^\\s*#.*\\b__WX(GTK|MSW)");
  int named = 0;
  for (const SourceFile& file : SourceFiles()) {
    if (file.folder != "ui") continue;
    if (file.path.find("_gtk.") != std::string::npos ||
        file.path.find("_msw.") != std::string::npos) {
      ++named;
      continue;
    }
    EXPECT_EQ(FirstMatch(file.lines, one_toolkit), "") << file.path;
  }
  EXPECT_GT(named, 0);
}

// What the windows decide is tested without a display, so it is built without the toolkit.
TEST(CodingRules, DecisionsOfTheWindowsKnowNoToolkit) {
  const std::regex toolkit("^\\s*#\\s*include\\s*<wx/");
  const fs::path folder = fs::path(HITWICK_SOURCE_DIR) / "ui";
  bool listed = false;
  int checked = 0;
  for (const std::string& line : ReadLines(folder / "CMakeLists.txt")) {
    if (line.find("(ui_logic") != std::string::npos) listed = true;
    if (line.find("LINKS") != std::string::npos || line.find("LIBRARIES") != std::string::npos) {
      listed = false;
    }
    std::smatch name;
    if (!listed || !std::regex_search(line, name, std::regex("([a-z_]+)\\.cpp"))) continue;
    for (const char* extension : {".cpp", ".h"}) {
      const auto lines = ReadLines(folder / (name[1].str() + extension));
      EXPECT_EQ(FirstMatch(lines, toolkit), "") << name[1] << extension;
      checked += lines.empty() ? 0 : 1;
    }
  }
  EXPECT_GE(checked, 16);
}

TEST(CodingRules, OnlyNameLookupsUseThreads) {
  const std::regex threads(
      "std::(jthread|thread|async)\\b|pthread_create|CreateThread|beginthread");
  for (const SourceFile& file : SourceFiles()) {
    if (file.is_test || file.path == "stats/name_lookups.cpp") continue;
    EXPECT_EQ(FirstMatch(file.lines, threads), "") << file.path;
  }
}

// CMake's LINKS of a folder and the arrows above say the same.
TEST(CodingRules, CMakeLinksFollowTheArrows) {
  for (const auto& [folder, arrows] : kArrows) {
    if (folder == "tools" || folder == "bench") continue;
    const auto lines = ReadLines(fs::path(HITWICK_SOURCE_DIR) / folder / "CMakeLists.txt");
    std::set<std::string> links;
    for (const std::string& line : lines) {
      static const std::regex pattern("^\\s*LINKS ([a-z ]+)");
      std::smatch match;
      if (!std::regex_search(line, match, pattern)) continue;
      const std::string names = match[1].str();
      static const std::regex name("[a-z]+");
      for (auto i = std::sregex_iterator(names.begin(), names.end(), name);
           i != std::sregex_iterator(); ++i) {
        links.insert(i->str());
      }
    }
    EXPECT_EQ(links, arrows) << folder;
  }
}

// Only whether the pattern of forbidden lines works at all.
TEST(CodingRules, PlatformPatternMatchesWhatItShould) {
  EXPECT_TRUE(std::regex_search(std::string("#include <windows.h>"), PlatformKnowledge()));
  EXPECT_TRUE(std::regex_search(std::string("#include <sys/stat.h>"), PlatformKnowledge()));
  EXPECT_TRUE(std::regex_search(std::string("#ifdef _WIN32"), PlatformKnowledge()));
  EXPECT_TRUE(std::regex_search(std::string("#if defined(__linux__)"), PlatformKnowledge()));
  EXPECT_FALSE(std::regex_search(std::string("#include <string>"), PlatformKnowledge()));
  EXPECT_EQ(IncludedFolder("#include \"stats/tally.h\""), "stats");
}

}  // namespace
