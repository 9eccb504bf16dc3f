// SetupApiBinding: SetupAPI's device-information calls, bound at run time, and the listing of
// the network devices that are present.
#pragma once

#include <string>
#include <vector>

#include "platform/setupapi.h"

namespace Hostkit::tcpip {

class SetupApiBinding {
 public:
  // Loads "SETUPAPI.DLL" and looks up the five entries; usable only when all five were found.
  SetupApiBinding();
  ~SetupApiBinding();
  SetupApiBinding(const SetupApiBinding&) = delete;
  SetupApiBinding& operator=(const SetupApiBinding&) = delete;

  bool Usable() const;

  // Instance identifiers of the present devices of the network adapter class; empty when the
  // binding is not usable.
  std::vector<std::string> PresentNetworkDeviceIds() const;

 private:
  platform::setupapi::GetClassDevsA getClassDevs_ = nullptr;
  platform::setupapi::EnumDeviceInfo enumDeviceInfo_ = nullptr;
  platform::setupapi::GetDeviceInstanceIdA getDeviceInstanceId_ = nullptr;
  platform::setupapi::GetDeviceRegistryPropertyA getDeviceRegistryProperty_ = nullptr;
  platform::setupapi::DestroyDeviceInfoList destroyDeviceInfoList_ = nullptr;
  HMODULE module_ = nullptr;
};

}  // namespace Hostkit::tcpip
