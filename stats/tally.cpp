#include "stats/tally.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <string>

#include "config/mdlConfigs.h"
#include "config/number_text.h"
#include "stats/fault.h"

namespace stats {
namespace {

// The mean of `count` values whose mean is `mean`, and one more.
float RunningMean(float mean, std::int32_t count, float value) {
  const double old_count = count;
  return static_cast<float>((old_count * static_cast<double>(mean) + static_cast<double>(value)) /
                            (old_count + 1));
}

}  // namespace

KeyStore::Ref TallyTable::Lookup(const HashedKey& key) const {
  const Ref row = keys_->Find(key);
  return row != KeyStore::kNone && CellAt(row).count != 0 ? row : KeyStore::kNone;
}

bool TallyTable::Find(const HashedKey& key, TallyEntry* entry) const {
  const Ref row = Lookup(key);
  if (row == KeyStore::kNone) return false;
  *entry = EntryAt(row);
  return true;
}

void TallyTable::Add(const HashedKey& key, float value, bool averaging) {
  Ref row = keys_->Find(key);
  if (row == KeyStore::kNone) row = keys_->Append(key);
  if (order_ == Order::kByMetric) MakeOrderExplicit();
  ranked_ = 0;
  Cell& cell = CellAt(row);
  if (cell.count == 0) {
    Enter(row, value);
    return;
  }
  CountAgain(cell, value, averaging);
  if (order_ == Order::kExplicit) MoveForward(row);
}

// When the metric overflows, the entry stays counted but keeps its place, which the order by
// count cannot express.
void TallyTable::CountAgain(Cell& cell, float value, bool averaging) {
  const float metric =
      averaging ? RunningMean(cell.metric, cell.count, value) : cell.metric + value;
  if (!std::isfinite(metric)) {
    if (order_ != Order::kExplicit) MakeOrderExplicit();
    AddTo(cell.count, 1);
    ThrowOverflow();
  }
  AddTo(cell.count, 1);
  cell.metric = metric;
  cell.last_add = ++additions_;
}

// The first addition of a key to this table.
void TallyTable::Enter(Ref row, float value) {
  if (rows_.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    ThrowOverflow();
  }
  if (order_ == Order::kExplicit) {
    rank_.resize(rows_.size());
    rank_.push_back(row);
  }
  rows_.push_back(row);
  CellAt(row) = {++additions_, 1, value};
  keys_->AddUse();
}

void TallyTable::Clear() {
  for (const Ref row : rows_) CellAt(row).count = 0;
  keys_->DropUses(rows_.size());
  rows_.clear();
  additions_ = 0;
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
  if (ranked_ == 0) rank_ = rows_;
  const std::size_t wanted =
      std::min(std::max({count, 2 * ranked_, std::size_t{128}}), rank_.size());
  const auto begin = rank_.begin() + static_cast<std::ptrdiff_t>(ranked_);
  const auto middle = rank_.begin() + static_cast<std::ptrdiff_t>(wanted);
  const auto precedes = [this](Ref a, Ref b) { return Precedes(CellAt(a), CellAt(b)); };
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
  } else if (order_ == Order::kExplicit) {
    std::stable_sort(rank_.begin(), rank_.end(),
                     [this](Ref a, Ref b) { return CellAt(a).metric > CellAt(b).metric; });
  }
}

// From here on the order is no longer a function of counts and metrics alone.
void TallyTable::MakeOrderExplicit() {
  EnsureRanked(rows_.size());
  rank_.resize(rows_.size());
  order_ = Order::kExplicit;
}

// Moves a row before its neighbours of lower count, and no further. A table is rarely added to in
// this state, so the row is looked for.
void TallyTable::MoveForward(Ref row) {
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
    table.Add(key, value, averaging);
  } catch (const stats::Fault& fault) {
    LogTallyWarning(" : Error summing string '", key.text, value,
                    ". Error is :  " + fault.description());
  } catch (const std::bad_alloc&) {
    LogTallyWarning(" : Error extending arrray for string '", key.text, value,
                    ". Old count was " + std::to_string(table.Count()));
  }
}

void SortTallyByMetric(TallyTable& table) { table.SortByMetric(); }

}  // namespace mdlMonth
