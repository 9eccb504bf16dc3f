// OS: release from the version record, versions and service packs, build number, language,
// startup programs, the administrator test, restart and shutdown.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <utility>
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

// Every identifier of the table, and no other, yields its name; rows sharing a name list both
// identifiers as "id/id".
TEST_F(OSTest, LanguageTableWholeAndNothingElse) {
  const std::string table =
      "1078 af, 1052 sq, 1025 ar_SA, 2049 ar_IQ, 3073 ar_EG, 4097 ar_LY, 5121 ar_DZ, 6145 ar_MA, "
      "7169 ar_TN, 8193 ar_OM, 9217 ar_YE, 10241 ar_SY, 11265 ar_JO, 12289 ar_LB, 13313 ar_KW, "
      "14337 ar_AE, 15361 ar_BH, 16385 ar_QA, 1068/2092 az, 1067 hy, 1101 as, 1069 eu, 1059 be, "
      "1093 bn, 1026 bg, 1109 my, 1027 ca, 1028 zh_TW, 2052 zh, 3076 zh_HK, 4100 zh_SG, 5124 "
      "zh_MO, "
      "1050 hr, 1029 cs, 1030 da, 1043 nl_NL, 2067 nl_BE, 1033 en_US, 2057 en_GB, 3081 en_AU, 4105 "
      "en_CA, 5129 en_NZ, 6153 en_IE, 7177 en_ZA, 8201 en_JM, 9225 en, 10249 en_BZ, 11273 en_TT, "
      "12297 en_ZW, 13321 en_PH, 1061 et, 1080 fo, 1065 fa, 1035 fi, 1036 fr_FR, 2060 fr_BE, 3084 "
      "fr_CA, 4108 fr_CH, 5132 fr_LU, 6156 fr_MC, 1079 ka, 1031 de_DE, 2055 de_CH, 3079 de_AT, "
      "4103 "
      "de_LU, 5127 de_LI, 1032 el, 1095 gu, 1037 he, 1081 hi, 1038 hu, 1039 is, 1057 id, 1040 "
      "it_IT, 2064 it_CH, 1041 ja, 1099 kn, 2144 ks_IN, 1087 kk, 1042/2066 ko, 1062 lv_LV, "
      "1063/2087 lt_LT, 1071 mk_MK, 1086 ms_MY, 2110 ms_BN, 1100 ml, 1102 mr, 2145 ne_IN, "
      "1044/2068 "
      "no, 1096 or, 1045 pl, 1046 pt_BR, 2070 pt_PT, 1094 pa, 1048 ro, 1049 ru, 1103 sa, 3098 sr, "
      "2074 sr, 1113 sd, 1051 sk, 1060 sl, 1034 es_ES, 2058 es_MX, 3082 es, 4106 es_GT, 5130 "
      "es_CR, "
      "6154 es_PA, 7178 es_DO, 8202 es_VE, 9226 es_CO, 10250 es_PE, 11274 es_AR, 12298 es_EC, "
      "13322 "
      "es_CL, 14346 es_UY, 15370 es_PY, 16394 es_BO, 17418 es_SV, 18442 es_HN, 19466 es_NI, 20490 "
      "es_PR, 1089 sw_KE, 1053 sv_SE, 2077 sv_FI, 1097 ta, 1092 tt, 1098 te, 1054 th, 1055 tr, "
      "1058 "
      "uk, 1056 ur_PK, 2080 ur_IN, 1091/2115 uz, 1066 vi, 1112 mni, 1072 bnt, 1111 kok ";
  std::map<unsigned int, std::string> expected;
  std::istringstream rows(table);
  for (std::string ids, name; rows >> ids >> name;) {
    if (name.back() == ',') {
      name.pop_back();
    }
    std::istringstream each(ids);
    for (std::string id; std::getline(each, id, '/');) {
      expected[static_cast<unsigned int>(std::stoul(id))] = name;
    }
  }
  ASSERT_EQ(expected.size(), 143u);
  auto machine = UseFreshMachine(Release::WinXP);
  for (unsigned int candidate = 1; candidate <= 0xFFFF; ++candidate) {
    machine->facts().language = static_cast<LANGID>(candidate);
    unsigned int id = 0;
    char name[16] = {};
    ASSERT_TRUE(OS().SystemDefaultLanguage(id, name));
    const auto found = expected.find(candidate);
    ASSERT_EQ(name, found == expected.end() ? "" : found->second) << candidate;
  }
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

// The base name and the numbers 1 to `taken` are in use by other programs: the first free number
// is written, and at most 100 are tried, the last one overwritten when all are taken.
TEST_F(Startup, NumberedNamesSkipThoseTakenUpToAHundred) {
  const char* path = "C:/Tools/agent.v2.exe";
  for (const auto& [taken, written] : {std::pair<int, const char*>{2, "agent.v2(3)"},
                                       {99, "agent.v2(100)"},
                                       {100, "agent.v2(100)"}}) {
    Use(Release::Win2000);
    drives_->AddFile("c/Tools/agent.v2.exe");
    for (int n = 0; n <= taken; ++n) {
      const std::string name = n == 0 ? "agent.v2" : "agent.v2(" + std::to_string(n) + ")";
      ASSERT_TRUE(registry_.SetKeyVal(HKEY_LOCAL_MACHINE, kRun, name.c_str(), "C:\\elsewhere.exe"));
    }
    ASSERT_TRUE(OS().AddProgramToStartup(path));
    EXPECT_EQ(Value(written), path) << taken;
    EXPECT_EQ(Names().size(), static_cast<size_t>(std::min(taken + 2, 101))) << taken;
  }
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
