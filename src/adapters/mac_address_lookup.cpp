// The adapter hardware-address lookup through the driver's NDIS statistics query.
#include "adapters/mac_address_lookup.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "hostkit/patterns.h"
#include "hostkit/strings.h"
#include "platform/devices.h"
#include "platform/handles.h"
#include "platform/ndis.h"
#include "platform/system_info.h"

namespace Hostkit::adapters {

namespace {

constexpr DWORD kNdisQueryGlobalStats = platform::ndis::kQueryGlobalStats;
constexpr DWORD kSupportedList = platform::ndis::kSupportedList;
// In order of preference: 802.3 current address, WAN current address, WAN permanent address.
constexpr DWORD kAddressObjects[] = {platform::ndis::k8023CurrentAddress,
                                     platform::ndis::kWanCurrentAddress,
                                     platform::ndis::kWanPermanentAddress};
constexpr DWORD kQueryBufferSize = 4096;
constexpr const char* kNoAddress = "00-00-00-00-00-00";

// USRobotics PCI adapters of this driver do not answer the query; their addresses are fixed by
// the unit number at the end of the service name.
std::string FixedUsRoboticsAddress(const std::string& name) {
  const char last = name.empty() ? '\0' : name.back();
  if (std::isdigit(static_cast<unsigned char>(last)) == 0) {
    return "00-c0-49-43-0f-5d";
  }
  return std::string("00-c0-49-43-0f-5") + last;
}

// One NDIS query; the returned bytes, or nothing when the driver refused it.
std::optional<std::vector<BYTE>> QueryObject(HANDLE device, DWORD object) {
  std::vector<BYTE> buffer(kQueryBufferSize);
  DWORD returned = 0;
  if (platform::DeviceIoControl(device, kNdisQueryGlobalStats, &object, sizeof object,
                                buffer.data(), kQueryBufferSize, &returned, nullptr) == FALSE) {
    return std::nullopt;
  }
  buffer.resize(std::min(returned, kQueryBufferSize));
  return buffer;
}

// The preferred address object among those the driver lists as supported.
std::optional<DWORD> PreferredAddressObject(const std::vector<BYTE>& supported) {
  std::vector<DWORD> listed(supported.size() / sizeof(DWORD));
  std::memcpy(listed.data(), supported.data(), listed.size() * sizeof(DWORD));
  for (DWORD object : kAddressObjects) {
    if (std::find(listed.begin(), listed.end(), object) != listed.end()) {
      return object;
    }
  }
  return std::nullopt;
}

std::string FormatAddress(const std::vector<BYTE>& bytes) {
  char text[18];
  std::snprintf(text, sizeof text, "%02X-%02X-%02X-%02X-%02X-%02X", bytes[0], bytes[1], bytes[2],
                bytes[3], bytes[4], bytes[5]);
  return text;
}

// Asks the opened driver for its address; true when it gave exactly six bytes.
bool QueryOpenedDevice(HANDLE device, std::string& address) {
  const auto supported = QueryObject(device, kSupportedList);
  if (!supported) {
    return false;
  }
  const auto object = PreferredAddressObject(*supported);
  if (!object) {
    return false;
  }
  const auto bytes = QueryObject(device, *object);
  if (!bytes || bytes->size() != 6) {
    return false;
  }
  address = FormatAddress(*bytes);
  return true;
}

}  // namespace

bool QueryAdapterMacAddress(const wstring& serviceName, std::string& address) {
  try {
    std::string name;
    if (!ConvertUnicodeToANSI(serviceName, name)) {
      return false;
    }
    if (RegExpMatch(".*USRPCIAWR.*", name.c_str())) {
      address = FixedUsRoboticsAddress(name);
      return true;
    }
    address = kNoAddress;
    const std::string target = "\\Device\\" + name;
    bool definedHere = false;
    std::vector<char> existing(512);
    if (platform::QueryDosDeviceA(name.c_str(), existing.data(),
                                  static_cast<DWORD>(existing.size())) == 0) {
      if (platform::GetLastError() != ERROR_FILE_NOT_FOUND) {
        return false;
      }
      if (platform::DefineDosDeviceA(DDD_RAW_TARGET_PATH, name.c_str(), target.c_str()) == FALSE) {
        return false;
      }
      definedHere = true;
    }
    bool found = false;
    const std::string path = "\\\\.\\" + name;
    HANDLE device =
        platform::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
    if (device != INVALID_HANDLE_VALUE) {
      found = QueryOpenedDevice(device, address);
      platform::CloseHandle(device);
    }
    if (definedHere && platform::DefineDosDeviceA(
                           DDD_RAW_TARGET_PATH | DDD_REMOVE_DEFINITION | DDD_EXACT_MATCH_ON_REMOVE,
                           name.c_str(), target.c_str()) == FALSE) {
      return false;
    }
    return found;
  } catch (...) {
    return false;
  }
}

}  // namespace Hostkit::adapters
