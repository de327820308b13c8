#include "platform/archive.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/mod_systemInfo.h"
#include "tests/fakes/fake_file_system.h"

namespace platform {
namespace {

// "one\r\ntwo\r\n" and "three\r\n" as gzip packs them.
const std::string kOneTwo(
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xcb\xcf\x4b\xe5\xe5\x2a\x29\xcf\xe7\xe5\x02\x00"
    "\xa0\x44\xca\xe3\x0a\x00\x00\x00",
    30);
const std::string kThree(
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\x2b\xc9\x28\x4a\x4d\xe5\xe5\x02\x00\x77\x8c\x61\xf5"
    "\x07\x00\x00\x00",
    27);

struct Content {
  std::string text;
  int error = 0;
};

class ArchiveTest : public testing::Test {
 protected:
  // All of an archive, read in pieces of `size`.
  Content Read(const std::string& archive, std::size_t size = 4096) {
    files_.AddFile("log.gz", archive);
    Content content;
    const auto file = TheArchives().Unpacked(files_.OpenForReading("log.gz", &content.error));
    std::string buffer(size, '\0');
    std::size_t got = 0;
    while ((content.error = file->Read(buffer.data(), size, &got)) == 0 && got > 0) {
      content.text.append(buffer, 0, got);
    }
    return content;
  }

  fakes::FakeFileSystem files_;
};

TEST_F(ArchiveTest, HoldsTheBytesOfTheLog) {
  for (const std::size_t size : {1, 3, 4096}) {
    const Content content = Read(kOneTwo, size);
    EXPECT_EQ(content.text, "one\r\ntwo\r\n");
    EXPECT_EQ(content.error, 0);
  }
}

TEST_F(ArchiveTest, PartsFollowEachOther) {
  for (const std::size_t limit : {0, 1, 31}) {
    files_.read_size_limit = limit;
    EXPECT_EQ(Read(kOneTwo + kThree).text, "one\r\ntwo\r\nthree\r\n");
    const Content padded = Read(kOneTwo + kThree + std::string(1000, '\0'));
    EXPECT_EQ(padded.text, "one\r\ntwo\r\nthree\r\n");
    EXPECT_EQ(padded.error, 0);
  }
}

TEST_F(ArchiveTest, WhatIsCutOffLosesOnlyItsEnd) {
  for (std::size_t size = 0; size < kThree.size(); ++size) {
    const Content content = Read(kOneTwo + kThree.substr(0, size));
    EXPECT_TRUE(content.text.starts_with("one\r\ntwo\r\n")) << size;
    EXPECT_EQ(content.error, size == 0 ? 0 : kDamagedArchiveError) << size;
  }
  EXPECT_EQ(Read("").error, kDamagedArchiveError);
}

TEST_F(ArchiveTest, DamageEndsTheReadingBehindWhatIsWhole) {
  std::string wrong_sum = kThree;
  wrong_sum[20] ^= 1;
  const Content content = Read(kOneTwo + wrong_sum);
  EXPECT_EQ(content.text, "one\r\ntwo\r\nthree\r\n");
  EXPECT_EQ(content.error, kDamagedArchiveError);
  EXPECT_EQ(Read(kOneTwo + "no archive").text, "one\r\ntwo\r\n");
  EXPECT_EQ(Read(kOneTwo + "no archive").error, kDamagedArchiveError);
  EXPECT_EQ(Read("2007-01-15 10:00:00 /plain\r\n").error, kDamagedArchiveError);
}

TEST_F(ArchiveTest, ReadErrorOfTheFileIsPassedOn) {
  files_.read_failures["log.gz"] = {.error = 5, .bytes = 20};
  const Content content = Read(kOneTwo);
  EXPECT_EQ(content.error, 5);
  EXPECT_TRUE(std::string("one\r\ntwo\r\n").starts_with(content.text));
}

TEST_F(ArchiveTest, DamageHasAText) {
  EXPECT_EQ(mod_systemInfo::GetErrorText(kDamagedArchiveError),
            "The archive is damaged or cut off");
}

}  // namespace
}  // namespace platform
