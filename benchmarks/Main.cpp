#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>

#include "Benchmarks.h"
#include "Measure.h"
#include "base/Exceptions.h"

// usage: vellumar_bench [NAME...]     runs the benchmarks named, or all
//
// The exit code is 1 if a limit was missed.

namespace {

struct Benchmark {
  const char* Name;
  const char* About;
  void (*Run)();
};

constexpr std::array kBenchmarks{
    Benchmark{"storage", "views and transactions of the storage layer", RunStorageBench},
    Benchmark{"catalog", "a catalog of 100,000 photos", RunCatalogBench},
    Benchmark{"sets", "sets of 100,000 photos", RunSetBench},
    Benchmark{"edit", "turning and correcting photos", RunEditBench},
    Benchmark{"view", "showing photos upright, the next one, and sharp cells", RunViewBench},
    Benchmark{"import", "new photos and the second start", RunImportBench},
};

bool IsWanted(const Benchmark& benchmark, int argc, char** argv) {
  return argc < 2 || std::any_of(argv + 1, argv + argc,
                                 [&](const char* name) { return std::strcmp(name, benchmark.Name) == 0; });
}

bool AreNamesKnown(int argc, char** argv) {
  return std::all_of(argv + 1, argv + argc, [](const std::string_view name) {
    return std::any_of(kBenchmarks.begin(), kBenchmarks.end(),
                       [&](const Benchmark& benchmark) { return name == benchmark.Name; });
  });
}

int RunBenchmarks(int argc, char** argv) {
  if (!AreNamesKnown(argc, argv)) {
    std::fprintf(stderr, "usage: vellumar_bench [NAME...]\n");
    for (const Benchmark& benchmark : kBenchmarks) {
      std::fprintf(stderr, "  %-10s %s\n", benchmark.Name, benchmark.About);
    }
    return 2;
  }
  for (const Benchmark& benchmark : kBenchmarks) {
    if (!IsWanted(benchmark, argc, argv)) continue;
    std::printf("%s: %s\n", benchmark.Name, benchmark.About);
    std::fflush(stdout);
    benchmark.Run();
  }
  return AreLimitsKept() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 2 && std::string_view(argv[1]) == kImportChild) {
      RunImportChild();
      return 0;
    }
    if (argc == 2 && std::string_view(argv[1]) == kViewChild) {
      RunViewChild();
      return 0;
    }
    return RunBenchmarks(argc, argv);
  } catch (const CThrowable& problem) {
    std::fprintf(stderr, "vellumar_bench: %s\n", problem.GetMessage().c_str());
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "vellumar_bench: %s\n", problem.what());
  }
  return 3;
}
