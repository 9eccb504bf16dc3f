// hostkit favorites: the current user's Internet Explorer Favorites through the library's
// ConfigureIE, listed and added on the loaded machine.
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/configure_ie.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

int RunFavoritesList(std::ostream& out, std::ostream& /*err*/) {
  std::vector<Hostkit::ConfigureIE::FavoriteLink> links;
  Hostkit::ConfigureIE().GetFavorites(links);
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const auto& link : links) {
    list.push_back({{"name", Narrow(link.name)}, {"url", Narrow(link.url)}});
  }
  if (JsonOutput()) {
    PrintJson(list, out);
    return kDone;
  }
  for (const auto& entry : list) {
    out << entry["name"].get<std::string>() << "\t" << entry["url"].get<std::string>() << "\n";
  }
  if (list.empty()) {
    out << "no favorites\n";
  }
  return kDone;
}

int RunFavoritesAdd(const std::string& name, const std::string& url, std::ostream& out,
                    std::ostream& err) {
  Hostkit::ConfigureIE::FavoriteLink link;
  link.name = Wide(name);
  link.url = Wide(url);
  return Done(Hostkit::ConfigureIE().AddFavorite(link), "add the favorite " + name,
              "the Favorites folder is missing or the shortcut cannot be written", out, err);
}

}  // namespace hostkit_tool
