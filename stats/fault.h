// The run-time errors of accumulating: the step that meets one ends there, its routine reports it
// and the run goes on. `mdlMonth::AddHit`, `TallyAdd`, `mdlVisit` and `mdlW3C::ParseRecord` each
// catch their own: a fault leaves a helper and the unit that threw it, never one of these calls.
#ifndef HITWICK_STATS_FAULT_H_
#define HITWICK_STATS_FAULT_H_

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace stats {

class Fault {
 public:
  explicit Fault(std::string description) : description_(std::move(description)) {}
  const std::string& description() const { return description_; }

 private:
  std::string description_;
};

// A number that does not fit its type / an index outside its array.
[[noreturn]] void ThrowOverflow();
[[noreturn]] void ThrowSubscript();

// counter += value in single precision; overflow when the sum is no longer finite.
inline void AddTo(float& counter, float value) {
  const float sum = counter + value;
  if (!std::isfinite(sum)) ThrowOverflow();
  counter = sum;
}

// counter += value in 32 bits; overflow when the sum does not fit, the counter then unchanged.
inline void AddTo(std::int32_t& counter, std::int32_t value) {
  const std::int64_t sum = std::int64_t{counter} + value;
  if (sum > std::numeric_limits<std::int32_t>::max() ||
      sum < std::numeric_limits<std::int32_t>::min()) {
    ThrowOverflow();
  }
  counter = static_cast<std::int32_t>(sum);
}

}  // namespace stats

#endif  // HITWICK_STATS_FAULT_H_
