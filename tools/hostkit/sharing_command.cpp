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
  err << "hostkit: " << what << " failed: only Windows 95, 98 and Me have this setting\n";
  return false;
}

std::string SourcePath() {
  std::string path;
  Hostkit::RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, kSetup, "SourcePath", path);
  return path;
}

}  // namespace

int RunSharingStatus(std::ostream& out, std::ostream& /*err*/) {
  Report report;
  if (!Hostkit::OS().IsWin9x()) {
    report.Add("applicable", "file and print sharing", false);
    report.Add("note", "note", "not applicable: only Windows 95, 98 and Me have these switches");
  } else {
    Hostkit::FileAndPrintSharing sharing;
    report.Add("applicable", "applicable", true);
    report.Add("fileSharing", "file sharing", sharing.IsFileSharingEnabled());
    report.Add("printSharing", "print sharing", sharing.IsPrintSharingEnabled());
  }
  report.Print(out);
  return kDone;
}

int RunSharingOff(std::ostream& out, std::ostream& err) {
  if (!OnWin9x("sharing off", err)) {
    return kFailed;
  }
  Hostkit::FileAndPrintSharing sharing;
  sharing.DisableFileSharing();
  sharing.DisablePrintSharing();
  // The switches report nothing: what counts is that both halves now read as off.
  return Done(!sharing.IsFileSharingEnabled() && !sharing.IsPrintSharingEnabled(), "sharing off",
              "a sharing switch still reads as on afterwards", out, err);
}

int RunCabsSet(const std::string& folder, std::ostream& out, std::ostream& err) {
  if (!OnWin9x("cabs set", err)) {
    return kFailed;
  }
  std::string ansi;
  if (!ToAnsi(folder, ansi)) {
    return UsageError("\"" + folder + "\" has no form in the machine's code page", err);
  }
  Hostkit::CabFiles().SetWinCabsLocation(ansi.c_str());
  return Done(SourcePath() == ansi, "cabs set " + folder,
              "the set-up key HKLM\\" + std::string(kSetup) + " is missing", out, err);
}

int RunCabsRestore(std::ostream& out, std::ostream& err) {
  if (!OnWin9x("cabs restore", err)) {
    return kFailed;
  }
  std::string old;
  if (!Hostkit::RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, "Software\\Tavrin\\Dorsel", "OldSourcePath",
                                   old)) {
    return Fail("cabs restore failed: no earlier set-up source folder is remembered", err);
  }
  Hostkit::CabFiles().RestoreWinCabsLocation();
  return Done(SourcePath() == old, "cabs restore", "the set-up source folder did not change back",
              out, err);
}

}  // namespace hostkit_tool
