#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sets/PhotoFilter.h"

/// Passes the photos of a folder and of those below it, by whatever path the catalog knows it: over a link
/// (CKnownFolders) or in a former spelling (IsFormerSpelling). Folders that differ in case are two.
class CFolderFilter : public CPhotoFilter {
 public:
  explicit CFolderFilter(const std::string& folder);

  bool Matches(const CAssetRecord& record) const override;
  void Refresh() override;
  const std::string& GetFolder() const { return Folder; }  // with its closing "/"

  /// Whether a folder, with its closing "/", is this one or lies below it.
  bool Holds(std::string_view folder) const;

 private:
  bool IsSpelling(const std::string& path) const;

  const std::string Folder;
  std::vector<std::string> OtherPaths;  // of the folder, with their closing "/"
  // The last folder asked about and its answer: photos of one folder mostly come one after the other.
  mutable std::string LastFolder;
  mutable bool LastAnswer = false;
  mutable std::unordered_map<std::string, bool> Spellings;  // paths that differ in case, and the answers
};
