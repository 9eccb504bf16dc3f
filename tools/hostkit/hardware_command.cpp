// hostkit hardware: the processor, memory, drives and USB ports as the library's CPU, RAM, Drive
// and Usb report them.
#include <ostream>
#include <string>

#include "commands.h"
#include "hostkit/inventory.h"
#include "hostkit/strings.h"
#include "hostkit/usb.h"

namespace hostkit_tool {

namespace {

using Hostkit::Drive;

const char* TypeText(Drive::TYPE type) {
  switch (type) {
    case Drive::TYPE_HARD:
      return "hard disk";
    case Drive::TYPE_CDROM:
      return "CD-ROM";
    case Drive::TYPE_REMOVABLE:
      return "removable";
    case Drive::TYPE_FLOPPY:
      return "floppy";
    case Drive::TYPE_NETWORK:
      return "network";
    case Drive::TYPE_UNKNOWN:
      break;
  }
  return "unknown";
}

}  // namespace

int RunHardware(std::ostream& out, std::ostream& /*err*/) {
  Hostkit::CPU cpu;
  const int speed = cpu.Speed(10, true);
  out << "Processors: " << cpu.Num() << "\n"
      << "Family: " << cpu.Family() << "\n"
      << "Speed: " << (speed >= 0 ? std::to_string(speed) + " MHz" : "unknown") << "\n"
      << "Vendor: " << Narrow(cpu.VendorUnicode()) << "\n"
      << "Product: " << cpu.ProductName() << "\n"
      << "Memory: " << Hostkit::RAM().NumMegs() << " MB\n";
  Drive drive;
  out << "System drive: " << drive.SystemDrive() << ":\n";
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const Drive::TYPE type = drive.Type(letter);
    if (type == Drive::TYPE_UNKNOWN) {
      continue;
    }
    out << "Drive " << letter << ": " << TypeText(type);
    const unsigned long total = drive.AvailableSpace(letter, Drive::MEGABYTES);
    if (total > 0) {
      out << ", " << total << " MB, " << drive.FreeSpace(letter, Drive::MEGABYTES) << " MB free";
    }
    out << "\n";
  }
  Hostkit::Usb usb;
  out << "USB: " << (usb.DoesSupportUsb() ? "supported" : "not supported") << "\n";
  const int ports = usb.NumberOfPortsExisting();
  if (ports >= 0) {
    out << "USB ports: " << ports << ", " << usb.NumberOfPortsOpen() << " free\n";
  } else {
    out << "USB ports: not counted on this release\n";
  }
  return 0;
}

}  // namespace hostkit_tool
