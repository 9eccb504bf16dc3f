// hostkit sharing / hostkit cabs: Windows 9x file and print sharing and the set-up source
// folder on the loaded machine. Both exist only on Windows 9x; elsewhere the changes fail.
#include <ostream>
#include <string>

#include "commands.h"
#include "hostkit/cab_files.h"
#include "hostkit/file_and_print_sharing.h"
#include "hostkit/os.h"
#include "hostkit/regwiz.h"

namespace hostkit_tool {

namespace {

constexpr const char* kSetup = "Software\\Microsoft\\Windows\\CurrentVersion\\Setup";

bool OnWin9x(const std::string& what, std::ostream& err) {
  if (Hostkit::OS().IsWin9x()) {
    return true;
  }
  err << "hostkit: " << what << ": only Windows 95, 98 and Me have this setting\n";
  return false;
}

std::string SourcePath() {
  std::string path;
  Hostkit::RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, kSetup, "SourcePath", path);
  return path;
}

}  // namespace

int RunSharingStatus(std::ostream& out, std::ostream& /*err*/) {
  Hostkit::FileAndPrintSharing sharing;
  out << "File sharing: " << (sharing.IsFileSharingEnabled() ? "on" : "off") << "\n"
      << "Print sharing: " << (sharing.IsPrintSharingEnabled() ? "on" : "off") << "\n";
  return 0;
}

int RunSharingOff(std::ostream& out, std::ostream& err) {
  if (!OnWin9x("sharing off", err)) {
    return 1;
  }
  Hostkit::FileAndPrintSharing sharing;
  sharing.DisableFileSharing();
  sharing.DisablePrintSharing();
  // The switches report nothing: what counts is that both halves now read as off.
  return Done(!sharing.IsFileSharingEnabled() && !sharing.IsPrintSharingEnabled(), "sharing off",
              out, err);
}

int RunCabsSet(const std::string& folder, std::ostream& out, std::ostream& err) {
  if (!OnWin9x("cabs set", err)) {
    return 1;
  }
  Hostkit::CabFiles().SetWinCabsLocation(folder.c_str());
  return Done(SourcePath() == folder, "cabs set " + folder, out, err);
}

int RunCabsRestore(std::ostream& out, std::ostream& err) {
  if (!OnWin9x("cabs restore", err)) {
    return 1;
  }
  std::string old;
  if (!Hostkit::RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, "Software\\Tavrin\\Dorsel", "OldSourcePath",
                                   old)) {
    err << "hostkit: cabs restore: no earlier set-up source folder is remembered\n";
    return 1;
  }
  Hostkit::CabFiles().RestoreWinCabsLocation();
  return Done(SourcePath() == old, "cabs restore", out, err);
}

}  // namespace hostkit_tool
