/// \file
/// Usb: whether the machine supports USB, and how many USB ports it has and how many are free.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class Usb_impl;

/// USB support and the number of existing and free USB ports.
class HOSTKIT_API Usb {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  Usb();
  Usb(const Usb& other);
  Usb& operator=(const Usb& other);
  ~Usb();
  ///@}

  /// On Windows 95 and NT 4 whether the device inventory (DeviceManager) finds USB; elsewhere
  /// whether at least one USB port exists.
  bool DoesSupportUsb();
  /// Ports of every host controller's root hub and of the hubs attached to them, whose state
  /// could be read; -1 on Windows 95 and NT 4. Each call walks the hubs afresh.
  int NumberOfPortsExisting();
  /// Those ports less the ones a device is connected to; -1 on Windows 95 and NT 4.
  int NumberOfPortsOpen();

 private:
  Pimpl<Usb_impl> impl_;
};

}  // namespace Hostkit
