#include "logread/byte_masks.h"

namespace logread {

std::vector<MaskRuns> MaskVersions() { return {MaskRunsPlainly}; }

}  // namespace logread
