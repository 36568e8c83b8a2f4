#include "base/Paths.h"

#include <algorithm>

namespace {

/// The offset of the name's extension, or the end of the path.
std::size_t FindExtension(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  const std::size_t name = slash == std::string_view::npos ? 0 : slash + 1;
  const std::size_t dot = path.rfind('.');
  return dot == std::string_view::npos || dot <= name ? path.size() : dot;
}

}  // namespace

PathParts SplitPath(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  const std::size_t name = slash == std::string_view::npos ? 0 : slash + 1;
  return {std::string(path.substr(0, name)), std::string(path.substr(name))};
}

std::string GetExtension(std::string_view path) { return std::string(path.substr(FindExtension(path))); }

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string path = WithClosingSlash(folder);
  if (!path.empty()) name.remove_prefix(std::min(name.find_first_not_of('/'), name.size()));
  return path.append(name);
}

std::string WithClosingSlash(std::string_view path) {
  std::string result(path);
  if (!result.empty() && !result.ends_with('/')) result += '/';
  return result;
}

std::string WithoutClosingSlash(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return std::string(path);
}

std::string ToPlatformPath(std::string_view path) {
  std::string result(path);
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}
