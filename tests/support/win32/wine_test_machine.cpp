// The tests' machine under Wine: the release the prefix emulates, with the registry keys the
// tests write removed before and after every test so that no test sees another's keys.
#include "hostkit/os.h"
#include "platform/registry.h"
#include "support/test_machine.h"

namespace hostkit_test {

namespace {

Release RunningRelease() {
  switch (Hostkit::OS().Type()) {
    case Hostkit::OS::TYPE_WIN95:
      return Release::Win95;
    case Hostkit::OS::TYPE_WIN98:
      return Release::Win98;
    case Hostkit::OS::TYPE_WINME:
      return Release::WinME;
    case Hostkit::OS::TYPE_WINNT4:
      return Release::WinNT4;
    case Hostkit::OS::TYPE_WIN2000:
      return Release::Win2000;
    case Hostkit::OS::TYPE_WINXP:
      return Release::WinXP;
    case Hostkit::OS::TYPE_UNKNOWN:
      break;
  }
  return Release::Unknown;
}

// Deletes a key and everything below it with the wide calls, which Wine answers on every
// release, so that keys whose names have no ANSI form go too.
void DeleteTree(HKEY parent, const WCHAR* path) {
  HKEY key = nullptr;
  if (Hostkit::platform::RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
    return;
  }
  for (;;) {
    WCHAR name[260];
    DWORD size = 260;
    if (Hostkit::platform::RegEnumKeyExW(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    DeleteTree(key, name);
  }
  Hostkit::platform::RegCloseKey(key);
  Hostkit::platform::RegDeleteKeyW(parent, path);
}

// Every key a test may write lives below one of these.
void ClearTestKeys() {
  DeleteTree(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest"));
  DeleteTree(HKEY_LOCAL_MACHINE, HK_WIDE("Software\\HostkitTest"));
}

}  // namespace

bool OnRealWindows() { return true; }

bool UseRelease(Release release, std::string& whyNot) {
  const Release running = RunningRelease();
  if (release != running) {
    whyNot = "Wine emulates " + ReleaseTag(running) + " in this run";
    return false;
  }
  ClearTestKeys();
  return true;
}

void FinishRelease() { ClearTestKeys(); }

}  // namespace hostkit_test
