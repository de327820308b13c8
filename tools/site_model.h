// The web site behind the demonstration logs: a small harbour museum's pages, what each page loads
// and where its links lead.
#ifndef HITWICK_TOOLS_SITE_MODEL_H_
#define HITWICK_TOOLS_SITE_MODEL_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/random.h"

namespace sample_logs {

struct Resource {
  std::string stem;
  std::uint64_t bytes = 0;
};

struct Page {
  std::string stem;
  std::string query = "-";
  std::uint64_t bytes = 0;
  std::uint64_t time_taken_ms = 0;  // typical
  std::vector<Resource> images;
  std::vector<std::size_t> links;  // indexes of pages
};

class Site {
 public:
  Site();

  const std::vector<Page>& pages() const { return pages_; }
  // What every page loads: style sheet, scripts, logo.
  const std::vector<Resource>& shared() const { return shared_; }
  const std::vector<Resource>& downloads() const { return downloads_; }

  // The page on which a visit begins: the home page, or a page by its popularity.
  std::size_t EntryPage(Random& random) const;
  // A page that `page` links to.
  std::size_t FollowLink(std::size_t page, Random& random) const;

 private:
  void AddSection(const std::string& folder, const std::vector<std::string>& names,
                  const std::string& extension);
  void AddShop();
  std::size_t AddPage(const std::string& stem, const std::string& query, std::size_t image_count);

  std::vector<Page> pages_;  // page 0 is the home page
  std::vector<Resource> shared_;
  std::vector<Resource> downloads_;
  Random sizes_;
  Zipf popularity_;
};

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_SITE_MODEL_H_
