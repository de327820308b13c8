#include "report/mdlGenHTML.h"

#include <exception>
#include <new>
#include <string_view>

#include "config/mdlConfigs.h"
#include "config/program.h"
#include "config/text.h"
#include "logread/mdlFilters.h"
#include "platform/mod_systemInfo.h"
#include "report/agent_tables.h"
#include "report/dates.h"
#include "report/domains.h"
#include "report/html.h"
#include "report/month_page.h"
#include "report/page_frame.h"
#include "report/ranked_tables.h"
#include "report/summary_table.h"
#include "report/usage_sections.h"
#include "report/visit_tables.h"
#include "stats/fault.h"
#include "stats/mdlMonth.h"

namespace mdlGenHTML {
namespace {

using report::MonthPage;

constexpr std::string_view kNavigation =
    "[<a href=\"#daily\">Daily</a>][<a href=\"#hourly\">Hourly</a>][<a href=\"#urls\">URLs</a>]"
    "[<a href=\"#readers\">Readers</a>][<a href=\"#sessions\">Sessions</a>]"
    "[<a href=\"#referrers\">Referrers</a>][<a href=\"#browsers\">Browsers</a>]"
    "[<a href=\"#countries\">Countries</a>][<a href=\"#queries\">Searches</a>]"
    "[<a href=\"#broken\">Broken links</a>][<a href=index.htm>Annual Summary</a>]<p><hr>";

// The sections in page order, which is also the order of the CSV files.
using Section = int (*)(MonthPage&);
constexpr Section kSections[] = {report::WriteSummary,
                                 report::WriteDailyUsage,
                                 report::WriteHourlyUsage,
                                 report::WriteUrlsByHits,
                                 report::WriteUrlsByKBytes,
                                 report::WritePagesByHits,
                                 report::WriteSlowestPages,
                                 report::WriteFileTypesByHits,
                                 report::WriteFileTypesByKBytes,
                                 report::WriteReaders,
                                 report::WriteDomains,
                                 report::WriteSessionBreakdown,
                                 report::WriteEntryAndExitPages,
                                 report::WriteReferrers,
                                 report::WriteReferringSites,
                                 report::WriteQueries,
                                 report::WriteBrokenLinks,
                                 report::WriteBrokenReferrers,
                                 report::WriteUserNames,
                                 report::WriteAgents,
                                 report::WriteBrowsersAndSystems,
                                 report::WriteRobots,
                                 report::WriteShortSummary};

void WriteOpening(const MonthPage& month, bool on_demand) {
  report::WriteHead(month.page,
                    "Usage statistics for " + month.host + " - " + month.month_and_year);
  html::Line(month.page, "<H2>", month.month_name, " Usage Statistics for ", month.host,
             mdlMonth::Month().HostLabel, report::SiteLabel(), "</H2>");
  std::string period = month.month_and_year;
  if (on_demand) {
    period = std::to_string(month.period.firstDay) + " - " + std::to_string(month.period.lastDay) +
             " " + period;
  }
  const bool utc = mdlConfigs::Run().Settings.UseUTC;
  html::Line(
      month.page,
      report::PeriodText(period, report::GenerationTime(utc), utc ? " (UTC)" : " (local time)"),
      "<HR><center>");
  html::Line(month.page, kNavigation);
}

void WriteFilters(std::string& page) {
  if (mdlFilters::Rules().empty()) return;
  html::Line(page, html::kWide);
  html::Line(page,
             "<caption><b><a name=filters>Input filters applied</a></b></caption>"
             "<tbody align=left>");
  for (const mdlFilters::FilterRule& rule : mdlFilters::Rules()) {
    html::Line(page, "<tr><td><pre> ", text::HtmlEscape(rule.name), ": ",
               rule.includes ? "include" : "exclude", " where ", text::HtmlEscape(rule.field),
               " like ", text::HtmlEscape(rule.pattern), " </pre></td></tr>");
  }
  html::Line(page, html::kTableEnd);
}

// Returns the error code of the section that ended the page early, 0 for a whole page.
int WriteWholePage(MonthPage& month, bool on_demand) {
  WriteOpening(month, on_demand);
  report::ClassifyAgents(month);
  for (const Section section : kSections) {
    if (const int error = section(month); error != 0) return error;
  }
  WriteFilters(month.page);
  report::WriteFooter(month.page, program::kCredit);
  return 0;
}

}  // namespace

WriteResult WriteMonthPage(std::string& page, const std::string& base_path, const Period& period,
                           bool onDemand) {
  try {
    MonthPage month(page, base_path, period);
    const int error = WriteWholePage(month, onDemand);
    if (error != 0) return {.ok = false, .error = mod_systemInfo::GetErrorText(error)};
    return {};
  } catch (const stats::Fault& fault) {
    return {.ok = false, .error = fault.description()};
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& failure) {
    return {.ok = false, .error = failure.what()};
  }
}

}  // namespace mdlGenHTML
