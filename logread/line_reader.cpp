#include "logread/line_reader.h"

#include <cstring>

namespace logread {
namespace {

// 0xFF where the bytes are equal, else 0.
unsigned char MaskOf(unsigned char byte, char wanted) {
  return static_cast<unsigned char>(-(byte == static_cast<unsigned char>(wanted)));
}

// Sees every byte of every log, so it is written without branches for the compiler to make a
// vector loop of it.
void ReplaceMarkup(char* text, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const unsigned char quote = MaskOf(byte, '"');
    const unsigned char apostrophe = MaskOf(byte, '\'');
    const unsigned char less = MaskOf(byte, '<');
    const unsigned char greater = MaskOf(byte, '>');
    const int markup = quote | apostrophe | less | greater;
    text[i] = static_cast<char>((byte & ~markup) | ('_' & markup));
  }
}

}  // namespace

void LineReader::Start(platform::InputFile& file) {
  file_ = &file;
  begin_ = scanned_ = end_ = 0;
  skipping_ = false;
  error_ = 0;
}

bool LineReader::Next(std::string_view* line) {
  if (skipping_ && !SkipRestOfLine()) return false;
  for (;;) {
    const char* const data = buffer_.data();
    const void* const found = std::memchr(data + scanned_, '\n', end_ - scanned_);
    if (found != nullptr) {
      const std::size_t feed = static_cast<std::size_t>(static_cast<const char*>(found) - data);
      const bool has_return = feed > begin_ && data[feed - 1] == '\r';
      *line = {data + begin_, feed - begin_ - (has_return ? 1 : 0)};
      begin_ = scanned_ = feed + 1;
      return true;
    }
    scanned_ = end_;
    if (end_ - begin_ == buffer_.size()) {
      *line = {data + begin_, end_ - begin_};
      begin_ = end_;
      skipping_ = true;
      return true;
    }
    if (!Fill()) break;
  }
  if (error_ != 0 || begin_ == end_) return false;
  *line = {buffer_.data() + begin_, end_ - begin_};
  begin_ = end_;
  return true;
}

// Reads more behind the unfinished line, which moves to the front. False at the end or on error.
bool LineReader::Fill() {
  char* const data = buffer_.data();
  if (begin_ > 0) {
    std::memmove(data, data + begin_, end_ - begin_);
    end_ -= begin_;
    scanned_ -= begin_;
    begin_ = 0;
  }
  std::size_t got = 0;
  error_ = file_->Read(data + end_, buffer_.size() - end_, &got);
  if (error_ != 0 || got == 0) return false;
  ReplaceMarkup(data + end_, got);
  end_ += got;
  return true;
}

// Drops bytes up to and including the next line feed. False when the file ends before it.
bool LineReader::SkipRestOfLine() {
  for (;;) {
    const void* const found = std::memchr(buffer_.data() + begin_, '\n', end_ - begin_);
    if (found != nullptr) {
      begin_ = scanned_ =
          static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data()) + 1;
      skipping_ = false;
      return true;
    }
    begin_ = scanned_ = end_;
    if (!Fill()) return false;
  }
}

}  // namespace logread
