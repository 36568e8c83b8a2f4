#include "platform/SpecialFolders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Files.h"

namespace platform {
namespace {

constexpr std::size_t kLargestUserDirs = std::size_t{1} << 20;

std::string WithoutSlash(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

/// An absolute path of the environment; the base directory rules have relative ones ignored.
std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value == '/' ? WithoutSlash(value) : std::string();
}

std::string BaseFolder(const char* variable, const char* belowHome) {
  std::string folder = FromEnvironment(variable);
  if (!folder.empty()) return folder;
  const std::string home = HomeFolder();
  return home.empty() ? home : home + belowHome;
}

/// `first`, then the absolute paths of a list of the environment, or of `standard` where it isn't set.
std::vector<std::string> FolderList(std::string first, const char* variable, std::string_view standard) {
  std::vector<std::string> folders;
  if (!first.empty()) folders.push_back(std::move(first));
  const char* value = std::getenv(variable);
  std::string_view list = value != nullptr && *value != '\0' ? value : standard;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (list.starts_with('/')) folders.push_back(WithoutSlash(std::string(list.substr(0, end))));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return folders;
}

bool IsFolder(const std::string& path) {
  FileStatus status;
  return !GetStatus(path, status) && status.IsFolder;
}

/// The value of a line such as XDG_PICTURES_DIR="$HOME/Pictures", or empty if it is of another key or of
/// a form that the rules don't allow.
std::string ReadUserDirLine(std::string_view line, std::string_view key) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (!line.starts_with(key)) return {};
  line.remove_prefix(key.size());
  if (!line.starts_with("=\"")) return {};
  line.remove_prefix(2);
  std::string value;
  if (line.starts_with("$HOME")) {
    value = HomeFolder();
    line.remove_prefix(5);
    if (value.empty() || !(line.starts_with('/') || line.starts_with('"'))) return {};
  } else if (!line.starts_with('/')) {
    return {};
  }
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') return WithoutSlash(value);
    if (line[i] == '\\' && i + 1 < line.size()) ++i;
    value += line[i];
  }
  return {};
}

/// A folder of the file user-dirs.dirs. One that is the home folder itself counts as not named: that is
/// how the file switches a folder off.
std::string UserDir(std::string_view key) {
  std::vector<std::uint8_t> bytes;
  if (ReadWholeFile(ConfigHome() + "/user-dirs.dirs", bytes, kLargestUserDirs)) return {};
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  std::string result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string value = ReadUserDirLine(text.substr(0, end), key);
    if (!value.empty()) result = std::move(value);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return result == HomeFolder() ? std::string() : result;
}

}  // namespace

std::string HomeFolder() {
  std::string home = FromEnvironment("HOME");
  if (!home.empty()) return home;
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
    return {};
  }
  return WithoutSlash(found->pw_dir);
}

std::string ExecutableFolder() {
  std::array<char, 4096> path{};
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  if (length <= 0) return {};
  const std::string_view text(path.data(), static_cast<std::size_t>(length));
  const std::size_t slash = text.rfind('/');
  return slash == 0 ? "/" : std::string(text.substr(0, slash));
}

std::string DataHome() { return BaseFolder("XDG_DATA_HOME", "/.local/share"); }

std::string ConfigHome() { return BaseFolder("XDG_CONFIG_HOME", "/.config"); }

std::string CacheHome() { return BaseFolder("XDG_CACHE_HOME", "/.cache"); }

std::vector<std::string> ConfigFolders() { return FolderList(ConfigHome(), "XDG_CONFIG_DIRS", "/etc/xdg"); }

std::vector<std::string> DataFolders() {
  return FolderList(DataHome(), "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
}

std::string RuntimeFolder() {
  std::string folder = FromEnvironment("XDG_RUNTIME_DIR");
  if (!folder.empty() && IsFolder(folder)) return folder;
  folder = TemporaryFolder() + "/vellumar-" + std::to_string(::getuid());
  // Whatever the outcome, what counts is whether it is a folder of this user alone, and no link.
  static_cast<void>(::mkdir(folder.c_str(), 0700));
  struct stat status {};
  if (::lstat(folder.c_str(), &status) != 0) return {};
  const bool isPrivate =
      S_ISDIR(status.st_mode) && status.st_uid == ::getuid() && (status.st_mode & 077U) == 0;
  return isPrivate ? folder : std::string();
}

std::string TemporaryFolder() {
  std::string folder = FromEnvironment("TMPDIR");
  return folder.empty() ? "/tmp" : folder;
}

std::string PicturesFolder(bool& known) {
  std::string folder = UserDir("XDG_PICTURES_DIR");
  known = !folder.empty();
  if (known) return folder;
  folder = HomeFolder();
  if (folder.empty()) return folder;
  folder += "/Pictures";
  known = IsFolder(folder);
  return folder;
}

std::string DocumentsFolder() {
  std::string folder = UserDir("XDG_DOCUMENTS_DIR");
  if (!folder.empty()) return folder;
  const std::string home = HomeFolder();
  folder = home + "/Documents";
  return !home.empty() && IsFolder(folder) ? folder : home;
}

}  // namespace platform
