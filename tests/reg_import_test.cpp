// The project's .reg reader imports registry files into the registry it runs on: the simulated
// machine's, and Wine's real one. What is imported is read back through RegWiz.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/regwiz.h"
#include "support/test_machine.h"

namespace {

using Hostkit::RegWiz;
using hostkit_test::PerRelease;
using testing::ElementsAre;

constexpr const char* kKey = "Software\\HostkitTest\\Import";

class RegImport : public PerRelease {
 protected:
  bool Import(const std::string& bytes) {
    std::vector<Hostkit::regfile::Operation> operations;
    std::string error;
    const bool ok = Hostkit::regfile::ParseRegFile(bytes, "import.reg", operations, error) &&
                    Hostkit::regfile::ApplyRegFile(operations, "import.reg", error);
    EXPECT_EQ(error, "");
    return ok;
  }

  // The same content in the 5.00 format: UTF-16 LE after the byte-order mark.
  static std::string AsUnicodeFile(const std::string& ascii) {
    std::string bytes = "\xFF\xFE";
    for (const char c : ascii) {
      bytes.push_back(c);
      bytes.push_back('\0');
    }
    return bytes;
  }

  RegWiz reg_;
};

const std::string kBody =
    "[HKEY_CURRENT_USER\\Software\\HostkitTest\\Import]\r\n"
    "@=\"default text\"\r\n"
    "\"Quoted\"=\"say \\\"hi\\\" in C:\\\\DIR\"\r\n"
    "\"Number\"=dword:0000abcd\r\n"
    "\"Bytes\"=hex:01,02,\\\r\n"
    "  ; a comment between continuation lines\r\n"
    "  fe,ff\r\n"
    "\"Gone\"=\"soon\"\r\n"
    "\"Gone\"=-\r\n"
    "\r\n"
    "[HKEY_CURRENT_USER\\Software\\HostkitTest\\Import\\Child\\Grandchild]\r\n"
    "\"Deep\"=dword:1\r\n"
    "[-HKEY_CURRENT_USER\\Software\\HostkitTest\\Import\\Child]\r\n";

TEST_P(RegImport, BothFormatsImportTheSameTree) {
  for (const std::string& file :
       {"REGEDIT4\r\n\r\n" + kBody,
        AsUnicodeFile("Windows Registry Editor Version 5.00\r\n\r\n" + kBody)}) {
    ASSERT_TRUE(Import(file));
    std::string text;
    unsigned long number = 0;
    std::vector<unsigned char> bytes;
    std::vector<std::string> names;
    EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kKey, "", text));
    EXPECT_EQ(text, "default text");
    EXPECT_TRUE(reg_.GetKeyVal(HKEY_CURRENT_USER, kKey, "Quoted", text));
    EXPECT_EQ(text, "say \"hi\" in C:\\DIR");
    EXPECT_TRUE(reg_.GetDwordKeyVal(HKEY_CURRENT_USER, kKey, "Number", number));
    EXPECT_EQ(number, 0xABCDUL);
    EXPECT_TRUE(reg_.GetBinaryKeyVal(HKEY_CURRENT_USER, kKey, "Bytes", bytes));
    EXPECT_THAT(bytes, ElementsAre(0x01, 0x02, 0xFE, 0xFF));
    EXPECT_TRUE(reg_.GetValNames(HKEY_CURRENT_USER, kKey, names));
    EXPECT_THAT(names, ElementsAre("", "Bytes", "Number", "Quoted"));
    EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software\\HostkitTest\\Import\\Child"));
    ASSERT_TRUE(reg_.DeleteKey(HKEY_CURRENT_USER, kKey));
  }
}

TEST_P(RegImport, AMalformedFileChangesNothing) {
  const std::string file =
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\HostkitTest\\Import]\r\n"
      "\"Good\"=\"value\"\r\n"
      "\"Bad\"=dword:123456789\r\n";
  std::vector<Hostkit::regfile::Operation> operations;
  std::string error;
  EXPECT_FALSE(Hostkit::regfile::ParseRegFile(file, "broken.reg", operations, error));
  EXPECT_THAT(error, testing::StartsWith("broken.reg:5: "));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, kKey));
}

INSTANTIATE_TEST_SUITE_P(Releases, RegImport, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
