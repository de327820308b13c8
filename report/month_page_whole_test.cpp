// A month of six hits whose every figure was worked out by hand, compared as a whole.
//
// The month counts ten days, since the tenth is today. Hit by hit (bytes, milliseconds):
//   2nd  9:00  192.0.2.1    browser  GET  /index.htm     200  10000  100  from the search site
//   2nd  9:00  192.0.2.1    browser  GET  /logo.gif      200  26000   50  from the own site
//   2nd  9:01  192.0.2.1    browser  GET  /a+b%7Ec.htm   200   5000  300  direct
//   3rd 22:00  192.0.2.2    robot    GET  /robots.txt    404   1500    0  direct
//   3rd 22:00  192.0.2.2    robot    GET  /index.htm     200  10000  200  direct
//   3rd 22:05  2001:db8::9  browser  POST /index.htm     304    500    0  from the search site
// They make three visits: one of 60 seconds, and two of 0, one of these a robot's.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/mod_systemInfo.h"
#include "report/report_fixture_test.h"

namespace {

constexpr const char* kBrowser = "Mozilla/5.0+(Windows+NT+10.0)+Firefox/120";
constexpr const char* kRobot = "Mozilla/5.0+(Windows)+Googlebot/2.1";
constexpr const char* kSearchSite = "http://search.example/find";

std::string WithLineEnds(std::string_view text) {
  std::string lines;
  for (const char c : text) {
    if (c == '\n') lines += '\r';
    lines += c;
  }
  return lines;
}

class WholeMonthPage : public ReportTest {
 protected:
  WholeMonthPage() {
    clock_.local = {2026, 1, 10, 14, 5, 9};
    clock_.utc = {2026, 1, 10, 13, 5, 9};
    mdlConfigs::Run().SiteName = "web<1>";
    resolver_.local_name = "re<porter";
    resolver_.names = {{"192.0.2.1", "gate.example.com"},
                       {"192.0.2.2", "crawl-1.bots.example.co.uk"}};
    mdlFilters::SetFilter("No_icons", false, "cs-uri-stem", "*<&.ico");
    mdlFilters::SetFilter("Site", true, "c-ip", "*");
    AddHits();
    mdlVisit::CloseAllVisits();
  }

  static void AddHits() {
    stats::LogRecord hit = Browsing({.day = 2,
                                     .hour = 9,
                                     .minute = 0,
                                     .uri = "/index.htm",
                                     .bytes = 10000,
                                     .time = 100,
                                     .referrer = kSearchSite});
    hit.searchKeywords = "web logs";
    hit.hostLabel = " [www.example.org] ";
    Add(hit);
    Add(Browsing({.day = 2,
                  .hour = 9,
                  .minute = 0,
                  .uri = "/logo.gif",
                  .bytes = 26000,
                  .time = 50,
                  .referrer = "http://www.example.org/index.htm"}));
    Add(Browsing({.day = 2,
                  .hour = 9,
                  .minute = 1,
                  .uri = "/a+b%7Ec.htm",
                  .bytes = 5000,
                  .time = 300,
                  .referrer = "-"}));
    hit = Browsing({.day = 3,
                    .hour = 22,
                    .minute = 0,
                    .uri = "/robots.txt",
                    .bytes = 1500,
                    .time = 0,
                    .referrer = "-"});
    hit.clientAddress = "192.0.2.2";
    hit.userAgent = kRobot;
    hit.status = "404";
    Add(hit);
    hit = Browsing({.day = 3,
                    .hour = 22,
                    .minute = 0,
                    .uri = "/index.htm",
                    .bytes = 10000,
                    .time = 200,
                    .referrer = "-"});
    hit.clientAddress = "192.0.2.2";
    hit.userAgent = kRobot;
    Add(hit);
    hit = Browsing({.day = 3,
                    .hour = 22,
                    .minute = 5,
                    .uri = "/index.htm",
                    .bytes = 500,
                    .time = 0,
                    .referrer = kSearchSite});
    hit.clientAddress = "2001:db8::9";
    hit.method = "POST";
    hit.status = "304";
    hit.userName = "anna";
    Add(hit);
  }

  struct Request {
    std::int16_t day = 0;
    std::int16_t hour = 0;
    std::int16_t minute = 0;
    std::string_view uri;
    std::int32_t bytes = 0;
    std::int32_t time = 0;
    std::string_view referrer;
  };
  static stats::LogRecord Browsing(const Request& request) {
    stats::LogRecord record = Fetch(request.uri);
    record.day = request.day;
    record.hour = request.hour;
    record.minute = request.minute;
    record.bytesSent = request.bytes;
    record.timeTaken = request.time;
    record.userAgent = kBrowser;
    record.referrer = request.referrer;
    return record;
  }

  // The parts of the expected page, in page order.
  std::string ExpectedPage(std::string_view period) const {
    return Head(period) + Statistics() + DailyChart() + DailyTable() + HourlyChart() +
           HourlyTable() + Fetches() + ReadersAndVisits() + Referrers() + UserNames() + Agents() +
           Ending();
  }

  std::string Link(const std::string& csv_name) const {
    if (!Run().Settings.GenerateCSV) return "";
    return " <small><a href=\"" + base_ + "-" + csv_name + ".csv\">(Download)</a></small>";
  }
  static const mdlConfigs::RunState& Run() { return mdlConfigs::Run(); }

  std::string Head(std::string_view period) const;
  std::string Statistics() const;
  std::string DailyChart() const;
  std::string DailyTable() const;
  std::string HourlyChart() const;
  std::string HourlyTable() const;
  std::string Fetches() const;
  std::string ReadersAndVisits() const;
  std::string Referrers() const;
  std::string UserNames() const;
  std::string Agents() const;
  std::string Ending() const;

  static std::string Bar(int height, const std::string& colour) {
    return "<td  style=\"vertical-align:bottom; height:300px\"><div style=\"height:" +
           std::to_string(height) + "; background-color:" + colour +
           "; font-size:0pt; width:100%\"></div>\n";
  }
  // The number of a day, blue on the Saturdays and Sundays of January 2026.
  static std::string Day(int day) {
    const bool weekend = day % 7 == 3 || day % 7 == 4;
    const std::string digits = std::to_string(day);
    return weekend ? "<font color=\"blue\">" + digits + "</font>" : digits;
  }

  const std::string month_ = platform::MonthName(1);
  const std::string month_year_ = month_ + " 2026";
  const std::string usage_for_ = " usage for re&lt;porter for " + month_year_;
  std::string base_ = "Jan";
};

std::string WholeMonthPage::Head(std::string_view period) const {
  return R"(<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.01 Transitional//EN">
<html><head><title>Usage statistics for re&lt;porter - )" +
         month_year_ + R"(</title>
<META HTTP-EQUIV="Refresh" CONTENT="21600">
<META HTTP-EQUIV="Expires" CONTENT="Sun, 11 Jan 2026 13:15:09 GMT">
<meta http-equiv="content-type" content="text/html;charset=utf-8"></head>
<BODY BGCOLOR=silver TEXT="#000000" LINK="#0000FF" VLINK="#FF0000">
<H2>)" + month_ +
         R"( Usage Statistics for re&lt;porter [www.example.org]  (web&lt;1&gt;)</H2>
<SMALL><STRONG>Summary Period: )" +
         std::string(period) + "<BR>Generated 10-" + platform::MonthAbbreviation(1) +
         "-2026 14:05 (local time)<BR></STRONG></SMALL><HR><center>\n" +
         R"([<a href="#daily">Daily</a>][<a href="#hourly">Hourly</a>][<a href="#urls">URLs</a>])"
         R"([<a href="#readers">Readers</a>][<a href="#sessions">Sessions</a>])"
         R"([<a href="#referrers">Referrers</a>][<a href="#browsers">Browsers</a>])"
         R"([<a href="#countries">Countries</a>][<a href="#queries">Searches</a>])"
         R"([<a href="#broken">Broken links</a>][<a href=index.htm>Annual Summary</a>]<p><hr>)"
         "\n";
}

std::string WholeMonthPage::Statistics() const {
  return "<table width=\"80%\" border=1 frame=box>\n<caption><b>Monthly statistics for " +
         month_year_ + "</b>" + Link("Summary") + R"(</caption>
<tr><th align=center> </th><th align=center>Daily Avg</th><th align=center>Totals</th></tr>
<tr><td align=left width="70%">Total Hits</td><td align=right>1</td><td align=right>6</td></tr>
<tr><td align=left width="70%">Total Files</td><td align=right>0</td><td align=right>4</td></tr>
<tr><td align=left width="70%">Total Pages</td><td align=right>0</td><td align=right>3</td></tr>
<tr><td align=left width="70%">Total KBytes</td><td align=right>5</td><td align=right>53</td></tr>
<tr><td align=left width="70%">Ave Response Time mS</td><td colspan=2 align=right>108</td></tr>
<tr><td align=left width="70%">Total Unique Visitor IP addresses</td><td colspan=2 align=right>3</td></tr>
<tr><td align=left width="70%">Total Sessions</td><td align=right>0</td><td align=right>3</td></tr>
<tr><td align=left width="70%">Max Concurrent Visitor Sessions</td><td colspan=2 align=right>2</td></tr>
<tr><td align=left width="70%">Total Unique URLs</td><td colspan=2 align=right>3</td></tr>
<tr><td align=left width="70%">Total Unique Referers</td><td colspan=2 align=right>3</td></tr>
<tr><td align=left width="70%">Total Unique Browser Types</td><td colspan=2 align=right>2</td></tr>
<tr><th></th><th>Average</th><th>Max</th></tr>
<tr><td align=left width="70%">Busiest single hour hits [max on 22:00-22:59 on 3-)" +
         month_ + R"(]</td><td align=right rowspan=2>0.0</td><td align=right>3.0</td></tr>
<tr><td align=left width="70%">Hits per Hour <small>(timeslot averaged over month)</small></td><td align=right>0.3</td></tr>
<tr><td align=left width="70%">Hits per Day [max on 2-)" +
         month_ + R"(]</td><td align=right>1</td><td align=right>3</td></tr>
<tr><td align=left width="70%">Busiest single hour KBytes [max on 9:00-9:59 on 2-)" +
         month_ + R"(]</td><td align=right rowspan=2>0.2</td><td align=right>41.0</td></tr>
<tr><td align=left width="70%">KBytes per Hour <small>(timeslot averaged over month)</small></td><td align=right>4.1</td></tr>
<tr><td align=left width="70%">KBytes per Day [max on 2-)" +
         month_ + R"(]</td><td align=right>5</td><td align=right>41</td></tr>
<tr><td align=left width="70%">Files per Hour timeslot <small>(timeslot averaged over month)</small></td><td align=right>0.0</td><td align=right>0.3</td></tr>
<tr><td align=left width="70%">Files per Day</td><td align=right>0</td><td align=right>3</td></tr>
<tr><td align=left width="70%">Pages per Hour timeslot <small>(timeslot averaged over month)</small></td><td align=right>0.0</td><td align=right>0.2</td></tr>
<tr><td align=left width="70%">Pages per Day</td><td align=right>0</td><td align=right>2</td></tr>
<tr><td align=left width="70%">Ave (over hour) Response Time mS</td><td align=right rowspan=2>108</td><td align=right>150</td></tr>
<tr><td align=left width="70%">Ave (over day) Response Time mS</td><td align=right>150</td></tr>
<tr><td align=left width="70%">Worst individual response time mS</td><td align=right></td><td align=right>300</td></tr>
<tr><th align=left>By return code</th><th>Hits</th><th>K bytes</th></tr>
<tr><td>OK - 200</td><td align=right>4</td><td align=right>51</td></tr>
<tr><td>Not Found - 404</td><td align=right>1</td><td align=right>2</td></tr>
<tr><td>Not Modified - 304</td><td align=right>1</td><td align=right>0</td></tr>
<tr><th align=left>By method</th><th>Hits</th><th>K bytes</th></tr>
<tr><td>GET</td><td align=right>5</td><td align=right>52</td></tr>
<tr><td>POST</td><td align=right>1</td><td align=right>0</td></tr>
</table><hr><p>
)";
}

std::string WholeMonthPage::DailyChart() const {
  std::string text =
      "<br><table width=\"90%\" border=1 rules=groups frame=box cellpadding=0>\n"
      "<caption><b><a name=daily>Daily" +
      usage_for_ + "</a></b></caption>\n<tfoot><tr align=left><td></td>\n";
  for (int day = 1; day <= 31; ++day) {
    text += "<td colspan=4 align=center><tt><b>" + std::string(day < 10 ? "&nbsp;" : "") +
            Day(day) + "</b></tt></td>\n";
  }
  text += "</tr></tfoot>\n<tbody><tr><td></td>\n";
  for (int day = 1; day <= 31; ++day) {
    text += Bar(day == 2 || day == 3 ? 90 : 0, "green");
    text += Bar(day == 2 ? 123 : day == 3 ? 36 : 0, "red");
    text += Bar(day == 2 ? 150 : day == 3 ? 67 : 0, "pink");
    text += Bar(day == 3 ? 100 : 0, "lightblue");
  }
  text += "<td></td></tr></tbody>\n</table>\n";
  if (Run().Settings.GenerateCSV) text += Link("DailyUsage") + "\n";
  return text + R"(<table width="90%"><tr><td>100%=</td>
<td><font color=green>10 Hits</font></td>
<td><font color=red>100 KBytes</font></td>
<td><font color=salmon>300 mS</font></td>
<td><font color=blue>% failures</font></td>
</tr></table>
)";
}

std::string WholeMonthPage::DailyTable() const {
  std::string text = "<table width=\"60%\" border=1>\n<caption><b>Daily" + usage_for_ +
                     R"(</b></caption>
<tbody>
<tr><th>Day</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>KBytes</th><th bgcolor=pink>mS</th><th bgcolor=lightblue colspan=2>failures</th>
)";
  for (int day = 1; day <= 31; ++day) {
    std::string cells = "<td>0</td><td>0%</td><td>0</td><td>0%</td><td>0</td><td>0</td><td>0%</td>";
    if (day == 2) {
      cells = "<td>3</td><td>50%</td><td>41</td><td>77%</td><td>150</td><td>0</td><td>0%</td>";
    }
    if (day == 3) {
      cells = "<td>3</td><td>50%</td><td>12</td><td>23%</td><td>67</td><td>1</td><td>33%</td>";
    }
    text += "<tr align=right><td>" + Day(day) + "</td>" + cells + "</tr>\n";
  }
  return text + "</table>\n";
}

std::string WholeMonthPage::HourlyChart() const {
  std::string text =
      "<hr><br><table width=\"90%\" border=1 rules=groups frame=box cellpadding=0>\n"
      "<caption><b><a name=hourly>Hourly" +
      usage_for_ + "</a></b></caption>\n<tfoot><tr align=left><td></td>\n";
  for (int hour = 0; hour < 24; ++hour) {
    text += "<td colspan=3 align=center><tt><b>" + std::string(hour < 10 ? "&nbsp;" : "") +
            std::to_string(hour) + "</b></tt></td>\n";
  }
  text += "</tr></tfoot>\n<tbody><tr><td></td>\n";
  for (int hour = 0; hour < 24; ++hour) {
    text += Bar(hour == 9 || hour == 22 ? 90 : 0, "green");
    text += Bar(hour == 9 ? 123 : hour == 22 ? 36 : 0, "red");
    text += Bar(hour == 9 ? 150 : hour == 22 ? 67 : 0, "pink");
  }
  text += "<td></td></tr>\n</tbody></table>\n";
  if (Run().Settings.GenerateCSV) text += Link("HourlyUsage") + "\n";
  return text + R"(<table width="90%"><tr><td>100%=</td>
<td><font color=green>1.0 Hits/hour</font></td>
<td><font color=red>10.0 KBytes/hour</font></td>
<td><font color=salmon>300 mS</font></td>
</tr></table>
)";
}

std::string WholeMonthPage::HourlyTable() const {
  std::string text = "<table width=\"60%\" border=1>\n<caption><b>Hourly" + usage_for_ +
                     R"(</b></caption>
<tbody>
<tr><th>Hour</th><th colspan=2 bgcolor=green>Hits/hour</th><th colspan=2 bgcolor=red>KBytes</th><th bgcolor=pink>mS</th>
)";
  for (int hour = 0; hour < 24; ++hour) {
    std::string cells = "<td>0.0</td><td>0%</td><td>0.0</td><td>0%</td><td>0</td>";
    if (hour == 9) cells = "<td>0.3</td><td>50%</td><td>4.1</td><td>77%</td><td>150</td>";
    if (hour == 22) cells = "<td>0.3</td><td>50%</td><td>1.2</td><td>23%</td><td>67</td>";
    text += "<tr align=right><td>" + std::to_string(hour) + "</td>" + cells + "</tr>\n";
  }
  return text + "</tbody></table>\n";
}

std::string WholeMonthPage::Fetches() const {
  return R"(<hr><br><table width="90%" border=1>
<caption><b><a name=urls>Top hits for )" +
         month_year_ + "</a></b>" + Link("URLbyHits") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes</th><th>URL</th></tr>
<tr><td align=right>1</td><td align=right>3</td><td align=right>50&nbsp;%</td><td align=right>20</td><td align=right>39&nbsp;%</td><td><a href="/index.htm">/index.htm</a></td></tr>
<tr><td align=right>2</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>26</td><td align=right>49&nbsp;%</td><td><a href="/logo.gif">/logo.gif</a></td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>5</td><td align=right>9&nbsp;%</td><td><a href="/a%20b%7Ec.htm">/a b~c.htm</a></td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b>Top hits for )" +
         month_year_ + " by Kbytes</b>" + Link("URLbyKBytes") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes</th><th>URL</th></tr>
<tr><td align=right>1</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>26</td><td align=right>49&nbsp;%</td><td><a href="/logo.gif">/logo.gif</a></td></tr>
<tr><td align=right>2</td><td align=right>3</td><td align=right>50&nbsp;%</td><td align=right>20</td><td align=right>39&nbsp;%</td><td><a href="/index.htm">/index.htm</a></td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>5</td><td align=right>9&nbsp;%</td><td><a href="/a%20b%7Ec.htm">/a b~c.htm</a></td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b>Top pages for )" +
         month_year_ + "</b>" + Link("PageByHits") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th>URL</th></tr>
<tr><td align=right>1</td><td align=right>2</td><td align=right>33&nbsp;%</td><td><a href="/index.htm">/index.htm</a></td></tr>
<tr><td align=right>2</td><td align=right>1</td><td align=right>17&nbsp;%</td><td><a href="/a%20b%7Ec.htm">/a b~c.htm</a></td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b>Slowest pages for )" +
         month_year_ + "</b>" + Link("PageTimes") + R"(</caption>
<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th bgcolor=pink>Ave Time taken (mS)</th><th>URL</th></tr>
<tr><td align=right>1</td><td align=right>1</td><td align=right>300&nbsp;</td><td><a href="/a%20b%7Ec.htm">/a b~c.htm</a></td></tr>
<tr><td align=right>2</td><td align=right>2</td><td align=right>150&nbsp;</td><td><a href="/index.htm">/index.htm</a></td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>50&nbsp;</td><td><a href="/logo.gif">/logo.gif</a></td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b><a name=FileTypes>Top file types for )" +
         month_year_ + "</a></b>" + Link("FileTypebyHits") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes</th><th>File Type</th></tr>
<tr><td align=right>1</td><td align=right>4</td><td align=right>67&nbsp;%</td><td align=right>26</td><td align=right>48&nbsp;%</td><td>HTM</td></tr>
<tr><td align=right>2</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>26</td><td align=right>49&nbsp;%</td><td>GIF</td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>2</td><td align=right>3&nbsp;%</td><td>TXT</td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b>Top file type for )" +
         month_year_ + " by Kbytes</b>" + Link("FileTypebyKBytes") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes</th><th>File Type</th></tr>
<tr><td align=right>1</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>26</td><td align=right>49&nbsp;%</td><td>GIF</td></tr>
<tr><td align=right>2</td><td align=right>4</td><td align=right>67&nbsp;%</td><td align=right>26</td><td align=right>48&nbsp;%</td><td>HTM</td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>2</td><td align=right>3&nbsp;%</td><td>TXT</td></tr>
</tbody></table>
)";
}

std::string WholeMonthPage::ReadersAndVisits() const {
  return R"(<hr><br><table width="90%" border=1>
<caption><b><a name=readers>Top readers for )" +
         month_year_ + R"(</a></b></caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes</th><th>IP</th><th>hostname</th></tr>
<tr><td align=right>1</td><td align=right>3</td><td align=right>50&nbsp;%</td><td align=right>41</td><td align=right>77&nbsp;%</td><td>192.0.2.1</td><td>gate.example.com</td></tr>
<tr><td align=right>2</td><td align=right>2</td><td align=right>33&nbsp;%</td><td align=right>12</td><td align=right>22&nbsp;%</td><td>192.0.2.2</td><td>crawl-1.bots.example.co.uk</td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td align=right>0</td><td align=right>1&nbsp;%</td><td>2001:db8::9</td><td></td></tr>
</tbody></table>
<hr><br><table width="70%" border=1>
<caption><b><a name=countries>Top Countries, Domains, Companies, ISPs for )" +
         month_year_ + "</a></b>" + Link("Domains") + R"(</caption>
<tbody><tr><th colspan=3 bgcolor=green>Countries/Domains</th><th bgcolor=blue colspan=2>Companies/ISPs</th></tr>
<tr><th>#</th><th bgcolor=green>Country/Domain</th><th bgcolor=green>% hits</th><th bgcolor=blue>Company/ISP</th><th bgcolor=blue>% hits</th></tr>
<tr><td></td><td>Unaccounted</td><td align=right>17&nbsp;%</td><td>Unaccounted</td><td align=right>17&nbsp;%</td></tr>
<tr><td align=right>1</td><td>com</td><td align=right>50&nbsp;%</td><td>example.com</td><td align=right>50&nbsp;%</td></tr>
<tr><td align=right>2</td><td>uk</td><td align=right>33&nbsp;%</td><td>example.co.uk</td><td align=right>33&nbsp;%</td></tr>
</tbody></table>
<hr><br><table width="70%" border=1>
<caption><b><a name=sessions>Session breakdown for )" +
         month_year_ + "</a></b>" + Link("SessionBreakdown") + R"(</caption>
<tbody><tr><th rowspan=2>Visit length</th><th colspan=3  bgcolor=blue>All visits</th><th colspan=3 bgcolor=pink>Non-robot</th></tr>
<tr><th bgcolor=yellow># visits</th><th bgcolor=green>Ave # fetches</th><th bgcolor=pink>Ave Stay</th><th bgcolor=yellow># visits</th><th bgcolor=green>Ave # fetches</th><th bgcolor=pink>Ave Stay</th></tr>
<tr><td>Total</td><td align=right>3</td><td align=right>2.0 +/- 0.8</td><td align=right>0.3 +/- 0.5 mins</td><td align=right>2</td><td align=right>2.0 +/- 1.0</td><td align=right>0.5 +/- 0.5 mins</td></tr>
<tr><td>very short <3 Secs</td><td align=right>2</td><td align=right>1.5 +/- 0.5</td><td align=right>0.0 +/- 0.0 secs</td><td align=right>1</td><td align=right>1.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 secs</td></tr>
<tr><td>short <1 Min</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 secs</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 secs</td></tr>
<tr><td>< 10 Minutes</td><td align=right>1</td><td align=right>3.0 +/- 0.0</td><td align=right>1.0 +/- 0.0 mins</td><td align=right>1</td><td align=right>3.0 +/- 0.0</td><td align=right>1.0 +/- 0.0 mins</td></tr>
<tr><td>< 1 Hour</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 mins</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 mins</td></tr>
<tr><td>< 8 Hours</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 mins</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 mins</td></tr>
<tr><td>Continuous</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 mins</td><td align=right>0</td><td align=right>0.0 +/- 0.0</td><td align=right>0.0 +/- 0.0 mins</td></tr>
</tbody></table>
<br><table width="90%" border=1>
<caption><b>Most common Entry/Exit pages for )" +
         month_year_ + "</b>" + Link("EntryExit") + R"(</caption>
<tr><th colspan=5 bgcolor=blue>All visits</th><th></th><th colspan=5 bgcolor=pink>Non-Robots</th></tr>
<tr><th>#</th><th bgcolor=green>Entry page</th><th></th><th>#</th><th bgcolor=blue>Exit page</th><th></th><th>#</th><th bgcolor=green>Entry page</th><th></th><th>#</th><th bgcolor=blue>Exit page</th></tr>
<tr><td align=right>2</td><td><a href="/index.htm">/index.htm</a></td><td></td><td align=right>2</td><td><a href="/index.htm">/index.htm</a></td><td></td><td align=right>2</td><td><a href="/index.htm">/index.htm</a></td><td></td><td align=right>1</td><td><a href="/a%20b%7Ec.htm">/a b~c.htm</a></td></tr>
<tr><td align=right>1</td><td><a href="/robots.txt">/robots.txt</a></td><td></td><td align=right>1</td><td><a href="/a%20b%7Ec.htm">/a b~c.htm</a></td><td></td><td></td><td></td><td></td><td align=right>1</td><td><a href="/index.htm">/index.htm</a></td></tr>
</tbody></table>
)";
}

std::string WholeMonthPage::Referrers() const {
  return R"(<hr><br><table width="90%" border=1>
<caption><b><a name=referrers>Top referrers for )" +
         month_year_ + R"(</a></b></caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th>Referrer</th></tr>
<tr><td align=right>1</td><td align=right>3</td><td align=right>50&nbsp;%</td><td>(Direct request)</td></tr>
<tr><td align=right>2</td><td align=right>2</td><td align=right>33&nbsp;%</td><td><a href="http://search.example/find">http://search.example/find</a></td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td><a href="http://www.example.org/index.htm">http://www.example.org/index.htm</a></td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b><a name=referrers>Top referring sites for )" +
         month_year_ + "</a></b>" + Link("ReferrerSites") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th align=left>Referrer</th></tr>
<tr><td align=right>1</td><td align=right>3</td><td align=right>50&nbsp;%</td><td>Direct</td></tr>
<tr><td align=right>2</td><td align=right>2</td><td align=right>33&nbsp;%</td><td>http://search.example</td></tr>
<tr><td align=right>3</td><td align=right>1</td><td align=right>17&nbsp;%</td><td>http://www.example.org</td></tr>
</tbody></table>
<hr><br><table width="60%" border=1>
<caption><b><a name=queries>Top queries for )" +
         month_year_ + "</a></b>" + Link("Queries") + R"(</caption>
<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th>Query terms</th></tr>
<tr><td align=right>1</td><td align=right>1</td><td>web logs</td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b><a name=broken>Broken links in )" +
         month_year_ + R"(</a></b></caption>
<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th bgcolor=red>Local target of link</th></tr>
<tr><td align=right>1</td><td align=right>1</td><td>/robots.txt</td></tr>
</tbody></table>
<br><table width="70%" border=1>
<caption><b><a name=broken>Broken referrer references in )" +
         month_year_ + R"(</a></b></caption>
<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th bgcolor=red>Linked from</th></tr>
<tr><td align=right>1</td><td align=right>1</td><td>-</td></tr>
</tbody></table>
)";
}

std::string WholeMonthPage::UserNames() const {
  if (!Run().Settings.ShowUsernames) return "";
  return R"(<hr><br><table width="90%" border=1>
<caption><b><a name=usernames>Top users for )" +
         month_year_ + R"(</a></b></caption>
<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th bgcolor=red>Kbytes</th><th>User name</th></tr>
<tr><td align=right>1</td><td align=right>5</td><td align=right>52</td><td>Anonymous</td></tr>
<tr><td align=right>2</td><td align=right>1</td><td align=right>0</td><td>anna</td></tr>
</tbody></table>
)";
}

std::string WholeMonthPage::Agents() const {
  return R"(<hr><br><table width="90%" border=1>
<caption><b><a name=browsers>Top browsers (agents) for )" +
         month_year_ + "</a></b>" + Link("Browsers") + R"(</caption>
<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th><th colspan=2 bgcolor=red>Kbytes</th><th>Browser</th><th>Type</th></tr>
<tr><td align=right>1</td><td align=right>4</td><td align=right>67&nbsp;%</td><td align=right>42</td><td align=right>78&nbsp;%</td><td>Mozilla/5.0+(Windows+NT+10.0)+Firefox/120</td><td></td></tr>
<tr><td align=right>2</td><td align=right>2</td><td align=right>33&nbsp;%</td><td align=right>12</td><td align=right>22&nbsp;%</td><td>Mozilla/5.0+(Windows)+Googlebot/2.1</td><td>ROBOT</td></tr>
</tbody></table>
<br><table width="80%" border=1>
<caption><b>Browsers and operating systems</b>)" +
         Link("BrowserClassifier") + R"(</caption>
<tr><th colspan=2>Browsers</th><th></th><th colspan=2>Operating systems</th></tr>
<tr><td>Firefox</td><td align=right>67&nbsp;%</td><td></td>
<td>Windows</td><td align=right>100&nbsp;%</td></tr>
<tr><td>Unknown</td><td align=right>33&nbsp;%</td><td></td>
<td></td><td></td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b><a name=robots>Traffic from robots for )" +
         month_year_ + "</a></b>" + Link("Robots") + R"(</caption>
<tbody><tr><th>Type</th><th bgcolor=green>Hits</th><th bgcolor=red>Kbytes</th></tr>
<tr><td>Robots</td><td align=right>2 (33&nbsp;%)</td><td align=right>12 (22&nbsp;%)</td></tr>
<tr><td>Others</td><td align=right>4 (67&nbsp;%)</td><td align=right>42 (78&nbsp;%)</td></tr>
</tbody></table>
<hr><br><table width="90%" border=1>
<caption><b><a name=SEO>Short Summary for )" +
         month_year_ + "</a></b>" + Link("OneRow") + R"(</caption>
<tbody align=center><tr><th>Days</th><th>Distinct Visitors</th><th>Visits</th><th>Bounce rate</th><th>Non-robot Visits</th><th>Non-robot Bounce rate</th><th>Hits</th><th>Files</th><th>Pages</th><th>Distinct Pages</th><th>KBytes</th><th>Delay mS</th><th>%Robots</th></tr>
<tr><td>10</td><td>3</td><td>3</td><td>67&nbsp;%</td><td>2</td><td>50&nbsp;%</td><td>6</td><td>4</td><td>3</td><td>2</td><td>53</td><td>108</td><td>33&nbsp;%</td></tr></tbody></table>
)";
}

std::string WholeMonthPage::Ending() const {
  return R"(<br><table width="90%" border=1>
<caption><b><a name=filters>Input filters applied</a></b></caption><tbody align=left>
<tr><td><pre> No_icons: exclude where cs-uri-stem like *&lt;&amp;.ico </pre></td></tr>
<tr><td><pre> Site: include where c-ip like * </pre></td></tr>
</tbody></table>
</center><hr><small>Generated by <a href="https://hitwick.example/">Hitwick</a> (0.1.0) by the Hitwick developers</small>
</body></html>
)";
}

// The records of the companions by table name.
std::map<std::string, std::string> ExpectedFiles() {
  std::map<std::string, std::string> files;
  files["Summary"] = R"("Total Hits",0.6,6
"Total Files",0.4,4
"Total Pages",0.3,3
"Total KBytes",5.3,53
"Ave Response Time mS",108
"Total Unique Visitor IP addresses",3
"Total Sessions",0.3,3
"Max Concurrent Visitor Sessions",2
"Total Unique URLs",3
"Total Unique Referers",3
"Total Unique Browser Types",2
"Breakdown","Average","Max"
"Busiest single hour hits",0.025,3
"Hits per Hour ",0.025,0.3
"Hits per Day",0.6,3
"Busiest single hour KBytes",0.22083333333333333,41.0
"KBytes per Hour",0.22083333333333333,4.1
"KBytes per Day",5.3,41
"Files per Hour timeslot",0.016666666666666666,0.3
"Files per Day",0.4,3
"Pages per Hour timeslot ",0.0125,0.2
"Pages per Day",0.3,2
"Ave (over hour) Response Time mS",108,150
"Ave (over day) Response Time mS",108,150
"Worst individual response time mS",,300
"By return code","Meaning","Count","K bytes"
"200","OK",4,51
"404","Not Found",1,2
"304","Not Modified",1,0
"method","count","K bytes"
"GET",5,52
"POST",1,0
)";
  files["DailyUsage"] =
      "\"Day\",\"Hits\",\"HitsPct\",\"KBytes\",\"KBytesPct\",\"mS\",\"Failures\",\"FailPct\"\n"
      "1,0,0,0,0,0,0,0\n2,3,50,41,77,150,0,0\n3,3,50,12,23,67,1,33\n";
  for (int day = 4; day <= 31; ++day) {
    files["DailyUsage"] += std::to_string(day) + ",0,0,0,0,0,0,0\n";
  }
  files["HourlyUsage"] =
      "\"Hour\",\"HitsPerHour\",\"HitsPct\",\"KBytesPerHour\",\"KBytesPct\",\"mS\"\n";
  for (int hour = 0; hour < 24; ++hour) {
    files["HourlyUsage"] += std::to_string(hour) + (hour == 9    ? ",0.3,50,4.1,77,150\n"
                                                    : hour == 22 ? ",0.3,50,1.2,23,67\n"
                                                                 : ",0.0,0,0.0,0,0\n");
  }
  files["URLbyHits"] = R"("Rank","Hits","HitsPct","KBytes","KBytesPct","URL"
1,3,50,20,39,"/index.htm"
2,1,17,26,49,"/logo.gif"
3,1,17,5,9,"/a+b%7Ec.htm"
)";
  files["URLbyKBytes"] = R"("Rank","Hits","HitsPct","KBytes","KBytesPct","URL"
1,1,17,26,49,"/logo.gif"
2,3,50,20,39,"/index.htm"
3,1,17,5,9,"/a+b%7Ec.htm"
)";
  files["PageByHits"] = R"("Rank","Hits","HitsPct","URL"
1,2,33,"/index.htm"
2,1,17,"/a+b%7Ec.htm"
)";
  files["PageTimes"] = R"("Rank","Hits","TimeTaken","URL"
1,1,300,"/a+b%7Ec.htm"
2,2,150,"/index.htm"
3,1,50,"/logo.gif"
)";
  files["FileTypebyHits"] = R"("Rank","Hits","HitsPct","KBytes","KBytesPct","FileType"
1,4,67,26,48,"HTM"
2,1,17,26,49,"GIF"
3,1,17,2,3,"TXT"
)";
  files["FileTypebyKBytes"] = R"("Rank","Hits","HitsPct","KBytes","KBytesPct","FileType"
1,1,17,26,49,"GIF"
2,4,67,26,48,"HTM"
3,1,17,2,3,"TXT"
)";
  files["Domains"] = R"("Rank","Country","CountryPctPct","Company","CompanyPct"
,"Unaccounted",17,"Unaccounted",17
1,"com",50,"example.com",50
2,"uk",33,"example.co.uk",33
)";
  files["SessionBreakdown"] =
      "\"Range\",\"Visits\",\"FetchesAve\",\"FetchesStdDev\",\"StayAve\",\"StayStdDev\",\"Units\","
      "\"NRVisits\",\"NRFetchesAve\",\"NRFetchesStdDev\",\"NRStayAve\",\"NRStayStdDev\","
      "\"NRUnits\"\n"
      R"("Total",3,2.0,0.8,0.3,0.5,"mins",2,2.0,1.0,0.5,0.5,"mins"
"very short <3 Secs",2,1.5,0.5,0.0,0.0,"secs",1,1.0,0.0,0.0,0.0,"secs"
"short <1 Min",0,0.0,0.0,0.0,0.0,"secs",0,0.0,0.0,0.0,0.0,"secs"
"< 10 Minutes",1,3.0,0.0,1.0,0.0,"mins",1,3.0,0.0,1.0,0.0,"mins"
"< 1 Hour",0,0.0,0.0,0.0,0.0,"mins",0,0.0,0.0,0.0,0.0,"mins"
"< 8 Hours",0,0.0,0.0,0.0,0.0,"mins",0,0.0,0.0,0.0,0.0,"mins"
"Continuous",0,0.0,0.0,0.0,0.0,"mins",0,0.0,0.0,0.0,0.0,"mins"
)";
  files["EntryExit"] =
      "\"EntryCount\",\"EntryURL\",\"ExitCount\",\"ExitURL\",\"NREntryCount\",\"NREntryURL\","
      "\"NRExitCount\",\"NRExitURL\"\n"
      R"(2,"/index.htm",2,"/index.htm",2,"/index.htm",1,"/a+b%7Ec.htm"
1,"/robots.txt",1,"/a+b%7Ec.htm",,"",1,"/index.htm"
)";
  files["ReferrerSites"] = R"("Referrer","Hits","HitsPct"
"Direct",3,50
"http://search.example",2,33
"http://www.example.org",1,17
)";
  files["Queries"] = "\"Query\",\"Count\"\n\"web logs\",1\n";
  files["Browsers"] = R"("Rank","Hits","HitsPct","KBytes","KBytesPct","Browser","IsRobot"
1,4,67,42,78,"Mozilla/5.0+(Windows+NT+10.0)+Firefox/120",""
2,2,33,12,22,"Mozilla/5.0+(Windows)+Googlebot/2.1","ROBOT"
)";
  files["BrowserClassifier"] = R"("Browser","BrowserPct","OS","OSpct"
"Firefox",67,"Windows",100
"Unknown",33,"",
)";
  files["Robots"] = "\"Type\",\"HitsPct\",\"KBytesPct\"\n\"Robots\",33,22\n\"Others\",67,78\n";
  files["OneRow"] =
      "\"Days\",\"DistVisitors\",\"Visits\",\"Bounces\",\"NRVisits\",\"NRBounces\",\"Hits\","
      "\"Files\",\"Pages\",\"DistPages\",\"KBytes\",\"Delay_mS\",\"%Robots\"\n"
      "10,3,3,67,2,50,6,4,3,2,53,108,33\n";
  return files;
}

// The companions in the order in which they are put in place.
const std::vector<std::string> kFileOrder = {
    "Summary",           "DailyUsage", "HourlyUsage",    "URLbyHits",        "URLbyKBytes",
    "PageByHits",        "PageTimes",  "FileTypebyHits", "FileTypebyKBytes", "Domains",
    "SessionBreakdown",  "EntryExit",  "ReferrerSites",  "Queries",          "Browsers",
    "BrowserClassifier", "Robots",     "OneRow"};

TEST_F(WholeMonthPage, WithoutCsvAndUserNames) {
  EXPECT_EQ(JanuaryPage(), WithLineEnds(ExpectedPage(month_year_)));
  EXPECT_TRUE(files_.files.empty());
}

TEST_F(WholeMonthPage, WithCsvAndUserNames) {
  Settings().GenerateCSV = true;
  Settings().ShowUsernames = true;
  EXPECT_EQ(JanuaryPage(), WithLineEnds(ExpectedPage(month_year_)));
  EXPECT_EQ(files_.files.size(), 18u);
  for (const auto& [name, content] : ExpectedFiles()) {
    EXPECT_EQ(Csv(name), WithLineEnds(content)) << name;
  }
}

TEST_F(WholeMonthPage, CsvFilesAreWrittenInPageOrder) {
  Settings().GenerateCSV = true;
  JanuaryPage();
  std::vector<std::string> expected;
  for (const std::string& name : kFileOrder) expected.push_back(UsagePath("Jan-" + name + ".csv"));
  EXPECT_EQ(files_.committed, expected);
}

TEST_F(WholeMonthPage, OnDemandHasItsOwnPeriodAndFileNames) {
  Settings().GenerateCSV = true;
  base_ = "R%26D";
  const mdlGenHTML::WriteResult result = Write("R&D", {2, 15, 1, 2026}, true);
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(page_, WithLineEnds(ExpectedPage("2 - 15 " + month_year_)));
  for (const auto& [name, content] : ExpectedFiles()) {
    EXPECT_EQ(Csv(name, "R&D"), WithLineEnds(content)) << name;
  }
}

TEST_F(WholeMonthPage, CsvThatCannotBeWrittenEndsThePageAfterItsTable) {
  Settings().GenerateCSV = true;
  files_.create_failures[UsagePath("Jan-URLbyHits.csv")] = 13;
  const mdlGenHTML::WriteResult result = Write("Jan", {1, 31, 1, 2026});
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, mod_systemInfo::GetErrorText(13));
  std::string expected = Head(month_year_) + Statistics() + DailyChart() + DailyTable() +
                         HourlyChart() + HourlyTable();
  const std::string fetches = Fetches();
  expected += fetches.substr(0, fetches.find("<hr><br>", 1));
  EXPECT_EQ(page_, WithLineEnds(expected));
  EXPECT_EQ(files_.committed.size(), 3u);
}

TEST_F(WholeMonthPage, ChartThatHasNoCsvEndsAfterItsTable) {
  Settings().GenerateCSV = true;
  files_.append_failures[UsagePath("Jan-DailyUsage.csv")] = {28, 0};
  EXPECT_FALSE(Write("Jan", {1, 31, 1, 2026}).ok);
  EXPECT_EQ(page_, WithLineEnds(Head(month_year_) + Statistics() + DailyChart() + DailyTable()));
}

TEST_F(WholeMonthPage, LastCsvThatFailsLeavesOutFiltersAndFooter) {
  Settings().GenerateCSV = true;
  files_.commit_failures[UsagePath("Jan-OneRow.csv")] = 28;
  EXPECT_FALSE(Write("Jan", {1, 31, 1, 2026}).ok);
  std::string expected = ExpectedPage(month_year_);
  expected.resize(expected.size() - Ending().size());
  EXPECT_EQ(page_, WithLineEnds(expected));
}

}  // namespace
