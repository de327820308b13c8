// The lines of a log file, read in blocks.
//
// A line ends at a line feed; a carriage return just before it belongs to the line end. The last
// line counts without one. The quotes and angle brackets of the text are replaced on the way: log
// values are written into pages, and this is the only escaping they get.
//
// Where the blanks and line feeds of a block stand is listed as soon as it is read, so that no
// byte is looked at again to find the fields of a line.
#ifndef HITWICK_LOGREAD_LINE_READER_H_
#define HITWICK_LOGREAD_LINE_READER_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "logread/byte_masks.h"
#include "platform/file_system.h"

namespace logread {

// A line and where its fields are. After the text at least 8 bytes can be read.
struct Line {
  std::string_view text;  // without its line end
  // The number of fields where exactly one blank stands between two of them and none elsewhere; 0
  // for any other line, for the last one without a line feed and for one that was cut.
  std::size_t fields = 0;

  // Field `i` (0-based) of such a line.
  std::string_view Field(std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends[i - 1] + 1 - start;
    const std::size_t end = i + 1 == fields ? text.size() : ends[i] - start;
    return {text.data() + begin, end - begin};
  }

  const std::uint32_t* ends = nullptr;  // the blanks' places in the block
  std::uint32_t start = 0;              // the line's place in the block
};

class LineReader {
 public:
  // A block should stay in the processor's second-level cache until its lines are read.
  static constexpr std::size_t kBlockSize = std::size_t{64} * 1024;
  // No token may end beyond this place in a line, so what stands further on need not be kept.
  static constexpr std::size_t kLongestLine = 32768;

  // `block_size`: the most bytes read at once, 1 or more. `mask_runs`: how they are looked at.
  explicit LineReader(std::size_t block_size = kBlockSize,
                      MaskRuns mask_runs = MaskVersions().back());

  // Starts on a new file, which must outlive the reading of it.
  void Start(platform::InputFile& file);
  // Reads more. False at the end of the file and after a read error. The lines of the block before
  // are no longer valid.
  bool NextBlock();
  // The next line of the block, valid until the next block; a line longer than `kLongestLine` may
  // come cut. False when the block has no further line.
  bool Next(Line* line);
  // The error code that ended the reading; 0 for the end of the file.
  int error() const { return error_; }

 private:
  void MoveRestToFront();
  void ListSeparators(std::size_t from, std::size_t size);
  void SkipToLineFeed();
  bool TakeRest(Line* line);

  const std::size_t block_size_;
  const MaskRuns mask_runs_;
  platform::InputFile* file_ = nullptr;
  std::vector<char> buffer_;
  std::vector<RunMasks> masks_;
  std::size_t begin_ = 0;   // the first byte not yet handed out
  std::size_t end_ = 0;     // the end of what was read
  bool take_rest_ = false;  // what is left is a line without a line feed
  bool skipping_ = false;   // the rest of a cut line is still to come
  int error_ = 0;

  // Places in the buffer, in order, with room for one too many.
  std::vector<std::uint32_t> separators_;  // blanks and line feeds
  std::vector<std::uint32_t> feeds_;       // the line feeds' places in `separators_`
  std::vector<std::uint32_t> doubles_;     // separators that follow another or begin a line
  std::size_t separator_count_ = 0;
  std::size_t feed_count_ = 0;
  std::size_t double_count_ = 0;
  std::size_t next_separator_ = 0;  // the first ones not yet handed out
  std::size_t next_feed_ = 0;
  std::size_t next_double_ = 0;
};

}  // namespace logread

#endif  // HITWICK_LOGREAD_LINE_READER_H_
