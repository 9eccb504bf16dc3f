// The simulated machine's registry: a tree of keys and typed values with the semantics of the
// Windows registry API, and the table of the key handles open on it.
//
// The registry calls of the seam (src/platform/sim/registry/calls.cpp) convert names at their edge
// and leave the Win32 buffer protocols to themselves; this store does everything else:
// predefined roots and the views onto them, case-insensitive names, handle lifetimes and access
// rights, and the differences between the two families. Every member is safe to call from
// several threads at once.
//
// Roots. HKEY_LOCAL_MACHINE and HKEY_USERS on both families; HKEY_DYN_DATA on Windows 9x and
// HKEY_PERFORMANCE_DATA (empty, read-only) on the NT family, each answering ERROR_INVALID_HANDLE
// on the other family. The other predefined handles are views onto keys of these roots,
// created on first use as Windows always has them:
//   HKEY_CLASSES_ROOT    HKLM\SOFTWARE\Classes
//   HKEY_CURRENT_USER    HKU\<current user key>: ".DEFAULT" on Windows 9x (the machine's
//                        single user profile) and "S-1-5-21-0-0-0-1000" on the NT family
//                        (a made-up local account), unless set with setCurrentUserKey
//   HKEY_CURRENT_CONFIG  HKLM\Config\0001 on Windows 9x,
//                        HKLM\SYSTEM\CurrentControlSet\Hardware Profiles\Current on NT
//
// Text data. String-type data (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ) is kept as the family
// stores it: UTF-16 on the NT family, where the narrow calls convert through the ANSI code
// page; on Windows 9x the exact bytes given to the narrow calls, and the wide calls answer
// ERROR_CALL_NOT_IMPLEMENTED. Each value remembers which of the two it holds, so a machine
// whose release changes after values were written still reads them back correctly.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit::sim {

class Machine;
struct RegistryNode;

// Whether a call came through the narrow (...A) or the wide (...W) form of the registry API:
// it decides how string data is converted and whether Windows 9x answers at all.
enum class CharWidth { Narrow, Wide };

// REG_SZ, REG_EXPAND_SZ and REG_MULTI_SZ: the types whose data the narrow calls convert.
inline bool IsStringType(DWORD type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// A value's type and data as one call form sees them (string data already converted).
struct ValueRead {
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
};

// A copy of a value as stored.
struct ValueSnapshot {
  std::u16string name;
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
  // String-type data in the ANSI code page (written by a narrow call on Windows 9x) rather
  // than UTF-16 little-endian.
  bool narrowText = false;
  bool operator==(const ValueSnapshot&) const = default;
};

// A copy of a key and everything below it.
struct KeySnapshot {
  std::u16string name;                // as stored; empty for a root
  std::vector<ValueSnapshot> values;  // in creation order
  std::vector<KeySnapshot> subkeys;   // in enumeration order
  bool operator==(const KeySnapshot&) const = default;
};

// A copy of the whole registry (the views are part of these roots).
struct RegistrySnapshot {
  KeySnapshot localMachine;
  KeySnapshot users;
  KeySnapshot dynData;
  bool operator==(const RegistrySnapshot&) const = default;
};

// Every key object of the registry with its contents at one moment, so that the registry can
// be put back in place: the same objects, so that handles opened before stay valid.
struct RegistryCheckpoint {
  struct Key {
    std::shared_ptr<RegistryNode> node;
    RegistryNode* parent = nullptr;
    std::vector<ValueSnapshot> values;
    std::vector<std::shared_ptr<RegistryNode>> subkeys;
    bool deleted = false;
  };
  std::vector<Key> keys;
};

class RegistryStore {
 public:
  // The store asks `owner` for its family and ANSI code page at each call, so both may change
  // after construction.
  explicit RegistryStore(Machine& owner);
  ~RegistryStore();
  RegistryStore(const RegistryStore&) = delete;
  RegistryStore& operator=(const RegistryStore&) = delete;

  // The registry calls. Names are UTF-16 (converted by the caller; a null name is passed as
  // empty), paths are relative to `key` with components joined by "\". Results are Win32
  // error codes.
  LONG openKey(HKEY key, std::u16string_view subKey, REGSAM access, CharWidth width, HKEY* result);
  LONG createKey(HKEY key, std::u16string_view subKey, REGSAM access, CharWidth width, HKEY* result,
                 DWORD* disposition);
  LONG closeKey(HKEY key);
  LONG queryValue(HKEY key, std::u16string_view name, CharWidth width, ValueRead& out);
  LONG setValue(HKEY key, std::u16string_view name, DWORD type, const BYTE* data, DWORD size,
                CharWidth width);
  LONG deleteValue(HKEY key, std::u16string_view name, CharWidth width);
  LONG deleteKey(HKEY key, std::u16string_view subKey, CharWidth width);
  LONG enumKey(HKEY key, DWORD index, CharWidth width, std::u16string& name);
  LONG enumValue(HKEY key, DWORD index, CharWidth width, std::u16string& name, ValueRead& out);

  // The key of HKEY_USERS that HKEY_CURRENT_USER stands for; empty: the family's default.
  void setCurrentUserKey(std::u16string name);
  std::u16string currentUserKey() const;

  // From now on RegDeleteValue of a value of this name (in any key) answers
  // ERROR_ACCESS_DENIED while writes still succeed: a deletion the registry refuses, for tests
  // of how callers take one.
  void refuseDeletionOf(std::u16string valueName);

  // A deep copy of the registry, for saving and for comparing a registry before and after.
  RegistrySnapshot snapshot() const;
  // Replaces the whole registry by `snapshot`. Handles open on the old tree answer
  // ERROR_KEY_DELETED from then on. With snapshot() this also clones one machine's registry
  // into another.
  void restore(const RegistrySnapshot& snapshot);

  // The registry's keys as they are now, and the registry put back to them: keys made since
  // are deleted, keys deleted since come back as the objects they were, so that every handle
  // opened before the checkpoint reaches its key again.
  RegistryCheckpoint checkpoint() const;
  void rollBack(const RegistryCheckpoint& checkpoint);

 private:
  // A key reached through a handle: the key and the rights the handle grants.
  struct OpenKey {
    std::shared_ptr<RegistryNode> node;
    REGSAM access = 0;
    bool predefined = false;
  };

  bool isWin9x() const;
  LONG resolve(HKEY key, CharWidth width, OpenKey& out);
  LONG resolveWithRights(HKEY key, CharWidth width, REGSAM needed, OpenKey& out);
  // resolve, and the components of `subKey` below the key (ERROR_BAD_PATHNAME when invalid).
  LONG resolvePath(HKEY key, std::u16string_view subKey, CharWidth width, OpenKey& base,
                   std::vector<std::u16string_view>& parts);
  std::shared_ptr<RegistryNode> viewTarget(HKEY key);
  HKEY addHandle(std::shared_ptr<RegistryNode> node, REGSAM access);
  void readValue(const ValueSnapshot& value, CharWidth width, ValueRead& out) const;

  Machine& owner_;
  mutable std::mutex mutex_;
  std::vector<std::u16string> undeletableValues_;
  std::shared_ptr<RegistryNode> localMachine_;
  std::shared_ptr<RegistryNode> users_;
  std::shared_ptr<RegistryNode> dynData_;
  std::shared_ptr<RegistryNode> performanceData_;
  std::u16string currentUserKey_;
  std::unordered_map<std::uintptr_t, OpenKey> handles_;
  std::uintptr_t nextHandle_;
};

}  // namespace Hostkit::sim
