// The walk over the USB host controllers and their hubs through the USB device interface.
//
// Requests use the records of that interface as platform/usb_hub.h describes them; name records
// carry the size they need before the UTF-16 name.
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "hostkit/strings.h"
#include "hostkit/win_types.h"
#include "inventory/usb_impl.h"
#include "platform/devices.h"
#include "platform/handles.h"
#include "platform/usb_hub.h"

namespace Hostkit {

namespace {

using namespace platform::usbhub;

constexpr int kControllers = 10;
constexpr DWORD kControllerNameProbeSize = 6;  // ActualLength and one character
constexpr DWORD kPortNameProbeSize = 10;       // ConnectionIndex, ActualLength, one character
constexpr DWORD kMaxNameSize = 0x10000;        // more than any device name; guards the allocation
constexpr DWORD kDeviceConnected = 1;
// USB allows at most seven tiers of hubs below a host controller; a deeper chain can only come
// from a driver naming a hub above itself, and is not followed.
constexpr int kMaxHubDepth = 7;

constexpr std::array<const char*, 6> kStatusNames = {
    "NoDeviceConnected",    "DeviceConnected",         "DeviceFailedEnumeration",
    "DeviceGeneralFailure", "DeviceCausedOvercurrent", "DeviceNotEnoughPower"};

DWORD ReadDword(const BYTE* at) {
  return at[0] | (at[1] << 8) | (at[2] << 16) | (static_cast<DWORD>(at[3]) << 24);
}

void WriteDword(BYTE* at, DWORD value) {
  for (int i = 0; i < 4; ++i) {
    at[i] = static_cast<BYTE>(value >> (8 * i));
  }
}

HANDLE OpenDevice(const std::string& name) {
  return platform::CreateFileA(("\\\\.\\" + name).c_str(), GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, 0, nullptr);
}

// One request whose record is sent and answered in the same buffer; `port` (when not 0) goes
// into the record's first field.
bool Ask(HANDLE device, DWORD code, DWORD port, std::vector<BYTE>& record) {
  if (port != 0) {
    WriteDword(record.data(), port);
  }
  const auto size = static_cast<DWORD>(record.size());
  DWORD returned = 0;
  return platform::DeviceIoControl(device, code, port != 0 ? record.data() : nullptr,
                                   port != 0 ? size : 0, record.data(), size, &returned,
                                   nullptr) != FALSE;
}

// A name record fetched in two requests: the first, of `probeSize` bytes, learns the size the
// record needs; the second fetches it whole. Empty when either request fails.
std::string FetchName(HANDLE device, DWORD code, DWORD port, DWORD probeSize) {
  const std::size_t header = port != 0 ? 8 : 4;
  std::vector<BYTE> record(probeSize, 0);
  if (!Ask(device, code, port, record)) {
    return {};
  }
  const DWORD needed = ReadDword(record.data() + header - 4);
  if (needed <= header || needed > kMaxNameSize) {
    return {};
  }
  record.assign(needed, 0);
  if (!Ask(device, code, port, record)) {
    return {};
  }
  wstring wide;
  for (std::size_t at = header; at + 1 < record.size(); at += 2) {
    const auto unit = static_cast<WCHAR>(record[at] | (record[at + 1] << 8));
    if (unit == 0) {
      break;
    }
    wide += unit;
  }
  std::string name;
  return ConvertUnicodeToANSI(wide, name) ? name : std::string();
}

class UsbWalk {
 public:
  void Controllers() {
    for (int n = 0; n < kControllers; ++n) {
      HANDLE controller = OpenDevice("HCD" + std::to_string(n));
      if (controller == INVALID_HANDLE_VALUE) {
        continue;
      }
      FetchName(controller, kGetHcdDriverKeyName, 0, kControllerNameProbeSize);
      const std::string rootHub =
          FetchName(controller, kGetRootHubName, 0, kControllerNameProbeSize);
      if (!rootHub.empty()) {
        Hub(rootHub, 1);
      }
      platform::CloseHandle(controller);
    }
  }

  UsbWalkResult& result() { return result_; }

 private:
  void Hub(const std::string& name, int depth) {
    if (depth > kMaxHubDepth) {
      return;
    }
    HANDLE hub = OpenDevice(name);
    if (hub == INVALID_HANDLE_VALUE) {
      return;
    }
    std::vector<BYTE> node(kNodeInformationSize, 0);
    if (Ask(hub, kGetNodeInformation, 0, node)) {
      const DWORD ports = node[kPortCountOffset];
      for (DWORD port = 1; port <= ports; ++port) {
        Port(hub, port, depth);
      }
    }
    platform::CloseHandle(hub);
  }

  void Port(HANDLE hub, DWORD port, int depth) {
    std::vector<BYTE> connection(kConnectionInformationSize, 0);
    if (!Ask(hub, kGetNodeConnectionInformation, port, connection)) {
      return;
    }
    ++result_.portsSeen;
    const DWORD status = ReadDword(connection.data() + kStatusOffset);
    if (status == kDeviceConnected) {
      ++result_.portsInUse;
    }
    std::string driverKey;
    if (status != 0) {
      driverKey = FetchName(hub, kGetNodeConnectionDriverKeyName, port, kPortNameProbeSize);
    }
    if (connection[kIsHubOffset] == 0) {
      return;
    }
    const std::string child = FetchName(hub, kGetNodeConnectionName, port, kPortNameProbeSize);
    if (child.empty()) {
      return;
    }
    result_.hubLines.push_back("[Port" + std::to_string(port) + "] " +
                               (status < kStatusNames.size() ? kStatusNames[status] : "") + " :  " +
                               driverKey);
    Hub(child, depth + 1);
  }

  UsbWalkResult result_;
};

}  // namespace

UsbWalkResult WalkUsbControllers() {
  UsbWalk walk;
  walk.Controllers();
  return walk.result();
}

}  // namespace Hostkit
