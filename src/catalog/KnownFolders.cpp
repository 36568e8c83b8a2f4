#include "catalog/KnownFolders.h"

#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "platform/Files.h"

void CKnownFolders::Look(std::string_view folder) {
  const std::string path = WithoutClosingSlash(folder);
  if (Identities.contains(path)) return;
  platform::FileStatus status;
  const bool stands = !platform::GetStatus(path, status) && status.IsFolder;
  const Identity identity = stands ? Identity(status.Device, status.Inode) : kNowhere;
  Identities.emplace(path, identity);
  if (stands) Paths.emplace(identity, path);
  if (const std::string above = SplitPath(path).Folder; above.size() > 1) Look(above);
}

void CKnownFolders::LookForMissing() {
  std::vector<std::string> missing;
  for (const auto& [path, identity] : Identities) {
    if (identity == kNowhere) missing.push_back(path);
  }
  for (const std::string& path : missing) Identities.erase(path);
  for (const std::string& path : missing) Look(path);
}

std::vector<std::string> CKnownFolders::GetOtherPaths(std::string_view folder) const {
  const std::string path = WithoutClosingSlash(folder);
  std::vector<std::string> others;
  const auto known = Identities.find(path);
  if (known == Identities.end() || known->second == kNowhere) return others;
  const auto [first, last] = Paths.equal_range(known->second);
  for (auto entry = first; entry != last; ++entry) {
    // By now the number may be that of another disk.
    if (entry->second != path && IsSameFolder(entry->second, path)) others.push_back(entry->second);
  }
  return others;
}

void CKnownFolders::Clear() {
  Identities.clear();
  Paths.clear();
}
