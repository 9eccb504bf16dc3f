// WindowController against a dialog of another thread (a real window under Wine, the machine's
// window tree on the simulation): searches, clicks by posted messages, closing and waiting.
#include "hostkit/window_controller.h"

#include <gtest/gtest.h>

#include "support/test_dialog.h"
#include "support/test_machine.h"

namespace hostkit_test {
namespace {

using Hostkit::WindowController;
using Hostkit::wstring;

const wstring kTitle = HK_WIDE("^Hostkit test dialog$");
const wstring kNoControl;

class WindowControllerTest : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    dialog_ = TestDialog::Open(HK_WIDE("Hostkit test dialog"), 300);
    controller_.SetTimeout(30);  // a broken wait fails instead of hanging
  }
  void TearDown() override {
    dialog_.reset();
    PerRelease::TearDown();
  }

  LPARAM Handle(HWND window) const { return reinterpret_cast<LPARAM>(window); }

  std::unique_ptr<TestDialog> dialog_;
  WindowController controller_;
};

TEST_P(WindowControllerTest, FindsTheDialogAndItsControlsAtAnyDepth) {
  HWND window = controller_.WaitForWindow(kTitle, kNoControl);
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window, dialog_->Window());
  // The radio button sits inside a panel: the search descends into the children's children.
  EXPECT_EQ(controller_.WindowTitlePlusControlTitleToHandle(kTitle, HK_WIDE("^Fast.*")), window);
  EXPECT_EQ(controller_.WaitForWindow(HK_WIDE("test dialog"), HK_WIDE("Next")), window);
  EXPECT_EQ(controller_.WindowTitlePlusControlTitleToHandle(kTitle, HK_WIDE("^Slow")), nullptr);
  EXPECT_EQ(controller_.WindowTitlePlusControlTitleToHandle(HK_WIDE("^Hostkit test$"), kNoControl),
            nullptr);
}

TEST_P(WindowControllerTest, ClicksPostTheControlsCommandAndCheckState) {
  ASSERT_NE(controller_.WaitForWindow(kTitle, HK_WIDE("Fast")), nullptr);
  HWND window = dialog_->Window();
  HWND next = dialog_->NextButton();
  HWND fast = dialog_->FastRadio();

  EXPECT_TRUE(controller_.ClickButton(kTitle, HK_WIDE("^&Next >$")));
  EXPECT_TRUE(controller_.ClickRadioButton(kTitle, HK_WIDE("connection"), true));
  EXPECT_TRUE(dialog_->FastChecked());
  EXPECT_TRUE(controller_.ClickRadioButton(kTitle, HK_WIDE("connection"), false));
  EXPECT_FALSE(dialog_->FastChecked());
  // Without a control there is no identifier to send; an unknown control is no target either.
  EXPECT_FALSE(controller_.ClickButton(kTitle, kNoControl));
  EXPECT_FALSE(controller_.ClickButton(kTitle, HK_WIDE("Cancel")));
  EXPECT_FALSE(controller_.ClickRadioButton(HK_WIDE("^No such dialog$"), HK_WIDE("Fast"), true));

  const std::vector<ReceivedMessage> expected{
      {window, WM_COMMAND, TestDialog::kNextId, Handle(next)},
      {window, WM_COMMAND, TestDialog::kFastId, Handle(fast)},
      {fast, BM_SETCHECK, 1, 0},
      {window, WM_COMMAND, TestDialog::kFastId, Handle(fast)},
      {fast, BM_SETCHECK, 0, 0},
  };
  EXPECT_EQ(dialog_->Received(), expected);
}

TEST_P(WindowControllerTest, ClosedDialogIsWaitedOnUntilGone) {
  ASSERT_NE(controller_.WaitForWindow(kTitle, kNoControl), nullptr);
  HWND window = dialog_->Window();
  controller_.SetTimeout(1);
  EXPECT_FALSE(controller_.WaitOnWindow(kTitle, kNoControl));  // still open at the timeout

  EXPECT_TRUE(controller_.CloseWindow(kTitle, HK_WIDE("Next")));
  controller_.SetTimeout(10);
  EXPECT_TRUE(controller_.WaitOnWindow(kTitle, kNoControl));
  EXPECT_EQ(dialog_->Received(), (std::vector<ReceivedMessage>{{window, WM_CLOSE, 0, 0}}));

  controller_.SetTimeout(1);
  EXPECT_EQ(controller_.WaitForWindow(kTitle, kNoControl), nullptr);
  EXPECT_FALSE(controller_.CloseWindow(kTitle, kNoControl));
}

INSTANTIATE_TEST_SUITE_P(Releases, WindowControllerTest, testing::ValuesIn(AllReleases()),
                         ReleaseParamName);

}  // namespace
}  // namespace hostkit_test
