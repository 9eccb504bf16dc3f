// The simulated Windows machine the native build runs the library on.
//
// A Machine holds everything the library can observe of one Windows computer: its release and
// version record, registry, language and code pages, computer name, environment, the host
// folder that stands for its drives, and a record of the restart and shutdown requests made
// to it (never acted on). The platform seam's sim backend serves every Win32 call from the
// active machine; host programs (the hostkit tool, the tests) create one, load a profile into
// it and activate it.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/win_types.h"

namespace Hostkit::sim {

enum class Release { Unknown, Win95, Win98, WinME, WinNT4, Win2000, WinXP };

// "win95", "win98", "winme", "nt40", "win2k", "winxp" (Wine's names), "unknown".
HOSTKIT_API const char* ReleaseName(Release release);
HOSTKIT_API std::optional<Release> ParseRelease(std::string_view name);
HOSTKIT_API bool IsWin9xFamily(Release release);

// What GetVersionEx reports.
struct VersionRecord {
  DWORD major = 0;
  DWORD minor = 0;
  DWORD build = 0;
  DWORD platform = 0;
  std::string csdVersion;
  WORD servicePackMajor = 0;
  WORD servicePackMinor = 0;
  WORD suiteMask = 0;
  BYTE productType = 0;
  bool answers = false;          // false: GetVersionEx fails
  bool acceptsExtended = false;  // whether the 156-byte record is accepted
};

// The record a typical installation of the release reports.
HOSTKIT_API VersionRecord DefaultVersionRecord(Release release);

struct ShutdownRequest {
  std::string call;  // "ExitWindowsEx" or "InitiateSystemShutdown"
  bool reboot = false;
  bool force = false;
  unsigned int flags = 0;  // ExitWindowsEx flags
};

// Case-insensitive ordering, as Windows compares environment variable names.
struct NoCaseLess {
  HOSTKIT_API bool operator()(const std::string& a, const std::string& b) const;
};

// The non-registry facts of a machine, as a profile states them.
struct MachineFacts {
  Release release = Release::Unknown;
  VersionRecord version;
  LANGID language = 1033;
  UINT ansiCodePage = 1252;
  UINT oemCodePage = 437;
  std::string computerName = "HOSTKIT";
  std::map<std::string, std::string, NoCaseLess> environment;
  bool administrator = true;
  // Host folder standing for the machine's drives: drive C: is its subfolder "c".
  std::filesystem::path driveRoot;
  std::string modulePath = "C:\\SETUP\\SETUP.EXE";  // GetModuleFileName of the process
};

// A module LoadLibraryA can load on the machine: its entry points by name (GetProcAddress
// names are case-sensitive). Later parts of the sim fill the table with the modules a profile
// names (IP Helper, SNMP, ...).
struct SimModule {
  std::map<std::string, FARPROC> entryPoints;
};

class RegistryStore;

class HOSTKIT_API Machine {
 public:
  // An empty machine of the release, with the release's default version record and the
  // registry's predefined roots.
  explicit Machine(Release release = Release::Unknown);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  MachineFacts& facts() { return facts_; }
  const MachineFacts& facts() const { return facts_; }
  Release release() const { return facts_.release; }
  bool isWin9x() const { return IsWin9xFamily(facts_.release); }

  RegistryStore& registry() { return *registry_; }

  std::vector<ShutdownRequest>& shutdownRequests() { return shutdownRequests_; }

  // Modules by file name ("iphlpapi.dll"), matched without regard to case.
  std::map<std::string, SimModule, NoCaseLess>& modules() { return modules_; }

  // Privileges enabled on the process token so far (AdjustTokenPrivileges), by name.
  std::set<std::string, NoCaseLess>& enabledPrivileges() { return enabledPrivileges_; }

 private:
  MachineFacts facts_;
  std::unique_ptr<RegistryStore> registry_;
  std::vector<ShutdownRequest> shutdownRequests_;
  std::map<std::string, SimModule, NoCaseLess> modules_;
  std::set<std::string, NoCaseLess> enabledPrivileges_;
};

// The machine the seam serves on the calling thread. Never null: before a host program
// activates one it is an empty machine of unknown release, on which every operation answers its
// failure value.
HOSTKIT_API std::shared_ptr<Machine> ActiveMachine();
// Makes `machine` the process-wide active machine (null: back to the empty machine).
HOSTKIT_API void ActivateMachine(std::shared_ptr<Machine> machine);

// Serves the seam's calls on this thread from `machine` for the scope's lifetime, whatever the
// process-wide active machine is: lets a loader fill a machine that is not active yet through
// the same registry calls the library makes.
class HOSTKIT_API ScopedMachine {
 public:
  explicit ScopedMachine(std::shared_ptr<Machine> machine);
  ~ScopedMachine();
  ScopedMachine(const ScopedMachine&) = delete;
  ScopedMachine& operator=(const ScopedMachine&) = delete;

 private:
  std::shared_ptr<Machine> previous_;
};

}  // namespace Hostkit::sim
