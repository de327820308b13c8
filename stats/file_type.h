// The file type of a URL, as the reports count it.
#ifndef HITWICK_STATS_FILE_TYPE_H_
#define HITWICK_STATS_FILE_TYPE_H_

#include <string>
#include <string_view>

namespace stats {

// Sets `file_type` to the upper-case text after the last "." of the URI's path (what stands before
// any "?", "#", "&" and "*"), cut before its first "/" and "+"; to nothing when there is none. A
// dot in a folder name yields the rest of that folder's name.
void FindFileType(std::string_view uri, std::string& file_type);

}  // namespace stats

#endif  // HITWICK_STATS_FILE_TYPE_H_
