#include "stats/fault.h"

namespace stats {

void ThrowOverflow() { throw Fault("Overflow"); }

void ThrowSubscript() { throw Fault("Subscript out of range"); }

}  // namespace stats
