// Compressed log files (gzip). No state. Called by the log reader for a log whose name ends in
// ".gz"; a build without zlib reads none.
#ifndef HITWICK_PLATFORM_ARCHIVE_H_
#define HITWICK_PLATFORM_ARCHIVE_H_

#include <memory>

#include "platform/file_system.h"

namespace platform {

class Archives {
 public:
  virtual ~Archives() = default;
  // Whether this build can read archives.
  virtual bool CanRead() = 0;
  // What an archive holds, read as it is unpacked: memory does not grow with its size. An archive
  // of several parts, one appended to the other, holds theirs one after the other. Where it is cut
  // off or damaged, what comes before can be read, and then the reading ends with
  // kDamagedArchiveError. Null when this build cannot read archives.
  virtual std::unique_ptr<InputFile> Unpacked(std::unique_ptr<InputFile> archive) = 0;
};

Archives& TheArchives();

}  // namespace platform

#endif  // HITWICK_PLATFORM_ARCHIVE_H_
