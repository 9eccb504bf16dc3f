// Environment variables of the simulated machine.
#include "platform/environment.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "hostkit/sim/machine.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

// `source` with each %NAME% of a variable of `environment` replaced by its value. A "%" without
// a closing one, an empty name and an unknown name are copied as written, and the scan goes on
// after the closing "%".
std::string Expand(const std::string& source,
                   const std::map<std::string, std::string, NoCaseLess>& environment) {
  std::string out;
  std::size_t pos = 0;
  while (pos < source.size()) {
    const std::size_t open = source.find('%', pos);
    if (open == std::string::npos) {
      break;
    }
    const std::size_t close = source.find('%', open + 1);
    if (close == std::string::npos) {
      break;
    }
    out.append(source, pos, open - pos);
    const auto it = environment.find(source.substr(open + 1, close - open - 1));
    if (close > open + 1 && it != environment.end()) {
      out += it->second;
    } else {
      out.append(source, open, close - open + 1);
    }
    pos = close + 1;
  }
  out.append(source, pos < source.size() ? pos : source.size());
  return out;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

DWORD ExpandEnvironmentStringsA(const char* source, char* destination, DWORD size) {
  if (source == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  try {
    const std::string expanded = sim::Expand(source, sim::ActiveMachine()->facts().environment);
    if (destination != nullptr && size > 0) {
      const std::size_t copied = std::min<std::size_t>(expanded.size(), size - 1);
      std::memcpy(destination, expanded.data(), copied);
      destination[copied] = '\0';
    }
    return static_cast<DWORD>(expanded.size() + 1);
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
  }
}

}  // namespace Hostkit::platform
