// ConfigureOE on every release: a new identity gets exactly the keys and values of the rules,
// GetAccountInfo lists them back, accounts are found by exact name or numbered anew, and
// removing the accounts and the identity leaves the registry as it was. The two trees the
// tests touch are put back as they were afterwards.
#include "hostkit/configure_oe.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "platform/registry.h"
#include "support/registry_probe.h"
#include "support/test_machine.h"

namespace {

using Hostkit::ConfigureOE;
using Hostkit::wstring;
using hostkit_test::PerRelease;
namespace platform = Hostkit::platform;

wstring W(const std::string& ascii) {
  wstring wide;
  Hostkit::ConvertASCIIToUnicode(ascii, wide);
  return wide;
}
std::string A(const wstring& wide) {
  std::string ascii;
  Hostkit::ConvertUnicodeToASCII(wide, ascii);
  return ascii;
}

constexpr const char* kIdentities = "Identities";
constexpr const char* kShared = "Software\\Microsoft\\Internet Account Manager";

// A registry subtree of HKEY_CURRENT_USER: its keys (relative paths, "" for the top) and its
// values ("path|name" -> "sz:text", "dword:N" or the type and raw bytes), with the raw type and
// bytes kept for putting them back.
struct Tree {
  std::set<std::string> keys;
  std::map<std::string, std::string> values;
  std::map<std::string, std::pair<DWORD, std::string>> raw;
  bool operator==(const Tree& other) const { return keys == other.keys && values == other.values; }
};

std::string Join(const std::string& path, const std::string& name, char separator = '\\') {
  return path + separator + name;
}

std::string Readable(DWORD type, const std::string& data) {
  if (type == REG_SZ) {
    return "sz:" + data.substr(0, data.find('\0'));
  }
  if (type == REG_DWORD && data.size() == 4) {
    return "dword:" + std::to_string(*reinterpret_cast<const DWORD*>(data.data()));
  }
  return "type" + std::to_string(type) + ":" + data;
}

void Walk(HKEY key, const std::string& path, Tree& tree) {
  tree.keys.insert(path);
  for (DWORD index = 0;; ++index) {
    std::string name(16384, '\0');
    std::string data(65536, '\0');
    DWORD nameSize = static_cast<DWORD>(name.size());
    DWORD dataSize = static_cast<DWORD>(data.size());
    DWORD type = 0;
    if (platform::RegEnumValueA(key, index, name.data(), &nameSize, nullptr, &type,
                                reinterpret_cast<BYTE*>(data.data()), &dataSize) != ERROR_SUCCESS) {
      break;
    }
    data.resize(dataSize);
    const std::string at = Join(path, name.substr(0, nameSize), '|');
    tree.raw[at] = {type, data};
    tree.values[at] = Readable(type, data);
  }
  for (const std::string& sub : hostkit_test::registry_probe::Subkeys(key)) {
    HKEY child = nullptr;
    if (platform::RegOpenKeyExA(key, sub.c_str(), 0, KEY_READ, &child) == ERROR_SUCCESS) {
      Walk(child, path.empty() ? sub : Join(path, sub), tree);
      platform::RegCloseKey(child);
    }
  }
}

Tree Dump(const std::string& path) {
  Tree tree;
  HKEY key = nullptr;
  if (platform::RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) ==
      ERROR_SUCCESS) {
    Walk(key, "", tree);
    platform::RegCloseKey(key);
  }
  return tree;
}

// Puts the identities and the shared account list back as they were when it was made.
class SavedTrees {
 public:
  SavedTrees() : identities_(Dump(kIdentities)), shared_(Dump(kShared)) {}
  ~SavedTrees() {
    Restore(kIdentities, identities_);
    Restore(kShared, shared_);
  }
  SavedTrees(const SavedTrees&) = delete;
  SavedTrees& operator=(const SavedTrees&) = delete;

 private:
  static void Restore(const std::string& top, const Tree& tree) {
    hostkit_test::registry_probe::DeleteTree(HKEY_CURRENT_USER, top);
    for (const std::string& path : tree.keys) {
      HKEY key = hostkit_test::registry_probe::Create(
          HKEY_CURRENT_USER, (path.empty() ? top : Join(top, path)).c_str());
      for (const auto& [at, value] : tree.raw) {
        if (at.substr(0, at.find('|')) == path) {
          platform::RegSetValueExA(key, at.substr(at.find('|') + 1).c_str(), 0, value.first,
                                   reinterpret_cast<const BYTE*>(value.second.data()),
                                   static_cast<DWORD>(value.second.size()));
        }
      }
      platform::RegCloseKey(key);
    }
  }
  Tree identities_;
  Tree shared_;
};

std::string Read(const std::string& path, const char* name) {
  std::string value;
  Hostkit::RegWiz().GetKeyVal(HKEY_CURRENT_USER, path.c_str(), name, value);
  return value;
}

ConfigureOE::AccountInfo Account(const std::string& user, const std::string& name) {
  ConfigureOE::AccountInfo info;
  info.userName = W(user);
  info.accountName = W(name);
  info.pop3Server = W("pop.example.net");
  info.smtpServer = W("smtp.example.net");
  info.pop3UserName = W("ann");
  info.displayName = W("Ann Example");
  info.emailAddress = W("ann@example.net");
  return info;
}

// "{XXXXXXXX-XXXX-xxxx-XXXX-XXXXXXXXXXXX}": the third group in lower case, the others in upper.
// Checked character by character against a template: 'X' an upper-case and 'x' a lower-case
// hexadecimal digit, anything else itself.
bool IsIdentityId(const std::string& id) {
  const std::string shape = "{XXXXXXXX-XXXX-xxxx-XXXX-XXXXXXXXXXXX}";
  if (id.size() != shape.size()) {
    return false;
  }
  for (size_t i = 0; i < id.size(); ++i) {
    const bool digit = id[i] >= '0' && id[i] <= '9';
    const bool ok = shape[i] == 'X'   ? digit || (id[i] >= 'A' && id[i] <= 'F')
                    : shape[i] == 'x' ? digit || (id[i] >= 'a' && id[i] <= 'f')
                                      : id[i] == shape[i];
    if (!ok) {
      return false;
    }
  }
  return true;
}

class OutlookExpress : public PerRelease {};

TEST_P(OutlookExpress, NewIdentityHoldsExactlyItsAccountsAndRemovalTakesOnlyItsKey) {
  SavedTrees saved;
  platform::RegCloseKey(hostkit_test::registry_probe::Create(HKEY_CURRENT_USER, kIdentities));
  const Tree identitiesBefore = Dump(kIdentities);
  const Tree sharedBefore = Dump(kShared);
  ConfigureOE oe;
  ConfigureOE::AccountInfo ann = Account("Ann", "Home");
  ann.nntpServer = W("news.example.net");
  ASSERT_TRUE(oe.SetAccount(ann));

  const std::string id = Read(kIdentities, "Default User ID");
  EXPECT_TRUE(IsIdentityId(id)) << id;
  const std::string ordinal = identitiesBefore.values.count("|Identity Ordinal") != 0
                                  ? identitiesBefore.values.at("|Identity Ordinal").substr(6)
                                  : "0";
  const std::string manager = kShared;
  const std::string accounts = manager + "\\Accounts";
  Tree expected;
  expected.keys = {"",
                   "Software",
                   "Software\\Microsoft",
                   manager,
                   accounts,
                   accounts + "\\00000001",
                   accounts + "\\00000002",
                   "Software\\Microsoft\\Outlook Express",
                   "Software\\Microsoft\\Outlook Express\\5.0"};
  const std::string mail = accounts + "\\00000001|";
  const std::string news = accounts + "\\00000002|";
  expected.values = {
      {"|User ID", "sz:" + id},
      {"|Username", "sz:Ann"},
      {"|Identity Ordinal", "dword:" + ordinal},
      {manager + "|Account Name", "dword:2"},
      {manager + "|Default Mail Account", "dword:1"},
      {manager + "|Default News Account", "dword:2"},
      {mail + "Account Name", "sz:Home"},
      {mail + "Connection Type", "dword:3"},
      {mail + "POP3 Prompt for Password", "dword:1"},
      {mail + "POP3 Server", "sz:pop.example.net"},
      {mail + "POP3 Use Sicily", "dword:0"},
      {mail + "POP3 User Name", "sz:ann"},
      {mail + "SMTP Display Name", "sz:Ann Example"},
      {mail + "SMTP Email Address", "sz:ann@example.net"},
      {mail + "SMTP Server", "sz:smtp.example.net"},
      {news + "Account Name", "sz:news.example.net"},
      {news + "Connection Type", "dword:3"},
      {news + "NNTP Display Name", "sz:Ann Example"},
      {news + "NNTP Email Address", "sz:ann@example.net"},
      {news + "NNTP Server", "sz:news.example.net"},
      {"Software\\Microsoft\\Outlook Express\\5.0|Migration Done", "dword:1"},
  };
  EXPECT_EQ(Dump(std::string(kIdentities) + "\\" + id), expected);
  for (const char* pointer : {"Last User ID", "Start As"}) {
    EXPECT_EQ(Read(kIdentities, pointer), id);
  }
  EXPECT_EQ(Read(kIdentities, "Last Username"), "Ann");

  std::vector<ConfigureOE::AccountInfo> listed;
  ASSERT_TRUE(oe.GetAccountInfo(listed));
  std::erase_if(listed, [](const auto& info) { return info.userName != W("Ann"); });
  ASSERT_EQ(listed.size(), 2u);
  EXPECT_EQ(A(listed[0].keyPath), "Identities\\" + id + "\\" + accounts + "\\00000001");
  EXPECT_EQ(A(listed[0].accountName + listed[0].pop3Server + listed[0].smtpServer +
              listed[0].pop3UserName + listed[0].displayName + listed[0].emailAddress),
            "Homepop.example.netsmtp.example.netannAnn Exampleann@example.net");
  EXPECT_EQ(A(listed[1].accountName + listed[1].nntpServer + listed[1].displayName +
              listed[1].emailAddress + listed[1].pop3Server),
            "news.example.netnews.example.netAnn Exampleann@example.net");

  // Found by exact name, else numbered after the highest key; the connection rule both ways.
  const std::string ids = std::string(kIdentities) + "\\" + id + "\\" + accounts;
  ConfigureOE::AccountInfo work = Account("Ann", "Work");
  work.connectoid = W("Dial-up");
  ASSERT_TRUE(oe.SetAccount(work));
  EXPECT_EQ(Dump(ids + "\\00000003").values.at("|Connectoid"), "sz:Dial-up");
  EXPECT_EQ(Dump(ids + "\\00000003").values.at("|Connection Type"), "dword:2");
  work.connectoid.clear();
  ASSERT_TRUE(oe.SetAccount(work));
  EXPECT_EQ(Dump(ids + "\\00000003").values.count("|Connectoid"), 0u);
  EXPECT_EQ(Dump(ids + "\\00000003").values.at("|Connection Type"), "dword:3");
  ASSERT_TRUE(oe.SetAccount(Account("Ann", "work")));
  EXPECT_EQ(Read(ids + "\\00000004", "Account Name"), "work");

  EXPECT_TRUE(oe.RemoveAccount(listed[0]));
  EXPECT_FALSE(Hostkit::RegWiz().DoesKeyExist(HKEY_CURRENT_USER, (ids + "\\00000001").c_str()));
  EXPECT_TRUE(oe.RemoveAccount(Account("Ann", "Work")));
  EXPECT_EQ(Read(ids + "\\00000004", "Account Name"), "work");  // the other case stays
  EXPECT_TRUE(oe.RemoveIdentity(Account("Ann", "")));
  EXPECT_FALSE(oe.RemoveIdentity(W("Ann")));

  // The identity's key goes; the counter and the values that named the identity stay.
  Tree identitiesExpected = identitiesBefore;
  identitiesExpected.values["|Identity Ordinal"] =
      "dword:" + std::to_string(std::stoul(ordinal) + 1);
  for (const char* pointer : {"|Last User ID", "|Default User ID", "|Start As"}) {
    identitiesExpected.values[pointer] = "sz:" + id;
  }
  identitiesExpected.values["|Last Username"] = "sz:Ann";
  EXPECT_EQ(Dump(kIdentities), identitiesExpected);
  EXPECT_EQ(Dump(kShared), sharedBefore);
}

// The shared list: accounts and their string defaults; once an identity holds an account of
// the same name, the shared copy and the default naming it go.
TEST_P(OutlookExpress, SharedAccountMovesIntoIdentity) {
  SavedTrees saved;
  hostkit_test::registry_probe::DeleteTree(HKEY_CURRENT_USER, kShared);
  hostkit_test::registry_probe::DeleteTree(HKEY_CURRENT_USER, kIdentities);
  ConfigureOE oe;
  ConfigureOE::AccountInfo shared = Account("", "Home");
  shared.isDefault = true;
  shared.nntpServer = W("news.example.net");
  ASSERT_TRUE(oe.SetAccount(shared));
  const std::string accounts = std::string(kShared) + "\\Accounts";
  EXPECT_EQ(Read(accounts + "\\00000001", "Account Name"), "Home");
  EXPECT_EQ(Read(accounts + "\\00000002", "Account Name"), "news.example.net");
  EXPECT_EQ(Read(kShared, "Default Mail Account"), "00000001");
  EXPECT_EQ(Read(kShared, "Default News Account"), "00000002");
  EXPECT_TRUE(oe.SetAccount(shared));  // found again, not numbered anew
  EXPECT_EQ(Dump(accounts).keys.size(), 3u);

  // Without an "Identities" key the first identity gets its own key and nothing beside it.
  ConfigureOE::AccountInfo newsOnly = Account("Cy", "");
  newsOnly.newsOnly = true;
  ASSERT_TRUE(oe.SetAccount(newsOnly));
  const Tree first = Dump(kIdentities);
  EXPECT_EQ(first.keys.size(), 7u);  // "" and the identity's key with its five below
  for (const auto& [at, value] : first.values) {
    EXPECT_NE(at.front(), '|') << at << " = " << value;
  }
  ASSERT_TRUE(oe.SetAccount(Account("Bob", "Home")));
  const Tree left = Dump(kShared);
  EXPECT_EQ(left.keys, (std::set<std::string>{"", "Accounts", "Accounts\\00000002"}));
  EXPECT_EQ(left.values.count("|Default Mail Account"), 0u);
  EXPECT_EQ(left.values.at("|Default News Account"), "sz:00000002");

  std::vector<ConfigureOE::AccountInfo> listed;
  ASSERT_TRUE(oe.GetAccountInfo(listed));
  ASSERT_EQ(listed.size(), 1u);  // Cy has no accounts key at all
  EXPECT_EQ(A(listed[0].userName + listed[0].accountName), "BobHome");
  const std::string bob = Read(kIdentities, "Last User ID");
  EXPECT_TRUE(IsIdentityId(bob)) << bob;
  EXPECT_TRUE(oe.RemoveIdentity(W("Bob")));
  EXPECT_FALSE(Hostkit::RegWiz().DoesKeyExist(HKEY_CURRENT_USER,
                                              (std::string(kIdentities) + "\\" + bob).c_str()));
  EXPECT_EQ(Read(kIdentities, "Default User ID"), bob);
  EXPECT_EQ(Read(kIdentities, "Last Username"), "Bob");
}

// An account without a user name goes to the default identity's list when it asks to, else to
// the shared list; either way one above the greatest account number already there.
TEST_P(OutlookExpress, UnnamedAccountGoesWhereUseIdentitySays) {
  SavedTrees saved;
  hostkit_test::registry_probe::DeleteTree(HKEY_CURRENT_USER, kShared);
  hostkit_test::registry_probe::DeleteTree(HKEY_CURRENT_USER, kIdentities);
  Hostkit::RegWiz reg;
  ASSERT_TRUE(reg.CreateKey(HKEY_CURRENT_USER, kIdentities));  // a mail client with no identity
  ConfigureOE oe;
  ASSERT_TRUE(oe.SetAccount(Account("Bob", "Work")));  // Bob becomes the default identity
  const std::string shared = std::string(kShared) + "\\Accounts";
  const std::string bob = "Identities\\" + Read(kIdentities, "Default User ID") + "\\" + shared;
  ASSERT_TRUE(reg.CreateKey(HKEY_CURRENT_USER, (bob + "\\00000007").c_str()));
  ASSERT_TRUE(reg.CreateKey(HKEY_CURRENT_USER, (shared + "\\00000003").c_str()));
  for (const bool useIdentity : {true, false}) {
    ConfigureOE::AccountInfo info = Account("", useIdentity ? "Mine" : "Ours");
    info.useIdentity = useIdentity;
    ASSERT_TRUE(oe.SetAccount(info));
  }
  EXPECT_EQ(Read(bob + "\\00000008", "Account Name"), "Mine");
  EXPECT_EQ(Read(shared + "\\00000004", "Account Name"), "Ours");
}

INSTANTIATE_TEST_SUITE_P(AllReleases, OutlookExpress,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
