// hostkit os: what the library's OS class reports about the machine.
#include <ostream>
#include <string>

#include "commands.h"
#include "hostkit/os.h"

namespace hostkit_tool {

namespace {

using Hostkit::OS;

std::string ReleaseText(OS::TYPE type) {
  switch (type) {
    case OS::TYPE_WIN95:
      return "Windows 95";
    case OS::TYPE_WIN98:
      return "Windows 98";
    case OS::TYPE_WINME:
      return "Windows ME";
    case OS::TYPE_WINNT4:
      return "Windows NT 4.0";
    case OS::TYPE_WIN2000:
      return "Windows 2000";
    case OS::TYPE_WINXP:
      return "Windows XP";
    case OS::TYPE_UNKNOWN:
      break;
  }
  return "unknown";
}

// "SP2" for service pack `offset` of a run of four numbered ones; "other SP" past them.
std::string ServicePackText(int offset, int numbered) {
  return offset < numbered ? "SP" + std::to_string(offset) : "other SP";
}

std::string EditionText(OS::EXACT_TYPE exact) {
  switch (exact) {
    case OS::EXACT_UNKNOWN:
      return "unknown";
    case OS::EXACT_WIN95:
      return "Windows 95";
    case OS::EXACT_WIN95_B:
      return "Windows 95 OSR2 (B)";
    case OS::EXACT_WIN95_C:
      return "Windows 95 OSR2.5 (C)";
    case OS::EXACT_WIN98:
      return "Windows 98";
    case OS::EXACT_WIN98_A:
      return "Windows 98 Second Edition (A)";
    case OS::EXACT_WINME:
      return "Windows ME";
    case OS::EXACT_WINXP_HOME:
      return "Windows XP Home Edition";
    case OS::EXACT_WINXP_PRO:
      return "Windows XP Professional";
    default:
      break;
  }
  if (exact >= OS::EXACT_WINNT4_SP0 && exact <= OS::EXACT_WINNT4_SPX) {
    return "Windows NT 4.0 " + ServicePackText(exact - OS::EXACT_WINNT4_SP0, 7);
  }
  // Windows 2000 comes in four editions of five values each (SP0 to SP3, other SP).
  static const char* const kEditions[] = {"Professional", "Server", "Advanced Server",
                                          "Datacenter Server"};
  const int offset = exact - OS::EXACT_WIN2000_PRO_SP0;
  return std::string("Windows 2000 ") + kEditions[offset / 5] + " " +
         ServicePackText(offset % 5, 4);
}

}  // namespace

int RunOs(std::ostream& out, std::ostream& /*err*/) {
  OS os;
  const int major = os.MajorVersion();
  const int minor = os.MinorVersion();
  const auto number = [](int value) {
    return value < 0 ? nlohmann::ordered_json() : nlohmann::ordered_json(value);
  };
  Report report;
  report.Add("release", "release", ReleaseText(os.Type()));
  report.Add("edition", "edition", EditionText(os.ExactType()));
  report.Add("version", "version",
             major < 0
                 ? nlohmann::ordered_json()
                 : nlohmann::ordered_json(std::to_string(major) + "." + std::to_string(minor)));
  report.Add("build", "build", number(os.BuildNumber()));
  report.Add("servicePack", "service pack",
             os.IsWinNT() ? number(os.NTSP()) : nlohmann::ordered_json("none"));
  unsigned int language = 0;
  char languageName[16] = {};
  const bool languageKnown = os.SystemDefaultLanguage(language, languageName);
  if (JsonOutput()) {
    report.Add("language", "language",
               languageKnown ? nlohmann::ordered_json(language) : nlohmann::ordered_json());
    report.Add("locale", "locale",
               languageKnown && languageName[0] != '\0' ? nlohmann::ordered_json(languageName)
                                                        : nlohmann::ordered_json());
  } else {
    report.Add("language", "language",
               !languageKnown
                   ? std::string("unknown")
                   : std::to_string(language) + (languageName[0] != '\0'
                                                     ? " (" + std::string(languageName) + ")"
                                                     : std::string()));
  }
  report.Add("administrator", "administrator", os.IsUserAdministrator());
  report.Print(out);
  return kDone;
}

}  // namespace hostkit_tool
