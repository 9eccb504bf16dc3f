/// @file
/// DeviceManager: the machine's device inventory: devices by class with their interrupt, DMA,
/// I/O and memory resources, the free interrupts and DMA channels, and USB presence.
///
/// Each family is read where it keeps its own record of the devices it has set up:
///
/// - Windows 9x: the Configuration Manager's view of the running devices,
///   `HKEY_DYN_DATA\Config Manager\Enum\NODE`, whose "HardWareKey" names the device's key under
///   `HKLM\Enum` ("Class", "DeviceDesc", "HardwareID", "Driver"), whose "Status" and "Problem"
///   are the devnode's state and whose binary "Allocation" lists the resources the device was
///   given (its layout is stated in src/inventory/resource_lists.h). The inventory driver named
///   by SetVXD is not needed for this view and is not loaded.
/// - Windows NT 4: the resource maps the drivers report under
///   `HKLM\HARDWARE\RESOURCEMAP\TYPE\DRIVER`, one device per driver, classified by its service's
///   "Group" ("NDIS" network, "Video" display, "Extended base" ports, "SCSI miniport" and "Primary
///   disk" disks); the name is the service's "DisplayName". NT 4 records no hardware identifier nor
///   problem code.
/// - Windows 2000 and XP: SetupAPI's present devices of the class (setupapi.dll, bound at run
///   time) with their description, hardware identifier and driver; the state and problem code
///   from cfgmgr32's CM_Get_DevNode_Status; the resources from the resource map the Plug and
///   Play manager keeps under `RESOURCEMAP\PnP Manager\PnpManager`, one value per device named
///   by its physical device object.
///
/// The NT family's resource maps are read in their ".Raw" form, whose interrupt level is the
/// interrupt request line. Every other release, and a release whose module or entry point is
/// missing, answers empty lists.
#pragma once

#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class DeviceManager_impl;

/// Device classes as Windows groups its devices.
enum DEVICE_CLASS {
  DEVICE_CLASS_NETWORK,  ///< network adapters ("Net")
  DEVICE_CLASS_MODEM,    ///< modems ("Modem")
  DEVICE_CLASS_USB,      ///< USB host controllers and hubs ("USB")
  DEVICE_CLASS_DISPLAY,  ///< display adapters ("Display")
  DEVICE_CLASS_SOUND,    ///< sound, video and game controllers ("MEDIA")
  DEVICE_CLASS_PORTS,    ///< serial and parallel ports ("Ports")
  DEVICE_CLASS_DISK,     ///< disk drives ("DiskDrive")
  DEVICE_CLASS_CDROM,    ///< CD-ROM drives ("CDROM")
};

/// The device inventory: devices by class with their resources, the free interrupts and DMA
/// channels, and USB presence (see the file comment for where each family keeps them).
class HOSTKIT_API DeviceManager {
 public:
  /// An inclusive range of I/O ports or memory addresses.
  struct Range {
    unsigned long start = 0;  ///< the first port or address
    unsigned long end = 0;    ///< the last port or address
  };

  /// The resources a device was given.
  struct Resources {
    std::vector<int> irqs;            ///< interrupt request lines
    std::vector<int> dmaChannels;     ///< DMA channels
    std::vector<Range> ioRanges;      ///< I/O port ranges
    std::vector<Range> memoryRanges;  ///< memory address ranges
  };

  /// One device, its text in the system's ANSI code page. There is no wide form: the 9x
  /// registry and the NT 4 service keys hold ANSI text, and the descriptions SetupAPI gives on
  /// 2000 and XP are in the system's own language, which its ANSI code page writes.
  struct DeviceInfo {
    std::string name;           ///< description as Device Manager shows it
    std::string hardwareId;     ///< the first hardware identifier; empty on NT 4
    std::string driver;         ///< the driver key (9x, 2000, XP) or service name (NT 4)
    unsigned long status = 0;   ///< the devnode's status flags (0 on NT 4)
    unsigned long problem = 0;  ///< the devnode's problem code, 0 when it works
    Resources resources;        ///< what the device was given
  };

  ///@{
  /// Creating, copying and destroying: the object keeps only the driver name SetVXD gives it.
  DeviceManager();
  DeviceManager(const DeviceManager& other);
  DeviceManager& operator=(const DeviceManager& other);
  ~DeviceManager();
  ///@}

  /// The device inventory driver ("DevMngr.VXD") the caller has for Windows 9x; kept, not
  /// loaded (see the file comment).
  void SetVXD(const std::string& driverName);
  /// Whether a USB host controller or device is present: on Windows 9x a present devnode of
  /// the class "USB", on the NT family a running USB controller or driver stack service.
  bool IsUSBPresent();

  /// The present devices of the class, in the order the family's source lists them; empty
  /// when there are none or they cannot be read.
  std::vector<DeviceInfo> GetDevices(DEVICE_CLASS deviceClass);
  /// Interrupt request lines 0 to 15 that no device holds, ascending. Line 2, which cascades
  /// the second interrupt controller, is never free. Empty when the family's source cannot be
  /// read.
  std::vector<int> GetFreeIRQs();
  /// DMA channels 0 to 7 that no device holds, ascending; channel 4, which cascades the first
  /// controller, is never free. Empty when the family's source cannot be read.
  std::vector<int> GetFreeDMAChannels();

 private:
  Pimpl<DeviceManager_impl> impl_;
};

}  // namespace Hostkit
