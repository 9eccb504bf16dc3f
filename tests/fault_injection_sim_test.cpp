// Every public operation on every release's network machine, with the N-th call of one family
// of system calls failing as Windows fails it, for N = 1, 2, 3, ... until the operation runs
// without meeting the failure. Each run must end with the operation's failure value or the
// answer it gives untouched, without an exception; the all-or-nothing operations leave the
// registry as it was when they fail; the sanitizer build adds that nothing leaks.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/adapter_classification.h"
#include "hostkit/broadband_tweak.h"
#include "hostkit/cab_files.h"
#include "hostkit/configure_ie.h"
#include "hostkit/configure_oe.h"
#include "hostkit/device_manager.h"
#include "hostkit/dhcp_release_renew.h"
#include "hostkit/dialup.h"
#include "hostkit/file_and_print_sharing.h"
#include "hostkit/inventory.h"
#include "hostkit/lan_switch.h"
#include "hostkit/live_tcpip.h"
#include "hostkit/os.h"
#include "hostkit/patterns.h"
#include "hostkit/registry_backup.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/profile.h"
#include "hostkit/snmp_query.h"
#include "hostkit/static_tcpip.h"
#include "hostkit/strings.h"
#include "hostkit/usb.h"
#include "hostkit/window_controller.h"
#include "platform/sim/registry/store.h"
#include "support/test_machine.h"

namespace Hostkit {
namespace {

using hostkit_test::Release;

// What an operation changes, and so what a run must put back before the next one.
enum class Changes { Nothing, Registry, Machine };

struct Operation {
  Operation(const char* name, std::function<std::string()> run, Changes changes = Changes::Nothing,
            std::string failure = {}, bool allOrNothing = false)
      : name(name),
        run(std::move(run)),
        changes(changes),
        failure(std::move(failure)),
        allOrNothing(allOrNothing) {}

  const char* name;
  std::function<std::string()> run;  // the answer as text
  Changes changes;
  std::string failure;  // the answer that reports failure; empty: any answer will do
  bool allOrNothing;    // a failure leaves the registry as it was
};

// Answers as text.
std::string Text(bool b) { return b ? "1" : "0"; }
std::string Text(const wstring& w) { return std::string(w.begin(), w.end()); }
std::string Text(const std::string& s) { return s; }
std::string Text(int i) { return std::to_string(i); }
template <class T>
std::string Text(const std::vector<T>& items);
std::string Text(StaticTcpipInfo::AdapterInfo a) {
  return Text(a.Name()) + "|" + Text(a.ServiceName()) + "|" + a.DeviceDriver() + "|" +
         a.StaticIpAddress() + "|" + a.StaticSubnetMask() + "|" + a.StaticDefaultGateway() + "|" +
         a.HardwareAddress() + "|" + a.AdapterType() + "|" + Text(a.StaticNameServers()) + "|" +
         a.StaticDomainName() + "|" + Text(a.UsingDhcp()) + Text(a.IsEthernetAdapter()) +
         Text(a.IsBoundToTcpip()) + Text(a.IsIndirectlyOrDirectlyBoundToTcpip()) +
         Text(a.IsFunctional()) + Text(a.IsAdapterEnabled()) + Text(a.IsDnsStatic()) +
         Text(static_cast<int>(a.GetWinsState())) + Text(a.GetStaticWinsServers());
}
std::string Text(LiveTcpipInfo::AdapterInfo a) {
  return Text(a.Description()) + "|" + Text(a.ServiceName()) + "|" + a.IpAddrress() + "|" +
         a.SubnetMask() + "|" + a.DefaultGateway() + "|" + a.HardwareAddress() + "|" +
         a.DhcpServer() + "|" + a.Cookie() + "|" + Text(a.IsDhcp()) + Text(a.IsEthernetAdapter());
}
std::string Text(const ConfigureOE::AccountInfo& a) {
  return Text(a.accountName) + "|" + Text(a.pop3Server) + "|" + Text(a.smtpServer) + "|" +
         Text(a.emailAddress) + "|" + Text(a.nntpServer) + "|" + Text(a.userName);
}
std::string Text(const ConfigureIE::FavoriteLink& l) { return Text(l.name) + "=" + Text(l.url); }
std::string Text(const CSNMPQuery::Entry& e) { return e.first + "=" + e.second; }
template <class T>
std::string Text(const std::vector<T>& items) {
  std::string text = "[";
  for (const auto& item : items) {
    text += Text(item) + ";";
  }
  return text + "]";
}

template <class Get>
std::string Proxy(Get get) {
  ConfigureIE ie;
  wstring server;
  int port = 0;
  const bool ok = (ie.*get)(server, port);
  return ok ? Text(server) + ":" + Text(port) : "0";
}

std::vector<StaticTcpipInfo::AdapterInfo> StaticAdapters() {
  std::vector<StaticTcpipInfo::AdapterInfo> adapters;
  StaticTcpipInfo().GetAdapterInfo(adapters);
  return adapters;
}

// A setter of the first adapter's stored settings, found before the failures are armed.
template <class Set>
std::function<std::string()> OnFirstAdapter(Set set) {
  return [set] {
    const auto adapters = StaticAdapters();
    if (adapters.empty()) {
      return std::string("none");
    }
    StaticTcpipInfo::AdapterInfo first = adapters.front();
    return Text(set(StaticTcpipInfo(), first.GetCookie()));
  };
}

using Cookie = StaticTcpipInfo::Cookie;
const WCHAR kTitle[] = {'S', 'e', 't', 'u', 'p', 0};

// The operations covered. Every exported class and free function of the library has its
// operations here: RegWiz, OS, RegistryBackup (with RegistryBackupKey), the string conversions,
// GetVersion and FileExists, RegExpMatch and the validators, the adapter classification
// setters and predicates, StaticTcpipInfo, CPU, RAM, Drive, Usb, DeviceManager, LiveTcpipInfo,
// CSNMPQuery, DhcpReleaseRenew, DialUp, ConfigureIE, ConfigureOE, BroadbandPerformanceTweak,
// EnableLAN and IsLANEnabled, WindowController, FileAndPrintSharing and CabFiles.
// New public classes (RasInterface, DeviceManager's further operations) join the list here.
std::vector<Operation> Operations() {
  const wstring tcpip = HK_WIDE("SYSTEM\\CurrentControlSet\\Services\\Tcpip");
  return {
      // Foundation
      {"RegWiz::GetSubKeyNames",
       [] {
         std::vector<std::string> names;
         return Text(RegWiz().GetSubKeyNames(HKEY_LOCAL_MACHINE, "SYSTEM", names)) + Text(names);
       },
       Changes::Nothing, "0[]"},
      {"RegWiz::GetValNames+GetKeyVal",
       [] {
         std::vector<wstring> names;
         wstring value;
         RegWiz wiz;
         const bool ok = wiz.GetValNames(
             HKEY_LOCAL_MACHINE, HK_WIDE("SOFTWARE\\Microsoft\\Windows\\CurrentVersion"), names);
         return Text(ok) + Text(names) +
                Text(wiz.GetKeyVal(HKEY_LOCAL_MACHINE,
                                   HK_WIDE("SOFTWARE\\Microsoft\\Windows\\CurrentVersion"),
                                   HK_WIDE("ProgramFilesDir"), value)) +
                Text(value);
       },
       Changes::Nothing},
      {"RegWiz::SetMultiStringKeyVal",
       [] {
         RegWiz wiz;
         std::vector<std::string> values{"a", "b"};
         std::vector<std::string> back;
         return Text(wiz.CreateKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Fault") &&
                     wiz.SetMultiStringKeyVal(HKEY_LOCAL_MACHINE, "SOFTWARE\\Fault", "m", values) &&
                     wiz.GetMultiStringKeyVal(HKEY_LOCAL_MACHINE, "SOFTWARE\\Fault", "m", back) &&
                     wiz.DeleteKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Fault")) +
                Text(back);
       },
       Changes::Registry},
      {"RegWiz::GetAllSubKeys",
       [] {
         return Text(RegWiz().GetAllSubKeys(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet",
                                            "DisplayName", ""));
       },
       Changes::Nothing},
      {"OS::ExactType+BuildNumber+NTSP",
       [] {
         OS os;
         return Text(static_cast<int>(os.ExactType())) + Text(os.BuildNumber()) + Text(os.NTSP()) +
                Text(os.IsUserAdministrator());
       }},
      {"OS::SystemDefaultLanguage",
       [] {
         unsigned int id = 0;
         char name[16] = {};
         return Text(OS().SystemDefaultLanguage(id, name)) + Text(static_cast<int>(id)) + name;
       }},
      {"OS::AddProgramToStartup",
       [] {
         OS os;
         return Text(os.AddProgramToStartup("C:\\SETUP\\RUN.EXE")) +
                Text(os.RemoveProgramFromStartup("C:\\SETUP\\RUN.EXE"));
       },
       Changes::Registry},
      {"OS::Reboot", [] { return Text(OS().Reboot(false)); }, Changes::Machine},
      {"RegistryBackup::SaveRegistry",
       [] {
         RegistryBackup backup;
         backup.AddRegistryKey(HKEY_LOCAL_MACHINE,
                               HK_WIDE("SYSTEM\\CurrentControlSet\\Services\\Tcpip"));
         RegistryBackupKey key(HK_WIDE("SOFTWARE"), HKEY_LOCAL_MACHINE);
         return Text(backup.SaveRegistry(HK_WIDE("C:\\backup.reg")));
       },
       Changes::Machine, "0"},
      {"ConvertANSIToUnicode+FileExists",
       [] {
         wstring wide;
         std::string back;
         return Text(ConvertANSIToUnicode("caf\xE9", wide) && ConvertUnicodeToANSI(wide, back)) +
                back + Text(ConvertASCIIToUnicode("x", wide) && ConvertUnicodeToASCII(wide, back)) +
                GetVersion() + Text(FileExists("C:\\backup.reg"));
       }},
      {"RegExpMatch+validators",
       [] {
         return Text(RegExpMatch("^[a-z]+$", "abc")) + Text(IsValidIPAddress("10.0.0.1")) +
                Text(IsValidHostName("pc-1")) + Text(IsValidDomainName("example.com"));
       }},
      // Adapter classification
      {"IsNicDescription+DoesMacOrDescBelongToPhysicalAdapter",
       [] {
         SetNicDescriptionAcceptList({HK_WIDE("ethernet")}, true);
         return Text(IsNicDescription("3Com EtherLink")) +
                Text(IsNicDenialDescription("WAN Miniport")) +
                Text(IsNicDeviceDriver("e100b.sys")) +
                Text(DoesMacAddressBelongToPhysicalAdapter("00-07-E9-AB-CD-EF")) +
                Text(DoesMacOrDescBelongToPhysicalAdapter("00-07-E9-AB-CD-EF", "Intel PRO/100"));
       }},
      // Stored TCP/IP
      {"StaticTcpipInfo::GetAdapterInfo",
       [] {
         std::vector<StaticTcpipInfo::AdapterInfo> adapters;
         return Text(StaticTcpipInfo().GetAdapterInfo(adapters)) + Text(adapters);
       },
       Changes::Nothing, "0[]", true},
      {"StaticTcpipInfo::summary",
       [] {
         StaticTcpipInfo info;
         return Text(info.NumNICs()) + Text(info.NumTcpipBoundNICs()) +
                Text(info.NumTcpipBoundAndEnabledNICs()) + Text(info.NumEnabledDhcpNics()) +
                Text(info.IsNonFunctionalNicPresent()) + info.BadNicDescription() +
                Text(info.IsUnknownNicPresent()) + info.UnknownNicDescription() +
                Text(info.GetPrimaryNicIndex(StaticAdapters())) + Text(info.IsTcpipInstalled()) +
                Text(info.NumMicrosoftDialupAdapters()) + Text(info.IsMicrosoftVpnInstalled()) +
                Text(info.IsMsDun13Installad());
       }},
      {"StaticTcpipInfo::GetStaticHostName",
       [] {
         std::string host, id;
         StaticTcpipInfo info;
         return Text(info.GetStaticHostName(host)) + host + Text(info.GetDhcpIdentification(id)) +
                id;
       }},
      {"StaticTcpipInfo::SetStaticHostName",
       [] {
         StaticTcpipInfo info;
         return Text(info.SetStaticHostName("faulty")) + Text(info.SetDhcpIdentification("faulty"));
       },
       Changes::Registry},
      {"StaticTcpipInfo::SetStaticIpAddress",
       OnFirstAdapter([](StaticTcpipInfo info, const Cookie& c) {
         return info.SetStaticIpAddress(c, "10.1.2.3") &&
                info.SetStaticSubnetMask(c, "255.0.0.0") &&
                info.SetStaticDefaultGateway(c, "10.0.0.1");
       }),
       Changes::Registry},
      {"StaticTcpipInfo::EnableDHCP", OnFirstAdapter([](StaticTcpipInfo info, const Cookie& c) {
         return info.EnableDHCP(c, true);
       }),
       Changes::Registry},
      {"StaticTcpipInfo::SetStaticNameServers",
       OnFirstAdapter([](StaticTcpipInfo info, const Cookie& c) {
         return info.MakeDnsStatic(c, true) &&
                info.SetStaticNameServers(c, {"10.0.0.2", "10.0.0.3"}) &&
                info.SetDomainName(c, "example.net");
       }),
       Changes::Registry},
      {"StaticTcpipInfo::SetStaticWinsServers",
       OnFirstAdapter([](StaticTcpipInfo info, const Cookie& c) {
         return info.SetWinsState(c, StaticTcpipInfo::WINS_ENABLED) &&
                info.SetStaticWinsServers(c, {"10.0.0.4"});
       }),
       Changes::Registry},
      {"StaticTcpipInfo::SetTcpipAsDefaultProtocol",
       [] {
         StaticTcpipInfo info;
         return Text(info.SetTcpipAsDefaultProtocol()) + Text(info.EnableIPAC(false)) +
                Text(static_cast<int>(info.GetLastError()));
       },
       Changes::Registry},
      {"StaticTcpipInfo::InstallTcpip",
       [] { return Text(StaticTcpipInfo().InstallTcpip("C:\\CABS")); }, Changes::Machine},
      // Inventory
      {"CPU+RAM",
       [] {
         CPU cpu;
         return Text(cpu.Num()) + Text(cpu.Family()) + Text(cpu.VendorUnicode()) +
                cpu.ProductName() + Text(cpu.ProductNameUnicode()) + Text(RAM().NumMegs());
       }},
      {"Drive",
       [] {
         Drive drive;
         return Text(static_cast<int>(drive.Type('C'))) + Text(drive.IsHard('C')) +
                drive.SystemDrive() + drive.MaxLetter() + drive.Floppy() + drive.CDROM() +
                Text(drive.IsNetwork('Z'));
       }},
      {"Usb+DeviceManager",
       [] {
         Usb usb;
         DeviceManager devices;
         return Text(usb.DoesSupportUsb()) + Text(usb.NumberOfPortsExisting()) +
                Text(usb.NumberOfPortsOpen()) + Text(devices.IsUSBPresent());
       }},
      // Live state and dial-up
      {"LiveTcpipInfo::GetAdapterInfo",
       [] {
         std::vector<LiveTcpipInfo::AdapterInfo> adapters;
         return Text(LiveTcpipInfo().GetAdapterInfo(adapters)) + Text(adapters);
       },
       Changes::Nothing, "0[]"},
      {"LiveTcpipInfo::GetDnsServers",
       [] {
         LiveTcpipInfo live;
         std::vector<std::string> servers;
         wstring domain;
         std::vector<wstring> search;
         return Text(live.GetDnsServers(servers)) + Text(servers) +
                Text(live.GetDomainName(domain)) + Text(domain) +
                Text(live.GetDomainSearchList(search)) + Text(search);
       }},
      {"CSNMPQuery::Walk",
       [] {
         CSNMPQuery query;
         const bool ok = query.IsUsable() && query.Walk("1.3.6.1.2.1.2.2.1", "1.3.6.1.2.1.2.2.2");
         std::string value;
         return Text(ok) + Text(query.Cache()) +
                Text(query.Lookup("1.3.6.1.2.1.2.2.1.2", "1", value)) + value;
       }},
      {"DhcpReleaseRenew::RenewAll",
       [] {
         DhcpReleaseRenew dhcp;
         return Text(dhcp.ReleaseAll()) + Text(dhcp.RenewAll());
       },
       Changes::Machine},
      {"DhcpReleaseRenew::Renew",
       [] {
         DhcpReleaseRenew dhcp;
         return Text(dhcp.Release("00-07-e9-ab-cd-ef")) + Text(dhcp.Renew("00-07-e9-ab-cd-ef"));
       },
       Changes::Machine},
      {"DialUp",
       [] {
         DialUp dialup;
         return Text(dialup.IsMsDun13Installed()) + Text(dialup.IsMicrosoftVpnInstalled()) +
                Text(dialup.NumMicrosoftDialupAdapters());
       }},
      {"DialUp::InstallDialUpAdapters",
       [] {
         DialUp dialup;
         dialup.RemoveDialupAdaptersNotBoundToTcpip();
         return Text(dialup.InstallDialUpAdapters(2)) + Text(dialup.InstallVpn()) +
                Text(dialup.EnableDialUp(HK_WIDE("ISP")));
       },
       Changes::Machine},
      // Internet clients
      {"ConfigureIE::getters",
       [] {
         ConfigureIE ie;
         wstring script, path, version, home;
         int major = 0, minor = 0;
         return Proxy(&ConfigureIE::GetHTTPProxyServer) + Proxy(&ConfigureIE::GetHTTPSProxyServer) +
                Proxy(&ConfigureIE::GetFTPProxyServer) + Proxy(&ConfigureIE::GetGopherProxyServer) +
                Proxy(&ConfigureIE::GetSocksProxyServer) +
                Text(ie.GetAutoConfigurationScript(script)) + Text(script) +
                Text(ie.IsInstalled()) + Text(ie.GetProgramPath(path)) + Text(path) +
                Text(ie.GetVersionString(version)) + Text(version) +
                Text(ie.GetMajorVersion(major)) + Text(major) + Text(ie.GetMinorVersion(minor)) +
                Text(minor) + Text(ie.GetHomePage(home)) + Text(home);
       }},
      {"ConfigureIE::UseProxyServer",
       [] {
         ConfigureIE ie;
         return Text(ie.UseProxyServer(HK_WIDE("proxy"), 8080)) +
                Text(ie.UseHTTPProxyServer(HK_WIDE("h"), 1)) +
                Text(ie.UseHTTPSProxyServer(HK_WIDE("s"), 2)) +
                Text(ie.UseFTPProxyServer(HK_WIDE("f"), 3)) +
                Text(ie.UseGopherProxyServer(HK_WIDE("g"), 4)) +
                Text(ie.UseSocksProxyServer(HK_WIDE("k"), 5)) +
                Text(ie.SetProxyExceptions(HK_WIDE("*.local"))) + Text(ie.EnableLocalBypass(true)) +
                Text(ie.UseAutoConfigurationScript(HK_WIDE("http://wpad/wpad.dat"))) +
                Text(ie.EnableAutomaticSettingDetection(true)) +
                Text(ie.SetHomePage(HK_WIDE("http://home/"))) + Text(ie.DisableConnectionWizard());
       },
       Changes::Registry},
      {"ConfigureIE::AddFavorite",
       [] {
         ConfigureIE ie;
         std::vector<ConfigureIE::FavoriteLink> links;
         const bool added = ie.AddFavorite({HK_WIDE("http://example.com/"), HK_WIDE("Example")});
         return Text(added) + Text(ie.GetFavorites(links)) + Text(links);
       },
       Changes::Machine},
      {"ConfigureOE::GetAccountInfo",
       [] {
         std::vector<ConfigureOE::AccountInfo> accounts;
         return Text(ConfigureOE().GetAccountInfo(accounts)) + Text(accounts);
       }},
      {"ConfigureOE::SetAccount",
       [] {
         ConfigureOE oe;
         ConfigureOE::AccountInfo account;
         account.accountName = HK_WIDE("ISP Mail");
         account.pop3Server = HK_WIDE("pop.isp.example");
         account.smtpServer = HK_WIDE("smtp.isp.example");
         account.emailAddress = HK_WIDE("me@isp.example");
         account.nntpServer = HK_WIDE("news.isp.example");
         return Text(oe.SetAccount(account)) + Text(oe.RemoveAccount(account)) +
                Text(oe.RemoveIdentity(HK_WIDE("Main Identity")));
       },
       Changes::Registry},
      // Tweaks
      {"BroadbandPerformanceTweak",
       [] {
         BroadbandPerformanceTweak tweak;
         return Text(tweak.TweakForPPPOE()) + Text(tweak.TweakForPPPOA()) +
                Text(tweak.TweakForPureEthernet());
       },
       Changes::Registry},
      {"EnableLAN+IsLANEnabled", [] { return Text(EnableLAN(true)) + Text(IsLANEnabled()); },
       Changes::Registry},
      {"FileAndPrintSharing",
       [] {
         FileAndPrintSharing sharing;
         const std::string before =
             Text(sharing.IsFileSharingEnabled()) + Text(sharing.IsPrintSharingEnabled());
         sharing.DisableFileSharing();
         sharing.DisablePrintSharing();
         return before + Text(sharing.IsFileSharingEnabled());
       },
       Changes::Registry},
      {"CabFiles",
       [] {
         CabFiles cabs;
         cabs.SetWinCabsLocation("D:\\WIN98");
         cabs.RestoreWinCabsLocation();
         std::string source;
         RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE,
                            "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup", "SourcePath",
                            source);
         return source;
       },
       Changes::Registry},
      {"WindowController",
       [] {
         WindowController windows;
         windows.SetTimeout(1);
         windows.SetCheckInterval(100);
         windows.ExcludeInvisibleWindows(true);
         return Text(windows.WindowTitlePlusControlTitleToHandle(kTitle, HK_WIDE("")) != nullptr) +
                Text(windows.ClickButton(kTitle, HK_WIDE("OK"))) +
                Text(windows.CloseWindow(kTitle, HK_WIDE("")));
       },
       Changes::Machine},
  };
}

struct Fault {
  const char* name;
  sim::FaultFamily family;
  DWORD error;
  bool forever;
};

constexpr Fault kFaults[] = {
    {"registry access denied", sim::FaultFamily::Registry, ERROR_ACCESS_DENIED, false},
    {"registry out of memory", sim::FaultFamily::Registry, ERROR_OUTOFMEMORY, false},
    {"registry data growing", sim::FaultFamily::Registry, ERROR_MORE_DATA, true},
    {"module load", sim::FaultFamily::ModuleLoad, ERROR_MOD_NOT_FOUND, false},
    {"device control", sim::FaultFamily::DeviceControl, ERROR_GEN_FAILURE, false},
    {"file open", sim::FaultFamily::FileOpen, ERROR_ACCESS_DENIED, false},
};

// More calls of one family than any operation makes on the fixtures.
constexpr std::uint64_t kMaxCalls = 5000;

class FaultSweep : public testing::TestWithParam<Release> {
 protected:
  std::shared_ptr<sim::Machine> Fresh() {
    std::string error;
    auto machine = sim::LoadMachineProfile(std::string(HOSTKIT_TEST_MACHINES) + "/network/" +
                                               hostkit_test::ReleaseTag(GetParam()) + ".json",
                                           error);
    EXPECT_NE(machine, nullptr) << error;
    sim::ActivateMachine(machine);
    return machine;
  }
};

TEST_P(FaultSweep, EveryOperationMeetsEveryFailure) {
  auto machine = Fresh();
  for (const Operation& op : Operations()) {
    const std::string untouched = op.run();
    if (op.changes != Changes::Nothing) {
      machine = Fresh();
    }
    for (const Fault& fault : kFaults) {
      std::uint64_t n = 1;
      for (; n <= kMaxCalls; ++n) {
        const sim::RegistryCheckpoint before = machine->registry().checkpoint();
        const sim::RegistrySnapshot contents = machine->registry().snapshot();
        machine->faults().arm(fault.family, n, fault.error, fault.forever);
        std::string answer;
        EXPECT_NO_THROW(answer = op.run()) << op.name << ", " << fault.name << " at call " << n;
        const bool fired = machine->faults().fired();
        machine->faults().disarm();
        if (!fired) {
          EXPECT_EQ(answer, untouched) << op.name << ", " << fault.name;
        } else if (!op.failure.empty() || op.allOrNothing) {
          EXPECT_TRUE(answer == untouched || answer == op.failure)
              << op.name << ", " << fault.name << " at call " << n << ": " << answer;
        }
        if (fired && op.allOrNothing && answer == op.failure) {
          EXPECT_EQ(machine->registry().snapshot(), contents) << op.name << " at call " << n;
        }
        if (op.changes == Changes::Machine) {
          machine = Fresh();
        } else if (op.changes == Changes::Registry) {
          machine->registry().rollBack(before);
        }
        if (!fired) {
          break;
        }
      }
      EXPECT_LE(n, kMaxCalls) << op.name << " never ran untouched by " << fault.name;
    }
  }
  sim::ActivateMachine(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Releases, FaultSweep, testing::ValuesIn(hostkit_test::AllReleases()),
                         [](const auto& info) { return hostkit_test::ReleaseTag(info.param); });

// The all-or-nothing loaders under the same failures: a profile load gives a machine or an
// error line; an import that fails leaves the registry as it was.
TEST(FaultSweepLoaders, ImportIsAllOrNothing) {
  auto machine = std::make_shared<sim::Machine>(sim::Release::WinXP);
  sim::ActivateMachine(machine);
  const std::string file = std::string(HOSTKIT_TEST_MACHINES) + "/network/winxp.reg";
  for (std::uint64_t n = 1; n <= kMaxCalls; ++n) {
    const sim::RegistrySnapshot before = machine->registry().snapshot();
    machine->faults().arm(sim::FaultFamily::Registry, n, ERROR_ACCESS_DENIED);
    std::string error;
    const bool ok = sim::ImportRegFile(*machine, file, error);
    const bool fired = machine->faults().fired();
    machine->faults().disarm();
    if (!fired) {
      EXPECT_TRUE(ok) << error;
      break;
    }
    EXPECT_FALSE(ok) << "call " << n;
    EXPECT_EQ(error.find('\n'), std::string::npos);
    EXPECT_EQ(machine->registry().snapshot(), before) << "call " << n;
  }
  sim::ActivateMachine(nullptr);
}

}  // namespace
}  // namespace Hostkit
