#include "config/log_files.h"

#include <algorithm>

#include "config/mdlConfigs.h"
#include "platform/archive.h"
#include "platform/file_system.h"
#include "platform/names.h"

namespace log_files {
namespace {

constexpr std::string_view kLogSuffix = ".log";
constexpr std::string_view kArchiveSuffix = ".gz";

bool archives_reported = false;

void ReportArchive(const std::string& folder, const std::string& name) {
  if (archives_reported) return;
  archives_reported = true;
  mdlConfigs::LogWarning(": This build cannot read compressed logs such as '" +
                         platform::JoinPath(folder, name) + "'");
}

bool ComesBefore(const std::string& a, const std::string& b) {
  const int order = platform::LowerCased(PlainName(a)).compare(platform::LowerCased(PlainName(b)));
  return order != 0 ? order < 0 : a < b;
}

}  // namespace

bool IsArchive(std::string_view name) { return platform::NameFits(name, "", kArchiveSuffix); }

std::string_view PlainName(std::string_view name) {
  if (IsArchive(name)) name.remove_suffix(kArchiveSuffix.size());
  return name;
}

std::vector<std::string> List(const std::string& folder, std::string_view stem) {
  platform::FileSystem& files = platform::TheFileSystem();
  std::vector<std::string> names = files.ListFiles(folder, stem, kLogSuffix);
  const std::vector<std::string> archives =
      files.ListFiles(folder, stem, std::string(kLogSuffix).append(kArchiveSuffix));
  if (archives.empty()) return names;
  if (!platform::TheArchives().CanRead()) {
    ReportArchive(folder, archives.front());
    return names;
  }
  for (const std::string& archive : archives) {
    const auto same_log = [&archive](const std::string& name) {
      return platform::SameName(PlainName(name), PlainName(archive));
    };
    if (std::ranges::none_of(names, same_log)) names.push_back(archive);
  }
  std::ranges::sort(names, ComesBefore);
  return names;
}

void Reset() { archives_reported = false; }

}  // namespace log_files
