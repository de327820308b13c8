#include "platform/archive.h"
#include "platform/service.h"

namespace platform {
namespace {

class NoArchives : public Archives {
 public:
  bool CanRead() override { return false; }
  std::unique_ptr<InputFile> Unpacked(std::unique_ptr<InputFile>) override { return nullptr; }
};

}  // namespace

Archives& TheArchives() {
  static NoArchives none;
  return InUse<Archives>(none);
}

}  // namespace platform
