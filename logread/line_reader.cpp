#include "logread/line_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace logread {
namespace {

constexpr std::size_t kUnroll = 8;

std::size_t RunsOf(std::size_t bytes) { return (bytes + kRunBytes - 1) / kRunBytes; }

// Writes the places of a mask's bits behind `places`, in order; returns their number. Eight at a
// time without a test between them: how many separators stand in 64 bytes is hard to foresee. May
// write one number too many.
std::size_t ListBits(std::uint64_t mask, std::uint32_t base, std::uint32_t* places) {
  std::size_t count = 0;
  while (mask != 0) {
    for (std::size_t i = 0; i < kUnroll; ++i) {
      places[count] = base + static_cast<std::uint32_t>(std::countr_zero(mask));
      count += mask != 0 ? 1 : 0;
      mask &= mask - 1;
    }
  }
  return count;
}

}  // namespace

LineReader::LineReader(std::size_t block_size, MaskRuns mask_runs)
    : block_size_(block_size), mask_runs_(mask_runs) {
  const std::size_t capacity = kLongestLine + block_size_;
  buffer_.resize(capacity + kRunBytes);
  masks_.resize(RunsOf(block_size_));
  for (std::vector<std::uint32_t>* list : {&separators_, &feeds_, &doubles_}) {
    list->resize(capacity + kRunBytes);
  }
}

void LineReader::Start(platform::InputFile& file) {
  file_ = &file;
  begin_ = end_ = 0;
  take_rest_ = skipping_ = false;
  error_ = 0;
  separator_count_ = feed_count_ = double_count_ = 0;
  next_separator_ = next_feed_ = next_double_ = 0;
}

bool LineReader::NextBlock() {
  if (file_ == nullptr) return false;
  MoveRestToFront();
  std::size_t got = 0;
  const std::size_t room = kLongestLine + block_size_ - end_;
  error_ = file_->Read(buffer_.data() + end_, std::min(block_size_, room), &got);
  if (error_ != 0 || got == 0) {
    // The end is final, even if the log grows meanwhile: the rest is handed out as a line.
    file_ = nullptr;
    take_rest_ = error_ == 0 && begin_ != end_;
    return take_rest_;
  }
  ListSeparators(end_, got);
  end_ += got;
  if (skipping_) {
    SkipToLineFeed();
  } else if (feed_count_ == 0 && end_ - begin_ >= kLongestLine) {
    take_rest_ = skipping_ = true;
  }
  return true;
}

bool LineReader::Next(Line* line) {
  if (next_feed_ == feed_count_) return take_rest_ && TakeRest(line);
  const std::size_t feed = feeds_[next_feed_++];
  const std::size_t end = separators_[feed];
  const bool has_return = end > begin_ && buffer_[end - 1] == '\r';
  line->text = {buffer_.data() + begin_, end - begin_ - (has_return ? 1 : 0)};
  const std::size_t double_before = next_double_;
  while (next_double_ < double_count_ && doubles_[next_double_] <= end) ++next_double_;
  line->fields = next_double_ == double_before ? feed + 1 - next_separator_ : 0;
  line->ends = &separators_[next_separator_];
  line->start = static_cast<std::uint32_t>(begin_);
  next_separator_ = feed + 1;
  begin_ = end + 1;
  return true;
}

bool LineReader::TakeRest(Line* line) {
  *line = Line();
  line->text = {buffer_.data() + begin_, end_ - begin_};
  begin_ = end_;
  take_rest_ = false;
  return true;
}

// Moves the unfinished line to the front of the buffer, and its places to the front of the lists.
void LineReader::MoveRestToFront() {
  if (skipping_) begin_ = end_;
  const auto shift = static_cast<std::uint32_t>(begin_);
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  const auto move_list = [shift](std::vector<std::uint32_t>& list, std::size_t next,
                                 std::size_t* count) {
    *count -= next;
    for (std::size_t i = 0; i < *count; ++i) list[i] = list[next + i] - shift;
  };
  if (skipping_) {
    next_separator_ = separator_count_;
    next_double_ = double_count_;
  }
  move_list(separators_, next_separator_, &separator_count_);
  move_list(doubles_, next_double_, &double_count_);
  end_ -= begin_;
  begin_ = feed_count_ = 0;
  next_separator_ = next_feed_ = next_double_ = 0;
}

// Takes a first look at `size` new bytes. The first byte of a line counts as following a
// separator: no field may be empty.
void LineReader::ListSeparators(std::size_t from, std::size_t size) {
  mask_runs_(buffer_.data() + from, RunsOf(size), masks_.data());
  if (size % kRunBytes != 0) {
    const std::uint64_t valid = (std::uint64_t{1} << size % kRunBytes) - 1;
    masks_[size / kRunBytes].separators &= valid;
    masks_[size / kRunBytes].feeds &= valid;
  }
  const bool follows_separator =
      separator_count_ != 0 && separators_[separator_count_ - 1] + 1 == from;
  std::uint64_t after_separator = from == 0 || follows_separator ? 1 : 0;
  for (std::size_t run = 0; run < RunsOf(size); ++run) {
    const auto base = static_cast<std::uint32_t>(from + run * kRunBytes);
    const auto [separators, feeds] = masks_[run];
    for (std::uint64_t left = feeds; left != 0; left &= left - 1) {
      const std::uint64_t before = separators & ((left & (~left + 1)) - 1);
      feeds_[feed_count_++] = static_cast<std::uint32_t>(
          separator_count_ + static_cast<std::size_t>(std::popcount(before)));
    }
    const std::uint64_t doubles = separators & (separators << 1 | after_separator);
    if (doubles != 0) double_count_ += ListBits(doubles, base, &doubles_[double_count_]);
    separator_count_ += ListBits(separators, base, &separators_[separator_count_]);
    after_separator = separators >> 63;
  }
}

// Drops what belongs to a line that was cut.
void LineReader::SkipToLineFeed() {
  if (feed_count_ == 0) return;
  const std::size_t feed = feeds_[0];
  skipping_ = false;
  next_feed_ = 1;
  next_separator_ = feed + 1;
  begin_ = separators_[feed] + 1;
  while (next_double_ < double_count_ && doubles_[next_double_] < begin_) ++next_double_;
}

}  // namespace logread
