// The registry API's behaviour on both Windows families, asserted through the seam's registry
// calls only, each test under a scratch key of its own below HKCU\Software\HostkitTest.
// The RegistryStoreDirect tests at the end use the simulated store itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "platform/registry.h"
#include "platform/sim/registry_store.h"
#include "support/test_machine.h"

namespace Hostkit::platform {
namespace {

using hostkit_test::PerRelease;
using hostkit_test::Release;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;
using namespace std::string_view_literals;

const BYTE* Bytes(std::string_view text) { return reinterpret_cast<const BYTE*>(text.data()); }
const BYTE* Bytes(std::u16string_view text) { return reinterpret_cast<const BYTE*>(text.data()); }

HKEY Create(HKEY parent, const char* path, DWORD* disposition = nullptr) {
  HKEY key = nullptr;
  EXPECT_EQ(
      RegCreateKeyExA(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, disposition),
      ERROR_SUCCESS)
      << path;
  return key;
}

LONG SetBytes(HKEY key, const char* name, std::string_view data, DWORD type = REG_SZ) {
  return RegSetValueExA(key, name, 0, type, Bytes(data), static_cast<DWORD>(data.size()));
}

struct Read {
  LONG status = ERROR_SUCCESS;
  DWORD type = REG_NONE;
  std::string data;
};

// A whole value through the narrow query: the size first, then the data.
Read Query(HKEY key, const char* name) {
  Read read;
  DWORD size = 0;
  read.status = RegQueryValueExA(key, name, nullptr, &read.type, nullptr, &size);
  if (read.status == ERROR_SUCCESS) {
    read.data.assign(size, '\0');
    read.status = RegQueryValueExA(key, name, nullptr, &read.type,
                                   reinterpret_cast<BYTE*>(read.data.data()), &size);
    read.data.resize(size);
  }
  return read;
}

std::vector<std::string> Subkeys(HKEY key) {
  std::vector<std::string> names;
  char name[260];
  for (DWORD size = sizeof name; RegEnumKeyExA(key, static_cast<DWORD>(names.size()), name, &size,
                                               nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
       size = sizeof name) {
    names.emplace_back(name, size);
  }
  return names;
}

std::vector<std::string> ValueNames(HKEY key) {
  std::vector<std::string> names;
  char name[260];
  for (DWORD size = sizeof name; RegEnumValueA(key, static_cast<DWORD>(names.size()), name, &size,
                                               nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
       size = sizeof name) {
    names.emplace_back(name, size);
  }
  return names;
}

// Deletes leaf first, which both families accept.
void DeleteTree(HKEY parent, const std::string& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return;
  }
  for (const auto& name : Subkeys(key)) {
    DeleteTree(key, name);
  }
  RegCloseKey(key);
  RegDeleteKeyA(parent, path.c_str());
}

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
    RegCloseKey(scratch_);
    DeleteTree(HKEY_CURRENT_USER, path_);
    PerRelease::TearDown();
  }

  std::string path_;
  HKEY scratch_ = nullptr;
};

TEST_P(RegistrySemantics, QueryReportsTheFullSizeAndLeavesASmallBufferUntouched) {
  const std::string data("\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09", 10);
  ASSERT_EQ(SetBytes(scratch_, "Blob", data, REG_BINARY), ERROR_SUCCESS);

  DWORD type = 0, size = 0;
  EXPECT_EQ(RegQueryValueExA(scratch_, "Blob", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(size, 10u);
  EXPECT_EQ(RegQueryValueExA(scratch_, "Blob", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);

  std::string buffer(16, '\xCC');
  size = 4;
  EXPECT_EQ(RegQueryValueExA(scratch_, "Blob", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(buffer.data()), &size),
            ERROR_MORE_DATA);
  EXPECT_EQ(size, 10u);
  EXPECT_EQ(buffer, std::string(16, '\xCC'));

  size = 10;
  EXPECT_EQ(RegQueryValueExA(scratch_, "Blob", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(buffer.data()), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(buffer.substr(0, 10), data);
  EXPECT_EQ(buffer.substr(10), std::string(6, '\xCC'));  // binary data gets no terminator
}

TEST_P(RegistrySemantics, MissingValuesAndKeysAreNotFoundAndNothingIsCreated) {
  EXPECT_EQ(Query(scratch_, "Absent").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteValueA(scratch_, "Absent"), ERROR_FILE_NOT_FOUND);

  HKEY key = reinterpret_cast<HKEY>(std::uintptr_t{0x4321});
  EXPECT_EQ(RegOpenKeyExA(scratch_, "Absent\\Deeper", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  EXPECT_THAT(Subkeys(scratch_), IsEmpty());
}

TEST_P(RegistrySemantics, StringDataIsKeptExactlyAsGiven) {
  ASSERT_EQ(SetBytes(scratch_, "Bare", "abc"), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "Terminated", "abc\0"sv), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "Empty", ""), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "Embedded", "a\0b\0c"sv), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "List", "one\0two\0\0"sv, REG_MULTI_SZ), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "Path", "%WINDIR%", REG_EXPAND_SZ), ERROR_SUCCESS);

  EXPECT_EQ(Query(scratch_, "Bare").data, "abc");
  EXPECT_EQ(Query(scratch_, "Terminated").data, "abc\0"s);
  EXPECT_EQ(Query(scratch_, "Empty").data, "");
  EXPECT_EQ(Query(scratch_, "Empty").type, REG_SZ);
  EXPECT_EQ(Query(scratch_, "Embedded").data, "a\0b\0c"s);
  EXPECT_EQ(Query(scratch_, "List").data, "one\0two\0\0"s);
  EXPECT_EQ(Query(scratch_, "Path").type, REG_EXPAND_SZ);

  // The terminator goes into the caller's buffer when there is room, and is not counted.
  std::string buffer = "XXXXXX";
  DWORD size = 6;
  EXPECT_EQ(RegQueryValueExA(scratch_, "Bare", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(buffer.data()), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(buffer, "abc\0XX"s);
  buffer = "XXXXXX";
  size = 3;
  EXPECT_EQ(RegQueryValueExA(scratch_, "Bare", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(buffer.data()), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(buffer, "abcXXX");
}

TEST_P(RegistrySemantics, NamesMatchWithoutCaseAndKeepTheCaseTheyWereCreatedWith) {
  RegCloseKey(Create(scratch_, "MixedCase"));
  DWORD disposition = 0;
  RegCloseKey(Create(scratch_, "MIXEDCASE", &disposition));
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(scratch_, "mIXEDcASE", 0, KEY_READ, &key), ERROR_SUCCESS);
  RegCloseKey(key);

  // Latin-1 letters fold too: "\xC4rger" and "\xE4rger" are one name in code page 1252.
  RegCloseKey(Create(scratch_, "\xC4rger"));
  EXPECT_EQ(RegOpenKeyExA(scratch_, "\xE4RGER", 0, KEY_READ, &key), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("MixedCase", "\xC4rger"));

  ASSERT_EQ(SetBytes(scratch_, "ValueName", "first"), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "VALUENAME", "second"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("ValueName"));
  EXPECT_EQ(Query(scratch_, "valuename").data, "second");
}

TEST_P(RegistrySemantics, SubkeysEnumerateSortedWithoutCaseAndValuesInCreationOrder) {
  for (const char* name : {"b", "_c", "A", "C", "a1"}) {
    RegCloseKey(Create(scratch_, name));
  }
  // Windows compares upper-cased names: "_" (0x5F) sorts after the letters.
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("A", "a1", "b", "C", "_c"));

  for (const char* name : {"zeta", "alpha", "Mid"}) {
    ASSERT_EQ(SetBytes(scratch_, name, name), ERROR_SUCCESS);
  }
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("zeta", "alpha", "Mid"));
  ASSERT_EQ(SetBytes(scratch_, "alpha", "changed"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("zeta", "alpha", "Mid"));
  ASSERT_EQ(RegDeleteValueA(scratch_, "zeta"), ERROR_SUCCESS);
  ASSERT_EQ(SetBytes(scratch_, "zeta", "again"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("alpha", "Mid", "zeta"));
}

TEST_P(RegistrySemantics, EnumerationNeedsRoomForNameAndTerminator) {
  RegCloseKey(Create(scratch_, "Seven77"));
  ASSERT_EQ(SetBytes(scratch_, "Name5", "12345678", REG_BINARY), ERROR_SUCCESS);

  char name[32];
  DWORD size = 7;
  EXPECT_EQ(RegEnumKeyExA(scratch_, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_MORE_DATA);
  size = 8;
  EXPECT_EQ(RegEnumKeyExA(scratch_, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 7u);
  EXPECT_STREQ(name, "Seven77");
  size = sizeof name;
  EXPECT_EQ(RegEnumKeyExA(scratch_, 1, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);

  size = 5;
  EXPECT_EQ(RegEnumValueA(scratch_, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_MORE_DATA);
  BYTE data[8] = {};
  DWORD type = 0, dataSize = 4;
  size = 6;
  EXPECT_EQ(RegEnumValueA(scratch_, 0, name, &size, nullptr, &type, data, &dataSize),
            ERROR_MORE_DATA);
  EXPECT_EQ(dataSize, 8u);
  size = 6;
  EXPECT_EQ(RegEnumValueA(scratch_, 0, name, &size, nullptr, &type, data, &dataSize),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 5u);
  EXPECT_STREQ(name, "Name5");
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(data), 8), "12345678");
  size = sizeof name;
  EXPECT_EQ(RegEnumValueA(scratch_, 1, name, &size, nullptr, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);
}

TEST_P(RegistrySemantics, DeletingAKeyWithSubkeysDependsOnTheFamily) {
  HKEY parent = Create(scratch_, "Parent\\Child");
  RegCloseKey(parent);
  parent = Create(scratch_, "Parent");
  ASSERT_EQ(SetBytes(parent, "Kept", "yes"), ERROR_SUCCESS);
  RegCloseKey(parent);
  HKEY valuesOnly = Create(scratch_, "ValuesOnly");
  ASSERT_EQ(SetBytes(valuesOnly, "Value", "v"), ERROR_SUCCESS);
  RegCloseKey(valuesOnly);

  EXPECT_EQ(RegDeleteKeyA(scratch_, "ValuesOnly"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyA(scratch_, "Missing"), ERROR_FILE_NOT_FOUND);
  if (isWin9x()) {
    EXPECT_EQ(RegDeleteKeyA(scratch_, "Parent"), ERROR_SUCCESS);
    EXPECT_THAT(Subkeys(scratch_), IsEmpty());
  } else {
    EXPECT_EQ(RegDeleteKeyA(scratch_, "Parent"), ERROR_ACCESS_DENIED);
    EXPECT_THAT(Subkeys(scratch_), ElementsAre("Parent"));
    HKEY child = nullptr;
    EXPECT_EQ(RegOpenKeyExA(scratch_, "Parent\\Child", 0, KEY_READ, &child), ERROR_SUCCESS);
    RegCloseKey(child);
  }
}

TEST_P(RegistrySemantics, HandlesToDeletedKeysAnswerKeyDeleted) {
  HKEY outer = Create(scratch_, "Doomed");
  HKEY inner = Create(scratch_, "Doomed\\Inner");
  ASSERT_EQ(SetBytes(inner, "Value", "v"), ERROR_SUCCESS);
  if (!isWin9x()) {
    ASSERT_EQ(RegDeleteKeyA(scratch_, "Doomed\\Inner"), ERROR_SUCCESS);
  }
  ASSERT_EQ(RegDeleteKeyA(scratch_, "Doomed"), ERROR_SUCCESS);
  // Re-creating a key of the same name does not revive the old handles.
  RegCloseKey(Create(scratch_, "Doomed\\Inner"));

  for (HKEY gone : {outer, inner}) {
    HKEY key = nullptr;
    char name[32];
    DWORD size = sizeof name;
    EXPECT_EQ(Query(gone, "Value").status, ERROR_KEY_DELETED);
    EXPECT_EQ(SetBytes(gone, "Value", "w"), ERROR_KEY_DELETED);
    EXPECT_EQ(RegDeleteValueA(gone, "Value"), ERROR_KEY_DELETED);
    EXPECT_EQ(RegEnumKeyExA(gone, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
    EXPECT_EQ(RegEnumValueA(gone, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
    EXPECT_EQ(RegOpenKeyExA(gone, "", 0, KEY_READ, &key), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCreateKeyExA(gone, "New", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_KEY_DELETED);
    EXPECT_EQ(RegCloseKey(gone), ERROR_SUCCESS);
  }
}

TEST_P(RegistrySemantics, PathsMustNotStartWithASeparator) {
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(scratch_, "\\Sub", 0, KEY_READ, &key), ERROR_BAD_PATHNAME);
  EXPECT_EQ(
      RegCreateKeyExA(scratch_, "\\Sub", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
      ERROR_BAD_PATHNAME);
  EXPECT_THAT(Subkeys(scratch_), IsEmpty());

  RegCloseKey(Create(scratch_, "Sub\\"));
  EXPECT_EQ(RegOpenKeyExA(scratch_, "Sub\\", 0, KEY_READ, &key), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("Sub"));

  // An empty or null path opens another handle to the same key.
  HKEY same = nullptr, again = nullptr;
  ASSERT_EQ(RegOpenKeyExA(scratch_, "", 0, KEY_ALL_ACCESS, &same), ERROR_SUCCESS);
  ASSERT_EQ(RegOpenKeyExA(scratch_, nullptr, 0, KEY_ALL_ACCESS, &again), ERROR_SUCCESS);
  EXPECT_NE(same, scratch_);
  EXPECT_NE(same, again);
  ASSERT_EQ(SetBytes(same, "Through", "same"), ERROR_SUCCESS);
  EXPECT_EQ(Query(again, "Through").data, "same");
  RegCloseKey(same);
  RegCloseKey(again);
}

TEST_P(RegistrySemantics, TheDefaultValueIsNamedByNullOrEmpty) {
  ASSERT_EQ(SetBytes(scratch_, nullptr, "by null"), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "").data, "by null");
  ASSERT_EQ(SetBytes(scratch_, "", "by empty"), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, nullptr).data, "by empty");
  EXPECT_THAT(ValueNames(scratch_), ElementsAre(""));
  EXPECT_EQ(RegDeleteValueA(scratch_, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "").status, ERROR_FILE_NOT_FOUND);
}

TEST_P(RegistrySemantics, AccessRightsOfTheHandleAreEnforcedOnTheNtFamilyOnly) {
  ASSERT_EQ(SetBytes(scratch_, "Value", "original"), ERROR_SUCCESS);
  HKEY readOnly = nullptr, writeOnly = nullptr;
  ASSERT_EQ(RegOpenKeyExA(scratch_, "", 0, KEY_READ, &readOnly), ERROR_SUCCESS);
  ASSERT_EQ(RegOpenKeyExA(scratch_, "", 0, KEY_SET_VALUE, &writeOnly), ERROR_SUCCESS);
  const LONG denied = isWin9x() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;

  EXPECT_EQ(Query(readOnly, "Value").data, "original");
  EXPECT_EQ(Query(writeOnly, "Value").status, denied);
  EXPECT_EQ(SetBytes(readOnly, "Value", "changed"), denied);
  EXPECT_EQ(SetBytes(readOnly, "Other", "new"), denied);
  EXPECT_EQ(RegDeleteValueA(readOnly, "Value"), denied);
  EXPECT_EQ(Query(scratch_, "Value").status, isWin9x() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "Other").status, isWin9x() ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND);
  RegCloseKey(readOnly);
  RegCloseKey(writeOnly);
}

TEST_P(RegistrySemantics, CreateMakesIntermediateKeysAndReportsWhatItDid) {
  DWORD disposition = 0;
  RegCloseKey(Create(scratch_, "A\\B\\C", &disposition));
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  RegCloseKey(Create(scratch_, "a\\b", &disposition));
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  HKEY b = nullptr;
  ASSERT_EQ(RegOpenKeyExA(scratch_, "A\\B", 0, KEY_READ, &b), ERROR_SUCCESS);
  EXPECT_THAT(Subkeys(b), ElementsAre("C"));
  RegCloseKey(b);
}

TEST_P(RegistrySemantics, HandlesAreCheckedAndRootsAreNeverClosed) {
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(scratch_, "", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Query(key, "Value").status, ERROR_INVALID_HANDLE);
  EXPECT_EQ(Query(nullptr, "Value").status, ERROR_INVALID_HANDLE);

  for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS,
                    HKEY_CURRENT_CONFIG}) {
    EXPECT_EQ(RegCloseKey(root), ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyExA(root, "", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_NE(key, root);
    RegCloseKey(key);
  }
  EXPECT_EQ(RegOpenKeyExA(HKEY_DYN_DATA, "", 0, KEY_READ, &key),
            isWin9x() ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
  RegCloseKey(key);
}

TEST_P(RegistrySemantics, ClassesRootIsAViewOfLocalMachineClasses) {
  HKEY viaView = Create(HKEY_CLASSES_ROOT, ".hostkittest");
  ASSERT_EQ(SetBytes(viaView, "", "HostkitTest.File"), ERROR_SUCCESS);
  HKEY viaMachine = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Classes\\.HostkitTest", 0, KEY_READ,
                          &viaMachine),
            ERROR_SUCCESS);
  EXPECT_EQ(Query(viaMachine, "").data, "HostkitTest.File");
  RegCloseKey(viaMachine);
  RegCloseKey(viaView);
  EXPECT_EQ(RegDeleteKeyA(HKEY_CLASSES_ROOT, ".hostkittest"), ERROR_SUCCESS);
}

TEST_P(RegistrySemantics, ConcurrentWritersDoNotDisturbEachOther) {
  constexpr int kThreads = 4, kKeys = 25;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([this, t] {
      for (int k = 0; k < kKeys; ++k) {
        const std::string path = "T" + std::to_string(t) + "\\K" + std::to_string(k);
        HKEY key = Create(scratch_, path.c_str());
        SetBytes(key, "Path", path);
        RegCloseKey(key);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("T0", "T1", "T2", "T3"));
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(scratch_, "T2\\K17", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(Query(key, "Path").data, "T2\\K17");
  RegCloseKey(key);
  ASSERT_EQ(RegOpenKeyExA(scratch_, "T3", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(Subkeys(key).size(), static_cast<std::size_t>(kKeys));
  RegCloseKey(key);
}

TEST_P(RegistrySemantics, WideCallsAreStubsOnWin9xAndConvertOnNt) {
  const std::u16string wide = u"caf\u00E9\u0100";  // U+0100 has no form in code page 1252
  const LONG expected = isWin9x() ? ERROR_CALL_NOT_IMPLEMENTED : ERROR_SUCCESS;
  ASSERT_EQ(RegSetValueExW(scratch_, u"Wide", 0, REG_SZ, Bytes(wide),
                           static_cast<DWORD>(wide.size() * 2)),
            expected);
  HKEY key = nullptr;
  WCHAR name[32];
  DWORD size = 32;
  EXPECT_EQ(RegOpenKeyExW(scratch_, u"", 0, KEY_READ, &key), expected);
  RegCloseKey(key);
  EXPECT_EQ(RegEnumValueW(scratch_, 0, name, &size, nullptr, nullptr, nullptr, nullptr), expected);
  if (isWin9x()) {
    EXPECT_EQ(
        RegCreateKeyExW(scratch_, u"K", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_CALL_NOT_IMPLEMENTED);
    EXPECT_EQ(RegQueryValueExW(scratch_, u"Wide", nullptr, nullptr, nullptr, nullptr),
              ERROR_CALL_NOT_IMPLEMENTED);
    EXPECT_EQ(RegDeleteValueW(scratch_, u"Wide"), ERROR_CALL_NOT_IMPLEMENTED);
    EXPECT_EQ(RegDeleteKeyW(scratch_, u"K"), ERROR_CALL_NOT_IMPLEMENTED);
    EXPECT_EQ(RegEnumKeyExW(scratch_, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_CALL_NOT_IMPLEMENTED);
    return;
  }
  // The narrow view converts through code page 1252 and reports the converted size.
  EXPECT_EQ(Query(scratch_, "Wide").data, "caf\xE9?");

  ASSERT_EQ(SetBytes(scratch_, "Narrow", "na\xEFve"), ERROR_SUCCESS);
  WCHAR data[8];
  std::fill(std::begin(data), std::end(data), u'X');
  DWORD dataSize = sizeof data;
  EXPECT_EQ(RegQueryValueExW(scratch_, u"NARROW", nullptr, nullptr, reinterpret_cast<BYTE*>(data),
                             &dataSize),
            ERROR_SUCCESS);
  EXPECT_EQ(dataSize, 10u);
  EXPECT_EQ(std::u16string(data, 7), std::u16string(u"na\u00EFve\0X", 7));
}

INSTANTIATE_TEST_SUITE_P(AllReleases, RegistrySemantics,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// The simulated store's own interface: snapshots, the current-user setting, and the two
// families compared through the same narrow calls.

using sim::RegistrySnapshot;

// Applies one script of narrow calls to the active machine.
void WriteSampleTree() {
  HKEY key = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  SetBytes(key, "Name", "Caf\xE9");
  SetBytes(key, "List", "a\0b\0\0"sv, REG_MULTI_SZ);
  SetBytes(key, "Flags", "\x01\x00\x00\x00"sv, REG_DWORD);
  RegCloseKey(key);
  RegCloseKey(Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Other"));
}

// Everything below `path` as seen through the narrow calls, one line per key and value.
std::vector<std::string> NarrowDump(HKEY root, const std::string& path) {
  std::vector<std::string> lines{"[" + path + "]"};
  HKEY key = nullptr;
  if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return lines;
  }
  for (const auto& name : ValueNames(key)) {
    const Read read = Query(key, name.c_str());
    lines.push_back(name + "=" + std::to_string(read.type) + ":");
    lines.back() += read.data;
  }
  for (const auto& name : Subkeys(key)) {
    std::string child = path;
    child.append("\\").append(name);
    const auto below = NarrowDump(root, child);
    lines.insert(lines.end(), below.begin(), below.end());
  }
  RegCloseKey(key);
  return lines;
}

TEST(RegistryStoreDirect, BothFamiliesReadTheSameThroughNarrowCallsButStoreTextDifferently) {
  auto win98 = hostkit_test::UseFreshMachine(Release::Win98);
  WriteSampleTree();
  const auto dump98 = NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE");
  auto winXp = hostkit_test::UseFreshMachine(Release::WinXP);
  WriteSampleTree();
  EXPECT_EQ(NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE"), dump98);
  EXPECT_THAT(dump98, testing::Contains("Name=1:Caf\xE9"));

  const auto name98 =
      win98->registry().snapshot().localMachine.subkeys[0].subkeys[0].subkeys[1].values[0];
  const auto nameXp =
      winXp->registry().snapshot().localMachine.subkeys[0].subkeys[0].subkeys[1].values[0];
  EXPECT_TRUE(name98.narrowText);
  EXPECT_EQ(name98.data.size(), 4u);
  EXPECT_FALSE(nameXp.narrowText);
  EXPECT_EQ(nameXp.data.size(), 8u);

  // A release changed after the values were written still reads them in the right width.
  win98->facts().release = Release::WinXP;
  sim::ActivateMachine(win98);
  WCHAR text[8] = {};
  DWORD size = sizeof text;
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Vendor\\Product", 0, KEY_READ, &key),
            ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExW(key, u"Name", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(std::u16string(text), u"Caf\u00E9");
  RegCloseKey(key);
  sim::ActivateMachine(nullptr);
}

TEST(RegistryStoreDirect, SnapshotsCompareRestoreAndCloneWholeRegistries) {
  auto machine = hostkit_test::UseFreshMachine(Release::Win2000);
  WriteSampleTree();
  const RegistrySnapshot before = machine->registry().snapshot();
  HKEY held = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  SetBytes(held, "Name", "changed");
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Other");
  EXPECT_NE(machine->registry().snapshot(), before);

  machine->registry().restore(before);
  EXPECT_EQ(machine->registry().snapshot(), before);
  EXPECT_EQ(Query(held, "Name").status, ERROR_KEY_DELETED);
  RegCloseKey(held);

  auto clone = hostkit_test::UseFreshMachine(Release::Win2000);
  clone->registry().restore(before);
  EXPECT_EQ(clone->registry().snapshot(), before);
  EXPECT_EQ(
      NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE"),
      (std::vector<std::string>{"[SOFTWARE]", "[SOFTWARE\\Vendor]", "[SOFTWARE\\Vendor\\Other]",
                                "[SOFTWARE\\Vendor\\Product]", "Name=1:Caf\xE9", "List=7:a\0b\0\0"s,
                                "Flags=4:\x01\0\0\0"s}));
  sim::ActivateMachine(nullptr);
}

TEST(RegistryStoreDirect, CurrentUserAndCurrentConfigResolvePerFamilyAndSetting) {
  struct Case {
    Release release;
    const char* user;
    const char* config;
  };
  for (const Case& c : {Case{Release::Win95, ".DEFAULT", "Config\\0001"},
                        Case{Release::WinNT4, "S-1-5-21-0-0-0-1000",
                             "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current"}}) {
    auto machine = hostkit_test::UseFreshMachine(c.release);
    RegCloseKey(Create(HKEY_CURRENT_USER, "Software\\Mine"));
    RegCloseKey(Create(HKEY_CURRENT_CONFIG, "Display"));
    EXPECT_THAT(NarrowDump(HKEY_USERS, c.user),
                testing::Contains(std::string("[") + c.user + "\\Software\\Mine]"));
    EXPECT_THAT(NarrowDump(HKEY_LOCAL_MACHINE, c.config),
                testing::Contains(std::string("[") + c.config + "\\Display]"));

    machine->registry().setCurrentUserKey(u"S-1-5-21-7-7-7-1001");
    EXPECT_EQ(machine->registry().currentUserKey(), u"S-1-5-21-7-7-7-1001");
    RegCloseKey(Create(HKEY_CURRENT_USER, "Software\\Other"));
    EXPECT_THAT(Subkeys(HKEY_USERS), ElementsAre(c.user, "S-1-5-21-7-7-7-1001"));
  }
  sim::ActivateMachine(nullptr);
}

}  // namespace
}  // namespace Hostkit::platform
