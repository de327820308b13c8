// The names of files that are built beside the place they are to take.
//
// `Jan.htm` is built as `Jan.htm.4711-0f1e2d3c4b5a6978.tmp`: the number of the process, and a
// random part, so that nobody can be there first in a folder that several users write to. Whether
// such a file is still being built is not told by the number, which the system uses again, but by
// the hold that its process has on it. No state; used by both file systems and by the fake.
#ifndef HITWICK_PLATFORM_TEMPORARY_NAME_H_
#define HITWICK_PLATFORM_TEMPORARY_NAME_H_

#include <string>
#include <string_view>

namespace platform {

// A new name beside `target` (a file name or a path) for the process of this number.
std::string TemporaryName(std::string_view target, unsigned long process);

// What stands before the number in such a name, the random part being optional; empty when `name`
// is none.
std::string_view TargetOfTemporary(std::string_view name);

}  // namespace platform

#endif  // HITWICK_PLATFORM_TEMPORARY_NAME_H_
