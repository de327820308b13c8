// Message boxes as windows of the toolkit, titled with the program's name.
#ifndef HITWICK_UI_WINDOW_BOXES_H_
#define HITWICK_UI_WINDOW_BOXES_H_

#include <string_view>

#include "platform/message_box.h"

namespace ui {

class WindowBoxes : public platform::MessageBoxes {
 public:
  void Show(std::string_view text) override;
  bool AskYesNo(std::string_view caption, std::string_view text) override;
};

}  // namespace ui

#endif  // HITWICK_UI_WINDOW_BOXES_H_
