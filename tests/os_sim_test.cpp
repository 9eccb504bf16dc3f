// OS: release from the version record, versions and service packs, build number, language,
// startup programs, the administrator test, restart and shutdown.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/machine.h"
#include "platform/handles.h"
#include "platform/security.h"
#include "platform/system_info.h"
#include "sim_drives.h"
#include "support/sim_machine.h"

namespace Hostkit {
namespace {

using hostkit_test::UseFreshMachine;
using sim::Release;
using sim::VersionRecord;

class OSTest : public testing::Test {
 protected:
  void TearDown() override { sim::ActivateMachine(nullptr); }
};

constexpr DWORD k9x = VER_PLATFORM_WIN32_WINDOWS;
constexpr DWORD kNT = VER_PLATFORM_WIN32_NT;

struct VersionCase {
  const char* label;
  VersionRecord record;
  OS::TYPE type;
  OS::EXACT_TYPE exact;
  int ntsp;
  double version;
};

VersionRecord Record(DWORD platform, DWORD major, DWORD minor, const char* service, WORD suite = 0,
                     BYTE product = 0, bool extended = true) {
  VersionRecord record;
  record.platform = platform;
  record.major = major;
  record.minor = minor;
  record.csdVersion = service;
  record.suiteMask = suite;
  record.productType = product;
  record.answers = true;
  record.acceptsExtended = extended;
  return record;
}

const VersionCase kVersionCases[] = {
    {"95", Record(k9x, 4, 0, "", 0, 0, false), OS::TYPE_WIN95, OS::EXACT_WIN95, -1, 4.0},
    {"95 B", Record(k9x, 4, 0, " B", 0, 0, false), OS::TYPE_WIN95, OS::EXACT_WIN95_B, -1, 4.0},
    {"95 C", Record(k9x, 4, 0, " C", 0, 0, false), OS::TYPE_WIN95, OS::EXACT_WIN95_C, -1, 4.0},
    {"95 BC", Record(k9x, 4, 0, "BC", 0, 0, false), OS::TYPE_WIN95, OS::EXACT_WIN95_C, -1, 4.0},
    {"95 letter late", Record(k9x, 4, 0, "  C", 0, 0, false), OS::TYPE_WIN95, OS::EXACT_WIN95, -1,
     4.0},
    {"98", Record(k9x, 4, 10, "", 0, 0, false), OS::TYPE_WIN98, OS::EXACT_WIN98, -1, 4.1},
    {"98 SE", Record(k9x, 4, 10, " A ", 0, 0, false), OS::TYPE_WIN98, OS::EXACT_WIN98_A, -1, 4.1},
    {"ME", Record(k9x, 4, 90, " ", 0, 0, false), OS::TYPE_WINME, OS::EXACT_WINME, -1, 4.9},
    {"9x minor 11", Record(k9x, 4, 11, ""), OS::TYPE_WINME, OS::EXACT_WINME, -1, 4.11},
    {"NT4 SP0", Record(kNT, 4, 0, "", 0, 1), OS::TYPE_WINNT4, OS::EXACT_WINNT4_SP0, 0, 4.0},
    {"NT4 SP6", Record(kNT, 4, 0, "Service Pack 6", 0, 1), OS::TYPE_WINNT4, OS::EXACT_WINNT4_SP6, 6,
     4.0},
    {"NT4 SP7", Record(kNT, 4, 0, "Service Pack 7", 0, 1), OS::TYPE_WINNT4, OS::EXACT_WINNT4_SPX, 7,
     4.0},
    {"NT4 SP6a", Record(kNT, 4, 0, "Service Pack 6a", 0, 1, false), OS::TYPE_WINNT4,
     OS::EXACT_WINNT4_SP6, 6, 4.0},
    {"NT3.51", Record(kNT, 3, 51, "Service Pack 5"), OS::TYPE_WINNT4, OS::EXACT_WINNT4_SP5, 5,
     3.51},
    {"NT6.0", Record(kNT, 6, 0, "Service Pack 1", 0, 1), OS::TYPE_WIN2000, OS::EXACT_WINNT4_SP1, 1,
     6.0},
    {"2000 Pro", Record(kNT, 5, 0, "", 0, 1), OS::TYPE_WIN2000, OS::EXACT_WIN2000_PRO_SP0, 0, 5.0},
    {"2000 Pro SP4", Record(kNT, 5, 0, "Service Pack 4", 0, 1), OS::TYPE_WIN2000,
     OS::EXACT_WIN2000_PRO_SPX, 4, 5.0},
    {"2000 Server SP2", Record(kNT, 5, 0, "Service Pack 2", 0, 3), OS::TYPE_WIN2000,
     OS::EXACT_WIN2000_SERVER_SP2, 2, 5.0},
    {"2000 Enterprise SP3", Record(kNT, 5, 0, "Service Pack 3", 0x0002, 3), OS::TYPE_WIN2000,
     OS::EXACT_WIN2000_ENTERPRISE_SP3, 3, 5.0},
    {"2000 Datacenter SP1", Record(kNT, 5, 0, "Service Pack 1", 0x0082, 3), OS::TYPE_WIN2000,
     OS::EXACT_WIN2000_DATACENTER_SP1, 1, 5.0},
    {"2000 Datacenter SP9", Record(kNT, 5, 0, "Service Pack 9", 0x0080, 1), OS::TYPE_WIN2000,
     OS::EXACT_WIN2000_DATACENTER_SPX, 9, 5.0},
    // Only the basic record answers: no suite or product type, so a workstation reads as server.
    {"2000 Pro basic only", Record(kNT, 5, 0, "Service Pack 1", 0, 1, false), OS::TYPE_WIN2000,
     OS::EXACT_WIN2000_SERVER_SP1, 1, 5.0},
    {"2003", Record(kNT, 5, 2, "", 0x0002, 3), OS::TYPE_WINXP, OS::EXACT_WIN2000_ENTERPRISE_SP0, 0,
     5.2},
    {"XP Home", Record(kNT, 5, 1, "Service Pack 2", 0x0300, 1), OS::TYPE_WINXP,
     OS::EXACT_WINXP_HOME, 2, 5.1},
    {"XP Pro", Record(kNT, 5, 1, "Service Pack 2", 0x0100, 1), OS::TYPE_WINXP, OS::EXACT_WINXP_PRO,
     2, 5.1},
    {"XP Pro datacenter bit", Record(kNT, 5, 1, "", 0x0080, 3), OS::TYPE_WINXP, OS::EXACT_WINXP_PRO,
     0, 5.1},
    {"Win32s", Record(VER_PLATFORM_WIN32s, 3, 10, ""), OS::TYPE_UNKNOWN, OS::EXACT_UNKNOWN, -1,
     3.1},
};

TEST_F(OSTest, ReleaseAndVersionFollowTheVersionRecord) {
  for (const auto& test : kVersionCases) {
    auto machine = UseFreshMachine(Release::WinXP);
    machine->facts().version = test.record;
    OS os;
    EXPECT_EQ(os.Type(), test.type) << test.label;
    EXPECT_EQ(os.ExactType(), test.exact) << test.label;
    EXPECT_EQ(os.NTSP(), test.ntsp) << test.label;
    EXPECT_EQ(os.MajorVersion(), static_cast<int>(test.record.major)) << test.label;
    EXPECT_EQ(os.MinorVersion(), static_cast<int>(test.record.minor)) << test.label;
    EXPECT_DOUBLE_EQ(os.Version(), test.version) << test.label;
  }
}

TEST_F(OSTest, AFailingVersionQueryGivesEveryFailureValue) {
  auto machine = UseFreshMachine(Release::WinXP);
  machine->facts().version.answers = false;
  OS os;
  EXPECT_EQ(os.Type(), OS::TYPE_UNKNOWN);
  EXPECT_EQ(os.ExactType(), OS::EXACT_UNKNOWN);
  EXPECT_EQ(os.MajorVersion(), -1);
  EXPECT_EQ(os.MinorVersion(), -1);
  EXPECT_EQ(os.Version(), -1.0);
  EXPECT_EQ(os.NTSP(), -1);
  EXPECT_FALSE(os.IsWin9x());
  EXPECT_FALSE(os.IsWinNT());
}

TEST_F(OSTest, EachReleaseAnswersExactlyOnePredicateOfItsFamily) {
  for (Release release : hostkit_test::AllReleases()) {
    UseFreshMachine(release);
    OS os;
    const std::vector<bool> answers{os.IsWin95(),  os.IsWin98(),   os.IsWinME(),
                                    os.IsWinNT4(), os.IsWin2000(), os.IsWinXP()};
    EXPECT_EQ(std::count(answers.begin(), answers.end(), true), 1) << sim::ReleaseName(release);
    EXPECT_EQ(os.IsWin9x(), sim::IsWin9xFamily(release)) << sim::ReleaseName(release);
    EXPECT_EQ(os.IsWinNT(), !sim::IsWin9xFamily(release)) << sim::ReleaseName(release);
    EXPECT_TRUE(answers[static_cast<std::size_t>(os.Type())]) << sim::ReleaseName(release);
  }
}

TEST_F(OSTest, BuildNumberComesFromTheRegistryOnTheNtFamilyOnly) {
  const char* key = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
  for (Release release : hostkit_test::AllReleases()) {
    UseFreshMachine(release);
    RegWiz registry;
    OS os;
    EXPECT_EQ(os.BuildNumber(), -1) << "no value yet on " << sim::ReleaseName(release);
    ASSERT_TRUE(registry.CreateKey(HKEY_LOCAL_MACHINE, key));
    ASSERT_TRUE(registry.SetKeyVal(HKEY_LOCAL_MACHINE, key, "CurrentBuildNumber", "2600"));
    EXPECT_EQ(os.BuildNumber(), sim::IsWin9xFamily(release) ? -1 : 2600)
        << sim::ReleaseName(release);
  }
}

TEST_F(OSTest, LanguageNamesSpotChecks) {
  auto machine = UseFreshMachine(Release::WinXP);
  struct {
    LANGID id;
    const char* name;
  } const cases[] = {{1033, "en_US"}, {1042, "ko"},    {2066, "ko"},     {3098, "sr"}, {2074, "sr"},
                     {1111, "kok"},   {2144, "ks_IN"}, {20490, "es_PR"}, {0x7FFF, ""}, {1024, ""}};
  for (const auto& test : cases) {
    machine->facts().language = test.id;
    unsigned int id = 0;
    char name[6] = "xxxxx";
    EXPECT_TRUE(OS().SystemDefaultLanguage(id, name)) << test.id;
    EXPECT_EQ(id, test.id);
    EXPECT_STREQ(name, test.name) << test.id;
  }
  unsigned int id = 0;
  EXPECT_FALSE(OS().SystemDefaultLanguage(id, nullptr));
  machine->facts().language = 0;
  char name[6] = "xxxxx";
  EXPECT_FALSE(OS().SystemDefaultLanguage(id, name));
}

TEST_F(OSTest, LanguageTableCovers143IdentifiersWith137Names) {
  auto machine = UseFreshMachine(Release::WinXP);
  int identifiers = 0;
  std::set<std::string> names;
  for (unsigned int candidate = 1; candidate <= 0xFFFF; ++candidate) {
    machine->facts().language = static_cast<LANGID>(candidate);
    unsigned int id = 0;
    char name[16] = {};
    ASSERT_TRUE(OS().SystemDefaultLanguage(id, name));
    if (name[0] != '\0') {
      ++identifiers;
      names.insert(name);
      EXPECT_LT(std::string(name).size(), 6u) << candidate;
    }
  }
  EXPECT_EQ(identifiers, 143);
  EXPECT_EQ(names.size(), 137u);
}

// Startup programs live as values of HKLM\...\Run.
class Startup : public OSTest {
 protected:
  static constexpr const char* kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

  void Use(Release release) {
    machine_ = UseFreshMachine(release);
    drives_ = std::make_unique<hostkit_test::SimDrives>(*machine_);
    ASSERT_TRUE(registry_.CreateKey(HKEY_LOCAL_MACHINE, kRun));
  }

  std::string Value(const char* name) {
    std::string text;
    return registry_.GetKeyVal(HKEY_LOCAL_MACHINE, kRun, name, text) ? text : "<missing>";
  }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    registry_.GetValNames(HKEY_LOCAL_MACHINE, kRun, names);
    return names;
  }

  std::shared_ptr<sim::Machine> machine_;
  std::unique_ptr<hostkit_test::SimDrives> drives_;
  RegWiz registry_;
};

TEST_F(Startup, AddPicksAFreeNameAndRecognisesItsOwnEntry) {
  Use(Release::WinXP);
  drives_->AddFile("c/Tools/agent.exe");
  const char* agent = "C:\\Tools\\agent.exe";
  ASSERT_TRUE(registry_.SetKeyVal(HKEY_LOCAL_MACHINE, kRun, "agent", "C:\\Other\\agent.exe"));

  ASSERT_TRUE(OS().AddProgramToStartup(agent));
  EXPECT_EQ(Value("agent(1)"), agent);
  EXPECT_EQ(Value("agent"), "C:\\Other\\agent.exe");

  // Registered already: the entry is written again under the bare base name.
  ASSERT_TRUE(OS().AddProgramToStartup(agent));
  EXPECT_EQ(Value("agent"), agent);
  EXPECT_EQ(Names(), (std::vector<std::string>{"agent", "agent(1)"}));

  // Removal deletes every value that starts this program, and nothing else.
  ASSERT_TRUE(registry_.SetKeyVal(HKEY_LOCAL_MACHINE, kRun, "other", "C:\\other.exe"));
  ASSERT_TRUE(OS().RemoveProgramFromStartup(agent));
  EXPECT_EQ(Names(), (std::vector<std::string>{"other"}));
}

TEST_F(Startup, NumberedNamesSkipThoseTaken) {
  Use(Release::Win2000);
  drives_->AddFile("c/Tools/agent.v2.exe");
  for (const char* taken : {"agent.v2", "agent.v2(1)", "agent.v2(2)"}) {
    ASSERT_TRUE(registry_.SetKeyVal(HKEY_LOCAL_MACHINE, kRun, taken, "C:\\elsewhere.exe"));
  }
  ASSERT_TRUE(OS().AddProgramToStartup("C:/Tools/agent.v2.exe"));
  EXPECT_EQ(Value("agent.v2(3)"), "C:/Tools/agent.v2.exe");
}

TEST_F(Startup, AMissingFileWritesNothing) {
  Use(Release::WinXP);
  EXPECT_FALSE(OS().AddProgramToStartup("C:\\Tools\\missing.exe"));
  EXPECT_FALSE(OS().RemoveProgramFromStartup("C:\\Tools\\missing.exe"));
  drives_->AddFolder("c/Tools/folder.exe");
  EXPECT_FALSE(OS().AddProgramToStartup("C:\\Tools\\folder.exe"));
  EXPECT_TRUE(Names().empty());
}

TEST_F(Startup, WithoutAPathTheRunningProgramIsRegistered) {
  Use(Release::WinXP);
  drives_->AddFile("c/SETUP/SETUP.EXE");
  machine_->facts().modulePath = "C:\\SETUP\\SETUP.EXE";
  ASSERT_TRUE(OS().AddProgramToStartup(nullptr));
  EXPECT_EQ(Value("SETUP"), "C:\\SETUP\\SETUP.EXE");
  ASSERT_TRUE(OS().RemoveProgramFromStartup(""));
  EXPECT_TRUE(Names().empty());
}

TEST_F(Startup, Windows9xRegistersTheShortPathUnderTheLongBaseName) {
  Use(Release::Win98);
  drives_->AddFile("c/Program Files/My Agent/LongAgentName.exe");
  ASSERT_TRUE(OS().AddProgramToStartup("C:\\Program Files\\My Agent\\LongAgentName.exe"));
  EXPECT_EQ(Value("LongAgentName"), "C:\\PROGRA~1\\MYAGEN~1\\LONGAG~1.EXE");
  ASSERT_TRUE(OS().RemoveProgramFromStartup("C:\\Program Files\\My Agent\\LongAgentName.exe"));
  EXPECT_TRUE(Names().empty());
}

TEST_F(OSTest, AdministratorTestFollowsTheUserOnNtAndIsAlwaysTrueOn9x) {
  for (Release release : hostkit_test::AllReleases()) {
    for (bool administrator : {true, false}) {
      auto machine = UseFreshMachine(release);
      machine->facts().administrator = administrator;
      const bool expected = sim::IsWin9xFamily(release) || administrator;
      EXPECT_EQ(OS().IsUserAdministrator(), expected)
          << sim::ReleaseName(release) << (administrator ? " admin" : " user");
      if (!sim::IsWin9xFamily(release)) {
        // The impersonation ended with the check.
        HANDLE token = nullptr;
        EXPECT_FALSE(
            platform::OpenThreadToken(platform::GetCurrentThread(), TOKEN_QUERY, TRUE, &token));
        EXPECT_EQ(platform::GetLastError(), static_cast<DWORD>(ERROR_NO_TOKEN));
      }
    }
  }
}

struct ShutdownCase {
  Release release;
  bool reboot;
  bool force;
  const char* call;
  unsigned int flags;
};

const ShutdownCase kShutdownCases[] = {
    {Release::Win95, true, false, "ExitWindowsEx", EWX_REBOOT},
    {Release::Win98, false, true, "ExitWindowsEx", EWX_SHUTDOWN},
    {Release::WinME, true, true, "ExitWindowsEx", EWX_REBOOT},
    {Release::WinNT4, true, false, "InitiateSystemShutdown", 0},
    {Release::WinNT4, false, false, "InitiateSystemShutdown", 0},
    {Release::Win2000, true, false, "ExitWindowsEx", EWX_REBOOT},
    {Release::Win2000, false, true, "InitiateSystemShutdown", 0},
    {Release::WinXP, false, false, "ExitWindowsEx", EWX_SHUTDOWN},
    {Release::WinXP, true, true, "InitiateSystemShutdown", 0},
};

TEST_F(OSTest, RebootAndShutdownUseEachFamilysCall) {
  for (const auto& test : kShutdownCases) {
    auto machine = UseFreshMachine(test.release);
    OS os;
    ASSERT_TRUE(test.reboot ? os.Reboot(test.force) : os.Shutdown(test.force))
        << sim::ReleaseName(test.release);
    ASSERT_EQ(machine->shutdownRequests().size(), 1u);
    const sim::ShutdownRequest& request = machine->shutdownRequests()[0];
    const std::string label = std::string(sim::ReleaseName(test.release)) +
                              (test.reboot ? " reboot" : " shutdown") +
                              (test.force ? " forced" : "");
    EXPECT_EQ(request.call, test.call) << label;
    EXPECT_EQ(request.flags, test.flags) << label;
    EXPECT_EQ(request.reboot, test.reboot) << label;
    // InitiateSystemShutdown always closes applications; ExitWindowsEx is never forced.
    EXPECT_EQ(request.force, request.call == std::string("InitiateSystemShutdown")) << label;
  }
}

TEST_F(OSTest, AMachineOfUnknownReleaseRefusesTheControls) {
  auto machine = UseFreshMachine(Release::Unknown);
  OS os;
  EXPECT_FALSE(os.Reboot(true));
  EXPECT_FALSE(os.Shutdown(false));
  EXPECT_FALSE(os.IsUserAdministrator());
  EXPECT_TRUE(machine->shutdownRequests().empty());
}

}  // namespace
}  // namespace Hostkit
