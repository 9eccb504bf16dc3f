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
  Report report;
  report.Add("processors", "processors", cpu.Num());
  report.Add("family", "family", cpu.Family());
  report.Add("speedMHz", "speed (MHz)",
             speed >= 0 ? nlohmann::ordered_json(speed) : nlohmann::ordered_json());
  report.Add("vendor", "vendor", Narrow(cpu.VendorUnicode()));
  report.Add("product", "product", FromAnsi(cpu.ProductName()));
  report.Add("memoryMB", "memory (MB)", Hostkit::RAM().NumMegs());
  Drive drive;
  report.Add("systemDrive", "system drive", std::string(1, drive.SystemDrive()) + ":");
  nlohmann::ordered_json drives = nlohmann::ordered_json::array();
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const Drive::TYPE type = drive.Type(letter);
    if (type == Drive::TYPE_UNKNOWN) {
      continue;
    }
    nlohmann::ordered_json entry = {{"letter", std::string(1, letter) + ":"},
                                    {"type", TypeText(type)}};
    const unsigned long total = drive.AvailableSpace(letter, Drive::MEGABYTES);
    if (total > 0) {
      entry["sizeMB"] = total;
      entry["freeMB"] = drive.FreeSpace(letter, Drive::MEGABYTES);
    }
    drives.push_back(entry);
  }
  if (JsonOutput()) {
    report.Add("drives", "drives", drives);
  } else {
    for (const auto& entry : drives) {
      std::string text = entry["type"].get<std::string>();
      if (entry.contains("sizeMB")) {
        text += ", " + entry["sizeMB"].dump() + " MB, " + entry["freeMB"].dump() + " MB free";
      }
      report.Add("drive" + entry["letter"].get<std::string>(),
                 "drive " + entry["letter"].get<std::string>(), text);
    }
  }
  Hostkit::Usb usb;
  report.Add("usbSupported", "USB", usb.DoesSupportUsb());
  const int ports = usb.NumberOfPortsExisting();
  report.Add("usbPorts", "USB ports",
             ports >= 0 ? nlohmann::ordered_json(ports) : nlohmann::ordered_json());
  report.Add(
      "usbPortsFree", "USB ports free",
      ports >= 0 ? nlohmann::ordered_json(usb.NumberOfPortsOpen()) : nlohmann::ordered_json());
  report.Print(out);
  return kDone;
}

}  // namespace hostkit_tool
