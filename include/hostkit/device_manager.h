/// \file
/// DeviceManager: the machine's device inventory.
///
/// This release offers only what Usb needs on Windows 95 and NT 4: whether USB is present. The
/// listing of devices by class with their resources and the free interrupts and DMA channels
/// are not provided.
///
/// IsUSBPresent answers from what each family records of its devices, not through the device
/// inventory driver: on Windows 9x, whether a device the Configuration Manager reports present
/// (`HKEY_DYN_DATA\Config Manager\Enum`) has the device class "USB" in its hardware key under
/// `HKLM\Enum`; on the NT family, whether the service of a USB host controller or the USB driver
/// stack ("usbd", "uhcd", "openhci", "usbuhci", "usbohci", "usbehci") is running. The driver name
/// given to SetVXD is kept but not loaded.
#pragma once

#include <string>

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class DeviceManager_impl;

/// The device inventory; this release answers whether USB is present (see the file
/// description for how each family is asked).
class HOSTKIT_API DeviceManager {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  DeviceManager();
  DeviceManager(const DeviceManager& other);
  DeviceManager& operator=(const DeviceManager& other);
  ~DeviceManager();
  ///@}

  /// The device inventory driver ("DevMngr.VXD") to use on Windows 9x.
  void SetVXD(const std::string& driverName);
  /// Whether a USB host controller or device is present.
  bool IsUSBPresent();

 private:
  Pimpl<DeviceManager_impl> impl_;
};

}  // namespace Hostkit
