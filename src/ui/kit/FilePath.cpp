#include "ui/kit/FilePath.h"

#include <QUrl>
#include <algorithm>
#include <vector>

#include "base/FileAddress.h"
#include "base/Folders.h"
#include "base/Paths.h"
#include "platform/Files.h"
#include "ui/kit/QtText.h"

namespace {

constexpr const char* kReplacementSign = "\xef\xbf\xbd";

/// The name of the one folder in `parent` that looks like `shown`; else `shown` itself.
std::string FindByLook(const std::string& parent, const std::string& shown) {
  std::vector<platform::FolderEntry> entries;
  if (platform::ListFolder(parent, entries)) return shown;
  std::string found;
  int count = 0;
  for (const platform::FolderEntry& entry : entries) {
    if (!entry.IsFolder || ToQString(entry.Name) != ToQString(shown)) continue;
    found = entry.Name;
    ++count;
  }
  return count == 1 ? found : shown;
}

std::string FindPathByLook(const std::string& shown) {
  std::string path = "/";
  std::size_t start = 1;
  while (start < shown.size()) {
    const std::size_t end = std::min(shown.find('/', start), shown.size());
    const std::string name = shown.substr(start, end - start);
    const bool lost = name.find(kReplacementSign) != std::string::npos;
    path = JoinPath(path, lost ? FindByLook(path, name) : name);
    start = end + 1;
  }
  return path;
}

}  // namespace

std::string GetPathOfAddress(const QUrl& address) {
  const std::string path = ReadFileAddress(address.toEncoded().toStdString());
  const bool lost = path.find(kReplacementSign) != std::string::npos && !FileExists(path, true);
  return lost ? FindPathByLook(path) : path;
}
