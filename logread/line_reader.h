// The lines of a log file, read in blocks.
//
// A line ends at a line feed; a carriage return just before it belongs to the line end. The last
// line counts without one. The quotes and angle brackets of the text are replaced on the way: log
// values are written into pages, and this is the only escaping they get.
#ifndef HITWICK_LOGREAD_LINE_READER_H_
#define HITWICK_LOGREAD_LINE_READER_H_

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace logread {

class LineReader {
 public:
  // No token may end beyond this place in a line, so what stands further on is not kept.
  static constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

  // Starts on a new file, which must outlive the reading of it.
  void Start(platform::InputFile& file);
  // The next line, valid until the next call; a line longer than a block comes cut to a block's
  // length. False at the end of the file and after a read error.
  bool Next(std::string_view* line);
  // The error code that ended the reading; 0 for the end of the file.
  int error() const { return error_; }

 private:
  bool Fill();
  bool SkipRestOfLine();

  platform::InputFile* file_ = nullptr;
  std::vector<char> buffer_ = std::vector<char>(kBlockSize);
  std::size_t begin_ = 0;    // the first byte not yet handed out
  std::size_t scanned_ = 0;  // no line feed stands between begin_ and here
  std::size_t end_ = 0;      // the end of what was read
  bool skipping_ = false;    // the rest of a cut line is still to come
  int error_ = 0;
};

}  // namespace logread

#endif  // HITWICK_LOGREAD_LINE_READER_H_
