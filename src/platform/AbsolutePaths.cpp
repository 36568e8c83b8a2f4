#include "platform/AbsolutePaths.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace platform {
namespace {

std::string TakeOver(char* allocated) {
  const std::unique_ptr<char, decltype(&::free)> text(allocated, &::free);
  return text ? text.get() : std::string();
}

/// The folder that ".." in `folder` leads to. Both are without closing "/", so the root is empty.
std::string GetParent(const std::string& folder) {
  const std::string real = FindRealPath(folder);
  const std::string& from = real.empty() ? folder : real;
  return from.substr(0, std::min(from.rfind('/'), from.size()));
}

}  // namespace

std::string MakeAbsolute(const std::string& path) {
  std::string whole = path;
  if (!path.starts_with('/')) {
    const std::string folder = TakeOver(::getcwd(nullptr, 0));
    if (!folder.starts_with('/')) return path;
    whole = folder + "/" + path;
  }
  std::string absolute;
  std::size_t start = 0;
  while (start < whole.size()) {
    const std::size_t end = std::min(whole.find('/', start), whole.size());
    const std::string name = whole.substr(start, end - start);
    if (name == "..") {
      absolute = GetParent(absolute);
    } else if (!name.empty() && name != ".") {
      absolute += "/" + name;
    }
    start = end + 1;
  }
  return absolute.empty() ? "/" : absolute;
}

std::string FindRealPath(const std::string& path) { return TakeOver(::realpath(path.c_str(), nullptr)); }

}  // namespace platform
