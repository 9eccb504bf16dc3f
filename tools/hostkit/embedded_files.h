// Files compiled into the tool: the profile and registry files of its default machine.
#pragma once

#include <cstddef>

namespace hostkit_tool {

struct EmbeddedFile {
  const char* name;
  const unsigned char* data;
  std::size_t size;
};

extern const EmbeddedFile kDefaultMachineFiles[];
extern const std::size_t kDefaultMachineFileCount;

}  // namespace hostkit_tool
