// The commands of the hostkit tool. Each prints its result on `out` and its failure on `err`
// and returns the process exit code (kDone, kFailed or kUsage).
#pragma once

#include <functional>
#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hostkit/win_types.h"

namespace hostkit_tool {

// Makes the machine the commands run on: the profile `file`, or the built-in default machine
// when `file` is empty. False with `error` set when the profile cannot be loaded.
bool UseMachine(const std::string& file, std::string& error);

// `hostkit os`: the release, version, build, service pack, language and administrator facts,
// as the library's OS class reports them.
int RunOs(std::ostream& out, std::ostream& err);

// `hostkit hardware`: processors, speed, vendor, memory and drives, as the library's CPU, RAM
// and Drive report them.
int RunHardware(std::ostream& out, std::ostream& err);

// `hostkit adapters`: the stored TCP/IP configuration of every network adapter (name, cookie,
// type, DHCP or static addresses, DNS, WINS, flags), as a table or as JSON.
int RunAdapters(std::ostream& out, std::ostream& err);

// `hostkit live`: the TCP/IP state every adapter uses now.
int RunLive(std::ostream& out, std::ostream& err);
// `hostkit dns [--raw]`: the DNS servers, domain and search list in use; empty entries of the
// library's list are left out unless `raw`.
int RunDns(bool raw, std::ostream& out, std::ostream& err);
// `hostkit release|renew ADAPTER|--all`: ADAPTER is a hardware address or a number of `hostkit
// live`; the verdict is the library's, from the live state read afterwards.
int RunDhcp(bool renew, const std::string& adapter, bool all, std::ostream& out, std::ostream& err);

// Exit codes: done, the operation failed (with the reason on standard error), usage error.
constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

// Text for printing and from the command line, which speak UTF-8: UTF-16 to UTF-8 (unpaired
// surrogates become U+FFFD), UTF-8 to UTF-16 (empty when the text is not UTF-8), and the
// machine's ANSI code page to UTF-8 (bytes it does not convert become U+FFFD).
std::string Narrow(const Hostkit::wstring& text);
Hostkit::wstring Wide(const std::string& utf8);
std::string FromAnsi(const std::string& ansi);
// UTF-8 to the machine's ANSI code page; false when the text has no exact form there.
bool ToAnsi(const std::string& utf8, std::string& ansi);
// A hardware address in the one form the tool prints: upper-case hex pairs joined by "-".
std::string HardwareAddressText(const std::string& address);
// UTF-8 that converts to UTF-16 and back unchanged.
bool IsUtf8(const std::string& text);

// Prints "WHAT: done" and answers kDone, or reports on `err` that WHAT failed, with `reason`
// when one is given, and answers kFailed.
int Done(bool ok, const std::string& what, std::ostream& out, std::ostream& err);
int Done(bool ok, const std::string& what, const std::string& reason, std::ostream& out,
         std::ostream& err);
// Reports a failure with its reason and answers kFailed.
int Fail(const std::string& reason, std::ostream& err);
// Reports wrong input found after parsing and answers kUsage.
int UsageError(const std::string& what, std::ostream& err);

// The global --json switch: reading commands print one JSON document instead of text.
void SetJsonOutput(bool json);
bool JsonOutput();

// A reading command's answer: fields with a stable JSON key and a label, printed as aligned
// "label  value" lines, or with --json as one object of the keys. Text shows true and false as
// yes and no, null as "-", and lists joined by ", ".
class Report {
 public:
  void Add(const std::string& key, const std::string& label, nlohmann::ordered_json value);
  void Print(std::ostream& out) const;
  const nlohmann::ordered_json& Json() const { return json_; }

 private:
  nlohmann::ordered_json json_ = nlohmann::ordered_json::object();
  std::vector<std::string> labels_;
};
// Prints `document` as the one JSON document of a command.
void PrintJson(const nlohmann::ordered_json& document, std::ostream& out);

// `hostkit adapter ADAPTER ACTION ARGS...`: ADAPTER is a cookie or a number of `hostkit
// adapters`; ACTION is "dhcp", "static IP MASK [GATEWAY]", "dns SERVER...", "domain NAME" or
// "wins SERVER...|off".
int RunAdapterChange(const std::string& adapter, const std::string& action,
                     const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
// `hostkit hostname [NAME]`: prints the TCP/IP host name, or sets it.
int RunHostName(const std::string& name, std::ostream& out, std::ostream& err);
// `hostkit summary`: the adapter counts, the primary adapter and the TCP/IP installation.
int RunSummary(std::ostream& out, std::ostream& err);

// A key named on the command line, "ROOT\path" with ROOT a root key's long or short name.
struct KeyName {
  HKEY root = nullptr;
  std::string path;  // below the root, without a trailing backslash
  std::string full;  // as printed: the root's long name and the path
};
// False when the text does not start with a root key.
bool ParseKeyName(const std::string& text, KeyName& key);

// `hostkit reg query KEY`: the values (name, type, data) and subkeys of KEY, written
// "ROOT\path" with ROOT a root key's long or short name.
int RunRegQuery(const std::string& key, std::ostream& out, std::ostream& err);

// `hostkit proxy ...` and `hostkit ie ...`: the current user's browser settings, read and
// changed on the loaded machine through the library's ConfigureIE.
int RunProxyShow(std::ostream& out, std::ostream& err);
// `args`: HOST PORT for the one proxy of every protocol, PROTOCOL HOST PORT for one protocol.
int RunProxySet(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
// An empty `protocol` clears the one proxy of every protocol.
int RunProxyClear(const std::string& protocol, std::ostream& out, std::ostream& err);
// Sets the exception list (when `list` is given or `local` is empty), then switches local
// bypass when `local` is "on" or "off".
int RunProxyExceptions(const std::vector<std::string>& list, const std::string& local,
                       std::ostream& out, std::ostream& err);
int RunIeShow(std::ostream& out, std::ostream& err);
int RunIeHomePage(const std::string& url, std::ostream& out, std::ostream& err);
int RunIeWizardOff(std::ostream& out, std::ostream& err);

// `hostkit backup KEY... -o FILE`: the keys, with their values and subkeys, saved by the
// library's RegistryBackup into FILE in the format of the machine's release.
int RunBackup(const std::vector<std::string>& keys, const std::string& file, std::ostream& out,
              std::ostream& err);

// `hostkit favorites list|add`: the current user's Favorites through ConfigureIE; list prints
// one "NAME<TAB>URL" line per shortcut.
int RunFavoritesList(std::ostream& out, std::ostream& err);
int RunFavoritesAdd(const std::string& name, const std::string& url, std::ostream& out,
                    std::ostream& err);

// `hostkit mail list|add|remove` and `hostkit identity remove`: Outlook Express accounts and
// identities through ConfigureOE.
struct MailAccountArgs {
  std::string name, pop3, smtp, user, displayName, email, nntp, connectoid, identity;
  bool isDefault = false;
  bool newsOnly = false;
};
int RunMailList(std::ostream& out, std::ostream& err);
// Without an identity the account goes to the default identity's accounts (or the shared list).
int RunMailAdd(const MailAccountArgs& args, std::ostream& out, std::ostream& err);
int RunMailRemove(const std::string& name, const std::string& identity, std::ostream& out,
                  std::ostream& err);
int RunIdentityRemove(const std::string& name, std::ostream& out, std::ostream& err);

// `hostkit tweak broadband`, `hostkit lan on|off|status`: the broadband tuning and the LAN
// switch through BroadbandPerformanceTweak, EnableLAN and IsLANEnabled.
int RunTweakBroadband(std::ostream& out, std::ostream& err);
int RunLan(const std::string& action, std::ostream& out, std::ostream& err);

// `hostkit sharing status|off`, `hostkit cabs set FOLDER|restore`: Windows 9x file and print
// sharing and set-up source folder through FileAndPrintSharing and CabFiles.
int RunSharingStatus(std::ostream& out, std::ostream& err);
int RunSharingOff(std::ostream& out, std::ostream& err);
int RunCabsSet(const std::string& folder, std::ostream& out, std::ostream& err);
int RunCabsRestore(std::ostream& out, std::ostream& err);

// `hostkit windows list|wait|click|close`: the top-level windows with their controls (handle,
// dialog identifier, title), and WindowController's waits, clicks and closing on the windows
// whose titles match the patterns. On the simulation these are the windows of the profile.
struct WindowArgs {
  std::string title, control;
  int timeout = 0;  // seconds; 0: the controller's default
  int interval = 50;
  bool gone = false;
  bool includeHidden = false;
  std::string radio;  // "on" or "off": ClickRadioButton instead of ClickButton
};
int RunWindowsList(std::ostream& out, std::ostream& err);
int RunWindowsWait(const WindowArgs& args, std::ostream& out, std::ostream& err);
int RunWindowsClick(const WindowArgs& args, std::ostream& out, std::ostream& err);
int RunWindowsClose(const WindowArgs& args, std::ostream& out, std::ostream& err);

// `hostkit dialup status|install [--adapters N] [--vpn]|autodial [ENTRY]`: the dial-up
// components, their installers and automatic dialling through DialUp. Install prints the
// command lines of the installers it started.
int RunDialupStatus(std::ostream& out, std::ostream& err);
int RunDialupInstall(int adapters, bool vpn, std::ostream& out, std::ostream& err);
int RunDialupAutodial(const std::string& entry, std::ostream& out, std::ostream& err);
// The command lines of the programs the library has started, oldest first, as the simulated
// machine records them (it does not run them); false on Windows, where they really run.
bool RecordedPrograms(std::vector<std::string>& lines);

// `hostkit devices [CLASS] [--free]`: the devices of CLASS (network, modem, usb, display,
// sound, ports, disk, cdrom) or of every class with their resources, through DeviceManager; with
// --free the interrupts and DMA channels no device holds. An unknown class answers 2.
int RunDevices(const std::string& deviceClass, bool free, std::ostream& out, std::ostream& err);

// `hostkit ras entries|devices|dial ENTRY|hangup ENTRY|error CODE`: the phonebook, the dial-up
// devices and connections, dialling and hanging up, and error texts through RasInterface. A
// failure names the Remote Access error code and its text.
int RunRasEntries(std::ostream& out, std::ostream& err);
int RunRasDevices(std::ostream& out, std::ostream& err);
int RunRasDial(const std::string& entry, unsigned long timeoutSeconds, std::ostream& out,
               std::ostream& err);
int RunRasHangUp(const std::string& entry, std::ostream& out, std::ostream& err);
int RunRasError(unsigned long code, std::ostream& out, std::ostream& err);

// Calls `write` with the Windows path under which the library writes the host file
// `hostFile`. On Windows that is the file itself; the simulated build lets the library write on
// a temporary drive C: of its machine and copies the result to `hostFile`. False with `error`
// set when `write` or the copy fails.
bool WriteHostFile(const std::string& hostFile,
                   const std::function<bool(const Hostkit::wstring&)>& write, std::string& error);

}  // namespace hostkit_tool
