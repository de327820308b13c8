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

constexpr std::size_t kFirstBlock = 128;  // in words of 8 bytes
constexpr std::size_t kLargestBlock = std::size_t{1} << 17;
constexpr std::size_t kFirstIndexSize = 16;

// The mean of `count` values whose mean is `mean`, and one more.
float RunningMean(float mean, std::int32_t count, float value) {
  const double old_count = count;
  return static_cast<float>((old_count * static_cast<double>(mean) + static_cast<double>(value)) /
                            (old_count + 1));
}

}  // namespace

TallyTable::Row* TallyTable::Lookup(const HashedKey& key) const {
  if (buckets_.empty()) return nullptr;
  const std::size_t mask = buckets_.size() - 1;
  const std::uint32_t tag = TagOf(key);
  for (std::size_t i = Start(key);; i = (i + 1) & mask) {
    const Bucket& bucket = buckets_[i];
    if (bucket.row == nullptr) return nullptr;
    if (bucket.tag == tag && bucket.row->Is(tag, key.text)) return bucket.row;
  }
}

bool TallyTable::Find(const HashedKey& key, TallyEntry* entry) const {
  const Row* const row = Lookup(key);
  if (row == nullptr) return false;
  *entry = {row->key(), row->count, row->metric};
  return true;
}

void TallyTable::Add(const HashedKey& key, float value, bool averaging) {
  const bool repeated = last_row_ != nullptr && last_row_->Is(TagOf(key), key.text);
  Row* const row = repeated ? last_row_ : Lookup(key);
  if (order_ == Order::kByMetric) MakeOrderExplicit();
  ranked_ = 0;
  if (row == nullptr) {
    last_row_ = Append(key, value);
    return;
  }
  last_row_ = row;
  CountAgain(*row, value, averaging);
  if (order_ == Order::kExplicit) MoveForward(row);
}

// When the metric overflows, the entry stays counted but keeps its place, which the order by
// count cannot express.
void TallyTable::CountAgain(Row& row, float value, bool averaging) {
  const float metric = averaging ? RunningMean(row.metric, row.count, value) : row.metric + value;
  if (!std::isfinite(metric)) {
    if (order_ != Order::kExplicit) MakeOrderExplicit();
    AddTo(row.count, 1);
    ThrowOverflow();
  }
  AddTo(row.count, 1);
  row.metric = metric;
  row.last_add = ++additions_;
}

TallyTable::Row* TallyTable::Append(const HashedKey& key, float value) {
  if (rows_.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    ThrowOverflow();
  }
  if (2 * (rows_.size() + 1) > buckets_.size()) GrowIndex();
  Row* const row = new (Allocate(sizeof(Row) + key.text.size()))
      Row{additions_ + 1, TagOf(key), static_cast<std::uint32_t>(key.text.size()), 1, value};
  std::copy(key.text.begin(), key.text.end(), reinterpret_cast<char*>(row + 1));
  if (order_ == Order::kExplicit) {
    rank_.resize(rows_.size());
    rank_.push_back(row);
  }
  rows_.push_back(row);
  ++additions_;
  EnterInIndex(row);
  if (Count() > upper_index_) upper_index_ = 2 * Count();
  return row;
}

// Rows go into blocks that are kept by `Clear`, as is everything else that was allocated.
void* TallyTable::Allocate(std::size_t size) {
  const std::size_t words = (size + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t);
  while (block_ < blocks_.size() && blocks_[block_].size - block_used_ < words) {
    ++block_;
    block_used_ = 0;
  }
  if (block_ == blocks_.size()) {
    const std::size_t usual =
        blocks_.empty() ? kFirstBlock : std::min(2 * blocks_.back().size, kLargestBlock);
    const std::size_t block_size = std::max(usual, words);
    blocks_.push_back({std::make_unique_for_overwrite<std::uint64_t[]>(block_size), block_size});
  }
  void* const place = blocks_[block_].words.get() + block_used_;
  block_used_ += words;
  return place;
}

void TallyTable::GrowIndex() {
  buckets_ = std::vector<Bucket>(std::max(kFirstIndexSize, 2 * buckets_.size()));
  for (Row* const row : rows_) EnterInIndex(row);
}

void TallyTable::EnterInIndex(Row* row) {
  const std::size_t mask = buckets_.size() - 1;
  std::size_t i = row->tag & mask;
  while (buckets_[i].row != nullptr) i = (i + 1) & mask;
  buckets_[i] = {row, row->tag};
}

void TallyTable::Clear() {
  rows_.clear();
  std::fill(buckets_.begin(), buckets_.end(), Bucket());
  block_ = 0;
  block_used_ = 0;
  additions_ = 0;
  last_row_ = nullptr;
  order_ = Order::kByCount;
  rank_.clear();
  ranked_ = 0;
}

bool TallyTable::Precedes(const Row& a, const Row& b) const {
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
  const auto precedes = [this](const Row* a, const Row* b) { return Precedes(*a, *b); };
  if (middle != rank_.end()) std::nth_element(begin, middle, rank_.end(), precedes);
  std::sort(begin, middle, precedes);
  ranked_ = wanted;
}

TallyEntry TallyTable::At(std::int32_t rank) {
  if (rank < 1 || rank > Count()) ThrowSubscript();
  const std::size_t place = static_cast<std::size_t>(rank) - 1;
  EnsureRanked(place + 1);
  const Row& row = *rank_[place];
  return {row.key(), row.count, row.metric};
}

void TallyTable::SortByMetric() {
  if (order_ == Order::kByCount) {
    order_ = Order::kByMetric;
    ranked_ = 0;
  } else if (order_ == Order::kExplicit) {
    std::stable_sort(rank_.begin(), rank_.end(),
                     [](const Row* a, const Row* b) { return a->metric > b->metric; });
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
void TallyTable::MoveForward(const Row* row) {
  auto place = std::find(rank_.begin(), rank_.end(), row);
  for (; place != rank_.begin() && (*(place - 1))->count < row->count; --place) {
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
