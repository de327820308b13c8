// The fixed vocabularies by which a hit is classified, and the lookups over them.
//
// State: the tables, built once by `BuildLookupTables` (start-up), and the robot word list,
// rebuilt by `InitMonth`. None is configurable. Letter case means A to Z only.
#ifndef HITWICK_STATS_MDLWEBPAGE_H_
#define HITWICK_STATS_MDLWEBPAGE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace mdlWebPage {

// Fills the status, browser and operating-system tables.
void BuildLookupTables();
// Fills the robot word list.
void BuildRobotWords();

// The meaning of a three-digit status followed by " - "; empty for a code that is not in the
// table.
std::string StatusMeaning(std::string_view code);

// The first token in list order that occurs in the agent, letter case ignored; "Unknown" when
// none does.
std::string_view BrowserOf(std::string_view userAgent);
std::string_view OsOf(std::string_view userAgent);

// True for an agent that fetched /robots.txt in this run (exact comparison) or that contains one
// of the robot words, letter case ignored.
bool IsRobot(std::string_view userAgent);
// The two halves of the test.
bool FetchedRobotsTxt(std::string_view userAgent);
bool HasRobotWord(std::string_view userAgent);

// 1 for a page, 0 for another file.
std::int16_t IsPage(std::string_view uri);

// The search words that a referrer's query part ("?..." as a rule) carries, "%xx" as numeric
// character references; empty when it holds none of the known parameters.
std::string ExtractSearchWords(std::string_view queryPart);

}  // namespace mdlWebPage

#endif  // HITWICK_STATS_MDLWEBPAGE_H_
