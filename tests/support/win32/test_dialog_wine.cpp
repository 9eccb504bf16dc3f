// The test dialog as a real window under Wine: a thread registers a window class, creates the
// dialog and its controls after the delay and runs a message loop until the dialog is
// destroyed. The window procedures record the messages of interest; the radio button is
// subclassed so that its BM_SETCHECK is recorded before the button itself handles it.
#include <atomic>
#include <cstdio>
#include <optional>

#include "common/host_thread.h"
#include "support/test_dialog.h"

namespace hostkit_test {

namespace {

constexpr UINT kSync = WM_APP + 1;  // posted behind the test's messages: all before it are handled
constexpr DWORD kPatienceMs = 30000;
const wchar_t kClassName[] = L"HostkitTestDialog";

bool Recorded(UINT message) {
  return message == WM_COMMAND || message == WM_CLOSE || message == BM_SETCHECK;
}

// A lock and the condition its holders wait on, Win32's own (the Win32 thread model's runtime
// has no std::mutex or std::condition_variable).
class Monitor {
 public:
  Monitor() {
    InitializeCriticalSection(&section_);
    InitializeConditionVariable(&changed_);
  }
  ~Monitor() { DeleteCriticalSection(&section_); }
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  class Hold {
   public:
    explicit Hold(Monitor& monitor) : section_(monitor.section_) {
      EnterCriticalSection(&section_);
    }
    ~Hold() { LeaveCriticalSection(&section_); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    CRITICAL_SECTION& section_;
  };

  void NotifyAll() { WakeAllConditionVariable(&changed_); }

  // Waits up to `milliseconds` for `condition`, checked under the lock; true when it holds.
  template <class Condition>
  bool WaitFor(Condition condition, DWORD milliseconds) {
    const Hold hold(*this);
    const ULONGLONG deadline = GetTickCount64() + milliseconds;
    while (!condition()) {
      const ULONGLONG now = GetTickCount64();
      if (now >= deadline ||
          !SleepConditionVariableCS(&changed_, &section_, static_cast<DWORD>(deadline - now))) {
        return condition();
      }
    }
    return true;
  }

 private:
  CRITICAL_SECTION section_;
  CONDITION_VARIABLE changed_;
};

class WineDialog : public TestDialog {
 public:
  WineDialog(Hostkit::wstring title, unsigned delayMs) : title_(std::move(title)), delay_(delayMs) {
    thread_.emplace([this] { Run(); });
  }

  ~WineDialog() override {
    HWND window = Window();
    if (window != nullptr && IsWindow(window)) {
      PostMessageW(window, WM_CLOSE, 0, 0);
    }
    if (thread_) {
      thread_->Join();
    }
  }

  // False when the thread could not create the dialog.
  bool Created() {
    return WaitFor([this] { return created_ || ended_; }) && created_;
  }

  HWND Window() override { return Created() ? window_ : nullptr; }
  HWND NextButton() override { return Created() ? next_ : nullptr; }
  HWND FastRadio() override { return Created() ? fast_ : nullptr; }

  std::vector<ReceivedMessage> Received() override {
    Sync();
    const Monitor::Hold hold(monitor_);
    return received_;
  }

  // A sent message overtakes posted ones: the state is asked only once they were handled.
  bool FastChecked() override {
    return Sync() && SendMessageW(fast_, BM_GETCHECK, 0, 0) == BST_CHECKED;
  }

 private:
  template <class Condition>
  bool WaitFor(Condition condition) {
    return monitor_.WaitFor(condition, kPatienceMs);
  }

  // Waits until the dialog has handled every message posted to it so far, or has ended; true
  // while it still exists.
  bool Sync() {
    if (!Created()) {
      return false;
    }
    const unsigned target = ++syncsPosted_;
    if (PostMessageW(window_, kSync, 0, 0)) {
      return WaitFor([&] { return syncsHandled_ >= target || ended_; }) && !ended_;
    }
    WaitFor([this] { return ended_; });  // destroyed: everything it got is recorded
    return false;
  }

  void Record(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const Monitor::Hold hold(monitor_);
    if (message == kSync) {
      ++syncsHandled_;
    } else if (Recorded(message)) {
      received_.push_back({window, message, wParam, lParam});
    }
    monitor_.NotifyAll();
  }

  static LRESULT CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
      auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
      SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<WineDialog*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr) {
      self->Record(window, message, wParam, lParam);
    }
    if (message == WM_DESTROY) {
      PostQuitMessage(0);
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }

  static LRESULT CALLBACK RadioProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<WineDialog*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    self->Record(window, message, wParam, lParam);
    return CallWindowProcW(self->radioProc_, window, message, wParam, lParam);
  }

  void Run() {
    Sleep(delay_);
    HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &DialogProc;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kClassName;
    RegisterClassW(&windowClass);  // fails harmlessly when an earlier dialog registered it
    HWND window = CreateWindowExW(0, kClassName, title_.c_str(), WS_OVERLAPPEDWINDOW, 10, 10, 320,
                                  200, nullptr, nullptr, instance, this);
    if (window == nullptr) {
      // Wine makes no window when the desktop the process joined has no display driver.
      std::fprintf(stderr, "test dialog: CreateWindowExW failed, error %lu\n", GetLastError());
    } else {
      HWND next = CreateWindowExW(0, L"BUTTON", L"&Next >", WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON,
                                  200, 130, 90, 25, window,
                                  reinterpret_cast<HMENU>(INT_PTR{kNextId}), instance, nullptr);
      HWND panel = CreateWindowExW(0, L"STATIC", L"Options", WS_CHILD | WS_VISIBLE, 10, 10, 280,
                                   100, window, nullptr, instance, nullptr);
      HWND fast = CreateWindowExW(
          0, L"BUTTON", L"Fast connection", WS_CHILD | WS_VISIBLE | BS_AUTORADIOBUTTON, 10, 30, 200,
          20, panel, reinterpret_cast<HMENU>(INT_PTR{kFastId}), instance, nullptr);
      SetWindowLongPtrW(fast, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
      radioProc_ = reinterpret_cast<WNDPROC>(
          SetWindowLongPtrW(fast, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&RadioProc)));
      ShowWindow(window, SW_SHOW);
      const Monitor::Hold hold(monitor_);
      window_ = window;
      next_ = next;
      fast_ = fast;
      created_ = next != nullptr && panel != nullptr && fast != nullptr;
      monitor_.NotifyAll();
    }
    if (created_) {
      MSG message;
      while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
    }
    const Monitor::Hold hold(monitor_);
    ended_ = true;
    monitor_.NotifyAll();
  }

  Hostkit::wstring title_;
  DWORD delay_;
  Monitor monitor_;
  HWND window_ = nullptr;
  HWND next_ = nullptr;
  HWND fast_ = nullptr;
  WNDPROC radioProc_ = nullptr;
  bool created_ = false;
  bool ended_ = false;
  unsigned syncsHandled_ = 0;
  std::atomic<unsigned> syncsPosted_{0};
  std::vector<ReceivedMessage> received_;
  // Last, so that everything the thread uses exists before it starts.
  std::optional<hostkit_common::HostThread> thread_;
};

}  // namespace

std::unique_ptr<TestDialog> TestDialog::Open(const Hostkit::wstring& title, unsigned delayMs) {
  return std::make_unique<WineDialog>(title, delayMs);
}

}  // namespace hostkit_test
