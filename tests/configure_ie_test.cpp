// ConfigureIE on every release: the proxy list's text surgery, exceptions, automatic
// configuration and detection, version parsing, program path, home page and the connection
// wizard. Every key the tests touch outside the test area is put back as it was.
#include "hostkit/configure_ie.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "inetclients/configure_ie_impl.h"
#include "support/saved_key.h"
#include "support/test_machine.h"

namespace {

using Hostkit::ConfigureIE;
using Hostkit::RegWiz;
using Hostkit::wstring;
using hostkit_test::PerRelease;
using hostkit_test::SavedKey;
using testing::ElementsAre;

constexpr const char* kSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr const char* kConnections =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections";

wstring W(const std::string& ascii) {
  wstring wide;
  Hostkit::ConvertASCIIToUnicode(ascii, wide);
  return wide;
}

// Text to number as the C runtime reads it: leading white space (space, tab to carriage return),
// a sign, the digits up to the first other character, saturating at the int range.
TEST(IEText, LeadingDecimalReadsAsTheCRuntimeDoes) {
  // clang-format off
  const std::pair<const char*, int> cases[] = {
      {"42", 42}, {" \t\n\v\f\r7x", 7}, {"-12.5", -12}, {"+5", 5}, {"\0373", 0},
      {"00000010", 10}, {"- 4", 0}, {"99999999999", INT_MAX}, {"-99999999999", INT_MIN}, {"", 0}};
  // clang-format on
  for (const auto& [text, value] : cases) {
    EXPECT_EQ(Hostkit::ie_text::LeadingDecimal(W(text)), value) << text;
  }
}

std::string A(const wstring& wide) {
  std::string ascii;
  Hostkit::ConvertUnicodeToASCII(wide, ascii);
  return ascii;
}

// The five protocols' members, so that every sequence runs for each of them.
struct Protocol {
  const char* keyword;
  bool (ConfigureIE::*use)(wstring, int);
  bool (ConfigureIE::*get)(wstring&, int&);
};

const Protocol kProtocols[] = {
    {"http", &ConfigureIE::UseHTTPProxyServer, &ConfigureIE::GetHTTPProxyServer},
    {"https", &ConfigureIE::UseHTTPSProxyServer, &ConfigureIE::GetHTTPSProxyServer},
    {"ftp", &ConfigureIE::UseFTPProxyServer, &ConfigureIE::GetFTPProxyServer},
    {"gopher", &ConfigureIE::UseGopherProxyServer, &ConfigureIE::GetGopherProxyServer},
    {"socks", &ConfigureIE::UseSocksProxyServer, &ConfigureIE::GetSocksProxyServer},
};
const Protocol& kHttp = kProtocols[0];
const Protocol& kFtp = kProtocols[2];

class IEProxy : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    settings_.emplace(HKEY_CURRENT_USER, kSettings);
    connections_.emplace(HKEY_CURRENT_USER, kConnections);
    for (const char* name : {"ProxyServer", "ProxyEnable", "ProxyOverride", "AutoConfigURL"}) {
      reg_.DeleteKeyVal(HKEY_CURRENT_USER, kSettings, name);
    }
    reg_.DeleteKeyVal(HKEY_CURRENT_USER, kConnections, "DefaultConnectionSettings");
  }
  void TearDown() override {
    connections_.reset();
    settings_.reset();
    PerRelease::TearDown();
  }

  // A setting's text, or "(none)" when it is absent.
  std::string Setting(const char* name) {
    std::string text;
    return reg_.GetKeyVal(HKEY_CURRENT_USER, kSettings, name, text) ? text : "(none)";
  }
  void SetSetting(const char* name, const char* text) {
    ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kSettings, name, text));
  }
  long ProxyEnable() {
    unsigned long value = 0;
    return reg_.GetDwordKeyVal(HKEY_CURRENT_USER, kSettings, "ProxyEnable", value)
               ? static_cast<long>(value)
               : -1;
  }
  bool Use(const Protocol& protocol, const std::string& server, int port) {
    return (ie_.*protocol.use)(W(server), port);
  }
  // "server:port" as the getter reports it, or "(none)".
  std::string Get(const Protocol& protocol) {
    wstring server = W("untouched");
    int port = -7;
    if (!(ie_.*protocol.get)(server, port)) {
      EXPECT_EQ(A(server), "untouched");
      EXPECT_EQ(port, -7);
      return "(none)";
    }
    return A(server) + ":" + std::to_string(port);
  }

  RegWiz reg_;
  ConfigureIE ie_;
  std::optional<SavedKey> settings_;
  std::optional<SavedKey> connections_;
};

TEST_P(IEProxy, SingleProxyIsSetAndClearedAndNeverReadAsAProtocolEntry) {
  ASSERT_TRUE(ie_.UseProxyServer(W("proxy"), 8080));
  EXPECT_EQ(Setting("ProxyServer"), "proxy:8080");
  EXPECT_EQ(ProxyEnable(), 1);
  for (const Protocol& protocol : kProtocols) {
    EXPECT_EQ(Get(protocol), "(none)") << protocol.keyword;
  }
  // Setting it again replaces per-protocol entries too; a negative port keeps its sign.
  SetSetting("ProxyServer", "http=a:1;ftp=b:2");
  ASSERT_TRUE(ie_.UseProxyServer(W("p"), -1));
  EXPECT_EQ(Setting("ProxyServer"), "p:-1");

  EXPECT_TRUE(ie_.UseProxyServer(W(""), 0));
  EXPECT_EQ(Setting("ProxyServer"), "(none)");
  EXPECT_EQ(ProxyEnable(), 0);
  EXPECT_TRUE(ie_.UseProxyServer(W(""), 0)) << "clearing an absent proxy";
}

TEST_P(IEProxy, EveryProtocolRoundTripsInTheSharedList) {
  EXPECT_TRUE(Use(kHttp, "", 0)) << "removing from an absent list writes nothing";
  EXPECT_EQ(Setting("ProxyServer"), "(none)");
  EXPECT_EQ(ProxyEnable(), -1);
  // Each entry is appended; each reads back whatever else the list holds.
  std::vector<std::string> entries;
  const auto joined = [&](std::size_t from) {
    std::string text;
    for (std::size_t i = from; i < entries.size(); ++i) {
      text += (i == from ? "" : ";") + entries[i];
    }
    return text;
  };
  for (const Protocol& protocol : kProtocols) {
    const int port = static_cast<int>(entries.size()) + 1;
    const std::string host = std::string(protocol.keyword) + ".example";
    ASSERT_TRUE(Use(protocol, host, port));
    entries.push_back(protocol.keyword + ("=" + host + ":" + std::to_string(port)));
    EXPECT_EQ(Setting("ProxyServer"), joined(0));
    EXPECT_EQ(ProxyEnable(), 1);
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    EXPECT_EQ(Get(kProtocols[i]), entries[i].substr(entries[i].find('=') + 1));
  }
  // Removing from the front each time takes exactly one entry; the proxy stays switched on.
  for (std::size_t i = 0; i < entries.size(); ++i) {
    ASSERT_TRUE(Use(kProtocols[i], "", 0));
    EXPECT_EQ(Get(kProtocols[i]), "(none)") << kProtocols[i].keyword;
    EXPECT_EQ(Setting("ProxyServer"), joined(i + 1));
  }
  EXPECT_EQ(ProxyEnable(), 1);
}

TEST_P(IEProxy, ListSurgeryOnExistingText) {
  // Removing a later entry erases from the list's start as far as the entry ends, dropping a
  // separator left trailing; replacing leaves the old separator and appends; keywords match
  // with case; the single-proxy form stays first.
  const struct {
    const char* before;
    const Protocol& protocol;
    const char* server;
    int port;
    const char* after;
  } cases[] = {
      {"http=a:1;ftp=b:2;socks=c:3", kFtp, "", 0, "http=a:1;3"},
      {"http=a:1;ftp=b:2;", kFtp, "", 0, "http=a:1"},
      {"http=a:1;ftp=b:2", kHttp, "c", 3, ";ftp=b:2http=c:3"},
      {";ftp=b:2http=c:3", kHttp, "d", 4, ";ftp=b:2http=d:4"},
      {"HTTP=x:1", kHttp, "", 0, "HTTP=x:1"},
      {"HTTP=x:1", kHttp, "y", 2, "HTTP=x:1;http=y:2"},
      {"proxy:80", kFtp, "f", 21, "proxy:80;ftp=f:21"},
  };
  for (const auto& c : cases) {
    SetSetting("ProxyServer", c.before);
    ASSERT_TRUE(Use(c.protocol, c.server, c.port)) << c.before;
    EXPECT_EQ(Setting("ProxyServer"), c.after) << c.before;
    EXPECT_EQ(Get(c.protocol), *c.server ? c.server + (":" + std::to_string(c.port)) : "(none)")
        << c.before;
  }
  // The joined text still reads back: the ftp entry's port stops at the first non-digit.
  SetSetting("ProxyServer", ";ftp=b:2http=c:3");
  EXPECT_EQ(Get(kFtp), "b:2");
}

TEST_P(IEProxy, GetterTakesServerToFirstColonAndLeadingDigitsOfPort) {
  const std::pair<const char*, const char*> cases[] = {
      {"http=proxy:8080;ftp=f:21", "proxy:8080"},
      {"http=proxy", "proxy:0"},
      {"http=proxy;ftp=f:21", "proxy;ftp=f:21"},
      {"http=p:80x", "p:80"},
      {"proxy:8080", "(none)"},
  };
  for (const auto& [text, expected] : cases) {
    SetSetting("ProxyServer", text);
    EXPECT_EQ(Get(kHttp), expected) << text;
  }
}

TEST_P(IEProxy, ExceptionListKeepsLocalBypass) {
  const auto bypass = [&](bool on, const char* after) {
    EXPECT_TRUE(ie_.EnableLocalBypass(on)) << after;
    EXPECT_EQ(Setting("ProxyOverride"), after);
  };
  const auto except = [&](const char* list, const char* after) {
    EXPECT_TRUE(ie_.SetProxyExceptions(W(list))) << after;
    EXPECT_EQ(Setting("ProxyOverride"), after);
  };
  bypass(false, "(none)");  // nothing to disable
  bypass(true, "<local>");
  except("a.com;b.com", "a.com;b.com;<local>");
  bypass(true, "a.com;b.com;<local>");  // already on

  SetSetting("ProxyOverride", "a.com;<local>");
  except("", "<local>");
  bypass(false, "(none)");

  SetSetting("ProxyOverride", "a.com;<local>;b.com");
  bypass(false, "a.com");
  bypass(true, "a.com;<local>");
  bypass(false, "a.com");
  except("c.com", "c.com");
  except("", "(none)");
}

TEST_P(IEProxy, AutomaticConfigurationScriptRoundTrips) {
  wstring url = W("untouched");
  EXPECT_FALSE(ie_.GetAutoConfigurationScript(url));
  EXPECT_EQ(A(url), "untouched");
  EXPECT_TRUE(ie_.UseAutoConfigurationScript(W(""))) << "removing an absent script";
  ASSERT_TRUE(ie_.UseAutoConfigurationScript(W("http://wpad/proxy.pac")));
  ASSERT_TRUE(ie_.GetAutoConfigurationScript(url));
  EXPECT_EQ(A(url), "http://wpad/proxy.pac");
  ASSERT_TRUE(ie_.UseAutoConfigurationScript(W("")));
  EXPECT_EQ(Setting("AutoConfigURL"), "(none)");
}

TEST_P(IEProxy, DetectionRewritesOnlyTheFlagsByte) {
  EXPECT_FALSE(ie_.EnableAutomaticSettingDetection(true));
  EXPECT_FALSE(reg_.DoesValNameExist(HKEY_CURRENT_USER, kConnections, "DefaultConnectionSettings"));

  const std::vector<unsigned char> record{0x3C, 0, 0, 0, 7, 0, 0, 0, 0x0F, 0xAA, 0xBB};
  ASSERT_TRUE(
      reg_.SetBinaryKeyVal(HKEY_CURRENT_USER, kConnections, "DefaultConnectionSettings", record));
  std::vector<unsigned char> read;
  for (const auto& [enable, flags] : {std::pair{true, 0x09}, std::pair{false, 0x01}}) {
    ASSERT_TRUE(ie_.EnableAutomaticSettingDetection(enable));
    ASSERT_TRUE(
        reg_.GetBinaryKeyVal(HKEY_CURRENT_USER, kConnections, "DefaultConnectionSettings", read));
    std::vector<unsigned char> expected = record;
    expected[8] = static_cast<unsigned char>(flags);
    EXPECT_EQ(read, expected);
  }

  const std::vector<unsigned char> shortRecord{1, 2, 3, 4, 5, 6, 7, 8};
  ASSERT_TRUE(reg_.SetBinaryKeyVal(HKEY_CURRENT_USER, kConnections, "DefaultConnectionSettings",
                                   shortRecord));
  EXPECT_FALSE(ie_.EnableAutomaticSettingDetection(true));
  ASSERT_TRUE(
      reg_.GetBinaryKeyVal(HKEY_CURRENT_USER, kConnections, "DefaultConnectionSettings", read));
  EXPECT_EQ(read, shortRecord);
}

INSTANTIATE_TEST_SUITE_P(Releases, IEProxy, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

constexpr const char* kExplorer = "SOFTWARE\\Microsoft\\Internet Explorer";
constexpr const char* kSetup = "SOFTWARE\\Microsoft\\IE Setup\\Setup";
constexpr const char* kSetup4 = "SOFTWARE\\Microsoft\\IE4\\SETUP";
constexpr const char* kMain = "Software\\Microsoft\\Internet Explorer\\Main";
constexpr const char* kWizard = "Software\\Microsoft\\Internet Connection Wizard";

class IEBrowser : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    explorer_.emplace(HKEY_LOCAL_MACHINE, kExplorer);
    setup_.emplace(HKEY_LOCAL_MACHINE, kSetup);
    setup4_.emplace(HKEY_LOCAL_MACHINE, kSetup4);
    main_.emplace(HKEY_CURRENT_USER, kMain);
  }
  void TearDown() override {
    main_.reset();
    setup4_.reset();
    setup_.reset();
    explorer_.reset();
    PerRelease::TearDown();
  }

  RegWiz reg_;
  ConfigureIE ie_;
  std::optional<SavedKey> explorer_, setup_, setup4_, main_;
};

TEST_P(IEBrowser, VersionTextSplitsIntoMajorAndMinor) {
  ASSERT_TRUE(ie_.IsInstalled());
  struct Case {
    const char* text;
    std::optional<int> major;
    std::optional<int> minor;
  };
  const Case cases[] = {
      {"6.0.2800.1106", 6, 0},   {"5.50", 5, std::nullopt}, {"10.2x.3", 10, 2},
      {".5.1", std::nullopt, 5}, {"5..1", 5, std::nullopt}, {"7", std::nullopt, std::nullopt},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kExplorer, "Version", c.text));
    wstring version;
    ASSERT_TRUE(ie_.GetVersionString(version));
    EXPECT_EQ(A(version), c.text);
    int major = -1;
    int minor = -1;
    EXPECT_EQ(ie_.GetMajorVersion(major), c.major.has_value()) << c.text;
    EXPECT_EQ(ie_.GetMinorVersion(minor), c.minor.has_value()) << c.text;
    EXPECT_EQ(major, c.major.value_or(-1)) << c.text;
    EXPECT_EQ(minor, c.minor.value_or(-1)) << c.text;
  }
}

TEST_P(IEBrowser, ProgramPathPrefersTheNewerSetupKey) {
  reg_.DeleteKeyVal(HKEY_LOCAL_MACHINE, kSetup, "Path");
  reg_.DeleteKeyVal(HKEY_LOCAL_MACHINE, kSetup4, "Path");
  wstring path = W("untouched");
  EXPECT_FALSE(ie_.GetProgramPath(path));
  EXPECT_EQ(A(path), "untouched");

  ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kSetup4, "Path", "C:\\IE4"));
  ASSERT_TRUE(ie_.GetProgramPath(path));
  EXPECT_EQ(A(path), "C:\\IE4");
  // A variable nobody set stays as written.
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kSetup, "Path", "%HOSTKIT_NOT_SET%\\IE"));
  ASSERT_TRUE(ie_.GetProgramPath(path));
  EXPECT_EQ(A(path), "%HOSTKIT_NOT_SET%\\IE");
}

TEST_P(IEBrowser, HomePageRoundTrips) {
  ASSERT_TRUE(ie_.SetHomePage(W("http://example.com/start")));
  wstring url;
  ASSERT_TRUE(ie_.GetHomePage(url));
  EXPECT_EQ(A(url), "http://example.com/start");
}

TEST_P(IEBrowser, WizardIsMarkedCompletedWhereTheFamilyKeepsIt) {
  // Windows 9x keeps the flag for the default user; the NT family for each user with the key.
  const HKEY root = isWin9x() ? HKEY_USERS : HKEY_CURRENT_USER;
  const std::string path = isWin9x() ? std::string(".Default\\") + kWizard : kWizard;
  SavedKey wizard(root, path);
  ASSERT_TRUE(ie_.DisableConnectionWizard());
  std::vector<unsigned char> completed;
  ASSERT_TRUE(reg_.GetBinaryKeyVal(root, path.c_str(), "Completed", completed));
  EXPECT_THAT(completed, ElementsAre(1, 0, 0, 0));
}

INSTANTIATE_TEST_SUITE_P(Releases, IEBrowser, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
