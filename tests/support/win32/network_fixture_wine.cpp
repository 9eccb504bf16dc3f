// Network fixtures under Wine: the release's registry file imported into Wine's registry, each
// key it names saved beforehand and put back afterwards, the deepest first.
#include <algorithm>
#include <set>
#include <utility>

#include "foundation/reg_file.h"
#include "hostkit/strings.h"
#include "support/network_fixture.h"
#include "support/saved_key.h"

namespace hostkit_test {

struct NetworkFixture::Undo {
  std::vector<std::unique_ptr<SavedKey>> keys;  // in the order they were saved

  ~Undo() {
    while (!keys.empty()) {
      keys.pop_back();
    }
  }
};

namespace {

// The current hardware profile is a volatile key on the NT family, so keys below it must be
// volatile too (Wine refuses others with ERROR_CHILD_MUST_BE_VOLATILE).
void CreateVolatileKey(const std::string& path) {
  HKEY key = nullptr;
  if (Hostkit::platform::RegCreateKeyExA(HKEY_CURRENT_CONFIG, path.c_str(), 0, nullptr,
                                         REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                                         nullptr) == ERROR_SUCCESS) {
    Hostkit::platform::RegCloseKey(key);
  }
}

}  // namespace

NetworkFixture::NetworkFixture() : undo_(std::make_unique<Undo>()) {}
NetworkFixture::~NetworkFixture() = default;

bool NetworkFixture::Load(Release release, std::string& error) {
  const std::string name = "network/" + ReleaseTag(release) + ".reg";
  const std::string bytes = ReadFixtureFile(name);
  std::vector<Hostkit::regfile::Operation> operations;
  if (bytes.empty() || !Hostkit::regfile::ParseRegFile(bytes, name, operations, error)) {
    error = error.empty() ? "cannot read " + name : error;
    return false;
  }
  std::set<std::pair<HKEY, std::string>> saved;
  for (const auto& operation : operations) {
    std::string path;
    Hostkit::ConvertUnicodeToANSI(operation.path, path);
    if (saved.insert({operation.root, path}).second) {
      undo_->keys.push_back(std::make_unique<SavedKey>(operation.root, path));
      if (operation.root == HKEY_CURRENT_CONFIG) {
        CreateVolatileKey(path);
      }
    }
  }
  return Hostkit::regfile::ApplyRegFile(operations, name, error);
}

}  // namespace hostkit_test
