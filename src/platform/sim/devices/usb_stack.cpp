// The USB driver stack of the simulated machine.
//
// Records are laid out byte for byte as platform/usb_hub.h describes them; the simulated
// devices open no pipes, so a connection record is its fixed part alone.
// A name record answers even when its buffer is too small for the name, as long as the fixed
// part and one character fit: ActualLength then tells the size needed.
#include "platform/sim/devices/usb_stack.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/system_info.h"
#include "platform/usb_hub.h"

namespace Hostkit::sim {

namespace {

namespace usb = platform::usbhub;

constexpr DWORD kRootHubNameOrNodeInformation = usb::kGetNodeInformation;
constexpr DWORD kConnectionInformation = usb::kGetNodeConnectionInformation;
constexpr DWORD kConnectionName = usb::kGetNodeConnectionName;
constexpr DWORD kConnectionDriverKeyName = usb::kGetNodeConnectionDriverKeyName;
constexpr DWORD kControllerDriverKeyName = usb::kGetHcdDriverKeyName;
static_assert(usb::kGetRootHubName == usb::kGetNodeInformation);

constexpr DWORD kNodeInformationSize = usb::kNodeInformationSize;
constexpr DWORD kConnectionInformationSize = usb::kConnectionInformationFixedSize;
constexpr BYTE kHubDescriptorType = 0x29;
constexpr BYTE kHubClass = 9;

BOOL Fail(DWORD error) {
  platform::SetLastError(error);
  return FALSE;
}

void PutWord(BYTE* at, unsigned value) {
  at[0] = static_cast<BYTE>(value);
  at[1] = static_cast<BYTE>(value >> 8);
}

void PutDword(BYTE* at, DWORD value) {
  PutWord(at, value & 0xFFFF);
  PutWord(at + 2, value >> 16);
}

// A name record: the fixed part (the connection index when `port` is non-zero, then the length
// needed) and as much of the zero-terminated UTF-16 name as fits.
BOOL NameRecord(const std::string& name, DWORD port, void* out, DWORD outSize, DWORD* returned) {
  const DWORD header = port != 0 ? 8 : 4;
  if (out == nullptr || outSize < header + 2) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::string text;  // the name's UTF-16 bytes with the terminator; device names are ASCII
  for (char c : name) {
    text += c;
    text += '\0';
  }
  text.append(2, '\0');
  const auto needed = static_cast<DWORD>(header + text.size());
  auto* bytes = static_cast<BYTE*>(out);
  if (port != 0) {
    PutDword(bytes, port);
  }
  PutDword(bytes + header - 4, needed);
  const DWORD copied = std::min<DWORD>(outSize - header, static_cast<DWORD>(text.size()));
  std::copy_n(text.begin(), copied, bytes + header);  // as much of the name as fits
  *returned = header + copied;
  return TRUE;
}

BOOL NodeInformation(const SimUsb& hub, void* out, DWORD outSize, DWORD* returned) {
  if (out == nullptr || outSize < kNodeInformationSize) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  auto* bytes = static_cast<BYTE*>(out);
  std::memset(bytes, 0, kNodeInformationSize);
  const auto ports = static_cast<BYTE>(hub.ports.size());
  BYTE* descriptor = bytes + 4;  // NodeType 0: a hub
  descriptor[0] = static_cast<BYTE>(7 + 2 * (ports / 8 + 1));
  descriptor[1] = kHubDescriptorType;
  bytes[usb::kPortCountOffset] = ports;
  descriptor[5] = 50;  // power-on to power-good in 2 ms units
  *returned = kNodeInformationSize;
  return TRUE;
}

// The port a connection request names in its first field; null when there is no such port.
const SimUsbPort* RequestedPort(const SimUsb& hub, const void* in, DWORD inSize, DWORD& index) {
  if (in == nullptr || inSize < sizeof(DWORD)) {
    return nullptr;
  }
  const auto* bytes = static_cast<const BYTE*>(in);
  index = bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (static_cast<DWORD>(bytes[3]) << 24);
  return index >= 1 && index <= hub.ports.size() ? &hub.ports[index - 1] : nullptr;
}

BOOL ConnectionInformation(const SimUsbPort& port, DWORD index, void* out, DWORD outSize,
                           DWORD* returned) {
  if (out == nullptr || outSize < kConnectionInformationSize) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  if (port.queryFails) {
    return Fail(ERROR_GEN_FAILURE);
  }
  auto* bytes = static_cast<BYTE*>(out);
  std::memset(bytes, 0, kConnectionInformationSize);
  PutDword(bytes, index);
  if (port.status != 0) {
    BYTE* descriptor = bytes + usb::kDeviceDescriptorOffset;
    descriptor[0] = 18;  // bLength
    descriptor[1] = 1;   // device descriptor
    PutWord(descriptor + 2, 0x0110);
    descriptor[4] = port.hub.empty() ? 0 : kHubClass;
    descriptor[7] = port.hub.empty() ? 8 : 64;  // control endpoint packet size
    PutWord(descriptor + 8, port.vendorId);
    PutWord(descriptor + 10, port.productId);
    PutWord(descriptor + 12, 0x0100);
    descriptor[17] = 1;  // configurations
  }
  const bool connected = port.status == 1;
  bytes[22] = connected ? 1 : 0;  // configuration in use
  bytes[usb::kIsHubOffset] = port.hub.empty() ? 0 : 1;
  PutWord(bytes + 25, connected ? index + 1 : 0);  // bus address; 1 is the hub's own
  PutDword(bytes + usb::kStatusOffset, port.status);
  *returned = kConnectionInformationSize;
  return TRUE;
}

BOOL HubRequest(const SimUsb& hub, DWORD controlCode, const void* in, DWORD inSize, void* out,
                DWORD outSize, DWORD* returned) {
  if (controlCode == kRootHubNameOrNodeInformation) {
    return NodeInformation(hub, out, outSize, returned);
  }
  DWORD index = 0;
  const SimUsbPort* port = RequestedPort(hub, in, inSize, index);
  if (port == nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (controlCode == kConnectionInformation) {
    return ConnectionInformation(*port, index, out, outSize, returned);
  }
  const std::string& name = controlCode == kConnectionName ? port->hub : port->driverKey;
  if (port->status == 0 || name.empty()) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  return NameRecord(name, index, out, outSize, returned);
}

}  // namespace

bool IsUsbRequest(const SimDevice& device, DWORD controlCode) {
  switch (device.usb.role) {
    case SimUsb::Role::HostController:
      return controlCode == kRootHubNameOrNodeInformation ||
             controlCode == kControllerDriverKeyName;
    case SimUsb::Role::Hub:
      return controlCode == kRootHubNameOrNodeInformation ||
             controlCode == kConnectionInformation || controlCode == kConnectionName ||
             controlCode == kConnectionDriverKeyName;
    case SimUsb::Role::None:
      break;
  }
  return false;
}

BOOL UsbRequest(const SimDevice& device, DWORD controlCode, const void* in, DWORD inSize, void* out,
                DWORD outSize, DWORD* returned) {
  const SimUsb& usb = device.usb;
  if (usb.role == SimUsb::Role::Hub) {
    return HubRequest(usb, controlCode, in, inSize, out, outSize, returned);
  }
  const std::string& name = controlCode == kControllerDriverKeyName ? usb.driverKey : usb.rootHub;
  if (name.empty()) {
    return Fail(ERROR_GEN_FAILURE);
  }
  return NameRecord(name, 0, out, outSize, returned);
}

}  // namespace Hostkit::sim
