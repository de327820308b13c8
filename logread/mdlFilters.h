// The site's record filters: named include and exclude rules on one W3C field each.
//
// State: the rule list, for the life of the process. Filled by `LoadFilters` with the site's
// settings, consulted by the record parser, listed by the month page, edited by the filter
// windows.
#ifndef HITWICK_LOGREAD_MDLFILTERS_H_
#define HITWICK_LOGREAD_MDLFILTERS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "logread/like_pattern.h"

namespace mdlFilters {

struct FilterRule {
  std::string name;       // letters, digits and "_"; unique within the site
  bool includes = false;  // include rule: skip what does not match; exclude rule: skip what does
  std::string field;      // W3C field name
  std::string pattern;    // wildcard pattern
};

// Rules are counted in 16 bits.
inline constexpr std::size_t kMaxRules = 32767;

// The rules in order of loading and adding; rule 1 is element 0.
const std::vector<FilterRule>& Rules();

// Replaces the rule of that name (exact comparison) or appends one. Returns 0; 1, with nothing
// changed, when the name is empty or holds a character other than A-Z, a-z, 0-9 and "_", or when
// the list is full. A pattern that cannot be understood is taken as well.
std::int16_t SetFilter(const std::string& name, bool includes, const std::string& field,
                       const std::string& pattern);
// Removes the rule at a 1-based index; any other index does nothing.
void DeleteFilter(std::int16_t index);

// What the rules say of one value.
enum class Verdict {
  kKeep,
  kSkip,
  kBadPattern  // a rule's pattern cannot be understood: an error of the record
};
// Asks every rule of the field (compared exactly). Prepares the rules for this one value; a caller
// with many values keeps a `FieldRules`.
Verdict CheckFilters(std::string_view fieldName, std::string_view value);

// The prepared rules of one field, as the list holds them now: a later change of the list does not
// reach them. `empty()` means that nothing needs checking.
class FieldRules {
 public:
  FieldRules() = default;
  explicit FieldRules(std::string_view fieldName);
  bool empty() const { return rules_.empty(); }
  // Whether every pattern can be understood: no value is an error.
  bool Understood() const;
  // What the rules say of one value.
  Verdict Evaluate(std::string_view value) const;
  // The same. Logs repeat their values, so the verdicts on recent ones are remembered.
  Verdict Check(std::string_view value);

 private:
  struct Remembered {
    std::string value;
    std::uint64_t hash = 0;
    std::optional<Verdict> verdict;  // nothing: an empty place
  };
  struct Prepared {
    bool includes;
    std::optional<LikePattern> pattern;  // nothing when it cannot be understood
  };
  std::vector<Prepared> rules_;
  std::vector<Remembered> memory_;  // one place for each of some hash values
};

// Adds the rules stored under the site's "\Filters" key, replacing those of the same name; never
// empties the list.
void LoadFilters(const std::string& site);
// Replaces the stored rules by the list.
void SaveFilters(const std::string& site);

// Empties the list. For tests.
void Reset();

}  // namespace mdlFilters

#endif  // HITWICK_LOGREAD_MDLFILTERS_H_
