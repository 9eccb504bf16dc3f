// The implementation object behind Usb, and the walk over the USB host
// controllers and hubs that Usb counts ports with.
#pragma once

#include <string>
#include <vector>

#include "hostkit/usb.h"

namespace Hostkit {

// What one walk over every host controller found.
struct UsbWalkResult {
  int portsSeen = 0;   // hub ports whose connection information could be read
  int portsInUse = 0;  // of those, the ones a device is connected to
  // For each hub reached from a port: "[PortN] STATE :  LABEL", the label being the hub's
  // driver key name.
  std::vector<std::string> hubLines;
};

// Opens "\\.\HCD0" to "\\.\HCD9" and walks the root hub of each controller that opens, and the
// hubs attached below it. Devices that do not open and requests that fail are skipped.
UsbWalkResult WalkUsbControllers();

class Usb_impl {
 public:
  bool DoesSupportUsb();
  int NumberOfPortsExisting();
  int NumberOfPortsOpen();
};

}  // namespace Hostkit
