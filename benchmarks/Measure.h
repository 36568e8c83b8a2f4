#pragma once

#include <chrono>
#include <string>
#include <vector>

/// What all benchmarks share: a clock, the median, a scratch folder, and how a figure is printed.

inline double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The middle one of `values`, or the mean of the two middle ones. Not for an empty list.
double Median(std::vector<double> values);

/// A folder below build/ that is kept between runs; made if need be. Without closing "/".
std::string GetKeptFolder(const std::string& name);

/// A new folder below build/bench, removed with all that is in it when the object goes.
class CScratchFolder {
 public:
  explicit CScratchFolder(const std::string& name);
  ~CScratchFolder();
  CScratchFolder(const CScratchFolder&) = delete;
  CScratchFolder& operator=(const CScratchFolder&) = delete;

  const std::string& GetPath() const { return Path; }

 private:
  std::string Path;
};

enum class Limit { AtLeast, AtMost };

/// Prints a ratio with its limit and whether it was kept, and remembers that one wasn't.
void PrintRatio(const std::string& what, double ratio, Limit kind, double limit);

/// Whether every ratio printed so far kept its limit.
bool AreLimitsKept();
