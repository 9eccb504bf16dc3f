// The implementation object behind RasInterface.
#pragma once

#include <string>
#include <vector>

#include "hostkit/ras_interface.h"

namespace Hostkit {

class RasInterface_impl {
 public:
  std::vector<std::string> GetEntries();
  bool GetEntry(const std::string& name, RasInterface::EntryInfo& info);
  bool CreateEntry(const std::string& name, const std::string& templateName,
                   const std::string& phoneNumber);
  bool DeleteEntry(const std::string& name);
  bool Dial(const std::string& name, unsigned long timeoutMilliseconds);
  bool HangUp(const std::string& name);
  std::vector<RasInterface::DeviceInfo> GetDevices();
  std::vector<RasInterface::ConnectionInfo> GetConnections();
  std::string GetErrorText(unsigned long code);
  unsigned long LastError() const { return lastError_; }

 private:
  // Keeps `result` as the last error (0 for success and for a missing entry point) and answers
  // whether it is success.
  bool Keep(DWORD result);

  unsigned long lastError_ = 0;
};

}  // namespace Hostkit
