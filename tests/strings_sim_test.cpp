// Text conversions between the ANSI code page, ASCII and UTF-16; the version; FileExists.
#include <gtest/gtest.h>

#include <string>

#include "hostkit/sim/machine.h"
#include "hostkit/strings.h"
#include "sim_drives.h"
#include "support/sim_machine.h"

namespace Hostkit {
namespace {

using hostkit_test::UseFreshMachine;
using sim::Release;

class Strings : public testing::Test {
 protected:
  void TearDown() override { sim::ActivateMachine(nullptr); }
};

std::shared_ptr<sim::Machine> MachineWithCodePage(UINT codePage) {
  auto machine = UseFreshMachine(Release::WinXP);
  machine->facts().ansiCodePage = codePage;
  return machine;
}

TEST_F(Strings, EmptyInputClearsTheOutputInEveryDirection) {
  MachineWithCodePage(1252);
  wstring wide = u"old";
  std::string narrow = "old";
  EXPECT_TRUE(ConvertANSIToUnicode("", wide));
  EXPECT_TRUE(wide.empty());
  EXPECT_TRUE(ConvertUnicodeToANSI(u"", narrow));
  EXPECT_TRUE(narrow.empty());
  wide = u"old";
  narrow = "old";
  EXPECT_TRUE(ConvertASCIIToUnicode("", wide));
  EXPECT_TRUE(wide.empty());
  EXPECT_TRUE(ConvertUnicodeToASCII(u"", narrow));
  EXPECT_TRUE(narrow.empty());
}

TEST_F(Strings, AnsiRoundTripsEveryAssignedByteOfCodePage1252) {
  MachineWithCodePage(1252);
  std::string all;
  for (int byte = 1; byte < 256; ++byte) {
    all.push_back(static_cast<char>(byte));
  }
  wstring wide;
  ASSERT_TRUE(ConvertANSIToUnicode(all, wide));
  ASSERT_EQ(wide.size(), all.size());
  EXPECT_EQ(wide[0x80 - 1], u'\u20AC');  // the euro sign
  EXPECT_EQ(wide[0xE9 - 1], u'\u00E9');
  std::string back;
  ASSERT_TRUE(ConvertUnicodeToANSI(wide, back));
  EXPECT_EQ(back, all);
}

TEST_F(Strings, UnicodeToAnsiRefusesWhatTheCodePageLacksAndKeepsTheOutput) {
  const wstring cyrillic = u"\u0416\u0438\u0432";
  MachineWithCodePage(1252);
  std::string narrow = "kept";
  EXPECT_FALSE(ConvertUnicodeToANSI(cyrillic, narrow));
  EXPECT_EQ(narrow, "kept");
  EXPECT_FALSE(ConvertUnicodeToANSI(u"abc\u0416", narrow));
  EXPECT_EQ(narrow, "kept");

  // The same text has an ANSI form on a Cyrillic machine, and comes back unchanged.
  MachineWithCodePage(1251);
  ASSERT_TRUE(ConvertUnicodeToANSI(cyrillic, narrow));
  EXPECT_EQ(narrow, "\xC6\xE8\xE2");
  wstring wide;
  ASSERT_TRUE(ConvertANSIToUnicode(narrow, wide));
  EXPECT_EQ(wide, cyrillic);
}

TEST_F(Strings, MultiByteCodePageRefusesInvalidInputAndKeepsTheOutput) {
  MachineWithCodePage(932);
  wstring wide = u"kept";
  EXPECT_FALSE(ConvertANSIToUnicode("abc\x82", wide));        // lead byte without its trail
  EXPECT_FALSE(ConvertANSIToUnicode("\x82\x20 text", wide));  // trail byte out of range
  EXPECT_EQ(wide, u"kept");

  const std::string hiragana = "\x82\xA0\x82\xA2";  // two double-byte characters
  ASSERT_TRUE(ConvertANSIToUnicode(hiragana, wide));
  EXPECT_EQ(wide, u"\u3042\u3044");
  std::string back;
  ASSERT_TRUE(ConvertUnicodeToANSI(wide, back));
  EXPECT_EQ(back, hiragana);
}

TEST_F(Strings, AsciiConvertsUnitForByteAndRefusesEverythingAbove127) {
  std::string ascii;
  for (int byte = 0; byte < 128; ++byte) {
    ascii.push_back(static_cast<char>(byte));  // the zero byte included
  }
  wstring wide;
  ASSERT_TRUE(ConvertASCIIToUnicode(ascii, wide));
  ASSERT_EQ(wide.size(), 128u);
  for (std::size_t i = 0; i < wide.size(); ++i) {
    EXPECT_EQ(wide[i], static_cast<WCHAR>(i));
  }
  std::string back;
  ASSERT_TRUE(ConvertUnicodeToASCII(wide, back));
  EXPECT_EQ(back, ascii);

  for (const std::string& bad : {std::string("\x80"), std::string("abc\x80"),
                                 std::string("\xFF"
                                             "abc")}) {
    wstring kept = u"kept";
    EXPECT_FALSE(ConvertASCIIToUnicode(bad, kept));
    EXPECT_EQ(kept, u"kept");
  }
  for (const wstring& bad : {wstring(u"\u00E9"), wstring(u"caf\u00E9"), wstring(u"\u0080")}) {
    std::string kept = "kept";
    EXPECT_FALSE(ConvertUnicodeToASCII(bad, kept));
    EXPECT_EQ(kept, "kept");
  }
}

TEST_F(Strings, AsciiAndAnsiAgreeOnSevenBitText) {
  for (UINT codePage : {1252u, 1251u, 932u}) {
    MachineWithCodePage(codePage);
    const std::string text = "Hostkit 3.0 [setup] ~/path_1";
    wstring viaAscii;
    wstring viaAnsi;
    ASSERT_TRUE(ConvertASCIIToUnicode(text, viaAscii));
    ASSERT_TRUE(ConvertANSIToUnicode(text, viaAnsi)) << codePage;
    EXPECT_EQ(viaAscii, viaAnsi) << codePage;
  }
}

TEST_F(Strings, VersionIsFixed) { EXPECT_EQ(GetVersion(), "3.0.0"); }

TEST_F(Strings, FileExistsOpensFilesButNotFoldersThroughTheMachinesDrives) {
  auto machine = UseFreshMachine(Release::WinXP);
  EXPECT_FALSE(FileExists("C:\\Tools\\agent.exe"));  // the machine has no drives yet
  hostkit_test::SimDrives drives(*machine);
  drives.AddFile("c/Tools/Agent.exe");

  EXPECT_TRUE(FileExists("C:\\Tools\\Agent.exe"));
  EXPECT_TRUE(FileExists("c:\\TOOLS\\agent.EXE"));  // names are case-blind
  EXPECT_TRUE(FileExists("C:/Tools/Agent.exe"));
  EXPECT_TRUE(FileExists(HK_WIDE("C:\\tools\\agent.exe")));
  EXPECT_FALSE(FileExists("C:\\Tools"));  // a folder cannot be opened as a file
  EXPECT_FALSE(FileExists(HK_WIDE("C:\\Tools\\")));
  EXPECT_FALSE(FileExists("C:\\Tools\\missing.exe"));
  EXPECT_FALSE(FileExists("D:\\Tools\\Agent.exe"));
  EXPECT_FALSE(FileExists("Tools\\Agent.exe"));  // relative paths have no drive
  EXPECT_FALSE(FileExists(static_cast<const char*>(nullptr)));
  EXPECT_FALSE(FileExists(static_cast<const WCHAR*>(nullptr)));
}

TEST_F(Strings, FileExistsReadsNonAsciiNamesThroughTheAnsiCodePage) {
  auto machine = MachineWithCodePage(1252);
  hostkit_test::SimDrives drives(*machine);
  drives.AddFile("c/caf\u00E9.txt");  // stored in UTF-8 on the host
  EXPECT_TRUE(FileExists("C:\\caf\xE9.txt"));
  EXPECT_TRUE(FileExists(HK_WIDE("C:\\caf\u00E9.txt")));
  EXPECT_FALSE(FileExists("C:\\cafe.txt"));
}

}  // namespace
}  // namespace Hostkit
