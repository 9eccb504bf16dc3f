// The simulated Windows machine the native build runs the library on.
//
// A Machine holds everything the library can observe of one Windows computer: its release and
// version record, registry, language and code pages, computer name, environment, the host
// folder that stands for its drives, and a record of the restart and shutdown requests made
// to it (never acted on). The platform seam's sim backend serves every Win32 call from the
// active machine; host programs (the hostkit tool, the tests) create one, load a profile into
// it and activate it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/sim/live_network.h"
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
// The same names by that rule.
HOSTKIT_API bool NoCaseEqual(const std::string& a, const std::string& b);

// The processors of a machine, as GetSystemInfo, the affinity mask and CPUID report them.
struct ProcessorFacts {
  ULONG_PTR affinityMask = 1;           // processors the process may run on, one bit each
  std::string vendor = "GenuineIntel";  // CPUID leaf 0, twelve characters
  DWORD family = 6;                     // CPUID leaf 1 family, and the processor level
  DWORD mhz = 500;                      // the rate of the time-stamp counter
  bool hasCpuid = true;
  bool hasTimeStampCounter = true;
  // Reading the time-stamp counter raises a processor fault, as where the system reserves the
  // instruction for itself.
  bool timeStampCounterFaults = false;
};

// A drive: its GetDriveTypeA answer (DRIVE_FIXED = 3, ...) and its size in bytes.
struct SimVolume {
  UINT type = 3;
  std::uint64_t totalBytes = 0;
  std::uint64_t freeBytes = 0;
};

// The machine's virtual time, in nanoseconds since it started. Sleep, GetTickCount and the
// performance and time-stamp counters read it, so that waiting and timing cost no real time.
//
// An ordinary thread moves time forward at once. A worker thread the machine started
// (CreateThread) is leashed: it may move time only as far as a thread waiting for it allows,
// which makes a timed wait deterministic. A wait of N ms on a worker lets it run up to N ms of
// virtual time; when the worker would go past that, the wait ends with a time-out and the clock
// stands at its deadline. A worker nobody waits for any longer runs free.
class HOSTKIT_API VirtualClock {
 public:
  // What the clock knows of one worker thread; guarded by the clock.
  struct Leash {
    std::uint64_t limit = 0;   // how far the worker may move time
    std::uint64_t wanted = 0;  // where a parked worker wants to move it
    bool parked = false;       // waiting for a larger limit
    bool free = false;         // no limit any more
    bool finished = false;     // ended (returned or terminated)
    bool killed = false;       // terminated: never runs again
    DWORD exitCode = 0;
  };

  std::uint64_t now() const;
  // Moves time forward by `nanoseconds` on behalf of the calling thread (see above).
  void advance(std::uint64_t nanoseconds);

  std::shared_ptr<Leash> newLeash();
  // Makes the calling thread the worker held by `leash` for the rest of its life.
  void bindCurrentThread(const std::shared_ptr<Leash>& leash);
  // The worker returned `exitCode` (ignored when it was terminated).
  void finish(Leash& leash, DWORD exitCode);
  // Waits up to `milliseconds` of virtual time (INFINITE: without limit) for the worker to
  // finish; true when it did. A worker blocked on something other than the clock is also
  // given up on after the same span of real time.
  bool waitFor(Leash& leash, DWORD milliseconds);
  // Ends the worker: it counts as finished with `exitCode` and never moves time again.
  void kill(Leash& leash, DWORD exitCode);
  // Lets the worker run free.
  void release(Leash& leash);
  // Finished, and the exit code when so.
  bool finished(const Leash& leash, DWORD& exitCode) const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t now_ = 0;
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
  ProcessorFacts processor;
  std::uint64_t performanceFrequency = 3579545;  // counter ticks per second; 0: no counter
  std::uint64_t totalPhysicalMemory = 128ULL << 20;
  // Drives by upper-case letter. A letter not listed whose folder exists under driveRoot is a
  // fixed disk with the host folder's space.
  std::map<char, SimVolume> volumes;
  std::string windowsDirectory = "C:\\WINDOWS";
};

// A module LoadLibraryA can load on the machine: its entry points by name (GetProcAddress
// names are case-sensitive). Later parts of the sim fill the table with the modules a profile
// names (IP Helper, SNMP, ...).
struct SimModule {
  std::map<std::string, FARPROC> entryPoints;
};

// A port of a simulated USB hub and what is plugged into it.
struct SimUsbPort {
  DWORD status = 0;         // connection status: 0 no device, 1 connected, 2 to 5 failures
  bool queryFails = false;  // the port's connection information cannot be read
  WORD vendorId = 0;        // the attached device's descriptor
  WORD productId = 0;
  std::string driverKey;  // the attached device's driver key name; empty: none
  std::string hub;        // the attached hub's device interface name; empty: not a hub
};

// The USB role of a kernel device: a host controller names its driver key and root hub (an
// empty root-hub name makes that query fail); a hub has its ports, numbered from 1.
struct SimUsb {
  enum class Role { None, HostController, Hub };
  Role role = Role::None;
  std::string driverKey;
  std::string rootHub;
  std::vector<SimUsbPort> ports;
};

// A kernel device ("\Device\NAME") a driver serves. A network adapter's driver answers the NDIS
// statistics query from `ndisObjects` (object identifier to data); the supported-list object
// (0x00010101) is answered from the identifiers present unless the profile gives it. A USB host
// controller or hub answers the USB driver stack's requests from `usb`.
struct SimDevice {
  std::map<DWORD, std::vector<BYTE>> ndisObjects;
  SimUsb usb;
};

// A control request sent to a device (DeviceIoControl), as the machine records it.
struct DeviceRequest {
  std::string device;  // the device's name (after "\Device\")
  DWORD controlCode = 0;
  DWORD inSize = 0;
  DWORD outSize = 0;
};

// A service the service control manager knows: its current state (SERVICE_RUNNING, ...).
struct SimService {
  DWORD state = SERVICE_STOPPED;
};

// A window of the machine: a top-level window or a control inside one. It exists from
// `appearsAt` until `disappearsAt` (virtual time in nanoseconds), so that a test can schedule
// a window to come and go while the library waits.
struct SimWindow {
  static constexpr std::uint64_t kNever = ~std::uint64_t{0};

  std::string className;
  std::u16string title;
  bool narrowTitle = false;  // the title reads only as narrow text (GetWindowTextW gives nothing)
  int controlId = 0;         // a control's dialog identifier
  bool visible = true;
  bool closes = true;    // WM_CLOSE destroys a top-level window, as its default handling does
  bool checked = false;  // a button's check state, set by BM_SETCHECK
  std::uint64_t appearsAt = 0;
  std::uint64_t disappearsAt = kNever;
};

// A message posted to a window of the machine (PostMessage). Only WM_CLOSE and BM_SETCHECK act.
struct PostedMessage {
  HWND window = nullptr;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
};

// The machine's windows: top-level windows in Z order (first is topmost), each with its
// controls in order, and the log of posted messages. Windows are only ever added; one that has
// gone keeps its handle, which then names no window.
class HOSTKIT_API WindowTree {
 public:
  // Adds `window` after the existing top-level windows (`parent` null) or after the children
  // of `parent`; its handle, or null when `parent` is unknown.
  HWND add(SimWindow window, HWND parent = nullptr);
  // The window a handle was given to, whether or not it exists now; null for any other value.
  SimWindow* find(HWND handle);
  HWND parent(HWND handle) const;
  // The top-level windows (`parent` null) or the children of `parent`, existing or not.
  std::vector<HWND> children(HWND parent) const;
  // Whether the window and every window above it exist at virtual time `now`.
  bool exists(HWND handle, std::uint64_t now) const;
  std::vector<PostedMessage>& posted() { return posted_; }

 private:
  struct Node {
    SimWindow window;
    HWND parent = nullptr;
    std::vector<HWND> children;
  };
  std::map<HWND, Node> nodes_;
  std::vector<HWND> topLevel_;
  std::vector<PostedMessage> posted_;
  std::uintptr_t nextHandle_ = 0x10010;
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

  VirtualClock& clock() { return clock_; }

  // The generator CoCreateGuid draws from: the same seed on every new machine, so that the
  // identifiers a run makes repeat; reseed it for others.
  std::mt19937_64& guidGenerator() { return guidGenerator_; }

  // Kernel devices by name (the part after "\Device\"), and the DOS device names of the
  // object manager: each name holds its definitions, the one in force first.
  std::map<std::string, SimDevice, NoCaseLess>& devices() { return devices_; }
  std::map<std::string, std::vector<std::string>, NoCaseLess>& dosDevices() { return dosDevices_; }
  // Services by name (NT family).
  std::map<std::string, SimService, NoCaseLess>& services() { return services_; }
  // Instance identifiers of the devices that are present ("PCI\VEN_8086&...\3&...&0&40"), as
  // the device-setup listing reports them; a device key without one is an absent device.
  std::vector<std::string>& presentDevices() { return presentDevices_; }
  // Top-level windows, their controls and the messages posted to them.
  WindowTree& windows() { return windows_; }
  // Every control request sent to a device so far, oldest first.
  std::vector<DeviceRequest>& deviceRequests() { return deviceRequests_; }
  // The TCP/IP state the running stack uses now, and the DHCP servers it reaches.
  LiveNetwork& liveNetwork() { return liveNetwork_; }
  // Command lines of the programs started so far, oldest first (they are not run).
  std::vector<std::string>& startedPrograms() { return startedPrograms_; }

 private:
  MachineFacts facts_;
  std::unique_ptr<RegistryStore> registry_;
  std::vector<ShutdownRequest> shutdownRequests_;
  std::map<std::string, SimModule, NoCaseLess> modules_;
  std::set<std::string, NoCaseLess> enabledPrivileges_;
  VirtualClock clock_;
  std::mt19937_64 guidGenerator_{0x486F73746B6974ULL};
  std::map<std::string, SimDevice, NoCaseLess> devices_;
  std::map<std::string, std::vector<std::string>, NoCaseLess> dosDevices_;
  std::map<std::string, SimService, NoCaseLess> services_;
  std::vector<std::string> presentDevices_;
  WindowTree windows_;
  std::vector<DeviceRequest> deviceRequests_;
  LiveNetwork liveNetwork_;
  std::vector<std::string> startedPrograms_;
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
