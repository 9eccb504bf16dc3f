// "rasapi32.dll" of the simulated machine: the phonebook, dial-up devices and calls of the
// machine's Remote Access state (Machine::ras()).
//
// Each release accepts the record sizes of its own and older forms and answers 632 to newer
// ones: Windows 95 the oldest, 98, Me and NT 4 the forms of Remote Access 4.01, 2000 and XP
// their own. A call is made without waiting (the library always passes a notifier, which is
// never called) or, without a notifier, waits for its outcome in virtual time; its state then
// follows the virtual clock: connecting until the entry's delay has passed, then connected or
// failed with the entry's error.
#include "platform/rasapi32.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "hostkit/sim/machine.h"
#include "platform/modules.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/sim/kernel/standard_modules.h"

namespace Hostkit::sim {

namespace {

namespace ras = platform::ras;

constexpr DWORD kConnectDevice = 2;  // RASCS_ConnectDevice: still dialling
constexpr std::uint64_t kNsPerMs = 1000000;

class RasCall : public KernelObject {};

// The Remote Access version of the running release.
DWORD RasVersion() {
  switch (ActiveMachine()->release()) {
    case Release::Win95:
      return 0x400;
    case Release::Win2000:
      return 0x500;
    case Release::WinXP:
      return 0x501;
    default:
      return 0x401;
  }
}

// Whether the release knows `size` among `sizes`, whose forms came with `versions`.
template <std::size_t N>
bool Accepts(DWORD size, const std::array<DWORD, N>& sizes, const std::array<DWORD, N>& versions) {
  for (std::size_t i = 0; i < N; ++i) {
    if (sizes[i] == size && versions[i] <= RasVersion()) {
      return true;
    }
  }
  return false;
}

constexpr std::array<DWORD, 2> kEntryNameVersions = {0x500, 0x400};
constexpr std::array<DWORD, 4> kConnectionVersions = {0x501, 0x500, 0x401, 0x400};
constexpr std::array<DWORD, 2> kStatusVersions = {0x401, 0x400};
constexpr std::array<DWORD, 2> kDialVersions = {0x401, 0x400};
constexpr std::array<DWORD, 4> kEntryVersions = {0x501, 0x500, 0x401, 0x400};

template <std::size_t N>
void CopyText(char (&field)[N], const std::string& text) {
  std::memset(field, 0, N);
  std::memcpy(field, text.data(), std::min(text.size(), N - 1));
}

template <std::size_t N>
std::string Text(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

// Writes `records` (each prepared in its newest form) into the caller's array of `size`-byte
// records, with the enumeration size protocol.
template <class Record>
DWORD EnumerateOut(const std::vector<Record>& records, BYTE* buffer, DWORD* bytes, DWORD* count) {
  if (buffer == nullptr || bytes == nullptr || count == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  DWORD size = 0;
  std::memcpy(&size, buffer, sizeof size);
  const auto needed = static_cast<DWORD>(records.size() * size);
  *count = 0;
  if (*bytes < needed) {
    *bytes = needed;
    return ras::kBufferTooSmall;
  }
  for (std::size_t i = 0; i < records.size(); ++i) {
    Record record = records[i];
    std::memcpy(&record, &size, sizeof size);
    std::memcpy(buffer + i * size, &record, size);
  }
  *bytes = needed;
  *count = static_cast<DWORD>(records.size());
  return ras::kSuccess;
}

DWORD WINAPI EnumEntriesA(const char* /*reserved*/, const char* /*phonebook*/,
                          ras::EntryName* entries, DWORD* bytes, DWORD* count) {
  try {
    if (entries == nullptr || !Accepts(entries->dwSize, ras::kEntryNameSizes, kEntryNameVersions)) {
      return ras::kInvalidSize;
    }
    std::vector<ras::EntryName> records;
    for (const auto& [name, entry] : ActiveMachine()->ras().entries) {
      ras::EntryName record{};
      CopyText(record.szEntryName, name);
      records.push_back(record);
    }
    return EnumerateOut(records, reinterpret_cast<BYTE*>(entries), bytes, count);
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI GetEntryPropertiesA(const char* /*phonebook*/, const char* name, ras::Entry* record,
                                 DWORD* size, BYTE* /*deviceInfo*/, DWORD* /*deviceInfoSize*/) {
  try {
    if (record == nullptr || size == nullptr ||
        !Accepts(record->dwSize, ras::kEntrySizes, kEntryVersions)) {
      return ras::kInvalidSize;
    }
    auto& entries = ActiveMachine()->ras().entries;
    auto found = entries.find(name != nullptr ? name : "");
    if (found == entries.end()) {
      return ras::kCannotFindEntry;
    }
    const DWORD recordSize = record->dwSize;
    if (*size < recordSize) {
      *size = recordSize;
      return ras::kBufferTooSmall;
    }
    ras::Entry entry{};
    entry.dwSize = recordSize;
    entry.dwCountryCode = found->second.countryCode;
    entry.dwCountryID = found->second.countryCode;
    CopyText(entry.szAreaCode, found->second.areaCode);
    CopyText(entry.szLocalPhoneNumber, found->second.phoneNumber);
    CopyText(entry.szDeviceType, found->second.deviceType);
    CopyText(entry.szDeviceName, found->second.deviceName);
    std::memcpy(record, &entry, recordSize);
    *size = recordSize;
    return ras::kSuccess;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI SetEntryPropertiesA(const char* /*phonebook*/, const char* name, ras::Entry* record,
                                 DWORD size, BYTE* /*deviceInfo*/, DWORD /*deviceInfoSize*/) {
  try {
    if (record == nullptr || !Accepts(record->dwSize, ras::kEntrySizes, kEntryVersions) ||
        size < record->dwSize) {
      return ras::kInvalidSize;
    }
    if (name == nullptr || *name == '\0') {
      return ERROR_INVALID_PARAMETER;
    }
    ras::Entry entry{};
    std::memcpy(&entry, record, record->dwSize);
    SimRasEntry& simEntry = ActiveMachine()->ras().entries[name];
    simEntry.countryCode = entry.dwCountryCode;
    simEntry.areaCode = Text(entry.szAreaCode);
    simEntry.phoneNumber = Text(entry.szLocalPhoneNumber);
    simEntry.deviceType = Text(entry.szDeviceType);
    simEntry.deviceName = Text(entry.szDeviceName);
    return ras::kSuccess;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI DeleteEntryA(const char* /*phonebook*/, const char* name) {
  try {
    auto& entries = ActiveMachine()->ras().entries;
    auto found = entries.find(name != nullptr ? name : "");
    if (found == entries.end()) {
      return ras::kCannotFindEntry;
    }
    entries.erase(found);
    return ras::kSuccess;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

SimRasConnection* FindCall(Machine& machine, HANDLE handle) {
  auto& calls = machine.ras().connections;
  auto found = std::find_if(calls.begin(), calls.end(), [handle](const SimRasConnection& call) {
    return call.handle == handle;
  });
  return found != calls.end() ? &*found : nullptr;
}

DWORD WINAPI DialA(void* /*extensions*/, const char* /*phonebook*/, ras::DialParams* params,
                   DWORD /*notifierType*/, void* notifier, ras::HRASCONN* connection) {
  try {
    if (params == nullptr || connection == nullptr) {
      return ERROR_INVALID_PARAMETER;
    }
    if (!Accepts(params->dwSize, ras::kDialParamsSizes, kDialVersions)) {
      return ras::kInvalidSize;
    }
    const auto machine = ActiveMachine();
    auto found = machine->ras().entries.find(Text(params->szEntryName));
    if (found == machine->ras().entries.end()) {
      return ras::kCannotFindEntry;
    }
    SimRasConnection call;
    call.handle = AddHandle(std::make_shared<RasCall>());
    call.entry = found->first;
    call.deviceName = found->second.deviceName;
    call.readyAt = machine->clock().now() + std::uint64_t{found->second.delayMs} * kNsPerMs;
    call.error = found->second.error;
    machine->ras().connections.push_back(call);
    *connection = call.handle;
    if (notifier != nullptr) {
      return ras::kSuccess;
    }
    machine->clock().advance(call.readyAt - machine->clock().now());
    return call.error;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI HangUpA(ras::HRASCONN connection) {
  try {
    const auto machine = ActiveMachine();
    auto& calls = machine->ras().connections;
    const auto before = calls.size();
    std::erase_if(calls,
                  [connection](const SimRasConnection& call) { return call.handle == connection; });
    if (calls.size() == before) {
      return ras::kInvalidHandle;
    }
    RemoveHandle(connection);
    return ras::kSuccess;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI EnumDevicesA(ras::DeviceInfo* devices, DWORD* bytes, DWORD* count) {
  try {
    if (devices == nullptr || devices->dwSize != sizeof(ras::DeviceInfo)) {
      return ras::kInvalidSize;
    }
    std::vector<ras::DeviceInfo> records;
    for (const SimRasDevice& device : ActiveMachine()->ras().devices) {
      ras::DeviceInfo record{};
      CopyText(record.szDeviceName, device.name);
      CopyText(record.szDeviceType, device.type);
      records.push_back(record);
    }
    return EnumerateOut(records, reinterpret_cast<BYTE*>(devices), bytes, count);
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI EnumConnectionsA(ras::Connection* connections, DWORD* bytes, DWORD* count) {
  try {
    if (connections == nullptr ||
        !Accepts(connections->dwSize, ras::kConnectionSizes, kConnectionVersions)) {
      return ras::kInvalidSize;
    }
    std::vector<ras::Connection> records;
    for (const SimRasConnection& call : ActiveMachine()->ras().connections) {
      ras::Connection record{};
      record.hrasconn = call.handle;
      CopyText(record.szEntryName, call.entry);
      CopyText(record.szDeviceName, call.deviceName);
      records.push_back(record);
    }
    return EnumerateOut(records, reinterpret_cast<BYTE*>(connections), bytes, count);
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

DWORD WINAPI GetConnectStatusA(ras::HRASCONN connection, ras::ConnectionStatus* status) {
  try {
    if (status == nullptr ||
        !Accepts(status->dwSize, ras::kConnectionStatusSizes, kStatusVersions)) {
      return ras::kInvalidSize;
    }
    const auto machine = ActiveMachine();
    const SimRasConnection* call = FindCall(*machine, connection);
    if (call == nullptr) {
      return ras::kInvalidHandle;
    }
    const bool ready = machine->clock().now() >= call->readyAt;
    status->rasconnstate = ready && call->error == 0 ? ras::kConnected : kConnectDevice;
    status->dwError = ready ? call->error : 0;
    CopyText(status->szDeviceName, call->deviceName);
    return ras::kSuccess;
  } catch (...) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

struct ErrorText {
  DWORD code;
  const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {600, "An operation is pending."},
    {603, "The buffer is too small."},
    {623, "The phonebook entry for this connection could not be found."},
    {632, "The structure size is incorrect."},
    {676, "The phone line is busy."},
    {678, "The remote computer did not answer."},
    {680, "There is no dial tone."},
    {691, "Access was denied: the user name or password is not valid on the domain."},
};

DWORD WINAPI GetErrorStringA(UINT code, char* text, DWORD size) {
  if (text == nullptr || size == 0) {
    return ERROR_INVALID_PARAMETER;
  }
  for (const ErrorText& entry : kErrorTexts) {
    if (entry.code == code) {
      const std::size_t length = std::strlen(entry.text);
      if (length >= size) {
        return ERROR_INSUFFICIENT_BUFFER;
      }
      std::memcpy(text, entry.text, length + 1);
      return ras::kSuccess;
    }
  }
  return ERROR_INVALID_PARAMETER;
}

}  // namespace

void AddRasModule(Machine& machine) {
  SimModule& module = machine.modules()["rasapi32.dll"];
  module.entryPoints["RasEnumEntriesA"] = platform::AsProc(&EnumEntriesA);
  module.entryPoints["RasGetEntryPropertiesA"] = platform::AsProc(&GetEntryPropertiesA);
  module.entryPoints["RasSetEntryPropertiesA"] = platform::AsProc(&SetEntryPropertiesA);
  module.entryPoints["RasDeleteEntryA"] = platform::AsProc(&DeleteEntryA);
  module.entryPoints["RasDialA"] = platform::AsProc(&DialA);
  module.entryPoints["RasHangUpA"] = platform::AsProc(&HangUpA);
  module.entryPoints["RasEnumDevicesA"] = platform::AsProc(&EnumDevicesA);
  module.entryPoints["RasEnumConnectionsA"] = platform::AsProc(&EnumConnectionsA);
  module.entryPoints["RasGetConnectStatusA"] = platform::AsProc(&GetConnectStatusA);
  module.entryPoints["RasGetErrorStringA"] = platform::AsProc(&GetErrorStringA);
}

}  // namespace Hostkit::sim
