// The registry API's behaviour on both Windows families, asserted through the seam's registry
// calls only, each test under a scratch key of its own below HKCU\Software\HostkitTest.
// The RegistryStoreDirect tests at the end use the simulated store itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>
#include <tuple>
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

HKEY Create(HKEY parent, const char* path, DWORD* disposition = nullptr) {
  HKEY key = nullptr;
  EXPECT_EQ(
      RegCreateKeyExA(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, disposition),
      ERROR_SUCCESS)
      << path;
  return key;
}

LONG Set(HKEY key, const char* name, std::string_view data, DWORD type = REG_SZ) {
  return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                        static_cast<DWORD>(data.size()));
}

// The outcome of a call that fills a buffer: its result, the size it reported and the buffer,
// which starts as `capacity` bytes of 'X' followed by two more.
struct Filled {
  LONG status = ERROR_SUCCESS;
  DWORD size = 0;
  std::string buffer;
  DWORD type = REG_NONE;
};

Filled QueryInto(HKEY key, const char* name, DWORD capacity) {
  Filled out{ERROR_SUCCESS, capacity, std::string(capacity + 2, 'X')};
  out.status = RegQueryValueExA(key, name, nullptr, &out.type,
                                reinterpret_cast<BYTE*>(out.buffer.data()), &out.size);
  return out;
}

// A whole value: the size first, then the data.
Filled Query(HKEY key, const char* name) {
  DWORD size = 0;
  const LONG status = RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size);
  Filled out =
      status == ERROR_SUCCESS ? QueryInto(key, name, size) : Filled{status, 0, {}, REG_NONE};
  out.buffer.resize(out.status == ERROR_SUCCESS ? out.size : 0);
  return out;
}

Filled EnumKeyAt(HKEY key, DWORD index, DWORD capacity = 260) {
  Filled out{ERROR_SUCCESS, capacity, std::string(capacity + 2, 'X')};
  out.status =
      RegEnumKeyExA(key, index, out.buffer.data(), &out.size, nullptr, nullptr, nullptr, nullptr);
  return out;
}

Filled EnumValueAt(HKEY key, DWORD index, DWORD capacity = 260) {
  Filled out{ERROR_SUCCESS, capacity, std::string(capacity + 2, 'X')};
  out.status =
      RegEnumValueA(key, index, out.buffer.data(), &out.size, nullptr, &out.type, nullptr, nullptr);
  return out;
}

template <class Enumerate>
std::vector<std::string> Names(HKEY key, Enumerate enumerate) {
  std::vector<std::string> names;
  for (Filled f; (f = enumerate(key, static_cast<DWORD>(names.size()), 260)).status == 0;) {
    names.push_back(f.buffer.substr(0, f.size));
  }
  return names;
}
std::vector<std::string> Subkeys(HKEY key) { return Names(key, EnumKeyAt); }
std::vector<std::string> ValueNames(HKEY key) { return Names(key, EnumValueAt); }

// Deletes leaf first, which both families accept.
void DeleteTree(HKEY parent, const std::string& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS) {
    for (const auto& name : Subkeys(key)) {
      DeleteTree(key, name);
    }
    RegCloseKey(key);
    RegDeleteKeyA(parent, path.c_str());
  }
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
  ASSERT_EQ(Set(scratch_, "Blob", "0123456789", REG_BINARY), ERROR_SUCCESS);
  DWORD type = 0, size = 0;
  EXPECT_EQ(RegQueryValueExA(scratch_, "Blob", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(size, 10u);
  EXPECT_EQ(RegQueryValueExA(scratch_, "Blob", nullptr, nullptr, nullptr, nullptr), 0);

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
  EXPECT_EQ(RegDeleteValueA(scratch_, "Absent"), ERROR_FILE_NOT_FOUND);
  HKEY key = reinterpret_cast<HKEY>(std::uintptr_t{0x4321});
  EXPECT_EQ(RegOpenKeyExA(scratch_, "Absent\\Deeper", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  EXPECT_THAT(Subkeys(scratch_), IsEmpty());
}

TEST_P(RegistrySemantics, StringDataIsKeptExactlyAsGiven) {
  for (const auto& [name, data, type] :
       {std::tuple{"Bare", "abc"sv, REG_SZ}, std::tuple{"Terminated", "abc\0"sv, REG_SZ},
        std::tuple{"Empty", ""sv, REG_SZ}, std::tuple{"Embedded", "a\0b\0c"sv, REG_SZ},
        std::tuple{"List", "one\0two\0\0"sv, REG_MULTI_SZ},
        std::tuple{"Path", "%WINDIR%"sv, REG_EXPAND_SZ}}) {
    ASSERT_EQ(Set(scratch_, name, data, type), ERROR_SUCCESS);
    const Filled read = Query(scratch_, name);
    EXPECT_EQ(read.buffer, data) << name;
    EXPECT_EQ(read.type, type) << name;
  }
  // The terminator goes into the caller's buffer when there is room, and is not counted.
  const Filled roomy = QueryInto(scratch_, "Bare", 6);
  EXPECT_EQ(roomy.size, 3u);
  EXPECT_EQ(roomy.buffer, "abc\0XXXX"s);
  EXPECT_EQ(QueryInto(scratch_, "Bare", 3).buffer, "abcXX");
}

TEST_P(RegistrySemantics, NamesMatchWithoutCaseAndKeepTheCaseTheyWereCreatedWith) {
  RegCloseKey(Create(scratch_, "MixedCase"));
  DWORD disposition = 0;
  RegCloseKey(Create(scratch_, "MIXEDCASE", &disposition));
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  // Latin-1 letters fold too: "\xC4rger" and "\xE4RGER" are one name in code page 1252.
  RegCloseKey(Create(scratch_, "\xC4rger"));
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(scratch_, "\xE4RGER", 0, KEY_READ, &key), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("MixedCase", "\xC4rger"));

  ASSERT_EQ(Set(scratch_, "ValueName", "first"), ERROR_SUCCESS);
  ASSERT_EQ(Set(scratch_, "VALUENAME", "second"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("ValueName"));
  EXPECT_EQ(Query(scratch_, "valuename").buffer, "second");
}

TEST_P(RegistrySemantics, SubkeysEnumerateSortedWithoutCaseAndValuesInCreationOrder) {
  for (const char* name : {"b", "_c", "A", "C", "a1"}) {
    RegCloseKey(Create(scratch_, name));
  }
  // Windows compares upper-cased names: "_" (0x5F) sorts after the letters.
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("A", "a1", "b", "C", "_c"));

  for (const char* name : {"zeta", "alpha", "Mid", "alpha"}) {
    ASSERT_EQ(Set(scratch_, name, name), ERROR_SUCCESS);
  }
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("zeta", "alpha", "Mid"));
  ASSERT_EQ(RegDeleteValueA(scratch_, "zeta"), ERROR_SUCCESS);
  ASSERT_EQ(Set(scratch_, "zeta", "again"), ERROR_SUCCESS);
  EXPECT_THAT(ValueNames(scratch_), ElementsAre("alpha", "Mid", "zeta"));
}

TEST_P(RegistrySemantics, EnumerationNeedsRoomForNameAndTerminator) {
  RegCloseKey(Create(scratch_, "Seven77"));
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
  EXPECT_EQ(RegEnumValueA(scratch_, 0, name, &nameSize, nullptr, &type, data, &dataSize),
            ERROR_MORE_DATA);
  EXPECT_EQ(dataSize, 8u);
  nameSize = 8;
  EXPECT_EQ(RegEnumValueA(scratch_, 0, name, &nameSize, nullptr, &type, data, &dataSize), 0);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(data), 8), "12345678");
}

TEST_P(RegistrySemantics, DeletingAKeyWithSubkeysDependsOnTheFamily) {
  RegCloseKey(Create(scratch_, "Parent\\Child"));
  HKEY valuesOnly = Create(scratch_, "ValuesOnly");
  ASSERT_EQ(Set(valuesOnly, "Value", "v"), ERROR_SUCCESS);
  RegCloseKey(valuesOnly);

  EXPECT_EQ(RegDeleteKeyA(scratch_, "ValuesOnly"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyA(scratch_, "Missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteKeyA(scratch_, "Parent"), isWin9x() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED);
  EXPECT_EQ(Subkeys(scratch_),
            isWin9x() ? std::vector<std::string>{} : std::vector<std::string>{"Parent"});
  HKEY child = nullptr;
  EXPECT_EQ(RegOpenKeyExA(scratch_, "Parent\\Child", 0, KEY_READ, &child),
            isWin9x() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS);
  RegCloseKey(child);
}

TEST_P(RegistrySemantics, HandlesToDeletedKeysAnswerKeyDeleted) {
  HKEY outer = Create(scratch_, "Doomed");
  HKEY inner = Create(scratch_, "Doomed\\Inner");
  if (!isWin9x()) {
    ASSERT_EQ(RegDeleteKeyA(scratch_, "Doomed\\Inner"), ERROR_SUCCESS);
  }
  ASSERT_EQ(RegDeleteKeyA(scratch_, "Doomed"), ERROR_SUCCESS);
  // Re-creating a key of the same name does not revive the old handles.
  RegCloseKey(Create(scratch_, "Doomed\\Inner"));

  for (HKEY gone : {outer, inner}) {
    HKEY key = nullptr;
    EXPECT_EQ(Query(gone, "Value").status, ERROR_KEY_DELETED);
    EXPECT_EQ(Set(gone, "Value", "w"), ERROR_KEY_DELETED);
    EXPECT_EQ(RegDeleteValueA(gone, "Value"), ERROR_KEY_DELETED);
    EXPECT_EQ(EnumKeyAt(gone, 0).status, ERROR_KEY_DELETED);
    EXPECT_EQ(EnumValueAt(gone, 0).status, ERROR_KEY_DELETED);
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
  ASSERT_EQ(Set(same, "Through", "same"), ERROR_SUCCESS);
  EXPECT_EQ(Query(again, "Through").buffer, "same");
  RegCloseKey(same);
  RegCloseKey(again);
}

TEST_P(RegistrySemantics, TheDefaultValueIsNamedByNullOrEmpty) {
  ASSERT_EQ(Set(scratch_, nullptr, "by null"), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "").buffer, "by null");
  ASSERT_EQ(Set(scratch_, "", "by empty"), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, nullptr).buffer, "by empty");
  EXPECT_THAT(ValueNames(scratch_), ElementsAre(""));
  EXPECT_EQ(RegDeleteValueA(scratch_, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(Query(scratch_, "").status, ERROR_FILE_NOT_FOUND);
}

TEST_P(RegistrySemantics, AccessRightsOfTheHandleAreEnforcedOnTheNtFamilyOnly) {
  ASSERT_EQ(Set(scratch_, "Value", "original"), ERROR_SUCCESS);
  HKEY readOnly = nullptr, writeOnly = nullptr;
  ASSERT_EQ(RegOpenKeyExA(scratch_, "", 0, KEY_READ, &readOnly), ERROR_SUCCESS);
  ASSERT_EQ(RegOpenKeyExA(scratch_, "", 0, KEY_SET_VALUE, &writeOnly), ERROR_SUCCESS);
  const LONG denied = isWin9x() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;

  EXPECT_EQ(Query(readOnly, "Value").buffer, "original");
  EXPECT_EQ(Query(writeOnly, "Value").status, denied);
  EXPECT_EQ(Set(readOnly, "Value", "changed"), denied);
  EXPECT_EQ(Set(readOnly, "Other", "new"), denied);
  EXPECT_EQ(RegDeleteValueA(readOnly, "Value"), denied);
  EXPECT_EQ(ValueNames(scratch_),
            isWin9x() ? std::vector<std::string>{"Other"} : std::vector<std::string>{"Value"});
  RegCloseKey(readOnly);
  RegCloseKey(writeOnly);
}

TEST_P(RegistrySemantics, CreateMakesIntermediateKeysAndReportsWhatItDid) {
  DWORD disposition = 0;
  RegCloseKey(Create(scratch_, "A\\B\\C", &disposition));
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  HKEY b = Create(scratch_, "a\\b", &disposition);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
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
  ASSERT_EQ(Set(viaView, "", "HostkitTest.File"), ERROR_SUCCESS);
  HKEY viaMachine = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Classes\\.HostkitTest", 0, KEY_READ,
                          &viaMachine),
            ERROR_SUCCESS);
  EXPECT_EQ(Query(viaMachine, "").buffer, "HostkitTest.File");
  RegCloseKey(viaMachine);
  RegCloseKey(viaView);
  EXPECT_EQ(RegDeleteKeyA(HKEY_CLASSES_ROOT, ".hostkittest"), ERROR_SUCCESS);
}

TEST_P(RegistrySemantics, ConcurrentWritersDoNotDisturbEachOther) {
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (const std::string thread : {"T0", "T1", "T2", "T3"}) {
    threads.emplace_back([this, thread] {
      for (int k = 0; k < 25; ++k) {
        const std::string path = thread + "\\K" + std::to_string(k);
        HKEY key = Create(scratch_, path.c_str());
        Set(key, "Path", path);
        RegCloseKey(key);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(Subkeys(scratch_), ElementsAre("T0", "T1", "T2", "T3"));
  HKEY key = Create(scratch_, "T3");
  EXPECT_EQ(Subkeys(key).size(), 25u);
  RegCloseKey(key);
  key = Create(scratch_, "T2\\K17");
  EXPECT_EQ(Query(key, "Path").buffer, "T2\\K17");
  RegCloseKey(key);
}

TEST_P(RegistrySemantics, WideCallsAreStubsOnWin9xAndConvertOnNt) {
  const std::u16string wide = u"caf\u00E9\u0100";  // U+0100 has no form in code page 1252
  const LONG expected = isWin9x() ? ERROR_CALL_NOT_IMPLEMENTED : ERROR_SUCCESS;
  HKEY key = nullptr;
  WCHAR text[8];
  DWORD size = 8;
  EXPECT_EQ(RegSetValueExW(scratch_, u"Wide", 0, REG_SZ, reinterpret_cast<const BYTE*>(wide.data()),
                           static_cast<DWORD>(wide.size() * 2)),
            expected);
  EXPECT_EQ(RegOpenKeyExW(scratch_, u"", 0, KEY_READ, &key), expected);
  RegCloseKey(key);
  EXPECT_EQ(RegEnumValueW(scratch_, 0, text, &size, nullptr, nullptr, nullptr, nullptr), expected);
  if (isWin9x()) {
    EXPECT_EQ(RegCreateKeyExW(scratch_, u"K", 0, nullptr, 0, 0, nullptr, &key, nullptr), expected);
    EXPECT_EQ(RegQueryValueExW(scratch_, u"Wide", nullptr, nullptr, nullptr, nullptr), expected);
    EXPECT_EQ(RegDeleteValueW(scratch_, u"Wide"), expected);
    EXPECT_EQ(RegDeleteKeyW(scratch_, u"K"), expected);
    EXPECT_EQ(RegEnumKeyExW(scratch_, 0, text, &size, nullptr, nullptr, nullptr, nullptr),
              expected);
    return;
  }
  // The narrow view converts through code page 1252 and reports the converted size.
  EXPECT_EQ(Query(scratch_, "Wide").buffer, "caf\xE9?");
  ASSERT_EQ(Set(scratch_, "Narrow", "na\xEFve"), ERROR_SUCCESS);
  std::fill(std::begin(text), std::end(text), u'X');
  size = sizeof text;
  EXPECT_EQ(
      RegQueryValueExW(scratch_, u"NARROW", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size),
      ERROR_SUCCESS);
  EXPECT_EQ(size, 10u);
  EXPECT_EQ(std::u16string(text, 7), std::u16string(u"na\u00EFve\0X", 7));
}

INSTANTIATE_TEST_SUITE_P(AllReleases, RegistrySemantics,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// The simulated store's own interface: snapshots, the current-user setting, and the two
// families compared through the same narrow calls.

void WriteSampleTree() {
  HKEY key = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  Set(key, "Name", "Caf\xE9");
  Set(key, "List", "a\0b\0\0"sv, REG_MULTI_SZ);
  Set(key, "Flags", "\x01\x00\x00\x00"sv, REG_DWORD);
  RegCloseKey(key);
  RegCloseKey(Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Other"));
}

// Everything below `path` as the narrow calls see it, one line per key and value.
std::vector<std::string> NarrowDump(HKEY root, const std::string& path) {
  std::vector<std::string> lines{"[" + path + "]"};
  HKEY key = Create(root, path.c_str());
  for (const auto& name : ValueNames(key)) {
    const Filled read = Query(key, name.c_str());
    lines.push_back(name + "=" + std::to_string(read.type) + ":");
    lines.back() += read.buffer;
  }
  for (const auto& name : Subkeys(key)) {
    const auto below = NarrowDump(root, std::string(path).append("\\").append(name));
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
  EXPECT_TRUE(name98.narrowText && name98.data.size() == 4);
  EXPECT_TRUE(!nameXp.narrowText && nameXp.data.size() == 8);

  // A release changed after the values were written still reads them in the right width.
  win98->facts().release = Release::WinXP;
  sim::ActivateMachine(win98);
  WCHAR text[8] = {};
  DWORD size = sizeof text;
  HKEY key = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  EXPECT_EQ(RegQueryValueExW(key, u"Name", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(std::u16string(text), u"Caf\u00E9");
  RegCloseKey(key);
  sim::ActivateMachine(nullptr);
}

TEST(RegistryStoreDirect, SnapshotsCompareRestoreAndCloneWholeRegistries) {
  auto machine = hostkit_test::UseFreshMachine(Release::Win2000);
  WriteSampleTree();
  const sim::RegistrySnapshot before = machine->registry().snapshot();
  HKEY held = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  Set(held, "Name", "changed");
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Other");
  EXPECT_NE(machine->registry().snapshot(), before);
  machine->registry().restore(before);
  EXPECT_EQ(machine->registry().snapshot(), before);
  EXPECT_EQ(Query(held, "Name").status, ERROR_KEY_DELETED);
  RegCloseKey(held);

  auto clone = hostkit_test::UseFreshMachine(Release::Win2000);
  clone->registry().restore(before);
  EXPECT_EQ(clone->registry().snapshot(), before);
  EXPECT_THAT(NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE"),
              ElementsAre("[SOFTWARE]", "[SOFTWARE\\Vendor]", "[SOFTWARE\\Vendor\\Other]",
                          "[SOFTWARE\\Vendor\\Product]", "Name=1:Caf\xE9", "List=7:a\0b\0\0"s,
                          "Flags=4:\x01\0\0\0"s));
  sim::ActivateMachine(nullptr);
}

TEST(RegistryStoreDirect, CurrentUserAndCurrentConfigResolvePerFamilyAndSetting) {
  for (const auto& [release, user, config] :
       {std::tuple{Release::Win95, ".DEFAULT", "Config\\0001"},
        std::tuple{Release::WinNT4, "S-1-5-21-0-0-0-1000",
                   "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current"}}) {
    auto machine = hostkit_test::UseFreshMachine(release);
    RegCloseKey(Create(HKEY_CURRENT_USER, "Software\\Mine"));
    RegCloseKey(Create(HKEY_CURRENT_CONFIG, "Display"));
    EXPECT_THAT(NarrowDump(HKEY_USERS, user),
                testing::Contains(std::string("[") + user + "\\Software\\Mine]"));
    EXPECT_THAT(NarrowDump(HKEY_LOCAL_MACHINE, config),
                testing::Contains(std::string("[") + config + "\\Display]"));

    machine->registry().setCurrentUserKey(u"S-1-5-21-7-7-7-1001");
    EXPECT_EQ(machine->registry().currentUserKey(), u"S-1-5-21-7-7-7-1001");
    RegCloseKey(Create(HKEY_CURRENT_USER, "Software\\Other"));
    EXPECT_THAT(Subkeys(HKEY_USERS), ElementsAre(user, "S-1-5-21-7-7-7-1001"));
  }
  sim::ActivateMachine(nullptr);
}

}  // namespace
}  // namespace Hostkit::platform
