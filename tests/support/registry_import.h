// Importing .reg text into the registry the tests run on and putting it back afterwards.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/strings.h"
#include "platform/registry.h"
#include "support/saved_key.h"

namespace hostkit_test {

// Saves every key the operations name (restored when `saved` is destroyed, the last first) and
// applies them. A key whose parent is volatile is created volatile: Windows refuses anything else
// below the current hardware profile, and Wine keeps some keys of its own volatile too
// ("...\NetworkCards" once its desktop has started).
inline bool ApplyWithUndo(const std::vector<Hostkit::regfile::Operation>& operations,
                          const std::string& name, std::vector<std::unique_ptr<SavedKey>>& saved,
                          std::string& error) {
  constexpr LONG kChildMustBeVolatile = 1021;
  std::set<std::pair<HKEY, std::string>> seen;
  for (const auto& operation : operations) {
    std::string path;
    Hostkit::ConvertUnicodeToANSI(operation.path, path);
    if (!seen.insert({operation.root, path}).second) {
      continue;
    }
    saved.push_back(std::make_unique<SavedKey>(operation.root, path));
    HKEY key = nullptr;
    if (Hostkit::platform::RegCreateKeyExA(operation.root, path.c_str(), 0, nullptr, 0,
                                           KEY_ALL_ACCESS, nullptr, &key,
                                           nullptr) == kChildMustBeVolatile) {
      Hostkit::platform::RegCreateKeyExA(operation.root, path.c_str(), 0, nullptr,
                                         REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                                         nullptr);
    }
    if (key != nullptr) {
      Hostkit::platform::RegCloseKey(key);
    }
  }
  return Hostkit::regfile::ApplyRegFile(operations, name, error);
}

// Restores the saved keys, the last saved first.
inline void UndoInReverse(std::vector<std::unique_ptr<SavedKey>>& saved) {
  while (!saved.empty()) {
    saved.pop_back();
  }
}

}  // namespace hostkit_test
