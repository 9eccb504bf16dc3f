// A set-up program's typical request: a broadband modem was connected, so the computer's one
// network card is switched to DHCP and fetches an address.
//
//   1. enumerate the adapters the registry stores and pick the one network card;
//   2. back up the TCP/IP settings about to change to a .reg file;
//   3. switch the card to DHCP;
//   4. renew its lease and see whether a usable address arrived.
#include "setup_dhcp.h"

#include <hostkit/dhcp_release_renew.h>
#include <hostkit/os.h>
#include <hostkit/registry_backup.h>
#include <hostkit/static_tcpip.h>
#include <hostkit/strings.h>

#include <cstdio>
#include <vector>

namespace {

// The registry key that holds the adapters' stored TCP/IP settings on the running family.
const char* TcpipSettingsKey(Hostkit::OS& os) {
  return os.IsWin9x() ? "System\\CurrentControlSet\\Services\\Class\\NetTrans"
                      : "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters";
}

bool Fail(const char* reason) {
  std::printf("failed: %s\n", reason);
  return false;
}

bool BackUp(Hostkit::OS& os, const std::string& backupFile) {
  Hostkit::wstring key;
  Hostkit::wstring file;
  if (!Hostkit::ConvertANSIToUnicode(TcpipSettingsKey(os), key) ||
      !Hostkit::ConvertANSIToUnicode(backupFile, file)) {
    return false;
  }
  Hostkit::RegistryBackup backup;
  return backup.AddRegistryKey(HKEY_LOCAL_MACHINE, key.c_str()) &&
         backup.SaveRegistry(file.c_str());
}

}  // namespace

bool SwitchNetworkCardToDhcp(const std::string& backupFile) {
  Hostkit::OS os;
  std::printf("Windows %.2f, build %d\n", os.Version(), os.BuildNumber());

  Hostkit::StaticTcpipInfo tcpip;
  std::vector<Hostkit::StaticTcpipInfo::AdapterInfo> adapters;
  if (!tcpip.GetAdapterInfo(adapters)) {
    return Fail("the adapters cannot be read on this system");
  }
  const int primary = tcpip.GetPrimaryNicIndex(adapters);
  if (primary < 0) {
    return Fail("there is not exactly one network card");
  }
  Hostkit::StaticTcpipInfo::AdapterInfo& card = adapters[static_cast<size_t>(primary)];
  const std::string address = card.UsingDhcp() ? "DHCP" : card.StaticIpAddress();
  std::printf("network card %s, address %s\n", card.HardwareAddress().c_str(), address.c_str());

  if (!BackUp(os, backupFile)) {
    return Fail("the TCP/IP settings cannot be backed up");
  }
  std::printf("backed up to %s\n", backupFile.c_str());

  if (!tcpip.EnableDHCP(card.GetCookie(), true)) {
    return Fail("DHCP cannot be switched on");
  }
  std::printf("switched to DHCP\n");

  // Whether an address arrives depends on the network: reported, not judged.
  Hostkit::DhcpReleaseRenew lease;
  std::printf("lease renewed: %s\n", lease.RenewAll() ? "yes" : "no");
  return true;
}
