// The stages of a run apart: reading lines, parsing records, adding hits, writing the page.
//
// The logs are those of the folder in the environment variable HITWICK_BENCH_LOGS, one month made
// by `sample_logs bench` (HITWICK_BENCH_MONTH, "YYYY-MM"); they are held in memory, so that no
// disk is measured.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "config/mdlConfigs.h"
#include "logread/line_reader.h"
#include "logread/mdlW3C.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/service.h"
#include "report/mdlGenHTML.h"
#include "stats/mdlMonth.h"
#include "stats/mdlWebPage.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/fake_host_names.h"
#include "tests/fakes/recording_event_log.h"

namespace {

constexpr const char* kFolder = "logs";

struct BenchLogs {
  fakes::FakeFileSystem files;
  std::int64_t bytes = 0;
  std::int64_t lines = 0;
  std::int16_t month = 0;
  std::int16_t year = 0;
};

std::int16_t Number(std::string_view text) {
  std::int16_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::unique_ptr<BenchLogs> LoadLogs() {
  auto logs = std::make_unique<BenchLogs>();
  const std::string folder = platform::EnvironmentVariable("HITWICK_BENCH_LOGS");
  const std::string month = platform::EnvironmentVariable("HITWICK_BENCH_MONTH");
  if (folder.empty() || month.size() != 7) return nullptr;
  logs->year = Number(std::string_view(month).substr(0, 4));
  logs->month = Number(std::string_view(month).substr(5));
  for (const std::string& name : platform::TheFileSystem().ListFiles(folder, "u_ex", ".log")) {
    std::string content;
    if (platform::ReadWholeFile(platform::JoinPath(folder, name), &content) != 0) return nullptr;
    logs->bytes += static_cast<std::int64_t>(content.size());
    for (const char c : content) logs->lines += c == '\n' ? 1 : 0;
    logs->files.AddFile(platform::JoinPath(kFolder, name), content);
  }
  return logs->lines == 0 ? nullptr : std::move(logs);
}

BenchLogs* Logs() {
  static const std::unique_ptr<BenchLogs> logs = LoadLogs();
  return logs.get();
}

// One stage: the program's services replaced by the logs in memory, `prepare` done once and `work`
// timed per iteration.
template <class Prepare, class Work>
void RunStage(benchmark::State& state, Prepare prepare, Work work) {
  BenchLogs* const logs = Logs();
  if (logs == nullptr) {
    state.SkipWithError("HITWICK_BENCH_LOGS and HITWICK_BENCH_MONTH name no logs");
    return;
  }
  fakes::RecordingEventLog events;
  fakes::FakeHostNames names;
  const platform::Replacement<platform::FileSystem> use_files(logs->files);
  const platform::Replacement<platform::EventLog> use_events(events);
  const platform::Replacement<platform::HostNames> use_names(names);
  mdlConfigs::ResetRun();
  mdlConfigs::Run().BatchMode = true;
  mdlConfigs::Run().Settings.LogDir = kFolder;
  mdlConfigs::Run().Settings.UseUTC = true;
  mdlWebPage::BuildLookupTables();
  prepare(*logs);
  for (auto _ : state) work(*logs);
  state.SetItemsProcessed(state.iterations() * logs->lines);
  state.SetBytesProcessed(state.iterations() * logs->bytes);
}

template <class Work>
void RunStage(benchmark::State& state, Work work) {
  RunStage(
      state, [](const BenchLogs&) {}, work);
}

void ReadMonth(const BenchLogs& logs, std::int16_t first_day, std::int16_t last_day) {
  mdlW3C::ReadMonthLogs(first_day, last_day, logs.month, logs.year,
                        [](const stats::HistoryRow&) {});
}

void BM_ReadLines(benchmark::State& state) {
  RunStage(state, [](BenchLogs& logs) {
    logread::LineReader lines;
    for (const auto& [path, content] : logs.files.files) {
      int error = 0;
      const auto file = logs.files.OpenForReading(path, &error);
      lines.Start(*file);
      logread::Line line;
      while (lines.NextBlock()) {
        while (lines.Next(&line)) benchmark::DoNotOptimize(line);
      }
    }
  });
}
BENCHMARK(BM_ReadLines)->Unit(benchmark::kMillisecond);

// No record lies in an empty range of days, so every one is parsed and then dropped.
void BM_ParseRecords(benchmark::State& state) {
  RunStage(state, [](BenchLogs& logs) { ReadMonth(logs, 32, 0); });
}
BENCHMARK(BM_ParseRecords)->Unit(benchmark::kMillisecond);

void BM_AddHits(benchmark::State& state) {
  RunStage(state, [](BenchLogs& logs) { ReadMonth(logs, 1, 31); });
}
BENCHMARK(BM_AddHits)->Unit(benchmark::kMillisecond);

void BM_WritePage(benchmark::State& state) {
  RunStage(
      state, [](const BenchLogs& logs) { ReadMonth(logs, 1, 31); },
      [](const BenchLogs& logs) {
        std::string page;
        mdlGenHTML::WriteMonthPage(page, "usage", {1, 31, logs.month, logs.year}, false);
        benchmark::DoNotOptimize(page);
      });
}
BENCHMARK(BM_WritePage)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
