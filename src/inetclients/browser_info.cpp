// Whether and where Internet Explorer is installed, its version, the current user's home page
// and the Internet Connection Wizard's completed flag.
#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "inetclients/configure_ie_impl.h"
#include "platform/environment.h"

namespace Hostkit {

namespace {

const WCHAR* const kExplorer = HK_WIDE("SOFTWARE\\Microsoft\\Internet Explorer");
const WCHAR* const kVersion = HK_WIDE("Version");
const WCHAR* const kSetupPaths[] = {HK_WIDE("SOFTWARE\\Microsoft\\IE Setup\\Setup"),
                                    HK_WIDE("SOFTWARE\\Microsoft\\IE4\\SETUP")};
const WCHAR* const kMain = HK_WIDE("Software\\Microsoft\\Internet Explorer\\Main");
const WCHAR* const kStartPage = HK_WIDE("Start Page");
const WCHAR* const kWizard = HK_WIDE("Software\\Microsoft\\Internet Connection Wizard");
const WCHAR* const kCompleted = HK_WIDE("Completed");

// Room for the expanded program folder, terminator included; a longer expansion is cut.
constexpr DWORD kExpandedPathSize = 100;

// `text` with its environment variables expanded, as far as the buffer holds it.
bool ExpandEnvironment(const wstring& text, wstring& expanded) {
  std::string narrow;
  if (!ConvertUnicodeToANSI(text, narrow)) {
    return false;
  }
  std::array<char, kExpandedPathSize> buffer{};
  if (platform::ExpandEnvironmentStringsA(narrow.c_str(), buffer.data(), kExpandedPathSize) == 0) {
    return false;
  }
  const auto end = std::find(buffer.begin(), buffer.end(), '\0');
  return ConvertANSIToUnicode(std::string(buffer.begin(), end), expanded);
}

// The version text's dots: the first at `first`, the next after it at `second` (npos if absent).
struct Dots {
  std::size_t first;
  std::size_t second;
};

bool ReadVersionDots(wstring& version, Dots& dots) {
  if (!RegWiz().DoesKeyExist(HKEY_LOCAL_MACHINE, kExplorer) ||
      !RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, kExplorer, kVersion, version)) {
    return false;
  }
  dots.first = version.find(u'.');
  dots.second = dots.first == wstring::npos ? wstring::npos : version.find(u'.', dots.first + 1);
  return true;
}

}  // namespace

bool ReadInto(HKEY root, const WCHAR* path, const WCHAR* name, wstring& value) {
  wstring text;
  if (!RegWiz().GetKeyVal(root, path, name, text)) {
    return false;
  }
  value = std::move(text);
  return true;
}

bool ConfigureIE_impl::IsInstalled() {
  return RegWiz().DoesKeyExist(HKEY_LOCAL_MACHINE, kExplorer);
}

bool ConfigureIE_impl::GetProgramPath(wstring& path) {
  wstring text;
  RegWiz reg;
  if (!reg.GetKeyVal(HKEY_LOCAL_MACHINE, kSetupPaths[0], HK_WIDE("Path"), text) &&
      !reg.GetKeyVal(HKEY_LOCAL_MACHINE, kSetupPaths[1], HK_WIDE("Path"), text)) {
    return false;
  }
  if (!text.empty() && text.front() == u'%') {
    return ExpandEnvironment(text, path);
  }
  path = text;
  return true;
}

bool ConfigureIE_impl::GetVersionString(wstring& version) {
  return IsInstalled() && ReadInto(HKEY_LOCAL_MACHINE, kExplorer, kVersion, version);
}

bool ConfigureIE_impl::GetMajorVersion(int& major) {
  wstring version;
  Dots dots{};
  if (!ReadVersionDots(version, dots) || dots.first == wstring::npos || dots.first < 1) {
    return false;
  }
  major = ie_text::LeadingDecimal(version.substr(0, dots.first));
  return true;
}

// The second dot is required: "5.50" has no minor version in this sense.
bool ConfigureIE_impl::GetMinorVersion(int& minor) {
  wstring version;
  Dots dots{};
  if (!ReadVersionDots(version, dots) || dots.second == wstring::npos ||
      dots.second == dots.first + 1) {
    return false;
  }
  minor = ie_text::LeadingDecimal(version.substr(dots.first + 1, dots.second - dots.first - 1));
  return true;
}

bool ConfigureIE_impl::GetHomePage(wstring& url) {
  return ReadInto(HKEY_CURRENT_USER, kMain, kStartPage, url);
}

bool ConfigureIE_impl::SetHomePage(const wstring& url) {
  return IsInstalled() && RegWiz().SetKeyVal(HKEY_CURRENT_USER, kMain, kStartPage, url.c_str());
}

// Windows 9x keeps one wizard flag for the machine's default user; the NT family one per user
// who has run the wizard, and users without its key are left alone.
bool ConfigureIE_impl::DisableConnectionWizard() {
  const std::vector<unsigned char> completed{0x01, 0x00, 0x00, 0x00};
  RegWiz reg;
  OS os;
  if (os.IsWin95() || os.IsWin98() || os.IsWinME()) {
    return reg.SetBinaryKeyVal(HKEY_USERS, (wstring(HK_WIDE(".Default\\")) + kWizard).c_str(),
                               kCompleted, completed);
  }
  if (!os.IsWinNT()) {
    return false;
  }
  std::vector<wstring> users;
  if (!reg.GetSubKeyNames(HKEY_USERS, HK_WIDE(""), users)) {
    return false;
  }
  bool wrote = false;
  for (const wstring& user : users) {
    const wstring key = user + HK_WIDE("\\") + kWizard;
    if (reg.DoesKeyExist(HKEY_USERS, key.c_str()) &&
        reg.SetBinaryKeyVal(HKEY_USERS, key.c_str(), kCompleted, completed)) {
      wrote = true;
    }
  }
  return wrote;
}

}  // namespace Hostkit
