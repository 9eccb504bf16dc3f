// The simulated registry's tree of keys: the nodes, their case-blind names and the edits of
// the tree that the store builds its API on.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/registry/store.h"

namespace Hostkit::sim {

// One key. Subkeys are kept sorted by their upper-cased names, which is the order in which
// Windows enumerates them; values stay in creation order.
struct RegistryNode {
  std::u16string name;
  std::u16string folded;
  RegistryNode* parent = nullptr;
  std::vector<ValueSnapshot> values;
  std::vector<std::shared_ptr<RegistryNode>> subkeys;
  bool deleted = false;
  bool readOnly = false;
};

// Whether two key or value names are the same, compared as Windows does: upper-cased unit by
// unit.
bool SameName(std::u16string_view a, std::u16string_view b);

// The components of a relative key path. A trailing (or doubled) separator adds no component;
// a leading one makes the path invalid (nullopt).
std::optional<std::vector<std::u16string_view>> SplitPath(std::u16string_view path);
// The components of a path known to be valid.
std::vector<std::u16string_view> SplitKnownPath(std::u16string_view path);

// The subkey of `node` named `name`; null when there is none.
std::shared_ptr<RegistryNode> FindChild(RegistryNode& node, std::u16string_view name);
// The key `parts` names below `node`; null when one of them does not exist.
std::shared_ptr<RegistryNode> FindPath(std::shared_ptr<RegistryNode> node,
                                       const std::vector<std::u16string_view>& parts);
// A new subkey of `node`, in its place in the enumeration order.
std::shared_ptr<RegistryNode> AddChild(RegistryNode& node, std::u16string_view name);
std::shared_ptr<RegistryNode> FindOrAddChild(RegistryNode& node, std::u16string_view name);
// The value of `node` named `name`; null when there is none.
ValueSnapshot* FindValue(RegistryNode& node, std::u16string_view name);

// A root key with nothing below it.
std::shared_ptr<RegistryNode> MakeRoot(bool readOnly = false);
// Marks `node` and everything below it deleted.
void MarkDeleted(RegistryNode& node);
// Unlinks `node` from its parent and marks it and everything below it deleted, so that handles
// still open on any of them answer ERROR_KEY_DELETED. Taken by value: the parent's reference
// may be the last one.
void Detach(std::shared_ptr<RegistryNode> node);
// Detaches every subkey of `root`.
void DetachAllBelow(RegistryNode& root);

// A copy of `node` and everything below it.
KeySnapshot Copy(const RegistryNode& node);
// Fills the (emptied) `node` from `snapshot`; subkeys are re-sorted by the store's own order.
void Fill(RegistryNode& node, const KeySnapshot& snapshot);

}  // namespace Hostkit::sim
