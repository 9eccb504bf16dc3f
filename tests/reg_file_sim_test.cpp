// Registry files: both formats read into the same registry, the writer's output reads back
// into an identical tree, and malformed files are refused with their file and line before
// anything changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/sim/profile.h"
#include "platform/registry.h"
#include "platform/sim/registry/store.h"
#include "support/sim_machine.h"

namespace Hostkit::regfile {
namespace {

using hostkit_test::PerRelease;
using hostkit_test::Release;
using hostkit_test::UseFreshMachine;
using testing::HasSubstr;
using testing::StartsWith;

// A scratch folder of the running test's own: parallel runs of the suite, in this build or
// another one, never share a file.
std::filesystem::path ScratchFolder() {
  static const std::string run = std::to_string(std::random_device{}());
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string("hostkit-") + test->test_suite_name() + "." + test->name();
  std::replace(name.begin(), name.end(), '/', '.');
  auto folder = std::filesystem::path(testing::TempDir()) / (name + "." + run);
  std::filesystem::create_directories(folder);
  return folder;
}

// A 5.00 file: the byte-order mark and the UTF-16 LE units of `text`.
std::string Utf16File(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// Parses and applies on the active machine; the error text when either step fails.
std::string Load(std::string_view bytes, const std::string& name = "test.reg") {
  std::vector<Operation> operations;
  std::string error;
  if (!ParseRegFile(bytes, name, operations, error) || !ApplyRegFile(operations, name, error)) {
    return error.empty() ? "failed without a message" : error;
  }
  return {};
}

sim::RegistrySnapshot Snapshot() { return sim::ActiveMachine()->registry().snapshot(); }

struct Stored {
  LONG status = ERROR_SUCCESS;
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
};

// A value as the registry's own width returns it: wide on the NT family, narrow on 9x.
Stored Query(HKEY root, const char* path, const char* name) {
  Stored stored;
  HKEY key = nullptr;
  stored.status = platform::RegOpenKeyExA(root, path, 0, KEY_READ, &key);
  if (stored.status != ERROR_SUCCESS) {
    return stored;
  }
  std::u16string wideName;
  for (const char* c = name; *c != '\0'; ++c) {
    wideName += static_cast<char16_t>(static_cast<unsigned char>(*c));
  }
  DWORD size = 0;
  const bool narrow = sim::ActiveMachine()->isWin9x();
  auto query = [&](BYTE* data) {
    return narrow ? platform::RegQueryValueExA(key, name, nullptr, &stored.type, data, &size)
                  : platform::RegQueryValueExW(key, wideName.c_str(), nullptr, &stored.type, data,
                                               &size);
  };
  stored.status = query(nullptr);
  if (stored.status == ERROR_SUCCESS) {
    stored.data.resize(size);
    stored.status = query(stored.data.data());
  }
  platform::RegCloseKey(key);
  return stored;
}

std::vector<BYTE> Bytes(std::string_view text) { return {text.begin(), text.end()}; }
std::vector<BYTE> Bytes(std::u16string_view text) {
  std::vector<BYTE> bytes;
  for (char16_t unit : text) {
    bytes.push_back(static_cast<BYTE>(unit & 0xFF));
    bytes.push_back(static_cast<BYTE>(unit >> 8));
  }
  return bytes;
}

// ASCII text as the registry stores it: UTF-16 on the NT family, one byte a character on 9x.
std::vector<BYTE> StoredText(std::u16string_view text) {
  if (!sim::ActiveMachine()->isWin9x()) {
    return Bytes(text);
  }
  return {text.begin(), text.end()};
}

// Every value form, the same registry in both formats. Only the header and the hex(2) and
// hex(7) data (ANSI bytes here, UTF-16 bytes there) differ.
constexpr char kEveryType4[] =
    "REGEDIT4\r\n"
    "\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Types]\r\n"
    "@=\"default\"\r\n"
    "\"Text\"=\"C:\\\\Program Files\\\\ \\\"quoted\\\"\"\r\n"
    "\"Empty\"=\"\"\r\n"
    "\"Dword\"=dword:0001e240\r\n"
    "\"Short\"=dword:7\r\n"
    "\"Binary\"=hex:00,01,fe,FF\r\n"
    "\"NoData\"=hex:\r\n"
    "\"None\"=hex(0):01\r\n"
    "\"Expand\"=hex(2):25,53,79,73,74,65,6d,52,6f,6f,74,25,00\r\n"
    "\"Multi\"=hex(7):61,00,62,63,00,00\r\n"
    "\"BigEndian\"=hex(5):00,00,01,02\r\n"
    "\"Qword\"=hex(b):01,02,03,04,05,06,07,08\r\n"
    "\"Custom\"=hex(480):aa\r\n"
    "[HKLM\\SOFTWARE\\Types\\Sub]\r\n"
    "\"\"=\"also default\"\r\n";

constexpr char16_t kEveryType5[] =
    u"Windows Registry Editor Version 5.00\r\n"
    u"\r\n"
    u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Types]\r\n"
    u"@=\"default\"\r\n"
    u"\"Text\"=\"C:\\\\Program Files\\\\ \\\"quoted\\\"\"\r\n"
    u"\"Empty\"=\"\"\r\n"
    u"\"Dword\"=dword:0001e240\r\n"
    u"\"Short\"=dword:7\r\n"
    u"\"Binary\"=hex:00,01,fe,FF\r\n"
    u"\"NoData\"=hex:\r\n"
    u"\"None\"=hex(0):01\r\n"
    u"\"Expand\"=hex(2):25,00,53,00,79,00,73,00,74,00,65,00,6d,00,52,00,6f,00,6f,00,74,00,\\\r\n"
    u"  25,00,00,00\r\n"
    u"\"Multi\"=hex(7):61,00,00,00,62,00,63,00,00,00,00,00\r\n"
    u"\"BigEndian\"=hex(5):00,00,01,02\r\n"
    u"\"Qword\"=hex(b):01,02,03,04,05,06,07,08\r\n"
    u"\"Custom\"=hex(480):aa\r\n"
    u"[HKLM\\SOFTWARE\\Types\\Sub]\r\n"
    u"\"\"=\"also default\"\r\n";

class RegFileFormats : public PerRelease {};

TEST_P(RegFileFormats, BothFormatsMakeTheSameRegistryWithEveryValueType) {
  ASSERT_EQ(Load(kEveryType4), "");
  const sim::RegistrySnapshot fromVersion4 = Snapshot();
  UseFreshMachine(GetParam());
  ASSERT_EQ(Load(Utf16File(kEveryType5)), "");
  EXPECT_EQ(Snapshot(), fromVersion4);

  // Text comes back in the registry's own encoding; raw types exactly as written.
  const struct {
    const char* path;
    const char* name;
    DWORD type;
    std::vector<BYTE> data;
  } expected[] = {
      {"SOFTWARE\\Types", "", REG_SZ, StoredText({u"default\0", 8})},
      {"SOFTWARE\\Types", "Text", REG_SZ, StoredText({u"C:\\Program Files\\ \"quoted\"\0", 27})},
      {"SOFTWARE\\Types", "Empty", REG_SZ, StoredText({u"\0", 1})},
      {"SOFTWARE\\Types", "Dword", REG_DWORD, {0x40, 0xE2, 0x01, 0x00}},
      {"SOFTWARE\\Types", "Short", REG_DWORD, {7, 0, 0, 0}},
      {"SOFTWARE\\Types", "Binary", REG_BINARY, {0x00, 0x01, 0xFE, 0xFF}},
      {"SOFTWARE\\Types", "NoData", REG_BINARY, {}},
      {"SOFTWARE\\Types", "None", REG_NONE, {0x01}},
      {"SOFTWARE\\Types", "Expand", REG_EXPAND_SZ, StoredText({u"%SystemRoot%\0", 13})},
      {"SOFTWARE\\Types", "Multi", REG_MULTI_SZ, StoredText({u"a\0bc\0\0", 6})},
      {"SOFTWARE\\Types", "BigEndian", REG_DWORD_BIG_ENDIAN, {0, 0, 1, 2}},
      {"SOFTWARE\\Types", "Qword", 11, {1, 2, 3, 4, 5, 6, 7, 8}},
      {"SOFTWARE\\Types", "Custom", 0x480, {0xAA}},
      {"SOFTWARE\\Types\\Sub", "", REG_SZ, StoredText({u"also default\0", 13})},
  };
  for (const auto& e : expected) {
    const Stored v = Query(HKEY_LOCAL_MACHINE, e.path, e.name);
    EXPECT_EQ(v.status, ERROR_SUCCESS) << e.name;
    EXPECT_EQ(v.type, e.type) << e.name;
    EXPECT_EQ(v.data, e.data) << e.name;
  }
}

TEST_P(RegFileFormats, LineEndingsDoNotChangeWhatIsReadOrTheLinesReported) {
  const std::string lines[] = {"REGEDIT4",        "",     "[HKLM\\SOFTWARE\\Ends]", "\"A\"=\"1\"",
                               "\"B\"=hex:01,\\", "  02", "\"C\"=dword:zz"};
  std::string results[3];
  sim::RegistrySnapshot snapshots[3];
  const char* endings[] = {"\r\n", "\n", "\r"};
  for (int i = 0; i < 3; ++i) {
    UseFreshMachine(GetParam());
    std::string good;
    std::string bad;
    for (size_t n = 0; n < std::size(lines); ++n) {
      bad += lines[n] + endings[i];
      if (n + 1 < std::size(lines)) {
        good += lines[n] + endings[i];
      }
    }
    ASSERT_EQ(Load(good), "") << "ending " << i;
    snapshots[i] = Snapshot();
    results[i] = Load(bad);
  }
  EXPECT_EQ(snapshots[0], snapshots[1]);
  EXPECT_EQ(snapshots[0], snapshots[2]);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Ends", "B").data, (std::vector<BYTE>{1, 2}));
  for (const std::string& result : results) {
    EXPECT_THAT(result, StartsWith("test.reg:7: "));
  }
}

TEST_P(RegFileFormats, ContinuationsSkipBlankAndCommentLinesAndTakeAnyByteSpelling) {
  ASSERT_EQ(Load("REGEDIT4\r\n"
                 "[HKLM\\SOFTWARE\\Wrap]\r\n"
                 "\"Long\"=hex:01, 2 ,\\\r\n"
                 "\r\n"
                 "; a comment between the pieces\r\n"
                 "# and another kind\r\n"
                 "   \t\r\n"
                 "    0A,b,\\\r\n"
                 "  ff\r\n"
                 "\"After\"=dword:1\r\n"),
            "");
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Wrap", "Long").data,
            (std::vector<BYTE>{0x01, 0x02, 0x0A, 0x0B, 0xFF}));
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Wrap", "After").data,
            (std::vector<BYTE>{1, 0, 0, 0}));
}

TEST_P(RegFileFormats, QuotedTextKeepsEscapesAndRawLineBreaks) {
  ASSERT_EQ(Load(Utf16File(u"Windows Registry Editor Version 5.00\r\n"
                           u"[HKLM\\SOFTWARE\\Quote]\r\n"
                           u"\"Escaped\"=\"a\\r\\nb\"\r\n"
                           u"\"Raw\"=\"a\r\nb\"\r\n"
                           u"\"Name \\\"with\\\" \\\\ marks\"=\"x\"\r\n"
                           u"\"After\"=\"y\"\r\n")),
            "");
  const std::vector<BYTE> expected = StoredText({u"a\r\nb\0", 5});
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quote", "Escaped").data, expected);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quote", "Raw").data, expected);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quote", "Name \"with\" \\ marks").status,
            ERROR_SUCCESS);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quote", "After").status, ERROR_SUCCESS);
}

TEST_P(RegFileFormats, DeletionsRemoveWholeSubtreesAndSingleValues) {
  ASSERT_EQ(Load("REGEDIT4\r\n"
                 "[HKLM\\SOFTWARE\\Gone\\A\\Deep]\r\n"
                 "\"v\"=\"1\"\r\n"
                 "[HKLM\\SOFTWARE\\Gone\\B]\r\n"
                 "[HKLM\\SOFTWARE\\Kept]\r\n"
                 "\"stay\"=\"1\"\r\n"
                 "\"go\"=\"1\"\r\n"
                 "@=\"1\"\r\n"),
            "");
  // The NT family refuses to delete a key with subkeys: the file's delete must still work.
  ASSERT_EQ(Load("REGEDIT4\r\n"
                 "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone]\r\n"
                 "[-HKLM\\SOFTWARE\\NeverExisted]\r\n"
                 "[HKLM\\SOFTWARE\\Kept]\r\n"
                 "\"go\"=-\r\n"
                 "@=-\r\n"
                 "\"missing\"=-\r\n"),
            "");
  HKEY key = nullptr;
  EXPECT_EQ(platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Gone", 0, KEY_READ, &key),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Kept", "stay").status, ERROR_SUCCESS);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Kept", "go").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Kept", "").status, ERROR_FILE_NOT_FOUND);
}

TEST_P(RegFileFormats, WrittenFileReadsBackIntoAnIdenticalRegistry) {
  // Values the quoted and dword forms cannot carry exactly, names that need escapes, an
  // empty key, values out of alphabetical order and data long enough to wrap.
  ASSERT_EQ(Load("REGEDIT4\r\n"
                 "[HKLM\\SOFTWARE\\Round\\Empty]\r\n"
                 "[HKLM\\SOFTWARE\\Round]\r\n"
                 "\"zeta\"=\"last letter, first value\"\r\n"
                 "@=\"default\"\r\n"
                 "\"back\\\\slash \\\"quote\\\"\"=\"line\\r\\nbreak \\\\ \\\"\"\r\n"
                 "\"NoTerminator\"=hex(1):41,00,42,00\r\n"
                 "\"Embedded\"=hex(1):41,00,00,00,42,00,00,00\r\n"
                 "\"ZeroBytes\"=hex(1):\r\n"
                 "\"ThreeByteDword\"=hex(4):01,02,03\r\n"
                 "\"Link\"=\r\n"
                 "\"alpha\"=dword:ffffffff\r\n"
                 "\"Expand\"=hex(2):25,41,25,00\r\n"
                 "[HKU\\.DEFAULT\\Software]\r\n"
                 "\"x\"=\"y\"\r\n"),
            "");
  std::vector<BYTE> big(300);
  for (size_t i = 0; i < big.size(); ++i) {
    big[i] = static_cast<BYTE>(i * 7);
  }
  HKEY key = nullptr;
  ASSERT_EQ(platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Round", 0, KEY_ALL_ACCESS, &key),
            ERROR_SUCCESS);
  ASSERT_EQ(platform::RegSetValueExA(key, "Big", 0, REG_BINARY, big.data(), 300), ERROR_SUCCESS);
  platform::RegCloseKey(key);

  std::vector<HKEY> roots{HKEY_LOCAL_MACHINE, HKEY_USERS};
  if (isWin9x()) {
    roots.push_back(HKEY_DYN_DATA);
  }
  std::string bytes;
  std::string error;
  ASSERT_TRUE(WriteRegFile(roots, bytes, error)) << error;
  const sim::RegistrySnapshot original = Snapshot();

  UseFreshMachine(GetParam());
  ASSERT_EQ(Load(bytes), "");
  EXPECT_EQ(Snapshot(), original);

  // Each family gets its own format, wrapped as Windows wraps it.
  if (isWin9x()) {
    EXPECT_THAT(bytes, StartsWith("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE]\r\n"));
  } else {
    EXPECT_EQ(bytes.substr(0, 12), Utf16File(u"Windows").substr(0, 12));
  }
  std::string narrow;
  for (size_t i = isWin9x() ? 0 : 2; i < bytes.size(); i += isWin9x() ? 1 : 2) {
    narrow += bytes[i];
  }
  size_t longest = 0;
  size_t wrapped = 0;
  for (size_t start = 0, end; start < narrow.size(); start = end + 2) {
    end = narrow.find("\r\n", start);
    if (end == std::string::npos) {
      end = narrow.size();
    }
    const std::string line = narrow.substr(start, end - start);
    if (line.starts_with("\"Big\"") || line.starts_with("  ")) {
      longest = std::max(longest, line.size());
      wrapped += line.ends_with(",\\") ? 1 : 0;
    }
  }
  EXPECT_LE(longest, 80u);
  EXPECT_GE(wrapped, 300u * 3 / 80);
}

INSTANTIATE_TEST_SUITE_P(AllReleases, RegFileFormats,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// The key at `path` below `key` in a snapshot, or null.
const sim::KeySnapshot* Find(const sim::KeySnapshot& key, const std::vector<std::u16string>& path) {
  const sim::KeySnapshot* at = &key;
  for (const auto& name : path) {
    const auto it = std::find_if(at->subkeys.begin(), at->subkeys.end(),
                                 [&](const sim::KeySnapshot& k) { return k.name == name; });
    if (it == at->subkeys.end()) {
      return nullptr;
    }
    at = &*it;
  }
  return at;
}

TEST(RegFileCodePages, RegEdit4TextIsConvertedWithTheMachinesAnsiCodePage) {
  const std::string file =
      "REGEDIT4\r\n[HKLM\\SOFTWARE\\Cp]\r\n\"Name\"=\"caf\xE9\"\r\n\"\xE9\"=hex(2):e9,00\r\n";
  const struct {
    Release release;
    UINT codePage;
    char16_t letter;
    std::vector<BYTE> expand;  // as stored
  } cases[] = {
      {Release::WinXP, 1252, u'\u00E9', {0xE9, 0x00, 0x00, 0x00}},
      {Release::WinXP, 1251, u'\u0439', {0x39, 0x04, 0x00, 0x00}},
      {Release::Win98, 1252, u'\u00E9', {0xE9, 0x00}},
  };
  for (const auto& c : cases) {
    UseFreshMachine(c.release)->facts().ansiCodePage = c.codePage;
    ASSERT_EQ(Load(file), "");
    const sim::RegistrySnapshot snapshot = Snapshot();
    const sim::KeySnapshot* key = Find(snapshot.localMachine, {u"SOFTWARE", u"Cp"});
    ASSERT_NE(key, nullptr);
    ASSERT_EQ(key->values.size(), 2u);
    const std::u16string name = std::u16string(u"caf") + c.letter;
    EXPECT_EQ(Query(HKEY_LOCAL_MACHINE, "SOFTWARE\\Cp", "Name").data,
              c.release == Release::Win98 ? Bytes(std::string_view("caf\xE9\0", 5))
                                          : Bytes(std::u16string_view(name.c_str(), 5)))
        << "code page " << c.codePage;
    EXPECT_EQ(key->values[1].name, std::u16string(1, c.letter));
    EXPECT_EQ(key->values[1].data, c.expand) << "code page " << c.codePage;
  }
  sim::ActivateMachine(nullptr);
}

struct Malformed {
  const char* what;
  std::string text;
  int line;
  const char* message;
};

class RegFileErrors : public testing::TestWithParam<Malformed> {};

// Each file starts with good lines, so a refused file that changed anything would show.
TEST_P(RegFileErrors, RefusedWithFileAndLineAndNothingApplied) {
  const Malformed& c = GetParam();
  UseFreshMachine(Release::WinXP);
  const sim::RegistrySnapshot before = Snapshot();
  std::vector<Operation> operations;
  std::string error;
  EXPECT_FALSE(ParseRegFile(c.text, "dir/bad.reg", operations, error));
  EXPECT_THAT(error, StartsWith("dir/bad.reg:" + std::to_string(c.line) + ": "));
  EXPECT_THAT(error, HasSubstr(c.message));
  EXPECT_EQ(error.find('\n'), std::string::npos);
  EXPECT_EQ(Snapshot(), before);
  sim::ActivateMachine(nullptr);
}

const std::string kGood = "REGEDIT4\r\n[HKLM\\SOFTWARE\\Good]\r\n\"v\"=\"1\"\r\n";

INSTANTIATE_TEST_SUITE_P(
    Cases, RegFileErrors,
    testing::Values(
        Malformed{"NoHeader", "[HKLM\\SOFTWARE]\r\n", 1, "first line"},
        Malformed{"Version5WithoutMark", "Windows Registry Editor Version 5.00\r\n", 1, "FF FE"},
        Malformed{"HalfAUnit", Utf16File(u"Windows Registry Editor Version 5.00\r\n\r\n") + "x", 3,
                  "half"},
        Malformed{"UnknownRoot", kGood + "[HKEY_NOWHERE\\x]\r\n", 4, "HKEY_NOWHERE"},
        Malformed{"NoClosingBracket", kGood + "[HKLM\\SOFTWARE\r\n", 4, "']'"},
        Malformed{"TextAfterKey", kGood + "[HKLM\\SOFTWARE] x\r\n", 4, "after the key"},
        Malformed{"EmptyKeyName", kGood + "[HKLM\\a\\\\b]\r\n", 4, "empty key name"},
        Malformed{"DeleteRoot", kGood + "[-HKLM]\r\n", 4, "root"},
        Malformed{"ValueFirst", "REGEDIT4\r\n\"v\"=\"1\"\r\n", 2, "before any key"},
        Malformed{"ValueOfDeletedKey", kGood + "[-HKLM\\SOFTWARE\\X]\r\n\"v\"=\"1\"\r\n", 5,
                  "deleted key"},
        Malformed{"NoEquals", kGood + "\"v\" \"1\"\r\n", 4, "'='"},
        Malformed{"UnknownEscape", kGood + "\"v\"=\"a\\tb\"\r\n", 4, "escape"},
        Malformed{"UnclosedQuote", kGood + "\"v\"=\"abc\r\n\r\n", 4, "not closed"},
        Malformed{"DwordTooLong", kGood + "\"v\"=dword:123456789\r\n", 4, "8 hex digits"},
        Malformed{"DwordEmpty", kGood + "\"v\"=dword:\r\n", 4, "without hex digits"},
        Malformed{"DwordTrailing", kGood + "\"v\"=dword:12 34\r\n", 4, "after the value"},
        Malformed{"BadByte", kGood + "\"v\"=hex:01,\\\r\n  zz\r\n", 5, "hex byte"},
        Malformed{"MissingComma", kGood + "\"v\"=hex:01 02\r\n", 4, "','"},
        Malformed{"BadHexType", kGood + "\"v\"=hex(x):01\r\n", 4, "hex(N)"},
        Malformed{"UnknownData", kGood + "\"v\"=str:\"x\"\r\n", 4, "unrecognised"},
        Malformed{"StrayText", kGood + "junk\r\n", 4, "expected a key line"}),
    [](const testing::TestParamInfo<Malformed>& info) { return std::string(info.param.what); });

TEST(RegFileApply, AFailureHalfwayLeavesAnImportedMachineUnchanged) {
  // HKEY_DYN_DATA exists only on Windows 9x: the NT machine refuses the second key, after
  // the first one was already written.
  const auto machine = UseFreshMachine(Release::WinXP);
  const sim::RegistrySnapshot before = Snapshot();
  const auto folder = ScratchFolder();
  const auto path = folder / "halfway.reg";
  std::ofstream(path, std::ios::binary)
      << "REGEDIT4\r\n[HKLM\\SOFTWARE\\First]\r\n\"v\"=\"1\"\r\n\r\n[HKEY_DYN_DATA\\x]\r\n";
  std::string error;
  EXPECT_FALSE(sim::ImportRegFile(*machine, path, error));
  EXPECT_THAT(error, HasSubstr("halfway.reg:5: cannot create key HKEY_DYN_DATA\\x"));
  EXPECT_EQ(Snapshot(), before);

  std::ofstream(path, std::ios::binary | std::ios::trunc)
      << "REGEDIT4\r\n[HKLM\\SOFTWARE\\First]\r\n\"v\"=\"1\"\r\n";
  EXPECT_TRUE(sim::ImportRegFile(*machine, path, error)) << error;
  EXPECT_NE(Snapshot(), before);
  sim::ActivateMachine(nullptr);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace Hostkit::regfile
