// The registry API's behaviour on both Windows families, asserted through the seam's registry
// calls only, each test under a scratch key of its own below HKCU\Software\HostkitTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "common/host_thread.h"
#include "platform/registry.h"
#include "support/registry_probe.h"
#include "support/test_machine.h"

namespace Hostkit::platform {
namespace {

using namespace hostkit_test::registry_probe;
using hostkit_test::PerRelease;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;
using namespace std::string_view_literals;

class RegistrySemantics : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(name.begin(), name.end(), '/', '_');
    path_ = "Software\\HostkitTest\\" + name;
    scratch_ = Create(HKEY_CURRENT_USER, path_.c_str());
    ASSERT_NE(scratch_, nullptr);
  }
  void TearDown() override {
    platform::RegCloseKey(scratch_);
    DeleteTree(HKEY_CURRENT_USER, path_);
    PerRelease::TearDown();
  }

  std::string path_;
  HKEY scratch_ = nullptr;
};

TEST_P(RegistrySemantics, QueryReportsTheFullSizeAndLeavesASmallBufferUntouched) {
  ASSERT_EQ(Set(scratch_, "Blob", "0123456789", REG_BINARY), ERROR_SUCCESS);
  DWORD type = 0, size = 0;
  EXPECT_EQ(platform::RegQueryValueExA(scratch_, "Blob", nullptr, &type, nullptr, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(size, 10u);
  EXPECT_EQ(platform::RegQueryValueExA(scratch_, "Blob", nullptr, nullptr, nullptr, nullptr), 0);

  const Filled small = QueryInto(scratch_, "Blob", 4);
  EXPECT_EQ(small.status, ERROR_MORE_DATA);
  EXPECT_EQ(small.size, 10u);
  EXPECT_EQ(small.buffer, "XXXXXX");
  const Filled roomy = QueryInto(scratch_, "Blob", 11);
  EXPECT_EQ(roomy.size, 10u);
  EXPECT_EQ(roomy.buffer, "0123456789XXX");  // binary data gets no terminator
}

TEST_P(RegistrySemantics, MissingValuesAndKeysAreNotFoundAndNothingIsCreated) {
  EXPECT_EQ(Query(scratch_, "Absent").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(platform::RegDeleteValueA(scratch_, "Absent"), ERROR_FILE_NOT_FOUND);
  HKEY key = reinterpret_cast<HKEY>(std::uintptr_t{0x4321});
  EXPECT_EQ(platform::RegOpenKeyExA(scratch_, "Absent\\Deeper", 0, KEY_READ, &key),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  EXPECT_THAT(Subkeys(scratch_), IsEmpty());
}

TEST_P(RegistrySemantics, StringDataIsStoredAsEachFamilyStoresIt) {
  // Each datum is followed by a zero in memory. The NT family counts that zero as a terminator
  // the writer forgot; Windows 9x stores a REG_SZ up to its first zero with that zero, whatever
  // the size said, and the other string types as given.
  struct Case {
    const char* name;
    std::string_view data;
    DWORD type;
    std::string_view storedNt;
    std::string_view stored9x;
  };
  for (const Case& c : {
           Case{"Bare", "abc"sv, REG_SZ, "abc\0"sv, "abc\0"sv},
           Case{"Terminated", "abc\0"sv, REG_SZ, "abc\0"sv, "abc\0"sv},
           Case{"Empty", ""sv, REG_SZ, ""sv, "\0"sv},
           Case{"Embedded", "a\0b\0c"sv, REG_SZ, "a\0b\0c\0"sv, "a\0"sv},
           Case{"List", "one\0two\0\0"sv, REG_MULTI_SZ, "one\0two\0\0"sv, "one\0two\0\0"sv},
           Case{"Path", "%WINDIR%"sv, REG_EXPAND_SZ, "%WINDIR%\0"sv, "%WINDIR%"sv},
       }) {
    ASSERT_EQ(Set(scratch_, c.name, c.data, c.type), ERROR_SUCCESS);
    const Filled read = QueryBytes(scratch_, c.name);
    EXPECT_EQ(read.buffer, isWin9x() ? c.stored9x : c.storedNt) << c.name;
    EXPECT_EQ(read.type, c.type) << c.name;
  }
  // Followed by anything but a zero, the NT family keeps the bytes exactly; and the terminator
  // goes into the caller's buffer when there is room, without being counted.
  if (!isWin9x()) {
    const std::string unterminated = "abcX";
    ASSERT_EQ(Set(scratch_, "Exact", std::string_view(unterminated).substr(0, 3)), ERROR_SUCCESS);
    EXPECT_EQ(QueryBytes(scratch_, "Exact").buffer, "abc");
    const Filled roomy = QueryInto(scratch_, "Exact", 6);
    EXPECT_EQ(roomy.size, 3u);
    EXPECT_EQ(roomy.buffer, "abc\0XXXX"s);
    EXPECT_EQ(QueryInto(scratch_, "Exact", 3).buffer, "abcXX");
  }
}

TEST_P(RegistrySemantics, NamesMatchWithoutCaseAndKeepTheCaseTheyWereCreatedWith) {
  // Creating makes the intermediate keys and reports whether the key was new.
  DWORD disposition = 0;
  platform::RegCloseKey(Create(scratch_, "MixedCase\\B\\C", &disposition));
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  HKEY b = Create(scratch_, "MIXEDCASE\\b", &disposition);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  EXPECT_THAT(Subkeys(b), ElementsAre("C"));
  platform::RegCloseKey(b);
  // Latin-1 letters fold too: "\xC4rger" and "\xE4RGER" are one name in code page 1252.
  platform::RegCloseKey(Create(scratch_, "\xC4rger"));
  HKEY key = nullptr;
  EXPECT_EQ(platform::RegOpenKeyExA(scratch_, "\xE4RGER", 0, KEY_READ, &key), ERROR_SUCCESS);
  platform::RegCloseKey(key);
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("MixedCase", "\xC4rger"));

  ASSERT_EQ(Set(scratch_, "ValueName", "first"), ERROR_SUCCESS);
  ASSERT_EQ(Set(scratch_, "VALUENAME", "second"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("ValueName"));
  EXPECT_EQ(Query(scratch_, "valuename").buffer, "second");
}

TEST_P(RegistrySemantics, SubkeysEnumerateSortedWithoutCaseAndValuesInCreationOrder) {
  for (const char* name : {"b", "_c", "A", "C", "a1"}) {
    platform::RegCloseKey(Create(scratch_, name));
  }
  HOSTKIT_SKIP_ON_WINE(
      "Wine keeps subkeys in lower-cased and values in sorted order; Windows compares "
      "upper-cased subkey names and lists values in creation order");
  // Windows compares upper-cased names: "_" (0x5F) sorts after the letters.
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("A", "a1", "b", "C", "_c"));

  for (const char* name : {"zeta", "alpha", "Mid", "alpha"}) {
    ASSERT_EQ(Set(scratch_, name, name), ERROR_SUCCESS);
  }
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("zeta", "alpha", "Mid"));
  ASSERT_EQ(platform::RegDeleteValueA(scratch_, "zeta"), ERROR_SUCCESS);
  ASSERT_EQ(Set(scratch_, "zeta", "again"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("alpha", "Mid", "zeta"));
}

TEST_P(RegistrySemantics, EnumerationNeedsRoomForNameAndTerminator) {
  platform::RegCloseKey(Create(scratch_, "Seven77"));
  ASSERT_EQ(Set(scratch_, "Name5", "12345678", REG_BINARY), ERROR_SUCCESS);
  EXPECT_EQ(EnumKeyAt(scratch_, 0, 7).status, ERROR_MORE_DATA);
  const Filled key = EnumKeyAt(scratch_, 0, 8);
  EXPECT_EQ(key.size, 7u);
  EXPECT_EQ(key.buffer, "Seven77\0XX"s);
  EXPECT_EQ(EnumKeyAt(scratch_, 1).status, ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(EnumValueAt(scratch_, 0, 5).status, ERROR_MORE_DATA);
  EXPECT_EQ(EnumValueAt(scratch_, 0, 6).size, 5u);
  EXPECT_EQ(EnumValueAt(scratch_, 1).status, ERROR_NO_MORE_ITEMS);

  // The data half behaves like a query.
  char name[8];
  BYTE data[8] = {};
  DWORD nameSize = 8, type = 0, dataSize = 4;
  EXPECT_EQ(platform::RegEnumValueA(scratch_, 0, name, &nameSize, nullptr, &type, data, &dataSize),
            ERROR_MORE_DATA);
  EXPECT_EQ(dataSize, 8u);
  nameSize = 8;
  EXPECT_EQ(platform::RegEnumValueA(scratch_, 0, name, &nameSize, nullptr, &type, data, &dataSize),
            0);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(data), 8), "12345678");
}

TEST_P(RegistrySemantics, DeletingAKeyWithSubkeysDependsOnTheFamily) {
  platform::RegCloseKey(Create(scratch_, "Parent\\Child"));
  HKEY valuesOnly = Create(scratch_, "ValuesOnly");
  ASSERT_EQ(Set(valuesOnly, "Value", "v"), ERROR_SUCCESS);
  platform::RegCloseKey(valuesOnly);

  EXPECT_EQ(platform::RegDeleteKeyA(scratch_, "ValuesOnly"), ERROR_SUCCESS);
  EXPECT_EQ(platform::RegDeleteKeyA(scratch_, "Missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(platform::RegDeleteKeyA(scratch_, "Parent"),
            isWin9x() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED);
  EXPECT_EQ(Subkeys(scratch_),
            isWin9x() ? std::vector<std::string>{} : std::vector<std::string>{"Parent"});
  HKEY child = nullptr;
  EXPECT_EQ(platform::RegOpenKeyExA(scratch_, "Parent\\Child", 0, KEY_READ, &child),
            isWin9x() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS);
  platform::RegCloseKey(child);
}

TEST_P(RegistrySemantics, HandlesToDeletedKeysAnswerKeyDeleted) {
  HKEY outer = Create(scratch_, "Doomed");
  HKEY inner = Create(scratch_, "Doomed\\Inner");
  if (!isWin9x()) {
    ASSERT_EQ(platform::RegDeleteKeyA(scratch_, "Doomed\\Inner"), ERROR_SUCCESS);
  }
  ASSERT_EQ(platform::RegDeleteKeyA(scratch_, "Doomed"), ERROR_SUCCESS);
  // Re-creating a key of the same name does not revive the old handles.
  platform::RegCloseKey(Create(scratch_, "Doomed\\Inner"));

  for (HKEY gone : {outer, inner}) {
    HKEY key = nullptr;
    EXPECT_EQ(Query(gone, "Value").status, ERROR_KEY_DELETED);
    EXPECT_EQ(Set(gone, "Value", "w"), ERROR_KEY_DELETED);
    EXPECT_EQ(platform::RegDeleteValueA(gone, "Value"), ERROR_KEY_DELETED);
    EXPECT_EQ(EnumKeyAt(gone, 0).status, ERROR_KEY_DELETED);
    EXPECT_EQ(EnumValueAt(gone, 0).status, ERROR_KEY_DELETED);
    EXPECT_EQ(platform::RegOpenKeyExA(gone, "", 0, KEY_READ, &key), ERROR_KEY_DELETED);
    EXPECT_EQ(platform::RegCreateKeyExA(gone, "New", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                        nullptr),
              ERROR_KEY_DELETED);
    EXPECT_EQ(platform::RegCloseKey(gone), ERROR_SUCCESS);
  }
}

TEST_P(RegistrySemantics, PathsMustNotStartWithASeparator) {
  HKEY key = nullptr;
  EXPECT_EQ(platform::RegOpenKeyExA(scratch_, "\\Sub", 0, KEY_READ, &key), ERROR_BAD_PATHNAME);
  // Windows 9x creates the key below the separator all the same.
  EXPECT_EQ(platform::RegCreateKeyExA(scratch_, "\\Sub", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                      &key, nullptr),
            isWin9x() ? ERROR_SUCCESS : ERROR_BAD_PATHNAME);
  platform::RegCloseKey(key);
  EXPECT_THAT(Subkeys(scratch_),
              isWin9x() ? std::vector<std::string>{"Sub"} : std::vector<std::string>{});
  platform::RegCloseKey(Create(scratch_, "Sub\\"));
  EXPECT_EQ(platform::RegOpenKeyExA(scratch_, "Sub\\", 0, KEY_READ, &key), ERROR_SUCCESS);
  platform::RegCloseKey(key);
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("Sub"));

  // An empty or null path opens another handle to the same key.
  HKEY same = nullptr, again = nullptr;
  ASSERT_EQ(platform::RegOpenKeyExA(scratch_, "", 0, KEY_ALL_ACCESS, &same), ERROR_SUCCESS);
  ASSERT_EQ(platform::RegOpenKeyExA(scratch_, nullptr, 0, KEY_ALL_ACCESS, &again), ERROR_SUCCESS);
  EXPECT_NE(same, scratch_);
  EXPECT_NE(same, again);
  ASSERT_EQ(Set(same, "Through", "same"), ERROR_SUCCESS);
  EXPECT_EQ(Query(again, "Through").buffer, "same");
  platform::RegCloseKey(same);
  platform::RegCloseKey(again);
}

TEST_P(RegistrySemantics, TheDefaultValueIsNamedByNullOrEmpty) {
  ASSERT_EQ(Set(scratch_, nullptr, "by null"), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "").buffer, "by null");
  ASSERT_EQ(Set(scratch_, "", "by empty"), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, nullptr).buffer, "by empty");
  EXPECT_THAT(ValueNames(scratch_), ElementsAre(""));
  EXPECT_EQ(platform::RegDeleteValueA(scratch_, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "").status, ERROR_FILE_NOT_FOUND);
}

TEST_P(RegistrySemantics, AccessRightsOfTheHandleAreEnforcedOnTheNtFamilyOnly) {
  ASSERT_EQ(Set(scratch_, "Value", "original"), ERROR_SUCCESS);
  HKEY readOnly = nullptr, writeOnly = nullptr;
  ASSERT_EQ(platform::RegOpenKeyExA(scratch_, "", 0, KEY_READ, &readOnly), ERROR_SUCCESS);
  ASSERT_EQ(platform::RegOpenKeyExA(scratch_, "", 0, KEY_SET_VALUE, &writeOnly), ERROR_SUCCESS);
  const LONG denied = isWin9x() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;

  EXPECT_EQ(Query(readOnly, "Value").buffer, "original");
  EXPECT_EQ(Query(writeOnly, "Value").status, denied);
  EXPECT_EQ(Set(readOnly, "Value", "changed"), denied);
  EXPECT_EQ(Set(readOnly, "Other", "new"), denied);
  EXPECT_EQ(platform::RegDeleteValueA(readOnly, "Value"), denied);
  EXPECT_EQ(ValueNames(scratch_),
            isWin9x() ? std::vector<std::string>{"Other"} : std::vector<std::string>{"Value"});
  platform::RegCloseKey(readOnly);
  platform::RegCloseKey(writeOnly);
}

TEST_P(RegistrySemantics, HandlesAreCheckedAndRootsAreNeverClosed) {
  HKEY key = nullptr;
  ASSERT_EQ(platform::RegOpenKeyExA(scratch_, "", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(platform::RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(platform::RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Query(key, "Value").status, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Query(nullptr, "Value").status, ERROR_INVALID_HANDLE);
  for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS,
                    HKEY_CURRENT_CONFIG}) {
    EXPECT_EQ(platform::RegCloseKey(root), ERROR_SUCCESS);
    // Opening a predefined key with no subkey answers the predefined handle itself.
    ASSERT_EQ(platform::RegOpenKeyExA(root, "", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(key, root);
  }
  // Wine serves HKEY_DYN_DATA whatever release it emulates; the NT family has no such root.
  if (isWin9x() || !hostkit_test::OnRealWindows()) {
    EXPECT_EQ(platform::RegOpenKeyExA(HKEY_DYN_DATA, "", 0, KEY_READ, &key),
              isWin9x() ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
    platform::RegCloseKey(key);
  }
}

TEST_P(RegistrySemantics, ClassesRootIsAViewOfLocalMachineClasses) {
  HKEY viaView = Create(HKEY_CLASSES_ROOT, ".hostkittest");
  ASSERT_EQ(Set(viaView, "", "HostkitTest.File"), ERROR_SUCCESS);
  HKEY viaMachine = nullptr;
  ASSERT_EQ(platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Classes\\.HostkitTest", 0,
                                    KEY_READ, &viaMachine),
            ERROR_SUCCESS);
  EXPECT_EQ(Query(viaMachine, "").buffer, "HostkitTest.File");
  platform::RegCloseKey(viaMachine);
  platform::RegCloseKey(viaView);
  EXPECT_EQ(platform::RegDeleteKeyA(HKEY_CLASSES_ROOT, ".hostkittest"), ERROR_SUCCESS);
}

TEST_P(RegistrySemantics, ConcurrentWritersDoNotDisturbEachOther) {
  std::vector<hostkit_common::HostThread> threads;
  threads.reserve(4);
  for (const std::string thread : {"T0", "T1", "T2", "T3"}) {
    threads.emplace_back([this, thread] {
      for (int k = 0; k < 25; ++k) {
        const std::string path = thread + "\\K" + std::to_string(k);
        HKEY key = Create(scratch_, path.c_str());
        Set(key, "Path", path);
        platform::RegCloseKey(key);
      }
    });
  }
  for (auto& thread : threads) {
    thread.Join();
  }
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("T0", "T1", "T2", "T3"));
  HKEY key = Create(scratch_, "T3");
  EXPECT_EQ(Subkeys(key).size(), 25u);
  platform::RegCloseKey(key);
  key = Create(scratch_, "T2\\K17");
  EXPECT_EQ(Query(key, "Path").buffer, "T2\\K17");
  platform::RegCloseKey(key);
}

TEST_P(RegistrySemantics, WideCallsAreStubsOnWin9xAndConvertOnNt) {
  if (isWin9x()) {
    HOSTKIT_SKIP_ON_WINE("Wine implements the wide registry calls on every release");
  }
  const Hostkit::wstring wide = HK_WIDE("caf\u00E9\u0100");  // U+0100 has no form in code page 1252
  const LONG expected = isWin9x() ? ERROR_CALL_NOT_IMPLEMENTED : ERROR_SUCCESS;
  HKEY key = nullptr;
  WCHAR text[8];
  DWORD size = 8;
  EXPECT_EQ(platform::RegSetValueExW(scratch_, HK_WIDE("Wide"), 0, REG_SZ,
                                     reinterpret_cast<const BYTE*>(wide.data()),
                                     static_cast<DWORD>(wide.size() * 2)),
            expected);
  EXPECT_EQ(platform::RegOpenKeyExW(scratch_, HK_WIDE(""), 0, KEY_READ, &key), expected);
  platform::RegCloseKey(key);
  EXPECT_EQ(platform::RegEnumValueW(scratch_, 0, text, &size, nullptr, nullptr, nullptr, nullptr),
            expected);
  if (isWin9x()) {
    EXPECT_EQ(
        platform::RegCreateKeyExW(scratch_, HK_WIDE("K"), 0, nullptr, 0, 0, nullptr, &key, nullptr),
        expected);
    EXPECT_EQ(
        platform::RegQueryValueExW(scratch_, HK_WIDE("Wide"), nullptr, nullptr, nullptr, nullptr),
        expected);
    EXPECT_EQ(platform::RegDeleteValueW(scratch_, HK_WIDE("Wide")), expected);
    EXPECT_EQ(platform::RegDeleteKeyW(scratch_, HK_WIDE("K")), expected);
    EXPECT_EQ(platform::RegEnumKeyExW(scratch_, 0, text, &size, nullptr, nullptr, nullptr, nullptr),
              expected);
    return;
  }
  // The narrow view converts through code page 1252 and reports the converted size. Windows
  // maps U+0100 to its best-fit "A"; the simulation has no best-fit tables and writes the
  // default character.
  EXPECT_EQ(Query(scratch_, "Wide").buffer, hostkit_test::OnRealWindows() ? "caf\xE9"
                                                                            "A"
                                                                          : "caf\xE9?");
  ASSERT_EQ(Set(scratch_, "Narrow", "na\xEFve"), ERROR_SUCCESS);
  std::fill(std::begin(text), std::end(text), HK_WIDE('X'));
  size = sizeof text;
  EXPECT_EQ(platform::RegQueryValueExW(scratch_, HK_WIDE("NARROW"), nullptr, nullptr,
                                       reinterpret_cast<BYTE*>(text), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 12u);  // five characters and the terminator the writer did not count
  EXPECT_EQ(Hostkit::wstring(text, 6), Hostkit::wstring(HK_WIDE("na\u00EFve\0"), 6));
}

INSTANTIATE_TEST_SUITE_P(AllReleases, RegistrySemantics,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
}  // namespace Hostkit::platform
