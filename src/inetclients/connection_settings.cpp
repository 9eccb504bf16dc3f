// Automatic setting detection: the flags byte of the default connection's settings record.
#include <vector>

#include "hostkit/regwiz.h"
#include "inetclients/configure_ie_impl.h"

namespace Hostkit {

namespace {

const WCHAR* const kConnections =
    HK_WIDE("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections");
const WCHAR* const kDefaultConnection = HK_WIDE("DefaultConnectionSettings");

// Offset of the connection flags in the record; the bytes around it are kept as they are.
constexpr std::size_t kFlagsOffset = 8;
constexpr unsigned char kDirect = 0x01;
constexpr unsigned char kDirectAndDetect = 0x09;

}  // namespace

// The flags byte is overwritten, not masked: proxy and script bits set in it are cleared. A
// record too short to hold the byte is refused and left as it is.
bool ConfigureIE_impl::EnableAutomaticSettingDetection(bool enable) {
  RegWiz reg;
  std::vector<unsigned char> record;
  if (!reg.GetBinaryKeyVal(HKEY_CURRENT_USER, kConnections, kDefaultConnection, record) ||
      record.size() <= kFlagsOffset) {
    return false;
  }
  record[kFlagsOffset] = enable ? kDirectAndDetect : kDirect;
  return reg.SetBinaryKeyVal(HKEY_CURRENT_USER, kConnections, kDefaultConnection, record);
}

}  // namespace Hostkit
