// The run-time binding of rasapi32 and its record-size protocol.
#include "live/rasapi32_binding.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/modules.h"

namespace Hostkit::live {

namespace ras = platform::ras;

namespace {

template <class F>
void Bind(HMODULE module, const char* name, F& entry) {
  entry = platform::ProcAs<F>(platform::GetProcAddress(module, name));
}

void SetSize(std::vector<BYTE>& buffer, std::size_t offset, DWORD size) {
  std::memcpy(buffer.data() + offset, &size, sizeof size);
}

// Calls `call(size)` with each size, newest first, until the release does not refuse the size.
template <std::size_t N, class Call>
DWORD WithSizes(const std::array<DWORD, N>& sizes, Call call) {
  DWORD result = ras::kInvalidSize;
  for (DWORD size : sizes) {
    result = call(size);
    if (result != ras::kInvalidSize) {
      break;
    }
  }
  return result;
}

// An enumeration into an array of records of the release's size: `call(buffer, bytes, count)`
// fills the array; the buffer grows once to the size the system asks for. Each record is read
// as the leading part of the newest form.
template <class Record, std::size_t N, class Call>
DWORD Enumerate(const std::array<DWORD, N>& sizes, std::vector<Record>& records, Call call) {
  records.clear();
  return WithSizes(sizes, [&](DWORD size) {
    std::vector<BYTE> buffer(size);
    DWORD bytes = size;
    DWORD count = 0;
    SetSize(buffer, 0, size);
    DWORD result = call(buffer.data(), &bytes, &count);
    if (result == ras::kBufferTooSmall && bytes > buffer.size()) {
      buffer.assign(bytes, 0);
      SetSize(buffer, 0, size);
      result = call(buffer.data(), &bytes, &count);
    }
    if (result != ras::kSuccess) {
      return result;
    }
    count = std::min<DWORD>(count, static_cast<DWORD>(buffer.size() / size));
    for (DWORD i = 0; i < count; ++i) {
      Record record{};
      std::memcpy(&record, buffer.data() + std::size_t{i} * size, size);
      records.push_back(record);
    }
    return result;
  });
}

}  // namespace

RasApiBinding::RasApiBinding() : module_(platform::LoadLibraryA(ras::kModule)) {
  if (module_ == nullptr) {
    return;
  }
  Bind(module_, "RasEnumEntriesA", enumEntries_);
  Bind(module_, "RasGetEntryPropertiesA", getEntryProperties_);
  Bind(module_, "RasSetEntryPropertiesA", setEntryProperties_);
  Bind(module_, "RasDeleteEntryA", deleteEntry_);
  Bind(module_, "RasDialA", dial_);
  Bind(module_, "RasHangUpA", hangUp_);
  Bind(module_, "RasEnumDevicesA", enumDevices_);
  Bind(module_, "RasEnumConnectionsA", enumConnections_);
  Bind(module_, "RasGetConnectStatusA", getConnectStatus_);
  Bind(module_, "RasGetErrorStringA", getErrorString_);
}

RasApiBinding::~RasApiBinding() {
  if (module_ != nullptr) {
    platform::FreeLibrary(module_);
  }
}

DWORD RasApiBinding::EnumEntries(std::vector<ras::EntryName>& entries) const {
  if (enumEntries_ == nullptr) {
    return kNotBound;
  }
  return Enumerate(ras::kEntryNameSizes, entries, [&](BYTE* buffer, DWORD* bytes, DWORD* count) {
    return enumEntries_(nullptr, nullptr, reinterpret_cast<ras::EntryName*>(buffer), bytes, count);
  });
}

DWORD RasApiBinding::GetEntryProperties(const std::string& entry, std::vector<BYTE>& record) const {
  if (getEntryProperties_ == nullptr) {
    return kNotBound;
  }
  return WithSizes(ras::kEntrySizes, [&](DWORD size) {
    record.assign(sizeof(ras::Entry), 0);
    DWORD bytes = size;
    SetSize(record, 0, size);
    DWORD result =
        getEntryProperties_(nullptr, entry.c_str(), reinterpret_cast<ras::Entry*>(record.data()),
                            &bytes, nullptr, nullptr);
    if (result == ras::kBufferTooSmall && bytes > record.size()) {
      record.assign(bytes, 0);  // alternate numbers follow the record
      SetSize(record, 0, size);
      result =
          getEntryProperties_(nullptr, entry.c_str(), reinterpret_cast<ras::Entry*>(record.data()),
                              &bytes, nullptr, nullptr);
    }
    record.resize(std::clamp<std::size_t>(bytes, size, record.size()));
    return result;
  });
}

DWORD RasApiBinding::SetEntryProperties(const std::string& entry, std::vector<BYTE>& record) const {
  if (setEntryProperties_ == nullptr) {
    return kNotBound;
  }
  // The record keeps the size the release accepted when it was read.
  return setEntryProperties_(nullptr, entry.c_str(), reinterpret_cast<ras::Entry*>(record.data()),
                             static_cast<DWORD>(record.size()), nullptr, 0);
}

DWORD RasApiBinding::DeleteEntry(const std::string& entry) const {
  return deleteEntry_ != nullptr ? deleteEntry_(nullptr, entry.c_str()) : kNotBound;
}

namespace {

// Dialling reports its progress here; the library asks the state itself instead.
void WINAPI IgnoreProgress(UINT /*message*/, DWORD /*state*/, DWORD /*error*/) {}

}  // namespace

DWORD RasApiBinding::Dial(const std::string& entry, ras::HRASCONN& connection) const {
  connection = nullptr;
  if (dial_ == nullptr || entry.size() > ras::kMaxEntryName) {
    return kNotBound;
  }
  return WithSizes(ras::kDialParamsSizes, [&](DWORD size) {
    ras::DialParams params{};
    params.dwSize = size;
    std::memcpy(params.szEntryName, entry.data(), entry.size());
    return dial_(nullptr, nullptr, &params, 0,
                 reinterpret_cast<void*>(&IgnoreProgress),  // NOLINT: the API takes any notifier
                 &connection);
  });
}

DWORD RasApiBinding::HangUp(ras::HRASCONN connection) const {
  return hangUp_ != nullptr ? hangUp_(connection) : kNotBound;
}

DWORD RasApiBinding::EnumDevices(std::vector<ras::DeviceInfo>& devices) const {
  if (enumDevices_ == nullptr) {
    return kNotBound;
  }
  const std::array<DWORD, 1> sizes = {sizeof(ras::DeviceInfo)};
  return Enumerate(sizes, devices, [&](BYTE* buffer, DWORD* bytes, DWORD* count) {
    return enumDevices_(reinterpret_cast<ras::DeviceInfo*>(buffer), bytes, count);
  });
}

DWORD RasApiBinding::EnumConnections(std::vector<ras::Connection>& connections) const {
  if (enumConnections_ == nullptr) {
    return kNotBound;
  }
  return Enumerate(
      ras::kConnectionSizes, connections, [&](BYTE* buffer, DWORD* bytes, DWORD* count) {
        return enumConnections_(reinterpret_cast<ras::Connection*>(buffer), bytes, count);
      });
}

DWORD RasApiBinding::GetConnectStatus(ras::HRASCONN connection,
                                      ras::ConnectionStatus& status) const {
  if (getConnectStatus_ == nullptr) {
    return kNotBound;
  }
  return WithSizes(ras::kConnectionStatusSizes, [&](DWORD size) {
    status = {};
    status.dwSize = size;
    return getConnectStatus_(connection, &status);
  });
}

DWORD RasApiBinding::GetErrorString(DWORD code, std::string& text) const {
  if (getErrorString_ == nullptr) {
    return kNotBound;
  }
  std::array<char, 512> buffer{};
  const DWORD result = getErrorString_(code, buffer.data(), static_cast<DWORD>(buffer.size() - 1));
  text = result == ras::kSuccess ? buffer.data() : "";
  return result;
}

}  // namespace Hostkit::live
