// The adapter identity and the adapter record: plain values with their accessors.
#include "tcpip_static/adapter_record.h"

namespace Hostkit {

using Cookie = StaticTcpipInfo::Cookie;
using AdapterInfo = StaticTcpipInfo::AdapterInfo;

Cookie::Cookie() = default;
Cookie::Cookie(const WCHAR* text) {
  if (text != nullptr) {
    text_ = text;  // up to the terminating zero unit
  }
}
Cookie::Cookie(const Cookie& other) = default;
Cookie& Cookie::operator=(const Cookie& other) = default;
Cookie::~Cookie() = default;

const WCHAR* Cookie::c_str() const { return text_.c_str(); }
bool Cookie::operator==(const Cookie& other) const { return text_ == other.text_; }

AdapterInfo::AdapterInfo() = default;
AdapterInfo::AdapterInfo(const AdapterInfo& other) = default;
AdapterInfo& AdapterInfo::operator=(const AdapterInfo& other) = default;
AdapterInfo::~AdapterInfo() = default;

Cookie AdapterInfo::GetCookie() { return fields_.cookie; }
wstring AdapterInfo::Name() { return fields_.name; }
wstring AdapterInfo::ServiceName() { return fields_.serviceName; }
std::string AdapterInfo::DeviceDriver() { return fields_.deviceDriver; }
std::string AdapterInfo::StaticIpAddress() { return fields_.staticIpAddress; }
std::string AdapterInfo::StaticSubnetMask() { return fields_.staticSubnetMask; }
std::string AdapterInfo::StaticDefaultGateway() { return fields_.staticDefaultGateway; }
std::string AdapterInfo::HardwareAddress() { return fields_.hardwareAddress; }
std::string AdapterInfo::AdapterType() { return fields_.adapterType; }
const std::vector<std::string>& AdapterInfo::StaticNameServers() const {
  return fields_.staticNameServers;
}
std::string AdapterInfo::StaticDomainName() { return fields_.staticDomainName; }
bool AdapterInfo::UsingDhcp() const { return fields_.usingDhcp; }
bool AdapterInfo::IsEthernetAdapter() const { return fields_.ethernet; }
bool AdapterInfo::IsPppAdapter() const { return !fields_.ethernet; }
bool AdapterInfo::IsBoundToTcpip() const { return fields_.boundToTcpip; }
bool AdapterInfo::IsIndirectlyOrDirectlyBoundToTcpip() const {
  return fields_.boundDirectlyOrIndirectly;
}
bool AdapterInfo::IsFunctional() const { return fields_.functional; }
bool AdapterInfo::IsAdapterEnabled() const { return fields_.enabled; }
bool AdapterInfo::IsDnsStatic() const { return fields_.dnsStatic; }
StaticTcpipInfo::WINS_STATE AdapterInfo::GetWinsState() const { return fields_.winsState; }
const std::vector<std::string>& AdapterInfo::GetStaticWinsServers() const {
  return fields_.staticWinsServers;
}

}  // namespace Hostkit
