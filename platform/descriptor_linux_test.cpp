#include "platform/descriptor_linux.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "platform/file_system.h"
#include "tests/fakes/temp_dir.h"

namespace platform {
namespace {

using std::chrono::milliseconds;

class DescriptorTest : public testing::Test {
 protected:
  Descriptor OpenFolder() const { return Descriptor(open(folder_.path().c_str(), O_RDONLY)); }

  fakes::ScopedTempDir folder_;
};

TEST_F(DescriptorTest, ALockThatIsTakenIsNotHadInTheTimeGiven) {
  const Descriptor first = OpenFolder();
  const Descriptor second = OpenFolder();
  EXPECT_EQ(TakeLock(first.get(), milliseconds(0)), 0);
  EXPECT_EQ(TakeLock(second.get(), milliseconds(0)), kLockBusyError);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(TakeLock(second.get(), milliseconds(120)), kLockBusyError);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(120));
}

TEST_F(DescriptorTest, ALockIsHadOnceItsHolderIsGone) {
  Descriptor first = OpenFolder();
  const Descriptor second = OpenFolder();
  ASSERT_EQ(TakeLock(first.get(), milliseconds(0)), 0);
  std::thread holder([&first] {
    std::this_thread::sleep_for(milliseconds(50));
    first.Close();
  });
  EXPECT_EQ(TakeLock(second.get(), milliseconds(60000)), 0);
  holder.join();
}

TEST_F(DescriptorTest, WhatCannotBeLockedOrWrittenIsAnError) {
  EXPECT_EQ(TakeLock(-1, milliseconds(0)), EBADF);
  const Descriptor full(open("/dev/full", O_WRONLY));
  EXPECT_EQ(WriteAll(full.get(), "x"), ENOSPC);
  EXPECT_EQ(WriteAll(full.get(), ""), 0);
}

}  // namespace
}  // namespace platform
