// Boxes that tell the user something or ask a question.
//
// Once the windows have started, their boxes are used. Before that, and in a build without windows:
// `MessageBox` on Windows; on Linux the text goes to standard error and a question counts as
// answered with no. Whether a box may appear at all (never in a batch run) is decided by the
// callers: `mdlConfigs::TellUser`, `mod_systemInfo` for its own, and the windows, which no batch
// run has.
#ifndef HITWICK_PLATFORM_MESSAGE_BOX_H_
#define HITWICK_PLATFORM_MESSAGE_BOX_H_

#include <string_view>

namespace platform {

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  // Shows `text` with an OK button and returns when it was pressed.
  virtual void Show(std::string_view text) = 0;
  // Asks `text` under the title `caption`; true only when the user chose yes.
  virtual bool AskYesNo(std::string_view caption, std::string_view text) = 0;
};

MessageBoxes& TheMessageBoxes();

// From now on the program's boxes are these; null brings back those without windows.
void UseMessageBoxes(MessageBoxes* boxes);

}  // namespace platform

#endif  // HITWICK_PLATFORM_MESSAGE_BOX_H_
