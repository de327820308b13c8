// Which line of a list is meant by what is typed while the list has the keyboard.
//
// State: what was typed so far; it is forgotten when the typing pauses. One per list, used by the
// list boxes of all windows (`controls.h`).
#ifndef HITWICK_UI_TYPE_AHEAD_H_
#define HITWICK_UI_TYPE_AHEAD_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ui {

class TypeAhead {
 public:
  // One more character (UTF-8), typed at a time in milliseconds that only grows. The line that
  // begins with all that was typed, blanks in front and the letter case of A to Z left aside:
  // searched for from `selected` on and then from the top; nothing when there is none. A first
  // character, and the same one again, go on to the next such line.
  std::optional<std::size_t> Type(std::string_view character, long now_ms,
                                  const std::vector<std::string>& lines, std::size_t selected);

  // True while a blank would be part of what is typed.
  bool typing(long now_ms) const;

 private:
  std::string typed_;
  long last_ms_ = 0;
};

}  // namespace ui

#endif  // HITWICK_UI_TYPE_AHEAD_H_
