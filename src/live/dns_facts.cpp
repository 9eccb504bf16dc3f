// LiveTcpipInfo's system-wide facts: the DNS servers, the DNS domain and the search list, from
// IP Helper where the family has it in use and from the registry otherwise.
#include <algorithm>
#include <string_view>
#include <utility>

#include "hostkit/os.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "live/dhcp_client.h"
#include "live/ip_helper_binding.h"
#include "live/live_tcpip_impl.h"

namespace Hostkit {

namespace {

constexpr const char* kNtParameters = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters";
constexpr const char* kNtTransient =
    "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Transient";
constexpr const char* kNtParametersMixedCase =
    "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
constexpr const char* k9xParameters = "SYSTEM\\CurrentControlSet\\Services\\VxD\\MSTCP";
constexpr const char* k9xParametersMixedCase = "System\\CurrentControlSet\\Services\\VxD\\MSTCP";

// The search list is copied into a buffer of this many characters on 9x and NT 4.
constexpr size_t kSearchListBuffer = 500;

std::string Trim(const std::string& text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Cuts at every " " and ",": two adjacent separators give an empty server between them. An
// empty text gives no server at all rather than one empty one.
std::vector<std::string> SplitServers(const std::string& text) {
  std::vector<std::string> servers;
  if (text.empty()) {
    return servers;
  }
  size_t start = 0;
  for (size_t cut = text.find_first_of(" ,"); cut != std::string::npos;
       cut = text.find_first_of(" ,", start)) {
    servers.push_back(text.substr(start, cut - start));
    start = cut + 1;
  }
  servers.push_back(text.substr(start));
  return servers;
}

// "NameServer" and "DhcpNameServer" of an NT key joined into one list; `read` tells whether
// either value could be read.
std::vector<std::string> NtServers(RegWiz& registry, const char* key, bool& read) {
  std::string configured;
  std::string fromDhcp;
  read = registry.GetKeyVal(HKEY_LOCAL_MACHINE, key, "NameServer", configured) | read;
  read = registry.GetKeyVal(HKEY_LOCAL_MACHINE, key, "DhcpNameServer", fromDhcp) | read;
  std::string joined = Trim(configured);
  fromDhcp = Trim(fromDhcp);
  if (!fromDhcp.empty()) {
    joined += " " + fromDhcp;
  }
  return SplitServers(Trim(joined));
}

wstring Widened(const std::string& text) {
  wstring wide;
  ConvertANSIToUnicode(text, wide);
  return wide;
}

// The registry's "SearchList" cut into its non-empty entries; `limit` characters at most.
std::vector<wstring> SearchList(const char* key, size_t limit) {
  RegWiz registry;
  wstring path = Widened(key);
  wstring list;
  if (!registry.GetKeyVal(HKEY_LOCAL_MACHINE, path.c_str(), HK_WIDE("SearchList"), list)) {
    return {};
  }
  if (list.size() > limit) {
    list.resize(limit);
  }
  std::vector<wstring> domains;
  size_t start = 0;
  while (start <= list.size()) {
    size_t cut = list.find(HK_WIDE(','), start);
    if (cut == wstring::npos) {
      cut = list.size();
    }
    if (cut > start) {
      domains.push_back(list.substr(start, cut - start));
    }
    start = cut + 1;
  }
  return domains;
}

}  // namespace

bool LiveTcpipInfo_impl::GetDnsServers(std::vector<std::string>& servers) {
  OS os;
  std::vector<std::string> found;
  if (!os.IsWin95() && !os.IsWin98() && live::IpHelperBinding().DnsServers(found) &&
      !found.empty()) {
    servers = std::move(found);
    return true;
  }
  RegWiz registry;
  bool read = false;
  if (os.IsWin9x()) {
    std::string text;
    read = registry.GetKeyVal(HKEY_LOCAL_MACHINE, k9xParameters, "NameServer", text);
    found = SplitServers(text);
  } else {
    found = NtServers(registry, kNtParameters, read);
    for (std::string& server : NtServers(registry, kNtTransient, read)) {
      if (std::find(found.begin(), found.end(), server) == found.end()) {
        found.push_back(std::move(server));
      }
    }
  }
  servers = std::move(found);
  return read;
}

bool LiveTcpipInfo_impl::GetDomainName(wstring& domain) {
  OS os;
  std::string text;
  if (!os.IsWin95() && !os.IsWin98() && live::IpHelperBinding().DomainName(text)) {
    domain = Widened(Trim(text));
    return true;
  }
  RegWiz registry;
  if (os.IsWinNT4()) {
    registry.GetKeyVal(HKEY_LOCAL_MACHINE, kNtParametersMixedCase, "Domain", text);
    if (text.empty()) {
      registry.GetKeyVal(HKEY_LOCAL_MACHINE, kNtParametersMixedCase, "DhcpDomain", text);
    }
    domain = Widened(text);
    return true;
  }
  if (os.IsWin9x()) {
    registry.GetKeyVal(HKEY_LOCAL_MACHINE, k9xParametersMixedCase, "Domain", text);
    if (text.empty()) {
      live::QueryDhcpVxdDomain(text);
    }
    domain = Widened(Trim(text));
    return true;
  }
  return false;
}

bool LiveTcpipInfo_impl::GetDomainSearchList(std::vector<wstring>& domains) {
  OS os;
  if (os.IsWin9x()) {
    domains = SearchList(k9xParametersMixedCase, kSearchListBuffer);
  } else if (os.IsWinNT4()) {
    domains = SearchList(kNtParametersMixedCase, kSearchListBuffer);
  } else {
    domains = SearchList(kNtParametersMixedCase, wstring::npos);
  }
  return true;
}

}  // namespace Hostkit
