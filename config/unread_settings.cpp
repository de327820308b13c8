#include "config/unread_settings.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "config/mdlConfigs.h"
#include "config/mdlRegistry.h"
#include "config/text.h"
#include "platform/names.h"

namespace unread_settings {
namespace {

using mdlRegistry::KeyPath;

// What `mdlConfigs` reads of a site.
constexpr std::string_view kSiteNames[] = {
    "IISLogFormat", "IISLogDir",     "UsageDir",    "MaxListSize",
    "UseUTC",       "ShowUsernames", "GenerateCSV", "ClientIPField",
};

// What `mdlFilters` reads and writes of a rule.
constexpr std::string_view kRuleNames[] = {
    "name",
    "includes",
    "field",
    "pattern",
};

// The kinds of keys that differ in what is read of them.
enum class Kind { kSite, kFilters, kRule, kOther };

std::set<std::string> reported;  // paths with value names, in lower case

bool IsRead(Kind kind, std::string_view name) {
  const auto same = [name](std::string_view known) {
    return text::EqualsIgnoringCase(known, name);
  };
  if (kind == Kind::kSite) return std::ranges::any_of(kSiteNames, same);
  return kind == Kind::kRule && std::ranges::find(kRuleNames, name) != std::end(kRuleNames);
}

Kind KindOfSubkey(Kind kind, std::string_view subkey) {
  if (kind == Kind::kSite && text::EqualsIgnoringCase(subkey, "Filters")) return Kind::kFilters;
  return kind == Kind::kFilters ? Kind::kRule : Kind::kOther;
}

void ReportValue(mdlRegistry::Key key, const std::string& path, const std::string& name) {
  const std::string place = platform::TheSettingsStore().PlaceOfValue(key, name);
  if (place.empty()) return;
  if (!reported.insert(platform::LowerCased(KeyPath(path, name))).second) return;
  mdlConfigs::LogWarning(": " + place + " sets '" + name + "', which nothing reads");
}

void ReportValues(mdlRegistry::Key key, const std::string& path, Kind kind) {
  for (const std::string& name : mdlRegistry::ValueNames(key)) {
    if (!IsRead(kind, name)) ReportValue(key, path, name);
  }
}

// A key and all that is below it.
void ReportKey(const std::string& branch, const std::string& name, Kind kind) {
  const mdlRegistry::OpenedKey opened = mdlRegistry::OpenKey(branch, name);
  if (!opened) return;
  const std::string path = KeyPath(branch, name);
  ReportValues(opened.key(), path, kind);
  for (const std::string& subkey : mdlRegistry::SubkeyNames(opened.key())) {
    ReportKey(path, subkey, KindOfSubkey(kind, subkey));
  }
}

}  // namespace

void Report(const std::string& site) {
  const std::string branch(platform::kSettingsBranch);
  platform::SettingsStore::Key key = 0;
  const std::int32_t result = platform::TheSettingsStore().OpenKey(branch, &key);
  const mdlRegistry::OpenedKey opened(result, key);
  if (!opened) return;
  ReportValues(opened.key(), branch, Kind::kOther);
  ReportKey(branch, site, Kind::kSite);
}

void Reset() { reported.clear(); }

}  // namespace unread_settings
