// OS: restart and shutdown, programs started with Windows, and the administrator test.
#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "foundation/os_impl.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "platform/handles.h"
#include "platform/security.h"
#include "platform/shutdown.h"
#include "platform/system_info.h"

namespace Hostkit {

namespace {

constexpr const char* kRunKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

// Enables SeShutdownPrivilege on the process token. Failures are ignored: the shutdown call
// that follows reports them.
void EnableShutdownPrivilege() {
  HANDLE token = nullptr;
  if (platform::OpenProcessToken(platform::GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token) ==
      FALSE) {
    return;
  }
  TOKEN_PRIVILEGES privileges{};
  privileges.PrivilegeCount = 1;
  privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
  if (platform::LookupPrivilegeValueA(nullptr, "SeShutdownPrivilege",
                                      &privileges.Privileges[0].Luid) != FALSE) {
    platform::AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
  }
  platform::CloseHandle(token);
}

// Windows 9x restarts or powers down through ExitWindowsEx. The NT family needs the shutdown
// privilege first; NT 4, and any forced request, goes through InitiateSystemShutdown, which
// closes applications without asking them.
bool RequestShutdown(OS::TYPE type, bool reboot, bool force) {
  const UINT flag = reboot ? EWX_REBOOT : EWX_SHUTDOWN;
  if (IsWin9xType(type)) {
    return platform::ExitWindowsEx(flag, 0) != FALSE;
  }
  if (!IsWinNTType(type)) {
    return false;
  }
  EnableShutdownPrivilege();
  if (type == OS::TYPE_WINNT4 || force) {
    return platform::InitiateSystemShutdownA(nullptr, nullptr, 0, TRUE, reboot ? TRUE : FALSE) !=
           FALSE;
  }
  return platform::ExitWindowsEx(flag, 0) != FALSE;
}

// The program a startup entry is about: `path`, or the running executable when it is null or
// empty.
std::string ProgramPath(const char* path) {
  if (path != nullptr && *path != '\0') {
    return path;
  }
  char buffer[264] = {};
  const DWORD length = platform::GetModuleFileNameA(nullptr, buffer, sizeof buffer);
  return std::string(buffer, std::min<std::size_t>(length, sizeof buffer));
}

// The path's short form (Windows 9x keeps startup entries in 8.3 form); the path itself when
// the system cannot shorten it.
std::string ShortForm(const std::string& path) {
  char buffer[259] = {};
  const DWORD length = platform::GetShortPathNameA(path.c_str(), buffer, sizeof buffer);
  return length > 0 && length < sizeof buffer ? std::string(buffer, length) : path;
}

// The file name after the last "\" or "/", without what follows its last ".".
std::string BaseName(const std::string& path) {
  const std::size_t separator = path.find_last_of("\\/");
  std::string name = separator == std::string::npos ? path : path.substr(separator + 1);
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos ? name : name.substr(0, dot);
}

bool Contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// The base name when no value has it, else "base(n)" for the first free n from 1; after 100
// taken candidates the last one is used anyway.
std::string FreeValueName(const std::string& base, const std::vector<std::string>& names) {
  if (!Contains(names, base)) {
    return base;
  }
  std::string candidate;
  for (int n = 1; n <= 100; ++n) {
    candidate = base + "(" + std::to_string(n) + ")";
    if (!Contains(names, candidate)) {
      break;
    }
  }
  return candidate;
}

std::vector<std::string> RunValueNames(RegWiz& registry) {
  std::vector<std::string> names;
  registry.GetValNames(HKEY_LOCAL_MACHINE, kRunKey, names);
  return names;
}

// Those of `names` whose text is exactly `program`.
std::vector<std::string> ValuesStarting(RegWiz& registry, const std::vector<std::string>& names,
                                        const std::string& program) {
  std::vector<std::string> starting;
  for (const auto& name : names) {
    std::string text;
    if (registry.GetKeyVal(HKEY_LOCAL_MACHINE, kRunKey, name.c_str(), text) && text == program) {
      starting.push_back(name);
    }
  }
  return starting;
}

// Grants read and write (1 and 2) to the Administrators group only, and asks for read.
constexpr ACCESS_MASK kAdminsAllowed = 3;
constexpr ACCESS_MASK kDesiredAccess = 1;
static_assert(sizeof(PRIVILEGE_SET) == 20);

// Whether the token passes an access check against a descriptor that admits only the
// Administrators group. A successful check ends the thread's impersonation.
bool AdministratorsOnlyCheck(HANDLE token, PSID admins) {
  const DWORD aclSize = platform::GetLengthSid(admins) + 16;
  std::vector<DWORD> aclBuffer((aclSize + sizeof(DWORD) - 1) / sizeof(DWORD));
  auto* acl = reinterpret_cast<PACL>(aclBuffer.data());
  SECURITY_DESCRIPTOR descriptor{};
  if (platform::InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) == FALSE ||
      platform::InitializeAcl(acl, aclSize, ACL_REVISION) == FALSE ||
      platform::AddAccessAllowedAce(acl, ACL_REVISION, kAdminsAllowed, admins) == FALSE ||
      platform::SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE) == FALSE ||
      platform::SetSecurityDescriptorOwner(&descriptor, admins, FALSE) == FALSE ||
      platform::SetSecurityDescriptorGroup(&descriptor, admins, FALSE) == FALSE) {
    return false;
  }
  GENERIC_MAPPING mapping{1, 2, 0, 3};
  PRIVILEGE_SET privileges{};
  DWORD privilegesLength = sizeof privileges;
  DWORD granted = 0;
  BOOL status = FALSE;
  if (platform::AccessCheck(&descriptor, token, kDesiredAccess, &mapping, &privileges,
                            &privilegesLength, &granted, &status) == FALSE) {
    std::printf("AccessCheck() failed with error %lu\n",
                static_cast<unsigned long>(platform::GetLastError()));
    return false;
  }
  platform::RevertToSelf();
  return status != FALSE;
}

}  // namespace

bool OS_impl::Reboot(bool force) { return RequestShutdown(Type(), true, force); }

bool OS_impl::Shutdown(bool force) { return RequestShutdown(Type(), false, force); }

// A program already registered (some value's text is its path) is written again under its
// base name; otherwise it gets a free value name. Registry failures are not reported.
bool OS_impl::AddProgramToStartup(const char* path) {
  std::string program = ProgramPath(path);
  if (!FileExists(program.c_str())) {
    return false;
  }
  const std::string base = BaseName(program);
  if (IsWin9xType(Type())) {
    program = ShortForm(program);
  }
  RegWiz registry;
  const std::vector<std::string> names = RunValueNames(registry);
  const bool registered = !ValuesStarting(registry, names, program).empty();
  const std::string valueName = registered ? base : FreeValueName(base, names);
  registry.SetKeyVal(HKEY_LOCAL_MACHINE, kRunKey, valueName.c_str(), program.c_str());
  return true;
}

bool OS_impl::RemoveProgramFromStartup(const char* path) {
  std::string program = ProgramPath(path);
  if (!FileExists(program.c_str())) {
    return false;
  }
  if (IsWin9xType(Type())) {
    program = ShortForm(program);
  }
  RegWiz registry;
  for (const auto& name : ValuesStarting(registry, RunValueNames(registry), program)) {
    registry.DeleteKeyVal(HKEY_LOCAL_MACHINE, kRunKey, name.c_str());
  }
  return true;
}

// On the NT family: impersonate the process's own context and ask AccessCheck whether the
// token may read an object only Administrators may read.
bool OS_impl::IsUserAdministrator() {
  const OS::TYPE type = Type();
  if (IsWin9xType(type)) {
    return true;
  }
  if (!IsWinNTType(type)) {
    return false;
  }
  platform::ImpersonateSelf(SecurityImpersonation);
  HANDLE token = nullptr;
  if (platform::OpenThreadToken(platform::GetCurrentThread(), TOKEN_QUERY, TRUE, &token) == FALSE) {
    if (platform::GetLastError() != static_cast<DWORD>(ERROR_NO_TOKEN) ||
        platform::OpenProcessToken(platform::GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) {
      return false;
    }
  }
  SID_IDENTIFIER_AUTHORITY ntAuthority = SECURITY_NT_AUTHORITY;
  PSID admins = nullptr;
  bool granted = false;
  if (platform::AllocateAndInitializeSid(&ntAuthority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                         DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0,
                                         &admins) != FALSE) {
    granted = AdministratorsOnlyCheck(token, admins);
    platform::FreeSid(admins);
  }
  platform::CloseHandle(token);
  return granted;
}

}  // namespace Hostkit
