// Opens and closes every window many times on a real display, on services that only exist in
// memory. Under the sanitizers that shows what a window leaves behind.

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/weakref.h>

#include <string>

#include "app/run_fixture.h"
#include "platform/shell.h"
#include "platform/window_system.h"
#include "tests/fakes/fake_shell.h"
#include "ui/frmConfig.h"
#include "ui/frmFilter.h"
#include "ui/frmFilters.h"
#include "ui/frmNewUsageFolder.h"
#include "ui/frmOnDemand.h"
#include "ui/frmSite.h"

namespace {

constexpr int kTimes = 100;

class Windows : public RunTest {
 protected:
  Windows() {
    UseLoadedSettings();
    for (const char* rule : {"One", "Two", "Three"}) {
      mdlFilters::SetFilter(rule, false, "c-ip", "10.*");
    }
  }

  static void SetUpTestSuite() {
    std::string why_not;
    ASSERT_TRUE(HitwickWindowSystem()->Start(&why_not)) << why_not;
    loop_ = new wxEventLoop;
    wxEventLoopBase::SetActive(loop_);
  }
  static void TearDownTestSuite() {
    wxEventLoopBase::SetActive(nullptr);
    delete loop_;
    HitwickWindowSystem()->Stop();
  }

  // Lets the window appear, then destroys it and lets that be seen through.
  static void OpenAndClose(wxTopLevelWindow* window) {
    const wxWeakRef<wxWindow> alive(window);
    window->Show();
    ProcessEvents();
    window->Destroy();
    ProcessEvents();
    EXPECT_FALSE(alive) << "the window is gone";
  }

  static void ProcessEvents() {
    loop_->YieldFor(wxEVT_CATEGORY_ALL);
    wxTheApp->ProcessIdle();
  }

 private:
  static inline wxEventLoop* loop_ = nullptr;
  fakes::FakeShell shell_;
  platform::Replacement<platform::Shell> shell_replacement_{shell_};
};

TEST_F(Windows, ConfigurationOpensAndCloses) {
  for (int i = 0; i < kTimes; ++i) OpenAndClose(new frmConfig);
}

TEST_F(Windows, SiteSelectionOpensAndCloses) {
  for (int i = 0; i < kTimes; ++i) OpenAndClose(new frmSite);
}

TEST_F(Windows, FiltersOpenAndClose) {
  for (int i = 0; i < kTimes; ++i) OpenAndClose(new frmFilters(nullptr));
}

TEST_F(Windows, FilterOpensAndCloses) {
  for (int i = 0; i < kTimes; ++i) OpenAndClose(new frmFilter(nullptr, ui::NewFilter()));
}

TEST_F(Windows, NewUsageFolderOpensAndCloses) {
  for (int i = 0; i < kTimes; ++i) OpenAndClose(new frmNewUsageFolder(nullptr, "usage"));
}

TEST_F(Windows, OnDemandOpensAndCloses) {
  class NoView : public ui::ConfigurationView {
    void Enable(ui::ConfigControl, bool) override {}
    bool AndView() const override { return false; }
    void ShowStatus(const std::string&) override {}
    void ShowProgress(int, int) override {}
    void ProcessEvents() override {}
    void Close() override {}
  } view;
  ui::Configuration configuration(view);
  for (int i = 0; i < kTimes; ++i) OpenAndClose(new frmOnDemand(nullptr, configuration));
}

}  // namespace
