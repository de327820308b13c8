// What both kinds of page begin and end with.
//
// State: this computer's name, looked up once per run. Called by the month page and the
// last-12-months page.
#ifndef HITWICK_REPORT_PAGE_FRAME_H_
#define HITWICK_REPORT_PAGE_FRAME_H_

#include <string>
#include <string_view>

namespace report {

// From the document type to the body tag. `title` is the whole title text.
void WriteHead(std::string& page, std::string_view title);

// This computer's name as the pages show it (HTML-escaped).
const std::string& HostName();
// Forgets the computer's name. For tests.
void ForgetHostName();

// " (NAME)" of the site in use, escaped; empty for the default site.
std::string SiteLabel();

// The reporting period and when the page was made, as one fragment without a line end. `zone_note`
// follows the time.
std::string PeriodText(std::string_view period, std::string_view generated,
                       std::string_view zone_note);

// The footer that names the program, and the end of the document. `credit` follows the version's
// closing bracket.
void WriteFooter(std::string& page, std::string_view credit);

}  // namespace report

#endif  // HITWICK_REPORT_PAGE_FRAME_H_
