// RasApiBinding: the Remote Access calls of rasapi32, bound at run time, with the record-size
// protocol (the newest size first, then older ones while the release answers "invalid size").
#pragma once

#include <string>
#include <vector>

#include "platform/rasapi32.h"

namespace Hostkit::live {

class RasApiBinding {
 public:
  // Loads "RASAPI32.DLL" and looks up its entries; each operation needs only its own.
  RasApiBinding();
  ~RasApiBinding();
  RasApiBinding(const RasApiBinding&) = delete;
  RasApiBinding& operator=(const RasApiBinding&) = delete;

  // Each call answers the Remote Access result (0 success); kNotBound when its entry point is
  // missing.
  static constexpr DWORD kNotBound = ~DWORD{0};

  DWORD EnumEntries(std::vector<platform::ras::EntryName>& entries) const;
  // The entry's record in the size the release accepted, with any data the system appends
  // after it, as bytes.
  DWORD GetEntryProperties(const std::string& entry, std::vector<BYTE>& record) const;
  DWORD SetEntryProperties(const std::string& entry, std::vector<BYTE>& record) const;
  DWORD DeleteEntry(const std::string& entry) const;
  // Starts dialling `entry` without waiting; `connection` is set whenever the system made one,
  // even when the answer is a failure (it must then be hung up).
  DWORD Dial(const std::string& entry, platform::ras::HRASCONN& connection) const;
  DWORD HangUp(platform::ras::HRASCONN connection) const;
  DWORD EnumDevices(std::vector<platform::ras::DeviceInfo>& devices) const;
  DWORD EnumConnections(std::vector<platform::ras::Connection>& connections) const;
  DWORD GetConnectStatus(platform::ras::HRASCONN connection,
                         platform::ras::ConnectionStatus& status) const;
  DWORD GetErrorString(DWORD code, std::string& text) const;

 private:
  HMODULE module_ = nullptr;
  platform::ras::EnumEntriesA enumEntries_ = nullptr;
  platform::ras::GetEntryPropertiesA getEntryProperties_ = nullptr;
  platform::ras::SetEntryPropertiesA setEntryProperties_ = nullptr;
  platform::ras::DeleteEntryA deleteEntry_ = nullptr;
  platform::ras::DialA dial_ = nullptr;
  platform::ras::HangUpA hangUp_ = nullptr;
  platform::ras::EnumDevicesA enumDevices_ = nullptr;
  platform::ras::EnumConnectionsA enumConnections_ = nullptr;
  platform::ras::GetConnectStatusA getConnectStatus_ = nullptr;
  platform::ras::GetErrorStringA getErrorString_ = nullptr;
};

}  // namespace Hostkit::live
