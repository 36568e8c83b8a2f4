#pragma once

#include <cstdint>
#include <string>

/// A photo file that a walk has found and that needs work.
struct CFoundFile {
  std::string Path;
  std::int64_t Created = 0;  // seconds since 1970, UTC
  std::int64_t Written = 0;
  bool Known = false;  // the catalog has the photo; only its thumbnail is missing
};
