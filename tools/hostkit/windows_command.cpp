// hostkit windows: the top-level windows and their controls, and WindowController's waits,
// clicks and closing on them.
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>

#include "command_line.h"
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

nlohmann::ordered_json WindowJson(HWND window) {
  namespace platform = Hostkit::platform;
  nlohmann::ordered_json controls = nlohmann::ordered_json::array();
  for (HWND child = platform::GetWindow(window, GW_CHILD); child != nullptr;
       child = platform::GetWindow(child, GW_HWNDNEXT)) {
    nlohmann::ordered_json control = WindowJson(child);
    control["id"] = platform::GetDlgCtrlID(child);
    controls.push_back(control);
  }
  return {{"handle", HandleText(window)},
          {"title", Narrow(Hostkit::WindowTitle(window))},
          {"visible", platform::IsWindowVisible(window) != FALSE},
          {"controls", controls}};
}

BOOL CALLBACK JsonWindow(HWND window, LPARAM list) {
  try {
    reinterpret_cast<nlohmann::ordered_json*>(list)->push_back(WindowJson(window));
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

const char* const kNoMatch = "no visible window (or control) matches the title patterns";

}  // namespace

int RunWindowsList(std::ostream& out, std::ostream& /*err*/) {
  if (JsonOutput()) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    Hostkit::platform::EnumWindows(&JsonWindow, reinterpret_cast<LPARAM>(&list));
    PrintJson(list, out);
    return kDone;
  }
  Hostkit::platform::EnumWindows(&ListWindow, reinterpret_cast<LPARAM>(&out));
  return kDone;
}

int RunWindowsWait(const WindowArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::WindowController controller = Controller(args);
  const Hostkit::wstring title = Wide(args.title);
  const Hostkit::wstring control = Wide(args.control);
  if (args.gone) {
    if (!controller.WaitOnWindow(title, control)) {
      return Fail("the window is still there after " + std::to_string(args.timeout) + " s", err);
    }
    out << "gone\n";
    return kDone;
  }
  HWND window = controller.WaitForWindow(title, control);
  if (window == nullptr) {
    return Fail("no window appeared within " + std::to_string(args.timeout) + " s", err);
  }
  out << "found " << HandleText(window) << " \"" << Narrow(Hostkit::WindowTitle(window)) << "\"\n";
  return kDone;
}

int RunWindowsClick(const WindowArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::WindowController controller = Controller(args);
  const Hostkit::wstring title = Wide(args.title);
  const Hostkit::wstring control = Wide(args.control);
  if (args.radio.empty()) {
    return Done(controller.ClickButton(title, control), "click", kNoMatch, out, err);
  }
  return Done(controller.ClickRadioButton(title, control, args.radio == "on"),
              "radio " + args.radio, kNoMatch, out, err);
}

int RunWindowsClose(const WindowArgs& args, std::ostream& out, std::ostream& err) {
  Hostkit::WindowController controller = Controller(args);
  return Done(controller.CloseWindow(Wide(args.title), Wide(args.control)), "close", kNoMatch, out,
              err);
}

void AddWindowCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  auto args = std::make_shared<WindowArgs>();
  CLI::App* windows = app.add_subcommand("windows", "other programs' windows (WindowController)");
  windows->require_subcommand(1);
  run[AddCommand(*windows, "list", "top-level windows and their controls",
                 "hostkit windows list")] = [&] { return RunWindowsList(out, err); };
  CLI::App* wait = AddCommand(*windows, "wait", "wait for a window to appear or go",
                              "hostkit windows wait \"^Program Manager$\" --gone --timeout 1");
  CLI::App* click = AddCommand(*windows, "click", "click a button or radio button",
                               "hostkit windows click \"^Setup$\" \"^OK$\"");
  CLI::App* close = AddCommand(*windows, "close", "post WM_CLOSE to a window",
                               "hostkit windows close \"^Setup$\"");
  for (CLI::App* command : {wait, click, close}) {
    command->add_option("TITLE", args->title, "window-title pattern")
        ->required()
        ->check(PatternValidator());
    command->add_option("CONTROL", args->control, "control-title pattern")
        ->required(command == click)
        ->check(PatternValidator());
  }
  wait->add_option("--timeout", args->timeout, "seconds, 0 to 86400 (0: no practical limit)")
      ->check(CLI::Range(0, 86400));
  wait->add_option("--interval", args->interval, "milliseconds between checks, 1 to 60000")
      ->check(CLI::Range(1, 60000));
  wait->add_flag("--gone", args->gone, "wait for the window to disappear");
  wait->add_flag("--include-hidden", args->includeHidden, "hidden windows count");
  click->add_option("--radio", args->radio, "on or off: click a radio button")
      ->check(CLI::IsMember({"on", "off"}));
  run[wait] = [args, &out, &err] { return RunWindowsWait(*args, out, err); };
  run[click] = [args, &out, &err] { return RunWindowsClick(*args, out, err); };
  run[close] = [args, &out, &err] { return RunWindowsClose(*args, out, err); };
}

}  // namespace hostkit_tool
