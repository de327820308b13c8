// The small pieces that pages are made of: lines, cells, captions and links.
//
// No state. Texts are written as they are given; log text has been made harmless when it was read.
// What a user typed or a name server sent is escaped by the caller (`text::HtmlEscape`).
#ifndef HITWICK_REPORT_HTML_H_
#define HITWICK_REPORT_HTML_H_

#include <string>
#include <string_view>

namespace html {

inline constexpr std::string_view kLineEnd = "\r\n";

// Appends the parts and a line end.
template <typename... Parts>
void Line(std::string& page, const Parts&... parts) {
  (page.append(std::string_view(parts)), ...);
  page.append(kLineEnd);
}

// The openings of tables.
inline constexpr std::string_view kBlockWide = "<hr><br><table width=\"90%\" border=1>";
inline constexpr std::string_view kBlock70 = "<hr><br><table width=\"70%\" border=1>";
inline constexpr std::string_view kBlock60 = "<hr><br><table width=\"60%\" border=1>";
inline constexpr std::string_view kWide = "<br><table width=\"90%\" border=1>";
inline constexpr std::string_view k80 = "<br><table width=\"80%\" border=1>";
inline constexpr std::string_view k70 = "<br><table width=\"70%\" border=1>";
inline constexpr std::string_view kTableEnd = "</tbody></table>";

// `link` is a download link or empty.
void Caption(std::string& page, std::string_view caption, std::string_view link = {});

std::string TextCell(std::string_view text);
std::string NumberCell(std::string_view number);
std::string PercentCell(std::string_view percent);  // "12&nbsp;%"

// One bar of a chart. `content` stands inside the bar.
void BarCell(std::string& page, std::string_view height, std::string_view colour,
             std::string_view content = {});

// Whether a browser following `target` stays with documents: false for the schemes that carry a
// script or a document in the link itself, however they are spelt.
bool IsLinkable(std::string_view target);

// A cell that links to a requested URL, blanks and tildes made readable in its text. The text
// alone when it is not linkable.
std::string UrlCell(std::string_view url);
// A cell that links to a referrer; "-", the log's mark for none, becomes "(Direct request)".
std::string ReferrerCell(std::string_view referrer);

}  // namespace html

#endif  // HITWICK_REPORT_HTML_H_
