// The registry tree the benchmarks save: HKEY_CURRENT_USER\Software\HostkitBench holding
// groups of keys, each key holding values of every common type, written as one registry file
// so that the simulated machine and a real registry are filled with exactly the same data.
#pragma once

#include <string>

namespace hostkit_bench {

// The key the tree hangs from, below HKEY_CURRENT_USER.
inline constexpr const char* kTreeKey = "Software\\HostkitBench";

struct TreeShape {
  int groups = 10;         // HostkitBench\GroupNN
  int keysPerGroup = 100;  // GroupNN\KeyNNN
  int valuesPerKey =
      100;  // cycling through REG_SZ, REG_DWORD, REG_BINARY, REG_MULTI_SZ, REG_EXPAND_SZ

  int values() const { return groups * keysPerGroup * valuesPerKey; }
};

// The tree as a "Windows Registry Editor Version 5.00" file: UTF-16 LE after a byte-order mark.
std::string TreeRegFile(const TreeShape& shape);

}  // namespace hostkit_bench
