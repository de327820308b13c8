// What the windows make of a name that is typed: clean, and clean to itself.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "logread/mdlFilters.h"
#include "tests/fuzz/expect.h"
#include "ui/filter_editor.h"
#include "ui/on_demand.h"
#include "ui/site_selection.h"

namespace {

constexpr std::string_view kPlain =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

void CheckFilterName(const std::string& typed) {
  const std::string name = ui::CleanFilterName(typed);
  fuzz::Expect(ui::CleanFilterName(name) == name, "a clean rule name stays", name);
  mdlFilters::Reset();
  const std::int16_t refused = mdlFilters::SetFilter(name, false, "c-ip", "*");
  const bool plain = !name.empty() && name.find_first_not_of(kPlain) == std::string::npos;
  fuzz::Expect((refused == 0) == plain, "a plain rule name is taken, and no other", name);
  // What has a replacement is replaced; the editor complains of the rest.
  fuzz::Expect(name.find_first_of(" )(.-[]{}*?#=") == std::string::npos, "a clean rule name", name);
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
