// The run-time binding of SetupAPI and the listing of present network devices.
#include "tcpip_static/setupapi_binding.h"

#include <array>

#include "platform/modules.h"

namespace Hostkit::tcpip {

namespace setupapi = platform::setupapi;

namespace {

template <class F>
void Bind(HMODULE module, const char* name, F& entry) {
  entry = platform::ProcAs<F>(platform::GetProcAddress(module, name));
}

}  // namespace

SetupApiBinding::SetupApiBinding() : module_(platform::LoadLibraryA(setupapi::kModule)) {
  if (module_ == nullptr) {
    return;
  }
  Bind(module_, "SetupDiGetClassDevsA", getClassDevs_);
  Bind(module_, "SetupDiEnumDeviceInfo", enumDeviceInfo_);
  Bind(module_, "SetupDiGetDeviceInstanceIdA", getDeviceInstanceId_);
  Bind(module_, "SetupDiGetDeviceRegistryPropertyA", getDeviceRegistryProperty_);
  Bind(module_, "SetupDiDestroyDeviceInfoList", destroyDeviceInfoList_);
}

SetupApiBinding::~SetupApiBinding() {
  if (module_ != nullptr) {
    platform::FreeLibrary(module_);
  }
}

bool SetupApiBinding::Usable() const {
  return getClassDevs_ != nullptr && enumDeviceInfo_ != nullptr &&
         getDeviceInstanceId_ != nullptr && getDeviceRegistryProperty_ != nullptr &&
         destroyDeviceInfoList_ != nullptr;
}

// Each device's instance identifier and its description are read into 4,096-byte buffers; the
// description is not needed for the listing but confirms the device can be asked.
std::vector<std::string> SetupApiBinding::PresentNetworkDeviceIds() const {
  std::vector<std::string> ids;
  if (!Usable()) {
    return ids;
  }
  HANDLE set = getClassDevs_(&setupapi::kNetClass, nullptr, nullptr, setupapi::kPresentOnly);
  if (set == INVALID_HANDLE_VALUE) {
    return ids;
  }
  std::array<char, 4096> id{};
  std::array<BYTE, 4096> property{};
  setupapi::DeviceInfoData data{};
  data.cbSize = sizeof data;
  for (DWORD index = 0; enumDeviceInfo_(set, index, &data) != FALSE; ++index) {
    DWORD required = 0;
    if (getDeviceInstanceId_(set, &data, id.data(), static_cast<DWORD>(id.size()), &required) !=
        FALSE) {
      ids.emplace_back(id.data());
    }
    DWORD type = 0;
    getDeviceRegistryProperty_(set, &data, setupapi::kDeviceDescription, &type, property.data(),
                               static_cast<DWORD>(property.size()), &required);
  }
  destroyDeviceInfoList_(set);
  return ids;
}

}  // namespace Hostkit::tcpip
