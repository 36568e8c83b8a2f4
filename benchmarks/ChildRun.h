#pragma once

#include <string>
#include <vector>

/// What a child process measured of itself.
struct ChildFigures {
  std::vector<double> Values;  // those that it printed
  double PeakMegabytes = 0;    // most physical memory that it ever held
};

/// Runs this program again with `arguments`, and with `home` as the user's home, so that every run starts
/// from a process, and a catalog, of its own. Raises std::runtime_error if it fails.
ChildFigures RunChild(const std::vector<std::string>& arguments, const std::string& home);

/// In the child: prints what RunChild reads.
void PrintChildFigures(const std::vector<double>& values);
