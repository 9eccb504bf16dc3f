// The Internet shortcut (.URL) reader: the input is a shortcut file in the Favorites folder.
// Whatever it holds, the favorites read without failing hard, and an address read from it,
// written into a new shortcut, reads back the same.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "fuzz_machine.h"
#include "hostkit/configure_ie.h"

namespace {

using Hostkit::ConfigureIE;

// The host file of the Favorites folder's shortcut `name`, the folder made by a first
// shortcut written through the library.
std::filesystem::path HostFavorite(const std::string& name) {
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(hostkit_fuzz::DriveFolder() / "c")) {
    if (entry.path().filename() == "Seed.URL") {
      return entry.path().parent_path() / name;
    }
  }
  return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  hostkit_fuzz::FreshMachine(Hostkit::sim::Release::WinXP);
  ConfigureIE ie;
  if (!ie.AddFavorite({HK_WIDE("http://seed/"), HK_WIDE("Seed")})) {
    hostkit_fuzz::Broken("the Favorites folder cannot be written");
  }
  const auto file = HostFavorite("Fuzz.url");
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  std::vector<ConfigureIE::FavoriteLink> links;
  const int count = ie.GetFavorites(links);
  if (count != static_cast<int>(links.size()) || count > 2) {
    hostkit_fuzz::Broken("the favorites count differs from the links read");
  }
  for (const auto& link : links) {
    if (link.name != HK_WIDE("Fuzz") || link.url.empty()) {
      continue;
    }
    std::filesystem::remove(file);
    std::vector<ConfigureIE::FavoriteLink> again;
    if (ie.AddFavorite({link.url, HK_WIDE("Copy")})) {
      ie.GetFavorites(again);
      const bool same = std::any_of(again.begin(), again.end(), [&](const auto& copy) {
        return copy.name == HK_WIDE("Copy") && copy.url == link.url;
      });
      if (!same) {
        hostkit_fuzz::Broken("an address read from a shortcut does not read back");
      }
    }
  }
  Hostkit::sim::ActivateMachine(nullptr);
  return 0;
}
