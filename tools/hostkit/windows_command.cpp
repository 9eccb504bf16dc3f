// hostkit windows: the top-level windows and their controls, and WindowController's waits,
// clicks and closing on them.
#include <cstdio>
#include <ostream>
#include <string>

#include "commands.h"
#include "hostkit/window_controller.h"
#include "platform/windows.h"
#include "tweaks/window_text.h"

namespace hostkit_tool {

namespace {

std::string HandleText(HWND window) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llx",
                static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(window)));
  return text;
}

void ListControls(HWND parent, const std::string& indent, std::ostream& out) {
  namespace platform = Hostkit::platform;
  for (HWND child = platform::GetWindow(parent, GW_CHILD); child != nullptr;
       child = platform::GetWindow(child, GW_HWNDNEXT)) {
    out << indent << HandleText(child) << " #" << platform::GetDlgCtrlID(child) << " \""
        << Narrow(Hostkit::WindowTitle(child)) << "\""
        << (platform::IsWindowVisible(child) != FALSE ? "" : " (hidden)") << "\n";
    ListControls(child, indent + "  ", out);
  }
}

BOOL CALLBACK ListWindow(HWND window, LPARAM stream) {
  try {
    auto& out = *reinterpret_cast<std::ostream*>(stream);
    const Hostkit::wstring title = Hostkit::WindowTitle(window);
    out << HandleText(window) << " \"" << Narrow(title) << "\""
        << (Hostkit::platform::IsWindowVisible(window) != FALSE ? "" : " (hidden)") << "\n";
    ListControls(window, "  ", out);
    return TRUE;
  } catch (...) {
    return FALSE;
  }
}

Hostkit::WindowController Controller(const WindowArgs& args) {
  Hostkit::WindowController controller;
  controller.SetTimeout(args.timeout);
  controller.SetCheckInterval(args.interval);
  controller.ExcludeInvisibleWindows(!args.includeHidden);
  return controller;
}

}  // namespace

int RunWindowsList(std::ostream& out, std::ostream& /*err*/) {
  Hostkit::platform::EnumWindows(&ListWindow, reinterpret_cast<LPARAM>(&out));
  return 0;
}

int RunWindowsWait(const WindowArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::WindowController controller = Controller(args);
  const Hostkit::wstring title = Wide(args.title);
  const Hostkit::wstring control = Wide(args.control);
  if (args.gone) {
    if (!controller.WaitOnWindow(title, control)) {
      err << "hostkit: the window is still there after " << args.timeout << " s\n";
      return 1;
    }
    out << "gone\n";
    return 0;
  }
  HWND window = controller.WaitForWindow(title, control);
  if (window == nullptr) {
    err << "hostkit: no window appeared within " << args.timeout << " s\n";
    return 1;
  }
  out << "found " << HandleText(window) << " \"" << Narrow(Hostkit::WindowTitle(window)) << "\"\n";
  return 0;
}

int RunWindowsClick(const WindowArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::WindowController controller = Controller(args);
  const Hostkit::wstring title = Wide(args.title);
  const Hostkit::wstring control = Wide(args.control);
  if (args.radio.empty()) {
    return Done(controller.ClickButton(title, control), "click", out, err);
  }
  return Done(controller.ClickRadioButton(title, control, args.radio == "on"),
              "radio " + args.radio, out, err);
}

int RunWindowsClose(const WindowArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::WindowController controller = Controller(args);
  return Done(controller.CloseWindow(Wide(args.title), Wide(args.control)), "close", out, err);
}

}  // namespace hostkit_tool
