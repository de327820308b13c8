#include "platform/window_system.h"

#include <dlfcn.h>

#include "platform/file_system.h"
#include "platform/service.h"
#include "platform/shell.h"

namespace platform {
namespace {

constexpr char kModule[] = "hitwick-windows.so";
// Below the program's folder: as built, and as installed (bin beside lib).
constexpr const char* kFolders[] = {".", "../lib/hitwick"};

// Loads the module that lies beside the program; it is never unloaded. Null with the reason when it
// cannot be loaded, because a library of the toolkit is not installed for instance.
WindowSystem* LoadModule(std::string* why_not) {
  for (const char* folder : kFolders) {
    const std::string path = JoinPath(JoinPath(TheShell().ProgramFolder(), folder), kModule);
    void* const module = dlopen(path.c_str(), RTLD_NOW);
    if (module == nullptr) {
      if (why_not->empty()) *why_not = std::string("the windows cannot be loaded: ") + dlerror();
      continue;
    }
    if (void* const entry = dlsym(module, "HitwickWindowSystem"); entry != nullptr) {
      return reinterpret_cast<decltype(&HitwickWindowSystem)>(entry)();
    }
    *why_not = path + " holds no windows";
  }
  return nullptr;
}

// The windows of the module, which `Start` loads.
class ModuleWindows : public WindowSystem {
 public:
  bool Start(std::string* why_not) override {
    if (windows_ == nullptr) windows_ = LoadModule(why_not);
    return windows_ != nullptr && windows_->Start(why_not);
  }
  void SelectSite() override { windows_->SelectSite(); }
  void ShowConfiguration() override { windows_->ShowConfiguration(); }
  void RunUntilClosed() override { windows_->RunUntilClosed(); }
  void Stop() override {
    if (windows_ != nullptr) windows_->Stop();
  }

 private:
  WindowSystem* windows_ = nullptr;
};

}  // namespace

WindowSystem& TheWindowSystem() {
  static ModuleWindows module;
  return InUse<WindowSystem>(module);
}

}  // namespace platform
