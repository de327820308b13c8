#include "stats/tally.h"

#include <algorithm>
#include <new>
#include <string>

#include "config/mdlConfigs.h"
#include "config/number_text.h"
#include "stats/fault.h"
#include "stats/lost_counts.h"

namespace stats {

TallyTable::Row TallyTable::Lookup(const HashedKey& key) const {
  const Row row = keys_->Find(key);
  return row != KeyStore::kNone && CellAt(row).count != 0 ? row : KeyStore::kNone;
}

bool TallyTable::Find(const HashedKey& key, TallyEntry* entry) const {
  const Row row = Lookup(key);
  if (row == KeyStore::kNone) return false;
  *entry = EntryAt(row);
  return true;
}

// The first addition of a key to this table.
void TallyTable::Enter(Row row, Cell& cell, float value) {
  if (order_ == Order::kExplicit) rank_.push_back(row);
  cell = {++additions_, 1, value};
  ++count_;
}

// When the metric overflows, the entry is counted but keeps its place, which the order by count
// cannot express.
bool TallyTable::Overflow(Cell& cell) {
  if (cell.count == kMostCounted) return false;
  if (order_ != Order::kExplicit) MakeOrderExplicit();
  cell.count += 1;
  return false;
}

// Before an addition to a table whose order has been looked at, or whose numbers have run out.
void TallyTable::Unsettle() {
  if (additions_ == last_number_) NumberAnew();
  settled_ = false;
  ranked_ = 0;
  if (order_ == Order::kByMetric) MakeOrderExplicit();
}

// Gives the entries small numbers in the order of those they have.
void TallyTable::NumberAnew() {
  std::vector<Row> rows = Rows();
  std::sort(rows.begin(), rows.end(),
            [this](Row a, Row b) { return CellAt(a).last_add < CellAt(b).last_add; });
  additions_ = 0;
  for (const Row row : rows) CellAt(row).last_add = ++additions_;
}

std::vector<TallyTable::Row> TallyTable::Rows() const {
  std::vector<Row> rows;
  rows.reserve(static_cast<std::size_t>(count_));
  keys_->ForEach([&](Row row) {
    if (CellAt(row).count != 0) rows.push_back(row);
  });
  return rows;
}

void TallyTable::Clear() {
  for (const Row row : Rows()) CellAt(row) = Cell();
  if (own_keys_ != nullptr) own_keys_->Clear();
  count_ = 0;
  additions_ = 0;
  settled_ = false;
  order_ = Order::kByCount;
  rank_.clear();
  ranked_ = 0;
}

bool TallyTable::Precedes(const Cell& a, const Cell& b) const {
  if (order_ == Order::kByMetric && a.metric != b.metric) return a.metric > b.metric;
  if (a.count != b.count) return a.count > b.count;
  return a.last_add < b.last_add;
}

// Works out the first `count` ranks, and at least twice as many as were known, so that reading a
// whole table rank by rank stays cheap.
void TallyTable::EnsureRanked(std::size_t count) {
  if (order_ == Order::kExplicit || count <= ranked_) return;
  if (ranked_ == 0) rank_ = Rows();
  settled_ = true;
  const std::size_t wanted =
      std::min(std::max({count, 2 * ranked_, std::size_t{128}}), rank_.size());
  const auto begin = rank_.begin() + static_cast<std::ptrdiff_t>(ranked_);
  const auto middle = rank_.begin() + static_cast<std::ptrdiff_t>(wanted);
  const auto precedes = [this](Row a, Row b) { return Precedes(CellAt(a), CellAt(b)); };
  if (middle != rank_.end()) std::nth_element(begin, middle, rank_.end(), precedes);
  std::sort(begin, middle, precedes);
  ranked_ = wanted;
}

TallyEntry TallyTable::At(std::int32_t rank) {
  if (rank < 1 || rank > Count()) ThrowSubscript();
  const std::size_t place = static_cast<std::size_t>(rank) - 1;
  EnsureRanked(place + 1);
  return EntryAt(rank_[place]);
}

void TallyTable::SortByMetric() {
  if (order_ == Order::kByCount) {
    order_ = Order::kByMetric;
    ranked_ = 0;
    settled_ = true;
  } else if (order_ == Order::kExplicit) {
    std::stable_sort(rank_.begin(), rank_.end(),
                     [this](Row a, Row b) { return CellAt(a).metric > CellAt(b).metric; });
  }
}

// From here on the order is no longer a function of counts and metrics alone.
void TallyTable::MakeOrderExplicit() {
  ranked_ = 0;
  EnsureRanked(static_cast<std::size_t>(count_));
  order_ = Order::kExplicit;
}

// Moves a row before its neighbours of lower count, and no further. A table is rarely added to in
// this state, so the row is looked for.
void TallyTable::MoveForward(Row row) {
  auto place = std::find(rank_.begin(), rank_.end(), row);
  const std::int32_t count = CellAt(row).count;
  for (; place != rank_.begin() && CellAt(*(place - 1)).count < count; --place) {
    std::iter_swap(place - 1, place);
  }
}

}  // namespace stats

namespace mdlMonth {
namespace {

void LogTallyWarning(std::string_view what, std::string_view key, float value,
                     const std::string& reason) {
  mdlConfigs::LogWarning(std::string(what).append(key) + "' metric=" + text::PlainNumber(value) +
                         reason);
}

}  // namespace

std::int32_t TallyCount(const TallyTable& table) { return table.Count(); }

void TallyAdd(const stats::HashedKey& key, TallyTable& table, float value, bool averaging) {
  try {
    const TallyTable::Row row = table.Keys().FindOrEnter(key);
    const bool added = averaging ? table.AddToMeanAt(row, value) : table.AddAt(row, value);
    if (!added) LogTallyOverflow(key.text, value);
  } catch (const std::bad_alloc&) {
    LogTallyNotExtended(key.text, value, table);
  }
}

void LogTallyOverflow(std::string_view key, float value) {
  LogTallyWarning(" : Error summing string '", key, value, ". Error is :  Overflow");
}

void LogTallyNotExtended(std::string_view key, float value, const TallyTable& table) {
  stats::NoteLostCounts();
  LogTallyWarning(" : Error extending arrray for string '", key, value,
                  ". Old count was " + std::to_string(table.Count()));
}

void SortTallyByMetric(TallyTable& table) { table.SortByMetric(); }

}  // namespace mdlMonth
