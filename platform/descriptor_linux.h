// Open files as the kernel knows them: closing, writing and locking.
//
// No state. Used only by the Linux implementations of this folder.
#ifndef HITWICK_PLATFORM_DESCRIPTOR_LINUX_H_
#define HITWICK_PLATFORM_DESCRIPTOR_LINUX_H_

#include <chrono>
#include <string_view>
#include <utility>

namespace platform {

// An open file, closed at the end of its scope. -1 is none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return number_ >= 0; }
  int get() const { return number_; }
  void Close();

 private:
  int number_;
};

// Writes all bytes, in one call where the system takes them so. An errno code.
int WriteAll(int file, std::string_view bytes);

// Takes the one lock (flock) of an open file, against other processes and other openings of the
// same file; it goes with the last descriptor. Waits up to `patience` (0: not at all). An errno
// code, or kLockBusyError when somebody else has it all the time.
int TakeLock(int file, std::chrono::milliseconds patience);

}  // namespace platform

#endif  // HITWICK_PLATFORM_DESCRIPTOR_LINUX_H_
