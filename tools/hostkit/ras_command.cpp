// hostkit ras: the dial-up phonebook, devices, dialling and error texts of the loaded machine
// through the library's RasInterface.
#include <memory>
#include <ostream>
#include <string>

#include "command_line.h"
#include "commands.h"
#include "hostkit/ras_interface.h"

namespace hostkit_tool {

namespace {

// Reports a failed Remote Access operation with its error code and the system's text for it.
int RasFailed(const std::string& what, Hostkit::RasInterface& rasInterface, std::ostream& err) {
  const unsigned long code = rasInterface.GetLastRasError();
  err << "hostkit " << what << ": failed";
  if (code != 0) {
    const std::string text = rasInterface.GetErrorText(code);
    err << " (error " << code << (text.empty() ? "" : ": " + text) << ")";
  } else {
    err << " (Remote Access is not available)";
  }
  err << "\n";
  return 1;
}

}  // namespace

int RunRasEntries(std::ostream& out, std::ostream& err) {
  Hostkit::RasInterface rasInterface;
  const auto names = rasInterface.GetEntries();
  if (names.empty() && rasInterface.GetLastRasError() != 0) {
    return RasFailed("ras entries", rasInterface, err);
  }
  for (const std::string& name : names) {
    Hostkit::RasInterface::EntryInfo info;
    out << name;
    if (rasInterface.GetEntry(name, info)) {
      out << "\t" << (info.areaCode.empty() ? "" : "(" + info.areaCode + ") ") << info.phoneNumber
          << "\t" << info.deviceName;
    }
    out << "\n";
  }
  return 0;
}

int RunRasDevices(std::ostream& out, std::ostream& err) {
  Hostkit::RasInterface rasInterface;
  const auto devices = rasInterface.GetDevices();
  if (devices.empty() && rasInterface.GetLastRasError() != 0) {
    return RasFailed("ras devices", rasInterface, err);
  }
  for (const auto& device : devices) {
    out << device.typeName << "\t" << device.name << "\n";
  }
  for (const auto& connection : rasInterface.GetConnections()) {
    out << "connection\t" << connection.entry << "\t"
        << (connection.connected ? "connected" : "connecting") << "\n";
  }
  return 0;
}

int RunRasDial(const std::string& entry, unsigned long timeoutSeconds, std::ostream& out,
               std::ostream& err) {
  Hostkit::RasInterface rasInterface;
  if (!rasInterface.Dial(entry, timeoutSeconds * 1000)) {
    return RasFailed("ras dial " + entry, rasInterface, err);
  }
  out << "ras dial " << entry << ": connected\n";
  return 0;
}

int RunRasHangUp(const std::string& entry, std::ostream& out, std::ostream& err) {
  Hostkit::RasInterface rasInterface;
  if (!rasInterface.HangUp(entry)) {
    return RasFailed("ras hangup " + entry, rasInterface, err);
  }
  out << "ras hangup " << entry << ": done\n";
  return 0;
}

int RunRasError(unsigned long code, std::ostream& out, std::ostream& err) {
  Hostkit::RasInterface rasInterface;
  const std::string text = rasInterface.GetErrorText(code);
  if (text.empty()) {
    err << "hostkit ras error: no text for " << code << "\n";
    return 1;
  }
  out << code << ": " << text << "\n";
  return 0;
}

void AddRasCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err) {
  struct Args {
    std::string entry;
    unsigned long timeout = 60;
    unsigned long code = 0;
  };
  auto args = std::make_shared<Args>();
  CLI::App* ras = app.add_subcommand("ras", "dial-up phonebook, devices, dialling and errors");
  ras->require_subcommand(1);
  run[AddCommand(*ras, "entries", "the phonebook entries", "hostkit ras entries")] = [&] {
    return RunRasEntries(out, err);
  };
  run[AddCommand(*ras, "devices", "the dial-up devices and connections", "hostkit ras devices")] =
      [&] { return RunRasDevices(out, err); };
  CLI::App* dial = AddCommand(*ras, "dial", "dial an entry and wait for the connection",
                              "hostkit ras dial \"My ISP\" --timeout 30");
  dial->add_option("ENTRY", args->entry, "the phonebook entry")->required();
  dial->add_option("--timeout", args->timeout, "seconds to wait, 1 to 3600 (default 60)")
      ->check(CLI::Range(1, 3600));
  run[dial] = [args, &out, &err] { return RunRasDial(args->entry, args->timeout, out, err); };
  CLI::App* hangUp =
      AddCommand(*ras, "hangup", "hang up an entry's connection", "hostkit ras hangup \"My ISP\"");
  hangUp->add_option("ENTRY", args->entry, "the phonebook entry")->required();
  run[hangUp] = [args, &out, &err] { return RunRasHangUp(args->entry, out, err); };
  CLI::App* error =
      AddCommand(*ras, "error", "the text of a Remote Access error code", "hostkit ras error 676");
  error->add_option("CODE", args->code, "the error code")->required();
  run[error] = [args, &out, &err] { return RunRasError(args->code, out, err); };
}

}  // namespace hostkit_tool
