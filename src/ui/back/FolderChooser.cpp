#include "ui/back/FolderChooser.h"

#include <QApplication>
#include <QFileDialog>
#include <QUrl>

#include "base/Folders.h"
#include "base/Paths.h"
#include "base/Texts.h"
#include "platform/FolderListing.h"
#include "ui/back/FolderListDialog.h"
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
  if (!address.isLocalFile()) return {};
  const QByteArray encoded = address.path(QUrl::FullyEncoded).toLatin1();
  const std::string path = QByteArray::fromPercentEncoding(encoded).toStdString();
  const bool lost = path.find(kReplacementSign) != std::string::npos && !FileExists(path, true);
  return lost ? FindPathByLook(path) : path;
}

std::optional<std::string> CWindowFolderChooser::Browse() {
  const QUrl address = QFileDialog::getExistingDirectoryUrl(
      QApplication::activeWindow(), ToQString(LoadExpandedString(StringId::AddFolderToList)),
      QUrl::fromLocalFile(ToQString(GetMyPicturesFolder())), QFileDialog::ShowDirsOnly,
      {QStringLiteral("file")});
  if (address.isEmpty()) return std::nullopt;
  return GetPathOfAddress(address);
}

int CWindowFolderChooser::Choose(const std::vector<std::string>& folders, FolderChoice purpose) {
  CFolderListDialog dialog(folders, purpose, QApplication::activeWindow());
  dialog.exec();
  return dialog.GetChosen();
}
