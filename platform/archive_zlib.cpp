#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "platform/archive.h"
#include "platform/service.h"

namespace platform {
namespace {

constexpr std::size_t kInputSize = std::size_t{64} * 1024;
constexpr int kGzipOnly = 16 + MAX_WBITS;

class Unpacking : public InputFile {
 public:
  explicit Unpacking(std::unique_ptr<InputFile> archive)
      : archive_(std::move(archive)), input_(kInputSize) {
    if (inflateInit2(&stream_, kGzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Unpacking() override { inflateEnd(&stream_); }
  Unpacking(const Unpacking&) = delete;
  Unpacking& operator=(const Unpacking&) = delete;

  // What was unpacked before an error is handed out first; the error stays for the next call.
  int Read(char* buffer, std::size_t size, std::size_t* got) override {
    constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
    const auto room = static_cast<uInt>(std::min(size, kMost));
    stream_.next_out = reinterpret_cast<Bytef*>(buffer);
    stream_.avail_out = room;
    while (error_ == 0 && !at_end_ && stream_.avail_out == room) error_ = Step();
    *got = room - stream_.avail_out;
    return *got != 0 ? 0 : error_;
  }

 private:
  // Unpacks what it can of the input at hand, after reading more where there is none.
  int Step() {
    if (stream_.avail_in == 0) {
      const int error = Refill();
      if (error != 0) return error;
      if (stream_.avail_in == 0) return EndOfInput();
    }
    if (between_parts_ && !BeginPart()) return 0;
    const int result = inflate(&stream_, Z_NO_FLUSH);
    if (result == Z_STREAM_END) between_parts_ = true;
    if (result == Z_OK || result == Z_STREAM_END) return 0;
    return kDamagedArchiveError;
  }

  int Refill() {
    std::size_t got = 0;
    const int error = archive_->Read(input_.data(), input_.size(), &got);
    stream_.next_in = reinterpret_cast<Bytef*>(input_.data());
    stream_.avail_in = static_cast<uInt>(got);
    return error;
  }

  // An archive that holds not even one part is damaged like one that ends within a part.
  int EndOfInput() {
    at_end_ = between_parts_;
    return at_end_ ? 0 : kDamagedArchiveError;
  }

  // Passes over the zeros that tapes fill their blocks with; false when nothing else is left of the
  // input at hand.
  bool BeginPart() {
    while (stream_.avail_in != 0 && *stream_.next_in == 0) {
      ++stream_.next_in;
      --stream_.avail_in;
    }
    if (stream_.avail_in == 0) return false;
    between_parts_ = false;
    return inflateReset(&stream_) == Z_OK;
  }

  const std::unique_ptr<InputFile> archive_;
  std::vector<char> input_;
  z_stream stream_{};
  int error_ = 0;
  bool between_parts_ = false;
  bool at_end_ = false;
};

class GzipArchives : public Archives {
 public:
  bool CanRead() override { return true; }
  std::unique_ptr<InputFile> Unpacked(std::unique_ptr<InputFile> archive) override {
    return std::make_unique<Unpacking>(std::move(archive));
  }
};

}  // namespace

Archives& TheArchives() {
  static GzipArchives gzip;
  return InUse<Archives>(gzip);
}

}  // namespace platform
