// Network fixtures under Wine: the release's registry file imported into Wine's registry, each
// key it names saved beforehand and put back afterwards.
#include "foundation/reg_file.h"
#include "support/network_fixture.h"
#include "support/registry_import.h"

namespace hostkit_test {

struct NetworkFixture::Undo {
  std::vector<std::unique_ptr<SavedKey>> keys;
  ~Undo() { UndoInReverse(keys); }
};

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
  return ApplyWithUndo(operations, name, undo_->keys, error);
}

}  // namespace hostkit_test
