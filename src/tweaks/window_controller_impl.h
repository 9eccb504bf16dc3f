// The implementation object behind WindowController.
#pragma once

#include "hostkit/window_controller.h"

namespace Hostkit {

class WindowController_impl {
 public:
  static constexpr int kNoTimeLimit = 35000000;  // seconds

  void SetTimeout(int seconds) { timeout_ = seconds > 0 ? seconds : kNoTimeLimit; }
  void SetCheckInterval(int milliseconds) { checkInterval_ = milliseconds; }
  void ExcludeInvisibleWindows(bool exclude) { excludeInvisible_ = exclude; }

  HWND WindowTitlePlusControlTitleToHandle(const wstring& title, const wstring& control);
  HWND WaitForWindow(const wstring& title, const wstring& control);
  bool WaitOnWindow(const wstring& title, const wstring& control);
  bool WaitForWindowToComeAndGo(const wstring& title, const wstring& control,
                                bool untimedDisappearance);
  bool CloseWindow(const wstring& title, const wstring& control);
  bool ClickButton(const wstring& title, const wstring& control);
  bool ClickRadioButton(const wstring& title, const wstring& control, bool check);

 private:
  static BOOL CALLBACK MatchWindow(HWND window, LPARAM self);
  // Whether a top-level window (the search's result) matches; when `control_` is not empty it
  // must hold a matching control, which is kept in `foundControl_`.
  bool Matches(HWND window);
  bool FindControl(HWND parent);
  // Pauses for the check interval when it is positive.
  void PauseCheckInterval() const;
  // The search's window if it exists and, with invisible windows excluded, is shown.
  bool Appeared(HWND window) const;
  // The search's window still counts as present while waiting for it to go.
  bool StillThere(HWND window) const;
  // Confirms a disappearance: true when no qualifying window comes back within one check
  // interval, searching every 10 milliseconds.
  bool StaysGone();
  // Searches; true when a window with a control of non-zero dialog identifier `id` is found.
  bool FindClickTarget(const wstring& title, const wstring& control, int& id);
  bool PostCommand(int id) const;

  HWND found_ = nullptr;
  wstring title_;
  wstring control_;
  int timeout_ = kNoTimeLimit;
  int checkInterval_ = 50;
  bool excludeInvisible_ = true;
  HWND foundControl_ = nullptr;  // the matching control of the last search
};

}  // namespace Hostkit
