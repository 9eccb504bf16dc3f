/// \file
/// WindowController: finds other programs' windows by title patterns, waits for them to appear
/// or go, clicks their buttons and radio buttons, and closes them.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class WindowController_impl;

/// Titles are matched with RegExpMatch. `title` selects a top-level window; `control` selects a
/// control anywhere below it, and an empty `control` means the top-level window itself.
class HOSTKIT_API WindowController {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  WindowController();
  WindowController(const WindowController& other);
  WindowController& operator=(const WindowController& other);
  ~WindowController();
  ///@}

  /// Seconds a wait may take; 0 or less restores the default of 35000000 (no practical limit).
  void SetTimeout(int seconds);
  /// Pause between two searches while waiting; 0 or less means none.
  void SetCheckInterval(int milliseconds);
  /// Whether a hidden window counts as absent while waiting (the default).
  void ExcludeInvisibleWindows(bool exclude);

  /// The first top-level window whose title matches (and that holds a matching control); null
  /// when there is none.
  HWND WindowTitlePlusControlTitleToHandle(const wstring& title, const wstring& control);
  /// Waits until such a window exists (and is shown); null at the timeout.
  HWND WaitForWindow(const wstring& title, const wstring& control);
  /// Waits until no such window is left; false when one is still there at the timeout.
  bool WaitOnWindow(const wstring& title, const wstring& control);
  /// WaitForWindow, then WaitOnWindow within what is left of the timeout, or without time limit
  /// when `untimedDisappearance` is true.
  bool WaitForWindowToComeAndGo(const wstring& title, const wstring& control,
                                bool untimedDisappearance);
  /// Posts WM_CLOSE to the window.
  bool CloseWindow(const wstring& title, const wstring& control);
  /// Posts the control's WM_COMMAND to the window; the control pattern must not be empty.
  bool ClickButton(const wstring& title, const wstring& control);
  /// As ClickButton, then posts BM_SETCHECK (checked or not) to the control.
  bool ClickRadioButton(const wstring& title, const wstring& control, bool check);

 private:
  Pimpl<WindowController_impl> impl_;
};

}  // namespace Hostkit
