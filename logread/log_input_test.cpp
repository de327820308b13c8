// Archived logs, and the bytes that are counted for whoever watches.
#include "logread/log_input.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "logread/reader_fixture.h"
#include "platform/archive.h"

namespace {

// Unpacks an archive to its own bytes, and fails where a "!" stands.
class PlainArchives : public platform::Archives {
 public:
  bool CanRead() override { return true; }
  std::unique_ptr<platform::InputFile> Unpacked(
      std::unique_ptr<platform::InputFile> archive) override {
    return std::make_unique<Unpacking>(std::move(archive));
  }

 private:
  class Unpacking : public platform::InputFile {
   public:
    explicit Unpacking(std::unique_ptr<platform::InputFile> archive)
        : archive_(std::move(archive)) {}
    int Read(char* buffer, std::size_t size, std::size_t* got) override {
      if (damaged_) {
        *got = 0;
        return platform::kDamagedArchiveError;
      }
      const int error = archive_->Read(buffer, size, got);
      const std::size_t damage = std::string_view(buffer, *got).find('!');
      damaged_ = damage != std::string_view::npos;
      if (damaged_) *got = damage;
      return error;
    }

   private:
    std::unique_ptr<platform::InputFile> archive_;
    bool damaged_ = false;
  };
};

class LogInput : public ReaderTest {
 protected:
  static constexpr char kFields[] = "#Fields: cs-uri-stem";

  PlainArchives archives_;

 private:
  platform::Replacement<platform::Archives> archive_replacement_{archives_};
};

TEST_F(LogInput, ArchiveIsReadLikeTheLog) {
  AddLines("ex070114.log", {kFields, "/plain"});
  AddLines("ex070114.log.gz", {kFields, "/other"});
  AddLines("ex070115.log.gz", {"#Fields: cs-uri-stem time", "/packed 10:00:00"});
  Read(1, 2007);
  EXPECT_EQ(Opened(), (List{"ex070114.log", "ex070115.log.gz"}));
  EXPECT_EQ(Urls(), (List{"/plain", "/packed"}));
  EXPECT_EQ(DaysWithHits(), (std::vector<int>{14, 15}));  // by the dates in the names
}

TEST_F(LogInput, NeighbourDayMayBeArchived) {
  AddLines("ex070201.log.gz", {kFields, "/next"});
  AddLines("ex070201.log.old.log.gz", {kFields, "/no"});
  Read(1, 2007);
  EXPECT_EQ(Opened(), List{"ex070201.log.gz"});
}

TEST_F(LogInput, LinesBeforeTheDamageAreKept) {
  State().LogTranslations = true;
  AddLines("ex070115.log.gz", {kFields, "/a", "/b", "/c!", "/d"});
  AddLines("ex070116.log", {"/e"});
  Read(1, 2007);
  EXPECT_EQ(Urls(), (List{"/a", "/b", "/e"}));
  EXPECT_TRUE(log_.ContainsWarning("HitwickError during read of  " + PathOf("ex070115.log.gz") +
                                   " : The archive is damaged or cut off"));
}

TEST_F(LogInput, BytesAreCountedOverTheMonth) {
  std::vector<std::string> shown;
  State().Ui.show_bytes_read = [&shown](const std::string& file, std::uint64_t done,
                                        std::uint64_t all) {
    const std::string text = file + " " + std::to_string(done) + "/" + std::to_string(all);
    if (shown.empty() || shown.back() != text) shown.push_back(text);
  };
  AddLog("ex070114.log", "12345");
  AddLog("ex070115.log.gz", "123");
  const List expected = {"ex070114.log 5/8", "ex070115.log.gz 8/8"};
  Read(1, 2007);
  EXPECT_EQ(shown, expected);
  shown.clear();
  Read(1, 2007);
  EXPECT_EQ(shown, expected);
}

}  // namespace
