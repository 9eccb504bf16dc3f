// hostkit devices: the device inventory of the loaded machine through the library's
// DeviceManager: devices of one class or of every class with their resources, or the free
// interrupts and DMA channels.
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "hostkit/device_manager.h"

namespace hostkit_tool {

namespace {

struct ClassName {
  const char* name;
  Hostkit::DEVICE_CLASS deviceClass;
};

constexpr ClassName kClasses[] = {
    {"network", Hostkit::DEVICE_CLASS_NETWORK}, {"modem", Hostkit::DEVICE_CLASS_MODEM},
    {"usb", Hostkit::DEVICE_CLASS_USB},         {"display", Hostkit::DEVICE_CLASS_DISPLAY},
    {"sound", Hostkit::DEVICE_CLASS_SOUND},     {"ports", Hostkit::DEVICE_CLASS_PORTS},
    {"disk", Hostkit::DEVICE_CLASS_DISK},       {"cdrom", Hostkit::DEVICE_CLASS_CDROM},
};

std::string Hex(unsigned long value) {
  char text[16];
  std::snprintf(text, sizeof text, "%lX", value);
  return text;
}

std::string Numbers(const std::vector<int>& numbers) {
  std::string text;
  for (int number : numbers) {
    text += (text.empty() ? "" : " ") + std::to_string(number);
  }
  return text.empty() ? "none" : text;
}

void PrintRanges(const char* label, const std::vector<Hostkit::DeviceManager::Range>& ranges,
                 std::ostream& out) {
  for (const auto& range : ranges) {
    out << "    " << label << " " << Hex(range.start) << "-" << Hex(range.end) << "\n";
  }
}

void PrintDevice(const char* className, const Hostkit::DeviceManager::DeviceInfo& device,
                 std::ostream& out) {
  out << className << ": " << device.name << "\n";
  if (!device.hardwareId.empty()) {
    out << "    id      " << device.hardwareId << "\n";
  }
  out << "    driver  " << device.driver << "\n"
      << "    problem " << device.problem << "\n";
  if (!device.resources.irqs.empty()) {
    out << "    irq     " << Numbers(device.resources.irqs) << "\n";
  }
  if (!device.resources.dmaChannels.empty()) {
    out << "    dma     " << Numbers(device.resources.dmaChannels) << "\n";
  }
  PrintRanges("io     ", device.resources.ioRanges, out);
  PrintRanges("memory ", device.resources.memoryRanges, out);
}

}  // namespace

int RunDevices(const std::string& deviceClass, bool free, std::ostream& out, std::ostream& err) {
  Hostkit::DeviceManager manager;
  if (free) {
    const std::vector<int> irqs = manager.GetFreeIRQs();
    const std::vector<int> dmaChannels = manager.GetFreeDMAChannels();
    if (irqs.empty() && dmaChannels.empty()) {
      err << "hostkit devices --free: the machine's resource records cannot be read\n";
      return 1;
    }
    out << "free irq: " << Numbers(irqs) << "\n"
        << "free dma: " << Numbers(dmaChannels) << "\n";
    return 0;
  }
  bool known = deviceClass.empty();
  for (const ClassName& entry : kClasses) {
    if (!deviceClass.empty() && deviceClass != entry.name) {
      continue;
    }
    known = true;
    for (const auto& device : manager.GetDevices(entry.deviceClass)) {
      PrintDevice(entry.name, device, out);
    }
  }
  if (!known) {
    err << "hostkit devices: unknown class \"" << deviceClass
        << "\" (network, modem, usb, display, sound, ports, disk, cdrom)\n";
    return 2;
  }
  return 0;
}

void AddDevicesCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    std::string deviceClass;
    bool free = false;
  };
  auto args = std::make_shared<Args>();
  CLI::App* devices = AddCommand(app, "devices", "devices by class with their resources",
                                 "hostkit devices network");
  devices->add_option("CLASS", args->deviceClass,
                      "network, modem, usb, display, sound, ports, disk or cdrom (default: all)");
  devices->add_flag("--free", args->free, "the free interrupts and DMA channels instead");
  run[devices] = [args, &out, &err] { return RunDevices(args->deviceClass, args->free, out, err); };
}

}  // namespace hostkit_tool
