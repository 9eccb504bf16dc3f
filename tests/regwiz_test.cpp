// RegWiz on every release: value round trips in both text forms, the fixed buffers and their
// limits, deletion of trees on both families, orderings, the key search, and the narrow path the
// wide forms take on Windows 9x and NT 4.
#include "hostkit/regwiz.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/strings.h"
#include "platform/registry.h"
#include "support/test_machine.h"

namespace {

using Hostkit::RegWiz;
using Hostkit::wstring;
using hostkit_test::PerRelease;
using hostkit_test::Release;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kBase = "Software\\HostkitTest";
constexpr const Hostkit::WCHAR* kWideBase = HK_WIDE("Software\\HostkitTest");

std::pair<DWORD, DWORD> TypeSize(DWORD type, DWORD size) { return {type, size}; }

class RegWizTest : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, kBase));
  }

  // The stored type and size of a value, read past RegWiz.
  static std::pair<DWORD, DWORD> TypeAndSize(const char* path, const char* name) {
    HKEY key = nullptr;
    EXPECT_EQ(Hostkit::platform::RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key),
              ERROR_SUCCESS);
    DWORD type = 0, size = 0;
    EXPECT_EQ(Hostkit::platform::RegQueryValueExA(key, name, nullptr, &type, nullptr, &size),
              ERROR_SUCCESS);
    Hostkit::platform::RegCloseKey(key);
    return {type, size};
  }

  RegWiz reg_;
};

TEST_P(RegWizTest, NarrowValuesRoundTripWithTheirTypesAndSizes) {
  EXPECT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kBase, "Text", "broadband"));
  EXPECT_TRUE(reg_.SetDwordKeyVal(HKEY_CURRENT_USER, kBase, "Number", 0xDEADBEEFUL));
  EXPECT_TRUE(reg_.SetBinaryKeyVal(HKEY_CURRENT_USER, kBase, "Bytes", {0, 1, 0xFE, 0xFF}));
  EXPECT_TRUE(reg_.SetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "List", {"10.0.0.1", "", "x"}));

  std::string text;
  unsigned long number = 0;
  std::vector<unsigned char> bytes;
  std::vector<std::string> list;
  EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kBase, "text", text));
  EXPECT_EQ(text, "broadband");
  EXPECT_TRUE(reg_.GetDwordKeyVal(HKEY_CURRENT_USER, kBase, "NUMBER", number));
  EXPECT_EQ(number, 0xDEADBEEFUL);
  EXPECT_TRUE(reg_.GetBinaryKeyVal(HKEY_CURRENT_USER, kBase, "Bytes", bytes));
  EXPECT_THAT(bytes, ElementsAre(0, 1, 0xFE, 0xFF));
  // An empty item ends the list when it is read back.
  EXPECT_TRUE(reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "List", list));
  EXPECT_THAT(list, ElementsAre("10.0.0.1"));

  // REG_SZ is stored without its terminator; the list with one zero after each item and one more.
  // The size RegWiz gives leaves the terminator out, but every family stores it: the NT family
  // counts the zero that follows the text, Windows 9x stores a REG_SZ up to its first zero.
  EXPECT_EQ(TypeAndSize(kBase, "Text"), TypeSize(REG_SZ, 10));
  EXPECT_EQ(TypeAndSize(kBase, "Number"), TypeSize(REG_DWORD, 4));
  EXPECT_EQ(TypeAndSize(kBase, "Bytes"), TypeSize(REG_BINARY, 4));
  EXPECT_EQ(TypeAndSize(kBase, "List"), TypeSize(REG_MULTI_SZ, 13));
}

TEST_P(RegWizTest, WideValuesRoundTripAndMeetTheNarrowForms) {
  const wstring text = HK_WIDE("Caf\u00e9 DSL");
  EXPECT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("Text"), text.c_str()));
  EXPECT_TRUE(reg_.SetMultiStringKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("List"),
                                        {HK_WIDE("a"), HK_WIDE("bc")}));
  EXPECT_TRUE(reg_.SetDwordKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("Number"), 7));

  wstring wideText;
  std::vector<wstring> wideList;
  unsigned long number = 0;
  EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("Text"), wideText));
  EXPECT_EQ(wideText, text);
  EXPECT_TRUE(reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("List"), wideList));
  EXPECT_THAT(wideList, ElementsAre(HK_WIDE("a"), HK_WIDE("bc")));
  EXPECT_TRUE(reg_.GetDwordKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("Number"), number));
  EXPECT_EQ(number, 7UL);

  // The same value seen through the narrow form, in the machine's ANSI code page (1252).
  std::string narrow;
  EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kBase, "Text", narrow));
  EXPECT_EQ(narrow, "Caf\xe9 DSL");
}

TEST_P(RegWizTest, LongTextIsReadWholeThroughTheRetry) {
  // Longer than the first 259-byte attempt in both forms (the wide form needs 2 bytes a unit).
  const std::string longText(700, 'x');
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kBase, "Long", longText.c_str()));
  std::string narrow = "stale";
  EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kBase, "Long", narrow));
  EXPECT_EQ(narrow, longText);

  const wstring wide(200, HK_WIDE('y'));
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("Wide"), wide.c_str()));
  wstring readBack;
  EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("Wide"), readBack));
  EXPECT_EQ(readBack, wide);

  // A missing value empties the output.
  EXPECT_FALSE(reg_.GetKeyVal(HKEY_CURRENT_USER, kBase, "Missing", narrow));
  EXPECT_EQ(narrow, "");
}

TEST_P(RegWizTest, FixedBuffersAndSizeProbesRefuseWhatTheyCannotHold) {
  // A list over 1000 bytes fails: there is no retry.
  const std::vector<std::string> big(10, std::string(120, 'z'));
  ASSERT_TRUE(reg_.SetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "Big", big));
  std::vector<std::string> list = {"stale"};
  EXPECT_FALSE(reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "Big", list));
  EXPECT_THAT(list, IsEmpty());

  // An empty list is written as one zero and read back as no items.
  ASSERT_TRUE(reg_.SetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "Empty", {}));
  EXPECT_EQ(TypeAndSize(kBase, "Empty"), TypeSize(REG_MULTI_SZ, 1));
  EXPECT_TRUE(reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "Empty", list));
  EXPECT_THAT(list, IsEmpty());

  // A zero-length binary value fails and leaves the output empty.
  ASSERT_TRUE(reg_.SetBinaryKeyVal(HKEY_CURRENT_USER, kBase, "NoBytes", {}));
  std::vector<unsigned char> bytes = {1, 2};
  EXPECT_FALSE(reg_.GetBinaryKeyVal(HKEY_CURRENT_USER, kBase, "NoBytes", bytes));
  EXPECT_THAT(bytes, IsEmpty());

  // The DWORD read takes any four-byte value, whatever its type; a longer one fails.
  ASSERT_TRUE(reg_.SetBinaryKeyVal(HKEY_CURRENT_USER, kBase, "Flags", {0x78, 0x56, 0x34, 0x12}));
  unsigned long number = 0;
  EXPECT_TRUE(reg_.GetDwordKeyVal(HKEY_CURRENT_USER, kBase, "Flags", number));
  EXPECT_EQ(number, 0x12345678UL);
  EXPECT_FALSE(reg_.GetDwordKeyVal(HKEY_CURRENT_USER, kBase, "Big", number));
}

TEST_P(RegWizTest, WritesNeverCreateAMissingKey) {
  const char* missing = "Software\\HostkitTest\\Missing";
  EXPECT_FALSE(reg_.SetKeyVal(HKEY_CURRENT_USER, missing, "a", "b"));
  EXPECT_FALSE(reg_.SetDwordKeyVal(HKEY_CURRENT_USER, missing, "a", 1));
  EXPECT_FALSE(reg_.SetBinaryKeyVal(HKEY_CURRENT_USER, missing, "a", {1}));
  EXPECT_FALSE(reg_.SetMultiStringKeyVal(HKEY_CURRENT_USER, missing, "a", {"b"}));
  EXPECT_FALSE(reg_.DeleteKeyVal(HKEY_CURRENT_USER, missing, "a"));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, missing));

  // CreateKey makes the intermediate keys and accepts an existing key.
  EXPECT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\A\\B\\C"));
  EXPECT_TRUE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software\\HostkitTest\\A\\B"));
  EXPECT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\A"));
}

TEST_P(RegWizTest, DeleteKeyRemovesWholeTreesOnBothFamilies) {
  ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\Tree\\One\\Deep"));
  ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\Tree\\Two"));
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, "Software\\HostkitTest\\Tree\\One", "v", "x"));
  ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\Treehouse"));

  EXPECT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\Tree"));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software\\HostkitTest\\Tree"));
  EXPECT_TRUE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software\\HostkitTest\\Treehouse"));
  // A missing key counts as deleted.
  EXPECT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, "Software\\HostkitTest\\Tree"));

  ASSERT_TRUE(
      reg_.CreateKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Wide\\Inner\\Deeper")));
  EXPECT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Wide")));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Wide")));

  // An empty or null path names the root: its subkeys come out as "\\Software", a bad path
  // name, so nothing below the root goes.
  EXPECT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, ""));
  EXPECT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, static_cast<const char*>(nullptr)));
  EXPECT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, HK_WIDE("")));
  EXPECT_TRUE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software\\HostkitTest\\Treehouse"));
}

// Every family ends the text and list reads alike: a missing key leaves the output as it was,
// a value that cannot be read empties it (the wide forms of 9x and NT 4 go the narrow way).
TEST_P(RegWizTest, FailedReadsEmptyTheOutputInBothFormsOnEveryFamily) {
  ASSERT_TRUE(reg_.SetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, "Big",
                                        std::vector<std::string>(10, std::string(120, 'z'))));
  const Hostkit::WCHAR* missingKey = HK_WIDE("Software\\HostkitTest\\Missing");
  for (const Hostkit::WCHAR* name : {HK_WIDE("Missing"), HK_WIDE("Big")}) {
    wstring text = HK_WIDE("stale");
    std::vector<wstring> list = {HK_WIDE("stale")};
    std::string narrow = "stale";
    std::vector<std::string> narrowList = {"stale"};
    const bool big = wstring(name) == HK_WIDE("Big");
    if (!big) {
      EXPECT_FALSE(reg_.GetKeyVal(HKEY_CURRENT_USER, kWideBase, name, text));
      EXPECT_EQ(text, wstring());
      EXPECT_FALSE(reg_.GetKeyVal(HKEY_CURRENT_USER, kBase, "Missing", narrow));
      EXPECT_EQ(narrow, "");
    }
    EXPECT_FALSE(reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, kWideBase, name, list));
    EXPECT_THAT(list, IsEmpty());
    EXPECT_FALSE(
        reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, kBase, big ? "Big" : "Missing", narrowList));
    EXPECT_THAT(narrowList, IsEmpty());
  }
  wstring text = HK_WIDE("kept");
  std::vector<wstring> list = {HK_WIDE("kept")};
  EXPECT_FALSE(reg_.GetKeyVal(HKEY_CURRENT_USER, missingKey, HK_WIDE("a"), text));
  EXPECT_EQ(text, wstring(HK_WIDE("kept")));
  EXPECT_FALSE(reg_.GetMultiStringKeyVal(HKEY_CURRENT_USER, missingKey, HK_WIDE("a"), list));
  EXPECT_THAT(list, ElementsAre(HK_WIDE("kept")));
  std::string narrow = "kept";
  EXPECT_FALSE(reg_.GetKeyVal(HKEY_CURRENT_USER, "Software\\HostkitTest\\Missing", "a", narrow));
  EXPECT_EQ(narrow, "kept");
}

TEST_P(RegWizTest, NameListsAreSortedByCodeUnitButTheSearchKeepsRegistryOrder) {
  for (const char* name : {"alpha", "Beta", "_under"}) {
    ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, (std::string(kBase) + "\\" + name).c_str()));
    ASSERT_TRUE(
        reg_.SetKeyVal(HKEY_CURRENT_USER, (std::string(kBase) + "\\" + name).c_str(), "Id", name));
    ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kBase, name, "v"));
  }
  std::vector<std::string> keys, values;
  EXPECT_TRUE(reg_.GetSubKeyNames(HKEY_CURRENT_USER, kBase, keys));
  EXPECT_THAT(keys, ElementsAre("Beta", "_under", "alpha"));
  EXPECT_TRUE(reg_.GetValNames(HKEY_CURRENT_USER, kBase, values));
  EXPECT_THAT(values, ElementsAre("Beta", "_under", "alpha"));

  // The registry enumerates subkeys without regard to case, comparing upper-cased names:
  // alpha, Beta, _under (Wine compares lower-cased names, which puts _under first).
  if (!hostkit_test::OnRealWindows()) {
    EXPECT_THAT(reg_.GetAllSubKeys(HKEY_CURRENT_USER, kBase, "Id", ""),
                ElementsAre("Software\\HostkitTest\\alpha", "Software\\HostkitTest\\Beta",
                            "Software\\HostkitTest\\_under"));
  }
  std::vector<wstring> wideKeys;
  EXPECT_TRUE(reg_.GetSubKeyNames(HKEY_CURRENT_USER, kWideBase, wideKeys));
  EXPECT_THAT(wideKeys, ElementsAre(HK_WIDE("Beta"), HK_WIDE("_under"), HK_WIDE("alpha")));
}

TEST_P(RegWizTest, GetAllSubKeysSearchesDepthFirstWithAPattern) {
  const std::string net = std::string(kBase) + "\\Net";
  const auto add = [&](const std::string& path, const char* desc) {
    ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, path.c_str()));
    if (desc != nullptr) {
      ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, path.c_str(), "DeviceDesc", desc));
    }
  };
  add(net, "root ethernet");
  add(net + "\\0000", "3Com EtherLink");
  add(net + "\\0000\\Sub", "ethernet child");
  add(net + "\\0001", "Dial-Up Adapter");
  add(net + "\\0002", nullptr);
  add(net + "\\0002\\Deep", "");

  // Case-sensitive and unanchored; the key itself comes before its subkeys.
  EXPECT_THAT(reg_.GetAllSubKeys(HKEY_CURRENT_USER, net.c_str(), "DeviceDesc", "ether"),
              ElementsAre(net, net + "\\0000\\Sub"));
  EXPECT_THAT(reg_.GetAllSubKeys(HKEY_CURRENT_USER, net.c_str(), "DeviceDesc", "^3Com.*"),
              ElementsAre(net + "\\0000"));
  // An empty pattern takes every key that has the value, even an empty one.
  EXPECT_THAT(
      reg_.GetAllSubKeys(HKEY_CURRENT_USER, net.c_str(), "DeviceDesc", ""),
      ElementsAre(net, net + "\\0000", net + "\\0000\\Sub", net + "\\0001", net + "\\0002\\Deep"));
  EXPECT_THAT(reg_.GetAllSubKeys(HKEY_CURRENT_USER, (net + "\\None").c_str(), "DeviceDesc", ""),
              IsEmpty());
  // An invalid pattern matches nothing.
  EXPECT_THAT(reg_.GetAllSubKeys(HKEY_CURRENT_USER, net.c_str(), "DeviceDesc", "eth("), IsEmpty());

  EXPECT_THAT(reg_.GetAllSubKeys(HKEY_CURRENT_USER, HK_WIDE("Software\\HostkitTest\\Net"),
                                 HK_WIDE("DeviceDesc"), HK_WIDE("Dial")),
              ElementsAre(HK_WIDE("Software\\HostkitTest\\Net\\0001")));
}

TEST_P(RegWizTest, DefaultValueAndValueDeletion) {
  EXPECT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, kBase, "", "default"));
  std::string text;
  EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kBase, nullptr, text));
  EXPECT_EQ(text, "default");
  EXPECT_TRUE(reg_.DoesValNameExist(HKEY_CURRENT_USER, kBase, nullptr));
  EXPECT_TRUE(reg_.DeleteKeyVal(HKEY_CURRENT_USER, kBase, ""));
  EXPECT_FALSE(reg_.DoesValNameExist(HKEY_CURRENT_USER, kBase, ""));
  EXPECT_FALSE(reg_.DeleteKeyVal(HKEY_CURRENT_USER, kBase, ""));
}

TEST_P(RegWizTest, WideTextWithoutAnAnsiFormOnTheNarrowPath) {
  // U+4E2D has no form in code page 1252.
  const wstring foreign = HK_WIDE("Software\\HostkitTest\\\u4e2d");
  const bool narrowPath = isWin9x() || GetParam() == Release::WinNT4;
  if (narrowPath) {
    // Reported as existing (the conversion failed), while every other operation fails.
    EXPECT_TRUE(reg_.DoesKeyExist(HKEY_CURRENT_USER, foreign.c_str()));
    EXPECT_FALSE(reg_.CreateKey(HKEY_CURRENT_USER, foreign.c_str()));
    EXPECT_FALSE(reg_.SetKeyVal(HKEY_CURRENT_USER, kWideBase, HK_WIDE("v"), foreign.c_str()));
  } else {
    EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, foreign.c_str()));
    EXPECT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, foreign.c_str()));
    EXPECT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, foreign.c_str(), HK_WIDE("v"), foreign.c_str()));
    wstring back;
    EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, foreign.c_str(), HK_WIDE("v"), back));
    EXPECT_EQ(back, foreign);
  }
}

TEST_P(RegWizTest, CopiedAndAssignedShellsKeepWorking) {
  RegWiz copy(reg_);
  RegWiz assigned;
  assigned = copy;
  const RegWiz& same = assigned;
  assigned = same;
  EXPECT_TRUE(copy.SetKeyVal(HKEY_CURRENT_USER, kBase, "v", "1"));
  std::string text;
  EXPECT_TRUE(assigned.GetKeyVal(HKEY_CURRENT_USER, kBase, "v", text));
  EXPECT_EQ(text, "1");
}

INSTANTIATE_TEST_SUITE_P(Releases, RegWizTest, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
