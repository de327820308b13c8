// Any command line: one entry for each token, a site name that can stand in a key's path, and an
// exit code that says what happened.
#include <algorithm>

#include "app/frmMain.h"
#include "tests/fuzz/site.h"

namespace {

std::size_t TokensOf(std::string_view line) {
  std::size_t tokens = 0;
  bool in_token = false;
  for (const char c : line) {
    const bool blank = c == ' ' || c == '\t';
    tokens += !blank && !in_token ? 1 : 0;
    in_token = !blank;
  }
  return tokens;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string line(reinterpret_cast<const char*>(data), size);
  fuzz::Site site;
  const int exit_code = frmMain::Form_Load(line);
  const std::string& name = mdlConfigs::Run().SiteName;
  fuzz::Expect(name.find_first_of("/\\;") == std::string::npos, "the site's name", name);
  fuzz::ExpectEqual(
      static_cast<std::size_t>(site.log.CountWith(": Configuration for site name is '")),
      TokensOf(line), "an entry for each token");
  const bool interactive =
      std::count(site.windows.calls.begin(), site.windows.calls.end(), "ShowConfiguration") != 0;
  // Nothing is stored, so no settings are usable: a run ends with 1, a window was shown, or the
  // site switch had no "=".
  fuzz::Expect(exit_code >= 0 && exit_code <= 2 && (exit_code == 0) == interactive, "exit code",
               line);
  fuzz::Expect(!interactive || !(mdlConfigs::Run().BatchMode || mdlConfigs::Run().CatchUpMode),
               "no window in an unattended run", line);
  fuzz::Expect(!mdlConfigs::Run().BatchMode || site.boxes.shown.empty(), "no box in batch mode",
               line);
  return 0;
}
