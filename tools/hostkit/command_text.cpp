// Text helpers the commands share.
#include <ostream>
#include <string>

#include "commands.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

std::string Narrow(const Hostkit::wstring& text) {
  std::string narrow;
  Hostkit::ConvertUnicodeToANSI(text, narrow);
  return narrow;
}

Hostkit::wstring Wide(const std::string& text) {
  Hostkit::wstring wide;
  Hostkit::ConvertANSIToUnicode(text, wide);
  return wide;
}

int Done(bool ok, const std::string& what, std::ostream& out, std::ostream& err) {
  if (!ok) {
    err << "hostkit: could not " << what << "\n";
    return 1;
  }
  out << what << ": done\n";
  return 0;
}

}  // namespace hostkit_tool
