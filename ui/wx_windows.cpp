// The windows as start-up reaches them: the life of the toolkit, and which window comes when.

#include <wx/app.h>
#include <wx/config.h>
#include <wx/fileconf.h>
#include <wx/filename.h>
#include <wx/init.h>
#include <wx/log.h>
#include <wx/persist.h>
#include <wx/stdpaths.h>

#include "config/program.h"
#include "platform/message_box.h"
#include "platform/window_system.h"
#include "ui/frmConfig.h"
#include "ui/frmSite.h"
#include "ui/shown_text.h"
#include "ui/toolkit.h"
#include "ui/window_boxes.h"

namespace ui {
namespace {

// The command line is the program's own; the toolkit does not look at it.
class Application : public wxApp {
 public:
  bool OnInit() override {
    SetAppName(Shown(program::kTitle));
    return true;
  }
};

// Sizes and places of the windows are no site's settings, so they stand in a file of their own.
wxConfigBase* WindowPlaces() {
  wxStandardPaths& paths = wxStandardPaths::Get();
  paths.SetFileLayout(wxStandardPaths::FileLayout_XDG);
  wxFileName file(paths.GetUserConfigDir(), "windows.ini");
  file.AppendDir("hitwick");
  file.Mkdir(wxS_DIR_DEFAULT, wxPATH_MKDIR_FULL);
  return new wxFileConfig("", "", file.GetFullPath(), "", wxCONFIG_USE_LOCAL_FILE);
}

// False when there is no display. What the toolkit has to say of that is said by the program.
bool EntryStarted(int& count, wxChar** arguments) {
  const wxLogNull silence;
  return wxEntryStart(count, arguments);
}

class WxWindows : public platform::WindowSystem {
 public:
  bool Start(std::string* why_not) override {
    if (started_) return true;
    started_ = StartToolkit();
    if (!started_) *why_not = "there is no display to show windows on";
    return started_;
  }

  void SelectSite() override { frmSite().ShowModal(); }

  void ShowConfiguration() override { (new frmConfig)->Show(); }

  void RunUntilClosed() override { wxTheApp->OnRun(); }

  void Stop() override {
    if (!started_) return;
    started_ = false;
    platform::UseMessageBoxes(nullptr);
    delete wxConfigBase::Set(nullptr);
    wxTheApp->OnExit();
    wxEntryCleanup();
  }

 private:
  bool StartToolkit() {
    static wxChar name[] = wxT("hitwick");
    static wxChar* arguments[] = {name, nullptr};
    static int count = 1;
    PrepareToolkit();
    wxApp::SetInstance(new Application);
    if (!EntryStarted(count, arguments) || !wxTheApp->CallOnInit()) return false;
    // Complaints of the toolkit about itself are for the console.
    delete wxLog::SetActiveTarget(new wxLogStderr);
    wxConfigBase::Set(WindowPlaces());
    platform::UseMessageBoxes(&boxes_);
    return true;
  }

  bool started_ = false;
  WindowBoxes boxes_;
};

}  // namespace
}  // namespace ui

platform::WindowSystem* HitwickWindowSystem() {
  static ui::WxWindows windows;
  return &windows;
}
