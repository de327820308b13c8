// What the list of filter rules decides. Edits act on the rule list of `mdlFilters` at once; only
// `btnOK_Click` stores it.
//
// No state but that list. Called by `frmFilters`, which shows one row per rule of `FilterNames()`.
#ifndef HITWICK_UI_FILTER_LIST_H_
#define HITWICK_UI_FILTER_LIST_H_

#include <cstddef>
#include <string>
#include <vector>

#include "ui/filter_editor.h"

namespace ui::filter_list {

// Loads the stored rules of the site in use: a rule that was changed or deleted, but not stored,
// comes back; one that was added stays.
void Form_Load();

// The rules' names, row by row.
std::vector<std::string> FilterNames();

// What the editor shows for a new rule / for the rule of a row (0-based; an empty entry when there
// is no such row).
FilterEntry btnAdd_Click();
FilterEntry btnEdit_Click(std::size_t row);
// Deletes the rule of a row without asking. A row that does not exist is ignored.
void btnDelete_Click(std::size_t row);

// Stores the rules; the window closes. The cancel button only closes: nothing is undone.
void btnOK_Click();

}  // namespace ui::filter_list

#endif  // HITWICK_UI_FILTER_LIST_H_
