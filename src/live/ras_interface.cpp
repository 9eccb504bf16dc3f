// RasInterface: the phonebook, dialling, devices and connections over the run-time binding of
// rasapi32, and the shell that forwards to RasInterface_impl.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/shell_impl.h"
#include "hostkit/strings.h"
#include "live/ras_interface_impl.h"
#include "live/rasapi32_binding.h"
#include "platform/time.h"

namespace Hostkit {

template class Pimpl<RasInterface_impl>;

namespace {

namespace ras = platform::ras;
using live::RasApiBinding;

constexpr DWORD kPollMilliseconds = 100;
constexpr DWORD kHangUpWaitMilliseconds = 3000;

// A fixed-size text field up to its terminator or its end.
template <std::size_t N>
std::string Field(const char (&text)[N]) {
  return std::string(text, strnlen(text, N));
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// Whether a phonebook listing that could be read lacks the entry (names match without regard
// to case). Some Remote Access implementations answer success to a record query or a deletion
// of an entry they do not hold; the listing says what the phonebook has.
bool ListingLacks(const std::string& name) {
  std::vector<ras::EntryName> entries;
  if (RasApiBinding().EnumEntries(entries) != ras::kSuccess) {
    return false;  // no listing: the call itself answers
  }
  const std::string wanted = Lower(name);
  return std::none_of(entries.begin(), entries.end(), [&](const ras::EntryName& entry) {
    return Lower(Field(entry.szEntryName)) == wanted;
  });
}

RasInterface::DEVICE_TYPE TypeOf(const std::string& typeName) {
  const std::string lower = Lower(typeName);
  if (lower == "modem") {
    return RasInterface::DEVICE_TYPE_MODEM;
  }
  if (lower == "isdn") {
    return RasInterface::DEVICE_TYPE_ISDN;
  }
  return lower == "vpn" ? RasInterface::DEVICE_TYPE_VPN : RasInterface::DEVICE_TYPE_OTHER;
}

// The entry record as its newest form; fields the release does not have read as zero.
ras::Entry AsEntry(const std::vector<BYTE>& record) {
  ras::Entry entry{};
  std::memcpy(&entry, record.data(), std::min(record.size(), sizeof entry));
  return entry;
}

// Waits until the connection handle is no longer known, as the system needs before the port
// can be used again; at most the given time.
void WaitForEnd(const RasApiBinding& api, ras::HRASCONN connection) {
  const DWORD start = platform::GetTickCount();
  ras::ConnectionStatus status{};
  while (api.GetConnectStatus(connection, status) != ras::kInvalidHandle &&
         platform::GetTickCount() - start < kHangUpWaitMilliseconds) {
    platform::Sleep(kPollMilliseconds / 2);
  }
}

// The connections of the entry `name`.
std::vector<ras::HRASCONN> ConnectionsOf(const RasApiBinding& api, const std::string& name,
                                         DWORD& result) {
  std::vector<ras::Connection> connections;
  std::vector<ras::HRASCONN> handles;
  result = api.EnumConnections(connections);
  for (const ras::Connection& connection : connections) {
    if (Field(connection.szEntryName) == name) {
      // A copy: the record is packed, so its handle may sit at an address no reference may bind.
      handles.push_back(ras::HRASCONN{connection.hrasconn});
    }
  }
  return handles;
}

}  // namespace

bool RasInterface_impl::Keep(DWORD result) {
  lastError_ = result == RasApiBinding::kNotBound ? 0 : result;
  return result == ras::kSuccess;
}

std::vector<std::string> RasInterface_impl::GetEntries() {
  std::vector<ras::EntryName> entries;
  std::vector<std::string> names;
  if (Keep(RasApiBinding().EnumEntries(entries))) {
    for (const ras::EntryName& entry : entries) {
      names.push_back(Field(entry.szEntryName));
    }
  }
  return names;
}

bool RasInterface_impl::GetEntry(const std::string& name, RasInterface::EntryInfo& info) {
  std::vector<BYTE> record;
  if (ListingLacks(name)) {
    return Keep(ras::kCannotFindEntry);
  }
  if (!Keep(RasApiBinding().GetEntryProperties(name, record))) {
    return false;
  }
  const ras::Entry entry = AsEntry(record);
  info.name = name;
  info.areaCode = Field(entry.szAreaCode);
  info.phoneNumber = Field(entry.szLocalPhoneNumber);
  info.countryCode = entry.dwCountryCode;
  info.deviceType = Field(entry.szDeviceType);
  info.deviceName = Field(entry.szDeviceName);
  return true;
}

bool RasInterface_impl::CreateEntry(const std::string& name, const std::string& templateName,
                                    const std::string& phoneNumber) {
  RasApiBinding api;
  std::vector<BYTE> record;
  if (name.empty() || phoneNumber.size() > ras::kMaxPhoneNumber) {
    return Keep(RasApiBinding::kNotBound);
  }
  if (api.GetEntryProperties(name, record) == ras::kSuccess) {
    Keep(ras::kAlreadyExists);
    return false;
  }
  if (!Keep(api.GetEntryProperties(templateName, record))) {
    return false;
  }
  if (!phoneNumber.empty()) {
    constexpr std::size_t kAt = offsetof(ras::Entry, szLocalPhoneNumber);
    std::memset(record.data() + kAt, 0, ras::kMaxPhoneNumber + 1);
    std::memcpy(record.data() + kAt, phoneNumber.data(), phoneNumber.size());
  }
  return Keep(api.SetEntryProperties(name, record));
}

bool RasInterface_impl::DeleteEntry(const std::string& name) {
  if (ListingLacks(name)) {
    return Keep(ras::kCannotFindEntry);
  }
  return Keep(RasApiBinding().DeleteEntry(name));
}

bool RasInterface_impl::Dial(const std::string& name, unsigned long timeoutMilliseconds) {
  RasApiBinding api;
  ras::HRASCONN connection = nullptr;
  DWORD result = api.Dial(name, connection);
  const DWORD start = platform::GetTickCount();
  ras::ConnectionStatus status{};
  while (result == ras::kSuccess) {
    result = api.GetConnectStatus(connection, status);
    if (result == ras::kSuccess && status.dwError != 0) {
      result = status.dwError;
    } else if (result == ras::kSuccess && status.rasconnstate == ras::kConnected) {
      return Keep(result);
    } else if (result == ras::kSuccess && platform::GetTickCount() - start >= timeoutMilliseconds) {
      result = ras::kTimeout;
    } else if (result == ras::kSuccess) {
      platform::Sleep(kPollMilliseconds);
    }
  }
  if (connection != nullptr) {
    api.HangUp(connection);
    WaitForEnd(api, connection);
  }
  return Keep(result);
}

bool RasInterface_impl::HangUp(const std::string& name) {
  RasApiBinding api;
  DWORD result = ras::kSuccess;
  const std::vector<ras::HRASCONN> handles = ConnectionsOf(api, name, result);
  if (result == ras::kSuccess && handles.empty()) {
    result = ras::kInvalidHandle;
  }
  for (ras::HRASCONN handle : handles) {
    const DWORD hungUp = api.HangUp(handle);
    if (hungUp == ras::kSuccess) {
      WaitForEnd(api, handle);
    } else {
      result = hungUp;
    }
  }
  return Keep(result);
}

std::vector<RasInterface::DeviceInfo> RasInterface_impl::GetDevices() {
  std::vector<ras::DeviceInfo> devices;
  std::vector<RasInterface::DeviceInfo> list;
  if (Keep(RasApiBinding().EnumDevices(devices))) {
    for (const ras::DeviceInfo& device : devices) {
      const std::string typeName = Field(device.szDeviceType);
      list.push_back({Field(device.szDeviceName), typeName, TypeOf(typeName)});
    }
  }
  return list;
}

std::vector<RasInterface::ConnectionInfo> RasInterface_impl::GetConnections() {
  RasApiBinding api;
  std::vector<ras::Connection> connections;
  std::vector<RasInterface::ConnectionInfo> list;
  if (!Keep(api.EnumConnections(connections))) {
    return list;
  }
  for (const ras::Connection& connection : connections) {
    RasInterface::ConnectionInfo info;
    info.entry = Field(connection.szEntryName);
    info.deviceName = Field(connection.szDeviceName);
    ras::ConnectionStatus status{};
    if (api.GetConnectStatus(connection.hrasconn, status) == ras::kSuccess) {
      info.connected = status.rasconnstate == ras::kConnected;
      info.error = status.dwError;
    }
    list.push_back(std::move(info));
  }
  return list;
}

std::string RasInterface_impl::GetErrorText(unsigned long code) {
  std::string text;
  Keep(RasApiBinding().GetErrorString(static_cast<DWORD>(code), text));
  return text;
}

RasInterface::RasInterface() = default;
RasInterface::RasInterface(const RasInterface& other) = default;
RasInterface& RasInterface::operator=(const RasInterface& other) = default;
RasInterface::~RasInterface() = default;

namespace {

// Runs `call` on the ANSI forms of the wide arguments; `fallback` when one has none.
template <class Result, class Call, class... Texts>
Result ThroughAnsi(Result fallback, Call call, const Texts&... texts) {
  std::array<std::string, sizeof...(Texts)> narrow;
  std::size_t i = 0;
  const bool ok = (ConvertUnicodeToANSI(texts, narrow[i++]) && ...);
  return ok ? std::apply(call, narrow) : fallback;
}

}  // namespace

std::vector<std::string> RasInterface::GetEntries() {
  return Forward(impl_, std::vector<std::string>{},
                 [](RasInterface_impl& impl) { return impl.GetEntries(); });
}
bool RasInterface::GetEntry(const std::string& name, EntryInfo& info) {
  return Forward(impl_, false, [&](RasInterface_impl& impl) { return impl.GetEntry(name, info); });
}
bool RasInterface::GetEntry(const wstring& name, EntryInfo& info) {
  return ThroughAnsi(
      false, [&](const std::string& n) { return GetEntry(n, info); }, name);
}
bool RasInterface::CreateEntry(const std::string& name, const std::string& templateName,
                               const std::string& phoneNumber) {
  return Forward(impl_, false, [&](RasInterface_impl& impl) {
    return impl.CreateEntry(name, templateName, phoneNumber);
  });
}
bool RasInterface::CreateEntry(const wstring& name, const wstring& templateName,
                               const wstring& phoneNumber) {
  return ThroughAnsi(
      false,
      [&](const std::string& n, const std::string& t, const std::string& p) {
        return CreateEntry(n, t, p);
      },
      name, templateName, phoneNumber);
}
bool RasInterface::DeleteEntry(const std::string& name) {
  return Forward(impl_, false, [&](RasInterface_impl& impl) { return impl.DeleteEntry(name); });
}
bool RasInterface::DeleteEntry(const wstring& name) {
  return ThroughAnsi(
      false, [&](const std::string& n) { return DeleteEntry(n); }, name);
}
bool RasInterface::Dial(const std::string& name, unsigned long timeoutMilliseconds) {
  return Forward(impl_, false,
                 [&](RasInterface_impl& impl) { return impl.Dial(name, timeoutMilliseconds); });
}
bool RasInterface::Dial(const wstring& name, unsigned long timeoutMilliseconds) {
  return ThroughAnsi(
      false, [&](const std::string& n) { return Dial(n, timeoutMilliseconds); }, name);
}
bool RasInterface::HangUp(const std::string& name) {
  return Forward(impl_, false, [&](RasInterface_impl& impl) { return impl.HangUp(name); });
}
bool RasInterface::HangUp(const wstring& name) {
  return ThroughAnsi(
      false, [&](const std::string& n) { return HangUp(n); }, name);
}
std::vector<RasInterface::DeviceInfo> RasInterface::GetDevices() {
  return Forward(impl_, std::vector<DeviceInfo>{},
                 [](RasInterface_impl& impl) { return impl.GetDevices(); });
}
std::vector<RasInterface::ConnectionInfo> RasInterface::GetConnections() {
  return Forward(impl_, std::vector<ConnectionInfo>{},
                 [](RasInterface_impl& impl) { return impl.GetConnections(); });
}
std::string RasInterface::GetErrorText(unsigned long code) {
  return Forward(impl_, std::string{},
                 [&](RasInterface_impl& impl) { return impl.GetErrorText(code); });
}
unsigned long RasInterface::GetLastRasError() const {
  return Forward(impl_, 0UL, [](RasInterface_impl& impl) { return impl.LastError(); });
}

}  // namespace Hostkit
