// The simulated registry's tree of keys.
#include "platform/sim/registry/tree.h"

#include <algorithm>

namespace Hostkit::sim {

namespace {

constexpr char16_t kSeparator = u'\\';

// Windows compares names after upper-casing each UTF-16 unit; the simulation folds ASCII and
// the Latin-1 letters.
char16_t UpperUnit(char16_t unit) {
  if ((unit >= u'a' && unit <= u'z') || (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7)) {
    return static_cast<char16_t>(unit - 0x20);
  }
  if (unit == 0xFF) {
    return 0x178;
  }
  return unit;
}

std::u16string Fold(std::u16string_view name) {
  std::u16string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), UpperUnit);
  return folded;
}

auto SubkeyPosition(RegistryNode& node, const std::u16string& folded) {
  return std::lower_bound(node.subkeys.begin(), node.subkeys.end(), folded,
                          [](const std::shared_ptr<RegistryNode>& child,
                             const std::u16string& key) { return child->folded < key; });
}

}  // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return UpperUnit(x) == UpperUnit(y); });
}

// The components of a relative key path. A trailing (or doubled) separator adds no component;
// a leading one makes the path invalid (nullopt).
std::optional<std::vector<std::u16string_view>> SplitPath(std::u16string_view path) {
  if (!path.empty() && path.front() == kSeparator) {
    return std::nullopt;
  }
  std::vector<std::u16string_view> parts;
  while (!path.empty()) {
    const auto end = path.find(kSeparator);
    const auto part = path.substr(0, end);
    if (!part.empty()) {
      parts.push_back(part);
    }
    path = end == std::u16string_view::npos ? std::u16string_view() : path.substr(end + 1);
  }
  return parts;
}

std::vector<std::u16string_view> SplitKnownPath(std::u16string_view path) {
  return SplitPath(path).value_or(std::vector<std::u16string_view>{});
}

// The name is folded into a buffer kept for the thread, so that a lookup allocates nothing.
std::shared_ptr<RegistryNode> FindChild(RegistryNode& node, std::u16string_view name) {
  thread_local std::u16string folded;
  folded.assign(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), UpperUnit);
  const auto it = SubkeyPosition(node, folded);
  return it != node.subkeys.end() && (*it)->folded == folded ? *it : nullptr;
}

std::shared_ptr<RegistryNode> FindPath(std::shared_ptr<RegistryNode> node,
                                       const std::vector<std::u16string_view>& parts) {
  for (const auto part : parts) {
    if (!node) {
      break;
    }
    node = FindChild(*node, part);
  }
  return node;
}

std::shared_ptr<RegistryNode> AddChild(RegistryNode& node, std::u16string_view name) {
  auto child = std::make_shared<RegistryNode>();
  child->name = std::u16string(name);
  child->folded = Fold(name);
  child->parent = &node;
  node.subkeys.insert(SubkeyPosition(node, child->folded), child);
  return child;
}

std::shared_ptr<RegistryNode> FindOrAddChild(RegistryNode& node, std::u16string_view name) {
  auto child = FindChild(node, name);
  return child ? child : AddChild(node, name);
}

ValueSnapshot* FindValue(RegistryNode& node, std::u16string_view name) {
  const auto it = std::find_if(node.values.begin(), node.values.end(),
                               [&](const ValueSnapshot& v) { return SameName(v.name, name); });
  return it != node.values.end() ? &*it : nullptr;
}

std::shared_ptr<RegistryNode> MakeRoot(bool readOnly) {
  auto root = std::make_shared<RegistryNode>();
  root->readOnly = readOnly;
  return root;
}

// Unlinks `node` from its parent and marks it and everything below it deleted, so that handles
// still open on any of them answer ERROR_KEY_DELETED. Taken by value: the parent's reference
// may be the last one.
void MarkDeleted(RegistryNode& node) {
  node.deleted = true;
  for (const auto& child : node.subkeys) {
    MarkDeleted(*child);
  }
}

void Detach(std::shared_ptr<RegistryNode> node) {  // NOLINT(performance-unnecessary-value-param)
  if (node->parent != nullptr) {
    auto& siblings = node->parent->subkeys;
    siblings.erase(std::find(siblings.begin(), siblings.end(), node));
    node->parent = nullptr;
  }
  MarkDeleted(*node);
}

void DetachAllBelow(RegistryNode& root) {
  while (!root.subkeys.empty()) {
    Detach(root.subkeys.back());
  }
}

KeySnapshot Copy(const RegistryNode& node) {
  KeySnapshot copy{node.name, node.values, {}};
  copy.subkeys.reserve(node.subkeys.size());
  for (const auto& child : node.subkeys) {
    copy.subkeys.push_back(Copy(*child));
  }
  return copy;
}

// Fills the (emptied) `node` from `snapshot`; subkeys are re-sorted by the store's own order.
void Fill(RegistryNode& node, const KeySnapshot& snapshot) {
  node.values = snapshot.values;
  for (const auto& child : snapshot.subkeys) {
    Fill(*FindOrAddChild(node, child.name), child);
  }
}

}  // namespace Hostkit::sim
