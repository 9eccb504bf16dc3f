// hostkit favorites: the current user's Internet Explorer Favorites through the library's
// ConfigureIE, listed and added on the loaded machine.
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/configure_ie.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

int RunFavoritesList(std::ostream& out, std::ostream& err) {
  std::vector<Hostkit::ConfigureIE::FavoriteLink> links;
  const int count = Hostkit::ConfigureIE().GetFavorites(links);
  for (const auto& link : links) {
    std::string name;
    std::string url;
    Hostkit::ConvertUnicodeToANSI(link.name, name);
    Hostkit::ConvertUnicodeToANSI(link.url, url);
    out << name << "\t" << url << "\n";
  }
  if (count == 0) {
    err << "hostkit: no favorites found\n";
    return 1;
  }
  return 0;
}

int RunFavoritesAdd(const std::string& name, const std::string& url, std::ostream& out,
                    std::ostream& err) {
  Hostkit::ConfigureIE::FavoriteLink link;
  if (!Hostkit::ConvertANSIToUnicode(name, link.name) ||
      !Hostkit::ConvertANSIToUnicode(url, link.url) || !Hostkit::ConfigureIE().AddFavorite(link)) {
    err << "hostkit: could not add the favorite " << name << "\n";
    return 1;
  }
  out << "added " << name << "\n";
  return 0;
}

}  // namespace hostkit_tool
