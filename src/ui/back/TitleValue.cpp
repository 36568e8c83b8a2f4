#include "ui/back/TitleValue.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/Format.h"
#include "base/Paths.h"
#include "editing/RenamePhotoFile.h"
#include "imaging/ImageFile.h"
#include "platform/Files.h"
#include "platform/Unicode.h"

namespace {

constexpr std::string_view kForbidden = "\\/:*?\"<>|";
constexpr std::size_t kLongestFileName = 255;  // bytes
constexpr int kFirstNumber = 2;                // of a name that is taken

/// Characters that names can't have on other systems are replaced; so is a leading dot, which would hide the
/// photo from the next search.
void ReplaceForbidden(std::string& name) {
  for (char& c : name) {
    if (kForbidden.find(c) != std::string_view::npos || static_cast<unsigned char>(c) < ' ') c = '_';
  }
  if (name.starts_with('.')) name.front() = '_';
}

/// Without the extension, if the text ends with that or another one of photos. Any other dot belongs to the
/// title.
std::string WithoutPhotoExtension(const std::string& text, const std::string& ownExtension) {
  const std::string extension = GetExtension(text);
  const bool isOne = !extension.empty() && (platform::EqualNoCase(extension, ownExtension) ||
                                            ImageTypeFromExtension(extension) != ImageType::None);
  return isOne ? text.substr(0, text.size() - extension.size()) : text;
}

std::string Join(const std::string& title, const std::string& end) {
  return std::string(platform::Truncated(title, kLongestFileName - std::min(kLongestFileName, end.size()))) +
         end;
}

/// Whether the file `own` can have that name: its own one, also in other letters on a disk that doesn't know
/// case, or one that nothing in the folder has. A link takes a name even if it leads nowhere.
bool IsFree(const std::string& folder, const std::string& name, const std::string& own) {
  platform::FileStatus there, file;
  if (name == own || platform::GetEntryStatus(folder + name, there)) return true;
  if (!platform::EqualNoCase(name, own) || platform::GetEntryStatus(folder + own, file)) return false;
  return there.Device == file.Device && there.Inode == file.Inode && there.LinkCount == 1;
}

std::string MakeFree(const std::string& folder, const std::string& title, const std::string& extension,
                     const std::string& own) {
  std::string name = Join(title, extension);
  for (int i = kFirstNumber; !IsFree(folder, name, own); ++i) {
    name = Join(title, Format("-%d", i) + extension);
  }
  return name;
}

}  // namespace

CTitleValue::CTitleValue(const CAssetRecord& photo, ChangeNotice onCommitted)
    : CFieldValue(FieldNumber::Title, std::move(onCommitted)), Photo(photo), Text(photo.GetTitle()) {}

bool CTitleValue::ValidateText(std::string& text) {
  const std::string own = Photo.GetFilename();
  const std::string extension = GetExtension(own);
  std::string title = text;
  ReplaceForbidden(title);
  title = WithoutPhotoExtension(title, extension);
  if (title.empty()) return false;
  text = MakeFree(Photo.GetFolder(), title, extension, own);
  return true;
}

void CTitleValue::SetText(const std::string& text) {
  Text = text;
  TellListener();
}

void CTitleValue::Commit() {
  if (Photo.IsValid()) RenamePhotoFile(Photo, Text);
  Reload();
  CFieldValue::Commit();
}

void CTitleValue::Reload() {
  Text = Photo.GetTitle();
  TellListener();
}
