// Usb: USB support and port counts, and the shell that forwards to Usb_impl.
#include "foundation/shell_impl.h"
#include "hostkit/device_manager.h"
#include "hostkit/os.h"
#include "inventory/usb_impl.h"

namespace Hostkit {

template class Pimpl<Usb_impl>;

namespace {

constexpr const char* kDeviceInventoryDriver = "DevMngr.VXD";

// Windows 95 and NT 4 have no USB device interface to walk.
bool WithoutUsbInterface() {
  OS os;
  return os.IsWin95() || os.IsWinNT4();
}

}  // namespace

bool Usb_impl::DoesSupportUsb() {
  if (WithoutUsbInterface()) {
    DeviceManager devices;
    devices.SetVXD(kDeviceInventoryDriver);
    return devices.IsUSBPresent();
  }
  return NumberOfPortsExisting() >= 1;
}

int Usb_impl::NumberOfPortsExisting() {
  if (WithoutUsbInterface()) {
    return -1;
  }
  return WalkUsbControllers().portsSeen;
}

int Usb_impl::NumberOfPortsOpen() {
  if (WithoutUsbInterface()) {
    return -1;
  }
  const UsbWalkResult walk = WalkUsbControllers();
  return walk.portsSeen - walk.portsInUse;
}

Usb::Usb() = default;
Usb::Usb(const Usb& other) = default;
Usb& Usb::operator=(const Usb& other) = default;
Usb::~Usb() = default;

bool Usb::DoesSupportUsb() {
  return Forward(impl_, false, [&](Usb_impl& impl) { return impl.DoesSupportUsb(); });
}

int Usb::NumberOfPortsExisting() {
  return Forward(impl_, -1, [&](Usb_impl& impl) { return impl.NumberOfPortsExisting(); });
}

int Usb::NumberOfPortsOpen() {
  return Forward(impl_, -1, [&](Usb_impl& impl) { return impl.NumberOfPortsOpen(); });
}

}  // namespace Hostkit
