// The interactive windows, as start-up sees them.
//
// The windows live above everything else (ui/) and bring a toolkit whose libraries take longer to
// load than a nightly run takes. Linux: they are a module beside the program, loaded only when a
// window is wanted; so an unattended run neither loads nor needs the toolkit. Windows: they are
// part of the program. A build without windows has neither.
//
// State: the module, once it is loaded. Called by start-up (app/).
#ifndef HITWICK_PLATFORM_WINDOW_SYSTEM_H_
#define HITWICK_PLATFORM_WINDOW_SYSTEM_H_

#include <string>

namespace platform {

class WindowSystem {
 public:
  virtual ~WindowSystem() = default;
  // Initialises the toolkit, once; from then on message boxes are windows. False, with the reason
  // as a sentence without a full stop, when no window can be shown. Comes before all that follows.
  virtual bool Start(std::string* why_not) = 0;
  // Shows the site selection window and returns when it is closed. Its answer is the name of the
  // site in use.
  virtual void SelectSite() = 0;
  // Shows the configuration window without waiting for it.
  virtual void ShowConfiguration() = 0;
  // Lets the windows live until the last one is closed.
  virtual void RunUntilClosed() = 0;
  // The end of the toolkit; nothing may follow. Without a `Start` nothing happens.
  virtual void Stop() = 0;
};

WindowSystem& TheWindowSystem();

}  // namespace platform

// What the module of the windows offers to the program: its one window system.
extern "C" platform::WindowSystem* HitwickWindowSystem();

#endif  // HITWICK_PLATFORM_WINDOW_SYSTEM_H_
