#include "ui/site_selection.h"

#include "config/mdlConfigs.h"
#include "config/mdlRegistry.h"

namespace ui::site_selection {
namespace {

std::string& SiteName() { return mdlConfigs::Run().SiteName; }

}  // namespace

std::vector<std::string> Form_Load() {
  SiteName().clear();
  return mdlRegistry::SiteNames();
}

void btnGo_Click(const std::string& text) { SiteName() = text; }

void btnAdd_Click(const std::string& text) { SiteName() = text; }

void btnQuit_Click() { SiteName().clear(); }

// The key of a site without a name would be the branch of all sites.
std::vector<std::string> btnRemove_Click(const std::string& text) {
  if (!text.empty()) mdlRegistry::RemoveSite(text);
  return mdlRegistry::SiteNames();
}

std::string txtAdd_Change(std::string_view text) {
  std::string clean(text);
  std::erase_if(clean, [](char c) { return c == '/' || c == '\\' || c == ' '; });
  return clean;
}

}  // namespace ui::site_selection
