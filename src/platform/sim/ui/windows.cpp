// The simulated machine's windows: the tree of top-level windows and controls, served to the
// user32 calls at the machine's virtual time. Windows 9x has no wide window text: there
// GetWindowTextW reads nothing, as on those releases without the Unicode layer.
#include "platform/windows.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "hostkit/sim/machine.h"
#include "platform/sim/text/codec.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

HWND WindowTree::add(SimWindow window, HWND parent) {
  Node* parentNode = nullptr;
  if (parent != nullptr) {
    const auto found = nodes_.find(parent);
    if (found == nodes_.end()) {
      return nullptr;
    }
    parentNode = &found->second;
  }
  HWND handle = reinterpret_cast<HWND>(nextHandle_);
  nextHandle_ += 4;
  nodes_[handle] = Node{std::move(window), parent, {}};
  (parentNode != nullptr ? parentNode->children : topLevel_).push_back(handle);
  return handle;
}

SimWindow* WindowTree::find(HWND handle) {
  const auto found = nodes_.find(handle);
  return found != nodes_.end() ? &found->second.window : nullptr;
}

HWND WindowTree::parent(HWND handle) const {
  const auto found = nodes_.find(handle);
  return found != nodes_.end() ? found->second.parent : nullptr;
}

std::vector<HWND> WindowTree::children(HWND parent) const {
  if (parent == nullptr) {
    return topLevel_;
  }
  const auto found = nodes_.find(parent);
  return found != nodes_.end() ? found->second.children : std::vector<HWND>{};
}

bool WindowTree::exists(HWND handle, std::uint64_t now) const {
  while (handle != nullptr) {
    const auto found = nodes_.find(handle);
    if (found == nodes_.end()) {
      return false;
    }
    const SimWindow& window = found->second.window;
    if (now < window.appearsAt || now >= window.disappearsAt) {
      return false;
    }
    handle = found->second.parent;
  }
  return true;
}

namespace {

// A window of the active machine that exists now; null (with the last error set) otherwise.
SimWindow* LiveWindow(Machine& machine, HWND handle) {
  if (!machine.windows().exists(handle, machine.clock().now())) {
    platform::SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  return machine.windows().find(handle);
}

// The first window of `candidates` from `start` on that exists now.
HWND FirstLive(Machine& machine, const std::vector<HWND>& candidates,
               std::vector<HWND>::const_iterator start) {
  const std::uint64_t now = machine.clock().now();
  const auto found = std::find_if(start, candidates.end(),
                                  [&](HWND h) { return machine.windows().exists(h, now); });
  return found != candidates.end() ? *found : nullptr;
}

// Copies `text` with a terminator into a buffer of `maxCount` units; the units copied.
template <class Char>
int CopyText(const std::basic_string<Char>& text, Char* buffer, int maxCount) {
  if (buffer == nullptr || maxCount <= 0) {
    return 0;
  }
  const size_t count = std::min(text.size(), static_cast<size_t>(maxCount - 1));
  std::copy_n(text.begin(), count, buffer);
  buffer[count] = Char{};
  return static_cast<int>(count);
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL EnumWindows(WNDENUMPROC callback, LPARAM parameter) {
  if (callback == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  auto machine = sim::ActiveMachine();
  const std::vector<HWND> windows = machine->windows().children(nullptr);
  for (HWND window : windows) {
    if (machine->windows().exists(window, machine->clock().now()) &&
        callback(window, parameter) == FALSE) {
      return FALSE;
    }
  }
  return TRUE;
}

HWND GetWindow(HWND window, UINT command) {
  auto machine = sim::ActiveMachine();
  if (sim::LiveWindow(*machine, window) == nullptr) {
    return nullptr;
  }
  if (command == GW_CHILD) {
    const std::vector<HWND> children = machine->windows().children(window);
    return sim::FirstLive(*machine, children, children.begin());
  }
  if (command == GW_HWNDNEXT) {
    const std::vector<HWND> siblings =
        machine->windows().children(machine->windows().parent(window));
    const auto self = std::find(siblings.begin(), siblings.end(), window);
    return sim::FirstLive(*machine, siblings, self + 1);
  }
  SetLastError(ERROR_INVALID_PARAMETER);
  return nullptr;
}

int GetWindowTextW(HWND window, WCHAR* text, int maxCount) {
  auto machine = sim::ActiveMachine();
  const sim::SimWindow* found = sim::LiveWindow(*machine, window);
  if (found == nullptr) {
    return 0;
  }
  if (machine->isWin9x()) {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return 0;
  }
  return sim::CopyText(found->narrowTitle ? std::u16string() : found->title, text, maxCount);
}

int GetWindowTextA(HWND window, char* text, int maxCount) {
  try {
    auto machine = sim::ActiveMachine();
    const sim::SimWindow* found = sim::LiveWindow(*machine, window);
    return found != nullptr
               ? sim::CopyText(sim::Utf16ToAnsi(*machine, found->title), text, maxCount)
               : 0;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
  }
}

int GetDlgCtrlID(HWND window) {
  auto machine = sim::ActiveMachine();
  const sim::SimWindow* found = sim::LiveWindow(*machine, window);
  return found != nullptr && machine->windows().parent(window) != nullptr ? found->controlId : 0;
}

BOOL IsWindow(HWND window) {
  auto machine = sim::ActiveMachine();
  return machine->windows().exists(window, machine->clock().now()) ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND window) {
  auto machine = sim::ActiveMachine();
  if (!machine->windows().exists(window, machine->clock().now())) {
    return FALSE;
  }
  for (HWND h = window; h != nullptr; h = machine->windows().parent(h)) {
    if (!machine->windows().find(h)->visible) {
      return FALSE;
    }
  }
  return TRUE;
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  try {
    auto machine = sim::ActiveMachine();
    sim::SimWindow* found = sim::LiveWindow(*machine, window);
    if (found == nullptr) {
      return FALSE;
    }
    machine->windows().posted().push_back({window, message, wParam, lParam});
    if (message == WM_CLOSE && found->closes && machine->windows().parent(window) == nullptr) {
      found->disappearsAt = machine->clock().now();
    }
    if (message == BM_SETCHECK) {
      found->checked = wParam == 1;
    }
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

}  // namespace Hostkit::platform
