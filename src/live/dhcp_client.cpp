// The DHCP client outside IP Helper: "dhcpcsvc.dll" bound once per process, and the Windows
// 95/98/Me DHCP VxD asked through DeviceIoControl with the requests of platform/dhcp_vxd.h.
#include "live/dhcp_client.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "hostkit/strings.h"
#include "live/hardware_address_text.h"
#include "platform/critical_section.h"
#include "platform/devices.h"
#include "platform/dhcp_vxd.h"
#include "platform/handles.h"
#include "platform/iphlpapi.h"
#include "platform/modules.h"
#include "platform/system_info.h"

namespace Hostkit::live {

namespace {

namespace dhcp = platform::dhcpcsvc;
namespace vxd = platform::dhcpvxd;

// "dhcpcsvc.dll" and its two entries: loaded on first use and kept for the life of the
// process. A load that fails is tried again on the next use. Threads that renew leases at the
// same time load it once: the first use holds the binding's critical section.
class DhcpClientBinding {
 public:
  static DhcpClientBinding& Instance() {
    static DhcpClientBinding binding;
    return binding;
  }
  DhcpClientBinding(const DhcpClientBinding&) = delete;
  DhcpClientBinding& operator=(const DhcpClientBinding&) = delete;
  ~DhcpClientBinding() { platform::DeleteCriticalSection(&section_); }

  // The entry, loading the module first when that has not been done yet; null when missing.
  FARPROC Entry(bool acquire) {
    const platform::CriticalSectionLock hold(section_);
    if (module_ == nullptr) {
      module_ = platform::LoadLibraryA(dhcp::kModule);
      if (module_ == nullptr) {
        return nullptr;
      }
      acquire_ = platform::GetProcAddress(module_, dhcp::kDhcpAcquireParameters);
      release_ = platform::GetProcAddress(module_, dhcp::kDhcpReleaseParameters);
    }
    return acquire ? acquire_ : release_;
  }

 private:
  DhcpClientBinding() { platform::InitializeCriticalSection(&section_); }

  platform::CRITICAL_SECTION section_{};
  HMODULE module_ = nullptr;
  FARPROC acquire_ = nullptr;
  FARPROC release_ = nullptr;
};

// Calls the client's entry for the adapter; the entry's own result is not examined.
bool CallClient(bool acquire, const std::string& serviceName) {
  try {
    const FARPROC entry = DhcpClientBinding::Instance().Entry(acquire);
    if (entry == nullptr) {
      return false;
    }
    wstring name;
    if (!ConvertANSIToUnicode(serviceName, name)) {
      return false;
    }
    // Both entries have the same type; the name buffer is writable as the entries declare it.
    platform::ProcAs<dhcp::DhcpAcquireParametersProc>(entry)(name.data());
    return true;
  } catch (...) {
    return false;
  }
}

// An open handle to the VxD, closed when the object ends.
class VxdHandle {
 public:
  VxdHandle()
      : handle_(platform::CreateFileA(vxd::kDevicePath, 0, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
  }
  ~VxdHandle() {
    if (Open()) {
      platform::CloseHandle(handle_);
    }
  }
  VxdHandle(const VxdHandle&) = delete;
  VxdHandle& operator=(const VxdHandle&) = delete;

  bool Open() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }

  // One request; true when the VxD answered it, with the bytes it returned.
  bool Request(DWORD code, const void* in, DWORD inSize, void* out, DWORD outSize,
               DWORD& returned) const {
    returned = 0;
    return platform::DeviceIoControl(handle_, code, const_cast<void*>(in), inSize, out, outSize,
                                     &returned, nullptr) != FALSE;
  }

 private:
  HANDLE handle_;
};

bool LeaseRequest(DWORD code, const std::string& hardwareAddress) {
  try {
    std::vector<BYTE> bytes;
    if (!ParseHardwareAddress(hardwareAddress, bytes) || bytes.size() > vxd::kMaxHardwareAddress) {
      return false;
    }
    vxd::DhcpVxdAdapterKey key{};
    key.hardwareAddressLength = static_cast<DWORD>(bytes.size());
    std::memcpy(key.hardwareAddress, bytes.data(), bytes.size());
    const VxdHandle device;
    DWORD returned = 0;
    return device.Open() && device.Request(code, &key, sizeof key, nullptr, 0, returned);
  } catch (...) {
    return false;
  }
}

}  // namespace

bool DhcpClientRelease(const std::string& serviceName) { return CallClient(false, serviceName); }

bool DhcpClientAcquire(const std::string& serviceName) { return CallClient(true, serviceName); }

bool QueryDhcpVxd(std::vector<VxdDhcpEntry>& entries) {
  entries.clear();
  try {
    const VxdHandle device;
    if (!device.Open()) {
      return false;
    }
    // The count first, then the whole list.
    DWORD count = 0;
    DWORD returned = 0;
    if (device.Request(vxd::kQueryAdapters, nullptr, 0, &count, sizeof count, returned)) {
      return count == 0;
    }
    if (platform::GetLastError() != static_cast<DWORD>(ERROR_MORE_DATA) ||
        returned < sizeof count) {
      return false;
    }
    std::vector<std::uint32_t> buffer((vxd::AdapterListSize(count) + 3) / 4);
    const auto size = static_cast<DWORD>(buffer.size() * 4);
    if (!device.Request(vxd::kQueryAdapters, nullptr, 0, buffer.data(), size, returned) ||
        returned < sizeof(DWORD)) {
      return false;
    }
    std::memcpy(&count, buffer.data(), sizeof count);
    if (returned < vxd::AdapterListSize(count)) {
      return false;
    }
    const auto* bytes = reinterpret_cast<const BYTE*>(buffer.data()) + sizeof count;
    for (DWORD i = 0; i < count; ++i) {
      vxd::DhcpVxdAdapter adapter{};
      std::memcpy(&adapter, bytes + i * sizeof adapter, sizeof adapter);
      VxdDhcpEntry entry;
      entry.hardwareAddress = FormatHardwareAddress(
          adapter.hardwareAddress,
          std::min<DWORD>(adapter.hardwareAddressLength, vxd::kMaxHardwareAddress));
      const BYTE none[4] = {};
      if (std::memcmp(adapter.dhcpServer, none, sizeof none) != 0) {
        entry.dhcpServer = FormatDottedQuad(adapter.dhcpServer);
      }
      entry.dhcp = adapter.dhcpEnabled != 0;
      entries.push_back(std::move(entry));
    }
    return true;
  } catch (...) {
    entries.clear();
    return false;
  }
}

bool QueryDhcpVxdDomain(std::string& domain) {
  domain.clear();
  try {
    const VxdHandle device;
    if (!device.Open()) {
      return false;
    }
    std::vector<char> buffer(256);
    DWORD returned = 0;
    bool answered = device.Request(vxd::kQueryDomain, nullptr, 0, buffer.data(),
                                   static_cast<DWORD>(buffer.size()), returned);
    if (!answered && platform::GetLastError() == static_cast<DWORD>(ERROR_MORE_DATA) &&
        returned > buffer.size()) {
      buffer.assign(returned, '\0');
      answered = device.Request(vxd::kQueryDomain, nullptr, 0, buffer.data(),
                                static_cast<DWORD>(buffer.size()), returned);
    }
    if (!answered) {
      return false;
    }
    domain.assign(buffer.data(), strnlen(buffer.data(), buffer.size()));
    return true;
  } catch (...) {
    domain.clear();
    return false;
  }
}

bool VxdReleaseLease(const std::string& hardwareAddress) {
  return LeaseRequest(vxd::kRelease, hardwareAddress);
}

bool VxdRenewLease(const std::string& hardwareAddress) {
  return LeaseRequest(vxd::kRenew, hardwareAddress);
}

}  // namespace Hostkit::live
