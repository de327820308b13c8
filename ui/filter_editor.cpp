#include "ui/filter_editor.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "config/mdlConfigs.h"
#include "config/text.h"

namespace ui {
namespace {

constexpr std::string_view kSuggestionNote = "(a suggestion has been inserted).\n";

std::string_view Replacement(char c) {
  constexpr std::string_view kToUnderscore = " )(.-[]{}";
  if (kToUnderscore.find(c) != std::string_view::npos) return "_";
  switch (c) {
    case '*':
      return "X";
    case '?':
      return "x";
    case '#':
      return "n";
    case '=':
      return "eq";
    default:
      return {};
  }
}

bool IsAlphanumeric(std::string_view name) {
  return std::all_of(name.begin(), name.end(), [](char c) {
    const char upper = text::ToUpper(c);
    return (upper >= 'A' && upper <= 'Z') || text::IsDigit(c) || c == '_';
  });
}

// The text of the selected entry of `lstField`; empty when none is selected.
std::string OfferedName(int field) {
  const std::vector<std::string> names = OfferedFields(mdlConfigs::Run().Settings.LogFormat);
  const auto index = static_cast<std::size_t>(field);
  return field >= 0 && index < names.size() ? names[index] : std::string();
}

// What keeps the rule from being stored; empty when nothing does.
std::string Complaint(const FilterEntry& entry, bool suggested) {
  if (suggested || !IsAlphanumeric(entry.name)) {
    return std::string(suggested ? kSuggestionNote : "") +
           "Please supply an alphanumeric name for the filter.";
  }
  if (OfferedName(entry.field).empty()) return "Please select field";
  if (entry.pattern.empty()) return "Please enter a pattern to match field against.";
  return {};
}

}  // namespace

FilterEntry NewFilter() { return {"", false, 0, ""}; }

FilterEntry FilterToEdit(const mdlFilters::FilterRule& rule) {
  return {rule.name, rule.includes, OfferedFieldOf(rule.field), rule.pattern};
}

std::string SuggestedFilterName(const FilterEntry& entry) {
  return (entry.includes ? "In_" : "Ex_") + OfferedName(entry.field) + "_" + entry.pattern;
}

// No replacement makes a character that a later one would replace, so one walk does them all.
std::string CleanFilterName(std::string_view name) {
  std::string clean;
  for (const char c : name) {
    const std::string_view replacement = Replacement(c);
    if (replacement.empty()) {
      clean += c;
    } else {
      clean += replacement;
    }
  }
  return clean;
}

bool btnOK_Click(FilterEntry* entry) {
  const bool suggested = entry->name.empty();
  if (suggested) entry->name = SuggestedFilterName(*entry);
  entry->name = CleanFilterName(entry->name);
  const std::string complaint = Complaint(*entry, suggested);
  if (!complaint.empty()) {
    mdlConfigs::TellUser(complaint);
    return false;
  }
  const std::string field =
      W3CFieldOf(OfferedName(entry->field), mdlConfigs::Run().Settings.LogFormat);
  return mdlFilters::SetFilter(entry->name, entry->includes, field, entry->pattern) == 0;
}

std::string FilterHelp() {
  return "This dialog defines a rule that will be applied to incoming IIS log records.\n"
         "With 'Exclude', field values that match the pattern are discarded from processing, \n"
         "and with 'Include' non-matching values are discarded.\n"
         "The fields that can be filtered are Client IP, Method, Referrer, HTTP status, Query, URL "
         "or Browser.\n"
         "The 'pattern' in 'matches' is put together from primitives below to capture the whole "
         "field -:\n"
         "    ?       Match any single character\n"
         "    *       Match zero or more characters, as in *robot*\n"
         "    [list]  Any single character in list, e.g. [a-zA-Z]\n"
         "    [!list] Any single character not in the list.\n"
         "All filters have to have a unique name on this site.";
}

void btnHelp_Click() { mdlConfigs::TellUser(FilterHelp()); }

}  // namespace ui
