/// \file
/// The simulated Windows machine the native build runs the library on.
///
/// A Machine holds everything the library can observe of one Windows computer: its release and
/// version record, registry, language and code pages, computer name, environment, the host
/// folder that stands for its drives, and a record of the restart and shutdown requests made
/// to it (never acted on). The platform seam's sim backend serves every Win32 call from the
/// active machine; host programs (the hostkit tool, the tests) create one, load a profile into
/// it and activate it.
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

/// The Windows releases a machine can be.
enum class Release { Unknown, Win95, Win98, WinME, WinNT4, Win2000, WinXP };

/// "win95", "win98", "winme", "nt40", "win2k", "winxp" (Wine's names), "unknown".
HOSTKIT_API const char* ReleaseName(Release release);
/// The release of one of those names; none for another text.
HOSTKIT_API std::optional<Release> ParseRelease(std::string_view name);
/// Whether the release is Windows 95, 98 or ME.
HOSTKIT_API bool IsWin9xFamily(Release release);

/// What GetVersionEx reports.
struct VersionRecord {
  /// major version
  DWORD major = 0;
  /// minor version
  DWORD minor = 0;
  /// build number
  DWORD build = 0;
  /// VER_PLATFORM_WIN32_WINDOWS or VER_PLATFORM_WIN32_NT
  DWORD platform = 0;
  /// the service text ("Service Pack 2", " C")
  std::string csdVersion;
  /// extended record: service pack major number
  WORD servicePackMajor = 0;
  /// extended record: service pack minor number
  WORD servicePackMinor = 0;
  /// extended record: suite flags (VER_SUITE_PERSONAL, ...)
  WORD suiteMask = 0;
  /// extended record: VER_NT_WORKSTATION, ...
  BYTE productType = 0;
  bool answers = false;          ///< false: GetVersionEx fails
  bool acceptsExtended = false;  ///< whether the 156-byte record is accepted
};

/// The record a typical installation of the release reports.
HOSTKIT_API VersionRecord DefaultVersionRecord(Release release);

/// A restart or shutdown the library asked for (recorded, never acted on).
struct ShutdownRequest {
  std::string call;  ///< "ExitWindowsEx" or "InitiateSystemShutdown"
  /// restart rather than power down
  bool reboot = false;
  /// applications closed without asking
  bool force = false;
  unsigned int flags = 0;  ///< ExitWindowsEx flags
};

/// Case-insensitive ordering, as Windows compares environment variable names.
struct NoCaseLess {
  /// Whether `a` sorts before `b` without regard to ASCII case.
  HOSTKIT_API bool operator()(const std::string& a, const std::string& b) const;
};
/// \cond INTERNAL
// The same names by that rule (the library's own helper, not exported).
bool NoCaseEqual(const std::string& a, const std::string& b);
/// \endcond

/// The processors of a machine, as GetSystemInfo, the affinity mask and CPUID report them.
struct ProcessorFacts {
  ULONG_PTR affinityMask = 1;           ///< processors the process may run on, one bit each
  std::string vendor = "GenuineIntel";  ///< CPUID leaf 0, twelve characters
  DWORD family = 6;                     ///< CPUID leaf 1 family, and the processor level
  DWORD mhz = 500;                      ///< the rate of the time-stamp counter
  /// the CPUID instruction is available
  bool hasCpuid = true;
  /// the time-stamp counter is available
  bool hasTimeStampCounter = true;
  /// reading the time-stamp counter raises a processor fault, as where the system reserves the
  /// instruction for itself
  bool timeStampCounterFaults = false;
};

/// A drive: its GetDriveTypeA answer (DRIVE_FIXED = 3, ...) and its size in bytes.
struct SimVolume {
  /// GetDriveTypeA's answer
  UINT type = 3;
  /// capacity
  std::uint64_t totalBytes = 0;
  /// space free to the caller
  std::uint64_t freeBytes = 0;
};

/// \cond INTERNAL
/// The machine's virtual time, in nanoseconds since it started. Sleep, GetTickCount and the
/// performance and time-stamp counters read it, so that waiting and timing cost no real time.
///
/// An ordinary thread moves time forward at once. A worker thread the machine started
/// (CreateThread) is leashed: it may move time only as far as a thread waiting for it allows,
/// which makes a timed wait deterministic. A wait of N ms on a worker lets it run up to N ms of
/// virtual time; when the worker would go past that, the wait ends with a time-out and the clock
/// stands at its deadline. A worker nobody waits for any longer runs free.
///
/// The clock is the library's own: a program reaches it through Machine::clock() only when it
/// links the library statically, as the tests and the hostkit tool do.
class VirtualClock {
 public:
  /// What the clock knows of one worker thread; guarded by the clock.
  struct Leash {
    std::uint64_t limit = 0;   ///< how far the worker may move time
    std::uint64_t wanted = 0;  ///< where a parked worker wants to move it
    bool parked = false;       ///< waiting for a larger limit
    bool free = false;         ///< no limit any more
    bool finished = false;     ///< ended (returned or terminated)
    bool killed = false;       ///< terminated: never runs again
    DWORD exitCode = 0;
  };

  std::uint64_t now() const;
  /// Moves time forward by `nanoseconds` on behalf of the calling thread (see above).
  void advance(std::uint64_t nanoseconds);

  std::shared_ptr<Leash> newLeash();
  /// Makes the calling thread the worker held by `leash` for the rest of its life.
  void bindCurrentThread(const std::shared_ptr<Leash>& leash);
  /// The worker returned `exitCode` (ignored when it was terminated).
  void finish(Leash& leash, DWORD exitCode);
  /// Waits up to `milliseconds` of virtual time (INFINITE: without limit) for the worker to
  /// finish; true when it did. A worker blocked on something other than the clock is also
  /// given up on after the same span of real time.
  bool waitFor(Leash& leash, DWORD milliseconds);
  /// Ends the worker: it counts as finished with `exitCode` and never moves time again.
  void kill(Leash& leash, DWORD exitCode);
  /// Lets the worker run free.
  void release(Leash& leash);
  /// Finished, and the exit code when so.
  bool finished(const Leash& leash, DWORD& exitCode) const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t now_ = 0;
};
/// \endcond

/// The non-registry facts of a machine, as a profile states them.
struct MachineFacts {
  /// the Windows release
  Release release = Release::Unknown;
  /// what GetVersionEx reports
  VersionRecord version;
  /// GetSystemDefaultLangID
  LANGID language = 1033;
  /// the ANSI code page text is converted with
  UINT ansiCodePage = 1252;
  /// the OEM code page
  UINT oemCodePage = 437;
  /// GetComputerName
  std::string computerName = "HOSTKIT";
  /// environment variables by name
  std::map<std::string, std::string, NoCaseLess> environment;
  /// whether the user is an administrator
  bool administrator = true;
  /// Host folder standing for the machine's drives: drive C: is its subfolder "c".
  std::filesystem::path driveRoot;
  std::string modulePath = "C:\\SETUP\\SETUP.EXE";  ///< GetModuleFileName of the process
  /// the processors
  ProcessorFacts processor;
  std::uint64_t performanceFrequency = 3579545;  ///< counter ticks per second; 0: no counter
  /// installed memory in bytes
  std::uint64_t totalPhysicalMemory = 128ULL << 20;
  /// Drives by upper-case letter. A letter not listed whose folder exists under driveRoot is a
  /// fixed disk with the host folder's space.
  std::map<char, SimVolume> volumes;
  /// GetWindowsDirectory
  std::string windowsDirectory = "C:\\WINDOWS";
};

/// A module LoadLibraryA can load on the machine: its entry points by name (GetProcAddress
/// names are case-sensitive). Later parts of the sim fill the table with the modules a profile
/// names (IP Helper, SNMP, ...).
struct SimModule {
  /// the module's entry points by name
  std::map<std::string, FARPROC> entryPoints;
};

/// A port of a simulated USB hub and what is plugged into it.
struct SimUsbPort {
  DWORD status = 0;         ///< connection status: 0 no device, 1 connected, 2 to 5 failures
  bool queryFails = false;  ///< the port's connection information cannot be read
  WORD vendorId = 0;        ///< the attached device's descriptor
  /// the attached device's product identifier
  WORD productId = 0;
  std::string driverKey;  ///< the attached device's driver key name; empty: none
  std::string hub;        ///< the attached hub's device interface name; empty: not a hub
};

/// The USB role of a kernel device: a host controller names its driver key and root hub (an
/// empty root-hub name makes that query fail); a hub has its ports, numbered from 1.
struct SimUsb {
  /// What the device is to the USB driver stack.
  enum class Role { None, HostController, Hub };
  Role role = Role::None;         ///< none, host controller or hub
  std::string driverKey;          ///< a host controller's driver key name
  std::string rootHub;            ///< a host controller's root hub; empty: the query fails
  std::vector<SimUsbPort> ports;  ///< a hub's ports, numbered from 1
};

/// A kernel device ("\Device\NAME") a driver serves. A network adapter's driver answers the NDIS
/// statistics query from `ndisObjects` (object identifier to data); the supported-list object
/// (0x00010101) is answered from the identifiers present unless the profile gives it. A USB host
/// controller or hub answers the USB driver stack's requests from `usb`.
struct SimDevice {
  /// NDIS objects the driver answers, by identifier
  std::map<DWORD, std::vector<BYTE>> ndisObjects;
  /// the device's USB role
  SimUsb usb;
};

/// A control request sent to a device (DeviceIoControl), as the machine records it.
struct DeviceRequest {
  std::string device;  ///< the device's name (after "\Device\")
  /// the control code
  DWORD controlCode = 0;
  /// bytes sent
  DWORD inSize = 0;
  /// bytes the caller can take back
  DWORD outSize = 0;
};

/// A service the service control manager knows: its current state (SERVICE_RUNNING, ...).
struct SimService {
  /// the service's state
  DWORD state = SERVICE_STOPPED;
};

/// A window of the machine: a top-level window or a control inside one. It exists from
/// `appearsAt` until `disappearsAt` (virtual time in nanoseconds), so that a test can schedule
/// a window to come and go while the library waits.
struct SimWindow {
  /// A time that never comes.
  static constexpr std::uint64_t kNever = ~std::uint64_t{0};

  /// the window class ("Button", "#32770")
  std::string className;
  /// the window text
  std::u16string title;
  bool narrowTitle = false;  ///< the title reads only as narrow text (GetWindowTextW gives nothing)
  int controlId = 0;         ///< a control's dialog identifier
  /// IsWindowVisible
  bool visible = true;
  bool closes = true;    ///< WM_CLOSE destroys a top-level window, as its default handling does
  bool checked = false;  ///< a button's check state, set by BM_SETCHECK
  /// when the window comes into existence
  std::uint64_t appearsAt = 0;
  /// when it goes
  std::uint64_t disappearsAt = kNever;
};

/// A message posted to a window of the machine (PostMessage). Only WM_CLOSE and BM_SETCHECK act.
struct PostedMessage {
  /// the window
  HWND window = nullptr;
  /// the message
  UINT message = 0;
  /// its first parameter
  WPARAM wParam = 0;
  /// its second parameter
  LPARAM lParam = 0;
};

/// The machine's windows: top-level windows in Z order (first is topmost), each with its
/// controls in order, and the log of posted messages. Windows are only ever added; one that has
/// gone keeps its handle, which then names no window.
class HOSTKIT_API WindowTree {
 public:
  /// Adds `window` after the existing top-level windows (`parent` null) or after the children
  /// of `parent`; its handle, or null when `parent` is unknown.
  HWND add(SimWindow window, HWND parent = nullptr);
  /// The window a handle was given to, whether or not it exists now; null for any other value.
  SimWindow* find(HWND handle);
  /// The window a control belongs to; null for a top-level window or an unknown handle.
  HWND parent(HWND handle) const;
  /// The top-level windows (`parent` null) or the children of `parent`, existing or not.
  std::vector<HWND> children(HWND parent) const;
  /// Whether the window and every window above it exist at virtual time `now`.
  bool exists(HWND handle, std::uint64_t now) const;
  /// The messages posted so far, oldest first.
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

/// The state of a present device node as the Configuration Manager reports it (Windows 2000
/// and XP): its status flags, problem code and the name of its physical device object
/// ("\Device\00000042"), under which the resource map keeps its resources.
struct SimDevNode {
  DWORD status = 0x0180200A;  ///< started, driver loaded, enumerated, in the device tree
  DWORD problem = 0;          ///< the problem code, 0 when the device works
  std::string deviceObject;   ///< "\Device\00000042", empty when it has none
};

/// A dial-up device Remote Access can use: its name and its type ("modem", "isdn", "vpn", ...).
struct SimRasDevice {
  std::string name;            ///< e.g. "Standard 56000 bps Modem"
  std::string type = "modem";  ///< "modem", "isdn", "vpn", ...
};

/// A phonebook entry and what dialling it does: after `delayMs` of virtual time it connects
/// (`error` 0) or fails with the Remote Access error `error` (676 busy, 678 no answer, ...).
struct SimRasEntry {
  std::string areaCode;              ///< the area code, empty when none is used
  std::string phoneNumber;           ///< the local number
  DWORD countryCode = 1;             ///< the country code
  std::string deviceType = "modem";  ///< the type of the device it dials with
  std::string deviceName;            ///< the device it dials with
  DWORD delayMs = 2000;              ///< virtual time from dialling to the outcome
  DWORD error = 0;                   ///< 0: connects; else the error the call fails with
};

/// A call Remote Access made: ready at virtual time `readyAt` (nanoseconds), connected then
/// unless `error` says it failed.
struct SimRasConnection {
  HANDLE handle = nullptr;    ///< the connection handle the caller holds
  std::string entry;          ///< the phonebook entry dialled
  std::string deviceName;     ///< the device the call uses
  std::uint64_t readyAt = 0;  ///< virtual time (nanoseconds) of the outcome
  DWORD error = 0;            ///< 0: connected at `readyAt`; else the error it fails with
};

/// Remote Access on the machine: devices, the default phonebook and the calls not hung up.
struct SimRas {
  std::vector<SimRasDevice> devices;                       ///< the dial-up devices
  std::map<std::string, SimRasEntry, NoCaseLess> entries;  ///< the default phonebook
  std::vector<SimRasConnection> connections;               ///< calls not hung up
};

/// Makes one call of a family of seam calls fail as Windows fails it, so that a test can check
/// what the library does with each failure: the N-th call of the family counted from when the
/// plan is armed (from 1) fails with `error`; with `forever` every later call of the family
/// fails too. Registry calls answer the error as their result (ERROR_MORE_DATA only where a
/// buffer is filled, with a size larger than the one given, as when the data keeps growing);
/// module loads, device control requests and file opens fail with the error as the last error.
enum class FaultFamily { Registry, ModuleLoad, DeviceControl, FileOpen };

/// The failure plan of one machine (see FaultFamily): at most one family armed at a time.
class HOSTKIT_API FaultInjection {
 public:
  /// Makes the `n`-th call of `family` from now fail with `error`, and every later one too
  /// when `forever`.
  void arm(FaultFamily family, std::uint64_t n, DWORD error, bool forever = false);
  /// Cancels the plan: no call fails.
  void disarm();
  /// Counts a call of `family`; true when it must fail, with the error to answer.
  bool failNow(FaultFamily family, DWORD& error);
  ///@{
  /// Calls of the armed family counted since it was armed, and whether any of them failed.
  std::uint64_t calls() const;
  bool fired() const;
  ///@}

 private:
  mutable std::mutex mutex_;
  bool armed_ = false;
  FaultFamily family_ = FaultFamily::Registry;
  std::uint64_t n_ = 0;
  DWORD error_ = 0;
  bool forever_ = false;
  std::uint64_t calls_ = 0;
  bool fired_ = false;
};

class RegistryStore;

/// One simulated Windows computer: everything the library can observe of it. Load one from a
/// profile (profile.h) and activate it (ActivateMachine) before calling the library.
class HOSTKIT_API Machine {
 public:
  /// An empty machine of the release, with the release's default version record and the
  /// registry's predefined roots.
  explicit Machine(Release release = Release::Unknown);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  ///@{
  /// The machine's non-registry facts, to read or change.
  MachineFacts& facts() { return facts_; }
  const MachineFacts& facts() const { return facts_; }
  ///@}
  /// The machine's release.
  Release release() const { return facts_.release; }
  /// Whether the release is Windows 95, 98 or ME.
  bool isWin9x() const { return IsWin9xFamily(facts_.release); }

  /// The registry (the library's own store; programs reach it through RegWiz).
  RegistryStore& registry() { return *registry_; }

  /// The restart and shutdown requests made so far, oldest first.
  std::vector<ShutdownRequest>& shutdownRequests() { return shutdownRequests_; }

  /// Modules by file name ("iphlpapi.dll"), matched without regard to case.
  std::map<std::string, SimModule, NoCaseLess>& modules() { return modules_; }

  /// Privileges enabled on the process token so far (AdjustTokenPrivileges), by name.
  std::set<std::string, NoCaseLess>& enabledPrivileges() { return enabledPrivileges_; }

  /// \cond INTERNAL
  VirtualClock& clock() { return clock_; }
  /// \endcond

  /// The generator CoCreateGuid draws from: the same seed on every new machine, so that the
  /// identifiers a run makes repeat; reseed it for others.
  std::mt19937_64& guidGenerator() { return guidGenerator_; }

  ///@{
  /// Kernel devices by name (the part after `\Device\`), and the DOS device names of the
  /// object manager: each name holds its definitions, the one in force first.
  std::map<std::string, SimDevice, NoCaseLess>& devices() { return devices_; }
  std::map<std::string, std::vector<std::string>, NoCaseLess>& dosDevices() { return dosDevices_; }
  ///@}

  /// Services by name (NT family).
  std::map<std::string, SimService, NoCaseLess>& services() { return services_; }
  /// Instance identifiers of the devices that are present ("PCI\VEN_8086&...\3&...&0&40"), as
  /// the device-setup listing reports them; a device key without one is an absent device.
  std::vector<std::string>& presentDevices() { return presentDevices_; }
  /// The state of present device nodes by instance identifier; a present device not listed
  /// has the default state and no device object.
  std::map<std::string, SimDevNode, NoCaseLess>& devNodes() { return devNodes_; }
  /// Remote Access: dial-up devices, phonebook and calls.
  SimRas& ras() { return ras_; }
  /// Top-level windows, their controls and the messages posted to them.
  WindowTree& windows() { return windows_; }
  /// Every control request sent to a device so far, oldest first.
  std::vector<DeviceRequest>& deviceRequests() { return deviceRequests_; }
  /// The TCP/IP state the running stack uses now, and the DHCP servers it reaches.
  LiveNetwork& liveNetwork() { return liveNetwork_; }
  /// Command lines of the programs started so far, oldest first (they are not run).
  std::vector<std::string>& startedPrograms() { return startedPrograms_; }
  /// The failures planned for the seam's calls; none unless armed.
  FaultInjection& faults() { return faults_; }

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
  std::map<std::string, SimDevNode, NoCaseLess> devNodes_;
  SimRas ras_;
  WindowTree windows_;
  std::vector<DeviceRequest> deviceRequests_;
  LiveNetwork liveNetwork_;
  std::vector<std::string> startedPrograms_;
  FaultInjection faults_;
};

/// The machine the seam serves on the calling thread. Never null: before a host program
/// activates one it is an empty machine of unknown release, on which every operation answers its
/// failure value.
HOSTKIT_API std::shared_ptr<Machine> ActiveMachine();
/// Makes `machine` the process-wide active machine (null: back to the empty machine).
HOSTKIT_API void ActivateMachine(std::shared_ptr<Machine> machine);

/// Serves the seam's calls on this thread from `machine` for the scope's lifetime, whatever the
/// process-wide active machine is: lets a loader fill a machine that is not active yet through
/// the same registry calls the library makes.
class HOSTKIT_API ScopedMachine {
 public:
  /// Serves this thread's calls from `machine` until the scope ends.
  explicit ScopedMachine(std::shared_ptr<Machine> machine);
  ~ScopedMachine();
  ScopedMachine(const ScopedMachine&) = delete;
  ScopedMachine& operator=(const ScopedMachine&) = delete;

 private:
  std::shared_ptr<Machine> previous_;
};

}  // namespace Hostkit::sim
