#include "tools/site_model.h"

namespace sample_logs {
namespace {

constexpr std::uint64_t kSizeSeed = 1880;
constexpr std::size_t kHome = 0;
constexpr std::size_t kShopItems = 18;

}  // namespace

Site::Site()
    : shared_{{"/css/site.css", 14200},   {"/js/site.js", 31800},        {"/js/menu.js", 6100},
              {"/images/logo.png", 5400}, {"/images/header.jpg", 48700}, {"/favicon.ico", 1150}},
      downloads_{{"/downloads/tide-table.pdf", 182000},
                 {"/downloads/harbour-map.zip", 940000},
                 {"/media/fog-horn.mp3", 1310000},
                 {"/downloads/press-kit.zip", 4800000}},
      sizes_(kSizeSeed),
      popularity_(0) {
  AddPage("/", "-", 3);
  AddSection("/visit/", {"opening-hours", "tickets", "getting-here", "cafe", "groups"}, ".htm");
  AddSection("/exhibitions/",
             {"lights-of-the-coast", "herring-years", "under-sail", "steam-and-iron", "deep-water",
              "charts", "figureheads"},
             ".aspx");
  AddSection("/collection/",
             {"fresnel-lens", "rope-walk", "ships-bell", "sextant", "diving-helmet", "signal-lamp",
              "model-ships", "sea-charts", "knots", "figurehead-anna", "log-books",
              "sailmakers-loft", "steam-tug", "harbour-crane"},
             ".htm");
  AddSection("/events/",
             {"harbour-weekend", "boat-trips", "ship-in-a-bottle", "night-watch", "lecture-series"},
             ".aspx");
  AddSection("/news/", {"new-lens", "winter-hours", "tug-restored", "volunteers", "school-prize"},
             ".htm");
  AddShop();
  popularity_ = Zipf(pages_.size());
}

std::size_t Site::AddPage(const std::string& stem, const std::string& query,
                          std::size_t image_count) {
  Page page;
  page.stem = stem;
  page.query = query;
  page.bytes = static_cast<std::uint64_t>(sizes_.Between(5000, 28000));
  page.time_taken_ms = static_cast<std::uint64_t>(sizes_.Between(15, 240));
  const std::size_t number = pages_.size();
  for (std::size_t i = 0; i < image_count; ++i) {
    page.images.push_back({"/images/p" + std::to_string(number) + "-" + std::to_string(i) + ".jpg",
                           static_cast<std::uint64_t>(sizes_.Between(9000, 160000))});
  }
  pages_.push_back(std::move(page));
  return number;
}

// A section's front page links to its pages and they to each other in a row; every page links home.
void Site::AddSection(const std::string& folder, const std::vector<std::string>& names,
                      const std::string& extension) {
  const std::size_t front = AddPage(folder, "-", 2);
  pages_[kHome].links.push_back(front);
  pages_[front].links.push_back(kHome);
  std::size_t previous = front;
  for (const std::string& name : names) {
    const std::size_t page = AddPage(folder + name + extension, "-", sizes_.Below(4));
    pages_[front].links.push_back(page);
    pages_[previous].links.push_back(page);
    pages_[page].links = {front, kHome};
    previous = page;
  }
}

void Site::AddShop() {
  const std::size_t front = AddPage("/shop/", "-", 2);
  pages_[kHome].links.push_back(front);
  pages_[front].links.push_back(kHome);
  for (std::size_t item = 1; item <= kShopItems; ++item) {
    const std::size_t page = AddPage("/shop/item.aspx", "id=" + std::to_string(item), 1);
    pages_[front].links.push_back(page);
    pages_[page].links = {front};
  }
}

std::size_t Site::EntryPage(Random& random) const {
  return random.Percent(40) ? kHome : popularity_.Draw(random);
}

std::size_t Site::FollowLink(std::size_t page, Random& random) const {
  return random.Pick(pages_[page].links);
}

}  // namespace sample_logs
