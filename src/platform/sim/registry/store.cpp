// The simulated registry's handle table and the family rules of the registry API.
#include "platform/sim/registry/store.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

#include "hostkit/sim/machine.h"
#include "platform/sim/registry/tree.h"
#include "platform/sim/text/codec.h"

namespace Hostkit::sim {

namespace {

// Generic rights a caller may ask for, mapped to the key rights they stand for.
constexpr REGSAM kGenericRead = 0x80000000;
constexpr REGSAM kGenericWrite = 0x40000000;
constexpr REGSAM kGenericExecute = 0x20000000;
constexpr REGSAM kGenericAll = 0x10000000;
constexpr REGSAM kMaximumAllowed = 0x02000000;

constexpr std::uintptr_t kFirstHandle = 0x1000;
constexpr std::uintptr_t kHandleStep = 4;

REGSAM GrantedRights(REGSAM requested) {
  REGSAM granted = requested;
  if ((requested & (kGenericRead | kGenericExecute)) != 0) {
    granted |= KEY_READ;
  }
  if ((requested & kGenericWrite) != 0) {
    granted |= KEY_WRITE;
  }
  if ((requested & (kGenericAll | kMaximumAllowed)) != 0) {
    granted |= KEY_ALL_ACCESS;
  }
  return granted;
}

std::u16string DefaultUserKey(bool win9x) { return win9x ? u".DEFAULT" : u"S-1-5-21-0-0-0-1000"; }

std::u16string UnitsFromLe(const std::vector<BYTE>& bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
  }
  return units;
}

std::vector<BYTE> LeFromUnits(std::u16string_view units) {
  std::vector<BYTE> bytes;
  bytes.reserve(units.size() * 2);
  for (char16_t unit : units) {
    bytes.push_back(static_cast<BYTE>(unit & 0xFF));
    bytes.push_back(static_cast<BYTE>(unit >> 8));
  }
  return bytes;
}

}  // namespace

RegistryStore::RegistryStore(Machine& owner)
    : owner_(owner),
      localMachine_(MakeRoot()),
      users_(MakeRoot()),
      dynData_(MakeRoot()),
      performanceData_(MakeRoot(true)),
      nextHandle_(kFirstHandle) {}

RegistryStore::~RegistryStore() = default;

bool RegistryStore::isWin9x() const { return owner_.isWin9x(); }

std::shared_ptr<RegistryNode> RegistryStore::viewTarget(HKEY key) {
  std::shared_ptr<RegistryNode> node;
  std::u16string path;
  if (key == HKEY_CLASSES_ROOT) {
    node = localMachine_;
    path = u"SOFTWARE\\Classes";
  } else if (key == HKEY_CURRENT_USER) {
    node = users_;
    path = currentUserKey_.empty() ? DefaultUserKey(isWin9x()) : currentUserKey_;
  } else {
    node = localMachine_;
    path = isWin9x() ? u"Config\\0001" : u"SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current";
  }
  for (const auto part : SplitKnownPath(path)) {
    node = FindOrAddChild(*node, part);
  }
  return node;
}

LONG RegistryStore::resolve(HKEY key, CharWidth width, OpenKey& out) {
  // Windows 9x's advapi32 carries only stubs for the wide registry calls.
  if (width == CharWidth::Wide && isWin9x()) {
    return ERROR_CALL_NOT_IMPLEMENTED;
  }
  out = OpenKey{nullptr, KEY_ALL_ACCESS, true};
  if (key == HKEY_LOCAL_MACHINE) {
    out.node = localMachine_;
  } else if (key == HKEY_USERS) {
    out.node = users_;
  } else if (key == HKEY_DYN_DATA) {
    out.node = isWin9x() ? dynData_ : nullptr;
  } else if (key == HKEY_PERFORMANCE_DATA) {
    out.node = isWin9x() ? nullptr : performanceData_;
  } else if (key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER || key == HKEY_CURRENT_CONFIG) {
    out.node = viewTarget(key);
  } else {
    const auto it = handles_.find(reinterpret_cast<std::uintptr_t>(key));
    if (it == handles_.end()) {
      return ERROR_INVALID_HANDLE;
    }
    out = it->second;
  }
  if (!out.node) {
    return ERROR_INVALID_HANDLE;
  }
  return out.node->deleted ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

LONG RegistryStore::resolveWithRights(HKEY key, CharWidth width, REGSAM needed, OpenKey& out) {
  const LONG result = resolve(key, width, out);
  if (result != ERROR_SUCCESS) {
    return result;
  }
  // The 9x family has no registry security: access masks are accepted and ignored.
  if (!isWin9x() && (out.access & needed) != needed) {
    return ERROR_ACCESS_DENIED;
  }
  return ERROR_SUCCESS;
}

LONG RegistryStore::resolvePath(HKEY key, std::u16string_view subKey, CharWidth width,
                                OpenKey& base, std::vector<std::u16string_view>& parts) {
  if (const LONG status = resolve(key, width, base); status != ERROR_SUCCESS) {
    return status;
  }
  auto split = SplitPath(subKey);
  if (!split) {
    return ERROR_BAD_PATHNAME;
  }
  parts = std::move(*split);
  return ERROR_SUCCESS;
}

HKEY RegistryStore::addHandle(std::shared_ptr<RegistryNode> node, REGSAM access) {
  const std::uintptr_t value = nextHandle_;
  nextHandle_ += kHandleStep;
  handles_.emplace(value, OpenKey{std::move(node), access, false});
  return reinterpret_cast<HKEY>(value);
}

LONG RegistryStore::openKey(HKEY key, std::u16string_view subKey, REGSAM access, CharWidth width,
                            HKEY* result) {
  std::lock_guard lock(mutex_);
  *result = nullptr;
  OpenKey base;
  std::vector<std::u16string_view> parts;
  if (const LONG status = resolvePath(key, subKey, width, base, parts); status != ERROR_SUCCESS) {
    return status;
  }
  // A predefined key opened with no subkey answers itself, as Windows documents.
  if (parts.empty() && base.predefined) {
    *result = key;
    return ERROR_SUCCESS;
  }
  auto node = FindPath(base.node, parts);
  if (!node) {
    return ERROR_FILE_NOT_FOUND;
  }
  *result = addHandle(std::move(node), GrantedRights(access));
  return ERROR_SUCCESS;
}

// Creating a subkey is checked against the key's security, not against the rights of the
// handle it is created through (as on Windows and Wine); the sim has no key security, so only
// the read-only performance root refuses.
LONG RegistryStore::createKey(HKEY key, std::u16string_view subKey, REGSAM access, CharWidth width,
                              HKEY* result, DWORD* disposition) {
  std::lock_guard lock(mutex_);
  *result = nullptr;
  // Windows 9x creates a key below a leading separator that opening refuses.
  if (isWin9x() && subKey.starts_with(u'\\')) {
    subKey.remove_prefix(1);
  }
  OpenKey base;
  std::vector<std::u16string_view> parts;
  if (const LONG status = resolvePath(key, subKey, width, base, parts); status != ERROR_SUCCESS) {
    return status;
  }
  auto node = base.node;
  bool created = false;
  for (const auto part : parts) {
    auto child = FindChild(*node, part);
    if (!child) {
      if (node->readOnly) {
        return ERROR_ACCESS_DENIED;
      }
      child = AddChild(*node, part);
      created = true;
    }
    node = std::move(child);
  }
  if (disposition != nullptr) {
    *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  }
  *result = addHandle(std::move(node), GrantedRights(access));
  return ERROR_SUCCESS;
}

LONG RegistryStore::closeKey(HKEY key) {
  std::lock_guard lock(mutex_);
  if (key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE ||
      key == HKEY_USERS || key == HKEY_PERFORMANCE_DATA || key == HKEY_CURRENT_CONFIG ||
      key == HKEY_DYN_DATA) {
    return ERROR_SUCCESS;
  }
  return handles_.erase(reinterpret_cast<std::uintptr_t>(key)) != 0 ? ERROR_SUCCESS
                                                                    : ERROR_INVALID_HANDLE;
}

void RegistryStore::readValue(const ValueSnapshot& value, CharWidth width, ValueRead& out) const {
  out.type = value.type;
  const bool wantNarrow = width == CharWidth::Narrow;
  if (!IsStringType(value.type) || value.narrowText == wantNarrow) {
    out.data = value.data;
  } else if (wantNarrow) {
    const std::string ansi = Utf16ToAnsi(owner_, UnitsFromLe(value.data));
    out.data.assign(ansi.begin(), ansi.end());
  } else {
    const std::string_view ansi(reinterpret_cast<const char*>(value.data.data()),
                                value.data.size());
    out.data = LeFromUnits(AnsiToUtf16(owner_, ansi));
  }
}

LONG RegistryStore::queryValue(HKEY key, std::u16string_view name, CharWidth width,
                               ValueRead& out) {
  std::lock_guard lock(mutex_);
  OpenKey target;
  if (const LONG status = resolveWithRights(key, width, KEY_QUERY_VALUE, target);
      status != ERROR_SUCCESS) {
    return status;
  }
  const ValueSnapshot* value = FindValue(*target.node, name);
  if (value == nullptr) {
    return ERROR_FILE_NOT_FOUND;
  }
  readValue(*value, width, out);
  return ERROR_SUCCESS;
}

LONG RegistryStore::setValue(HKEY key, std::u16string_view name, DWORD type, const BYTE* data,
                             DWORD size, CharWidth width) {
  std::lock_guard lock(mutex_);
  OpenKey target;
  if (const LONG status = resolveWithRights(key, width, KEY_SET_VALUE, target);
      status != ERROR_SUCCESS) {
    return status;
  }
  if (target.node->readOnly) {
    return ERROR_ACCESS_DENIED;
  }
  ValueSnapshot stored{std::u16string(name), type, std::vector<BYTE>(data, data + size), false};
  if (IsStringType(type) && width == CharWidth::Narrow) {
    if (isWin9x()) {
      stored.narrowText = true;
    } else {
      const std::string_view ansi(reinterpret_cast<const char*>(data), size);
      stored.data = LeFromUnits(AnsiToUtf16(owner_, ansi));
    }
  }
  if (ValueSnapshot* existing = FindValue(*target.node, name)) {
    // An existing value keeps its place and the case of its name.
    stored.name = std::move(existing->name);
    *existing = std::move(stored);
  } else {
    target.node->values.push_back(std::move(stored));
  }
  return ERROR_SUCCESS;
}

LONG RegistryStore::deleteValue(HKEY key, std::u16string_view name, CharWidth width) {
  std::lock_guard lock(mutex_);
  OpenKey target;
  if (const LONG status = resolveWithRights(key, width, KEY_SET_VALUE, target);
      status != ERROR_SUCCESS) {
    return status;
  }
  auto& values = target.node->values;
  const auto it = std::find_if(values.begin(), values.end(),
                               [&](const ValueSnapshot& v) { return SameName(v.name, name); });
  if (it == values.end()) {
    return ERROR_FILE_NOT_FOUND;
  }
  if (std::any_of(undeletableValues_.begin(), undeletableValues_.end(),
                  [&](const std::u16string& refused) { return SameName(refused, name); })) {
    return ERROR_ACCESS_DENIED;
  }
  values.erase(it);
  return ERROR_SUCCESS;
}

void RegistryStore::refuseDeletionOf(std::u16string valueName) {
  std::lock_guard lock(mutex_);
  undeletableValues_.push_back(std::move(valueName));
}

// Windows opens the subkey itself for deletion, so the rights of `key` do not matter. An empty
// path deletes the key `key` names, unless that is a root or a view onto one.
LONG RegistryStore::deleteKey(HKEY key, std::u16string_view subKey, CharWidth width) {
  std::lock_guard lock(mutex_);
  OpenKey base;
  std::vector<std::u16string_view> parts;
  if (const LONG status = resolvePath(key, subKey, width, base, parts); status != ERROR_SUCCESS) {
    return status;
  }
  auto node = FindPath(base.node, parts);
  if (!node) {
    return ERROR_FILE_NOT_FOUND;
  }
  if (node->parent == nullptr || (parts.empty() && base.predefined)) {
    return ERROR_ACCESS_DENIED;
  }
  // The NT family deletes only leaf keys; Windows 9x takes the whole subtree.
  if (!isWin9x() && !node->subkeys.empty()) {
    return ERROR_ACCESS_DENIED;
  }
  Detach(std::move(node));
  return ERROR_SUCCESS;
}

LONG RegistryStore::enumKey(HKEY key, DWORD index, CharWidth width, std::u16string& name) {
  std::lock_guard lock(mutex_);
  OpenKey target;
  if (const LONG status = resolveWithRights(key, width, KEY_ENUMERATE_SUB_KEYS, target);
      status != ERROR_SUCCESS) {
    return status;
  }
  if (index >= target.node->subkeys.size()) {
    return ERROR_NO_MORE_ITEMS;
  }
  name = target.node->subkeys[index]->name;
  return ERROR_SUCCESS;
}

LONG RegistryStore::enumValue(HKEY key, DWORD index, CharWidth width, std::u16string& name,
                              ValueRead& out) {
  std::lock_guard lock(mutex_);
  OpenKey target;
  if (const LONG status = resolveWithRights(key, width, KEY_QUERY_VALUE, target);
      status != ERROR_SUCCESS) {
    return status;
  }
  if (index >= target.node->values.size()) {
    return ERROR_NO_MORE_ITEMS;
  }
  const ValueSnapshot& value = target.node->values[index];
  name = value.name;
  readValue(value, width, out);
  return ERROR_SUCCESS;
}

void RegistryStore::setCurrentUserKey(std::u16string name) {
  std::lock_guard lock(mutex_);
  currentUserKey_ = std::move(name);
}

std::u16string RegistryStore::currentUserKey() const {
  std::lock_guard lock(mutex_);
  return currentUserKey_.empty() ? DefaultUserKey(isWin9x()) : currentUserKey_;
}

RegistrySnapshot RegistryStore::snapshot() const {
  std::lock_guard lock(mutex_);
  return {Copy(*localMachine_), Copy(*users_), Copy(*dynData_)};
}

void RegistryStore::restore(const RegistrySnapshot& snapshot) {
  std::lock_guard lock(mutex_);
  const std::pair<RegistryNode*, const KeySnapshot*> roots[] = {
      {localMachine_.get(), &snapshot.localMachine},
      {users_.get(), &snapshot.users},
      {dynData_.get(), &snapshot.dynData},
  };
  for (const auto& [root, copy] : roots) {
    DetachAllBelow(*root);
    root->values.clear();
    Fill(*root, *copy);
  }
}

RegistryCheckpoint RegistryStore::checkpoint() const {
  std::lock_guard lock(mutex_);
  RegistryCheckpoint checkpoint;
  std::vector<std::shared_ptr<RegistryNode>> pending{localMachine_, users_, dynData_};
  while (!pending.empty()) {
    std::shared_ptr<RegistryNode> node = std::move(pending.back());
    pending.pop_back();
    pending.insert(pending.end(), node->subkeys.begin(), node->subkeys.end());
    checkpoint.keys.push_back({node, node->parent, node->values, node->subkeys, node->deleted});
  }
  return checkpoint;
}

void RegistryStore::rollBack(const RegistryCheckpoint& checkpoint) {
  std::lock_guard lock(mutex_);
  std::unordered_set<const RegistryNode*> kept;
  for (const auto& key : checkpoint.keys) {
    kept.insert(key.node.get());
  }
  // Keys made since the checkpoint answer ERROR_KEY_DELETED to the handles opened on them.
  std::vector<RegistryNode*> pending{localMachine_.get(), users_.get(), dynData_.get()};
  while (!pending.empty()) {
    RegistryNode* node = pending.back();
    pending.pop_back();
    for (const auto& child : node->subkeys) {
      if (kept.count(child.get()) != 0) {
        pending.push_back(child.get());
      } else {
        MarkDeleted(*child);
      }
    }
  }
  for (const auto& key : checkpoint.keys) {
    key.node->parent = key.parent;
    key.node->values = key.values;
    key.node->subkeys = key.subkeys;
    key.node->deleted = key.deleted;
  }
}

}  // namespace Hostkit::sim
