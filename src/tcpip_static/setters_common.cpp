// The setter branch of the running family, and the small rules the branches share.
#include "hostkit/os.h"
#include "hostkit/strings.h"
#include "tcpip_static/setters.h"

namespace Hostkit::tcpip {

std::unique_ptr<SetterBranch> SettersForRunningFamily() {
  OS os;
  if (os.IsWin9x()) {
    return MakeWin9xSetters();
  }
  if (os.IsWin2000() || os.IsWinXP()) {
    return MakeWin2000XpSetters();
  }
  if (os.IsWinNT4()) {
    return MakeNt4Setters();
  }
  return nullptr;
}

std::string JoinServers(const std::vector<std::string>& servers, const char* separator) {
  std::string joined;
  for (size_t i = 0; i < servers.size(); ++i) {
    if (i > 0) {
      joined += separator;
    }
    joined += servers[i];
  }
  return joined;
}

bool CookieText(const Cookie& cookie, std::string& text) {
  return ConvertUnicodeToANSI(cookie.c_str(), text);
}

}  // namespace Hostkit::tcpip
