#include "platform/message_box.h"

#include "platform/service.h"
#include "platform/standard_error.h"

namespace platform {
namespace {

class StandardError : public MessageBoxes {
 public:
  void Show(std::string_view text) override { WriteStandardError(text); }

  bool AskYesNo(std::string_view /*caption*/, std::string_view text) override {
    WriteStandardError(text);
    return false;
  }
};

MessageBoxes* boxes_of_windows = nullptr;

}  // namespace

MessageBoxes& TheMessageBoxes() {
  static StandardError standard_error;
  MessageBoxes* const real = boxes_of_windows != nullptr ? boxes_of_windows : &standard_error;
  return InUse<MessageBoxes>(*real);
}

void UseMessageBoxes(MessageBoxes* boxes) { boxes_of_windows = boxes; }

}  // namespace platform
