// A dialog of another program for the window tests, on both legs: a top-level window with a
// push button "&Next >" (identifier 1001) and, inside a panel, a radio button "Fast connection"
// (identifier 1002). It records the WM_COMMAND, WM_CLOSE and BM_SETCHECK messages it receives;
// WM_CLOSE destroys it.
//
// On the simulation the dialog is a window of the active machine that appears `delayMs` of
// virtual time after it was opened. Under Wine it is a real window that a thread of its own
// creates after `delayMs` and serves with a message loop until it is destroyed.
#pragma once

#include <memory>
#include <vector>

#include "hostkit/win_types.h"

namespace hostkit_test {

struct ReceivedMessage {
  HWND window = nullptr;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  bool operator==(const ReceivedMessage&) const = default;
};

class TestDialog {
 public:
  static constexpr int kNextId = 1001;
  static constexpr int kFastId = 1002;

  static std::unique_ptr<TestDialog> Open(const Hostkit::wstring& title, unsigned delayMs);
  virtual ~TestDialog() = default;

  // The handles, once the dialog exists (under Wine this waits for it to be created).
  virtual HWND Window() = 0;
  virtual HWND NextButton() = 0;
  virtual HWND FastRadio() = 0;
  // The messages received so far, after every message posted before the call was handled.
  virtual std::vector<ReceivedMessage> Received() = 0;
  // Whether the radio button is checked now.
  virtual bool FastChecked() = 0;
};

}  // namespace hostkit_test
