// WindowController on the simulated machine's window tree: waits measured on the virtual clock,
// hidden windows, the confirmation of a disappearance, search order, narrow titles, and the
// windows of machine profiles.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "hostkit/sim/profile.h"
#include "hostkit/window_controller.h"
#include "support/sim_machine.h"

namespace hostkit_test {
namespace {

using Hostkit::WindowController;
using Hostkit::wstring;
using Hostkit::sim::Machine;
using Hostkit::sim::SimWindow;

const wstring kSetup = HK_WIDE("^Setup$");
const wstring kNone;

constexpr std::uint64_t Ms(std::uint64_t ms) { return ms * 1000000; }

std::uint64_t NowMs(Machine& machine) { return machine.clock().now() / 1000000; }

HWND AddSetup(Machine& machine, std::uint64_t appearsMs, std::uint64_t goneMs = 0,
              bool visible = true) {
  return machine.windows().add({.className = "#32770",
                                .title = HK_WIDE("Setup"),
                                .visible = visible,
                                .appearsAt = Ms(appearsMs),
                                .disappearsAt = goneMs != 0 ? Ms(goneMs) : SimWindow::kNever});
}

// The tree below `parent` as text, one line per window, for comparing two trees.
std::vector<std::string> Flatten(Hostkit::sim::WindowTree& tree, HWND parent,
                                 const std::string& indent = "") {
  std::vector<std::string> lines;
  for (HWND handle : tree.children(parent)) {
    const SimWindow& w = *tree.find(handle);
    std::ostringstream line;
    line << indent << w.className << "|";
    for (char16_t c : w.title) {
      line << static_cast<unsigned>(c) << ".";
    }
    line << "|" << w.narrowTitle << w.visible << w.closes << "|" << w.controlId << "|"
         << w.appearsAt << "|" << w.disappearsAt;
    lines.push_back(line.str());
    for (const std::string& line : Flatten(tree, handle, indent + "  ")) {
      lines.push_back(line);
    }
  }
  return lines;
}

TEST(WindowControllerSim, WaitsForAppearanceUntilTheTimeoutOnTheVirtualClock) {
  auto machine = UseFreshMachine(Release::WinXP);
  AddSetup(*machine, 3200);
  WindowController controller;
  controller.SetTimeout(2);
  EXPECT_EQ(controller.WaitForWindow(kSetup, kNone), nullptr);
  EXPECT_EQ(NowMs(*machine), 2000U);
  // 0 and negative timeouts both bring back the default, which is no practical limit.
  machine->windows().add({.className = "#32770", .title = HK_WIDE("Later"), .appearsAt = Ms(9000)});
  controller.SetTimeout(1);
  controller.SetTimeout(0);
  EXPECT_NE(controller.WaitForWindow(kSetup, kNone), nullptr);
  EXPECT_EQ(NowMs(*machine), 3200U);  // found at the first check after it appeared
  controller.SetTimeout(1);
  controller.SetTimeout(-5);
  EXPECT_NE(controller.WaitForWindow(HK_WIDE("^Later$"), kNone), nullptr);
  EXPECT_EQ(NowMs(*machine), 9000U);
}

TEST(WindowControllerSim, HiddenWindowsCountAsAbsentOnlyWhenExcluded) {
  auto machine = UseFreshMachine(Release::Win2000);
  AddSetup(*machine, 0, 0, false);
  WindowController controller;
  controller.SetTimeout(3);
  EXPECT_EQ(controller.WaitForWindow(kSetup, kNone), nullptr);
  EXPECT_GE(NowMs(*machine), 3000U);
  const std::uint64_t before = NowMs(*machine);
  EXPECT_TRUE(controller.WaitOnWindow(kSetup, kNone));
  EXPECT_LE(NowMs(*machine) - before, 60U);  // one confirmation span, no timeout

  controller.ExcludeInvisibleWindows(false);
  EXPECT_NE(controller.WaitForWindow(kSetup, kNone), nullptr);
  EXPECT_FALSE(controller.WaitOnWindow(kSetup, kNone));
}

// A window that goes and comes back within one check interval (50 ms unless set) has not gone.
TEST(WindowControllerSim, DisappearanceIsConfirmedForOneCheckInterval) {
  struct Case {
    int intervalMs;
    std::uint64_t returnsMs;
    std::uint64_t goneByMs;  // the wait ends at or after this...
    std::uint64_t endsBeforeMs;
  };
  for (const Case& c :
       {Case{50, 1020, 4000, 4100}, Case{50, 1200, 1000, 1100}, Case{300, 1200, 4000, 4700}}) {
    SCOPED_TRACE(testing::Message() << c.intervalMs << " " << c.returnsMs);
    auto machine = UseFreshMachine(Release::WinXP);
    AddSetup(*machine, 0, 1000);
    AddSetup(*machine, c.returnsMs, 4000);
    WindowController controller;
    controller.SetTimeout(10);
    if (c.intervalMs != 50) {
      controller.SetCheckInterval(c.intervalMs);
    }
    EXPECT_TRUE(controller.WaitOnWindow(kSetup, kNone));
    EXPECT_GE(NowMs(*machine), c.goneByMs);
    EXPECT_LT(NowMs(*machine), c.endsBeforeMs);
  }
}

TEST(WindowControllerSim, ComeAndGoShareOneTimeoutUnlessTheDepartureIsUntimed) {
  struct Case {
    int timeout;
    bool untimed;
    bool result;
  };
  for (const Case& c : {Case{5, false, false}, Case{5, true, true}, Case{10, false, true}}) {
    SCOPED_TRACE(testing::Message() << c.timeout << " " << c.untimed);
    auto machine = UseFreshMachine(Release::WinME);
    AddSetup(*machine, 2000, 6000);
    WindowController controller;
    controller.SetTimeout(c.timeout);
    EXPECT_EQ(controller.WaitForWindowToComeAndGo(kSetup, kNone, c.untimed), c.result);
    // The timeout is the caller's again afterwards (whole seconds: within the last one).
    const std::uint64_t before = NowMs(*machine);
    EXPECT_EQ(controller.WaitForWindow(HK_WIDE("^Other$"), kNone), nullptr);
    const std::uint64_t waited = NowMs(*machine) - before;
    EXPECT_GT(waited, static_cast<std::uint64_t>(c.timeout - 1) * 1000);
    EXPECT_LE(waited, static_cast<std::uint64_t>(c.timeout) * 1000);
  }
}

// The first top-level window in Z order that qualifies wins, and below it the first control of
// a depth-first walk: the panel's radio button before the panel's later sibling.
TEST(WindowControllerSim, SearchOrderIsZOrderThenDepthFirst) {
  auto machine = UseFreshMachine(Release::WinXP);
  Hostkit::sim::WindowTree& tree = machine->windows();
  HWND first = AddSetup(*machine, 0);
  tree.add({.className = "Button", .title = HK_WIDE("Cancel"), .controlId = 2}, first);
  HWND second = AddSetup(*machine, 0);
  HWND panel = tree.add({.className = "Static", .title = HK_WIDE("Speed")}, second);
  HWND inner =
      tree.add({.className = "Button", .title = HK_WIDE("Option A"), .controlId = 5}, panel);
  tree.add({.className = "Button", .title = HK_WIDE("Option B"), .controlId = 6}, second);

  WindowController controller;
  EXPECT_EQ(controller.WindowTitlePlusControlTitleToHandle(kSetup, kNone), first);
  EXPECT_EQ(controller.WindowTitlePlusControlTitleToHandle(kSetup, HK_WIDE("Option")), second);
  EXPECT_TRUE(controller.ClickButton(kSetup, HK_WIDE("Option")));
  ASSERT_EQ(tree.posted().size(), 1U);
  EXPECT_EQ(tree.posted()[0].window, second);
  EXPECT_EQ(tree.posted()[0].wParam, 5U);
  EXPECT_EQ(tree.posted()[0].lParam, reinterpret_cast<LPARAM>(inner));
  // A control with no dialog identifier cannot be clicked; nothing is posted.
  EXPECT_FALSE(controller.ClickRadioButton(kSetup, HK_WIDE("^Speed$"), true));
  EXPECT_EQ(tree.posted().size(), 1U);
}

// Windows 9x has no wide window text, and some windows keep only a narrow title: both are found
// through the narrow text in the machine's code page.
TEST(WindowControllerSim, NarrowOnlyTitlesAreFoundOnEveryFamily) {
  for (Release release : {Release::Win98, Release::WinXP}) {
    SCOPED_TRACE(ReleaseTag(release));
    auto machine = UseFreshMachine(release);
    machine->windows().add(
        {.className = "#32770", .title = HK_WIDE("R\u00e9glages"), .narrowTitle = true});
    HWND wide = machine->windows().add({.className = "#32770", .title = HK_WIDE("\u00c9tat")});
    WindowController controller;
    EXPECT_NE(controller.WindowTitlePlusControlTitleToHandle(HK_WIDE("^R\u00e9glages$"), kNone),
              nullptr);
    EXPECT_EQ(controller.WindowTitlePlusControlTitleToHandle(HK_WIDE("^\u00c9tat$"), kNone), wide);
  }
}

TEST(WindowControllerSim, ProfileWindowsLoadWaitAndSurviveASave) {
  std::string error;
  auto machine = Hostkit::sim::LoadMachineProfile(
      std::filesystem::path(HOSTKIT_TEST_MACHINES) / "windows/setup.json", error);
  ASSERT_NE(machine, nullptr) << error;
  Hostkit::sim::ActivateMachine(machine);
  WindowController controller;
  controller.SetTimeout(20);
  EXPECT_NE(controller.WindowTitlePlusControlTitleToHandle(HK_WIDE("^Assistant.*"),
                                                           HK_WIDE("^C\u00e2ble.*")),
            nullptr);
  EXPECT_TRUE(controller.WaitOnWindow(HK_WIDE("^Copying.*"), kNone));  // hidden
  EXPECT_TRUE(controller.WaitForWindowToComeAndGo(HK_WIDE("Settings Change"), kNone, false));
  EXPECT_GE(NowMs(*machine), 8000U);

  const auto folder =
      std::filesystem::temp_directory_path() / ("hostkit-windows-" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  ASSERT_TRUE(Hostkit::sim::SaveMachineProfile(*machine, folder / "saved.json", error)) << error;
  auto reloaded = Hostkit::sim::LoadMachineProfile(folder / "saved.json", error);
  std::filesystem::remove_all(folder);
  ASSERT_NE(reloaded, nullptr) << error;
  EXPECT_EQ(Flatten(machine->windows(), nullptr).size(), 10U);
  EXPECT_EQ(Flatten(reloaded->windows(), nullptr), Flatten(machine->windows(), nullptr));
}

}  // namespace
}  // namespace hostkit_test
