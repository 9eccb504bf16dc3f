// WindowController: window searches by title patterns, waits, clicks and closing, and the shell
// that forwards to WindowController_impl.
#include <ctime>

#include "foundation/shell_impl.h"
#include "hostkit/patterns.h"
#include "hostkit/strings.h"
#include "platform/time.h"
#include "platform/windows.h"
#include "tweaks/window_controller_impl.h"
#include "tweaks/window_text.h"

namespace Hostkit {

template class Pimpl<WindowController_impl>;

namespace {

constexpr DWORD kConfirmationStepMs = 10;  // pause between searches confirming a departure

std::time_t SecondsSince(std::time_t start) { return platform::time(nullptr) - start; }

}  // namespace

wstring WindowTitle(HWND window) {
  constexpr int kBuffer = 500;
  WCHAR wide[kBuffer] = {};
  const int length = platform::GetWindowTextW(window, wide, kBuffer);
  if (length > 0) {
    return wstring(wide, static_cast<size_t>(length));
  }
  char narrow[kBuffer] = {};
  wstring converted;
  if (platform::GetWindowTextA(window, narrow, kBuffer) > 0) {
    ConvertANSIToUnicode(narrow, converted);
  }
  return converted;
}

BOOL CALLBACK WindowController_impl::MatchWindow(HWND window, LPARAM self) {
  // No exception may unwind through the system's enumeration: a failure ends it unmatched.
  try {
    return reinterpret_cast<WindowController_impl*>(self)->Matches(window) ? FALSE : TRUE;
  } catch (...) {
    return FALSE;
  }
}

bool WindowController_impl::Matches(HWND window) {
  if (!RegExpMatch(title_.c_str(), WindowTitle(window).c_str())) {
    return false;
  }
  if (!control_.empty() && !FindControl(window)) {
    return false;
  }
  found_ = window;
  return true;
}

// Depth first: each child is tested before the children below it.
bool WindowController_impl::FindControl(HWND parent) {
  for (HWND child = platform::GetWindow(parent, GW_CHILD); child != nullptr;
       child = platform::GetWindow(child, GW_HWNDNEXT)) {
    if (RegExpMatch(control_.c_str(), WindowTitle(child).c_str()) || FindControl(child)) {
      if (foundControl_ == nullptr) {
        foundControl_ = child;
      }
      return true;
    }
  }
  return false;
}

HWND WindowController_impl::WindowTitlePlusControlTitleToHandle(const wstring& title,
                                                                const wstring& control) {
  title_ = title;
  control_ = control;
  found_ = nullptr;
  foundControl_ = nullptr;
  platform::EnumWindows(&WindowController_impl::MatchWindow, reinterpret_cast<LPARAM>(this));
  return found_;
}

void WindowController_impl::PauseCheckInterval() const {
  if (checkInterval_ > 0) {
    platform::Sleep(static_cast<DWORD>(checkInterval_));
  }
}

bool WindowController_impl::Appeared(HWND window) const {
  return window != nullptr && platform::IsWindow(window) != FALSE &&
         (!excludeInvisible_ || platform::IsWindowVisible(window) != FALSE);
}

bool WindowController_impl::StillThere(HWND window) const {
  return window != nullptr && (!excludeInvisible_ || (platform::IsWindow(window) != FALSE &&
                                                      platform::IsWindowVisible(window) != FALSE));
}

HWND WindowController_impl::WaitForWindow(const wstring& title, const wstring& control) {
  const std::time_t start = platform::time(nullptr);
  for (;;) {
    HWND window = WindowTitlePlusControlTitleToHandle(title, control);
    if (Appeared(window)) {
      return window;
    }
    PauseCheckInterval();
    if (SecondsSince(start) >= timeout_) {
      window = WindowTitlePlusControlTitleToHandle(title, control);
      return Appeared(window) ? window : nullptr;
    }
  }
}

bool WindowController_impl::StaysGone() {
  const DWORD start = platform::GetTickCount();
  while (checkInterval_ > 0 &&
         platform::GetTickCount() - start < static_cast<DWORD>(checkInterval_)) {
    platform::Sleep(kConfirmationStepMs);
    if (StillThere(WindowTitlePlusControlTitleToHandle(title_, control_))) {
      return false;
    }
  }
  return true;
}

bool WindowController_impl::WaitOnWindow(const wstring& title, const wstring& control) {
  const std::time_t start = platform::time(nullptr);
  while (SecondsSince(start) < timeout_) {
    if (!StillThere(WindowTitlePlusControlTitleToHandle(title, control)) && StaysGone()) {
      return true;
    }
    PauseCheckInterval();
  }
  HWND window = WindowTitlePlusControlTitleToHandle(title, control);
  if (window == nullptr) {
    return true;
  }
  if (!excludeInvisible_) {
    return false;
  }
  return platform::IsWindow(window) == FALSE || platform::IsWindowVisible(window) == FALSE;
}

bool WindowController_impl::WaitForWindowToComeAndGo(const wstring& title, const wstring& control,
                                                     bool untimedDisappearance) {
  const std::time_t start = platform::time(nullptr);
  if (WaitForWindow(title, control) == nullptr) {
    return false;
  }
  const int saved = timeout_;
  // What is left may be 0 or less: the disappearance then gets only the final search.
  timeout_ = untimedDisappearance ? kNoTimeLimit : static_cast<int>(saved - SecondsSince(start));
  const bool gone = WaitOnWindow(title, control);
  timeout_ = saved;
  return gone;
}

bool WindowController_impl::CloseWindow(const wstring& title, const wstring& control) {
  HWND window = WindowTitlePlusControlTitleToHandle(title, control);
  return window != nullptr && platform::PostMessageA(window, WM_CLOSE, 0, 0) != FALSE;
}

bool WindowController_impl::FindClickTarget(const wstring& title, const wstring& control, int& id) {
  if (WindowTitlePlusControlTitleToHandle(title, control) == nullptr || foundControl_ == nullptr) {
    return false;
  }
  id = platform::GetDlgCtrlID(foundControl_);
  return id != 0;
}

// WM_COMMAND as a click sends it: the identifier in the low word, notification code 0 above it,
// and the control's handle.
bool WindowController_impl::PostCommand(int id) const {
  const auto wParam = static_cast<WPARAM>(static_cast<unsigned>(id) & 0xFFFFU);
  return platform::PostMessageA(found_, WM_COMMAND, wParam,
                                reinterpret_cast<LPARAM>(foundControl_)) != FALSE;
}

bool WindowController_impl::ClickButton(const wstring& title, const wstring& control) {
  int id = 0;
  return FindClickTarget(title, control, id) && PostCommand(id);
}

bool WindowController_impl::ClickRadioButton(const wstring& title, const wstring& control,
                                             bool check) {
  int id = 0;
  if (!FindClickTarget(title, control, id)) {
    return false;
  }
  const bool clicked = PostCommand(id);
  const bool checked =
      platform::PostMessageA(foundControl_, BM_SETCHECK, check ? 1 : 0, 0) != FALSE;
  return clicked && checked;
}

WindowController::WindowController() = default;
WindowController::WindowController(const WindowController& other) = default;
WindowController& WindowController::operator=(const WindowController& other) = default;
WindowController::~WindowController() = default;

void WindowController::SetTimeout(int seconds) {
  if (impl_) {
    impl_->SetTimeout(seconds);
  }
}

void WindowController::SetCheckInterval(int milliseconds) {
  if (impl_) {
    impl_->SetCheckInterval(milliseconds);
  }
}

void WindowController::ExcludeInvisibleWindows(bool exclude) {
  if (impl_) {
    impl_->ExcludeInvisibleWindows(exclude);
  }
}

HWND WindowController::WindowTitlePlusControlTitleToHandle(const wstring& title,
                                                           const wstring& control) {
  return Forward(impl_, HWND{}, [&](WindowController_impl& impl) {
    return impl.WindowTitlePlusControlTitleToHandle(title, control);
  });
}

HWND WindowController::WaitForWindow(const wstring& title, const wstring& control) {
  return Forward(impl_, HWND{},
                 [&](WindowController_impl& impl) { return impl.WaitForWindow(title, control); });
}

bool WindowController::WaitOnWindow(const wstring& title, const wstring& control) {
  return Forward(impl_, false,
                 [&](WindowController_impl& impl) { return impl.WaitOnWindow(title, control); });
}

bool WindowController::WaitForWindowToComeAndGo(const wstring& title, const wstring& control,
                                                bool untimedDisappearance) {
  return Forward(impl_, false, [&](WindowController_impl& impl) {
    return impl.WaitForWindowToComeAndGo(title, control, untimedDisappearance);
  });
}

bool WindowController::CloseWindow(const wstring& title, const wstring& control) {
  return Forward(impl_, false,
                 [&](WindowController_impl& impl) { return impl.CloseWindow(title, control); });
}

bool WindowController::ClickButton(const wstring& title, const wstring& control) {
  return Forward(impl_, false,
                 [&](WindowController_impl& impl) { return impl.ClickButton(title, control); });
}

bool WindowController::ClickRadioButton(const wstring& title, const wstring& control, bool check) {
  return Forward(impl_, false, [&](WindowController_impl& impl) {
    return impl.ClickRadioButton(title, control, check);
  });
}

}  // namespace Hostkit
