// Names of the files that are published, and links to them.
//
// No state. Called by the run driver for the month pages, by those for their CSV companions and by
// the last-12-months page: a page and the links to it come from here alone.
#ifndef HITWICK_REPORT_PAGE_NAMES_H_
#define HITWICK_REPORT_PAGE_NAMES_H_

#include <string>
#include <string_view>

namespace report {

// The name of a month's page without ".htm": the abbreviated name of the month (1..12) in the
// user's language as a file can bear it.
std::string MonthPageName(int month);

// A word of the user's language as part of a file name: blanks at its ends are dropped, bytes that
// the file system refuses become "_".
std::string FileNamePart(std::string_view word);

// What a link to a file in the same folder holds: the name in UTF-8, percent-encoded but for
// letters, digits and "-._~", so that it is safe in an attribute with or without quotes.
std::string LinkTo(std::string_view file_name);

}  // namespace report

#endif  // HITWICK_REPORT_PAGE_NAMES_H_
