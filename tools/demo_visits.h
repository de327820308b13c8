// The visits of the demonstration logs: people who read a few pages, robots that crawl, programs
// that look for holes.
#ifndef HITWICK_TOOLS_DEMO_VISITS_H_
#define HITWICK_TOOLS_DEMO_VISITS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/log_writer.h"
#include "tools/random.h"
#include "tools/site_model.h"
#include "tools/visitors.h"

namespace sample_logs {

// Makes the lines of one visit after the other. A visit's lines are in time order; visits overlap.
class VisitMaker {
 public:
  // `lines` receives the lines.
  VisitMaker(const Site& site, Random& random, std::vector<LogLine>& lines);

  // Visits that begin at `start`, in seconds since 1970-01-01.
  void Browse(std::int64_t start);
  void Crawl(const Robot& robot, std::int64_t start);
  void Scan(std::int64_t start);

 private:
  void ChooseVisitor();
  void Request(const std::string& stem, std::uint64_t bytes, std::uint64_t time_taken_ms);
  void Refuse(const std::string& stem, std::uint32_t status);
  void RequestPage(const Page& page);
  void RequestFile(const Resource& file);
  void RequestImages(const Page& page);
  void LoadShared();
  void StartAtLostPage();
  void MeetMovedFolder();
  void DoSomethingElse();
  void SendMessage();
  void SearchSite();
  void LogIn();
  void Download();
  void Read(std::int64_t least, std::int64_t most);
  void Add();

  const Site& site_;
  Random& random_;
  std::vector<LogLine>& lines_;
  Zipf regulars_;
  Zipf browsers_;

  LogLine line_;                 // the visitor, and the request being made
  std::string page_url_;         // the page that the visitor is on
  bool knows_the_site_ = false;  // the browser still holds the site's files
};

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_DEMO_VISITS_H_
