#include "support/test_machine.h"

namespace hostkit_test {

std::vector<Release> AllReleases() {
  return {Release::Win95,  Release::Win98,   Release::WinME,
          Release::WinNT4, Release::Win2000, Release::WinXP};
}

bool IsWin9x(Release release) {
  return release == Release::Win95 || release == Release::Win98 || release == Release::WinME;
}

std::string ReleaseTag(Release release) {
  switch (release) {
    case Release::Win95:
      return "win95";
    case Release::Win98:
      return "win98";
    case Release::WinME:
      return "winme";
    case Release::WinNT4:
      return "nt40";
    case Release::Win2000:
      return "win2k";
    case Release::WinXP:
      return "winxp";
    case Release::Unknown:
      break;
  }
  return "unknown";
}

std::string ReleaseParamName(const testing::TestParamInfo<Release>& info) {
  return ReleaseTag(info.param);
}

}  // namespace hostkit_test
