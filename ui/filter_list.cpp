#include "ui/filter_list.h"

#include <cstdint>

#include "config/mdlConfigs.h"
#include "logread/mdlFilters.h"

namespace ui::filter_list {

void Form_Load() { mdlFilters::LoadFilters(mdlConfigs::Run().SiteName); }

std::vector<std::string> FilterNames() {
  std::vector<std::string> names;
  for (const mdlFilters::FilterRule& rule : mdlFilters::Rules()) names.push_back(rule.name);
  return names;
}

FilterEntry btnAdd_Click() { return NewFilter(); }

FilterEntry btnEdit_Click(std::size_t row) {
  const auto& rules = mdlFilters::Rules();
  return row < rules.size() ? FilterToEdit(rules[row]) : FilterEntry();
}

void btnDelete_Click(std::size_t row) {
  if (row >= mdlFilters::Rules().size()) return;
  mdlFilters::DeleteFilter(static_cast<std::int16_t>(row + 1));
}

void btnOK_Click() { mdlFilters::SaveFilters(mdlConfigs::Run().SiteName); }

}  // namespace ui::filter_list
