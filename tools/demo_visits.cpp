#include "tools/demo_visits.h"

#include <string_view>

#include "tools/referrers.h"

namespace sample_logs {
namespace {

constexpr std::size_t kRegulars = 700;
constexpr std::uint64_t kStrangers = 40000;
constexpr std::size_t kBrowserCount = 60;
constexpr std::string_view kUsers[] = {
    "archivist", "curator", "frontdesk", "MUSEUM\\volunteer7", "webmaster",
};
constexpr std::string_view kLostPages[] = {
    "/exhibit/old-lights.htm", "/news/2009/summer.htm", "/collection/anchor.htm", "/links.html",
    "/events/regatta.asp",
};
constexpr std::string_view kSiteSearches[] = {
    "q=lens", "q=boat+trip", "q=tickets", "q=rope%20walk", "q=parking",
};

}  // namespace

VisitMaker::VisitMaker(const Site& site, Random& random, std::vector<LogLine>& lines)
    : site_(site), random_(random), lines_(lines), regulars_(kRegulars), browsers_(kBrowserCount) {}

// A regular keeps address, browser and user name; a stranger is anybody.
void VisitMaker::ChooseVisitor() {
  const bool regular = random_.Percent(45);
  const std::uint64_t number =
      regular ? regulars_.Draw(random_) : kRegulars + random_.Below(kStrangers);
  Random habits(number);
  line_ = LogLine();
  line_.client = ClientAddress(number);
  line_.agent = BrowserAgent(browsers_.Draw(habits));
  knows_the_site_ = regular && random_.Percent(70);
}

void VisitMaker::Add() { lines_.push_back(line_); }

void VisitMaker::Request(const std::string& stem, std::uint64_t bytes,
                         std::uint64_t time_taken_ms) {
  line_.stem = stem;
  line_.status = 200;
  line_.substatus = 0;
  line_.win32_status = 0;
  line_.bytes_sent = bytes;
  line_.bytes_received = 280 + line_.referrer.size() + stem.size() + random_.Below(160);
  line_.time_taken_ms = time_taken_ms / 2 + random_.Below(time_taken_ms + 1);
  if (random_.Percent(1)) line_.time_taken_ms *= 20;
}

// A request that the server answers without the wanted content.
void VisitMaker::Refuse(const std::string& stem, std::uint32_t status) {
  Request(stem, status < 400 ? 340 : 1400, status == 500 ? 900 : 8);
  line_.status = status;
  line_.win32_status = status == 404 ? 2 : status == 403 ? 5 : 0;
  line_.substatus = status == 403 ? 14 : 0;
  Add();
}

void VisitMaker::RequestPage(const Page& page) {
  line_.query = page.query;
  if (random_.Percent(1)) {
    Refuse(page.stem, random_.Percent(70) ? 500 : 503);
  } else {
    Request(page.stem, page.bytes, page.time_taken_ms);
    Add();
  }
  line_.query = kEmptyField;
  page_url_ = std::string(kSiteUrl) + page.stem;
  line_.referrer = page_url_;
  if (page.query != "-") line_.referrer += "?" + page.query;
}

// A browser that still holds the file only asks whether it has changed.
void VisitMaker::RequestFile(const Resource& file) {
  Request(file.stem, file.bytes, 12 + file.bytes / 4000);
  if (knows_the_site_) {
    line_.status = 304;
    line_.bytes_sent = 210;
    line_.time_taken_ms = 1 + random_.Below(6);
  }
  Add();
}

void VisitMaker::RequestImages(const Page& page) {
  for (const Resource& image : page.images) {
    Read(0, 1);
    RequestFile(image);
  }
}

void VisitMaker::LoadShared() {
  for (const Resource& file : site_.shared()) {
    if (knows_the_site_ && random_.Percent(60)) continue;
    Read(0, 1);
    RequestFile(file);
  }
}

void VisitMaker::Read(std::int64_t least, std::int64_t most) {
  line_.time += random_.Between(least, most);
}

void VisitMaker::StartAtLostPage() {
  line_.referrer = random_.Percent(60) ? SiteReferrer(random_) : SearchReferrer(random_);
  Refuse(std::string(random_.Pick(kLostPages)), 404);
  Read(3, 15);
  line_.referrer = kEmptyField;
}

void VisitMaker::MeetMovedFolder() {
  Refuse("/visit", 301);
  Refuse("/tickets", 302);
}

void VisitMaker::SendMessage() {
  Request("/contact.aspx", 7900, 60);
  Add();
  line_.referrer = std::string(kSiteUrl) + "/contact.aspx";
  Read(40, 200);
  line_.method = "POST";
  Request("/contact.aspx", 3100, 420);
  line_.bytes_received += 600 + random_.Below(2000);
  Add();
  line_.method = "GET";
}

void VisitMaker::SearchSite() {
  line_.query = std::string(random_.Pick(kSiteSearches));
  Request("/search.aspx", 9200, 350);
  Add();
  line_.referrer = std::string(kSiteUrl) + "/search.aspx?" + line_.query;
  line_.query = kEmptyField;
}

void VisitMaker::LogIn() {
  Refuse("/members/", 401);
  line_.user = std::string(random_.Pick(kUsers));
  Request("/members/default.aspx", 11300, 180);
  Add();
  Read(20, 90);
  line_.referrer = std::string(kSiteUrl) + "/members/default.aspx";
  Request("/members/rota.aspx", 15800, 260);
  Add();
}

void VisitMaker::Download() {
  const Resource& file = random_.Pick(site_.downloads());
  Request(file.stem, file.bytes, file.bytes / 350);
  if (random_.Percent(12)) {
    line_.status = 206;
    line_.bytes_sent /= 3;
  }
  Add();
}

// What a reader does now and then besides going from page to page.
void VisitMaker::DoSomethingElse() {
  const std::uint64_t what = random_.Below(100);
  if (what < 25) {
    Download();
  } else if (what < 45) {
    SearchSite();
  } else if (what < 60) {
    SendMessage();
  } else if (what < 75) {
    Refuse("/images/old/ferry.gif", 404);
  } else if (what < 85) {
    MeetMovedFolder();
  } else {
    LogIn();
  }
}

void VisitMaker::Browse(std::int64_t start) {
  ChooseVisitor();
  line_.time = start;
  if (random_.Percent(4)) StartAtLostPage();
  line_.referrer = EntryReferrer(random_);
  std::size_t page = site_.EntryPage(random_);
  RequestPage(site_.pages()[page]);
  LoadShared();
  RequestImages(site_.pages()[page]);
  while (random_.Percent(62)) {
    Read(6, random_.Percent(10) ? 700 : 110);
    if (random_.Percent(12)) DoSomethingElse();
    page = site_.FollowLink(page, random_);
    RequestPage(site_.pages()[page]);
    RequestImages(site_.pages()[page]);
  }
}

void VisitMaker::Crawl(const Robot& robot, std::int64_t start) {
  line_ = LogLine();
  line_.time = start;
  line_.client = robot.address;
  line_.agent = robot.agent;
  knows_the_site_ = false;
  Request("/robots.txt", 180, 4);
  Add();
  for (unsigned i = 0; i < robot.pages_per_crawl; ++i) {
    Read(2, 45);
    if (random_.Percent(6)) {
      Refuse(std::string(random_.Pick(kLostPages)), 404);
    } else {
      RequestPage(random_.Pick(site_.pages()));
      line_.referrer = kEmptyField;
    }
  }
}

void VisitMaker::Scan(std::int64_t start) {
  line_ = LogLine();
  line_.time = start;
  line_.client = ClientAddress(kRegulars + random_.Below(kStrangers));
  line_.agent = ScannerAgent();
  for (const std::string& url : ScannedUrls()) {
    Refuse(url, random_.Percent(20) ? 403 : 404);
    Read(0, 2);
  }
}

}  // namespace sample_logs
