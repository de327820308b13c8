#include "platform/message_box.h"

#include <windows.h>

#include <string>

#include "platform/service.h"

namespace platform {
namespace {

constexpr char kCaption[] = "Hitwick";

int ShowBox(std::string_view caption, std::string_view text, UINT style) {
  return MessageBoxA(nullptr, std::string(text).c_str(), std::string(caption).c_str(),
                     style | MB_SETFOREGROUND);
}

class SystemMessageBoxes : public MessageBoxes {
 public:
  void Show(std::string_view text) override { ShowBox(kCaption, text, MB_OK); }

  bool AskYesNo(std::string_view caption, std::string_view text) override {
    return ShowBox(caption, text, MB_YESNO | MB_ICONQUESTION) == IDYES;
  }
};

MessageBoxes* boxes_of_windows = nullptr;

}  // namespace

MessageBoxes& TheMessageBoxes() {
  static SystemMessageBoxes system;
  MessageBoxes* const real = boxes_of_windows != nullptr ? boxes_of_windows : &system;
  return InUse<MessageBoxes>(*real);
}

void UseMessageBoxes(MessageBoxes* boxes) { boxes_of_windows = boxes; }

}  // namespace platform
