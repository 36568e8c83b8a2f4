#pragma once

#include <string>
#include <vector>

#include "base/Messages.h"

/// A home below `folder`, whose pictures folder is `photos`.
std::string MakeHome(const std::string& folder, int number, const std::string& photos);

/// In the child: answers the question whether so many photos should come in.
class CConsent : public CMessageBox {
 public:
  bool Show(const std::string&, const std::string&, bool, MessageParent) override { return true; }
};

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
