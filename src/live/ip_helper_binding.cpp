// IP Helper bound at run time.
//
// A lease request names its adapter by the adapter name GetAdaptersInfo reports, while
// GetInterfaceInfo names the TCP/IP driver's device for it ("\DEVICE\TCPIP_{GUID}"). An index
// map entry belongs to the adapter when its name equals the adapter name or ends with it right
// after a "_" or "\", compared without regard to case; the first such entry is used.
#include "live/ip_helper_binding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <utility>

#include "hostkit/adapter_classification.h"
#include "hostkit/strings.h"
#include "live/hardware_address_text.h"
#include "platform/iphlpapi.h"
#include "platform/modules.h"

namespace Hostkit::live {

namespace {

namespace ip = platform::iphlpapi;

constexpr DWORD kSuccess = 0;

// A caller's buffer for a table call, aligned for the records the call writes into it.
class TableBuffer {
 public:
  void Resize(ULONG bytes) { words_.assign((static_cast<std::size_t>(bytes) + 7) / 8, 0); }
  template <class T>
  T* As() {
    return reinterpret_cast<T*>(words_.data());
  }

 private:
  std::vector<std::uint64_t> words_;
};

// A table call with IP Helper's size protocol: asked with a zero size first; when it answers
// one of `retry` with the size it needs, asked again with that size plus 2 bytes. True when the
// second call succeeds.
template <class Record, class Call>
bool CallTable(Call call, std::initializer_list<DWORD> retry, TableBuffer& buffer) {
  ULONG size = 0;
  const DWORD first = call(static_cast<Record*>(nullptr), &size);
  if (std::find(retry.begin(), retry.end(), first) == retry.end()) {
    return false;
  }
  size += 2;
  buffer.Resize(size);
  return call(buffer.As<Record>(), &size) == kSuccess;
}

template <std::size_t N>
std::string FieldText(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

wstring Wide(const std::string& text) {
  wstring wide;
  ConvertANSIToUnicode(text, wide);
  return wide;
}

struct DefaultRoute {
  DWORD index;
  std::string nextHop;
};

// The default routes in table order, as (interface index, next hop) pairs.
std::vector<DefaultRoute> DefaultRoutes(FARPROC entry) {
  std::vector<DefaultRoute> routes;
  const auto getTable = platform::ProcAs<ip::GetIpForwardTableProc>(entry);
  TableBuffer buffer;
  const auto call = [getTable](ip::IpForwardTable* table, ULONG* size) {
    return getTable(table, size, FALSE);
  };
  if (!CallTable<ip::IpForwardTable>(call, {ip::kBufferOverflow, ip::kInsufficientBuffer},
                                     buffer)) {
    return routes;
  }
  const auto* table = buffer.As<ip::IpForwardTable>();
  for (DWORD i = 0; i < table->numEntries; ++i) {
    const ip::IpForwardRow& row = table->table[i];
    if (row.forwardDest == 0 && row.forwardMask == 0) {
      BYTE hop[4];
      std::memcpy(hop, &row.forwardNextHop, sizeof hop);
      routes.push_back({row.forwardIfIndex, FormatDottedQuad(hop)});
    }
  }
  return routes;
}

char Lower(WCHAR c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : static_cast<char>(c);
}

bool NamesAdapter(const WCHAR* entry, std::size_t capacity, const wstring& adapterName) {
  std::size_t length = 0;
  while (length < capacity && entry[length] != 0) {
    ++length;
  }
  if (adapterName.empty() || length < adapterName.size()) {
    return false;
  }
  const std::size_t start = length - adapterName.size();
  for (std::size_t i = 0; i < adapterName.size(); ++i) {
    if (entry[start + i] != adapterName[i] && Lower(entry[start + i]) != Lower(adapterName[i])) {
      return false;
    }
  }
  return start == 0 || entry[start - 1] == '_' || entry[start - 1] == '\\';
}

// GetNetworkParams' record: the DNS servers and the domain.
bool ReadNetworkParams(FARPROC entry, TableBuffer& buffer) {
  return CallTable<ip::FixedInfo>(platform::ProcAs<ip::GetNetworkParamsProc>(entry),
                                  {ip::kBufferOverflow}, buffer);
}

}  // namespace

IpHelperBinding::IpHelperBinding() {
  module_ = platform::LoadLibraryA(ip::kModule);
  if (module_ == nullptr) {
    return;
  }
  const std::pair<FARPROC*, const char*> entries[] = {
      {&ipReleaseAddress_, ip::kIpReleaseAddress}, {&ipRenewAddress_, ip::kIpRenewAddress},
      {&getInterfaceInfo_, ip::kGetInterfaceInfo}, {&getAdaptersInfo_, ip::kGetAdaptersInfo},
      {&getNetworkParams_, ip::kGetNetworkParams}, {&getIpForwardTable_, ip::kGetIpForwardTable}};
  bool all = true;
  for (const auto& [slot, name] : entries) {
    *slot = platform::GetProcAddress(module_, name);
    all = all && *slot != nullptr;
  }
  failed_ = !all;
}

IpHelperBinding::~IpHelperBinding() {
  if (module_ != nullptr) {
    platform::FreeLibrary(module_);
  }
}

bool IpHelperBinding::Usable() const { return !failed_; }

bool IpHelperBinding::AdapterRows(std::vector<IpHelperRow>& rows) const {
  rows.clear();
  if (failed_) {
    return false;
  }
  try {
    const std::vector<DefaultRoute> routes = DefaultRoutes(getIpForwardTable_);
    TableBuffer buffer;
    if (!CallTable<ip::IpAdapterInfo>(platform::ProcAs<ip::GetAdaptersInfoProc>(getAdaptersInfo_),
                                      {ip::kBufferOverflow}, buffer)) {
      return false;
    }
    for (const ip::IpAdapterInfo* entry = buffer.As<ip::IpAdapterInfo>(); entry != nullptr;
         entry = entry->next) {
      IpHelperRow row;
      const std::string description = FieldText(entry->description);
      row.description = Wide(FieldText(entry->adapterName));
      row.serviceName = Wide(description);
      row.ipAddress = FieldText(entry->ipAddressList.ipAddress);
      row.subnetMask = FieldText(entry->ipAddressList.ipMask);
      for (const DefaultRoute& route : routes) {
        if (route.index == entry->index) {
          row.defaultGateway = route.nextHop;
        }
      }
      row.hardwareAddress = FormatHardwareAddress(
          entry->address, std::min<std::size_t>(entry->addressLength, ip::kMaxAdapterAddress));
      row.dhcpServer = FieldText(entry->dhcpServer.ipAddress);
      row.dhcp = entry->dhcpEnabled != 0;
      row.ethernet =
          DoesMacOrDescBelongToPhysicalAdapter(row.hardwareAddress.c_str(), description.c_str());
      rows.push_back(std::move(row));
    }
    return true;
  } catch (...) {
    rows.clear();
    return false;
  }
}

bool IpHelperBinding::DnsServers(std::vector<std::string>& servers) const {
  servers.clear();
  if (failed_) {
    return false;
  }
  try {
    TableBuffer buffer;
    if (!ReadNetworkParams(getNetworkParams_, buffer)) {
      return false;
    }
    for (const ip::IpAddrString* server = &buffer.As<ip::FixedInfo>()->dnsServerList;
         server != nullptr; server = server->next) {
      std::string text = FieldText(server->ipAddress);
      if (!text.empty()) {  // a machine without DNS servers leaves the first entry empty
        servers.push_back(std::move(text));
      }
    }
    return true;
  } catch (...) {
    servers.clear();
    return false;
  }
}

bool IpHelperBinding::DomainName(std::string& domain) const {
  domain.clear();
  if (failed_) {
    return false;
  }
  try {
    TableBuffer buffer;
    if (!ReadNetworkParams(getNetworkParams_, buffer)) {
      return false;
    }
    domain = FieldText(buffer.As<ip::FixedInfo>()->domainName);
    return true;
  } catch (...) {
    return false;
  }
}

bool IpHelperBinding::AddressRequest(const wstring& adapterName, FARPROC request) const {
  if (failed_) {
    return false;
  }
  try {
    TableBuffer buffer;
    if (!CallTable<ip::IpInterfaceInfo>(
            platform::ProcAs<ip::GetInterfaceInfoProc>(getInterfaceInfo_),
            {ip::kBufferOverflow, ip::kInsufficientBuffer}, buffer)) {
      return false;
    }
    auto* table = buffer.As<ip::IpInterfaceInfo>();
    for (LONG i = 0; i < table->numAdapters; ++i) {
      ip::IpAdapterIndexMap& entry = table->adapter[i];
      if (NamesAdapter(entry.name, ip::kMaxInterfaceName, adapterName)) {
        return platform::ProcAs<ip::IpReleaseAddressProc>(request)(&entry) == kSuccess;
      }
    }
    return false;
  } catch (...) {
    return false;
  }
}

bool IpHelperBinding::ReleaseAddress(const wstring& adapterName) const {
  return AddressRequest(adapterName, ipReleaseAddress_);
}

bool IpHelperBinding::RenewAddress(const wstring& adapterName) const {
  return AddressRequest(adapterName, ipRenewAddress_);
}

}  // namespace Hostkit::live
