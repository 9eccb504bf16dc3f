// Writes the benchmarks' registry tree as a registry file, for importing it into a real
// registry: write_bench_tree FILE
#include <cstdio>
#include <fstream>

#include "bench_tree.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: write_bench_tree FILE\n");
    return 2;
  }
  const std::string file = hostkit_bench::TreeRegFile({});
  std::ofstream out(argv[1], std::ios::binary);
  out.write(file.data(), static_cast<std::streamsize>(file.size()));
  if (!out.flush()) {
    std::fprintf(stderr, "write_bench_tree: cannot write %s\n", argv[1]);
    return 1;
  }
  return 0;
}
