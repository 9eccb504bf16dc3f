// The stored TCP/IP enumeration: one branch per Windows family, and the rules they share.
#pragma once

#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/static_tcpip.h"

namespace Hostkit::tcpip {

using AdapterInfo = StaticTcpipInfo::AdapterInfo;

// Windows 95, 98 and Me: network devices of the Plug and Play tree under "Enum".
void EnumerateWin9x(std::vector<AdapterInfo>& adapters);
// Windows 2000 and XP: network devices under "System\CurrentControlSet\Enum"; on XP only those
// the device-setup listing reports present.
void EnumerateWin2000Xp(bool isXp, std::vector<AdapterInfo>& adapters);
// Windows NT 4: the entries of "SOFTWARE\Microsoft\Windows NT\CurrentVersion\NetworkCards".
void EnumerateNt4(std::vector<AdapterInfo>& adapters);

// Windows 9x: the TCP/IP instance's class key reached from the device or network component at
// `path` through its bindings, following at most `depth` levels; empty when there is none.
std::string FindTcpipBindingKey(RegWiz& registry, const std::string& path, int depth);

// --- shared rules ---

// "System\CurrentControlSet\Services\Tcpip\Parameters": the machine-wide TCP/IP key of the NT
// family.
inline constexpr const char* kNtTcpipParameters =
    "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
// The network cards Windows NT has installed.
inline constexpr const char* kNetworkCards =
    "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards";

// A copy with A to Z lowered.
std::string LowerCase(std::string text);
bool Contains(const std::string& text, const std::string& part);

// The bus enumerator of a device key: the path component after `enumRoot` and a backslash, up to
// the next backslash; empty when there is no further backslash.
std::string BusEnumerator(const std::string& device, const std::string& enumRoot);

// The server tokens of a stored server list: runs of characters other than space and comma.
std::vector<std::string> ServerTokens(const std::string& list);

// Disabled in the current hardware profile: the device key `path` under HKEY_CURRENT_CONFIG has
// a 4-byte "CSConfigFlags" with bit 0 set.
bool IsDisabledInCurrentConfig(RegWiz& registry, const std::string& path);

// The narrow text of a value; empty when it cannot be read.
std::string ReadText(RegWiz& registry, const std::string& path, const char* name);
// The wide text of a value of a key named in narrow text; empty when it cannot be read.
wstring ReadWideText(RegWiz& registry, const std::string& path, const WCHAR* name);

}  // namespace Hostkit::tcpip
