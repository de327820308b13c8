#include "platform/service.h"
#include "platform/window_system.h"

namespace platform {

// The program is linked with its windows.
WindowSystem& TheWindowSystem() { return InUse<WindowSystem>(*HitwickWindowSystem()); }

}  // namespace platform
