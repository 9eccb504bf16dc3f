// The simulated machine's kernel services: events and waits, version records, module and short
// paths, tokens and access checks, shutdown requests and run-time bound modules.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/handles.h"
#include "platform/modules.h"
#include "platform/security.h"
#include "platform/shutdown.h"
#include "platform/sync.h"
#include "platform/system_info.h"
#include "sim_drives.h"
#include "support/sim_machine.h"

namespace Hostkit::platform {
namespace {

using hostkit_test::UseFreshMachine;
using sim::Release;

class SimKernel : public testing::Test {
 protected:
  void TearDown() override {
    RevertToSelf();
    sim::ActivateMachine(nullptr);
  }
};

TEST_F(SimKernel, AnAutoResetEventAdmitsOneHolderAtATime) {
  HANDLE lock = CreateEventA(nullptr, FALSE, TRUE, nullptr);
  ASSERT_NE(lock, nullptr);
  std::atomic<int> inside{0};
  std::atomic<int> most{0};
  std::atomic<int> entries{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 6; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(WaitForSingleObject(lock, INFINITE), WAIT_OBJECT_0);
        const int now = ++inside;
        most = std::max(most.load(), now);
        std::this_thread::yield();
        --inside;
        ++entries;
        SetEvent(lock);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(most.load(), 1);
  EXPECT_EQ(entries.load(), 300);
  // Taken once more, the event stays taken: a second wait times out.
  EXPECT_EQ(WaitForSingleObject(lock, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(lock, 20), WAIT_TIMEOUT);
  EXPECT_TRUE(CloseHandle(lock));
  EXPECT_EQ(WaitForSingleObject(lock, 0), WAIT_FAILED);
  EXPECT_FALSE(CloseHandle(lock));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST_F(SimKernel, AManualResetEventReleasesEveryWaiterUntilReset) {
  HANDLE gate = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  ASSERT_NE(gate, nullptr);
  EXPECT_EQ(WaitForSingleObject(gate, 10), WAIT_TIMEOUT);
  std::atomic<int> through{0};
  std::vector<std::thread> waiters;
  for (int t = 0; t < 4; ++t) {
    waiters.emplace_back([&] {
      if (WaitForSingleObject(gate, 10000) == WAIT_OBJECT_0) {
        ++through;
      }
    });
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_TRUE(SetEvent(gate));
  for (auto& waiter : waiters) {
    waiter.join();
  }
  EXPECT_EQ(through.load(), 4);
  EXPECT_EQ(WaitForSingleObject(gate, 0), WAIT_OBJECT_0);  // still signalled
  EXPECT_TRUE(ResetEvent(gate));
  EXPECT_EQ(WaitForSingleObject(gate, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(CloseHandle(gate));
}

TEST_F(SimKernel, NamedEventsAreSharedAndPseudoHandlesNeedNoClosing) {
  HANDLE first = CreateEventA(nullptr, TRUE, FALSE, "hostkit-test-event");
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  HANDLE second = CreateEventA(nullptr, TRUE, FALSE, "hostkit-test-event");
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  ASSERT_NE(first, second);
  SetEvent(first);
  EXPECT_EQ(WaitForSingleObject(second, 0), WAIT_OBJECT_0);
  CloseHandle(first);
  CloseHandle(second);
  EXPECT_TRUE(CloseHandle(GetCurrentProcess()));
  EXPECT_TRUE(CloseHandle(GetCurrentThread()));
  EXPECT_FALSE(SetEvent(GetCurrentProcess()));
}

TEST_F(SimKernel, VersionRecordSizesAreCheckedAsWindowsDoes) {
  for (Release release : hostkit_test::AllReleases()) {
    auto machine = UseFreshMachine(release);
    OSVERSIONINFOEXA info{};
    info.dwOSVersionInfoSize = sizeof(OSVERSIONINFOA);
    EXPECT_TRUE(GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info)));
    EXPECT_EQ(info.dwMajorVersion, machine->facts().version.major);
    EXPECT_STREQ(info.szCSDVersion, machine->facts().version.csdVersion.c_str());
    EXPECT_EQ(info.wProductType, 0);  // the basic record leaves the tail alone

    info.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXA);
    const bool extended = GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info)) != FALSE;
    EXPECT_EQ(extended, machine->facts().version.acceptsExtended) << sim::ReleaseName(release);
    if (extended) {
      EXPECT_EQ(info.wProductType, machine->facts().version.productType);
    } else {
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    }
    info.dwOSVersionInfoSize = 100;
    EXPECT_FALSE(GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info)));
  }
  UseFreshMachine(Release::Unknown);
  OSVERSIONINFOA basic{};
  basic.dwOSVersionInfoSize = sizeof basic;
  EXPECT_FALSE(GetVersionExA(&basic));
}

TEST_F(SimKernel, ModuleFileNameIsTruncatedWithoutTerminator) {
  auto machine = UseFreshMachine(Release::WinXP);
  machine->facts().modulePath = "C:\\SETUP\\SETUP.EXE";  // 18 characters
  const std::pair<DWORD, std::string_view> cases[] = {{32, {"C:\\SETUP\\SETUP.EXE\0", 19}},
                                                      {18, "C:\\SETUP\\SETUP.EXE#"},
                                                      {8, "C:\\SETUP###########"}};
  for (const auto& [size, expected] : cases) {
    char buffer[32];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(GetModuleFileNameA(nullptr, buffer, size), std::min<DWORD>(size, 18)) << size;
    EXPECT_EQ(std::string_view(buffer, 19), expected) << size;
  }
}

TEST_F(SimKernel, ShortPathsNameLongComponentsByRank) {
  auto machine = UseFreshMachine(Release::Win98);
  hostkit_test::SimDrives drives(*machine);
  drives.AddFile("c/Program Files/Setup Tool.exe");
  drives.AddFolder("c/Program Files Extra");
  drives.AddFile("c/WINDOWS/win.ini");
  drives.AddFile("c/Data/a+b;c.txt");

  char buffer[64];
  struct {
    const char* path;
    const char* shortPath;
  } const cases[] = {
      {"C:\\Program Files\\Setup Tool.exe", "C:\\PROGRA~1\\SETUPT~1.EXE"},
      {"c:/program files extra", "c:\\PROGRA~2"},
      {"C:\\windows\\win.ini", "C:\\windows\\win.ini"},  // 8.3 already, kept as written
      {"C:\\Data\\a+b;c.txt", "C:\\Data\\A_B_C~1.TXT"},
      {"C:\\", "C:\\"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(GetShortPathNameA(test.path, buffer, sizeof buffer), std::strlen(test.shortPath))
        << test.path;
    EXPECT_STREQ(buffer, test.shortPath);
  }
  // Too small a buffer: the size needed, terminator included, and the buffer untouched.
  std::strcpy(buffer, "untouched");
  EXPECT_EQ(GetShortPathNameA("C:\\Program Files\\Setup Tool.exe", buffer, 10), 25u);
  EXPECT_STREQ(buffer, "untouched");
  EXPECT_EQ(GetShortPathNameA("C:\\Program Files\\missing.exe", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(GetShortPathNameA("C:\\Missing\\Setup.exe", buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

// Builds the descriptor the administrator test uses: only `sid` may read (1) and write (2).
struct OnlyGroup {
  explicit OnlyGroup(DWORD rid) {
    SID_IDENTIFIER_AUTHORITY nt = SECURITY_NT_AUTHORITY;
    EXPECT_TRUE(
        AllocateAndInitializeSid(&nt, 2, SECURITY_BUILTIN_DOMAIN_RID, rid, 0, 0, 0, 0, 0, 0, &sid));
    acl.resize((GetLengthSid(sid) + 16) / sizeof(DWORD));
    EXPECT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_TRUE(InitializeAcl(Acl(), GetLengthSid(sid) + 16, ACL_REVISION));
    EXPECT_TRUE(AddAccessAllowedAce(Acl(), ACL_REVISION, 3, sid));
    EXPECT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, Acl(), FALSE));
    EXPECT_TRUE(SetSecurityDescriptorOwner(&descriptor, sid, FALSE));
    EXPECT_TRUE(SetSecurityDescriptorGroup(&descriptor, sid, FALSE));
  }
  ~OnlyGroup() { FreeSid(sid); }
  OnlyGroup(const OnlyGroup&) = delete;
  OnlyGroup& operator=(const OnlyGroup&) = delete;
  PACL Acl() { return reinterpret_cast<PACL>(acl.data()); }

  PSID sid = nullptr;
  std::vector<DWORD> acl;
  SECURITY_DESCRIPTOR descriptor{};
};

HANDLE ImpersonationToken(DWORD access = TOKEN_QUERY) {
  EXPECT_TRUE(ImpersonateSelf(SecurityImpersonation));
  HANDLE token = nullptr;
  EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), access, TRUE, &token));
  return token;
}

struct CheckResult {
  BOOL called = FALSE;
  BOOL granted = FALSE;
  DWORD rights = 0;
  DWORD error = 0;
};

CheckResult Check(OnlyGroup& object, HANDLE token, DWORD desired, DWORD privilegeLength = 20) {
  GENERIC_MAPPING mapping{1, 2, 0, 3};
  PRIVILEGE_SET privileges{};
  CheckResult result;
  result.called = AccessCheck(&object.descriptor, token, desired, &mapping, &privileges,
                              &privilegeLength, &result.rights, &result.granted);
  result.error = GetLastError();
  return result;
}

TEST_F(SimKernel, AccessCheckWalksTheDaclForTheTokensGroups) {
  for (bool administrator : {true, false}) {
    auto machine = UseFreshMachine(Release::Win2000);
    machine->facts().administrator = administrator;
    OnlyGroup admins(DOMAIN_ALIAS_RID_ADMINS);
    OnlyGroup users(DOMAIN_ALIAS_RID_USERS);
    HANDLE token = ImpersonationToken();

    CheckResult result = Check(admins, token, 1);
    EXPECT_TRUE(result.called);
    EXPECT_EQ(result.granted != FALSE, administrator);
    EXPECT_EQ(result.rights, administrator ? 1u : 0u);
    // Every user is in Users: read and write granted, a right the entry lacks refused.
    EXPECT_TRUE(Check(users, token, 3).granted);
    EXPECT_FALSE(Check(users, token, 4).granted);
    EXPECT_EQ(Check(users, token, MAXIMUM_ALLOWED).rights, 3u);
    // Generic rights in the request must have been mapped by the caller.
    EXPECT_FALSE(Check(users, token, GENERIC_READ).called);
    EXPECT_EQ(Check(users, token, GENERIC_READ).error,
              static_cast<DWORD>(ERROR_GENERIC_NOT_MAPPED));
    CloseHandle(token);
  }
}

TEST_F(SimKernel, AccessCheckRefusesBadArgumentsAsWindowsDoes) {
  UseFreshMachine(Release::WinXP);
  OnlyGroup admins(DOMAIN_ALIAS_RID_ADMINS);
  HANDLE token = ImpersonationToken();
  CheckResult small = Check(admins, token, 1, 12);
  EXPECT_FALSE(small.called);
  EXPECT_EQ(small.error, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  CloseHandle(token);

  HANDLE queryless = ImpersonationToken(TOKEN_ADJUST_PRIVILEGES);
  EXPECT_EQ(Check(admins, queryless, 1).error, static_cast<DWORD>(ERROR_ACCESS_DENIED));
  CloseHandle(queryless);

  HANDLE primary = nullptr;
  ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &primary));
  EXPECT_EQ(Check(admins, primary, 1).error, static_cast<DWORD>(ERROR_NO_IMPERSONATION_TOKEN));
  CloseHandle(primary);

  admins.descriptor.Owner = nullptr;
  HANDLE again = ImpersonationToken();
  EXPECT_EQ(Check(admins, again, 1).error, static_cast<DWORD>(ERROR_INVALID_SECURITY_DESCR));
  CloseHandle(again);
}

TEST_F(SimKernel, AclsKeepTheirBinaryLayoutAndSize) {
  UseFreshMachine(Release::WinXP);
  SID_IDENTIFIER_AUTHORITY nt = SECURITY_NT_AUTHORITY;
  PSID sid = nullptr;
  ASSERT_TRUE(AllocateAndInitializeSid(&nt, 2, 32, 544, 0, 0, 0, 0, 0, 0, &sid));
  ASSERT_EQ(GetLengthSid(sid), 16u);
  const BYTE expectedSid[16] = {1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 0x02, 0, 0};
  EXPECT_EQ(std::memcmp(sid, expectedSid, 16), 0);

  std::vector<DWORD> buffer(16);
  auto* acl = reinterpret_cast<PACL>(buffer.data());
  ASSERT_TRUE(InitializeAcl(acl, 32, ACL_REVISION));
  ASSERT_TRUE(AddAccessAllowedAce(acl, ACL_REVISION, 3, sid));  // 8 + 8 + 16 fills it
  EXPECT_EQ(acl->AceCount, 1);
  EXPECT_EQ(std::memcmp(buffer.data() + 4, expectedSid, 16), 0);  // after the entry's header
  EXPECT_FALSE(AddAccessAllowedAce(acl, ACL_REVISION, 1, sid));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALLOTTED_SPACE_EXCEEDED));
  EXPECT_FALSE(InitializeAcl(acl, 4, ACL_REVISION));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  FreeSid(sid);
}

TEST_F(SimKernel, TokensAndPrivilegesOnTheNtFamily) {
  auto machine = UseFreshMachine(Release::WinXP);
  machine->facts().administrator = false;
  HANDLE token = nullptr;
  EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_TOKEN));

  ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token));
  TOKEN_PRIVILEGES request{};
  request.PrivilegeCount = 1;
  request.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
  LUID none{};
  EXPECT_FALSE(LookupPrivilegeValueA(nullptr, "SeNoSuchPrivilege", &none));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_SUCH_PRIVILEGE));
  // Names match without case. Every user holds the shutdown privilege; only administrators
  // hold the debug privilege.
  ASSERT_TRUE(LookupPrivilegeValueA(nullptr, "seshutdownprivilege", &request.Privileges[0].Luid));
  EXPECT_EQ(request.Privileges[0].Luid.LowPart, 19u);
  EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &request, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_EQ(machine->enabledPrivileges().count("SeShutdownPrivilege"), 1u);
  ASSERT_TRUE(LookupPrivilegeValueA(nullptr, "SeDebugPrivilege", &request.Privileges[0].Luid));
  EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &request, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ALL_ASSIGNED));
  EXPECT_EQ(machine->enabledPrivileges().count("SeDebugPrivilege"), 0u);

  // Disabling all reports what was enabled before.
  TOKEN_PRIVILEGES previous{};
  DWORD length = 0;
  EXPECT_TRUE(AdjustTokenPrivileges(token, TRUE, nullptr, sizeof previous, &previous, &length));
  EXPECT_EQ(previous.PrivilegeCount, 1u);
  EXPECT_EQ(previous.Privileges[0].Luid.LowPart, 19u);
  EXPECT_EQ(previous.Privileges[0].Attributes, SE_PRIVILEGE_ENABLED);
  EXPECT_TRUE(machine->enabledPrivileges().empty());
  CloseHandle(token);

  ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
  EXPECT_FALSE(AdjustTokenPrivileges(token, TRUE, nullptr, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  CloseHandle(token);
}

TEST_F(SimKernel, Windows9xHasNoSecurityCalls) {
  for (Release release : {Release::Win95, Release::Win98, Release::WinME}) {
    UseFreshMachine(release);
    HANDLE token = nullptr;
    LUID luid{};
    PSID sid = nullptr;
    SID_IDENTIFIER_AUTHORITY nt = SECURITY_NT_AUTHORITY;
    EXPECT_FALSE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
    EXPECT_FALSE(ImpersonateSelf(SecurityImpersonation));
    EXPECT_FALSE(LookupPrivilegeValueA(nullptr, "SeShutdownPrivilege", &luid));
    EXPECT_FALSE(AllocateAndInitializeSid(&nt, 1, 32, 0, 0, 0, 0, 0, 0, 0, &sid));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
  }
}

TEST_F(SimKernel, ShutdownRequestsNeedThePrivilegeOnNtOnly) {
  auto nt = UseFreshMachine(Release::Win2000);
  EXPECT_FALSE(ExitWindowsEx(EWX_REBOOT, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PRIVILEGE_NOT_HELD));
  EXPECT_FALSE(InitiateSystemShutdownA(nullptr, nullptr, 0, TRUE, TRUE));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PRIVILEGE_NOT_HELD));
  nt->enabledPrivileges().insert("SeShutdownPrivilege");
  char remote[] = "\\\\ELSEWHERE";
  EXPECT_FALSE(InitiateSystemShutdownA(remote, nullptr, 0, TRUE, TRUE));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_NETPATH));
  EXPECT_TRUE(ExitWindowsEx(EWX_SHUTDOWN | EWX_FORCE, 0));
  ASSERT_EQ(nt->shutdownRequests().size(), 1u);
  EXPECT_TRUE(nt->shutdownRequests()[0].force);
  EXPECT_FALSE(nt->shutdownRequests()[0].reboot);

  auto old = UseFreshMachine(Release::Win95);
  EXPECT_TRUE(ExitWindowsEx(EWX_REBOOT, 0));
  EXPECT_FALSE(InitiateSystemShutdownA(nullptr, nullptr, 0, TRUE, TRUE));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
  ASSERT_EQ(old->shutdownRequests().size(), 1u);
  EXPECT_TRUE(old->shutdownRequests()[0].reboot);
}

LONG_PTR Answer42() { return 42; }

TEST_F(SimKernel, ModulesAreFoundByCaseBlindNameAndCountLoads) {
  auto machine = UseFreshMachine(Release::Win95);  // a release without IP Helper
  EXPECT_EQ(LoadLibraryA("iphlpapi.dll"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));

  machine->modules()["IPHLPAPI.DLL"].entryPoints["GetIfTable"] = &Answer42;
  HMODULE module = LoadLibraryA("iphlpapi.dll");
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(LoadLibraryA("C:\\WINDOWS\\SYSTEM\\IpHlpApi"), module);  // ".dll" implied
  EXPECT_EQ(LoadLibraryA("iphlpapi."), nullptr);  // a trailing dot means no extension

  FARPROC entry = GetProcAddress(module, "GetIfTable");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry(), 42);
  EXPECT_EQ(GetProcAddress(module, "getiftable"), nullptr);  // entry names are case-sensitive
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));

  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_NE(GetProcAddress(module, "GetIfTable"), nullptr);  // one load remains
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_FALSE(FreeLibrary(module));
  EXPECT_EQ(GetProcAddress(module, "GetIfTable"), nullptr);
}

}  // namespace
}  // namespace Hostkit::platform
