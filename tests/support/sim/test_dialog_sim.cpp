// The test dialog as windows of the active simulated machine; what it receives is the machine's
// log of posted messages.
#include <algorithm>

#include "hostkit/sim/machine.h"
#include "support/test_dialog.h"

namespace hostkit_test {

namespace {

class SimDialog : public TestDialog {
 public:
  SimDialog(const Hostkit::wstring& title, unsigned delayMs)
      : machine_(Hostkit::sim::ActiveMachine()) {
    Hostkit::sim::WindowTree& tree = machine_->windows();
    const std::uint64_t appears = machine_->clock().now() + std::uint64_t{delayMs} * 1000000;
    window_ = tree.add({.className = "#32770", .title = title, .appearsAt = appears});
    next_ = tree.add({.className = "Button", .title = HK_WIDE("&Next >"), .controlId = kNextId},
                     window_);
    HWND panel = tree.add({.className = "Static", .title = HK_WIDE("Options")}, window_);
    fast_ = tree.add(
        {.className = "Button", .title = HK_WIDE("Fast connection"), .controlId = kFastId}, panel);
  }

  HWND Window() override { return window_; }
  HWND NextButton() override { return next_; }
  HWND FastRadio() override { return fast_; }

  std::vector<ReceivedMessage> Received() override {
    std::vector<ReceivedMessage> received;
    for (const auto& posted : machine_->windows().posted()) {
      if (posted.window == window_ || posted.window == fast_ || posted.window == next_) {
        received.push_back({posted.window, posted.message, posted.wParam, posted.lParam});
      }
    }
    return received;
  }

  bool FastChecked() override { return machine_->windows().find(fast_)->checked; }

 private:
  std::shared_ptr<Hostkit::sim::Machine> machine_;
  HWND window_ = nullptr;
  HWND next_ = nullptr;
  HWND fast_ = nullptr;
};

}  // namespace

std::unique_ptr<TestDialog> TestDialog::Open(const Hostkit::wstring& title, unsigned delayMs) {
  return std::make_unique<SimDialog>(title, delayMs);
}

}  // namespace hostkit_test
