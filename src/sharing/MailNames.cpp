#include "sharing/MailNames.h"

#include <set>

#include "base/Paths.h"
#include "base/Texts.h"
#include "imaging/ImageFile.h"
#include "platform/Unicode.h"

namespace {

constexpr std::size_t kLongestName = 255;  // bytes
constexpr std::string_view kFirstBeyondControls = "\xC2\xA0";

bool IsPlain(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return first >= 0x20 && first < 0x7F && first != '\\';
  return character.size() > 2 || character >= kFirstBeyondControls;
}

std::string GetNameWithoutExtension(std::string_view path) {
  std::string name = SplitPath(path).Name;
  name.resize(name.size() - GetExtension(name).size());
  return name;
}

}  // namespace

std::string MakePlainText(std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view character = text.substr(at, platform::CharacterLength(text, at));
    plain += IsPlain(character) ? character : "_";
    at += character.size();
  }
  return plain;
}

std::string GetAttachmentName(std::string_view photoPath) {
  const bool isJpeg = ImageTypeOfFile(photoPath) == ImageType::Jpeg;
  const std::string extension = isJpeg ? GetExtension(photoPath) : ".jpg";
  const std::string name = MakePlainText(GetNameWithoutExtension(photoPath));
  return std::string(platform::Truncated(name, kLongestName - extension.size())) + extension;
}

std::vector<std::string> GetCopyPaths(const std::vector<std::string>& photoPaths, const std::string& folder) {
  std::vector<std::string> copies;
  std::set<std::string> taken;  // some disks don't know case
  for (const std::string& path : photoPaths) {
    const std::string name = GetAttachmentName(path);
    const bool isFree = taken.insert(platform::FoldCase(name)).second;
    const std::string own = std::to_string(copies.size() + 1);
    copies.push_back(JoinPath(isFree ? folder : JoinPath(folder, own), name));
  }
  return copies;
}

std::string GetMailSubject(const std::vector<std::string>& photoPaths,
                           const std::optional<std::string>& subject) {
  if (subject) return MakePlainText(*subject);
  if (photoPaths.size() == 1) return MakePlainText(GetNameWithoutExtension(photoPaths.front()));
  return FormatString(StringId::MailSubjectPhotos, photoPaths.size());
}

std::string GetMailFooter() {
  return LoadText(StringId::MailFooter) + "http://" + LoadText(StringId::DownloadPage);
}
