// RegistryBackup writes the exact bytes of both file formats, and what it writes imports back
// into the same tree through the project's reader and, under Wine, through regedit.
#include "hostkit/registry_backup.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/regwiz.h"
#include "platform/registry.h"
#include "support/registry_probe.h"
#include "support/scratch_folder.h"
#include "support/test_machine.h"

namespace {

using Hostkit::RegistryBackup;
using hostkit_test::PerRelease;
using hostkit_test::Release;

constexpr const char* kKey = "Software\\HostkitTest\\Backup";
const std::string kKeyLine = "[HKEY_CURRENT_USER\\Software\\HostkitTest\\Backup";

class RegistryBackupTest : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (!IsSkipped()) {
      files_.emplace();  // drive C: of the machine just made active
    }
  }
  void TearDown() override {
    files_.reset();
    PerRelease::TearDown();
  }

  bool unicode() const { return GetParam() == Release::Win2000 || GetParam() == Release::WinXP; }

  // Creates `path` below the test key and sets one value there from its narrow bytes.
  static void Set(const std::string& path, const char* name, DWORD type, const std::string& data) {
    HKEY key = hostkit_test::registry_probe::Create(HKEY_CURRENT_USER, path.c_str());
    EXPECT_EQ(hostkit_test::registry_probe::Set(key, name, data, type), ERROR_SUCCESS) << name;
    Hostkit::platform::RegCloseKey(key);
  }

  // The file bytes of ASCII text in the release's format: as it is, or UTF-16 LE.
  std::string Encoded(const std::string& text) const {
    if (!unicode()) {
      return text;
    }
    std::string bytes;
    for (const char c : text) {
      bytes += c;
      bytes += '\0';
    }
    return bytes;
  }

  std::string Header() const {
    return unicode() ? "\xFF\xFE" + Encoded("Windows Registry Editor Version 5.00\r\n\r\n")
                     : "REGEDIT4\r\n\r\n";
  }

  // Saves the listed keys to `name` and answers the file's bytes.
  std::string Save(RegistryBackup& backup, const std::string& name = "backup.reg") {
    EXPECT_TRUE(backup.SaveRegistry(files_->WindowsPath(name).c_str()));
    return files_->Read(name);
  }

  std::string SaveTestKey() {
    RegistryBackup backup;
    EXPECT_TRUE(backup.AddRegistryKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Backup")));
    return Save(backup);
  }

  // One value of every kind the writer tells apart, created in name order (the order Wine
  // enumerates values in), and a subkey tree.
  static void FillTestKey() {
    const std::string child = std::string(kKey) + "\\Child";
    Set(kKey, "", REG_SZ, std::string("say \"hi\"\0", 9));
    Set(kKey, "Big", REG_DWORD_BIG_ENDIAN, "\x01\x02\x03\x04");
    Set(kKey, "Empty", REG_SZ, std::string("\0", 1));
    Set(kKey, "EmptyBin", REG_BINARY, "");
    Set(kKey, "Expand", REG_EXPAND_SZ, std::string("%A%\0", 4));
    Set(kKey, "Multi", REG_MULTI_SZ, std::string("a\0b\0\0", 5));
    Set(kKey, "None", REG_NONE, "\xff");
    Set(kKey, "Number", REG_DWORD, std::string("\x00\x04\x00\x00", 4));
    Set(kKey, "Quote\"And\\Slash", REG_SZ, std::string("C:\\dir \"x\"\0", 11));
    Set(kKey, "Type480", 0x480, "\x10");
    Set(kKey, "Type8", REG_RESOURCE_LIST, "\x08");
    Set(kKey, "TypeA", REG_RESOURCE_REQUIREMENTS_LIST, "\x0a");
    Set(kKey, "TypeB", REG_QWORD, std::string("\x01\0\0\0\0\0\0\x80", 8));
    Set(child, "Deep", REG_DWORD, std::string("\x01\0\0\0", 4));
    Set(child + "\\Grand", "", REG_BINARY, "\xAB");
  }

  std::optional<hostkit_test::ScratchFolder> files_;
};

// Names are read into a buffer of 259 characters: a value whose name needs more ends the list.
TEST_P(RegistryBackupTest, AValueNameLongerThan258CharactersEndsTheList) {
  if (isWin9x()) {
    GTEST_SKIP() << "Windows 9x keeps value names of at most 255 characters";
  }
  const std::string fits(258, 'y');
  Set(kKey, fits.c_str(), REG_SZ, std::string("a\0", 2));
  Set(kKey, std::string(259, 'z').c_str(), REG_SZ, std::string("b\0", 2));
  EXPECT_EQ(SaveTestKey(), Header() + Encoded(kKeyLine + "]\r\n\"" + fits + "\"=\"a\"\r\n\r\n"));
}

// The version 5.00 format writes wide text as it is stored, both bytes of each unit.
TEST_P(RegistryBackupTest, WideTextKeepsUnitsBeyondLatin1) {
  if (!unicode()) {
    GTEST_SKIP() << "the REGEDIT4 format holds ANSI text";
  }
  const WCHAR greek[] = {0x394, 0x3A9, 0};  // capital delta and omega
  Hostkit::platform::RegCloseKey(
      hostkit_test::registry_probe::Create(HKEY_CURRENT_USER, std::string(kKey).c_str()));
  ASSERT_TRUE(Hostkit::RegWiz().SetKeyVal(
      HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Backup"), HK_WIDE("Greek"), greek));
  EXPECT_EQ(SaveTestKey(), Header() + Encoded(kKeyLine + "]\r\n\"Greek\"=\"") +
                               std::string("\x94\x03\xA9\x03", 4) + Encoded("\"\r\n\r\n"));
}

// A link value is written with nothing after the "=".
TEST_P(RegistryBackupTest, ALinkValueIsWrittenWithoutData) {
  Set(kKey, "Link", REG_LINK, "\x01\x02");
  EXPECT_EQ(SaveTestKey(), Header() + Encoded(kKeyLine + "]\r\n\"Link\"=\r\n\r\n"));
}

TEST_P(RegistryBackupTest, EveryValueTypeIsWrittenInItsForm) {
  FillTestKey();
  const bool wide = unicode();
  const std::string expected =
      Header() + Encoded(kKeyLine +
                         "]\r\n"
                         "@=\"say \\\"hi\\\"\"\r\n"
                         "\"Big\"=dword:01020304\r\n"
                         "\"Empty\"=\"\"\r\n"
                         "\"EmptyBin\"=hex:\r\n" +
                         (wide ? "\"Expand\"=hex(2):25,00,41,00,25,00,00,00\r\n"
                                 "\"Multi\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
                               : "\"Expand\"=hex(2):25,41,25,00\r\n"
                                 "\"Multi\"=hex(7):61,00,62,00,00\r\n") +
                         "\"None\"=hex(0):ff\r\n"
                         "\"Number\"=dword:00000400\r\n"
                         "\"Quote\\\"And\\\\Slash\"=\"C:\\\\dir \\\"x\\\"\"\r\n"
                         "\"Type480\"=hex(480):10\r\n"
                         "\"Type8\"=hex(8):08\r\n"
                         "\"TypeA\"=hex(a):0a\r\n"
                         "\"TypeB\"=hex(b):01,00,00,00,00,00,00,80\r\n"
                         "\r\n" +
                         kKeyLine + "\\Child]\r\n\"Deep\"=dword:00000001\r\n\r\n" + kKeyLine +
                         "\\Child\\Grand]\r\n@=hex:ab\r\n\r\n");
  EXPECT_EQ(SaveTestKey(), expected);
}

TEST_P(RegistryBackupTest, LineBreaksInTextAreEscapedOnlyInRegedit4AfterWindows95) {
  Set(kKey, "Lines", REG_SZ, std::string("a\r\nb\0", 5));
  const bool escaped = !unicode() && GetParam() != Release::Win95;
  EXPECT_EQ(SaveTestKey(), Header() + Encoded(kKeyLine + "]\r\n\"Lines\"=\"" +
                                              (escaped ? "a\\r\\nb" : "a\r\nb") + "\"\r\n\r\n"));
}

TEST_P(RegistryBackupTest, LongByteListsContinueOnIndentedLines) {
  // From column 18 a line holds 20 bytes; from the default value's column 7 it holds 24, and
  // every continuation line 25.
  Set(kKey, "", REG_BINARY, std::string(60, '\x11'));
  Set(kKey, "TenLetters", REG_BINARY, std::string(30, '\x22'));
  auto bytes = [](const std::string& pair, int count) {
    std::string list;
    for (int i = 0; i < count; ++i) {
      list += pair + ",";
    }
    return list;
  };
  const std::string expected = kKeyLine + "]\r\n@=hex:" + bytes("11", 24) + "\\\r\n  " +
                               bytes("11", 25) + "\\\r\n  " + bytes("11", 10) +
                               "11\r\n\"TenLetters\"=hex:" + bytes("22", 20) + "\\\r\n  " +
                               bytes("22", 9) + "22\r\n\r\n";
  EXPECT_EQ(SaveTestKey(), Header() + Encoded(expected));
}

TEST_P(RegistryBackupTest, TheListDecidesWhatIsWritten) {
  Set(kKey, "A", REG_DWORD, std::string("\x05\0\0\0", 4));
  Set(std::string(kKey) + "\\Sub", "B", REG_DWORD, std::string("\x06\0\0\0", 4));
  const std::string sub = kKeyLine + "\\Sub]\r\n\"B\"=dword:00000006\r\n\r\n";

  RegistryBackup backup;
  EXPECT_EQ(Save(backup), Header());  // nothing listed: the header alone
  // Trailing separators and spaces are dropped; a missing key is left out.
  EXPECT_TRUE(
      backup.AddRegistryKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Backup\\Sub\\ ")));
  EXPECT_TRUE(backup.AddRegistryKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Missing")));
  EXPECT_FALSE(
      backup.RemoveRegistryKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Backup\\Sub")));
  EXPECT_EQ(Save(backup), Header() + Encoded(sub));

  // A copy keeps the list; clearing one list leaves the other alone.
  RegistryBackup copy = backup;
  EXPECT_TRUE(backup.ClearRegistryKeys());
  EXPECT_EQ(Save(backup), Header());
  EXPECT_EQ(Save(copy, "copy.reg"), Header() + Encoded(sub));

  // A key listed twice is written twice, in list order.
  EXPECT_TRUE(
      backup.AddRegistryKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Backup\\Sub")));
  EXPECT_TRUE(backup.AddRegistryKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Backup")));
  EXPECT_EQ(Save(backup),
            Header() + Encoded(sub + kKeyLine + "]\r\n\"A\"=dword:00000005\r\n\r\n" + sub));

  // A file in a folder that does not exist cannot be opened.
  EXPECT_FALSE(backup.SaveRegistry(files_->WindowsPath("no-such-folder\\x.reg").c_str()));
}

// Saving, deleting the key, importing the file and saving again gives the same file: every
// value came back with its name, type and bytes.
class RegistryBackupRoundTrip : public RegistryBackupTest {
 protected:
  void ExpectRoundTrip(const std::function<bool(const std::string&)>& import) {
    FillTestKey();
    const std::string saved = SaveTestKey();
    Hostkit::RegWiz reg;
    ASSERT_TRUE(reg.DeleteKey(HKEY_CURRENT_USER, kKey));
    ASSERT_FALSE(reg.DoesKeyExist(HKEY_CURRENT_USER, kKey));
    ASSERT_TRUE(import(saved));
    EXPECT_EQ(SaveTestKey(), saved);
  }
};

TEST_P(RegistryBackupRoundTrip, TheProjectReaderRestoresTheTree) {
  ExpectRoundTrip([](const std::string& bytes) {
    std::vector<Hostkit::regfile::Operation> operations;
    std::string error;
    const bool ok = Hostkit::regfile::ParseRegFile(bytes, "backup.reg", operations, error) &&
                    Hostkit::regfile::ApplyRegFile(operations, "backup.reg", error);
    EXPECT_EQ(error, "");
    return ok;
  });
}

TEST_P(RegistryBackupRoundTrip, RegeditRestoresTheTree) {
  if (!hostkit_test::OnRealWindows()) {
    GTEST_SKIP() << "the simulation has no regedit";
  }
  if (GetParam() != Release::Win98 && GetParam() != Release::WinXP) {
    GTEST_SKIP() << "regedit is checked on one release of each format: win98 and winxp";
  }
  ExpectRoundTrip([this](const std::string&) { return files_->ImportWithRegedit("backup.reg"); });
}

INSTANTIATE_TEST_SUITE_P(Releases, RegistryBackupTest,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);
INSTANTIATE_TEST_SUITE_P(Releases, RegistryBackupRoundTrip,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
