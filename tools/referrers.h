// Where visitors come from: search engines with their search words, and other sites.
#ifndef HITWICK_TOOLS_REFERRERS_H_
#define HITWICK_TOOLS_REFERRERS_H_

#include <string>
#include <string_view>

#include "tools/random.h"

namespace sample_logs {

// The sample site's own address, without a slash at its end.
inline constexpr std::string_view kSiteUrl = "http://www.museum.example";

// The result page of a search engine, search words included.
std::string SearchReferrer(Random& random);

// A page of another site.
std::string SiteReferrer(Random& random);

// What a visit begins with: a search engine, another site, or "-" for neither.
std::string EntryReferrer(Random& random);

}  // namespace sample_logs

#endif  // HITWICK_TOOLS_REFERRERS_H_
