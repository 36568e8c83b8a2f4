#include "Measure.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace {

bool limitsKept = true;

// The program stands in build/<preset>/bin.
std::filesystem::path BuildFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().parent_path();
}

}  // namespace

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string GetKeptFolder(const std::string& name) {
  const std::filesystem::path folder = BuildFolder() / name;
  std::filesystem::create_directories(folder);
  return folder.string();
}

CScratchFolder::CScratchFolder(const std::string& name)
    : Path((BuildFolder() / "bench" / (name + "." + std::to_string(getpid()))).string()) {
  std::filesystem::remove_all(Path);
  std::filesystem::create_directories(Path);
}

CScratchFolder::~CScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(Path, ignored);
  std::filesystem::remove(std::filesystem::path(Path).parent_path(), ignored);  // if it is empty now
}

void PrintRatio(const std::string& what, double ratio, Limit kind, double limit) {
  const bool kept = kind == Limit::AtLeast ? ratio >= limit : ratio <= limit;
  if (!kept) limitsKept = false;
  std::printf("  %-58s %8.2f   (%s %g: %s)\n", what.c_str(), ratio,
              kind == Limit::AtLeast ? "at least" : "at most", limit, kept ? "kept" : "MISSED");
  std::fflush(stdout);
}

bool AreLimitsKept() { return limitsKept; }
