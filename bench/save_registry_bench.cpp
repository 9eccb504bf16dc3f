// Throughput of RegistryBackup::SaveRegistry on a simulated machine: the benchmarks' tree of
// 100,000 values is imported once per release, then saved to drive C: again and again. The
// bytes written per second are the file's size times the saves done, over the time taken.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "bench_tree.h"
#include "foundation/reg_file.h"
#include "hostkit/registry_backup.h"
#include "hostkit/sim/machine.h"
#include "hostkit/sim/profile.h"

namespace {

using Hostkit::sim::Release;

// A machine of one release holding the tree, with a host folder for its drive C:.
struct TreeMachine {
  std::shared_ptr<Hostkit::sim::Machine> machine;
  std::filesystem::path driveRoot;
  std::string error;  // why the tree could not be made; empty when it was

  ~TreeMachine() {
    std::error_code ignored;
    std::filesystem::remove_all(driveRoot, ignored);
  }
};

std::unique_ptr<TreeMachine> MakeTreeMachine(Release release, const std::string& regFile) {
  auto tree = std::make_unique<TreeMachine>();
  tree->machine = std::make_shared<Hostkit::sim::Machine>(release);
  std::random_device random;
  std::error_code error;
  do {
    tree->driveRoot =
        std::filesystem::temp_directory_path() / ("hostkit-bench-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(tree->driveRoot, error) && !error);
  if (error || !std::filesystem::create_directory(tree->driveRoot / "c", error)) {
    tree->error = "cannot create " + tree->driveRoot.string() + ": " + error.message();
    return tree;
  }
  tree->machine->facts().driveRoot = tree->driveRoot;

  const Hostkit::sim::ScopedMachine scope(tree->machine);
  std::vector<Hostkit::regfile::Operation> operations;
  if (!Hostkit::regfile::ParseRegFile(regFile, "tree.reg", operations, tree->error)) {
    return tree;
  }
  Hostkit::regfile::ApplyRegFile(operations, "tree.reg", tree->error);
  return tree;
}

// The tree is imported once per release, however often the benchmark library calls the
// benchmark to settle its iteration count.
TreeMachine& TreeFor(Release release) {
  static const std::string regFile = hostkit_bench::TreeRegFile({});
  static std::map<Release, std::unique_ptr<TreeMachine>> machines;
  auto& tree = machines[release];
  if (!tree) {
    tree = MakeTreeMachine(release, regFile);
  }
  return *tree;
}

void SaveRegistry(benchmark::State& state, Release release) {
  TreeMachine& tree = TreeFor(release);
  if (!tree.error.empty()) {
    state.SkipWithError(tree.error.c_str());
    return;
  }
  Hostkit::sim::ActivateMachine(tree.machine);
  Hostkit::RegistryBackup backup;
  Hostkit::wstring key;
  for (const char* c = hostkit_bench::kTreeKey; *c != 0; ++c) {
    key += static_cast<WCHAR>(*c);
  }
  backup.AddRegistryKey(HKEY_CURRENT_USER, key.c_str());

  while (state.KeepRunning()) {
    if (!backup.SaveRegistry(HK_WIDE("C:\\tree.reg"))) {
      state.SkipWithError("SaveRegistry could not open C:\\tree.reg");
      break;
    }
  }

  std::error_code error;
  const auto size = std::filesystem::file_size(tree.driveRoot / "c" / "tree.reg", error);
  if (!error) {
    const auto saves = static_cast<std::int64_t>(state.iterations());
    state.SetBytesProcessed(saves * static_cast<std::int64_t>(size));
    state.SetItemsProcessed(saves * hostkit_bench::TreeShape{}.values());
    state.counters["file_bytes"] = static_cast<double>(size);
  }
  Hostkit::sim::ActivateMachine(nullptr);
}

// Windows XP writes the UTF-16 5.00 format; Windows 98 the ANSI REGEDIT4 one.
BENCHMARK_CAPTURE(SaveRegistry, winxp, Release::WinXP)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SaveRegistry, win98, Release::Win98)->Unit(benchmark::kMillisecond);

// Importing the tree's registry file, as "regedit /s" does, into a new XP machine each time;
// making the machine is not timed.
void BM_LoadRegFile(benchmark::State& state) {
  const TreeMachine& tree = TreeFor(Release::WinXP);
  if (!tree.error.empty()) {
    state.SkipWithError(tree.error.c_str());
    return;
  }
  const std::filesystem::path file = tree.driveRoot / "load.reg";
  {
    const std::string bytes = hostkit_bench::TreeRegFile({});
    std::ofstream(file, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  std::string error;
  while (state.KeepRunning()) {
    state.PauseTiming();
    auto machine = std::make_shared<Hostkit::sim::Machine>(Release::WinXP);
    state.ResumeTiming();
    if (!Hostkit::sim::ImportRegFile(*machine, file, error)) {
      state.SkipWithError(error.c_str());
      break;
    }
    state.PauseTiming();
    machine.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_LoadRegFile)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
