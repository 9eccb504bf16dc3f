// OS: the Windows release from the version record, and the shell that forwards to OS_impl.
#include "hostkit/os.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "foundation/os_impl.h"
#include "foundation/shell_impl.h"
#include "hostkit/regwiz.h"
#include "platform/system_info.h"

namespace Hostkit {

template class Pimpl<OS_impl>;

namespace {

// The version record: the basic form, or the extended one (whose tail stays zero when only
// the basic form answers).
bool QueryVersion(OSVERSIONINFOEXA& info, bool extended) {
  info = OSVERSIONINFOEXA{};
  info.dwOSVersionInfoSize = extended ? sizeof(OSVERSIONINFOEXA) : sizeof(OSVERSIONINFOA);
  return platform::GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info)) != FALSE;
}

// The service pack number in "Service Pack N", 0 when the text says otherwise.
int ServicePackNumber(const char* serviceText) {
  int number = 0;
  return std::sscanf(serviceText, "Service Pack %d", &number) == 1 ? number : 0;
}

// Whether either of the first two characters of the service text is `letter`.
bool ServiceLetter(const char* serviceText, char letter) {
  return serviceText[0] == letter || (serviceText[0] != '\0' && serviceText[1] == letter);
}

OS::EXACT_TYPE Win9xExactType(const OSVERSIONINFOEXA& info) {
  const char* serviceText = info.szCSDVersion;
  if (info.dwMinorVersion == 0) {
    if (ServiceLetter(serviceText, 'C')) {
      return OS::EXACT_WIN95_C;
    }
    return ServiceLetter(serviceText, 'B') ? OS::EXACT_WIN95_B : OS::EXACT_WIN95;
  }
  if (info.dwMinorVersion <= 10) {
    return ServiceLetter(serviceText, 'A') ? OS::EXACT_WIN98_A : OS::EXACT_WIN98;
  }
  return OS::EXACT_WINME;
}

// `first` for service pack 0, the next values for the following packs up to `lastPack`, and
// `other` for any other number.
OS::EXACT_TYPE ByServicePack(int servicePack, OS::EXACT_TYPE first, int lastPack,
                             OS::EXACT_TYPE other) {
  if (servicePack < 0 || servicePack > lastPack) {
    return other;
  }
  return static_cast<OS::EXACT_TYPE>(first + servicePack);
}

OS::EXACT_TYPE NtExactType(const OSVERSIONINFOEXA& info) {
  const int servicePack = ServicePackNumber(info.szCSDVersion);
  if (info.dwMajorVersion != 5) {
    return ByServicePack(servicePack, OS::EXACT_WINNT4_SP0, 6, OS::EXACT_WINNT4_SPX);
  }
  if (info.dwMinorVersion == 1) {
    return (info.wSuiteMask & VER_SUITE_PERSONAL) != 0 ? OS::EXACT_WINXP_HOME : OS::EXACT_WINXP_PRO;
  }
  if ((info.wSuiteMask & VER_SUITE_DATACENTER) != 0) {
    return ByServicePack(servicePack, OS::EXACT_WIN2000_DATACENTER_SP0, 3,
                         OS::EXACT_WIN2000_DATACENTER_SPX);
  }
  if ((info.wSuiteMask & VER_SUITE_ENTERPRISE) != 0) {
    return ByServicePack(servicePack, OS::EXACT_WIN2000_ENTERPRISE_SP0, 3,
                         OS::EXACT_WIN2000_ENTERPRISE_SPX);
  }
  if (info.wProductType == VER_NT_WORKSTATION) {
    return ByServicePack(servicePack, OS::EXACT_WIN2000_PRO_SP0, 3, OS::EXACT_WIN2000_PRO_SPX);
  }
  return ByServicePack(servicePack, OS::EXACT_WIN2000_SERVER_SP0, 3, OS::EXACT_WIN2000_SERVER_SPX);
}

}  // namespace

OS::TYPE OS_impl::Type() {
  OSVERSIONINFOEXA info;
  if (!QueryVersion(info, false)) {
    return OS::TYPE_UNKNOWN;
  }
  if (info.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS) {
    if (info.dwMinorVersion == 0) {
      return OS::TYPE_WIN95;
    }
    return info.dwMinorVersion <= 10 ? OS::TYPE_WIN98 : OS::TYPE_WINME;
  }
  if (info.dwPlatformId == VER_PLATFORM_WIN32_NT) {
    if (info.dwMajorVersion > 4) {
      return info.dwMinorVersion > 0 ? OS::TYPE_WINXP : OS::TYPE_WIN2000;
    }
    return OS::TYPE_WINNT4;
  }
  return OS::TYPE_UNKNOWN;
}

OS::EXACT_TYPE OS_impl::ExactType() {
  OSVERSIONINFOEXA info;
  if (!QueryVersion(info, true) && !QueryVersion(info, false)) {
    return OS::EXACT_UNKNOWN;
  }
  switch (info.dwPlatformId) {
    case VER_PLATFORM_WIN32_WINDOWS:
      return Win9xExactType(info);
    case VER_PLATFORM_WIN32_NT:
      return NtExactType(info);
    default:
      return OS::EXACT_UNKNOWN;
  }
}

int OS_impl::MajorVersion() {
  OSVERSIONINFOEXA info;
  return QueryVersion(info, false) ? static_cast<int>(info.dwMajorVersion) : -1;
}

int OS_impl::MinorVersion() {
  OSVERSIONINFOEXA info;
  return QueryVersion(info, false) ? static_cast<int>(info.dwMinorVersion) : -1;
}

// major.minor read as a decimal number: 4.10 is 4.1, 4.90 is 4.9.
double OS_impl::Version() {
  OSVERSIONINFOEXA info;
  if (!QueryVersion(info, false)) {
    return -1.0;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%d.%d", static_cast<int>(info.dwMajorVersion),
                static_cast<int>(info.dwMinorVersion));
  return std::strtod(text, nullptr);
}

int OS_impl::BuildNumber() {
  if (IsWin9xType(Type())) {
    return -1;
  }
  std::string build;
  if (!RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                          "CurrentBuildNumber", build)) {
    return -1;
  }
  return std::atoi(build.c_str());
}

int OS_impl::NTSP() {
  OSVERSIONINFOEXA info;
  if (!QueryVersion(info, false) || info.dwPlatformId != VER_PLATFORM_WIN32_NT) {
    return -1;
  }
  return ServicePackNumber(info.szCSDVersion);
}

OS::OS() = default;
OS::OS(const OS& other) = default;
OS& OS::operator=(const OS& other) = default;
OS::~OS() = default;

OS::TYPE OS::Type() {
  return Forward(impl_, TYPE_UNKNOWN, [](OS_impl& impl) { return impl.Type(); });
}
OS::EXACT_TYPE OS::ExactType() {
  return Forward(impl_, EXACT_UNKNOWN, [](OS_impl& impl) { return impl.ExactType(); });
}

bool OS::IsWin9x() { return IsWin9xType(Type()); }
bool OS::IsWin95() { return Type() == TYPE_WIN95; }
bool OS::IsWin98() { return Type() == TYPE_WIN98; }
bool OS::IsWinME() { return Type() == TYPE_WINME; }
bool OS::IsWinNT() { return IsWinNTType(Type()); }
bool OS::IsWinNT4() { return Type() == TYPE_WINNT4; }
bool OS::IsWin2000() { return Type() == TYPE_WIN2000; }
bool OS::IsWinXP() { return Type() == TYPE_WINXP; }

int OS::MajorVersion() {
  return Forward(impl_, -1, [](OS_impl& impl) { return impl.MajorVersion(); });
}
int OS::MinorVersion() {
  return Forward(impl_, -1, [](OS_impl& impl) { return impl.MinorVersion(); });
}
double OS::Version() {
  return Forward(impl_, -1.0, [](OS_impl& impl) { return impl.Version(); });
}
int OS::BuildNumber() {
  return Forward(impl_, -1, [](OS_impl& impl) { return impl.BuildNumber(); });
}
int OS::NTSP() {
  return Forward(impl_, -1, [](OS_impl& impl) { return impl.NTSP(); });
}

bool OS::Reboot(bool force) {
  return Forward(impl_, false, [&](OS_impl& impl) { return impl.Reboot(force); });
}
bool OS::Shutdown(bool force) {
  return Forward(impl_, false, [&](OS_impl& impl) { return impl.Shutdown(force); });
}
bool OS::AddProgramToStartup(const char* path) {
  return Forward(impl_, false, [&](OS_impl& impl) { return impl.AddProgramToStartup(path); });
}
bool OS::RemoveProgramFromStartup(const char* path) {
  return Forward(impl_, false, [&](OS_impl& impl) { return impl.RemoveProgramFromStartup(path); });
}
bool OS::IsUserAdministrator() {
  return Forward(impl_, false, [](OS_impl& impl) { return impl.IsUserAdministrator(); });
}
bool OS::SystemDefaultLanguage(unsigned int& langId, char* name) {
  return Forward(impl_, false,
                 [&](OS_impl& impl) { return impl.SystemDefaultLanguage(langId, name); });
}

}  // namespace Hostkit
