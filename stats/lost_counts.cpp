#include "stats/lost_counts.h"

namespace stats {
namespace {

bool lost = false;

}  // namespace

bool CountsAreLost() { return lost; }
void NoteLostCounts() { lost = true; }
void ForgetLostCounts() { lost = false; }

}  // namespace stats
