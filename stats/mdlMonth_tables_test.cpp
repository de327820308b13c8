// The tables that a hit is tallied in, by its status and its file type among others.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "stats/log_record.h"
#include "stats/mdlMonth.h"
#include "stats/month_fixture.h"

namespace {

using mdlMonth::AddHit;
using mdlMonth::Month;
using mdlMonth::TallyTable;
using stats::LogRecord;

using AddHitTables = MonthTest;
using AddHitStatus = MonthTest;

class AddHitFileTypes : public MonthTest {
 protected:
  // The file type that a hit on `uri` is tallied under; empty for none.
  static std::string FileTypeOf(std::string_view uri) {
    Month().FileTypes.Clear();
    LogRecord record = FullRecord();
    record.uriStem = uri;
    AddHit(record);
    return Month().FileTypes.Count() == 0 ? "" : std::string(Month().FileTypes.At(1).Key);
  }
};

TEST_F(AddHitTables, EveryFieldIsTalliedWithTheBytes) {
  Add(FullRecord());
  Add(FullRecord());
  struct Expectation {
    TallyTable* table;
    const char* key;
  };
  const Expectation expectations[] = {{&Month().SuccessUrls, "/index.htm"},
                                      {&Month().UserAgents, "Mozilla"},
                                      {&Month().ClientAddresses, "10.0.0.1"},
                                      {&Month().Methods, "GET"},
                                      {&Month().Referrers, "http://example.com/"},
                                      {&Month().StatusCodes, "200"},
                                      {&Month().Queries, "cheap flights"},
                                      {&Month().UserNames, "alice"},
                                      {&Month().Pages, "/index.htm"},
                                      {&Month().FileTypes, "HTM"}};
  for (const Expectation& expected : expectations) {
    ASSERT_EQ(Keys(*expected.table), KeyList{expected.key});
    EXPECT_EQ(expected.table->At(1).Count, 2) << expected.key;
    EXPECT_EQ(expected.table->At(1).Metric, 2000.0F) << expected.key;
  }
  EXPECT_EQ(Month().FailedUrls.Count(), 0);
  EXPECT_EQ(Month().FailedReferrers.Count(), 0);
  EXPECT_EQ(Month().RobotsTxtAgents.Count(), 0);
  EXPECT_EQ(Month().Browsers.Count(), 0);
  EXPECT_EQ(Month().OperatingSystems.Count(), 0);
}

TEST_F(AddHitTables, EmptyFieldsAreNotTallied) {
  AddAt(1, 1, 100);
  for (const TallyTable* table :
       {&Month().SuccessUrls, &Month().UserAgents, &Month().ClientAddresses, &Month().Methods,
        &Month().Referrers, &Month().StatusCodes, &Month().Queries, &Month().UserNames,
        &Month().Pages, &Month().FileTypes, &Month().UrlResponseTimes}) {
    EXPECT_EQ(table->Count(), 0);
  }
  EXPECT_EQ(Month().TotalHits, 1.0F);
}

TEST_F(AddHitTables, HyphensAreTalliedAsTheyStandButInQueriesAndNames) {
  LogRecord record = FullRecord();
  record.userAgent = record.method = record.clientAddress = record.referrer =
      record.searchKeywords = record.userName = "-";
  AddHit(record);
  EXPECT_EQ(Keys(Month().UserAgents), KeyList{"-"});
  EXPECT_EQ(Keys(Month().Methods), KeyList{"-"});
  EXPECT_EQ(Keys(Month().ClientAddresses), KeyList{"-"});
  EXPECT_EQ(Keys(Month().Referrers), KeyList{"-"});
  EXPECT_EQ(Keys(Month().Queries), KeyList{});
  EXPECT_EQ(Keys(Month().UserNames), KeyList{"Anonymous"});
}

TEST_F(AddHitTables, AnonymousIsWrittenBackToTheCaller) {
  LogRecord record = FullRecord();
  record.userName = "-";
  AddHit(record);
  EXPECT_EQ(record.userName, "Anonymous");
  record.userName = "--";
  AddHit(record);
  EXPECT_EQ(record.userName, "--");
  record.userName = "";
  AddHit(record);
  EXPECT_EQ(record.userName, "");
  EXPECT_EQ(Keys(Month().UserNames), (KeyList{"Anonymous", "--"}));
}

TEST_F(AddHitTables, FetchOfRobotsTxtNamesTheAgentLetterCaseIgnored) {
  LogRecord record = FullRecord();
  record.uriStem = "/ROBOTS.TXT";
  record.userAgent = "A";
  AddHit(record);
  record.uriStem = "/robots.txt";
  record.userAgent = "B";
  AddHit(record);
  record.userAgent = "";
  AddHit(record);
  record.uriStem = "/sub/robots.txt";
  record.userAgent = "C";
  AddHit(record);
  EXPECT_EQ(Keys(Month().RobotsTxtAgents), (KeyList{"A", "B"}));
}

TEST_F(AddHitTables, RefusedFetchOfRobotsTxtNamesTheAgentToo) {
  AddUri("/robots.txt", "404");
  EXPECT_EQ(Keys(Month().RobotsTxtAgents), KeyList{"Mozilla"});
}

TEST_F(AddHitTables, ResponseTimeIsTheMeanOfTheUrl) {
  LogRecord record = FullRecord();
  for (const std::int32_t time : {100, 200, 600}) {
    record.timeTaken = time;
    AddHit(record);
  }
  record.timeTaken = 0;
  AddHit(record);
  ASSERT_EQ(Keys(Month().UrlResponseTimes), KeyList{"/index.htm"});
  EXPECT_EQ(Month().UrlResponseTimes.At(1).Count, 3);
  EXPECT_EQ(Month().UrlResponseTimes.At(1).Metric, 300.0F);
}

TEST_F(AddHitTables, ResponseTimeOfAnEmptyUrlIsTalliedToo) {
  AddUri("");
  EXPECT_EQ(Keys(Month().UrlResponseTimes), KeyList{""});
  EXPECT_EQ(Keys(Month().SuccessUrls), KeyList{});
}

TEST_F(AddHitTables, EmptyUrlWithStatusTwoHundredCountsAsAPage) {
  AddUri("");
  EXPECT_EQ(Month().TotalFiles, 1.0F);
  EXPECT_EQ(Month().TotalPages, 1.0F);
  EXPECT_EQ(Keys(Month().Pages), KeyList{""});
}

TEST_F(AddHitStatus, NotFoundIsAFailureOfTheDayAndTheUrl) {
  AddUri("/gone.htm", "404");
  EXPECT_EQ(Month().DayFailures[7], 1.0F);
  EXPECT_EQ(Keys(Month().FailedUrls), KeyList{"/gone.htm"});
  EXPECT_EQ(Keys(Month().FailedReferrers), KeyList{"http://example.com/"});
  EXPECT_EQ(Keys(Month().StatusCodes), KeyList{"404"});
  EXPECT_EQ(Keys(Month().SuccessUrls), KeyList{});
  EXPECT_EQ(Month().FailedUrls.At(1).Metric, 1000.0F);
}

TEST_F(AddHitStatus, RedirectIsAFailureOfTheDayOnly) {
  for (const char* status : {"301", "302", "303", "307"}) AddUri("/moved", status);
  EXPECT_EQ(Month().DayFailures[7], 4.0F);
  EXPECT_EQ(Month().StatusCodes.Count(), 4);
  EXPECT_EQ(Month().FailedUrls.Count(), 0);
  EXPECT_EQ(Month().FailedReferrers.Count(), 0);
  EXPECT_EQ(Month().SuccessUrls.Count(), 0);
}

TEST_F(AddHitStatus, NotModifiedIsASuccessButNoFile) {
  AddUri("/cached.htm", "304");
  EXPECT_EQ(Keys(Month().SuccessUrls), KeyList{"/cached.htm"});
  EXPECT_EQ(Month().TotalFiles, 0.0F);
  EXPECT_EQ(Month().DayFailures[7], 0.0F);
}

TEST_F(AddHitStatus, EverySuccessStatus) {
  for (const char* status : {"200", "201", "202", "203", "204", "205", "206", "304"}) {
    EXPECT_TRUE(mdlMonth::IsSuccessStatus(status)) << status;
    EXPECT_TRUE(mdlMonth::IsSuccessOrRedirectStatus(status)) << status;
  }
  for (const char* status : {"301", "302", "303", "307"}) {
    EXPECT_FALSE(mdlMonth::IsSuccessStatus(status)) << status;
    EXPECT_TRUE(mdlMonth::IsSuccessOrRedirectStatus(status)) << status;
  }
  for (const char* status : {"207", "300", "305", "306", "308", "400", "404", "500", "-"}) {
    EXPECT_FALSE(mdlMonth::IsSuccessStatus(status)) << status;
    EXPECT_FALSE(mdlMonth::IsSuccessOrRedirectStatus(status)) << status;
  }
}

TEST_F(AddHitStatus, PartOfASuccessStatusCountsAsOne) {
  for (const char* status : {"20", "4", "0", "2", "3", "30", "04", "06", ""}) {
    EXPECT_TRUE(mdlMonth::IsSuccessStatus(status)) << status;
  }
  for (const char* status : {"40", "31", "1000", "2000", "200 ", "07"}) {
    EXPECT_FALSE(mdlMonth::IsSuccessStatus(status)) << status;
  }
  EXPECT_TRUE(mdlMonth::IsSuccessOrRedirectStatus("07"));
  EXPECT_FALSE(mdlMonth::IsSuccessOrRedirectStatus("40"));
}

TEST_F(AddHitStatus, ShortStatusIsTalliedAsSuccessButIsNoFile) {
  AddUri("/a.htm", "20");
  AddUri("/b.htm", "4");
  EXPECT_EQ(Keys(Month().SuccessUrls), (KeyList{"/a.htm", "/b.htm"}));
  EXPECT_EQ(Keys(Month().StatusCodes), (KeyList{"20", "4"}));
  EXPECT_EQ(Month().DayFailures[7], 0.0F);
  EXPECT_EQ(Month().TotalFiles, 0.0F);
}

TEST_F(AddHitStatus, EmptyStatusIsASuccessWithoutACode) {
  AddUri("/a.htm", "");
  EXPECT_EQ(Keys(Month().SuccessUrls), KeyList{"/a.htm"});
  EXPECT_EQ(Month().StatusCodes.Count(), 0);
  EXPECT_EQ(Month().DayFailures[7], 0.0F);
}

TEST_F(AddHitStatus, FailedHitWithoutUrlIsTalliedUnderTheEmptyUrl) {
  LogRecord record = FullRecord();
  record.uriStem = "";
  record.referrer = "";
  record.status = "500";
  AddHit(record);
  EXPECT_EQ(Keys(Month().FailedUrls), KeyList{""});
  EXPECT_EQ(Month().FailedReferrers.Count(), 0);
}

TEST_F(AddHitStatus, SuccessfulHitWithoutUrlIsNotTalliedAsUrl) {
  AddUri("", "304");
  EXPECT_EQ(Month().SuccessUrls.Count(), 0);
  EXPECT_EQ(Keys(Month().StatusCodes), KeyList{"304"});
}

TEST_F(AddHitFileTypes, UpperCaseTextAfterTheLastDot) {
  EXPECT_EQ(FileTypeOf("/index.html"), "HTML");
  EXPECT_EQ(FileTypeOf("/archive.tar.gz"), "GZ");
  EXPECT_EQ(FileTypeOf("/MiXed.JpEg"), "JPEG");
  EXPECT_EQ(FileTypeOf(".x"), "X");
}

TEST_F(AddHitFileTypes, NoneWithoutADotOrAfterTheLastOne) {
  EXPECT_EQ(FileTypeOf("/dir/"), "");
  EXPECT_EQ(FileTypeOf("/"), "");
  EXPECT_EQ(FileTypeOf("/file."), "");
  EXPECT_EQ(FileTypeOf(""), "");
}

TEST_F(AddHitFileTypes, NothingAfterQueryFragmentOrParameterMarks) {
  EXPECT_EQ(FileTypeOf("/img/logo.gif?x=1"), "GIF");
  EXPECT_EQ(FileTypeOf("/a.gif?x=1.jpg"), "GIF");
  EXPECT_EQ(FileTypeOf("/a.gif#top.jpg"), "GIF");
  EXPECT_EQ(FileTypeOf("/a.gif&b.jpg"), "GIF");
  EXPECT_EQ(FileTypeOf("/a.gif*b.jpg"), "GIF");
  EXPECT_EQ(FileTypeOf("/a#b?c.d"), "");
  EXPECT_EQ(FileTypeOf("?a.gif"), "");
  EXPECT_EQ(FileTypeOf("/a.?gif"), "");
}

TEST_F(AddHitFileTypes, FolderWithADotGivesTheTextUpToTheSlash) {
  EXPECT_EQ(FileTypeOf("/a.b/c"), "B");
  EXPECT_EQ(FileTypeOf("/docs.old/index"), "OLD");
  EXPECT_EQ(FileTypeOf("/a./b"), "");
}

TEST_F(AddHitFileTypes, PlusEndsTheType) {
  EXPECT_EQ(FileTypeOf("/a.gif+b"), "GIF");
  EXPECT_EQ(FileTypeOf("/a.b+c/d"), "B");
  EXPECT_EQ(FileTypeOf("/a.b/c+d"), "B");
  EXPECT_EQ(FileTypeOf("/a.+gif"), "");
}

TEST_F(AddHitFileTypes, UpperCasingTouchesAToZOnly) {
  EXPECT_EQ(FileTypeOf("/a.\xe9\xfcz{`"), "\xe9\xfcZ{`");
}

}  // namespace
