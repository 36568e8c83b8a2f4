#include "sets/FolderFilter.h"

#include <algorithm>

#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "catalog/AssetRecord.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "platform/Ascii.h"
#include "platform/Unicode.h"

namespace {

/// The start of `path` with as many characters as `count`; case may change a character's length in bytes.
std::string FirstCharacters(std::string_view path, std::size_t count) {
  std::size_t end = 0;
  for (; count > 0 && end < path.size(); --count) end += platform::CharacterLength(path, end);
  return std::string(path.substr(0, end));
}

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// False if the path can't begin with any spelling of the folder. A cheap test before the real comparison.
bool MayBeginWith(std::string_view path, std::string_view folder) {
  const std::size_t common = std::min(path.size(), folder.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (!IsAscii(path[i]) || !IsAscii(folder[i])) return true;
    if (platform::FoldByte(path[i]) != platform::FoldByte(folder[i])) return false;
  }
  return path.size() >= folder.size();
}

}  // namespace

CFolderFilter::CFolderFilter(const std::string& folder) : Folder(WithClosingSlash(folder)) { Refresh(); }

void CFolderFilter::Refresh() {
  LastFolder.clear();
  LastAnswer = false;
  Spellings.clear();
  OtherPaths.clear();
  CCatalog* const catalog = CCatalog::GetInstance();
  if (catalog == nullptr) return;
  for (const std::string& path : catalog->GetKnownFolders().GetOtherPaths(Folder)) {
    OtherPaths.push_back(WithClosingSlash(path));
  }
}

bool CFolderFilter::Holds(std::string_view folder) const {
  if (folder.starts_with(Folder)) return true;
  for (const std::string& other : OtherPaths) {
    if (folder.starts_with(other)) return true;
  }
  if (!MayBeginWith(folder, Folder)) return false;
  return IsSpelling(FirstCharacters(folder, platform::CountCharacters(Folder)));
}

bool CFolderFilter::IsSpelling(const std::string& path) const {
  if (!platform::EqualNoCase(path, Folder)) return false;
  const auto [answer, isNew] = Spellings.emplace(path, false);
  if (isNew) {
    const std::string spelling = WithoutClosingSlash(path), folder = WithoutClosingSlash(Folder);
    answer->second = IsFormerSpelling(spelling, folder) || IsFormerSpelling(folder, spelling);
  }
  return answer->second;
}

bool CFolderFilter::Matches(const CAssetRecord& record) const {
  const std::string_view folder = props::Location.Get(record.GetRow());
  if (folder != LastFolder) {
    LastAnswer = Holds(folder);
    LastFolder = folder;
  }
  return LastAnswer;
}
