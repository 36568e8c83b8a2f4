#include "ui/back/TitleValue.h"

#include <string_view>
#include <utility>

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "editing/RenamePhotoFile.h"
#include "imaging/ImageFile.h"
#include "platform/Unicode.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kForbidden = "\\/:*?\"<>|";

/// Characters that names can't have on other systems are replaced; so is a leading dot, which would hide the
/// photo from the next search.
void ReplaceForbidden(std::string& name) {
  for (char& c : name) {
    if (kForbidden.find(c) != std::string_view::npos || static_cast<unsigned char>(c) < ' ') c = '_';
  }
  if (name.starts_with('.')) name.front() = '_';
}

std::string WithoutOuterBlanks(const std::string& text) {
  const std::string trimmed = text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
  return trimmed.substr(0, trimmed.find_last_not_of(kBlanks) + 1);
}

/// Without the extension, if the text ends with that or another one of photos. Any other dot belongs to the
/// title.
std::string WithoutPhotoExtension(const std::string& text, const std::string& ownExtension) {
  const std::string extension = GetExtension(text);
  const bool isOne = !extension.empty() && (platform::EqualNoCase(extension, ownExtension) ||
                                            ImageTypeFromExtension(extension) != ImageType::None);
  return isOne ? text.substr(0, text.size() - extension.size()) : text;
}

}  // namespace

CTitleValue::CTitleValue(const CAssetRecord& photo, ChangeNotice onCommitted)
    : CFieldValue(FieldNumber::Title, std::move(onCommitted)), Photo(photo), Text(photo.GetTitle()) {}

bool CTitleValue::ValidateText(std::string& text) {
  const std::string extension = GetExtension(Photo.GetFilename());
  std::string title = WithoutOuterBlanks(text);
  ReplaceForbidden(title);
  title = WithoutOuterBlanks(WithoutPhotoExtension(title, extension));
  if (title.empty()) return false;
  text = FindFreeName(Photo, title, extension);
  return true;
}

void CTitleValue::SetText(const std::string& text) {
  Text = text;
  TellListener();
}

void CTitleValue::Commit() {
  if (Photo.IsValid()) {
    if (const auto error = RenamePhotoFile(Photo, Text)) {
      throw CException("The file \"" + Photo.GetPath() + "\" can't be renamed: " + error.message() + ".");
    }
  }
  Reload();
  CFieldValue::Commit();
}

void CTitleValue::Reload() {
  Text = Photo.GetTitle();
  TellListener();
}
