// A whole run: log files, History.txt and settings.ini of any bytes to pages, CSV files and
// history.
//
// Parts: options ('d' diagnostics, 'y' a catch-up run, a zone), settings.ini, History.txt, log
// files.
#include "app/frmMain.h"
#include "platform/settings_file_linux.h"
#include "report/mdlYear.h"
#include "report/page_frame.h"
#include "tests/fuzz/csv_check.h"
#include "tests/fuzz/month_check.h"
#include "tests/fuzz/page_check.h"
#include "tests/fuzz/site.h"

namespace {

void CopyKey(const platform::SettingsFile& file, const std::string& path,
             fakes::FakeSettingsStore& store) {
  const std::size_t values = file.ValueCount(path);
  store.PutKey(path);
  for (std::size_t i = 0; i < values; ++i) {
    const platform::SettingsFile::Value value = file.ValueAt(path, i);
    store.Put(path, value.name, value.text);
  }
  for (std::size_t i = 0; i < file.SubkeyCount(path); ++i) {
    CopyKey(file, path + "\\" + file.Subkey(path, i), store);
  }
}

// The site's settings as the file has them, but for the folders, which are those of the fakes.
void TakeSettings(std::string_view text, fakes::FakeSettingsStore& store) {
  const platform::SettingsFile file(text);
  if (file.HasKey("web1")) CopyKey(file, "web1", store);
  store.Put("web1", "IISLogDir", "logs");
  store.Put("web1", "UsageDir", "usage");
  store.PutKey("web1\\Filters");
}

void CheckFiles(const fuzz::Site& site) {
  for (const auto& [path, content] : site.files.files) {
    if (path.ends_with(".htm")) fuzz::PageCheck::Run(content);
    if (path.ends_with(".csv") && !path.ends_with("Annual.csv")) {
      fuzz::CsvCheck::Read(content, path);
    }
    fuzz::Expect(!path.ends_with(".tmp"), "no temporary file is left", path);
  }
}

// The rows of a table of URLs are the month's, key and count.
void CheckUrls(const fuzz::Site& site) {
  const std::string path = platform::JoinPath("usage", "Jan-URLbyHits.csv");
  if (!site.files.Exists(path)) return;
  const std::vector<fuzz::CsvRecord> records = fuzz::CsvCheck::Read(site.files.Content(path), path);
  for (std::size_t i = 1; i < records.size(); ++i) {
    mdlMonth::TallyEntry entry;
    fuzz::Expect(mdlMonth::Month().SuccessUrls.Find(records[i].back(), &entry), "URL of a file",
                 records[i].back());
    fuzz::Expect(records[i][1] == std::to_string(entry.Count), "count of a file", records[i][1]);
  }
}

// What has been saved is read as it was written, and saved again as it was read.
void CheckHistory(fuzz::Site& site) {
  const std::string path = platform::JoinPath("usage", "History.txt");
  const std::string saved = site.files.Content(path);
  mdlYear::LoadHistory();
  fuzz::ExpectEqual(mdlYear::SaveHistory(), std::int16_t{0}, "saving again");
  fuzz::Expect(site.files.Content(path) == saved, "a saved history loads to itself", saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string_view> parts = fuzz::PartsOf(data, size);
  if (parts.size() < 4) return -1;
  fuzz::Site site;
  mdlDNS::Reset();
  site.clock.bias_minutes = fuzz::BiasOf(parts[0]);
  TakeSettings(parts[1], site.store);
  if (!parts[2].empty()) site.files.AddFile(platform::JoinPath("usage", "History.txt"), parts[2]);
  site.AddLogs(parts, 3);
  if (site.files.ListFiles("logs", "", "").empty()) return -1;
  const int slots = mdlVisit::SlotCapacity();
  const bool catch_up = fuzz::HasOption(parts[0], 'y');
  const bool diagnostic = fuzz::HasOption(parts[0], 'd');
  const std::string command = std::string(catch_up ? "/C" : "/B") + (diagnostic ? " /D" : "");
  const int exit_code = frmMain::Form_Load(command + " /SITE=web1");
  if (exit_code != frmMain::kExitDone) {
    // Only settings may be the reason: nothing is wrong with the folders.
    fuzz::Expect(site.files.committed.empty(), "a run that began comes to its end");
    return 0;
  }
  CheckFiles(site);
  if (!catch_up && mdlConfigs::Run().Settings.LogFormat == "W3C") {
    const reference::LiteralMonth literal = site.ReadLiterally(slots);
    fuzz::MonthCheck::Run(literal, false);
    CheckUrls(site);
    if (diagnostic) site.CheckReasons(literal);
  }
  CheckHistory(site);
  fuzz::ExpectEqual(site.store.open_keys(), std::size_t{0}, "open keys");
  return 0;
}
