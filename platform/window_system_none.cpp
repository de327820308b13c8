#include "platform/service.h"
#include "platform/window_system.h"

namespace platform {
namespace {

class NoWindows : public WindowSystem {
 public:
  bool Start(std::string* why_not) override {
    *why_not = "this build has no windows";
    return false;
  }
  void SelectSite() override {}
  void ShowConfiguration() override {}
  void RunUntilClosed() override {}
  void Stop() override {}
};

}  // namespace

WindowSystem& TheWindowSystem() {
  static NoWindows none;
  return InUse<WindowSystem>(none);
}

}  // namespace platform
