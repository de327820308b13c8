#include "platform/message_box.h"

#include <cstdio>
#include <string>

#include "platform/service.h"

namespace platform {
namespace {

void WriteToStandardError(std::string_view text) {
  const std::string line = std::string(text) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

class StandardError : public MessageBoxes {
 public:
  void Show(std::string_view text) override { WriteToStandardError(text); }

  bool AskYesNo(std::string_view /*caption*/, std::string_view text) override {
    WriteToStandardError(text);
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
