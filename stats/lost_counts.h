// Whether memory has run out while the month was read, so that something that should count does
// not.
//
// State: one flag for the process, set where an allocation of the statistics fails, cleared by
// `InitMonth`. The reader stops and the run driver keeps the old page when it is set.
#ifndef HITWICK_STATS_LOST_COUNTS_H_
#define HITWICK_STATS_LOST_COUNTS_H_

namespace stats {

bool CountsAreLost();
void NoteLostCounts();
void ForgetLostCounts();

}  // namespace stats

#endif  // HITWICK_STATS_LOST_COUNTS_H_
