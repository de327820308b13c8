#include "report/html.h"

#include <cstddef>

#include "config/text.h"

namespace html {
namespace {

std::string Joined(std::string_view before, std::string_view text, std::string_view after) {
  std::string joined;
  joined.reserve(before.size() + text.size() + after.size());
  return joined.append(before).append(text).append(after);
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  std::string replaced;
  std::size_t start = 0;
  for (std::size_t at; (at = text.find(from, start)) != std::string::npos;) {
    replaced.append(text, start, at - start).append(to);
    start = at + from.size();
  }
  replaced.append(text, start);
  text.swap(replaced);
}

std::string LinkCell(std::string_view target, std::string_view text) {
  return Joined("<td><a href=\"", target, "\">").append(text).append("</a></td>");
}

}  // namespace

void Caption(std::string& page, std::string_view caption, std::string_view link) {
  Line(page, "<caption><b>", caption, "</b>", link, "</caption>");
}

std::string TextCell(std::string_view text) { return Joined("<td>", text, "</td>"); }

std::string NumberCell(std::string_view number) {
  return Joined("<td align=right>", number, "</td>");
}

std::string PercentCell(std::string_view percent) {
  return Joined("<td align=right>", percent, "&nbsp;%</td>");
}

void BarCell(std::string& page, std::string_view height, std::string_view colour,
             std::string_view content) {
  Line(page, "<td  style=\"vertical-align:bottom; height:300px\"><div style=\"height:", height,
       "; background-color:", colour, "; font-size:0pt; width:100%\">", content, "</div>");
}

// A "&" in the place of the scheme may be a character reference that stands for the ":" or for a
// letter, so it counts even where no ":" follows.
bool IsLinkable(std::string_view target) {
  const std::size_t end = target.find_first_of(":/?#");
  const std::string_view start = target.substr(0, end);
  if (start.find('&') != std::string_view::npos) return false;
  if (end == std::string_view::npos || target[end] != ':') return true;
  std::string scheme;
  for (const char c : start) {
    if (static_cast<unsigned char>(c) > ' ' && c != '\x7f') scheme += text::ToLower(c);
  }
  return scheme != "javascript" && scheme != "data" && scheme != "vbscript";
}

std::string UrlCell(std::string_view url) {
  std::string shown(url);
  ReplaceAll(shown, "+", " ");
  ReplaceAll(shown, "%7E", "~");
  if (!IsLinkable(url)) return TextCell(shown);
  std::string target(url);
  ReplaceAll(target, "+", "%20");
  return LinkCell(target, shown);
}

std::string ReferrerCell(std::string_view referrer) {
  if (referrer == "-") return TextCell("(Direct request)");
  return IsLinkable(referrer) ? LinkCell(referrer, referrer) : TextCell(referrer);
}

}  // namespace html
