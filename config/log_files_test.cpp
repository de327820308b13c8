#include "config/log_files.h"

#include <gtest/gtest.h>

#include "platform/archive.h"
#include "platform/service.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/recording_event_log.h"

namespace {

using Names = std::vector<std::string>;

class NoArchives : public platform::Archives {
 public:
  bool CanRead() override { return false; }
  std::unique_ptr<platform::InputFile> Unpacked(std::unique_ptr<platform::InputFile>) override {
    return nullptr;
  }
};

class LogFiles : public testing::Test {
 protected:
  LogFiles() { log_files::Reset(); }
  ~LogFiles() override { log_files::Reset(); }

  void Add(const Names& names) {
    for (const std::string& name : names) files_.AddFile(platform::JoinPath("logs", name), "");
  }

  fakes::FakeFileSystem files_;
  fakes::RecordingEventLog log_;

 private:
  platform::Replacement<platform::FileSystem> file_replacement_{files_};
  platform::Replacement<platform::EventLog> log_replacement_{log_};
};

TEST_F(LogFiles, ArchiveStandsInForTheLogThatIsNotThere) {
  Add({"ex070101.log", "ex070101.log.gz", "ex070102.log.gz", "ex070103.log", "ex070201.log.gz"});
  EXPECT_EQ(log_files::List("logs", "ex0701"),
            (Names{"ex070101.log", "ex070102.log.gz", "ex070103.log"}));
}

TEST_F(LogFiles, LetterCaseDoesNotCount) {
  Add({"EX070101.LOG", "ex070101.log.gz", "Ex070102.Log.GZ"});
  EXPECT_EQ(log_files::List("logs", "ex0701"), (Names{"EX070101.LOG", "Ex070102.Log.GZ"}));
}

TEST_F(LogFiles, OfTwoArchivesOfALogTheFirstCounts) {
  Add({"ex070101.log.gz", "EX070101.log.gz"});
  EXPECT_EQ(log_files::List("logs", "ex0701"), Names{"EX070101.log.gz"});
}

TEST_F(LogFiles, OrderIsThatOfThePlainNames) {
  Add({"ex070101.log.a.log", "ex070101.log.gz", "ex070101.log.h.log.gz"});
  EXPECT_EQ(log_files::List("logs", "ex0701"),
            (Names{"ex070101.log.gz", "ex070101.log.a.log", "ex070101.log.h.log.gz"}));
}

TEST_F(LogFiles, OtherFilesAreNone) {
  Add({"ex070101.gz", "ex070101.log.zip", "ex070101.log.gz.txt"});
  EXPECT_EQ(log_files::List("logs", "ex0701"), Names{});
}

TEST_F(LogFiles, PlainNameLosesTheEndingOfTheArchive) {
  EXPECT_EQ(log_files::PlainName("ex070101.log.gz"), "ex070101.log");
  EXPECT_EQ(log_files::PlainName("ex070101.LOG.GZ"), "ex070101.LOG");
  EXPECT_EQ(log_files::PlainName("ex070101.log"), "ex070101.log");
  EXPECT_TRUE(log_files::IsArchive("ex070101.log.Gz"));
  EXPECT_FALSE(log_files::IsArchive("ex070101.log"));
}

TEST_F(LogFiles, BuildWithoutArchivesSaysSoOnce) {
  NoArchives none;
  const platform::Replacement<platform::Archives> replacement{none};
  Add({"ex070101.log", "ex070102.log.gz"});
  EXPECT_EQ(log_files::List("logs", "ex0702"), Names{});
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_EQ(log_files::List("logs", "ex0701"), Names{"ex070101.log"});
  EXPECT_EQ(log_files::List("logs", "ex0701"), Names{"ex070101.log"});
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries[0].level, platform::EventLevel::kWarning);
  EXPECT_EQ(log_.entries[0].text, "Hitwick: This build cannot read compressed logs such as '" +
                                      platform::JoinPath("logs", "ex070102.log.gz") + "'");
}

}  // namespace
