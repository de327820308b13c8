#include "logread/mdlFilters.h"

#include <algorithm>

#include "config/mdlConfigs.h"
#include "config/mdlRegistry.h"
#include "config/text.h"
#include "platform/settings_store.h"
#include "stats/hashed_key.h"

namespace mdlFilters {
namespace {

constexpr std::string_view kFiltersKey = "Filters";
constexpr std::size_t kRememberedValues = 4096;  // per field
constexpr std::size_t kLongestRemembered = 512;  // bytes

std::vector<FilterRule> rules;

bool IsNameCharacter(char c) {
  const char upper = text::ToUpper(c);
  return (upper >= 'A' && upper <= 'Z') || text::IsDigit(c) || c == '_';
}

bool IsValidName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), IsNameCharacter);
}

std::string SiteKeyPath(const std::string& site) {
  return mdlRegistry::KeyPath(platform::kSettingsBranch, site);
}

std::string FiltersKeyPath(const std::string& site) {
  return mdlRegistry::KeyPath(SiteKeyPath(site), kFiltersKey);
}

void LogStoreFailure(const std::string& what, const std::string& path, std::int32_t code) {
  mdlConfigs::LogWarning(": Error " + what + " registry : (" + path +
                         ") : " + std::to_string(code));
}

// A stored rule without field or pattern is ignored; one whose name is refused is worth a word,
// since whoever wrote it by hand expects it to work.
void AddStoredRule(mdlRegistry::Key key, const std::string& name) {
  const bool includes = mdlRegistry::GetStringValue(key, "includes", "") == "True";
  const std::string field = mdlRegistry::GetStringValue(key, "field", "");
  const std::string pattern = mdlRegistry::GetStringValue(key, "pattern", "");
  if (field.empty() || pattern.empty()) return;
  if (SetFilter(name, includes, field, pattern) != 0) {
    mdlConfigs::LogWarning(": Ignoring filter '" + name +
                           "': a name holds only letters, digits and '_', and a site at most " +
                           std::to_string(kMaxRules) + " filters");
  }
}

void LoadStoredRule(const std::string& filters_path, const std::string& name) {
  const mdlRegistry::OpenedKey opened = mdlRegistry::OpenKey(filters_path, name);
  if (!opened) {
    LogStoreFailure("reading a filter from", mdlRegistry::KeyPath(filters_path, name),
                    opened.result());
    return;
  }
  AddStoredRule(opened.key(), name);
}

void SaveRule(const std::string& filters_path, const FilterRule& rule) {
  std::int32_t result = mdlRegistry::CreateKey(filters_path, rule.name);
  mdlRegistry::OpenedKey opened;
  if (result == platform::kStoreSuccess) {
    opened = mdlRegistry::OpenKey(filters_path, rule.name);
    result = opened.result();
  }
  if (!opened) {
    LogStoreFailure("writing a filter to", mdlRegistry::KeyPath(filters_path, rule.name), result);
    return;
  }
  mdlRegistry::SetStringValue(opened.key(), "name", rule.name);
  mdlRegistry::SetStringValue(opened.key(), "includes", rule.includes ? "True" : "False");
  mdlRegistry::SetStringValue(opened.key(), "field", rule.field);
  mdlRegistry::SetStringValue(opened.key(), "pattern", rule.pattern);
}

}  // namespace

const std::vector<FilterRule>& Rules() { return rules; }

std::int16_t SetFilter(const std::string& name, bool includes, const std::string& field,
                       const std::string& pattern) {
  if (!IsValidName(name)) return 1;
  const auto same_name = [&name](const FilterRule& rule) { return rule.name == name; };
  const auto old = std::find_if(rules.begin(), rules.end(), same_name);
  if (old != rules.end()) {
    *old = {name, includes, field, pattern};
    return 0;
  }
  if (rules.size() >= kMaxRules) return 1;
  rules.push_back({name, includes, field, pattern});
  return 0;
}

void DeleteFilter(std::int16_t index) {
  if (index < 1 || static_cast<std::size_t>(index) > rules.size()) return;
  rules.erase(rules.begin() + (index - 1));
}

Verdict CheckFilters(std::string_view fieldName, std::string_view value) {
  return FieldRules(fieldName).Evaluate(value);
}

FieldRules::FieldRules(std::string_view fieldName) {
  for (const FilterRule& rule : rules) {
    if (rule.field == fieldName) {
      rules_.push_back({rule.includes, LikePattern::Compile(rule.pattern)});
    }
  }
}

bool FieldRules::Understood() const {
  return std::all_of(rules_.begin(), rules_.end(),
                     [](const Prepared& rule) { return rule.pattern.has_value(); });
}

Verdict FieldRules::Check(std::string_view value) {
  if (rules_.empty()) return Verdict::kKeep;
  if (value.size() > kLongestRemembered) return Evaluate(value);
  const std::uint64_t hash = stats::HashText(value);
  if (memory_.empty()) memory_.resize(kRememberedValues);
  Remembered& place = memory_[hash % kRememberedValues];
  if (!place.verdict || place.hash != hash || place.value != value) {
    place.verdict = Evaluate(value);
    place.hash = hash;
    place.value = value;
  }
  return *place.verdict;
}

Verdict FieldRules::Evaluate(std::string_view value) const {
  Verdict verdict = Verdict::kKeep;
  for (const Prepared& rule : rules_) {
    if (!rule.pattern) return Verdict::kBadPattern;
    if (rule.pattern->Matches(value) != rule.includes) verdict = Verdict::kSkip;
  }
  return verdict;
}

void LoadFilters(const std::string& site) {
  const mdlRegistry::OpenedKey filters =
      mdlRegistry::OpenKey(SiteKeyPath(site), std::string(kFiltersKey));
  if (!filters) {
    mdlConfigs::LogInformation(
        ": No filters found when reading configuration from registry : RegOpenKeyEx(" +
        std::to_string(filters.result()) + ")\n");
    return;
  }
  const std::string path = FiltersKeyPath(site);
  std::string name;
  std::uint32_t index = 0;
  std::int32_t result;
  while ((result = platform::TheSettingsStore().EnumKey(filters.key(), index, &name)) ==
         platform::kStoreSuccess) {
    if (!name.empty()) LoadStoredRule(path, name);
    ++index;
  }
  if (result != platform::kStoreNoMoreItems) LogStoreFailure("listing filters in", path, result);
}

void SaveFilters(const std::string& site) {
  const std::string site_path = SiteKeyPath(site);
  if (mdlRegistry::DeleteSiteKey(site_path, std::string(kFiltersKey)) != platform::kStoreSuccess) {
    mdlConfigs::LogWarning(": Error pruning old filters from registry : (" + site_path +
                           " \\ Filters)\n");
  }
  const std::string filters_path = FiltersKeyPath(site);
  for (const FilterRule& rule : rules) SaveRule(filters_path, rule);
}

void Reset() { rules.clear(); }

}  // namespace mdlFilters
