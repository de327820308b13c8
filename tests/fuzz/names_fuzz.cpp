// What the windows make of a name that is typed: clean, and clean to itself.
#include <cstddef>
#include <cstdint>
#include <string>

#include "logread/mdlFilters.h"
#include "tests/fuzz/expect.h"
#include "ui/filter_editor.h"
#include "ui/on_demand.h"
#include "ui/site_selection.h"

namespace {

void CheckFilterName(const std::string& typed) {
  const std::string name = ui::CleanFilterName(typed);
  fuzz::Expect(ui::CleanFilterName(name) == name, "a clean rule name stays", name);
  mdlFilters::Reset();
  const std::int16_t refused = mdlFilters::SetFilter(name, false, "c-ip", "*");
  fuzz::Expect((refused != 0) == name.empty(), "a clean rule name is taken", name);
}

void CheckReportName(const std::string& typed) {
  const std::string name = ui::on_demand::txtRepName_Change(typed);
  fuzz::Expect(name.find_first_of("\\/.'\"") == std::string::npos, "a report's name", name);
  fuzz::Expect(name.size() == typed.size(), "a report's name keeps its length", name);
}

void CheckSiteName(const std::string& typed) {
  const std::string name = ui::site_selection::txtAdd_Change(typed);
  fuzz::Expect(name.find_first_of("\\/ ") == std::string::npos, "a site's name", name);
  fuzz::Expect(ui::site_selection::txtAdd_Change(name) == name, "a clean site name stays", name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string typed(reinterpret_cast<const char*>(data), size);
  CheckFilterName(typed);
  CheckReportName(typed);
  CheckSiteName(typed);
  return 0;
}
