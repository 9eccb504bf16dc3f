// Shell32 of the simulated machine: SHGetSpecialFolderPathA for the Favorites folder, served as
// an entry point of the "shell32.dll" module every machine starts with.
//
// Where Favorites is: on Windows 9x (without user profiles) "%windir%\Favorites", with windir
// "C:\WINDOWS" when the environment does not name it; on the NT family the user's profile
// folder, %USERPROFILE%, + "\Favorites", with the release's profile folder of the
// Administrator account when USERPROFILE is not set ("C:\WINNT\Profiles\Administrator" on NT 4,
// "C:\Documents and Settings\Administrator" on 2000 and XP). The folder lives in the machine's
// drives; without a drive folder there is no Favorites folder.
#include "platform/shell_folders.h"

#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/standard_modules.h"
#include "platform/sim/shell/host_paths.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

std::string Variable(const Machine& machine, const char* name, const char* fallback) {
  const auto& environment = machine.facts().environment;
  const auto found = environment.find(name);
  return found != environment.end() && !found->second.empty() ? found->second : fallback;
}

std::string FavoritesPath(const Machine& machine) {
  if (machine.isWin9x()) {
    return Variable(machine, "windir", "C:\\WINDOWS") + "\\Favorites";
  }
  const char* profile = machine.release() == Release::WinNT4
                            ? "C:\\WINNT\\Profiles\\Administrator"
                            : "C:\\Documents and Settings\\Administrator";
  return Variable(machine, "USERPROFILE", profile) + "\\Favorites";
}

BOOL WINAPI GetSpecialFolderPath(HWND /*owner*/, char* path, int folder, BOOL create) {
  try {
    auto machine = ActiveMachine();
    if (path == nullptr || folder != platform::kFavoritesFolder ||
        machine->release() == Release::Unknown) {
      platform::SetLastError(ERROR_INVALID_PARAMETER);
      return FALSE;
    }
    const std::string windowsPath = FavoritesPath(*machine);
    auto wide = WidenAnsiPath(windowsPath.c_str());
    auto host = wide ? HostPath(machine->facts(), *wide) : std::nullopt;
    if (!host || windowsPath.size() >= static_cast<std::size_t>(MAX_PATH)) {
      platform::SetLastError(ERROR_PATH_NOT_FOUND);
      return FALSE;
    }
    std::error_code error;
    if (!std::filesystem::is_directory(*host, error) &&
        (create == FALSE || !std::filesystem::create_directories(*host, error))) {
      platform::SetLastError(ERROR_PATH_NOT_FOUND);
      return FALSE;
    }
    std::memcpy(path, windowsPath.c_str(), windowsPath.size() + 1);
    return TRUE;
  } catch (...) {
    platform::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

}  // namespace

void AddStandardModules(Machine& machine) {
  platform::SHGetSpecialFolderPathAProc entry = &GetSpecialFolderPath;
  // Entry points are kept as FARPROC and cast back to their real type by the caller, as
  // GetProcAddress hands them out.
  machine.modules()[platform::kShell32].entryPoints[platform::kSHGetSpecialFolderPathA] =
      reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(entry));
  AddSetupApiModule(machine);
  AddRasModule(machine);
  AddIpHelperModule(machine);
  AddDhcpVxd(machine);
  AddSnmpModules(machine);
}

}  // namespace Hostkit::sim
