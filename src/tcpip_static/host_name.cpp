// The machine's TCP/IP host name and its DHCP identification, which is the computer name.
#include <array>

#include "hostkit/os.h"
#include "platform/computer_name.h"
#include "tcpip_static/setters.h"

namespace Hostkit::tcpip {

namespace {

constexpr const char* kMstcp = "System\\CurrentControlSet\\Services\\VxD\\MSTCP";

bool Write(const char* key, const char* name, const std::string& value) {
  return RegWiz().SetKeyVal(HKEY_LOCAL_MACHINE, key, name, value.c_str());
}

// 2000 and XP keep the name in use and the name for the next start ("NV Hostname").
bool SetWin2000XpHostName(const std::string& name) {
  return IsTcpipInstalled() && Write(kNtTcpipParameters, "HostName", name) &&
         Write(kNtTcpipParameters, "NV Hostname", name);
}

bool SetNt4HostName(const std::string& name) {
  return IsTcpipInstalled() && Write(kNtTcpipParameters, "HostName", name);
}

}  // namespace

bool SetStaticHostName(const std::string& name) {
  OS os;
  if (os.IsWin9x()) {
    return IsTcpipInstalled() && Write(kMstcp, "HostName", name);
  }
  if (os.IsWin2000() || os.IsWinXP()) {
    return SetWin2000XpHostName(name);
  }
  if (os.IsWinNT4()) {
    return SetNt4HostName(name);
  }
  return false;
}

bool GetStaticHostName(std::string& name) {
  name.clear();
  OS os;
  const char* key = nullptr;
  const char* value = nullptr;
  if (os.IsWin9x()) {
    key = kMstcp;
    value = "HostName";
  } else if (os.IsWin2000() || os.IsWinXP() || os.IsWinNT4()) {
    key = kNtTcpipParameters;
    value = "Hostname";
  }
  if (key == nullptr || !IsTcpipInstalled()) {
    return false;
  }
  if (!RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, key, value, name)) {
    name.clear();
    return false;
  }
  return true;
}

// The computer name is set for the next start; on the NT family the TCP/IP host name follows
// it, whether or not that can be written.
bool SetDhcpIdentification(const std::string& name) {
  if (platform::SetComputerNameA(name.c_str()) == FALSE) {
    return false;
  }
  OS os;
  if (os.IsWin2000() || os.IsWinXP()) {
    SetWin2000XpHostName(name);
  } else if (os.IsWinNT4()) {
    SetNt4HostName(name);
  }
  return true;
}

bool GetDhcpIdentification(std::string& name) {
  std::array<char, 200> buffer{};
  DWORD size = static_cast<DWORD>(buffer.size());
  if (platform::GetComputerNameA(buffer.data(), &size) == FALSE) {
    name.clear();
    return false;
  }
  name.assign(buffer.data(), size);
  return true;
}

}  // namespace Hostkit::tcpip
