// The two structures that every hit goes through: a tally and the table of open visits.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "stats/mdlMonth.h"
#include "stats/mdlVisit.h"
#include "stats/tally.h"

namespace {

std::vector<std::string> MakeKeys(std::size_t count) {
  std::vector<std::string> keys;
  keys.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    keys.push_back("/section/" + std::to_string(i % 97) + "/page-" + std::to_string(i) + ".htm");
  }
  return keys;
}

// Additions spread evenly over `keys` distinct keys, the worst case for the caches.
void BM_TallyAdd(benchmark::State& state) {
  const auto keys = MakeKeys(static_cast<std::size_t>(state.range(0)));
  stats::TallyTable table;
  std::mt19937 random(1);
  std::uniform_int_distribution<std::size_t> pick(0, keys.size() - 1);
  for (const std::string& key : keys) mdlMonth::TallyAdd(key, table, 1);
  for (auto _ : state) mdlMonth::TallyAdd(keys[pick(random)], table, 1);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TallyAdd)->Arg(100)->Arg(10000)->Arg(50000)->Arg(1000000);

// Hits of `open` visitors in turn, all of whose visits stay open.
void BM_TrackVisit(benchmark::State& state) {
  const auto open = static_cast<std::size_t>(state.range(0));
  const std::string agent =
      "Mozilla/5.0+(Windows+NT+10.0;+Win64;+x64)+Gecko/20100101+Firefox/115.0";
  std::vector<std::string> addresses;
  for (std::size_t i = 0; i < open; ++i) {
    addresses.push_back("10." + std::to_string(i / 65536) + "." + std::to_string(i / 256 % 256) +
                        "." + std::to_string(i % 256));
  }
  mdlMonth::InitMonth();
  mdlVisit::InitVisits();
  std::mt19937 random(1);
  std::uniform_int_distribution<std::size_t> pick(0, open - 1);
  std::int32_t time = 86400;
  std::int64_t hits = 0;
  for (auto _ : state) {
    if (++hits % static_cast<std::int64_t>(open) == 0) ++time;
    mdlVisit::TrackVisit(addresses[pick(random)], agent, time, "/page.htm", 1000);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TrackVisit)->Arg(100)->Arg(1000)->Arg(20000);

}  // namespace
