// Records that have been read and wait to be added to the month's statistics together.
//
// Most texts of a record are views into the block that is being read, so the batch has to be added
// before the block goes. Used by the record parser.
#ifndef HITWICK_LOGREAD_RECORD_BATCH_H_
#define HITWICK_LOGREAD_RECORD_BATCH_H_

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "stats/log_record.h"
#include "stats/mdlMonth.h"

namespace mdlW3C {

// The texts of a record that do not stand in the log as they are.
struct RecordTexts {
  std::string search_words;
  std::string host_label;
};

class RecordBatch {
 public:
  // The record to be filled in next and its texts; both hold anything.
  stats::LogRecord& Next() { return records_[count_]; }
  RecordTexts& Texts() { return texts_[count_]; }
  // Keeps that record; adds them all when the batch is full.
  void Keep() {
    if (++count_ == records_.size()) Add();
  }
  // Adds all records to the month's statistics in order.
  void Add() {
    const std::size_t count = count_;
    count_ = 0;
    mdlMonth::AddHits(std::span(records_.data(), count));
  }

 private:
  std::array<stats::LogRecord, mdlMonth::kMostHits> records_;
  std::array<RecordTexts, mdlMonth::kMostHits> texts_;
  std::size_t count_ = 0;
};

}  // namespace mdlW3C

#endif  // HITWICK_LOGREAD_RECORD_BATCH_H_
