// What the editor of one filter rule decides: its first contents, the suggested name, the checks
// and the storing of the rule.
//
// No state but the rule list of `mdlFilters`. Called by `frmFilter`.
#ifndef HITWICK_UI_FILTER_EDITOR_H_
#define HITWICK_UI_FILTER_EDITOR_H_

#include <string>
#include <string_view>

#include "logread/mdlFilters.h"
#include "ui/filter_fields.h"

namespace ui {

// The contents of the editor's controls.
struct FilterEntry {
  std::string name;       // txtFilterName
  bool includes = false;  // optInclude, else optExclude
  int field = kNoField;   // the selected entry of lstField; kNoField when none is
  std::string pattern;    // txtPattern
};

// What the editor shows for a new rule / for a rule of the list.
FilterEntry NewFilter();
FilterEntry FilterToEdit(const mdlFilters::FilterRule& rule);

// The text that the name box gets when it was left empty, before cleaning; and the cleaning.
std::string SuggestedFilterName(const FilterEntry& entry);
std::string CleanFilterName(std::string_view name);

// The OK button. Suggests a name where there is none and cleans the one there is (`entry->name` is
// what the box shows afterwards), tells what is missing in a box, stores the rule. True when the
// rule was stored: the editor closes; false: it stays open.
bool btnOK_Click(FilterEntry* entry);

// The ten lines of help, separated by line feeds.
std::string FilterHelp();
// Shows them in a box.
void btnHelp_Click();

}  // namespace ui

#endif  // HITWICK_UI_FILTER_EDITOR_H_
