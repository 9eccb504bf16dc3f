// Machine profiles: the fixtures load into the machines they describe, a saved machine loads
// again into an equal one, and every kind of mistake in a profile or in a registry file it
// names is reported as one line naming the file and line at fault.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <tuple>

#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/profile.h"
#include "platform/registry.h"
#include "platform/sim/registry/store.h"

namespace Hostkit::sim {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::filesystem::path kMachines = HOSTKIT_TEST_MACHINES;

void ExpectSameFacts(const MachineFacts& a, const MachineFacts& b) {
  EXPECT_EQ(a.release, b.release);
  EXPECT_EQ(a.version.major, b.version.major);
  EXPECT_EQ(a.version.minor, b.version.minor);
  EXPECT_EQ(a.version.build, b.version.build);
  EXPECT_EQ(a.version.platform, b.version.platform);
  EXPECT_EQ(a.version.csdVersion, b.version.csdVersion);
  EXPECT_EQ(a.version.servicePackMajor, b.version.servicePackMajor);
  EXPECT_EQ(a.version.servicePackMinor, b.version.servicePackMinor);
  EXPECT_EQ(a.version.suiteMask, b.version.suiteMask);
  EXPECT_EQ(a.version.productType, b.version.productType);
  EXPECT_EQ(a.version.answers, b.version.answers);
  EXPECT_EQ(a.version.acceptsExtended, b.version.acceptsExtended);
  EXPECT_EQ(a.language, b.language);
  EXPECT_EQ(a.ansiCodePage, b.ansiCodePage);
  EXPECT_EQ(a.oemCodePage, b.oemCodePage);
  EXPECT_EQ(a.computerName, b.computerName);
  EXPECT_EQ(a.environment, b.environment);
  EXPECT_EQ(a.administrator, b.administrator);
  EXPECT_EQ(a.driveRoot, b.driveRoot);
  EXPECT_EQ(a.modulePath, b.modulePath);
}

// Each test gets a scratch folder of its own: parallel runs of the suite, in this build or
// another one, never share a file.
class Profiles : public testing::Test {
 protected:
  void SetUp() override {
    static const std::string run = std::to_string(std::random_device{}());
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string("hostkit-") + test->test_suite_name() + "." + test->name();
    std::replace(name.begin(), name.end(), '/', '.');
    folder_ = std::filesystem::path(testing::TempDir()) / (name + "." + run);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    ActivateMachine(nullptr);
    std::filesystem::remove_all(folder_);
  }

  std::filesystem::path Write(const std::string& name, const std::string& text) {
    auto path = folder_ / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  std::filesystem::path folder_;
};

TEST_F(Profiles, Windows98FixtureDescribesItsMachine) {
  std::string error;
  const auto machine = LoadMachineProfile(kMachines / "win98.json", error);
  ASSERT_NE(machine, nullptr) << error;
  const MachineFacts& facts = machine->facts();
  EXPECT_EQ(facts.release, Release::Win98);
  // Left out of the profile: the release's own version record.
  EXPECT_EQ(facts.version.minor, 10u);
  EXPECT_EQ(facts.version.csdVersion, " A ");
  EXPECT_EQ(facts.language, 1031);
  EXPECT_EQ(facts.oemCodePage, 850u);
  EXPECT_EQ(facts.computerName, "FAMILIE");
  EXPECT_EQ(facts.environment.at("path"), "C:\\WINDOWS;C:\\WINDOWS\\COMMAND");
  EXPECT_EQ(facts.modulePath, "D:\\SETUP.EXE");
  EXPECT_TRUE(std::filesystem::exists(facts.driveRoot / "c" / "autoexec.bat"));

  // The library sees the release and the registry, 9x-only root included.
  ActivateMachine(machine);
  OS os;
  EXPECT_EQ(os.ExactType(), OS::EXACT_WIN98_A);
  RegWiz registry;
  std::string text;
  EXPECT_TRUE(registry.GetKeyVal(HKEY_CURRENT_USER,
                                 "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings",
                                 "ProxyServer", text));
  EXPECT_EQ(text, "proxy.t-online.de:80");
  std::vector<unsigned char> allocation;
  EXPECT_TRUE(registry.GetBinaryKeyVal(HKEY_DYN_DATA, "Config Manager\\Enum\\C29A1B20",
                                       "Allocation", allocation));
  EXPECT_EQ(allocation.size(), 55u);
  EXPECT_TRUE(registry.DoesKeyExist(HKEY_LOCAL_MACHINE,
                                    "System\\CurrentControlSet\\Services\\RemoteAccess"));
}

TEST_F(Profiles, WindowsXpFixtureReadsBothRegistryFormats) {
  std::string error;
  const auto machine = LoadMachineProfile(kMachines / "winxp.json", error);
  ASSERT_NE(machine, nullptr) << error;
  EXPECT_EQ(machine->facts().version.csdVersion, "Service Pack 1");
  EXPECT_EQ(machine->facts().version.build, 2600u);  // from the release's record
  EXPECT_FALSE(machine->facts().administrator);

  ActivateMachine(machine);
  OS os;
  EXPECT_EQ(os.ExactType(), OS::EXACT_WINXP_PRO);
  EXPECT_EQ(os.NTSP(), 1);
  EXPECT_EQ(os.BuildNumber(), 2600);
  RegWiz registry;
  std::vector<std::string> addresses;
  EXPECT_TRUE(registry.GetMultiStringKeyVal(
      HKEY_LOCAL_MACHINE,
      "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\"
      "{3F1C2E4A-7B6D-4C8E-A1B2-C3D4E5F60718}",
      "IPAddress", addresses));
  EXPECT_EQ(addresses, std::vector<std::string>{"10.0.0.20"});
  std::string temp;  // from the UTF-16 file
  EXPECT_TRUE(registry.GetKeyVal(HKEY_CURRENT_USER, "Environment", "TEMP", temp));
  EXPECT_EQ(temp, "%USERPROFILE%\\Local Settings\\Temp");
}

TEST_F(Profiles, SavedMachineLoadsAgainIntoAnEqualOne) {
  for (const char* fixture : {"win98.json", "winxp.json"}) {
    SCOPED_TRACE(fixture);
    std::string error;
    const auto original = LoadMachineProfile(kMachines / fixture, error);
    ASSERT_NE(original, nullptr) << error;
    // A change made after loading must be saved too, non-ASCII text included.
    original->facts().computerName = "B\xDCRO";
    original->facts().environment["Gr\xFC\xDF"] = "x";
    {
      ScopedMachine scope(original);
      RegWiz registry;
      ASSERT_TRUE(registry.CreateKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Added\\Empty"));
      ASSERT_TRUE(registry.SetKeyVal(HKEY_LOCAL_MACHINE, "SOFTWARE\\Added", "Caf\xE9", "\"x\\y\""));
    }

    const auto saved = folder_ / (std::string("saved-") + fixture);
    ASSERT_TRUE(SaveMachineProfile(*original, saved, error)) << error;
    const auto reloaded = LoadMachineProfile(saved, error);
    ASSERT_NE(reloaded, nullptr) << error;
    ExpectSameFacts(reloaded->facts(), original->facts());
    EXPECT_EQ(reloaded->registry().snapshot(), original->registry().snapshot());

    // The saved files are what a person would diff: UTF-8 JSON, the release's .reg format.
    std::ifstream in(saved, std::ios::binary);
    const std::string json(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
    EXPECT_THAT(json, HasSubstr("\"computerName\": \"B\xC3\x9CRO\""));
    std::ifstream reg(std::filesystem::path(saved).replace_extension(".reg"), std::ios::binary);
    std::string head(4, '\0');
    reg.read(head.data(), 4);
    EXPECT_EQ(head, original->isWin9x() ? "REGE" : std::string("\xFF\xFEW\0", 4));
  }
}

// The live network and the modules a machine lacks survive a save, a release included.
TEST_F(Profiles, LiveNetworkAndAbsentModulesAreSaved) {
  std::string error;
  const auto original = LoadMachineProfile(kMachines / "network" / "win2k.json", error);
  ASSERT_NE(original, nullptr) << error;
  auto& network = original->liveNetwork();
  ASSERT_FALSE(network.interfaces.empty());
  Hostkit::sim::ReleaseLease(network, network.interfaces.front(), "test");
  network.interfaces.back().server.reset();
  original->modules()["IPHLPAPI.DLL"].entryPoints.erase("IpRenewAddress");
  original->modules().erase("INETMIB1.DLL");

  const auto saved = folder_ / "saved-network.json";
  ASSERT_TRUE(SaveMachineProfile(*original, saved, error)) << error;
  const auto reloaded = LoadMachineProfile(saved, error);
  ASSERT_NE(reloaded, nullptr) << error;
  const auto& again = reloaded->liveNetwork();
  ASSERT_EQ(again.interfaces.size(), network.interfaces.size());
  for (size_t i = 0; i < again.interfaces.size(); ++i) {
    const auto& a = again.interfaces[i];
    const auto& b = network.interfaces[i];
    EXPECT_EQ(std::tie(a.index, a.name, a.description, a.type, a.hardwareAddress, a.address, a.mask,
                       a.dhcp, a.dhcpServer),
              std::tie(b.index, b.name, b.description, b.type, b.hardwareAddress, b.address, b.mask,
                       b.dhcp, b.dhcpServer));
    EXPECT_EQ(a.server.has_value(), b.server.has_value());
  }
  EXPECT_EQ(again.routes.size(), network.routes.size());
  EXPECT_EQ(again.dnsServers, network.dnsServers);
  EXPECT_EQ(again.domain, network.domain);
  EXPECT_EQ(reloaded->modules().count("INETMIB1.DLL"), 0U);
  EXPECT_EQ(reloaded->modules()["IPHLPAPI.DLL"].entryPoints.count("IpRenewAddress"), 0U);
  EXPECT_EQ(reloaded->modules()["IPHLPAPI.DLL"].entryPoints.count("IpReleaseAddress"), 1U);
}

TEST_F(Profiles, TextProfilesTakeTheirRegistryFilesFromMemory) {
  const std::string profile = "{ \"release\": \"win2k\",\n  \"registry\": [\"a.reg\"] }";
  std::string error;
  const auto machine = LoadMachineProfileText(
      profile, "mem.json", {{"a.reg", "REGEDIT4\r\n[HKLM\\SOFTWARE\\Mem]\r\n\"v\"=\"1\"\r\n"}}, {},
      error);
  ASSERT_NE(machine, nullptr) << error;
  ActivateMachine(machine);
  EXPECT_TRUE(RegWiz().DoesValNameExist(HKEY_LOCAL_MACHINE, "SOFTWARE\\Mem", "v"));
  EXPECT_EQ(OS().Type(), OS::TYPE_WIN2000);

  EXPECT_EQ(LoadMachineProfileText(profile, "mem.json", {}, {}, error), nullptr);
  EXPECT_EQ(error, "mem.json:2: cannot read registry file \"a.reg\": the file does not exist");
}

struct BadProfile {
  const char* what;
  const char* text;
  int line;
  const char* message;
};

class BadProfiles : public Profiles, public testing::WithParamInterface<BadProfile> {};

TEST_P(BadProfiles, RefusedWithOneLineNamingFileAndLine) {
  const BadProfile& c = GetParam();
  Write("good.reg", "REGEDIT4\r\n[HKLM\\SOFTWARE\\X]\r\n");
  const auto path = Write("bad.json", c.text);
  std::string error;
  EXPECT_EQ(LoadMachineProfile(path, error), nullptr);
  EXPECT_THAT(error, StartsWith(path.string() + ":" + std::to_string(c.line) + ": "));
  EXPECT_THAT(error, HasSubstr(c.message));
  EXPECT_EQ(error.find('\n'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BadProfiles,
    testing::Values(
        BadProfile{"NotJson", "{\n  \"release\": \"winxp\"\n  \"language\": 1\n}", 3,
                   "invalid JSON"},
        BadProfile{"Truncated", "{\n  \"release\": \"winxp\",\n", 3, "invalid JSON"},
        BadProfile{"NotAnObject", "[1, 2]", 1, "JSON object"},
        BadProfile{"NoRelease", "{\n  \"language\": 1033\n}", 1, "missing field \"release\""},
        BadProfile{"UnknownRelease", "{\n  \"release\": \"vista\"\n}", 2, "unknown release"},
        BadProfile{"UnknownField", "{\n  \"release\": \"winxp\",\n  \"colour\": 1\n}", 3,
                   "unknown field \"colour\""},
        BadProfile{"UnknownVersionField",
                   "{ \"release\": \"winxp\",\n  \"version\": {\n    \"major\": 5,\n"
                   "    \"majr\": 5 } }",
                   4, "unknown field \"majr\""},
        BadProfile{"SameNameNestedFirst",
                   "{ \"release\": \"winxp\", // \"minor\": 1\n  \"version\": {\n"
                   "    \"minor\": 1 },\n  \"minor\": 0 }",
                   4, "unknown field \"minor\""},
        BadProfile{"VersionWrongType",
                   "{ \"release\": \"winxp\",\n  \"version\": {\n    \"minor\": \"one\" } }", 3,
                   "\"minor\" must be a whole number"},
        BadProfile{"OutOfRange", "{ \"release\": \"winxp\",\n  \"language\": 70000 }", 2,
                   "from 0 to 65535"},
        BadProfile{"Negative", "{ \"release\": \"winxp\",\n\n  \"oemCodePage\": -1 }", 3,
                   "whole number"},
        BadProfile{"BoolAsNumber", "{ \"release\": \"winxp\",\n  \"administrator\": 1 }", 2,
                   "true or false"},
        BadProfile{"EnvironmentNotText",
                   "{ \"release\": \"winxp\",\n  \"environment\": {\n    \"PATH\": 3 } }", 3,
                   "\"PATH\" must be a string"},
        BadProfile{"UnsupportedCodePage", "{ \"release\": \"winxp\",\n  \"ansiCodePage\": 4242 }",
                   2, "code page 4242 is not supported"},
        BadProfile{"TextOutsideCodePage",
                   "{ \"release\": \"winxp\", \"ansiCodePage\": 1251,\n"
                   "  \"computerName\": \"\xC3\x9C\" }",
                   2, "code page 1251 cannot hold"},
        BadProfile{"MissingDrives", "{ \"release\": \"winxp\",\n  \"drives\": \"no/such\" }", 2,
                   "does not exist"},
        BadProfile{"RegistryNotList", "{ \"release\": \"winxp\",\n  \"registry\": \"a.reg\" }", 2,
                   "list of registry file names"},
        BadProfile{"BadInterfaceAddress",
                   "{ \"release\": \"winxp\",\n  \"network\": { \"interfaces\": [\n"
                   "    { \"index\": 2, \"address\": \"192.168.1.300\" } ] } }",
                   3, "\"address\" must be a dotted quad"},
        BadProfile{"AbsentEntryUnknown",
                   "{ \"release\": \"win95\",\n  \"absent\": [ \"IPHLPAPI.DLL\" ] }", 2,
                   "no module \"IPHLPAPI.DLL\""},
        BadProfile{"MissingRegistryFile",
                   "{ \"release\": \"winxp\",\n  \"registry\": [\"good.reg\",\n"
                   "                \"missing.reg\"] }",
                   2, "missing.reg"}),
    [](const testing::TestParamInfo<BadProfile>& info) { return std::string(info.param.what); });

TEST_F(Profiles, ABadRegistryFileIsNamedWithItsOwnLine) {
  Write("good.reg", "REGEDIT4\r\n[HKLM\\SOFTWARE\\Good]\r\n\"v\"=\"1\"\r\n");
  Write("bad.reg", "REGEDIT4\r\n[HKLM\\SOFTWARE\\Bad]\r\n\r\n\"v\"=dword:xyz\r\n");
  const auto path = Write("machine.json",
                          "{ \"release\": \"winxp\", \"registry\": [\"good.reg\", \"bad.reg\"] }");
  std::string error;
  EXPECT_EQ(LoadMachineProfile(path, error), nullptr);
  EXPECT_EQ(error, (folder_ / "bad.reg").string() + ":4: dword value without hex digits");
}

TEST_F(Profiles, ImportIntoAnExistingMachineAppliesAllOrNothing) {
  std::string error;
  const auto machine = LoadMachineProfile(kMachines / "winxp.json", error);
  ASSERT_NE(machine, nullptr) << error;
  const RegistrySnapshot before = machine->registry().snapshot();
  const auto bad = Write("bad.reg",
                         "REGEDIT4\r\n[-HKLM\\SOFTWARE]\r\n[HKLM\\X]\r\n\"v\"=hex:1,\r\n"
                         "\"w\"=hex:0g\r\n");
  EXPECT_FALSE(ImportRegFile(*machine, bad, error));
  EXPECT_THAT(error, StartsWith(bad.string() + ":5: "));
  EXPECT_EQ(machine->registry().snapshot(), before);

  const auto good = Write("good.reg", "REGEDIT4\r\n[-HKLM\\SOFTWARE\\Microsoft]\r\n");
  EXPECT_TRUE(ImportRegFile(*machine, good, error)) << error;
  ActivateMachine(machine);
  EXPECT_FALSE(RegWiz().DoesKeyExist(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft"));
  EXPECT_TRUE(RegWiz().DoesKeyExist(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet"));
}

}  // namespace
}  // namespace Hostkit::sim
